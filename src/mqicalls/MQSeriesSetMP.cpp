#include "mqicalls.h"

#include "common.h"
#include "mqicalls/mqi_call.h"

Status MQSeriesSetMP(MQHCONN hconn, RunParams *params, MQCHARV *name, MQLONG type, MQLONG valueLength, void *value)
{
    params->Pmo.OriginalMsgHandle = params->MsgHandle;

    const MqiCodes codes = mqi_call(
        params, "MQSETMP", [&] { api_trace_dsp(params, "MQSETMP start hcon:%d\n", hconn); },
        [&](MqiCodes &made) {
            MQSETMP(hconn, params->MsgHandle, &params->Smpo, name, &params->Pd, type, valueLength, value,
                    &made.CompCode, &made.Reason);
        },
        [&](const MqiCodes &made) {
            api_trace_dsp(params, "MQSETMP stop hcon:%d CompCd=%02d ReasonCd=%02d\n", hconn, made.CompCode,
                          made.Reason);
        });

    if (codes.Reason == MQRC_NONE) return StatusOk;
    printf_te(params, "MQSETMP faild : CompCd=%02d ReasonCd=%02d\n", codes.CompCode, codes.Reason);
    return StatusMqiFailure;
}
