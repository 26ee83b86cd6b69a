#include "mqicalls.h"

#include "common.h"
#include "mqicalls/mqi_call.h"

Status MQSeriesInqMP(MQHCONN hconn, RunParams *params, MQLONG nameSize, MQCHAR *name, MQLONG *type, MQLONG valueSize,
                     MQBYTE *value, MQLONG *dataLength, MQLONG *compCode, MQLONG *reason)
{
    // "%" names every property, so that a walk with MQIMPO_INQ_NEXT is a cursor over all of them.
    static char everyName[] = "%";
    MQCHARV inquired = {MQCHARV_DEFAULT};
    inquired.VSPtr = everyName;
    inquired.VSLength = 1;
    inquired.VSCCSID = MQCCSI_APPL;
    params->Impo.ReturnedName.VSPtr = name;
    params->Impo.ReturnedName.VSBufSize = nameSize - 1;

    const MqiCodes codes = mqi_call(
        params, "MQINQMP", [&] { api_trace_dsp(params, "MQINQMP start hcon:%d\n", hconn); },
        [&](MqiCodes &made) {
            MQINQMP(hconn, params->MsgHandle, &params->Impo, &inquired, &params->Pd, type, valueSize - 1, value,
                    dataLength, &made.CompCode, &made.Reason);
        },
        [&](const MqiCodes &made) {
            api_trace_dsp(params, "MQINQMP stop hcon:%d CompCd=%02d ReasonCd=%02d\n", hconn, made.CompCode,
                          made.Reason);
        });

    *compCode = codes.CompCode;
    *reason = codes.Reason;
    if (codes.Reason == MQRC_NONE) return StatusOk;
    printf_te(params, "MQINQMP faild : CompCd=%02d ReasonCd=%02d\n", codes.CompCode, codes.Reason);
    return StatusMqiFailure;
}
