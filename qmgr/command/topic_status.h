// What is known of subscriptions and topics as of now: rows like those of the attribute table, with the numbers of
// command messages as selectors. DISPLAY SBSTATUS, DISPLAY TPSTATUS and DISPLAY PUBSUB read them.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "cmqc.h"
#include "qmgr/objects/attribute.h"
#include "qmgr/objects/attribute_value.h"
#include "qmgr/objects/subscription.h"
#include "qmgr/objects/topic_tree.h"
#include "qmgr/store/attachment.h"

namespace mqrig::qmgr::command {

// A subscription and who has it open.
struct SubscriptionStatus {
    objects::Subscription subscription;
    std::string connection; // its id, in hexadecimal digits; empty: nobody
};
// Those whose name fits, in the order of their names.
std::vector<SubscriptionStatus> inquireSubscriptionStatus(store::Attachment &attachment,
                                                          const std::string &genericName);

// A node of the topic tree: a topic that a topic object, a subscription or a retained publication is on, or one above
// such a topic.
struct TopicStatus {
    std::string topic;
    std::string object; // the topic object of this very topic; empty: there is none
    objects::TopicAttributes attributes;
    MQLONG subscriptions = 0; // on this very topic string
    bool retained = false;
};
std::vector<TopicStatus> inquireTopicStatus(store::Attachment &attachment);

struct PublishSubscribeStatus {
    std::string queueManager;
    MQLONG status = 0; // MQPS_STATUS_
    MQLONG subscriptions = 0;
    MQLONG topics = 0; // nodes of the tree
};
PublishSubscribeStatus inquirePublishSubscribe(store::Attachment &attachment);

std::span<const objects::Attribute> subscriptionStatusAttributes();
std::span<const objects::Attribute> topicStatusAttributes();
std::span<const objects::Attribute> publishSubscribeAttributes();

objects::AttributeValue statusOf(const SubscriptionStatus &status, const objects::Attribute &attribute);
objects::AttributeValue statusOf(const TopicStatus &status, const objects::Attribute &attribute);
objects::AttributeValue statusOf(const PublishSubscribeStatus &status, const objects::Attribute &attribute);

} // namespace mqrig::qmgr::command
