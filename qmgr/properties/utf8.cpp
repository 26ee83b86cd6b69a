#include "qmgr/properties/utf8.h"

namespace mqrig::qmgr::properties {
namespace {

// How many bytes follow a first byte, and the smallest character that needs so many.
struct Lead {
    std::size_t following;
    char32_t bits;
    char32_t smallest;
};

std::optional<Lead> leadOf(unsigned char byte)
{
    if (byte >= 0xC2 && byte <= 0xDF) return Lead{1, byte & 0x1FU, 0x80};
    if (byte >= 0xE0 && byte <= 0xEF) return Lead{2, byte & 0x0FU, 0x800};
    if (byte >= 0xF0 && byte <= 0xF4) return Lead{3, byte & 0x07U, 0x10000};
    return std::nullopt;
}

} // namespace

char32_t nextCharacter(std::string_view text, std::size_t &at)
{
    const auto first = static_cast<unsigned char>(text[at]);
    if (first < 0x80) {
        ++at;
        return first;
    }
    const auto lead = leadOf(first);
    if (!lead || text.size() - at <= lead->following) {
        ++at;
        return invalidCharacter;
    }
    char32_t character = lead->bits;
    for (std::size_t i = 1; i <= lead->following; ++i) {
        const auto byte = static_cast<unsigned char>(text[at + i]);
        if ((byte & 0xC0) != 0x80) {
            ++at;
            return invalidCharacter;
        }
        character = character << 6 | (byte & 0x3FU);
    }
    const bool surrogate = character >= 0xD800 && character <= 0xDFFF;
    if (character < lead->smallest || character > 0x10FFFF || surrogate) {
        ++at;
        return invalidCharacter;
    }
    at += 1 + lead->following;
    return character;
}

void appendCharacter(std::string &text, char32_t character)
{
    const auto follow = [&](int shift) { text.push_back(static_cast<char>(0x80 | (character >> shift & 0x3F))); };
    if (character < 0x80) {
        text.push_back(static_cast<char>(character));
    } else if (character < 0x800) {
        text.push_back(static_cast<char>(0xC0 | character >> 6));
        follow(0);
    } else if (character < 0x10000) {
        text.push_back(static_cast<char>(0xE0 | character >> 12));
        follow(6);
        follow(0);
    } else {
        text.push_back(static_cast<char>(0xF0 | character >> 18));
        follow(12);
        follow(6);
        follow(0);
    }
}

std::optional<std::size_t> countCharacters(std::string_view text)
{
    std::size_t count = 0;
    for (std::size_t at = 0; at < text.size(); ++count)
        if (nextCharacter(text, at) == invalidCharacter) return std::nullopt;
    return count;
}

} // namespace mqrig::qmgr::properties
