/// The common sequence of every MQI wrapper, written once.
///
/// A wrapper hands over its call and its two trace lines as callables and judges the codes that come back:
///
///     const MqiCodes codes = mqi_call(params, "MQBACK",
///         [&] { api_trace_dsp(params, "MQBACK start ..."); },
///         [&](MqiCodes &made) { MQBACK(hconn, &made.CompCode, &made.Reason); },
///         [&](const MqiCodes &made) { api_trace_dsp(params, "MQBACK stop ...", made.CompCode, made.Reason); });
///
/// Everything is inlined: without `-s`, `-tr` and `-y` the sequence costs three tests around the call.
#pragma once

#include "mqicalls.h"

#include <cstddef>

struct MqiCodes {
    MQLONG CompCode = MQCC_OK;
    MQLONG Reason = MQRC_NONE;
};

/// A name for "%s" in a report line, where null stands for a name that was not given.
constexpr const char *shown_name(const char *name)
{
    return name != nullptr ? name : "(null)";
}

/// Start trace, call, yield, stop trace. For MQDISC, which may be left out after the stop before it.
template <class StartTrace, class Call, class StopTrace>
MqiCodes mqi_call_unstopped(RunParams *params, StartTrace startTrace, Call call, StopTrace stopTrace)
{
    MqiCodes codes;
    startTrace();
    call(codes);
    _thread_yield(params);
    stopTrace(static_cast<const MqiCodes &>(codes));
    return codes;
}

/// The whole sequence: stop before the call `name`, start trace, call, yield, stop trace.
template <class StartTrace, class Call, class StopTrace>
MqiCodes mqi_call(RunParams *params, const char *name, StartTrace startTrace, Call call, StopTrace stopTrace)
{
    stopUntilHitKey(params, name);
    return mqi_call_unstopped(params, startTrace, call, stopTrace);
}
