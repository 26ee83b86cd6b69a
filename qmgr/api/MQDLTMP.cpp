#include "qmgr/api/api.h"
#include "qmgr/api/property_call.h"

using namespace mqrig::qmgr;

namespace {

Outcome deleteProperty(MQHCONN Hconn, MQHMSG Hmsg, const void *pDltPropOpts, const void *pName)
{
    const api::PropertyCall call(Hconn);
    if (call.outcome().failed()) return call.outcome();
    const core::MessageHandleUse handle(Hconn, call.connection(), Hmsg);
    if (handle.outcome().failed()) return handle.outcome();
    MQDMPO dmpo;
    if (const MQLONG reason =
            api::loadOptions(pDltPropOpts, MQDMPO_STRUC_ID, MQRC_DMPO_ERROR, api::OptionField::DeleteProperty, dmpo))
        return failure(reason);
    bool removed = false;
    if ((dmpo.Options & MQDMPO_DEL_PROP_UNDER_CURSOR) != 0) {
        removed = handle->properties.removeUnderCursor();
    } else {
        std::string name;
        properties::NamePattern pattern;
        if (const MQLONG reason = api::loadName(call, pName, name)) return failure(reason);
        if (const MQLONG reason = properties::NamePattern::parse(name, pattern)) return failure(reason);
        if (!pattern.isOneName()) return failure(MQRC_PROPERTY_NAME_ERROR);
        removed = handle->properties.remove(pattern.name());
    }
    return removed ? success() : failure(MQRC_PROPERTY_NOT_AVAILABLE);
}

} // namespace

MQI_EXPORT void MQENTRY MQDLTMP(MQHCONN Hconn, MQHMSG Hmsg, PMQVOID pDltPropOpts, PMQVOID pName, PMQLONG pCompCode,
                                PMQLONG pReason) noexcept
{
    api::answer(pCompCode, pReason, [=] { return deleteProperty(Hconn, Hmsg, pDltPropOpts, pName); });
}
