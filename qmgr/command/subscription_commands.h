// What administration does to subscriptions: they are durable, and nobody need be connected for them.
#pragma once

#include <string>
#include <vector>

#include "qmgr/command/object_commands.h"
#include "qmgr/objects/publish_subscribe.h"
#include "qmgr/store/attachment.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::command {

struct SubscriptionDefinition {
    std::string name;
    std::string like;                   // the subscription whose attributes are taken; empty: none
    std::vector<Assignment> attributes; // of rows of subscription_attributes.h
    Replace replace = Replace::No;
};
// Makes a subscription; one with DESTCLAS(MANAGED) gets its queue with it. With Replace one that is there gets the
// attributes that a new one would have, as far as they can be altered; its identifiers and its queue stay.
// MQRC_SUB_ALREADY_EXISTS, MQRC_NO_SUBSCRIPTION for `like`, MQRC_UNKNOWN_OBJECT_NAME for the topic object,
// MQRC_TOPIC_STRING_ERROR, MQRC_SUB_INHIBITED, MQRC_DURABILITY_NOT_ALLOWED, MQRC_INVALID_DESTINATION,
// MQRC_CORREL_ID_ERROR for DESTCORL, MQRC_SELECTION_NOT_AVAILABLE and MQRC_SELECTOR_ALWAYS_FALSE for SELECTOR, and
// those of alterSubscription; MQRC_DURABILITY_NOT_ALTERABLE.
Outcome defineSubscription(store::Attachment &attachment, const SubscriptionDefinition &definition);

// Changes what a subscription can change: no attribute that says to what, how and at which level it subscribes, nor the
// class of its destination: MQRC_TOPIC_NOT_ALTERABLE, MQRC_SELECTOR_NOT_ALTERABLE, MQRC_SUBLEVEL_NOT_ALTERABLE,
// MQRC_DEST_CLASS_NOT_ALTERABLE. MQRC_NO_SUBSCRIPTION.
Outcome alterSubscription(store::Attachment &attachment, const std::string &name,
                          const std::vector<Assignment> &attributes);

// MQRC_NO_SUBSCRIPTION, MQRC_SUBSCRIPTION_IN_USE.
Outcome deleteSubscription(store::Attachment &attachment, const std::string &name);

// Those whose name fits, durable or not, in the order of their names.
std::vector<objects::StoredSubscription> inquireSubscriptions(store::Attachment &attachment,
                                                              const std::string &genericName);

} // namespace mqrig::qmgr::command
