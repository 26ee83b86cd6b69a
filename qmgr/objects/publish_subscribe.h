// What the store has of publish/subscribe: subscriptions with the queues that were made for them, retained
// publications.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "qmgr/objects/object_definition.h"
#include "qmgr/objects/subscription.h"
#include "qmgr/store/attachment.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::objects {

// A stored subscription.
struct StoredSubscription {
    store::Definition definition;
    Subscription subscription;
};
// As the store has it, without its number.
store::Definition definitionOf(const Subscription &subscription);
// By its name; one that has expired is removed and not found.
std::optional<StoredSubscription> findSubscription(store::Attachment &attachment, std::string_view name);

// Removes the subscription and, if that was made for it, its queue with all messages. MQRC_SUBSCRIPTION_IN_USE where a
// handle is open on a durable one, unless `handle` says that this is the caller's own. MQRC_NO_SUBSCRIPTION.
enum class Handle { None, Own };
Outcome removeSubscription(store::Attachment &attachment, const StoredSubscription &removed, Handle handle);

// Removes the queues of durable subscriptions that are no more and that could not be removed with them, because units
// of work had messages there.
void sweepManagedQueues(store::Attachment &attachment);

inline constexpr std::string_view durableQueuePrefix = "SYSTEM.MANAGED.DURABLE.";
inline constexpr std::string_view nonDurableQueuePrefix = "SYSTEM.MANAGED.NDURABLE.";

// A queue as a model describes it, without a name.
ObjectDefinition queueLike(const ObjectDefinition &model);

// Removes the retained publications of the topic. They stand on SYSTEM.RETAINED.PUB.QUEUE with the digest of their
// topic as CorrelId. MQRC_NO_RETAINED_MSG.
Outcome clearRetained(store::Attachment &attachment, std::string_view topic);

} // namespace mqrig::qmgr::objects
