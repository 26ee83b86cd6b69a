#include "qmgr/api/api.h"

MQI_EXPORT void MQENTRY MQSUBRQ(MQHCONN, MQHOBJ, MQLONG, PMQVOID, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    mqrig::qmgr::api::answerNotSupported(pCompCode, pReason);
}
