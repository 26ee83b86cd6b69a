/// A body as a one-line display shows it, converted and ended by a line feed.
#pragma once

#include "common.h"
#include "display.h"
#include "display/shown_length.h"

class ShownBody {
public:
    /// What is usually shown fits in here; only a longer display asks for memory.
    ShownBody() : text_(usual_), room_(sizeof usual_) {}
    /// The same with a room of the caller's that has been made for longer ones.
    ShownBody(char *room, std::size_t size) : text_(room), room_(size) {}
    ShownBody(const ShownBody &) = delete;
    ShownBody &operator=(const ShownBody &) = delete;

    /// Converts the first `shown` bytes of `data`. 1 when there is no memory for that, reported without a lock.
    Status convert(const void *data, MQLONG shown, MQLONG form, Caller caller)
    {
        if (const std::size_t size = converted_size(shown); size > room_) {
            larger_ = checked_malloc(nullptr, size, caller);
            if (larger_ == nullptr) return StatusLocalFailure;
            text_ = larger_.get();
            room_ = size;
        }
        length_ = cnvrtmsg(data, text_, shown, form);
        text_[length_++] = '\n';
        return StatusOk;
    }

    void write() const { std::fwrite(text_, 1, length_, stdout); }

private:
    char usual_[1024];
    Buffer<> larger_;
    char *text_;
    std::size_t room_;
    std::size_t length_ = 0;
};
