#include "common.h"

#include <bit>

static_assert(std::endian::native == std::endian::little, "data in normal (big-endian) integers is the one reversed");

MQLONG reverseEndian(MQLONG value, const RunParams *params)
{
    if ((params->DataEncoding & MQENC_INTEGER_NORMAL) == 0) return value;
    return static_cast<MQLONG>(__builtin_bswap32(static_cast<MQULONG>(value)));
}

MQINT64 reverseEndian64(MQINT64 value, const RunParams *params)
{
    if ((params->DataEncoding & MQENC_INTEGER_NORMAL) == 0) return value;
    return static_cast<MQINT64>(__builtin_bswap64(static_cast<MQUINT64>(value)));
}
