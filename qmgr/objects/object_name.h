// MQ's rules for the names of objects, in one place.
//
// A name has 1 to 48 characters (20 for a channel), each one of A-Z a-z 0-9 . / _ %. Case counts. Where MQ has a name
// in a fixed field, the field is filled up with blanks or zeros; a name that begins with one of them is no name.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "cmqc.h"

namespace mqrig::qmgr::objects {

inline constexpr std::size_t maxNameLength = MQ_OBJECT_NAME_LENGTH;

enum class NameFault { None, Empty, TooLong, BadCharacter };

// Judges a name; `position` is where the first bad character stands (BadCharacter only).
struct NameCheck {
    NameFault fault = NameFault::None;
    std::size_t position = 0;

    constexpr explicit operator bool() const { return fault == NameFault::None; }
};
NameCheck checkObjectName(std::string_view name);

bool isNameCharacter(char c);

// The text of a blank- or zero-padded MQI field: ends at the first zero, without trailing blanks. May be empty.
std::string_view fieldText(const char *field, std::size_t length);
template <std::size_t N>
std::string_view fieldText(const char (&field)[N])
{
    return fieldText(field, N);
}
template <std::size_t N>
std::string_view fieldText(const std::array<char, N> &field)
{
    return fieldText(field.data(), N);
}

// Fills an MQI field with a text, blank-padded; a text that is too long is cut.
void fillField(char *field, std::size_t length, std::string_view text);
template <std::size_t N>
void fillField(std::array<char, N> &field, std::string_view text)
{
    fillField(field.data(), N, text);
}

// MQSC's generic names: `pattern` may end with one '*', which stands for any rest; "*" alone matches every name.
bool matchesGeneric(std::string_view pattern, std::string_view name);

} // namespace mqrig::qmgr::objects
