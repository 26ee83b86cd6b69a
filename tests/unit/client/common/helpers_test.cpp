// Hexadecimal, tokens, bounded copies, byte order.

#include "common.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>
#include <vector>

namespace {

using Bytes = std::array<unsigned char, 4>;

std::vector<std::string> tokensOf(std::string text, const char *delimiters)
{
    std::vector<std::string> tokens;
    char *position = nullptr;
    for (char *token = strtoknn_r(text.data(), delimiters, &position); token != nullptr;
         token = strtoknn_r(nullptr, delimiters, &position)) {
        tokens.emplace_back(token);
    }
    return tokens;
}

} // namespace

TEST(Hexdec2bin, ReadsDigitsOfBothCases)
{
    Bytes bytes = {9, 9, 9, 9};
    EXPECT_EQ(hexdec2bin("0aFf", bytes.data()), 0);
    EXPECT_EQ(bytes, (Bytes{0x0A, 0xFF, 9, 9}));
}

TEST(Hexdec2bin, AnOddNumberOfDigitsFailsWithTheHighHalfWritten)
{
    Bytes bytes = {9, 9, 9, 9};
    EXPECT_EQ(hexdec2bin("abc", bytes.data()), 1);
    EXPECT_EQ(bytes, (Bytes{0xAB, 0xC0, 9, 9}));
}

TEST(Hexdec2bin, ABadDigitFailsWithTheBytesBeforeItWritten)
{
    Bytes bytes = {9, 9, 9, 9};
    EXPECT_EQ(hexdec2bin("0g", bytes.data()), 1);
    EXPECT_EQ(bytes, (Bytes{0x00, 9, 9, 9}));
}

TEST(Hexdec2bin, AnEmptyTextWritesNothing)
{
    Bytes bytes = {9, 9, 9, 9};
    EXPECT_EQ(hexdec2bin("", bytes.data()), 0);
    EXPECT_EQ(bytes, (Bytes{9, 9, 9, 9}));
}

TEST(Hexdec2bin, CharactersAboveAsciiAreNoDigits)
{
    Bytes bytes = {9, 9, 9, 9};
    EXPECT_EQ(hexdec2bin("\xe9\xff", bytes.data()), 1);
}

TEST(Hexdec2binl, StopsAtTheMaximumWithoutLookingAtTheRest)
{
    Bytes bytes = {9, 9, 9, 9};
    EXPECT_EQ(hexdec2binl("0102zz", bytes.data(), 2), 0);
    EXPECT_EQ(bytes, (Bytes{1, 2, 9, 9}));
}

TEST(Hexdec2binl, AMaximumOfZeroStillWritesOneByte)
{
    Bytes bytes = {9, 9, 9, 9};
    EXPECT_EQ(hexdec2binl("0102", bytes.data(), 0), 0);
    EXPECT_EQ(bytes, (Bytes{1, 9, 9, 9}));
}

TEST(Hexdec2binl, ABadDigitBeforeTheMaximumFails)
{
    Bytes bytes = {9, 9, 9, 9};
    EXPECT_EQ(hexdec2binl("01z2", bytes.data(), 2), 1);
}

TEST(Hexdec2binl, AnOddNumberOfDigitsBeforeTheMaximumFails)
{
    Bytes bytes = {9, 9, 9, 9};
    EXPECT_EQ(hexdec2binl("012", bytes.data(), 2), 1);
}

TEST(Bin2hexdec, WritesUpperCaseDigitsAndATerminator)
{
    char text[] = "xxxxxx";
    bin2hexdec("\x0A\xFF", text, 2);
    EXPECT_STREQ(text, "0AFF");
}

TEST(Bin2hexdec, NoBytesAreAnEmptyText)
{
    char text[] = "xx";
    bin2hexdec("", text, 0);
    EXPECT_STREQ(text, "");
}

TEST(Strtoknn, KeepsAnEmptyTokenBetweenDelimiters)
{
    EXPECT_EQ(tokensOf("x,,y", ","), (std::vector<std::string>{"x", "", "y"}));
}

