/// A body as a one-line display shows it, converted and ended by a line feed.
#pragma once

#include "common.h"
#include "display.h"
#include "display/shown_length.h"

class ShownBody {
public:
    /// Converts the first `shown` bytes of `data`. 1 when there is no memory for that, reported without a lock.
    Status convert(const void *data, MQLONG shown, MQLONG form, Caller caller)
    {
        if (const std::size_t size = converted_size(shown); size > sizeof usual_) {
            large_ = checked_malloc(nullptr, size, caller);
            if (large_ == nullptr) return StatusLocalFailure;
        }
        char *const text = large_ != nullptr ? large_.get() : usual_;
        length_ = cnvrtmsg(data, text, shown, form);
        text[length_++] = '\n';
        return StatusOk;
    }

    void write() const { std::fwrite(large_ != nullptr ? large_.get() : usual_, 1, length_, stdout); }

private:
    char usual_[1024]; // what is usually shown fits here; only a longer display asks for memory
    Buffer<> large_;
    std::size_t length_ = 0;
};
