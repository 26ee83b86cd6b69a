#include "qmgr/core/publish.h"

#include <algorithm>
#include <optional>
#include <set>
#include <tuple>

#include "qmgr/core/groups.h"
#include "qmgr/core/private_unit.h"
#include "qmgr/core/publication.h"
#include "qmgr/core/put_properties.h"
#include "qmgr/core/put_steps.h"
#include "qmgr/core/retained.h"
#include "qmgr/core/subscriptions.h"
#include "qmgr/core/system_put.h"
#include "qmgr/core/topic.h"
#include "qmgr/objects/object_name.h"
#include "qmgr/store/seams.h"

namespace mqrig::qmgr::core {
namespace {

using Chosen = std::vector<std::shared_ptr<Subscriber>>;

// The subscriptions that this connection has open.
std::set<store::QueueId> ownSubscriptions(const Connection &connection)
{
    std::set<store::QueueId> own;
    connection.handles.forEach([&](const OpenObject &object) {
        if (object.subscription != nullptr) own.insert(object.subscription->id);
        return true;
    });
    return own;
}

// Who of those that match gets the publication now: those of the highest level that the publication reaches, and of
// each group one.
Chosen choose(const Connection &connection, const OpenTopic &topic, const PutRequest &request, MQLONG level,
              const store::NewMessage &message)
{
    Chosen chosen;
    const std::set<store::QueueId> own =
        request.has(MQPMO_NOT_OWN_SUBS) ? ownSubscriptions(connection) : std::set<store::QueueId>();
    const std::int64_t now = store::currentTime();
    MQLONG highest = -1;
    for (const auto &subscriber : topic.subscribers) {
        const objects::Subscription &subscription = subscriber->subscription;
        if (subscription.onRequest || subscription.expired(now) || own.contains(subscriber->id)) continue;
        if (subscription.level > level) continue;
        if (subscriber->selector != nullptr && !subscriber->selector->matches(message.header, message.body)) continue;
        highest = std::max(highest, subscription.level);
        chosen.push_back(subscriber);
    }
    std::set<std::tuple<std::string, std::string, objects::Identifier24>> groups;
    std::erase_if(chosen, [&](const std::shared_ptr<Subscriber> &subscriber) {
        const objects::Subscription &subscription = subscriber->subscription;
        if (subscription.level != highest) return true;
        return subscription.grouped &&
               !groups.emplace(subscription.queue, subscription.queueManager, subscription.correlId).second;
    });
    return chosen;
}

// The queue that is made for a subscription comes after it and goes with it: nobody waits for the publication yet, or
// any more.
bool isWithoutQueue(const Subscriber &subscriber, const Outcome &put)
{
    return subscriber.subscription.managed && (put.Reason == MQRC_UNKNOWN_OBJECT_NAME || put.Reason == MQRC_Q_DELETED);
}

bool mustBeDelivered(const objects::TopicAttributes &attributes, const Subscriber &subscriber, const MQMD &md)
{
    const MQLONG rule =
        md.Persistence == MQPER_PERSISTENT ? attributes.persistentDelivery : attributes.nonPersistentDelivery;
    return rule == MQDLV_ALL || (rule == MQDLV_ALL_DUR && subscriber.subscription.durable);
}

// `reached` counts those who are there to get it.
Outcome deliver(Connection &connection, UnitOfWork &unit, const OpenTopic &topic, const Publication &publication,
                Subscriber &subscriber, std::size_t &reached)
{
    const Outcome put = publication.putFor(connection, unit, subscriber);
    if (isWithoutQueue(subscriber, put)) return success();
    ++reached;
    if (!put.failed() || isOfStore(put)) return put;
    if (topic.attributes.useDeadLetterQueue != MQUSEDLQ_NO) {
        const Outcome saved = publication.putOnDeadLetterQueueFor(connection, unit, subscriber, put.Reason);
        if (!saved.failed() || isOfStore(saved)) return saved;
    }
    return mustBeDelivered(topic.attributes, subscriber, publication.message().header.md)
               ? failure(MQRC_PUBLICATION_FAILURE)
               : success();
}

// All of it or nothing.
Outcome deliverToAll(Connection &connection, UnitOfWork &unit, const OpenTopic &topic, const Chosen &chosen,
                     const PutRequest &request, const store::NewMessage &message, std::size_t &reached)
{
    AllOrNone all(*connection.store, unit);
    const Publication publication(message, topic.topic, Retained::No);
    for (const auto &subscriber : chosen)
        if (const Outcome delivered = deliver(connection, unit, topic, publication, *subscriber, reached);
            delivered.failed())
            return delivered;
    if (request.has(MQPMO_RETAIN))
        if (const Outcome kept = retain(connection, unit, topic.topic, publication.common()); kept.failed())
            return kept;
    all.keep();
    return success();
}

// What the descriptor of any publication needs.
Outcome complete(Connection &connection, const OpenTopic &topic, const PutRequest &request, store::NewMessage &message)
{
    MQMD &md = message.header.md;
    if (request.has(MQPMO_SUPPRESS_REPLYTO)) {
        objects::fillField(md.ReplyToQ, sizeof md.ReplyToQ, {});
        objects::fillField(md.ReplyToQMgr, sizeof md.ReplyToQMgr, {});
    }
    Outcome completed = completeDescriptor(connection, topic.defaults, request, md);
    if (completed.failed()) return completed;
    // Each subscriber's queue has its own limit: a publication is not cut.
    md.MsgFlags &= ~MQMF_SEGMENTATION_ALLOWED;
    if (standsAlone(request, md)) {
        makeSingle(md);
    } else {
        GroupPosition behind;
        const Outcome placed = placeInGroup(connection, request, bodyLengthOf(message), md, behind);
        if (placed.failed()) return placed;
        if (completed.ok()) completed = placed;
        if (request.logicalOrder != nullptr) (*request.logicalOrder)->put = behind;
    }
    message.header.putTime = store::currentTime();
    const Outcome context = completeContext(connection, request, message.header.putTime, md);
    return context.failed() ? context : completed;
}

} // namespace

Outcome publish(Connection &connection, OpenTopic &topic, const PutRequest &request, MQLONG level,
                store::NewMessage &message)
{
    if (request.has(MQPMO_FAIL_IF_QUIESCING) && connection.store->state() == store::State::Quiescing)
        return failure(MQRC_Q_MGR_QUIESCING);
    if (request.has(MQPMO_SYNCPOINT) && connection.unit.lost()) return failure(MQRC_BACKED_OUT);
    if (const Outcome may = mayPublishOrSubscribe(connection); may.failed()) return may;
    std::optional<store::Attachment::RetainedTurn> turn;
    if (request.has(MQPMO_RETAIN)) turn.emplace(*connection.store);
    bringUpToDate(connection, topic);
    if (topic.attributes.publish == MQTA_PUB_INHIBITED) return failure(MQRC_PUT_INHIBITED);
    const std::size_t most = static_cast<std::size_t>(connection.queueManager().maxMsgLength);
    if (bodyLengthOf(message) > most) return failure(MQRC_MSG_TOO_BIG_FOR_Q_MGR);
    const Outcome completed = complete(connection, topic, request, message);
    if (completed.failed()) return completed;

    const Chosen chosen = choose(connection, topic, request, level, message);
    std::size_t reached = 0;
    if (request.has(MQPMO_SYNCPOINT)) {
        if (connection.unit.size() >= static_cast<std::size_t>(connection.queueManager().maxUncommittedMsgs))
            return failure(MQRC_SYNCPOINT_LIMIT_REACHED);
        const Outcome delivered = deliverToAll(connection, connection.unit, topic, chosen, request, message, reached);
        if (delivered.failed()) return delivered;
    } else {
        PrivateUnit unit(connection);
        const Outcome delivered = deliverToAll(connection, *unit, topic, chosen, request, message, reached);
        if (delivered.failed()) return delivered;
        if (const Outcome committed = unit.commit(); committed.failed()) return committed;
    }
    if (reached == 0 && request.has(MQPMO_WARN_IF_NO_SUBS_MATCHED)) return warning(MQRC_NO_SUBS_MATCHED);
    return completed;
}

} // namespace mqrig::qmgr::core
