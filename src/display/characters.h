/// Characters of the user's locale in message data; bodies and dumps are cut and shown by the same rule.
#pragma once

#include <cctype>
#include <cstddef>
#include <cstdlib>
#include <cwchar>

/// MB_CUR_MAX is a call; loops over bytes ask once.
class CharacterReader {
public:
    CharacterReader() : widest_(MB_CUR_MAX) {}

    /// Bytes of the character at `at`, of which `available` (at least 1) were received: 2 or more for a complete
    /// multi-byte character, otherwise 1. A character that the end cuts counts byte by byte.
    std::size_t length(const char *at, std::size_t available) const
    {
        if (static_cast<unsigned char>(*at) < 0x80) return 1;
        std::mbstate_t state{};
        const std::size_t bytes = std::mbrlen(at, available < widest_ ? available : widest_, &state);
        return bytes <= widest_ && bytes > 1 ? bytes : 1; // invalid and incomplete are huge values
    }

    std::size_t widest() const { return widest_; }

private:
    std::size_t widest_;
};

/// Whether a single byte is shown as itself.
inline bool is_shown(char byte)
{
    const auto value = static_cast<unsigned char>(byte);
    return value < 0x80 ? value >= 0x20 && value != 0x7F : std::isprint(value) != 0;
}
