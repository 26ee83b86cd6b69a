#include <algorithm>
#include <cstring>
#include <string>

#include "cmqcfc.h"
#include "qmgr/api/api.h"
#include "qmgr/api/charv.h"
#include "qmgr/api/option_table.h"
#include "qmgr/api/selection_string.h"
#include "qmgr/api/structures.h"
#include "qmgr/core/subscribe.h"
#include "qmgr/core/topic.h"
#include "qmgr/objects/object_name.h"

using namespace mqrig::qmgr;

namespace {

constexpr std::size_t longestText = MQ_SUB_NAME_LENGTH; // of names and user data
constexpr MQLONG highestLevel = 9;

MQLONG checkSubOptions(MQLONG options)
{
    if (const MQLONG reason = api::checkOptions(api::OptionField::Subscribe, options)) return reason;
    const auto has = [options](MQLONG bits) { return (options & bits) != 0; };
    const bool wrong = !has(MQSO_CREATE | MQSO_RESUME | MQSO_ALTER) ||
                       api::severalOf(options, MQSO_WILDCARD_CHAR | MQSO_WILDCARD_TOPIC) ||
                       api::severalOf(options, MQSO_ANY_USERID | MQSO_FIXED_USERID) ||
                       api::severalOf(options, MQSO_READ_AHEAD | MQSO_NO_READ_AHEAD) ||
                       api::severalOf(options, MQSO_NEW_PUBLICATIONS_ONLY | MQSO_PUBLICATIONS_ON_REQUEST);
    if (wrong) return MQRC_OPTIONS_ERROR;
    // A group is made by its one queue and its one correlation identifier.
    const bool grouped = has(MQSO_GROUP_SUB);
    return grouped && (has(MQSO_MANAGED) || !has(MQSO_SET_CORREL_ID)) ? MQRC_OPTIONS_ERROR : MQRC_NONE;
}

template <class To, class From>
void copyBytes(To &to, const From &from)
{
    static_assert(sizeof to == sizeof from);
    std::memcpy(&to, &from, sizeof to);
}

MQLONG checkValues(const MQSD &sd)
{
    if (sd.SubExpiry != MQEI_UNLIMITED && sd.SubExpiry <= 0) return MQRC_EXPIRY_ERROR;
    const bool special = sd.PubPriority == MQPRI_PRIORITY_AS_PUBLISHED || sd.PubPriority == MQPRI_PRIORITY_AS_Q_DEF;
    if (!special && (sd.PubPriority < 0 || sd.PubPriority > 9)) return MQRC_PRIORITY_ERROR;
    if (sd.SubLevel < 0 || sd.SubLevel > highestLevel) return MQRC_SD_ERROR;
    return api::isWritable(sd.ResObjectString) ? MQRC_NONE : MQRC_RES_OBJECT_STRING_ERROR;
}

// The texts of a descriptor; `from`: the program's own.
MQLONG loadTexts(core::Connection &connection, const MQSD &sd, const void *from, core::SubscribeRequest &request)
{
    const MQLONG ccsid = connection.queueManager().codedCharSetId;
    if (!api::loadText(sd.ObjectString, from, core::longestTopic, ccsid, request.topicString))
        return MQRC_OBJECT_STRING_ERROR;
    if (!api::loadText(sd.SubName, from, longestText, ccsid, request.name)) return MQRC_SUB_NAME_ERROR;
    if (!api::loadText(sd.SubUserData, from, longestText, ccsid, request.userData)) return MQRC_SUB_USER_DATA_ERROR;
    return api::loadSelectionString(connection, sd.SelectionString, from, request.selector);
}

// Without a name a subscription lives as long as its handle, and nobody can find it.
MQLONG checkName(const core::SubscribeRequest &request)
{
    const bool needed = request.has(MQSO_DURABLE | MQSO_RESUME | MQSO_ALTER);
    return needed && request.name.empty() ? MQRC_SUB_NAME_ERROR : MQRC_NONE;
}

// What the program is told of its subscription.
void tell(core::Connection &connection, const objects::Subscription &subscription, bool resumed, MQSD &sd)
{
    const MQLONG ccsid = connection.queueManager().codedCharSetId;
    copyBytes(sd.SubCorrelId, subscription.correlId);
    api::storeText(subscription.topic, &sd, ccsid, sd.ResObjectString);
    copyBytes(sd.PubAccountingToken, subscription.accountingToken);
    copyBytes(sd.PubApplIdentityData, subscription.applIdentityData);
    if (!resumed) return;
    sd.SubExpiry = subscription.expiry;
    sd.PubPriority = subscription.priority;
    sd.SubLevel = subscription.level;
    if (sd.SubUserData.VSBufSize > 0) api::storeText(subscription.userData, &sd, ccsid, sd.SubUserData);
    if (sd.SelectionString.VSBufSize > 0) api::storeText(subscription.selector, &sd, ccsid, sd.SelectionString);
}

Outcome subscribe(MQHCONN Hconn, PMQVOID pSubDesc, PMQHOBJ pHobj, PMQHOBJ pHsub)
{
    const core::ConnectionUse use(Hconn);
    if (use.outcome().failed()) return use.outcome();
    if (const MQLONG reason = api::checkSd(pSubDesc)) return failure(reason);
    if (pHobj == nullptr || pHsub == nullptr) return failure(MQRC_HOBJ_ERROR);
    *pHsub = MQHO_UNUSABLE_HOBJ;
    MQSD &sd = *static_cast<MQSD *>(pSubDesc);
    if (const MQLONG reason = checkSubOptions(sd.Options)) return failure(reason);
    if (const MQLONG reason = checkValues(sd)) return failure(reason);

    core::SubscribeRequest request;
    request.options = sd.Options;
    request.topicObject = objects::fieldText(sd.ObjectName);
    if (const MQLONG reason = loadTexts(*use, sd, pSubDesc, request)) return failure(reason);
    if (const MQLONG reason = checkName(request)) return failure(reason);
    request.expiry = sd.SubExpiry;
    request.priority = sd.PubPriority;
    request.level = sd.SubLevel;
    copyBytes(request.correlId, sd.SubCorrelId);
    copyBytes(request.accountingToken, sd.PubAccountingToken);
    copyBytes(request.applIdentityData, sd.PubApplIdentityData);
    request.queue = request.has(MQSO_MANAGED) ? MQHO_NONE : *pHobj;

    core::Subscribed subscribed;
    const Outcome outcome = core::subscribe(*use, request, subscribed);
    if (outcome.failed()) return outcome;
    *pHsub = subscribed.hsub;
    if (subscribed.queue != MQHO_NONE) *pHobj = subscribed.queue;
    tell(*use, use->handles.find(subscribed.hsub)->subscription->subscription, request.has(MQSO_RESUME | MQSO_ALTER),
         sd);
    return outcome;
}

} // namespace

MQI_EXPORT void MQENTRY MQSUB(MQHCONN Hconn, PMQVOID pSubDesc, PMQHOBJ pHobj, PMQHOBJ pHsub, PMQLONG pCompCode,
                              PMQLONG pReason) noexcept
{
    api::answerFollowing(Hconn, pCompCode, pReason, [=] { return subscribe(Hconn, pSubDesc, pHobj, pHsub); });
}
