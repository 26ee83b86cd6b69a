#include "qmgr/command/topic_status.h"

#include <algorithm>
#include <map>
#include <set>
#include <string_view>
#include <utility>

#include "cmqcfc.h"
#include "qmgr/command/object_commands.h"
#include "qmgr/command/status_attributes.h"
#include "qmgr/command/status_row.h"
#include "qmgr/command/subscription_attributes.h"
#include "qmgr/command/subscription_commands.h"
#include "qmgr/objects/object_name.h"
#include "qmgr/objects/system_objects.h"
#include "qmgr/properties/record.h"

namespace mqrig::qmgr::command {
namespace {

using objects::Access;
using objects::Attribute;
using objects::AttributeValue;
using objects::ObjectKind;
using objects::StoredSubscription;
using objects::Word;

constexpr Word noYes[] = {{"NO", 0}, {"YES", 1}};
constexpr Word local[] = {{"LOCAL", MQPSST_LOCAL}};
constexpr Word states[] = {{"ACTIVE", MQPS_STATUS_ACTIVE}, {"INACTIVE", MQPS_STATUS_INACTIVE}};

constexpr Attribute publishSubscribeRows[] = {
    statusNumber("TYPE", MQIACF_PUBSUB_STATUS, ObjectKind::QueueManager, local, Access::Identity),
    statusText("QMNAME", MQCA_Q_MGR_NAME, ObjectKind::QueueManager, MQ_Q_MGR_NAME_LENGTH, Access::Identity),
    statusNumber("STATUS", MQIACF_PS_STATUS_TYPE, ObjectKind::QueueManager, states),
    statusNumber("SUBCOUNT", MQIA_SUB_COUNT, ObjectKind::QueueManager),
    statusNumber("TPCOUNT", MQIA_TOPIC_NODE_COUNT, ObjectKind::QueueManager),
};

// The row of a subscription's attribute, as something that is only shown.
Attribute shown(MQLONG selector, Access access)
{
    const auto rows = subscriptionAttributes();
    Attribute row = *std::ranges::find(rows, selector, &Attribute::selector);
    row.access = access;
    return row;
}

std::vector<Attribute> makeSubscriptionRows()
{
    return {
        shown(MQCACF_SUB_NAME, Access::Identity),
        shown(MQBACF_SUB_ID, Access::Identity),
        statusText("ACTCONN", MQBACF_CONNECTION_ID, ObjectKind::Topic, connectionIdDigits),
        shown(MQIACF_DURABLE_SUBSCRIPTION, Access::Dynamic),
        shown(MQIACF_SUB_TYPE, Access::Dynamic),
        shown(MQCACF_SUB_USER_ID, Access::Dynamic),
        shown(MQCA_TOPIC_STRING, Access::Dynamic),
    };
}

// What a topic has of its own, and what it has from topic objects, in the order of the keywords.
std::vector<Attribute> makeTopicRows()
{
    std::vector<Attribute> rows{
        statusText("TOPICSTR", MQCA_TOPIC_STRING, ObjectKind::Topic, MQ_TOPIC_STR_LENGTH, Access::Identity),
        statusText("ADMIN", MQCA_ADMIN_TOPIC_NAME, ObjectKind::Topic, MQ_TOPIC_NAME_LENGTH),
        statusNumber("RETAINED", MQIACF_RETAINED_PUBLICATION, ObjectKind::Topic, noYes),
        statusNumber("SUBCOUNT", MQIA_SUB_COUNT, ObjectKind::Topic),
    };
    for (const MQLONG selector :
         {MQIA_DEF_PUT_RESPONSE_TYPE, MQIA_DEF_PRIORITY, MQIA_TOPIC_DEF_PERSISTENCE, MQIA_DURABLE_SUB,
          MQCA_MODEL_DURABLE_Q, MQCA_MODEL_NON_DURABLE_Q, MQIA_NPM_DELIVERY, MQIA_PM_DELIVERY, MQIA_INHIBIT_PUB,
          MQIA_PUB_SCOPE, MQIA_INHIBIT_SUB, MQIA_SUB_SCOPE, MQIA_USE_DEAD_LETTER_Q}) {
        rows.push_back(*objects::findSelector(ObjectKind::Topic, selector));
        rows.back().access = Access::Dynamic;
    }
    std::ranges::sort(rows.begin() + 1, rows.end(), {}, &Attribute::keyword);
    return rows;
}

std::string idOf(const store::ConnectionInfo &connection, const std::string &queueManager)
{
    return objects::hexadecimal(connectionId(connection, queueManager));
}

// The topics of retained publications.
std::set<std::string> retainedTopics(store::Attachment &attachment)
{
    std::set<std::string> topics;
    const auto queue = attachment.findDefinition(MQOT_Q, objects::retainedQueue);
    if (!queue) return topics;
    const Outcome read = attachment.read([&](store::ReadTransaction &transaction) {
        topics.clear();
        store::MessageCursor cursor(transaction, queue->queue);
        for (bool more = cursor.first(); more; more = cursor.next()) {
            const std::size_t properties = cursor.header().coreLength;
            const std::span<const std::byte> stored = cursor.body();
            topics.insert(properties::textIn(stored.first(std::min(properties, stored.size())), "mqps.Top"));
        }
        return success();
    });
    static_cast<void>(read);
    return topics;
}

} // namespace

std::vector<SubscriptionStatus> inquireSubscriptionStatus(store::Attachment &attachment, const std::string &genericName)
{
    std::map<store::QueueId, std::string> connections; // that have them open
    for (const store::OpenQueue &open : attachment.openQueues())
        connections.emplace(open.queue, idOf(open.connection, attachment.queueManagerName()));
    std::vector<SubscriptionStatus> found;
    for (StoredSubscription &stored : inquireSubscriptions(attachment, genericName)) {
        const auto connection = connections.find(stored.definition.queue);
        found.push_back(
            {std::move(stored.subscription), connection == connections.end() ? std::string() : connection->second});
    }
    return found;
}

std::vector<TopicStatus> inquireTopicStatus(store::Attachment &attachment)
{
    const objects::TopicTree tree(attachment.definitions(MQOT_TOPIC));
    std::map<std::string, MQLONG> subscriptions; // on each topic string
    for (const StoredSubscription &stored : inquireSubscriptions(attachment, "*"))
        ++subscriptions[stored.subscription.topic];
    const std::set<std::string> retained = retainedTopics(attachment);

    std::set<std::string, std::less<>> nodes;
    const auto add = [&nodes](std::string_view topic) {
        for (std::optional<std::string_view> at = topic; at; at = objects::parentTopic(*at))
            nodes.emplace(*at);
    };
    add({});
    tree.forEach([&](const std::string &topic, const objects::ObjectDefinition &) { add(topic); });
    for (const auto &[topic, number] : subscriptions)
        add(topic);
    for (const std::string &topic : retained)
        add(topic);

    std::vector<TopicStatus> found;
    for (const std::string &topic : nodes) {
        const auto subscribed = subscriptions.find(topic);
        found.push_back({.topic = topic,
                         .object = topic.empty() ? std::string(objects::baseTopic) : std::string(tree.objectAt(topic)),
                         .attributes = tree.attributesOf(topic),
                         .subscriptions = subscribed == subscriptions.end() ? 0 : subscribed->second,
                         .retained = retained.contains(topic)});
    }
    return found;
}

PublishSubscribeStatus inquirePublishSubscribe(store::Attachment &attachment)
{
    const bool off = inquireQueueManager(attachment).queueManager.definition.number(MQIA_PUBSUB_MODE) == MQPSM_DISABLED;
    return {.queueManager = attachment.queueManagerName(),
            .status = off ? MQPS_STATUS_INACTIVE : MQPS_STATUS_ACTIVE,
            .subscriptions = static_cast<MQLONG>(inquireSubscriptions(attachment, "*").size()),
            .topics = static_cast<MQLONG>(inquireTopicStatus(attachment).size())};
}

std::span<const Attribute> subscriptionStatusAttributes()
{
    static const std::vector<Attribute> rows = makeSubscriptionRows();
    return rows;
}

std::span<const Attribute> topicStatusAttributes()
{
    static const std::vector<Attribute> rows = makeTopicRows();
    return rows;
}

std::span<const Attribute> publishSubscribeAttributes()
{
    return publishSubscribeRows;
}

AttributeValue statusOf(const SubscriptionStatus &status, const Attribute &attribute)
{
    if (attribute.selector == MQBACF_CONNECTION_ID) return {0, status.connection};
    return valueOf(status.subscription, attribute);
}

AttributeValue statusOf(const TopicStatus &status, const Attribute &attribute)
{
    switch (attribute.selector) {
    case MQCA_TOPIC_STRING:
        return {0, status.topic};
    case MQCA_ADMIN_TOPIC_NAME:
        return {0, status.object};
    case MQIACF_RETAINED_PUBLICATION:
        return {status.retained ? 1 : 0, {}};
    case MQIA_SUB_COUNT:
        return {status.subscriptions, {}};
    default:
        if (attribute.isText()) return {0, std::string(status.attributes.text(attribute.selector))};
        return {status.attributes.number(attribute.selector), {}};
    }
}

AttributeValue statusOf(const PublishSubscribeStatus &status, const Attribute &attribute)
{
    switch (attribute.selector) {
    case MQIACF_PUBSUB_STATUS:
        return {MQPSST_LOCAL, {}};
    case MQCA_Q_MGR_NAME:
        return {0, status.queueManager};
    case MQIACF_PS_STATUS_TYPE:
        return {status.status, {}};
    case MQIA_SUB_COUNT:
        return {status.subscriptions, {}};
    case MQIA_TOPIC_NODE_COUNT:
        return {status.topics, {}};
    default:
        return {};
    }
}

} // namespace mqrig::qmgr::command
