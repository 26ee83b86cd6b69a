#include <memory>

#include "qmgr/api/api.h"
#include "qmgr/core/callbacks.h"
#include "qmgr/core/disconnect.h"

using namespace mqrig::qmgr;

namespace {

Outcome disconnect(PMQHCONN pHconn)
{
    if (pHconn == nullptr) return failure(MQRC_HCONN_ERROR);
    // A callback cannot end the connection that calls it.
    if (core::Callbacks::onThreadOf(*pHconn)) return failure(MQRC_CALL_IN_PROGRESS);
    core::ConnectionUse::announceRemoval(*pHconn);
    if (const auto callbacks = core::ConnectionUse::consumingCallbacks(*pHconn))
        static_cast<void>(callbacks->control(MQOP_STOP, nullptr));
    core::ConnectionUse use(*pHconn, core::ConnectionUse::When::Leaving);
    if (!use.found()) {
        core::ConnectionUse::withdrawRemoval(*pHconn);
        return use.outcome();
    }
    *pHconn = MQHC_UNUSABLE_HCONN;
    return core::disconnect(use);
}

} // namespace

MQI_EXPORT void MQENTRY MQDISC(PMQHCONN pHconn, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    api::answer(pCompCode, pReason, [=] { return disconnect(pHconn); });
}
