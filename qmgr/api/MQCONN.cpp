#include "qmgr/api/api.h"
#include "qmgr/api/connect_options.h"

using namespace mqrig::qmgr;

MQI_EXPORT void MQENTRY MQCONN(PMQCHAR pQMgrName, PMQHCONN pHconn, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    api::answer(pCompCode, pReason, [=] { return api::connectTo(pQMgrName, {}, pHconn); });
}
