#include "display.h"

#include <cstdio>

void printRaw(const void *data, MQLONG length)
{
    if (length > 0) std::fwrite(data, 1, static_cast<std::size_t>(length), stdout);
}
