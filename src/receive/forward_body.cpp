#include "receive/forward_body.h"

#include "common.h"
#include "display/shown_body.h"
#include "mqicalls.h"
#include "send.h"

#include <algorithm>
#include <cstring>

namespace {

/// The lock is the get side's; what is shown of the body, and how, is the put side's. `room` is where the message got
/// was converted, for as much as it can hold.
Status show_forwarded(RunParams *getParams, const RunParams *putParams, const char *body, MQLONG length, MQLONG number,
                      char *room)
{
    if (putParams->OutputForm == OutputFormRaw) return StatusOk;
    LockedSection locked(getParams);
    if (locked.status() != StatusOk) return StatusLocalFailure;

    ShownBody shown(room, converted_size(getParams->MaxMsgSize));
    if (shown.convert(body, shown_length(putParams, length), putParams->OutputForm, {"Queue2Queue"}) != StatusOk) {
        return StatusLocalFailure;
    }
    dsp_timestamp(getParams);
    std::printf("%d: message length: %d put message : ", number, length);
    shown.write();
    return locked.release();
}

} // namespace

Status forward_body(RunParams *getParams, MQHCONN hconn, RunParams *putParams, const ReceiveBuffers &buffers,
                    MQLONG length, MQLONG number)
{
    const MQLONG received = std::clamp(length, 0, getParams->MaxMsgSize);
    const MQLONG putLength = putParams->MsgLength >= 0 ? putParams->MsgLength : received;

    // The body is put from where it was got; only what the buffer cannot hold needs one of its own.
    Buffer<> larger;
    char *body = buffers.message.get();
    if (putLength > getParams->MaxMsgSize) {
        larger = checked_malloc(putParams, static_cast<std::size_t>(putLength) + 1, {"Queue2Queue"});
        if (larger == nullptr) return StatusLocalFailure;
        std::memcpy(larger.get(), body, static_cast<std::size_t>(received));
        body = larger.get();
    }
    if (putLength > received) {
        std::memset(body + received, pad_c, static_cast<std::size_t>(putLength - received));
    }
    const Status put = MQSeriesPut(hconn, putParams->OutputHobj, putParams, body, putLength);
    const Status shown = show_forwarded(getParams, putParams, body, putLength, number, buffers.converted.get());
    return put != StatusOk ? put : shown;
}
