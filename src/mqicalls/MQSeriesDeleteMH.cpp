#include "mqicalls.h"

#include "common.h"
#include "mqicalls/mqi_call.h"

Status MQSeriesDeleteMH(MQHCONN hconn, RunParams *params)
{
    const MqiCodes codes = mqi_call(
        params, "MQDLTMH", [&] { api_trace_dsp(params, "MQDLTMH start hcon:%d\n", hconn); },
        [&](MqiCodes &made) { MQDLTMH(hconn, &params->MsgHandle, &params->Dmho, &made.CompCode, &made.Reason); },
        [&](const MqiCodes &made) {
            api_trace_dsp(params, "MQDLTMH stop hcon:%d CompCd=%02d ReasonCd=%02d\n", hconn, made.CompCode,
                          made.Reason);
        });

    if (codes.Reason == MQRC_NONE) return StatusOk;
    printf_te(params, "MQDLTMH fail : %s CompCd=%02d ReasonCd=%02d\n", shown_name(params->QMgrName), codes.CompCode,
              codes.Reason);
    return StatusMqiFailure;
}
