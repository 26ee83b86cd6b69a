#include "mqicalls.h"

#include "common.h"
#include "mqicalls/mqi_call.h"
#include "mqicalls/object_name.h"

namespace {

// The name in `QName` comes from -oq in the paired operations, whose mode leaves `OutputQName` to the other record.
const char *option_of_name(const RunParams *params)
{
    return params->QName == params->OutputQName ? "-q" : "-oq";
}

} // namespace

Status MQSeriesQOpenForOutput(MQHCONN hconn, MQHOBJ *hobj, RunParams *params)
{
    MQOD &od = params->Od;
    const Status named = params->ObjectRecList != nullptr
                             ? allocateForDestinationList(params)
                             : copy_object_name(params, od.ObjectName, params->QName, option_of_name(params));
    if (named != StatusOk) return StatusLocalFailure;
    params->OpenOptions |= MQOO_OUTPUT;

    const MqiCodes codes = mqi_call(
        params, "MQOPEN",
        [&] {
            api_trace_dsp(params, "MQOPEN start hcon:%d ObjectName:%.48s ObjectQMgrName:%.48s Options:0x%08x\n", hconn,
                          od.ObjectName, od.ObjectQMgrName, static_cast<MQULONG>(params->OpenOptions));
        },
        [&](MqiCodes &made) {
            od.ResponseRecPtr = params->ResponseRecs;
            MQOPEN(hconn, &od, params->OpenOptions, hobj, &made.CompCode, &made.Reason);
        },
        [&](const MqiCodes &made) {
            api_trace_dsp(
                params, "MQOPEN stop hcon:%d hobj:%d ObjectName:%.48s ObjectQMgrName:%.48s CompCd=%02d ReasonCd=%02d\n",
                hconn, *hobj, od.ObjectName, od.ObjectQMgrName, made.CompCode, made.Reason);
        });

    if (codes.Reason == MQRC_NONE && codes.CompCode != MQCC_FAILED) return StatusOk;
    if (codes.Reason == MQRC_MULTIPLE_REASONS) {
        print_responses("MQRC_MULTIPLE_REASONS:MQOPEN", params);
        return StatusOk;
    }
    if (params->DestCount != 0) {
        print_responses("MQOPEN", params);
        return StatusOk;
    }
    printf_te(params, "MQOPEN fail : %s %s CompCd=%02d ReasonCd=%02d\n", shown_name(params->QMgrName),
              shown_name(params->QName), codes.CompCode, codes.Reason);
    return StatusMqiFailure;
}
