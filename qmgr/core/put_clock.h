// The clock's reading as the texts of MQMD.PutDate and MQMD.PutTime.
#pragma once

#include <array>
#include <cstdint>
#include <limits>

#include "cmqc.h"

namespace mqrig::qmgr::core {

// "20261121" and "09300512" (hours, minutes, seconds, hundredths), UTC. Belongs to one connection: messages of the
// same second share the texts that were made for it.
class PutClock {
public:
    // `time`: microseconds since 1970 UTC.
    void write(std::int64_t time, MQCHAR8 &putDate, MQCHAR8 &putTime);

private:
    void makeTexts(std::int64_t second);

    std::int64_t second_ = std::numeric_limits<std::int64_t>::min();
    std::array<char, 8> date_{};
    std::array<char, 6> time_{};
};

} // namespace mqrig::qmgr::core
