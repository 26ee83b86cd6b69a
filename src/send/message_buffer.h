/// The buffer of a message to be put, and the header in front of its body.
#pragma once

#include "RunParams.h"
#include "common.h"
#include "status.h"

#include <cstdint>

/// Memory for `size` bytes, or null after reporting "malloc() failed. size=..." with `reported`. More than the MQI can
/// count cannot be had.
Buffer<> allocate_message(RunParams *params, std::int64_t size, std::int64_t reported, Caller caller);

/// The MQRFH2 that the options ask for; without one it is empty.
struct MessageHeader {
    Buffer<> bytes;
    MQLONG length = 0;

    /// In the encoding of the record's MQMD. 1 when it cannot be built, already reported.
    Status build(RunParams *params);
    /// To the start of the message.
    void copy_to(char *message) const;
};
