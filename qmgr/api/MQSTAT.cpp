#include "qmgr/api/api.h"

MQI_EXPORT void MQENTRY MQSTAT(MQHCONN, MQLONG, PMQVOID, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    mqrig::qmgr::api::answerNotSupported(pCompCode, pReason);
}
