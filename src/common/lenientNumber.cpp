#include "common.h"

#include <algorithm>
#include <limits>

MQLONG lenientNumber(const char *text)
{
    const long long number = std::strtoll(text, nullptr, 10);
    using Limits = std::numeric_limits<MQLONG>;
    return static_cast<MQLONG>(std::clamp<long long>(number, Limits::min(), Limits::max()));
}
