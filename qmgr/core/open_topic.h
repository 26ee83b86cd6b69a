// What handles of topics and of subscriptions have open.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "cmqc.h"
#include "qmgr/objects/queue_definition.h"
#include "qmgr/objects/subscription.h"
#include "qmgr/objects/topic_tree.h"
#include "qmgr/store/message.h"

namespace mqrig::qmgr::core {

struct Subscriber;

// A topic that is open for publishing, with what was known of it at the last publication.
struct OpenTopic {
    std::string topic; // resolved
    objects::TopicAttributes attributes;
    objects::QueueDefinition defaults; // what a queue would say of priority and persistence
    std::vector<std::shared_ptr<Subscriber>> subscribers;
    std::uint64_t attributesVersion = 0;  // of the definitions as of which the attributes are right; 0: of none
    std::uint64_t subscribersVersion = 0; // the same of the subscriptions
    bool known = false;
};

// A subscription that this connection has open.
struct OpenSubscription {
    objects::Subscription subscription;
    store::QueueId id = 0; // its number in the store
    bool owned = false;    // goes with the handle: it is not durable
};

} // namespace mqrig::qmgr::core
