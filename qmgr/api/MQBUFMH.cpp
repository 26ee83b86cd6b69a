#include "qmgr/api/api.h"

MQI_EXPORT void MQENTRY MQBUFMH(MQHCONN, MQHMSG, PMQVOID, PMQVOID, MQLONG, PMQVOID, PMQLONG, PMQLONG pCompCode,
                                PMQLONG pReason) noexcept
{
    mqrig::qmgr::api::answerNotSupported(pCompCode, pReason);
}
