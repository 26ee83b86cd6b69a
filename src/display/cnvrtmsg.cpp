#include "display.h"

#include "common.h"
#include "display/characters.h"

#include <cstring>

namespace {

char *convert_text(const char *from, const char *end, char *to)
{
    const CharacterReader characters;
    while (from < end) {
        const std::size_t bytes = characters.length(from, static_cast<std::size_t>(end - from));
        if (bytes > 1) {
            std::memcpy(to, from, bytes);
            from += bytes;
            to += bytes;
            continue;
        }
        const char byte = *from++;
        *to++ = byte == '\r' || byte == '\n' || is_shown(byte) ? byte : '.';
    }
    return to;
}

char *convert_hex(const char *from, std::size_t length, char *to)
{
    if (length == 0) return to;
    *to++ = '0';
    *to++ = 'x';
    bin2hexdec(from, to, length);
    return to + length * 2;
}

} // namespace

std::size_t cnvrtmsg(const void *source, char *target, MQLONG length, MQLONG mode)
{
    const char *from = static_cast<const char *>(source);
    const std::size_t bytes = length > 0 ? static_cast<std::size_t>(length) : 0;
    char *end = target;
    if (mode == OutputFormRaw) {
        if (bytes > 0) std::memcpy(target, from, bytes);
        end = target + bytes;
    } else if (mode == OutputFormHex) {
        end = convert_hex(from, bytes, target);
    } else if (bytes > 0) {
        end = convert_text(from, from + bytes, target);
    }
    *end = '\0';
    return static_cast<std::size_t>(end - target);
}
