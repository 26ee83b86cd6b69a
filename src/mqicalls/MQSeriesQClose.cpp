#include "mqicalls.h"

#include "common.h"
#include "mqicalls/mqi_call.h"

Status MQSeriesQClose(MQHCONN hconn, MQHOBJ *hobj, RunParams *params)
{
    if (params->ObjectRecList != nullptr) freeForDestinationList(params);

    const MqiCodes codes = mqi_call(
        params, "MQCLOSE",
        [&] {
            api_trace_dsp(params, "MQCLOSE start hcon:%d hobj:%d Options:0x%08x\n", hconn, *hobj,
                          static_cast<MQULONG>(params->CloseOptions));
        },
        [&](MqiCodes &made) { MQCLOSE(hconn, hobj, params->CloseOptions, &made.CompCode, &made.Reason); },
        [&](const MqiCodes &made) {
            api_trace_dsp(params, "MQCLOSE stop hcon:%d hobj:%d CompCd=%02d ReasonCd=%02d\n", hconn, *hobj,
                          made.CompCode, made.Reason);
        });

    if (codes.Reason == MQRC_NONE) return StatusOk;
    printf_te(params, "MQCLOSE fail : CompCd=%02d ReasonCd=%02d\n", codes.CompCode, codes.Reason);
    return StatusMqiFailure;
}
