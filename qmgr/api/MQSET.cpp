#include "qmgr/api/api.h"

MQI_EXPORT void MQENTRY MQSET(MQHCONN, MQHOBJ, MQLONG, PMQLONG, MQLONG, PMQLONG, MQLONG, PMQCHAR, PMQLONG pCompCode,
                              PMQLONG pReason) noexcept
{
    mqrig::qmgr::api::answerNotSupported(pCompCode, pReason);
}
