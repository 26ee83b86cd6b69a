#include "qmgr/api/api.h"

MQI_EXPORT void MQENTRY MQSETMP(MQHCONN, MQHMSG, PMQVOID, PMQVOID, PMQVOID, MQLONG, MQLONG, PMQVOID, PMQLONG pCompCode,
                                PMQLONG pReason) noexcept
{
    mqrig::qmgr::api::answerNotSupported(pCompCode, pReason);
}
