#include "mqicalls.h"

#include "common.h"
#include "mqicalls/mqi_call.h"
#include "mqicalls/object_name.h"
#include "mqicalls/object_of_record.h"

Status MQSeriesQOpen(MQHCONN hconn, MQHOBJ *hobj, RunParams *params, MQLONG options)
{
    MQOD &od = params->Od;
    const ObjectOfRecord object = object_of_record(params);
    if (copy_object_name(params, od.ObjectName, object.name, object.option) != StatusOk) return StatusLocalFailure;
    if (params->ObjectTypeGiven == 0) od.ObjectType = object.type;
    params->OpenOptions |= options;

    const MqiCodes codes = mqi_call(
        params, "MQOPEN",
        [&] {
            api_trace_dsp(params, "MQOPEN start hcon:%d ObjectName:%.48s Options:0x%08x\n", hconn, od.ObjectName,
                          static_cast<MQULONG>(params->OpenOptions));
        },
        [&](MqiCodes &made) { MQOPEN(hconn, &od, params->OpenOptions, hobj, &made.CompCode, &made.Reason); },
        [&](const MqiCodes &made) {
            api_trace_dsp(params, "MQOPEN stop hcon:%d hobj:%d ObjectName:%.48s CompCd=%02d ReasonCd=%02d\n", hconn,
                          *hobj, od.ObjectName, made.CompCode, made.Reason);
        });

    if (codes.Reason == MQRC_NONE && codes.CompCode != MQCC_FAILED) return StatusOk;
    printf_te(params, "MQOPEN fail : %s %s CompCd=%02d ReasonCd=%02d\n", shown_name(params->QMgrName), object.name,
              codes.CompCode, codes.Reason);
    return StatusMqiFailure;
}
