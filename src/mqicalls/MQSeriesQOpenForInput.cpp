#include "mqicalls.h"

#include "common.h"
#include "mqicalls/mqi_call.h"
#include "mqicalls/object_name.h"

namespace {

/// Open options that say what the queue is opened for; with any of them none is added.
constexpr MQLONG PurposeOptions =
    MQOO_INPUT_AS_Q_DEF | MQOO_INPUT_SHARED | MQOO_INPUT_EXCLUSIVE | MQOO_BROWSE | MQOO_INQUIRE | MQOO_SET;
static_assert(PurposeOptions == 111);

// The name in `QName` comes from -iq in send and receive, whose mode leaves `InputQName` to the other record.
const char *option_of_name(const RunParams *params)
{
    return params->QName == params->InputQName ? "-q" : "-iq";
}

} // namespace

Status MQSeriesQOpenForInput(MQHCONN hconn, MQHOBJ *hobj, RunParams *params)
{
    MQOD &od = params->Od;
    if (copy_object_name(params, od.ObjectName, params->QName, option_of_name(params)) != StatusOk) {
        return StatusLocalFailure;
    }
    if (params->BrowseMode != 0) params->OpenOptions |= MQOO_BROWSE;
    if ((params->OpenOptions & PurposeOptions) == 0) params->OpenOptions |= MQOO_INPUT_AS_Q_DEF;

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
    printf_te(params, "MQOPEN fail : %s CompCd=%02d ReasonCd=%02d\n", shown_name(params->QName), codes.CompCode,
              codes.Reason);
    return StatusMqiFailure;
}
