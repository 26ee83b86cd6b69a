// The subscriptions of the queue manager as a publisher knows them: parsed once, kept until any of them changes.
//
// Belongs to one connection, like the catalog, and is used by one call at a time.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "cmqc.h"
#include "qmgr/core/message_selector.h"
#include "qmgr/objects/catalog.h"
#include "qmgr/objects/subscription.h"
#include "qmgr/objects/topic_tree.h"
#include "qmgr/store/attachment.h"
#include "qmgr/store/transaction.h"

namespace mqrig::qmgr::core {

struct Subscriber {
    store::QueueId id = 0; // the number of the subscription in the store
    objects::Subscription subscription;
    objects::TopicPattern pattern;
    std::shared_ptr<const MessageSelector> selector; // null: everything
    objects::QueueHold destination;                  // once a publication went there
};
// Null where topic or selector are none: a damaged record.
std::shared_ptr<Subscriber> subscriberOf(store::QueueId id, objects::Subscription subscription);

// What a handle counts as on its subscription: one at a time.
inline constexpr store::OpenCounts oneUse{.input = 1, .exclusive = 1, .output = 0, .browse = 0, .together = 0};

class Subscriptions {
public:
    using Found = std::vector<std::shared_ptr<Subscriber>>;

    // Brings it up to date; the version as of which it is right.
    std::uint64_t refresh(store::Attachment &attachment);
    // Those that get what is published on this topic.
    Found matching(std::string_view topic, const objects::TopicAttributes &attributes) const;
    // Everybody, in no order.
    Found all() const;

private:
    void add(const store::Definition &stored);

    std::unordered_multimap<std::string, std::shared_ptr<Subscriber>> exact_; // by topic
    Found wild_;
    std::uint64_t version_ = 0;
    bool known_ = false;
};

} // namespace mqrig::qmgr::core
