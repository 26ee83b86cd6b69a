#include "qmgr/api/api.h"

MQI_EXPORT void MQENTRY MQSUB(MQHCONN, PMQVOID, PMQHOBJ, PMQHOBJ, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    mqrig::qmgr::api::answerNotSupported(pCompCode, pReason);
}