TEST(Strtoknn, KeepsALeadingEmptyToken)
{
    EXPECT_EQ(tokensOf(":a", ":"), (std::vector<std::string>{"", "a"}));
}

TEST(Strtoknn, HasNoTokenBehindATrailingDelimiter)
{
    EXPECT_EQ(tokensOf("a:", ":"), (std::vector<std::string>{"a"}));
}

TEST(Strtoknn, AnEmptyTextHasNoToken)
{
    EXPECT_TRUE(tokensOf("", ",").empty());
}

TEST(Strtoknn, AnyOfSeveralDelimitersEndsAToken)
{
    EXPECT_EQ(tokensOf("a=b,c", "=,"), (std::vector<std::string>{"a", "b", "c"}));
}

TEST(Strtoknn, GoingOnFromNowhereIsTheEnd)
{
    char *position = nullptr;
    EXPECT_EQ(strtoknn_r(nullptr, ",", &position), nullptr);
}

TEST(Strncpy2, FillsBehindAShorterSourceWithZeros)
{
    char target[] = "xxxxx";
    EXPECT_EQ(strncpy2(target, "ab", 4), target);
    EXPECT_EQ(std::string(target, 5), std::string("ab\0\0x", 5));
}

TEST(Strncpy2, LeavesAnEquallyLongSourceUnterminated)
{
    char target[] = "xxxxx";
    strncpy2(target, "abcd", 4);
    EXPECT_STREQ(target, "abcdx");
}

TEST(Strncpy2, CutsALongerSource)
{
    char target[] = "xxxxx";
    strncpy2(target, "abcdefgh", 4);
    EXPECT_STREQ(target, "abcdx");
}

TEST(Trim, RemovesBlanksAtBothEndsAndCountsThem)
{
    char text[] = "  ab c  ";
    EXPECT_EQ(trim(text), 4);
    EXPECT_STREQ(text, "ab c");
}

TEST(Trim, ATextOfBlanksBecomesEmpty)
{
    char text[] = "   ";
    EXPECT_EQ(trim(text), 3);
    EXPECT_STREQ(text, "");
}

TEST(Trim, TabsStay)
{
    char text[] = "\ta ";
    EXPECT_EQ(trim(text), 1);
    EXPECT_STREQ(text, "\ta");
}

TEST(Trim, ANullTextGivesMinusOne)
{
    EXPECT_EQ(trim(nullptr), -1);
}

TEST(ReverseEndian, SwapsForNormalIntegers)
{
    RunParams params = DEFAULT_RUN_PARAMS;
    params.DataEncoding = MQENC_NORMAL;
    EXPECT_EQ(reverseEndian(0x01020304, &params), 0x04030201);
    EXPECT_EQ(reverseEndian64(0x0102030405060708, &params), 0x0807060504030201);
}

TEST(ReverseEndian, LeavesReversedIntegers)
{
    RunParams params = DEFAULT_RUN_PARAMS;
    params.DataEncoding = 546;
    EXPECT_EQ(reverseEndian(0x01020304, &params), 0x01020304);
    EXPECT_EQ(reverseEndian64(0x0102030405060708, &params), 0x0102030405060708);
}

TEST(ReverseEndian, LooksAtTheIntegerBitOnly)
{
    RunParams params = DEFAULT_RUN_PARAMS;
    params.DataEncoding = MQENC_INTEGER_NORMAL;
    EXPECT_EQ(reverseEndian(1, &params), 0x01000000);
    params.DataEncoding = MQENC_DECIMAL_NORMAL | MQENC_FLOAT_IEEE_NORMAL;
    EXPECT_EQ(reverseEndian(1, &params), 1);
}

TEST(ReverseEndian, KeepsNegativeValues)
{
    RunParams params = DEFAULT_RUN_PARAMS;
    params.DataEncoding = MQENC_NORMAL;
    EXPECT_EQ(reverseEndian(-2, &params), static_cast<MQLONG>(0xFEFFFFFF));
}
