// The reasons of the MQI that no call answers here, and why: the one table of them.
//
// A test holds it to the headers, to the list of reasons (reasons.h) and to the sources: every reason of the headers is
// answered by a call or stands here, none does both, and the sources name none that could never be seen.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace mqrig::conformance {

enum class Absence : std::uint8_t {
    Never,     // nothing here says it
    Elsewhere, // it is said, but not as the answer of a call in the tests of the MQI
};

struct AbsentReasons {
    Absence absence;
    std::string_view why;
    std::string_view names; // without MQRC_
};

std::span<const AbsentReasons> absentReasons();

} // namespace mqrig::conformance
