#include "qmgr/api/api.h"

MQI_EXPORT void MQENTRY MQCB(MQHCONN, MQLONG, PMQVOID, MQHOBJ, PMQVOID, PMQVOID, PMQLONG pCompCode,
                             PMQLONG pReason) noexcept
{
    mqrig::qmgr::api::answerNotSupported(pCompCode, pReason);
}
