/// Bytes of a structure's field as the detailed displays show them.
#pragma once

#include "common.h"

/// Two upper-case digits for each byte of an array, to standard output.
template <std::size_t Length>
void print_hex(const MQBYTE (&bytes)[Length])
{
    char digits[Length * 2 + 1];
    bin2hexdec(bytes, digits, Length);
    std::fputs(digits, stdout);
}
