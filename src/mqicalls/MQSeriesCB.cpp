#include "mqicalls.h"

#include "common.h"
#include "mqicalls/mqi_call.h"

Status MQSeriesCB(MQHCONN hconn, RunParams *params)
{
    const MqiCodes codes = mqi_call(
        params, "MQCB", [&] { api_trace_dsp(params, "MQCB start hcon:%d\n", hconn); },
        [&](MqiCodes &made) {
            // Through the record the handler reaches the lock, the thread flags and the thread id of its connection.
            params->Cbd.CallbackArea = params;
            MQCB(hconn, params->CbOperation, &params->Cbd, MQHO_NONE, nullptr, nullptr, &made.CompCode, &made.Reason);
        },
        [&](const MqiCodes &made) {
            api_trace_dsp(params, "MQCB stop hcon:%d CompCd=%02d ReasonCd=%02d\n", hconn, made.CompCode, made.Reason);
        });

    if (codes.Reason == MQRC_NONE) return StatusOk;
    printf_te(params, "MQCB faild : CompCd=%02d ReasonCd=%02d\n", codes.CompCode, codes.Reason);
    return StatusMqiFailure;
}
