#include "mqicalls.h"

#include "common.h"
#include "mqicalls/mqi_call.h"
#include "mqicalls/object_name.h"

Status MQSeriesConn(MQHCONN *hconn, RunParams *params)
{
    MQCHAR48 qmgr = {};
    if (copy_object_name(params, qmgr, params->QMgrName, "-qm") != StatusOk) return StatusLocalFailure;

    const MqiCodes codes = mqi_call(
        params, "MQCONN", [&] { api_trace_dsp(params, "MQCONN start qmgr:%s\n", shown_name(params->QMgrName)); },
        [&](MqiCodes &made) { MQCONN(qmgr, hconn, &made.CompCode, &made.Reason); },
        [&](const MqiCodes &made) {
            api_trace_dsp(params, "MQCONN stop hcon:%d qmgr:%s CompCd=%02d ReasonCd=%02d\n", *hconn,
                          shown_name(params->QMgrName), made.CompCode, made.Reason);
        });

    if (codes.CompCode != MQCC_FAILED) return StatusOk;
    printf_te(params, "MQCONN fail : %s CompCd=%02d ReasonCd=%02d\n", shown_name(params->QMgrName), codes.CompCode,
              codes.Reason);
    return StatusMqiFailure;
}
