#include "mqicalls.h"

#include "common.h"
#include "mqicalls/mqi_call.h"
#include "mqicalls/object_name.h"

#include <cstdlib>

namespace {

/// Links the MQCNO to what the options filled: channel definition, credentials, TLS options, authentication records.
void link_connect_options(RunParams *params)
{
    if (params->Cd.ConnectionName[0] != '\0') {
        if (params->Cd.ChannelName[0] == '\0') {
            strncpy2(params->Cd.ChannelName, DEFAULT_CHANNEL, MQ_CHANNEL_NAME_LENGTH);
        }
        params->Cno.ClientConnPtr = &params->Cd;
    }
    const MQCSP &csp = params->Csp;
    if (csp.CSPUserIdLength != 0 || csp.CSPPasswordLength != 0 || csp.AuthenticationType != 0) {
        params->Cno.SecurityParmsPtr = &params->Csp;
    }
    params->Cno.SSLConfigPtr = &params->Sco;
    if (params->Sco.AuthInfoRecCount != 0) params->Sco.AuthInfoRecPtr = &params->Air;
}

/// The array that a list of two or more URLs made is needed for the call only.
void free_authentication_records(RunParams *params)
{
    if (params->Sco.AuthInfoRecCount <= 1 || params->Sco.AuthInfoRecPtr == nullptr) return;
    std::free(params->Sco.AuthInfoRecPtr);
    params->Sco.AuthInfoRecPtr = &params->Air;
    params->Sco.AuthInfoRecCount = 1;
}

} // namespace

Status MQSeriesConnX(MQHCONN *hconn, RunParams *params)
{
    MQCHAR48 qmgr = {};
    if (copy_object_name(params, qmgr, params->QMgrName, "-qm") != StatusOk) return StatusLocalFailure;
    link_connect_options(params);
    if (params->OcspUrlList != nullptr && setOCSPPesponderURL(params) != StatusOk) return StatusLocalFailure;

    const MqiCodes codes = mqi_call(
        params, "MQCONNX",
        [&] {
            api_trace_dsp(params, "MQCONNX start qmgr:%s Options:0x%08x\n", shown_name(params->QMgrName),
                          static_cast<MQULONG>(params->Cno.Options));
        },
        [&](MqiCodes &made) {
            MQCONNX(qmgr, &params->Cno, hconn, &made.CompCode, &made.Reason);
            free_authentication_records(params);
        },
        [&](const MqiCodes &made) {
            api_trace_dsp(params, "MQCONNX stop hcon:%d qmgr:%s CompCd=%02d ReasonCd=%02d\n", *hconn,
                          shown_name(params->QMgrName), made.CompCode, made.Reason);
        });

    if (codes.CompCode != MQCC_FAILED) return StatusOk;
    printf_te(params, "MQCONNX fail : %s CompCd=%02d ReasonCd=%02d\n", shown_name(params->QMgrName), codes.CompCode,
              codes.Reason);
    return StatusMqiFailure;
}
