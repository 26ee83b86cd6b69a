#include "qmgr/api/api.h"
#include "qmgr/core/connections.h"

using namespace mqrig::qmgr;

MQI_EXPORT void MQENTRY MQBACK(MQHCONN Hconn, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    api::answer(pCompCode, pReason, [=] {
        const core::ConnectionUse use(Hconn);
        return use.outcome().failed() ? use.outcome() : core::backOut(*use);
    });
}
