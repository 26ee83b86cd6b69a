#include "mqicalls.h"

#include "common.h"
#include "mqicalls/mqi_call.h"

Status MQSeriesDisconn(MQHCONN *hconn, RunParams *params)
{
    stopUntilHitKey(params, "MQDISC");
    if (params->SkipDisc != 0) return StatusOk;

    const MqiCodes codes = mqi_call_unstopped(
        params, [&] { api_trace_dsp(params, "MQDISC start hcon:%d\n", *hconn); },
        [&](MqiCodes &made) { MQDISC(hconn, &made.CompCode, &made.Reason); },
        [&](const MqiCodes &made) {
            api_trace_dsp(params, "MQDISC stop hcon:%d CompCd=%02d ReasonCd=%02d\n", *hconn, made.CompCode,
                          made.Reason);
        });

    if (codes.CompCode != MQCC_FAILED) return StatusOk;
    printf_te(params, "MQDISC fail : CompCd=%02d ReasonCd=%02d\n", codes.CompCode, codes.Reason);
    return StatusMqiFailure;
}
