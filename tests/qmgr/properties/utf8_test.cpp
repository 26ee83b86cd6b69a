#include "qmgr/properties/utf8.h"

#include <gtest/gtest.h>

namespace mqrig::qmgr::properties {
namespace {

TEST(Utf8, CountsCharactersOfEveryLength)
{
    EXPECT_EQ(countCharacters(""), 0u);
    EXPECT_EQ(countCharacters("a\u00e4\u20ac\U0001F600"), 4u);
}

TEST(Utf8, WhatIsNoneIsSeen)
{
    for (const char *text :
         {"\x80", "\xC0\x80", "\xC3", "\xE2\x82", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xFF", "a\xC3("})
        EXPECT_FALSE(countCharacters(text)) << text;
}

TEST(Utf8, InvalidBytesArePassedOneByOne)
{
    const std::string_view text = "\xE2\x82z";
    std::size_t at = 0;
    EXPECT_EQ(nextCharacter(text, at), invalidCharacter);
    EXPECT_EQ(nextCharacter(text, at), invalidCharacter);
    EXPECT_EQ(nextCharacter(text, at), U'z');
    EXPECT_EQ(at, text.size());
}

TEST(Utf8, WrittenCharactersReadBack)
{
    for (const char32_t character : {U'a', U'\u00e4', U'\u20ac', U'\U0010FFFF'}) {
        std::string text;
        appendCharacter(text, character);
        std::size_t at = 0;
        EXPECT_EQ(nextCharacter(text, at), character);
        EXPECT_EQ(at, text.size());
    }
}

} // namespace
} // namespace mqrig::qmgr::properties
