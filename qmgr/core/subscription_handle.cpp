#include <memory>

#include "qmgr/core/retained.h"
#include "qmgr/core/subscribe.h"
#include "qmgr/core/subscriptions.h"
#include "qmgr/objects/publish_subscribe.h"

namespace mqrig::qmgr::core {

using objects::Handle;
using objects::StoredSubscription;

Outcome requestPublications(Connection &connection, const OpenSubscription &subscription, MQLONG &number)
{
    const auto subscriber = subscriberOf(subscription.id, subscription.subscription);
    if (subscriber == nullptr) return failure(MQRC_INVALID_SUBSCRIPTION);
    const Outcome sent = sendRetained(connection, *subscriber, number);
    if (sent.failed()) return sent;
    return number == 0 ? failure(MQRC_NO_RETAINED_MSG) : sent;
}

Outcome closeSubscription(Connection &connection, MQHOBJ hsub, MQLONG options)
{
    const OpenSubscription &closing = *connection.handles.find(hsub)->subscription;
    const bool deletes = (options & (MQCO_DELETE | MQCO_DELETE_PURGE)) != 0;
    if (deletes || (closing.owned && (options & MQCO_KEEP_SUB) != 0)) return failure(MQRC_OPTION_NOT_VALID_FOR_TYPE);
    const std::unique_ptr<OpenObject> object = connection.handles.remove(hsub);
    const OpenSubscription &closed = *object->subscription;
    store::Attachment &store = *connection.store;
    Outcome gone;
    if (closed.owned || (options & MQCO_REMOVE_SUB) != 0) {
        StoredSubscription removed{objects::definitionOf(closed.subscription), closed.subscription};
        removed.definition.queue = closed.id;
        gone = objects::removeSubscription(store, removed, Handle::Own);
        if (closed.owned) return gone;
    }
    const Outcome counted = store.update(0, [&](store::WriteTransaction &transaction) {
        transaction.addOpens(closed.id, -oneUse);
        return success();
    });
    return gone.failed() && gone.Reason != MQRC_NO_SUBSCRIPTION ? gone : counted;
}

Outcome reopenSubscription(Connection &connection, OpenObject &object)
{
    OpenSubscription &open = *object.subscription;
    store::Attachment &store = *connection.store;
    if (open.owned) {
        store::Definition definition = objects::definitionOf(open.subscription);
        if (const Outcome defined = store.defineTemporary(definition); defined.failed()) return defined;
        open.id = definition.queue;
    } else {
        const auto stored = store.findDefinition(store::subscriptions, objects::keyOf(open.subscription));
        if (!stored) return failure(MQRC_NO_SUBSCRIPTION);
        open.id = stored->queue;
    }
    return store.update(0, [&](store::WriteTransaction &transaction) {
        if (transaction.queue(open.id).opens.input != 0) return failure(MQRC_SUBSCRIPTION_IN_USE);
        transaction.addOpens(open.id, oneUse);
        return success();
    });
}

} // namespace mqrig::qmgr::core
