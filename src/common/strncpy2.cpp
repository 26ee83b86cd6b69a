#include "common.h"

#include <cstring>

char *strncpy2(char *target, const char *source, std::size_t maximum)
{
    const std::size_t length = strnlen(source, maximum);
    std::memcpy(target, source, length);
    std::memset(target + length, 0, maximum - length);
    return target;
}
