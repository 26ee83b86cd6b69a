#include "send.h"

#include <cstring>

void append_counter(MQLONG counter, char *buffer, MQLONG override)
{
    char digits[16];
    std::snprintf(digits, sizeof digits, "%08d", override != 0 ? override : counter);
    std::memcpy(buffer, digits, 8);
}
