#include "common.h"

void bin2hexdec(const void *source, char *target, std::size_t length)
{
    static constexpr char digits[] = "0123456789ABCDEF";
    const auto *bytes = static_cast<const unsigned char *>(source);
    for (std::size_t i = 0; i < length; ++i) {
        *target++ = digits[bytes[i] >> 4];
        *target++ = digits[bytes[i] & 0xF];
    }
    *target = '\0';
}
