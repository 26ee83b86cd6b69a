/// How much of a body a one-line display shows, and how much room its conversion takes.
#pragma once

#include "RunParams.h"

#include <cstdint>

/// `length`, or what `-ds` allows of it.
constexpr MQLONG shown_length(const RunParams *params, MQLONG length)
{
    return params->DisplaySize != -1 && params->DisplaySize < length ? params->DisplaySize : length;
}

/// Bytes of the target of `cnvrtmsg` for a body of `length` bytes. What no buffer can have is cut to the largest size,
/// which fails to be allocated.
constexpr std::size_t converted_size(MQLONG length)
{
    const std::uint64_t size = (static_cast<std::uint64_t>(length > 0 ? length : 0) + 1) * 2 + 1;
    return size < SIZE_MAX ? static_cast<std::size_t>(size) : SIZE_MAX;
}
