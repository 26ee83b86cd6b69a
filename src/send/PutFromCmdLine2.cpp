// Puts the text of -m, or the bytes of -mx, as often as -n says.
#include "send.h"

#include "common.h"
#include "display.h"
#include "display/shown_length.h"
#include "mqicalls.h"
#include "send/message_buffer.h"
#include "send/put_round.h"
#include "send/put_target.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace {

constexpr MQLONG CounterDigits = 8;

/// The body as given, before padding: its bytes, and the lengths that follow from them and -l.
struct GivenBody {
    Buffer<> bytes;
    MQLONG natural = 0; ///< length of what was given, with the counter prefix
    MQLONG copied = 0;  ///< how much of that goes into the message
    MQLONG length = 0;  ///< of the message, without a header: -l pads and cuts
};

/// What is put, and what is shown of it.
struct Message {
    Buffer<> put;
    Buffer<> shown;
    MQLONG headerLength = 0;
    MQLONG putLength = 0;
    MQLONG displayLength = 0;

    void count(MQLONG counter, MQLONG messageNumber)
    {
        append_counter(counter, put.get() + headerLength, messageNumber);
        append_counter(counter, shown.get(), messageNumber);
    }
};

bool has_counter(const RunParams *params)
{
    return params->MsgText != nullptr && params->AppendCounter != 0;
}

/// A buffer for `length` bytes and one more; a counter fits in behind the header even if the body is shorter than it.
Buffer<> allocate_counted(RunParams *params, std::int64_t length, MQLONG headerLength, Caller caller)
{
    const std::int64_t room = has_counter(params) ? std::int64_t{headerLength} + CounterDigits : 0;
    return allocate_message(params, std::max(length + 1, room), length + 1, caller);
}

Status read_given_body(RunParams *params, GivenBody &body)
{
    Buffer<> prefixed;
    const char *text = params->MsgText;
    if (has_counter(params)) {
        const std::size_t size = std::strlen(text) + sizeof COUNTER_FORMAT;
        prefixed = checked_malloc(params, size, {"PutFromCmdLine"});
        if (prefixed == nullptr) return StatusLocalFailure;
        std::snprintf(prefixed.get(), size, "%s%s", COUNTER_FORMAT, text);
        text = prefixed.get();
    }
    body.natural = static_cast<MQLONG>(text != nullptr ? std::strlen(text) : std::strlen(params->MsgHex) / 2);
    body.length = params->MsgLength >= 0 ? params->MsgLength : body.natural;
    body.copied = std::min(body.length, body.natural);

    // One byte more than is copied, and than is reported: the converter of hexadecimal digits writes at least one.
    body.bytes = allocate_message(params, std::int64_t{body.copied} + 1, body.copied, {"PutFromCmdLine"});
    if (body.bytes == nullptr) return StatusLocalFailure;
    if (text != nullptr) {
        std::memcpy(body.bytes.get(), text, static_cast<std::size_t>(body.copied));
        return StatusOk;
    }
    const Status converted = hexdec2binl(params->MsgHex, body.bytes.get(), body.copied);
    if (converted != StatusOk) printf_te(params, "invalid hexadecimal message %s\n", params->MsgHex);
    return converted;
}

/// Header, body and padding into the put buffer, and the start of the body into the display buffer.
Status build_message(RunParams *params, const GivenBody &body, Message &message)
{
    MessageHeader header;
    if (header.build(params) != StatusOk) return StatusLocalFailure;
    message.headerLength = header.length;

    const std::int64_t putLength = std::int64_t{body.length} + message.headerLength;
    message.put = allocate_counted(params, putLength, message.headerLength, {"PutFromCmdLine"});
    if (message.put == nullptr) return StatusLocalFailure;
    message.putLength = static_cast<MQLONG>(putLength);
    char *const start = message.put.get();
    std::memset(start, pad_c, static_cast<std::size_t>(putLength));
    header.copy_to(start);
    std::memcpy(start + message.headerLength, body.bytes.get(), static_cast<std::size_t>(body.copied));

    message.displayLength = body.length;
    const MQLONG shown = shown_length(params, message.displayLength);
    message.shown = allocate_counted(params, shown, 0, {"PutFromCmdLine"});
    if (message.shown == nullptr) return StatusLocalFailure;
    std::memset(message.shown.get(), pad_c, static_cast<std::size_t>(shown));
    std::memcpy(message.shown.get(), body.bytes.get(), static_cast<std::size_t>(std::min(body.copied, shown)));
    return StatusOk;
}

Status put_messages(RunParams *params, MQHCONN hconn, MQHOBJ hobj, Message &message, MQLONG messageNumber)
{
    const RunRecord snapshot = params->snapshot();
    const bool counted = has_counter(params);
    for (MQLONG i = 0; i < params->MsgCount; ++i) {
        begin_put_round(params, snapshot, i);
        if (counted) message.count(i + 1, messageNumber);
        const MQLONG index = messageNumber != 0 ? messageNumber - 1 : i;
        const Status shown = dsp_message(params, message.shown.get(), message.displayLength, DisplayPutMessage, -1,
                                         static_cast<MQULONG>(index));
        if (shown != StatusOk) return shown;
        const Status put = put_body(params, hconn, hobj, message.put.get(), message.putLength, i);
        if (put != StatusOk) return put;
    }
    return StatusOk;
}

} // namespace

Status PutFromCmdLine2(RunParams *params, MQHCONN hconn, MQLONG ownUnitOfWork, MQLONG messageNumber)
{
    PutTarget target;
    if (target.open(params, hconn) != StatusOk) return StatusLocalFailure;
    if (target.set_properties(params, hconn) != StatusOk) return StatusLocalFailure;

    GivenBody body;
    Message message;
    if (const Status read = read_given_body(params, body); read != StatusOk) return read;
    if (build_message(params, body, message) != StatusOk) return StatusLocalFailure;
    if (params->MsgCount == 0) params->MsgCount = 1;
    if (ownUnitOfWork != 0 && begin_unit_of_work(params) != StatusOk) return StatusLocalFailure;

    const Status status = put_messages(params, hconn, target.hobj, message, messageNumber);
    return target.finish(params, hconn, ownUnitOfWork, status);
}
