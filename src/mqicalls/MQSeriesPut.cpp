#include "mqicalls.h"

#include "common.h"
#include "mqicalls/mqi_call.h"
#include "mqicalls/put_message_records.h"

Status MQSeriesPut(MQHCONN hconn, MQHOBJ hobj, RunParams *params, const void *buffer, MQLONG length)
{
    params->Pmo.ResponseRecPtr = params->ResponseRecs;
    renew_put_message_records(params);
    const MqiCodes codes = mqi_call(
        params, "MQPUT",
        [&] {
            api_trace_dsp(params, "MQPUT start hcon:%d hobj:%d Options:0x%08x\n", hconn, hobj,
                          static_cast<MQULONG>(params->Pmo.Options));
        },
        [&](MqiCodes &made) {
            // The MQI only reads the buffer of a put; its prototype does not say so.
            MQPUT(hconn, hobj, &params->Md, &params->Pmo, length, const_cast<void *>(buffer), &made.CompCode,
                  &made.Reason);
        },
        [&](const MqiCodes &made) {
            api_trace_dsp(params, "MQPUT stop hcon:%d hobj:%d CompCd=%02d ReasonCd=%02d\n", hconn, hobj, made.CompCode,
                          made.Reason);
        });

    if (codes.Reason == MQRC_NONE) return StatusOk;
    if (codes.Reason == MQRC_MULTIPLE_REASONS) {
        print_responses("MQRC_MULTIPLE_REASONS:MQPUT", params);
        return StatusOk;
    }
    if (params->DestCount == 0) {
        printf_te(params, "MQPUT fail : %s CompCd=%02d ReasonCd=%02d\n", shown_name(params->QName), codes.CompCode,
                  codes.Reason);
        return StatusMqiFailure;
    }
    // A put to a distribution list never stops the run.
    print_responses("MQPUT", params);
    printf_te(params, "MQPUT fail : CompCd=%02d ReasonCd=%02d\n", codes.CompCode, codes.Reason);
    return StatusOk;
}
