#include "qmgr/core/topic.h"

#include "qmgr/core/subscriptions.h"
#include "qmgr/objects/object_name.h"

namespace mqrig::qmgr::core {
namespace {

// Options that mean something for a topic, or nothing at all.
constexpr MQLONG topicOptions = MQOO_OUTPUT | MQOO_PASS_IDENTITY_CONTEXT | MQOO_PASS_ALL_CONTEXT |
                                MQOO_SET_IDENTITY_CONTEXT | MQOO_SET_ALL_CONTEXT | MQOO_ALTERNATE_USER_AUTHORITY |
                                MQOO_FAIL_IF_QUIESCING | MQOO_BIND_ON_OPEN | MQOO_BIND_NOT_FIXED | MQOO_BIND_ON_GROUP |
                                MQOO_RESOLVE_LOCAL_Q | MQOO_NO_MULTICAST;

// What is published there is about the queue manager itself.
constexpr std::string_view administrative = "$SYS/MQ/";

bool isGiven(std::string_view text)
{
    return !text.empty() && text.front() != ' ' && text.front() != '\0';
}

} // namespace

Outcome resolveTopic(Connection &connection, std::string_view object, std::string_view string, std::string &topic)
{
    topic.clear();
    const bool named = isGiven(object);
    if (!named && !isGiven(string)) return failure(MQRC_UNKNOWN_OBJECT_NAME);
    if (named) {
        const objects::FoundObject found = connection.catalog.object(MQOT_TOPIC, object);
        if (found.outcome.failed()) return found.outcome;
        topic = found.object->text(MQCA_TOPIC_STRING);
    }
    if (isGiven(string)) {
        if (string.size() > longestTopic) return failure(MQRC_OBJECT_STRING_ERROR);
        if (!topic.empty()) topic += '/';
        topic += string;
    }
    return topic.empty() || topic.size() > longestTopic ? failure(MQRC_TOPIC_STRING_ERROR) : success();
}

Outcome mayPublishOrSubscribe(Connection &connection)
{
    const bool off = connection.queueManager().object.number(MQIA_PUBSUB_MODE) == MQPSM_DISABLED;
    return off ? failure(MQRC_PUBSUB_INHIBITED) : success();
}

Outcome openTopic(Connection &connection, const ObjectName &name, MQLONG options, OpenTopic &topic)
{
    if ((options & ~topicOptions) != 0) return failure(MQRC_OPTION_NOT_VALID_FOR_TYPE);
    if (!name.queueManager.empty() && name.queueManager != connection.store->queueManagerName())
        return failure(MQRC_UNKNOWN_OBJECT_Q_MGR);
    if (const Outcome may = mayPublishOrSubscribe(connection); may.failed()) return may;
    const Outcome resolved = resolveTopic(connection, name.name, name.objectString, topic.topic);
    if (resolved.failed()) return resolved;
    return topic.topic.starts_with(administrative) ? failure(MQRC_ADMIN_TOPIC_STRING_ERROR) : success();
}

std::string topicOfAlias(Connection &connection, const ObjectName &name)
{
    if (name.type != MQOT_Q) return {};
    if (!name.queueManager.empty() && name.queueManager != connection.store->queueManagerName()) return {};
    const objects::FoundQueue found = connection.catalog.definition(name.name);
    if (found.outcome.failed() || found.hold.queue->type != MQQT_ALIAS) return {};
    const objects::ObjectDefinition &alias = found.hold.queue->object;
    return alias.number(MQIA_BASE_TYPE) == MQOT_TOPIC ? std::string(alias.text(MQCA_BASE_OBJECT_NAME)) : std::string();
}

void bringUpToDate(Connection &connection, OpenTopic &topic)
{
    if (connection.subscriptions == nullptr) connection.subscriptions = std::make_unique<Subscriptions>();
    const std::uint64_t definitions = connection.store->definitionVersion();
    const std::uint64_t subscriptions = connection.subscriptions->refresh(*connection.store);
    const bool sameAttributes = topic.known && topic.attributesVersion == definitions;
    if (!sameAttributes) {
        topic.attributes = connection.catalog.topics()->attributesOf(topic.topic);
        topic.defaults.defPriority = topic.attributes.defPriority;
        topic.defaults.defPersistence = topic.attributes.defPersistence;
    }
    // Which wildcards reach the topic is one of its attributes.
    if (!sameAttributes || topic.subscribersVersion != subscriptions)
        topic.subscribers = connection.subscriptions->matching(topic.topic, topic.attributes);
    topic.attributesVersion = definitions;
    topic.subscribersVersion = subscriptions;
    topic.known = true;
}

} // namespace mqrig::qmgr::core
