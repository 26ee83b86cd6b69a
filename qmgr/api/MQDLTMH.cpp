#include "qmgr/api/api.h"

MQI_EXPORT void MQENTRY MQDLTMH(MQHCONN, PMQHMSG, PMQVOID, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    mqrig::qmgr::api::answerNotSupported(pCompCode, pReason);
}
