#include "mqicalls.h"

#include "common.h"
#include "mqicalls/mqi_call.h"

Status MQSeriesCommit(MQHCONN hconn, RunParams *params)
{
    const MqiCodes codes = mqi_call(
        params, "MQCMIT", [&] { api_trace_dsp(params, "MQCMIT start hcon:%d\n", hconn); },
        [&](MqiCodes &made) { MQCMIT(hconn, &made.CompCode, &made.Reason); },
        [&](const MqiCodes &made) {
            api_trace_dsp(params, "MQCMIT stop hcon:%d CompCd=%02d ReasonCd=%02d\n", hconn, made.CompCode, made.Reason);
        });

    switch (codes.CompCode) {
    case MQCC_OK:
        printf_t(params, "MQCMIT success : CompCd=%02d ReasonCd=%02d\n", codes.CompCode, codes.Reason);
        return StatusOk;
    case MQCC_WARNING:
        printf_te(params, "MQCMIT partially completed : CompCd=%02d ReasonCd=%02d\n", codes.CompCode, codes.Reason);
        return StatusMqiFailure;
    case MQCC_FAILED:
        printf_te(params, "MQCMIT fail : CompCd=%02d ReasonCd=%02d\n", codes.CompCode, codes.Reason);
        return StatusMqiFailure;
    default:
        printf_te(params, "MQCMIT unknown status : CompCd=%02d ReasonCd=%02d\n", codes.CompCode, codes.Reason);
        return StatusMqiFailure;
    }
}
