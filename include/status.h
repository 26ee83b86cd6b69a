/// What a routine of the client answers. Callers decide from the status alone, never from the MQI's codes.
///
/// A status of 0 or less is success; "settled" statuses (0 or less, or a warning) end a unit of work with a commit.
#pragma once

#include <cstdint>

using Status = std::int32_t;

inline constexpr Status StatusOk = 0;
/// Memory, file, lock or set-up failure, already reported.
inline constexpr Status StatusLocalFailure = 1;
/// Success with a warning, or "no message available".
inline constexpr Status StatusWarning = 2;
/// A failed MQI call that its wrapper has already reported.
inline constexpr Status StatusMqiFailure = 3;

/// True for the statuses after which work under syncpoint may be committed.
constexpr bool isSuccess(Status status)
{
    return status <= StatusOk || status == StatusWarning;
}
