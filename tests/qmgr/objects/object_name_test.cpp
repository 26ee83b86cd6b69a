#include "qmgr/objects/object_name.h"

#include <gtest/gtest.h>

#include <string>

namespace mqrig::qmgr::objects {
namespace {

TEST(ObjectName, TakesEveryAllowedCharacter)
{
    EXPECT_TRUE(checkObjectName("ABCDEFGHIJKLMNOPQRSTUVWXYZ./_%"));
    EXPECT_TRUE(checkObjectName("abcdefghijklmnopqrstuvwxyz0123456789"));
}

TEST(ObjectName, RefusesEveryOtherCharacterAndSaysWhere)
{
    for (int c = 0; c < 256; ++c) {
        const char character = static_cast<char>(c);
        const bool allowed =
            std::string("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789./_%").find(character) !=
            std::string::npos;
        const NameCheck check = checkObjectName(std::string("AB") + character);
        EXPECT_EQ(static_cast<bool>(check), allowed) << c;
        EXPECT_EQ(check.position, allowed ? 0U : 2U) << c;
    }
}

TEST(ObjectName, HasFrom1To48Characters)
{
    EXPECT_EQ(checkObjectName("").fault, NameFault::Empty);
    EXPECT_TRUE(checkObjectName("A"));
    EXPECT_TRUE(checkObjectName(std::string(48, 'A')));
    EXPECT_EQ(checkObjectName(std::string(49, 'A')).fault, NameFault::TooLong);
    EXPECT_EQ(checkObjectName(std::string(1000000, 'A')).fault, NameFault::TooLong);
}

TEST(ObjectName, FieldEndsAtZeroOrTrailingBlanks)
{
    const char blank[8] = {'Q', '1', ' ', ' ', ' ', ' ', ' ', ' '};
    const char zero[8] = {'Q', '1', '\0', 'x', 'x', 'x', 'x', 'x'};
    const char full[8] = {'A', 'B', 'C', 'D', 'E', 'F', 'G', 'H'};
    const char empty[8] = {};
    EXPECT_EQ(fieldText(blank), "Q1");
    EXPECT_EQ(fieldText(zero), "Q1");
    EXPECT_EQ(fieldText(full), "ABCDEFGH");
    EXPECT_EQ(fieldText(empty), "");
}

TEST(ObjectName, FieldIsFilledWithBlanksAndNeverOverrun)
{
    std::array<char, 4> field{};
    fillField(field, "Q1");
    EXPECT_EQ(std::string(field.data(), 4), "Q1  ");
    fillField(field, "LONGNAME");
    EXPECT_EQ(std::string(field.data(), 4), "LONG");
}

TEST(ObjectName, FillFieldOfNoLengthWritesNowhere)
{
    fillField(nullptr, 0, "Q1");
    std::array<char, 4> field{};
    fillField(field, {});
    EXPECT_EQ(std::string(field.data(), 4), "    ");
}

TEST(ObjectName, GenericNameMatchesByItsBeginning)
{
    EXPECT_TRUE(matchesGeneric("*", "ANY"));
    EXPECT_TRUE(matchesGeneric("AB*", "ABC"));
    EXPECT_TRUE(matchesGeneric("AB*", "AB"));
    EXPECT_FALSE(matchesGeneric("AB*", "AC"));
    EXPECT_TRUE(matchesGeneric("AB", "AB"));
    EXPECT_FALSE(matchesGeneric("AB", "ABC"));
    EXPECT_FALSE(matchesGeneric("", "A"));
}

} // namespace
} // namespace mqrig::qmgr::objects
