#include "display.h"

#include "common.h"
#include "display/shown_body.h"

#include <charconv>
#include <cstring>

namespace {

/// The head of a line behind its time stamp, put together without printf: it is written for every message.
class Head {
public:
    Head &text(const char *part)
    {
        const std::size_t length = std::strlen(part);
        std::memcpy(text_ + length_, part, length);
        length_ += length;
        return *this;
    }
    Head &number(MQLONG value)
    {
        char *const end = std::to_chars(text_ + length_, text_ + sizeof text_, value).ptr;
        length_ = static_cast<std::size_t>(end - text_);
        return *this;
    }
    void write() const { std::fwrite(text_, 1, length_, stdout); }

private:
    char text_[128]; // three numbers and the longest label
    std::size_t length_ = 0;
};

Head counter_head(MQULONG counter)
{
    Head head;
    if (counter != NoMessageCounter) head.number(static_cast<MQLONG>(counter + 1)).text(": ");
    return head;
}

Status show_file_name(RunParams *params, MQULONG counter)
{
    LockedSection locked(params);
    if (locked.status() != StatusOk) return StatusLocalFailure;
    dsp_timestamp(params);
    counter_head(counter).text("put from: ").write();
    std::fputs(params->InputFile != nullptr ? params->InputFile : "(null)", stdout);
    std::putchar('\n');
    return locked.release();
}

} // namespace

Status dsp_message(RunParams *params, const void *data, MQLONG length, int kind, MQLONG number, MQULONG counter)
{
    if (kind == DisplayPutFile) return show_file_name(params, counter);

    Head head;
    if (kind == DisplayLogicalMessage) {
        head.text("logical message: ").number(number).text(" length: ");
    } else if (kind == DisplaySegment) {
        head.text("segment: ").number(number).text(" length: ");
    } else {
        head.text("message length: ");
    }
    head.number(length).text(" put message: ");
    const MQLONG shown = shown_length(params, length);

    LockedSection locked(params);
    if (locked.status() != StatusOk) return StatusLocalFailure;
    dsp_timestamp(params);
    counter_head(counter).write();

    // The way the message was entered decides its form; -raw and -hex speak of messages got.
    ShownBody body;
    if (body.convert(data, shown, params->MsgHex != nullptr ? OutputFormHex : OutputFormText, {"dsp_message"}) !=
        StatusOk) {
        return StatusLocalFailure;
    }
    head.write();
    body.write();
    return locked.release();
}
