#include "qmgr/api/api.h"
#include "qmgr/api/attribute_arrays.h"
#include "qmgr/core/connections.h"
#include "qmgr/core/inquire.h"

using namespace mqrig::qmgr;

namespace {

Outcome inquire(MQHCONN Hconn, MQHOBJ Hobj, const api::AttributeArrays &arrays)
{
    const core::ConnectionUse use(Hconn);
    if (use.outcome().failed()) return use.outcome();
    core::OpenObject *object = use->handles.find(Hobj);
    if (object == nullptr) return failure(MQRC_HOBJ_ERROR);
    if (const MQLONG reason = api::checkArrays(arrays)) return failure(reason);
    return core::inquire(*use, *object, api::attributeRequest<core::InquireRequest>(arrays));
}

} // namespace

MQI_EXPORT void MQENTRY MQINQ(MQHCONN Hconn, MQHOBJ Hobj, MQLONG SelectorCount, PMQLONG pSelectors, MQLONG IntAttrCount,
                              PMQLONG pIntAttrs, MQLONG CharAttrLength, PMQCHAR pCharAttrs, PMQLONG pCompCode,
                              PMQLONG pReason) noexcept
{
    api::answerFollowing(Hconn, pCompCode, pReason, [=] {
        return inquire(Hconn, Hobj, {SelectorCount, pSelectors, IntAttrCount, pIntAttrs, CharAttrLength, pCharAttrs});
    });
}
