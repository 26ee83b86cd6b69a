#include "common.h"

double timespecToDouble(std::time_t seconds, long nanoseconds)
{
    return static_cast<double>(seconds) + static_cast<double>(nanoseconds) / 1e9;
}
