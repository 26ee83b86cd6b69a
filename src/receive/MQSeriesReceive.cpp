// The MQGET of the whole program. In what a plain get returns, the transport headers are cut off, so that a message
// taken from a transmission or dead-letter queue shows its own data.
#include "receive.h"

#include "common.h"
#include "mqicalls/mqi_call.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace {

constexpr MQLONG XmitHeaderLength = sizeof(MQXQH); // with the MQMD of version 1 inside
constexpr MQLONG XmitFormatOffset = offsetof(MQXQH, MsgDesc) + offsetof(MQMD1, Format);
constexpr MQLONG DeadLetterFormatOffset = offsetof(MQDLH, Format);
static_assert(sizeof(MQMDE) == 72 && sizeof(MQXQH) == 428 && sizeof(MQDLH) == 172);
static_assert(XmitFormatOffset == 136 && DeadLetterFormatOffset == 116);

/// The body in its buffer, always terminated behind the data.
struct Body {
    char *data;
    MQLONG length;

    bool format_at(MQLONG offset, const char *format) const
    {
        return offset + MQ_FORMAT_LENGTH <= length && std::memcmp(data + offset, format, MQ_FORMAT_LENGTH) == 0;
    }
    /// Cuts the first `bytes` off; a body that is shorter becomes empty.
    void cut(MQLONG bytes)
    {
        const MQLONG cutOff = std::min(bytes, length);
        length -= cutOff;
        std::memmove(data, data + cutOff, static_cast<std::size_t>(length));
        data[length] = '\0';
    }
};

bool has_format(const RunParams *params, const char *format)
{
    return std::memcmp(params->Md.Format, format, MQ_FORMAT_LENGTH) == 0;
}

void cut_extension(RunParams *params, Body &body)
{
    if (params->OutputForm != OutputFormRaw) printf_t(params, "Cut MQMDE Header\n");
    body.cut(sizeof(MQMDE));
}

void cut_transport_headers(RunParams *params, Body &body)
{
    if (has_format(params, MQFMT_MD_EXTENSION)) {
        cut_extension(params, body);
    } else if (has_format(params, MQFMT_XMIT_Q_HEADER)) {
        const bool extended = body.format_at(XmitFormatOffset, MQFMT_MD_EXTENSION);
        if (params->OutputForm != OutputFormRaw) printf_t(params, "Cut Xmit Queue Header and message body MQMD\n");
        body.cut(XmitHeaderLength);
        if (extended) cut_extension(params, body);
    } else if (has_format(params, MQFMT_DEAD_LETTER_HEADER)) {
        const bool extended = body.format_at(DeadLetterFormatOffset, MQFMT_MD_EXTENSION);
        printf_t(params, "Cut Dead Letter Header\n"); // in raw form too
        body.cut(sizeof(MQDLH));
        if (extended) cut_extension(params, body);
    }
}

/// Reports a reason other than none. Only an accepted truncation lets the caller go on with what is in the buffer.
Status judge_reason(RunParams *params, const MqiCodes &codes, MQLONG dataLength)
{
    const char *queue = shown_name(params->QName);
    if (codes.Reason == MQRC_NO_MSG_AVAILABLE) {
        printf_te(params, "no message available : %s CompCd=%02d ReasonCd=%02d\n", queue, codes.CompCode, codes.Reason);
        return StatusWarning;
    }
    if (codes.CompCode == MQCC_FAILED) {
        printf_te(params, "MQGET fail : %s CompCd=%02d ReasonCd=%02d\n", queue, codes.CompCode, codes.Reason);
        return StatusMqiFailure;
    }
    printf_te(params, "MQGET with warning : %s CompCd=%02d ReasonCd=%02d len=%d\n", queue, codes.CompCode, codes.Reason,
              dataLength);
    return codes.Reason == MQRC_TRUNCATED_MSG_ACCEPTED ? StatusOk : StatusMqiFailure;
}

} // namespace

Status MQSeriesReceive(MQHCONN hconn, MQHOBJ hobj, RunParams *params, char *buffer, MQLONG bufferLength,
                       MQLONG *dataLength)
{
    *dataLength = 0;
    const MqiCodes codes = mqi_call(
        params, "MQGET",
        [&] {
            api_trace_dsp(params, "MQGET start hcon:%d hobj:%d Options:0x%08x\n", hconn, hobj,
                          static_cast<MQULONG>(params->Gmo.Options));
            if ((params->Gmo.Options & MQGMO_WAIT) != 0) flush_output();
        },
        [&](MqiCodes &made) {
            MQGET(hconn, hobj, &params->Md, &params->Gmo, bufferLength, buffer, dataLength, &made.CompCode,
                  &made.Reason);
        },
        [&](const MqiCodes &made) {
            api_trace_dsp(params, "MQGET stop hcon:%d hobj:%d CompCd=%02d ReasonCd=%02d\n", hconn, hobj, made.CompCode,
                          made.Reason);
        });

    if (codes.Reason != MQRC_NONE) {
        buffer[bufferLength] = '\0';
        return judge_reason(params, codes, *dataLength);
    }
    Body body{buffer, std::clamp(*dataLength, 0, bufferLength)};
    buffer[body.length] = '\0';
    if (params->BrowseMode == 0 && params->DumpMode == 0 && params->KeepHeaders == 0) {
        cut_transport_headers(params, body);
    }
    *dataLength = body.length;
    return StatusOk;
}
