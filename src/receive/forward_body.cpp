#include "receive/forward_body.h"

#include "common.h"
#include "display/shown_body.h"
#include "mqicalls.h"
#include "send.h"

#include <algorithm>
#include <cstring>

namespace {

/// The lock is the get side's; what is shown of the body, and how, is the put side's.
Status show_forwarded(RunParams *getParams, const RunParams *putParams, const char *body, MQLONG length, MQLONG number)
{
    if (putParams->OutputForm == OutputFormRaw) return StatusOk;
    LockedSection locked(getParams);
    if (locked.status() != StatusOk) return StatusLocalFailure;

    ShownBody shown;
    if (shown.convert(body, shown_length(putParams, length), putParams->OutputForm, {"Queue2Queue"}) != StatusOk) {
        return StatusLocalFailure;
    }
    dsp_timestamp(getParams);
    std::printf("%d: message length: %d put message : ", number, length);
    shown.write();
    return locked.release();
}

} // namespace

Status forward_body(RunParams *getParams, MQHCONN hconn, RunParams *putParams, char *buffer, MQLONG length,
                    MQLONG number)
{
    const MQLONG received = std::clamp(length, 0, getParams->MaxMsgSize);
    const MQLONG putLength = putParams->MsgLength >= 0 ? putParams->MsgLength : received;

    // The body is put from where it was got; only what the buffer cannot hold needs one of its own.
    Buffer<> larger;
    char *body = buffer;
    if (putLength > getParams->MaxMsgSize) {
        larger = checked_malloc(putParams, static_cast<std::size_t>(putLength) + 1, {"Queue2Queue"});
        if (larger == nullptr) return StatusLocalFailure;
        body = larger.get();
        std::memcpy(body, buffer, static_cast<std::size_t>(received));
    }
    if (putLength > received) {
        std::memset(body + received, pad_c, static_cast<std::size_t>(putLength - received));
    }
    const Status put = MQSeriesPut(hconn, putParams->OutputHobj, putParams, body, putLength);
    const Status shown = show_forwarded(getParams, putParams, body, putLength, number);
    return put != StatusOk ? put : shown;
}
