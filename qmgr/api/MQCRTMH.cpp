#include "qmgr/api/api.h"
#include "qmgr/api/option_table.h"
#include "qmgr/api/property_call.h"

using namespace mqrig::qmgr;

namespace {

constexpr MQLONG validationOptions = MQCMHO_NO_VALIDATION | MQCMHO_VALIDATE;

Outcome createHandle(MQHCONN Hconn, const void *pCrtMsgHOpts, PMQHMSG pHmsg)
{
    const api::PropertyCall call(Hconn);
    if (call.outcome().failed()) return call.outcome();
    MQCMHO cmho;
    if (const MQLONG reason =
            api::loadOptions(pCrtMsgHOpts, MQCMHO_STRUC_ID, MQRC_CMHO_ERROR, api::OptionField::CreateHandle, cmho))
        return failure(reason);
    if (api::severalOf(cmho.Options, validationOptions)) return failure(MQRC_OPTIONS_ERROR);
    if (pHmsg == nullptr) return failure(MQRC_HMSG_ERROR);
    const auto check =
        (cmho.Options & MQCMHO_NO_VALIDATION) != 0 ? properties::NameCheck::Shape : properties::NameCheck::Full;
    return core::createMessageHandle(Hconn, call.connection(), check, *pHmsg);
}

} // namespace

MQI_EXPORT void MQENTRY MQCRTMH(MQHCONN Hconn, PMQVOID pCrtMsgHOpts, PMQHMSG pHmsg, PMQLONG pCompCode,
                                PMQLONG pReason) noexcept
{
    api::answer(pCompCode, pReason, [=] { return createHandle(Hconn, pCrtMsgHOpts, pHmsg); });
}
