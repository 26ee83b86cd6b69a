/// Characters of the user's locale in message data; bodies and dumps are cut and shown by the same rule.
#pragma once

#include <cctype>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <langinfo.h>

/// MB_CUR_MAX is a call; loops over bytes ask once.
class CharacterReader {
public:
    CharacterReader() : widest_(MB_CUR_MAX), utf8_(widest_ > 1 && std::strcmp(nl_langinfo(CODESET), "UTF-8") == 0) {}

    /// Bytes of the character at `at`, of which `available` (at least 1) were received: 2 or more for a complete
    /// multi-byte character, otherwise 1. A character that the end cuts counts byte by byte.
    std::size_t length(const char *at, std::size_t available) const
    {
        if (alone(*at)) return 1;
        if (utf8_) {
            const std::size_t bytes = lengthOfUtf8(at, available);
            if (bytes != 0) return bytes;
        }
        std::mbstate_t state{};
        const std::size_t bytes = std::mbrlen(at, available < widest_ ? available : widest_, &state);
        return bytes <= widest_ && bytes > 1 ? bytes : 1; // invalid and incomplete are huge values
    }

    /// Whether the byte is no beginning of a longer character, whatever follows: spares the library's question.
    bool alone(char byte) const
    {
        return static_cast<unsigned char>(byte) < 0x80 || widest_ == 1 || (utf8_ && continues(byte));
    }

    /// Whether the byte may be the second one of a character.
    bool may_go_on(char byte) const { return !utf8_ || continues(byte); }

    std::size_t widest() const { return widest_; }

private:
    /// Of most characters, without asking the library: 0 where it has to decide.
    static std::size_t lengthOfUtf8(const char *at, std::size_t available)
    {
        const auto lead = static_cast<unsigned char>(*at);
        if (available < 2 || lead < 0xC2 || !continues(at[1])) return 1;
        if (lead < 0xE0) return 2;
        return available < 3 || !continues(at[2]) ? 1 : 0;
    }

    /// The second and later bytes of a character of UTF-8.
    static bool continues(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

    std::size_t widest_;
    bool utf8_;
};

/// Whether a single byte is shown as itself.
inline bool is_shown(char byte)
{
    const auto value = static_cast<unsigned char>(byte);
    return value < 0x80 ? value >= 0x20 && value != 0x7F : std::isprint(value) != 0;
}
