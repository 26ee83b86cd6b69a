#include "common.h"

#include "hex_digit.h"

Status hexdec2bin(const char *text, void *target)
{
    auto *byte = static_cast<unsigned char *>(target);
    bool high = true;
    for (; *text != '\0'; ++text) {
        const int digit = hexDigit(*text);
        if (digit < 0) return StatusLocalFailure;
        if (high) {
            *byte = static_cast<unsigned char>(digit << 4);
        } else {
            *byte = static_cast<unsigned char>(*byte | digit);
            ++byte;
        }
        high = !high;
    }
    return high ? StatusOk : StatusLocalFailure;
}
