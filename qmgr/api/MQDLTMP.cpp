#include "qmgr/api/api.h"

MQI_EXPORT void MQENTRY MQDLTMP(MQHCONN, MQHMSG, PMQVOID, PMQVOID, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    mqrig::qmgr::api::answerNotSupported(pCompCode, pReason);
}
