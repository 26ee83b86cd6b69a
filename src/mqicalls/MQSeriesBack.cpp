#include "mqicalls.h"

#include "common.h"
#include "mqicalls/mqi_call.h"

Status MQSeriesBack(MQHCONN hconn, RunParams *params)
{
    const MqiCodes codes = mqi_call(
        params, "MQBACK", [&] { api_trace_dsp(params, "MQBACK start hcon:%d\n", hconn); },
        [&](MqiCodes &made) { MQBACK(hconn, &made.CompCode, &made.Reason); },
        [&](const MqiCodes &made) {
            api_trace_dsp(params, "MQBACK stop hcon:%d CompCd=%02d ReasonCd=%02d\n", hconn, made.CompCode, made.Reason);
        });

    if (codes.CompCode == MQCC_OK) {
        printf_t(params, "MQBACK success : CompCd=%02d ReasonCd=%02d\n", codes.CompCode, codes.Reason);
        return StatusOk;
    }
    printf_te(params, "MQBACK fail : CompCd=%02d ReasonCd=%02d\n", codes.CompCode, codes.Reason);
    return StatusMqiFailure;
}
