#include "common.h"

#include "hex_digit.h"

Status hexdec2binl(const char *text, void *target, MQLONG maximum)
{
    auto *byte = static_cast<unsigned char *>(target);
    MQLONG written = 0;
    bool high = true;
    for (; *text != '\0'; ++text) {
        const int digit = hexDigit(*text);
        if (digit < 0) return StatusLocalFailure;
        if (high) {
            *byte = static_cast<unsigned char>(digit << 4);
        } else {
            *byte = static_cast<unsigned char>(*byte | digit);
            ++byte;
            if (++written >= maximum) return StatusOk; // the rest of the text is not looked at
        }
        high = !high;
    }
    return high ? StatusOk : StatusLocalFailure;
}
