// A name as the MQI takes it: the whole field, zeros behind the text.
#pragma once

#include <algorithm>
#include <cstring>

#include "cmqc.h"

namespace mqrig::crash {

inline void copyName(MQCHAR48 &field, const char *name)
{
    std::memset(field, 0, sizeof field);
    std::memcpy(field, name, std::min(std::strlen(name), sizeof field));
}

} // namespace mqrig::crash
