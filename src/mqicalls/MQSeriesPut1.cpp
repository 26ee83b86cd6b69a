#include "mqicalls.h"

#include "common.h"
#include "mqicalls/mqi_call.h"
#include "mqicalls/object_name.h"

// Works on descriptors of its own, so that options given for MQOPEN and MQPUT do not leak into MQPUT1.
Status MQSeriesPut1(MQHCONN hconn, RunParams *params, const void *buffer, MQLONG length)
{
    MQOD od = {MQOD_DEFAULT};
    MQPMO pmo = {MQPMO_DEFAULT};
    pmo.Options = MQPMO_NO_SYNCPOINT | MQPMO_FAIL_IF_QUIESCING;
    if (copy_object_name(params, od.ObjectName, params->QName, "-q") != StatusOk) return StatusLocalFailure;

    const MqiCodes codes = mqi_call(
        params, "MQPUT1",
        [&] {
            api_trace_dsp(params, "MQPUT1 start hcon:%d ObjectName:%.48s ObjectQMgrName:%.48s Options:0x%08x\n", hconn,
                          od.ObjectName, od.ObjectQMgrName, static_cast<MQULONG>(pmo.Options));
        },
        [&](MqiCodes &made) {
            MQPUT1(hconn, &od, &params->Md, &pmo, length, const_cast<void *>(buffer), &made.CompCode, &made.Reason);
        },
        [&](const MqiCodes &made) {
            api_trace_dsp(params,
                          "MQPUT1 stop hcon:%d ObjectName:%.48s ObjectQMgrName:%.48s CompCd=%02d ReasonCd=%02d\n",
                          hconn, od.ObjectName, od.ObjectQMgrName, made.CompCode, made.Reason);
        });

    if (codes.Reason == MQRC_NONE) return StatusOk;
    printf_te(params, "MQPUT1 fail : %s CompCd=%02d ReasonCd=%02d\n", shown_name(params->QName), codes.CompCode,
              codes.Reason);
    return StatusMqiFailure;
}
