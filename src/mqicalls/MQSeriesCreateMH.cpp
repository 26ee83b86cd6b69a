#include "mqicalls.h"

#include "common.h"
#include "mqicalls/mqi_call.h"

Status MQSeriesCreateMH(MQHCONN hconn, RunParams *params)
{
    const MqiCodes codes = mqi_call(
        params, "MQCRTMH", [&] { api_trace_dsp(params, "MQCRTMH start hcon:%d\n", hconn); },
        [&](MqiCodes &made) { MQCRTMH(hconn, &params->Cmho, &params->MsgHandle, &made.CompCode, &made.Reason); },
        [&](const MqiCodes &made) {
            api_trace_dsp(params, "MQCRTMH stop hcon:%d CompCd=%02d ReasonCd=%02d\n", hconn, made.CompCode,
                          made.Reason);
        });

    if (codes.Reason == MQRC_NONE) return StatusOk;
    printf_te(params, "MQCRTMH fail : %s CompCd=%02d ReasonCd=%02d\n", shown_name(params->QMgrName), codes.CompCode,
              codes.Reason);
    return StatusMqiFailure;
}
