#include "qmgr/api/api.h"
#include "qmgr/api/property_call.h"

using namespace mqrig::qmgr;

namespace {

Outcome deleteHandle(MQHCONN Hconn, PMQHMSG pHmsg, const void *pDltMsgHOpts)
{
    const api::PropertyCall call(Hconn);
    if (call.outcome().failed()) return call.outcome();
    MQDMHO dmho;
    if (const MQLONG reason =
            api::loadOptions(pDltMsgHOpts, MQDMHO_STRUC_ID, MQRC_DMHO_ERROR, api::OptionField::DeleteHandle, dmho))
        return failure(reason);
    if (pHmsg == nullptr) return failure(MQRC_HMSG_ERROR);
    const Outcome deleted = core::deleteMessageHandle(Hconn, call.connection(), *pHmsg);
    if (!deleted.failed()) *pHmsg = MQHM_UNUSABLE_HMSG;
    return deleted;
}

} // namespace

MQI_EXPORT void MQENTRY MQDLTMH(MQHCONN Hconn, PMQHMSG pHmsg, PMQVOID pDltMsgHOpts, PMQLONG pCompCode,
                                PMQLONG pReason) noexcept
{
    api::answer(pCompCode, pReason, [=] { return deleteHandle(Hconn, pHmsg, pDltMsgHOpts); });
}
