#include "qmgr/api/api.h"

MQI_EXPORT void MQENTRY MQMHBUF(MQHCONN, MQHMSG, PMQVOID, PMQVOID, PMQVOID, MQLONG, PMQVOID, PMQLONG, PMQLONG pCompCode,
                                PMQLONG pReason) noexcept
{
    mqrig::qmgr::api::answerNotSupported(pCompCode, pReason);
}
