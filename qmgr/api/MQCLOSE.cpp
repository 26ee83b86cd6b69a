#include "qmgr/api/api.h"
#include "qmgr/api/consumers.h"
#include "qmgr/api/option_table.h"
#include "qmgr/core/connections.h"
#include "qmgr/core/open.h"

using namespace mqrig::qmgr;

namespace {

Outcome close(MQHCONN Hconn, PMQHOBJ pHobj, MQLONG options)
{
    core::ConnectionUse use(Hconn);
    if (use.outcome().failed()) return use.outcome();
    if (pHobj == nullptr || use->handles.find(*pHobj) == nullptr) return failure(MQRC_HOBJ_ERROR);
    if (api::severalOf(options, MQCO_DELETE | MQCO_DELETE_PURGE) ||
        api::severalOf(options, MQCO_KEEP_SUB | MQCO_REMOVE_SUB))
        return failure(MQRC_OPTIONS_ERROR);
    if (const MQLONG reason = api::checkOptions(api::OptionField::Close, options)) return failure(reason);
    const MQHOBJ hobj = *pHobj;
    const Outcome closed = core::closeObject(*use, hobj, options);
    // Where a queue was not to be deleted the handle stays.
    if (use->handles.find(hobj) != nullptr) return closed;
    if (!closed.failed()) api::forgetConsumer(use, hobj);
    *pHobj = MQHO_UNUSABLE_HOBJ;
    return closed;
}

} // namespace

MQI_EXPORT void MQENTRY MQCLOSE(MQHCONN Hconn, PMQHOBJ pHobj, MQLONG Options, PMQLONG pCompCode,
                                PMQLONG pReason) noexcept
{
    api::answer(pCompCode, pReason, [=] { return close(Hconn, pHobj, Options); });
}
