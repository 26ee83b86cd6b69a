#include "qmgr/api/api.h"

MQI_EXPORT void MQENTRY MQCRTMH(MQHCONN, PMQVOID, PMQHMSG, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    mqrig::qmgr::api::answerNotSupported(pCompCode, pReason);
}
