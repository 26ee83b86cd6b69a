// UTF-8, character by character. What is no UTF-8 is never read past its end.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace mqrig::qmgr::properties {

inline constexpr char32_t invalidCharacter = 0xFFFFFFFF;

// The character at `at`, which must be inside the text, and `at` behind it. invalidCharacter, one byte further, for
// bytes that are none: overlong forms and surrogates too.
char32_t nextCharacter(std::string_view text, std::size_t &at);
void appendCharacter(std::string &text, char32_t character);

// Empty if the text is not UTF-8 throughout.
std::optional<std::size_t> countCharacters(std::string_view text);

} // namespace mqrig::qmgr::properties
