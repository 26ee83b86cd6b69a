#include "qmgr/objects/publish_subscribe.h"

#include <set>
#include <utility>
#include <vector>

#include "qmgr/objects/attribute.h"
#include "qmgr/objects/system_objects.h"
#include "qmgr/store/seams.h"

namespace mqrig::qmgr::objects {
namespace {

std::optional<Subscription> subscriptionIn(const store::Definition &stored)
{
    return Subscription::decode(stored.bytes);
}

// A queue that was made for a durable subscription. Others may have messages of it in their units of work: it stays
// then, and the next sweep removes it.
Outcome removeQueue(store::Attachment &attachment, const std::string &name)
{
    const auto mayGo = [](const store::QueueStatus &status) {
        return status.held > 0 || status.uncommitted > 0 ? failure(MQRC_Q_NOT_EMPTY) : success();
    };
    const Outcome first = attachment.remove(MQOT_Q, name, mayGo);
    return first.Reason == MQRC_Q_NOT_EMPTY && attachment.releaseDead() ? attachment.remove(MQOT_Q, name, mayGo)
                                                                        : first;
}

void removeTemporaryQueue(store::Attachment &attachment, const std::string &name)
{
    const auto queue = attachment.findDefinition(MQOT_Q, name);
    if (queue && store::isTemporary(queue->queue)) (void)attachment.removeTemporary(*queue);
}

} // namespace

store::Definition definitionOf(const Subscription &subscription)
{
    store::Definition definition;
    definition.type = store::subscriptions;
    definition.name = keyOf(subscription);
    definition.bytes = subscription.encode();
    return definition;
}

std::optional<StoredSubscription> findSubscription(store::Attachment &attachment, std::string_view name)
{
    auto stored = attachment.findDefinition(store::subscriptions, subscriptionKey(name));
    if (!stored) return std::nullopt;
    auto subscription = subscriptionIn(*stored);
    if (!subscription || subscription->name != name) return std::nullopt;
    StoredSubscription found{std::move(*stored), std::move(*subscription)};
    if (!found.subscription.expired(store::currentTime())) return found;
    if (removeSubscription(attachment, found, Handle::None).Reason == MQRC_SUBSCRIPTION_IN_USE) return found;
    return std::nullopt;
}

Outcome removeSubscription(store::Attachment &attachment, const StoredSubscription &removed, Handle handle)
{
    const Subscription &subscription = removed.subscription;
    if (store::isTemporary(removed.definition.queue)) {
        // That of another connection goes with that connection only.
        if (handle != Handle::Own) return failure(MQRC_SUBSCRIPTION_IN_USE);
        const Outcome gone = attachment.removeTemporary(removed.definition);
        if (subscription.managed) removeTemporaryQueue(attachment, subscription.queue);
        return gone;
    }
    const auto mayGo = [handle](const store::QueueStatus &status) {
        const bool open = status.opens.input > (handle == Handle::Own ? 1 : 0);
        return open ? failure(MQRC_SUBSCRIPTION_IN_USE) : success();
    };
    const auto remove = [&] { return attachment.remove(store::subscriptions, removed.definition.name, mayGo); };
    Outcome gone = remove();
    if (gone.Reason == MQRC_SUBSCRIPTION_IN_USE && attachment.releaseDead()) gone = remove();
    if (gone.Reason == MQRC_UNKNOWN_OBJECT_NAME) return failure(MQRC_NO_SUBSCRIPTION);
    if (gone.failed()) return gone;
    if (subscription.managed) {
        (void)removeQueue(attachment, subscription.queue);
        sweepManagedQueues(attachment);
    }
    return gone;
}

void sweepManagedQueues(store::Attachment &attachment)
{
    // The queues first: a subscription is there before its queue is, so none is taken for one that has lost its own.
    std::vector<std::string> queues;
    for (const store::Definition &queue : attachment.definitions(MQOT_Q))
        if (queue.name.starts_with(durableQueuePrefix) && !store::isTemporary(queue.queue))
            queues.push_back(queue.name);
    if (queues.empty()) return;
    std::set<std::string> used;
    for (const store::Definition &stored : attachment.definitions(store::subscriptions))
        if (const auto subscription = subscriptionIn(stored)) used.insert(subscription->queue);
    for (const std::string &queue : queues)
        if (!used.contains(queue)) (void)removeQueue(attachment, queue);
}

ObjectDefinition queueLike(const ObjectDefinition &model)
{
    ObjectDefinition queue(ObjectKind::LocalQueue, {});
    for (const Attribute &attribute : attributes())
        if (contains(attribute.kinds, ObjectKind::ModelQueue) && isStored(attribute.access))
            queue.set(attribute, model.value(attribute));
    queue.stampCreated();
    return queue;
}

Outcome clearRetained(store::Attachment &attachment, std::string_view topic)
{
    const auto queue = attachment.findDefinition(MQOT_Q, retainedQueue);
    if (!queue) return failure(MQRC_NO_RETAINED_MSG);
    const Identifier24 digest = digestOf(topic);
    std::vector<store::TakenMessage> taken;
    const Outcome locked = attachment.update(0, [&](store::WriteTransaction &transaction) {
        taken.clear();
        {
            store::MessageCursor cursor(transaction, queue->queue, store::Index::CorrelId, store::MessageId(digest));
            for (bool more = cursor.first(); more; more = cursor.next())
                taken.push_back({cursor.key(), store::isPersistent(cursor.header())});
        }
        for (const store::TakenMessage &message : taken)
            transaction.lock(message.key);
        return success();
    });
    if (locked.failed()) return locked;
    if (taken.empty()) return failure(MQRC_NO_RETAINED_MSG);
    const Outcome committed = attachment.commit({{}, taken});
    return committed.ok() ? committed : failure(committed.Reason);
}

} // namespace mqrig::qmgr::objects
