// What every operation of the queue manager answers: MQ's completion code and reason.
//
// MQCC_FAILED means that nothing was changed, MQCC_WARNING that the operation was done or ended as the reason says.
// Nothing in the queue manager prints; whoever called the MQI decides what to tell the user.
#pragma once

#include "cmqc.h"

namespace mqrig::qmgr {

struct [[nodiscard]] Outcome {
    MQLONG CompCode = MQCC_OK;
    MQLONG Reason = MQRC_NONE;

    [[nodiscard]] constexpr bool ok() const { return CompCode == MQCC_OK; }
    [[nodiscard]] constexpr bool failed() const { return CompCode == MQCC_FAILED; }
    constexpr bool operator==(const Outcome &) const = default;
};

constexpr Outcome success()
{
    return {};
}

constexpr Outcome warning(MQLONG Reason)
{
    return {MQCC_WARNING, Reason};
}

constexpr Outcome failure(MQLONG Reason)
{
    return {MQCC_FAILED, Reason};
}

} // namespace mqrig::qmgr
