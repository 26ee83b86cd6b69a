#include "qmgr/api/api.h"

MQI_EXPORT void MQENTRY MQINQMP(MQHCONN, MQHMSG, PMQVOID, PMQVOID, PMQVOID, PMQLONG, MQLONG, PMQVOID, PMQLONG,
                                PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    mqrig::qmgr::api::answerNotSupported(pCompCode, pReason);
}
