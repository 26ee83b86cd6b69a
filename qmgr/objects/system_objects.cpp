#include "qmgr/objects/system_objects.h"

#include <algorithm>
#include <string>
#include <utility>

#include "qmgr/objects/object_definition.h"

namespace mqrig::qmgr::objects {
namespace {

struct SystemQueue {
    std::string_view name;
    std::string_view description;
    MQLONG maxDepth;
};

// Objects of other kinds: they have the defaults of their kind.
struct OtherObject {
    ObjectKind kind;
    std::string_view name;
    std::string_view description;
};

constexpr MQLONG standardDepth = 5000;
constexpr MQLONG unboundedDepth = 999999999;

constexpr SystemQueue systemQueues[] = {
    {"SYSTEM.ADMIN.ACCOUNTING.QUEUE", "Accounting messages", standardDepth},
    {"SYSTEM.ADMIN.ACTIVITY.QUEUE", "Activity reports", standardDepth},
    {"SYSTEM.ADMIN.CHANNEL.EVENT", "Events of channels", standardDepth},
    {"SYSTEM.ADMIN.COMMAND.EVENT", "Events of commands", standardDepth},
    {commandQueue, "Administration commands (PCF)", standardDepth},
    {"SYSTEM.ADMIN.CONFIG.EVENT", "Events of object changes", standardDepth},
    {"SYSTEM.ADMIN.LOGGER.EVENT", "Events of the log", standardDepth},
    {"SYSTEM.ADMIN.PERFM.EVENT", "Events of queue depth and service", standardDepth},
    {"SYSTEM.ADMIN.PUBSUB.EVENT", "Events of publish and subscribe", standardDepth},
    {"SYSTEM.ADMIN.QMGR.EVENT", "Events of the queue manager", standardDepth},
    {"SYSTEM.ADMIN.STATISTICS.QUEUE", "Statistics messages", standardDepth},
    {"SYSTEM.ADMIN.TRACE.ACTIVITY.QUEUE", "Activity trace messages", standardDepth},
    {"SYSTEM.ADMIN.TRACE.ROUTE.QUEUE", "Replies to trace-route messages", standardDepth},
    {deadLetterQueue, "Messages that could not be delivered", unboundedDepth},
    {"SYSTEM.DEFAULT.INITIATION.QUEUE", "Trigger messages", standardDepth},
    {defaultLocalQueue, "", standardDepth},
    {retainedQueue, "Retained publications", unboundedDepth},
};

constexpr OtherObject otherObjects[] = {
    {ObjectKind::ModelQueue, "SYSTEM.COMMAND.MODEL.QUEUE", "Replies to commands"},
    {ObjectKind::ModelQueue, defaultModelQueue, ""},
    {ObjectKind::ModelQueue, "SYSTEM.MQSC.REPLY.QUEUE", "Replies to MQSC commands"},
    {ObjectKind::ModelQueue, durableModelQueue, "Queues of durable subscriptions"},
    {ObjectKind::ModelQueue, nonDurableModelQueue, "Queues of other subscriptions"},
    {ObjectKind::AliasQueue, defaultAliasQueue, ""},
    {ObjectKind::RemoteQueue, defaultRemoteQueue, ""},
    {ObjectKind::Namelist, defaultNamelist, ""},
    {ObjectKind::Process, defaultProcess, ""},
    {ObjectKind::Topic, defaultTopic, ""},
    {ObjectKind::Topic, baseTopic, "What topics have where nothing else is said"},
};

store::Definition stored(const ObjectDefinition &object)
{
    store::Definition definition;
    definition.type = openType(object.kind());
    definition.name = object.name();
    definition.bytes = object.encode();
    return definition;
}

struct Attributes {
    std::string_view object;
    MQLONG selector;
    MQLONG value;
};

// What system objects have apart from the defaults of their kind.
constexpr Attributes ownAttributes[] = {
    {durableModelQueue, MQIA_DEFINITION_TYPE, MQQDT_PERMANENT_DYNAMIC},
    {durableModelQueue, MQIA_SHAREABILITY, MQQA_SHAREABLE},
    {durableModelQueue, MQIA_DEF_INPUT_OPEN_OPTION, MQOO_INPUT_SHARED},
    {durableModelQueue, MQIA_MAX_Q_DEPTH, unboundedDepth},
    {nonDurableModelQueue, MQIA_SHAREABILITY, MQQA_SHAREABLE},
    {nonDurableModelQueue, MQIA_DEF_INPUT_OPEN_OPTION, MQOO_INPUT_SHARED},
    {nonDurableModelQueue, MQIA_MAX_Q_DEPTH, unboundedDepth},
    {baseTopic, MQIA_INHIBIT_PUB, MQTA_PUB_ALLOWED},
    {baseTopic, MQIA_INHIBIT_SUB, MQTA_SUB_ALLOWED},
    {baseTopic, MQIA_DURABLE_SUB, MQSUB_DURABLE_ALLOWED},
    {baseTopic, MQIA_DEF_PRIORITY, 0},
    {baseTopic, MQIA_TOPIC_DEF_PERSISTENCE, MQPER_NOT_PERSISTENT},
    {baseTopic, MQIA_DEF_PUT_RESPONSE_TYPE, MQPRT_SYNC_RESPONSE},
    {baseTopic, MQIA_PM_DELIVERY, MQDLV_ALL_DUR},
    {baseTopic, MQIA_NPM_DELIVERY, MQDLV_ALL_AVAIL},
    {baseTopic, MQIA_USE_DEAD_LETTER_Q, MQUSEDLQ_YES},
    {baseTopic, MQIA_PUB_SCOPE, MQSCOPE_ALL},
    {baseTopic, MQIA_SUB_SCOPE, MQSCOPE_ALL},
    {baseTopic, MQIA_MULTICAST, MQMC_DISABLED},
};
struct Texts {
    std::string_view object;
    MQLONG selector;
    std::string_view value;
};
constexpr Texts ownTexts[] = {
    {baseTopic, MQCA_MODEL_DURABLE_Q, durableModelQueue},
    {baseTopic, MQCA_MODEL_NON_DURABLE_Q, nonDurableModelQueue},
};

// "QM1_2026-11-21_09.30.05": unique among queue managers of one name, as long as they are not made in one second.
std::string identifier(const ObjectDefinition &queueManager)
{
    const std::string stamp = '_' + std::string(queueManager.text(MQCA_CREATION_DATE)) + '_' +
                              std::string(queueManager.text(MQCA_CREATION_TIME));
    return queueManager.name().substr(0, MQ_Q_MGR_IDENTIFIER_LENGTH - stamp.size()) + stamp;
}

} // namespace

std::string_view defaultObject(ObjectKind kind)
{
    switch (kind) {
    case ObjectKind::LocalQueue:
        return defaultLocalQueue;
    case ObjectKind::AliasQueue:
        return defaultAliasQueue;
    case ObjectKind::RemoteQueue:
        return defaultRemoteQueue;
    case ObjectKind::ModelQueue:
        return defaultModelQueue;
    case ObjectKind::Namelist:
        return defaultNamelist;
    case ObjectKind::Process:
        return defaultProcess;
    case ObjectKind::Topic:
        return defaultTopic;
    case ObjectKind::QueueManager:
        break;
    }
    return {};
}

std::vector<store::Definition> systemObjects(std::string_view queueManagerName)
{
    std::vector<store::Definition> objects;
    ObjectDefinition queueManager(ObjectKind::QueueManager, queueManagerName);
    queueManager.stampCreated();
    queueManager.set(MQCA_Q_MGR_IDENTIFIER, identifier(queueManager));
    objects.push_back(stored(queueManager));

    for (const SystemQueue &row : systemQueues) {
        ObjectDefinition queue(ObjectKind::LocalQueue, row.name);
        queue.set(MQCA_Q_DESC, row.description);
        queue.set(MQIA_MAX_Q_DEPTH, row.maxDepth);
        queue.stampCreated();
        objects.push_back(stored(queue));
    }
    for (const OtherObject &row : otherObjects) {
        ObjectDefinition object(row.kind, row.name);
        object.set(*findKeyword(row.kind, "DESCR").attribute, {0, std::string(row.description)});
        for (const Attributes &own : ownAttributes)
            if (own.object == row.name) object.set(own.selector, own.value);
        for (const Texts &own : ownTexts)
            if (own.object == row.name) object.set(own.selector, own.value);
        object.stampCreated();
        objects.push_back(stored(object));
    }
    return objects;
}

std::optional<store::Definition> systemObject(MQLONG type, std::string_view name)
{
    const std::vector<store::Definition> objects = systemObjects("QM");
    const auto found = std::ranges::find_if(
        objects, [&](const store::Definition &object) { return object.type == type && object.name == name; });
    return found == objects.end() ? std::nullopt : std::optional(*found);
}

} // namespace mqrig::qmgr::objects
