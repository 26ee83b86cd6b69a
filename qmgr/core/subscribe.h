// MQSUB, MQSUBRQ and MQCLOSE of a subscription.
#pragma once

#include <string>
#include <string_view>

#include "cmqc.h"
#include "qmgr/core/connection.h"
#include "qmgr/core/object_handles.h"
#include "qmgr/objects/subscription.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::core {

struct SubscribeRequest {
    MQLONG options = MQSO_NONE; // checked: no two that exclude each other
    std::string_view topicObject;
    std::string topicString;
    std::string name;
    std::string userData;
    std::string selector;
    MQLONG expiry = MQEI_UNLIMITED;
    MQLONG priority = MQPRI_PRIORITY_AS_PUBLISHED;
    MQLONG level = 1;
    objects::Identifier24 correlId{};
    std::array<MQBYTE, 32> accountingToken{};
    std::array<char, 32> applIdentityData{};
    MQHOBJ queue = MQHO_NONE; // an open queue for the publications

    bool has(MQLONG anyOf) const { return (options & anyOf) != 0; }
};

struct Subscribed {
    MQHOBJ queue = MQHO_NONE; // where publications are got from
    MQHOBJ hsub = MQHO_UNUSABLE_HOBJ;
};

// Makes, resumes or alters a subscription and opens it. Reasons beside those of resolveTopic, mayOpen and the store:
// MQRC_NO_SUBSCRIPTION, MQRC_SUB_ALREADY_EXISTS, MQRC_SUBSCRIPTION_IN_USE, MQRC_HOBJ_ERROR, MQRC_SUB_INHIBITED,
// MQRC_SELECTION_NOT_AVAILABLE, MQRC_SELECTOR_ALWAYS_FALSE, MQRC_DURABILITY_NOT_ALLOWED, MQRC_INVALID_DESTINATION,
// MQRC_DUPLICATE_GROUP_SUB, MQRC_PUBSUB_INHIBITED; for what cannot be altered MQRC_DURABILITY_NOT_ALTERABLE,
// MQRC_TOPIC_NOT_ALTERABLE, MQRC_SUBLEVEL_NOT_ALTERABLE, MQRC_GROUPING_NOT_ALTERABLE, MQRC_DEST_CLASS_NOT_ALTERABLE,
// MQRC_SELECTOR_NOT_ALTERABLE; and those of sendRetained, where no subscription is made either.
Outcome subscribe(Connection &connection, const SubscribeRequest &request, Subscribed &subscribed);

// MQSUBRQ: sends the retained publications once more. MQRC_NO_RETAINED_MSG, and those of sendRetained.
Outcome requestPublications(Connection &connection, const OpenSubscription &subscription, MQLONG &number);

// MQCLOSE of the handle of a subscription; `options`: MQCO_KEEP_SUB, MQCO_REMOVE_SUB. The handle stays where the answer
// is MQRC_OPTION_NOT_VALID_FOR_TYPE.
Outcome closeSubscription(Connection &connection, MQHOBJ hsub, MQLONG options);

// Opens it once more in another life of the queue manager.
Outcome reopenSubscription(Connection &connection, OpenObject &object);

} // namespace mqrig::qmgr::core
