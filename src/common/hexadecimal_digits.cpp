#include "common.h"

#include <cstring>

const char *hexadecimal_digits(const char *text)
{
    return std::strncmp(text, "0x", 2) == 0 ? text + 2 : nullptr;
}
