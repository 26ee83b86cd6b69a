#include "qmgr/objects/attribute_value.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace mqrig::qmgr::objects {
namespace {

const Attribute &row(MQLONG selector)
{
    return *findSelector(ObjectKind::LocalQueue, selector);
}

TEST(AttributeValue, NumberKeepsItsLimits)
{
    const Attribute &depth = row(MQIA_MAX_Q_DEPTH);
    EXPECT_EQ(parseValue(depth, "0").value.number, 0);
    EXPECT_EQ(parseValue(depth, "999999999").value.number, 999999999);
    EXPECT_EQ(parseValue(depth, "1000000000").fault, ValueFault::OutOfRange);
    EXPECT_EQ(parseValue(depth, "-1").fault, ValueFault::OutOfRange);
    EXPECT_EQ(parseValue(depth, std::string(100000, '9')).fault, ValueFault::OutOfRange);
}

TEST(AttributeValue, NumberIsNothingButDigits)
{
    const Attribute &depth = row(MQIA_MAX_Q_DEPTH);
    for (const char *text : {"", " ", "abc", "12x", "1 2", "1.5", "+5", "0x10"})
        EXPECT_EQ(parseValue(depth, text).fault, ValueFault::NotANumber) << text;
}

TEST(AttributeValue, NumberMayHaveAKeyword)
{
    const Attribute &size = row(MQIA_MAX_Q_FILE_SIZE);
    const ParsedValue parsed = parseValue(size, "default");
    ASSERT_TRUE(parsed);
    EXPECT_EQ(formatAttribute(size, parsed.value), "MAXFSIZE(DEFAULT)");
    EXPECT_EQ(formatAttribute(size, {100, {}}), "MAXFSIZE(100)");
}

TEST(AttributeValue, KeywordMustBeOneOfTheRow)
{
    EXPECT_EQ(parseValue(row(MQIA_INHIBIT_PUT), "MAYBE").fault, ValueFault::UnknownWord);
    EXPECT_EQ(parseValue(row(MQIA_INHIBIT_PUT), "1").fault, ValueFault::UnknownWord);
    EXPECT_EQ(checkNumber(row(MQIA_INHIBIT_PUT), 2), ValueFault::UnknownWord);
    EXPECT_EQ(checkNumber(row(MQIA_INHIBIT_PUT), MQQA_PUT_INHIBITED), ValueFault::None);
}

TEST(AttributeValue, TextFitsItsFieldToTheLastByte)
{
    const Attribute &description = row(MQCA_Q_DESC);
    EXPECT_TRUE(parseValue(description, std::string(64, 'x')));
    EXPECT_EQ(parseValue(description, std::string(65, 'x')).fault, ValueFault::TooLong);
    EXPECT_TRUE(parseValue(description, std::string(64, 'x') + std::string(1000, ' ')));
}

TEST(AttributeValue, TextTakesNoControlCharacters)
{
    EXPECT_EQ(parseValue(row(MQCA_Q_DESC), std::string("a\0b", 3)).fault, ValueFault::BadCharacter);
    EXPECT_EQ(parseValue(row(MQCA_Q_DESC), "a\x1b[2Jb").fault, ValueFault::BadCharacter);
    EXPECT_TRUE(parseValue(row(MQCA_Q_DESC), "Gr\xc3\xbc\xc3\x9f"
                                             "e"));
}

TEST(AttributeValue, NameMayBeBlankButNotWrong)
{
    const Attribute &backout = row(MQCA_BACKOUT_REQ_Q_NAME);
    EXPECT_EQ(parseValue(backout, "  ").value.text, "");
    EXPECT_TRUE(parseValue(backout, "A.QUEUE"));
    EXPECT_EQ(parseValue(backout, "A QUEUE").fault, ValueFault::BadName);
    EXPECT_EQ(parseValue(backout, std::string(49, 'A')).fault, ValueFault::TooLong);
}

TEST(AttributeValue, ControlCharactersAreShownAsDots)
{
    const Attribute &descr = *findKeyword(ObjectKind::LocalQueue, "DESCR").attribute;
    EXPECT_EQ(formatAttribute(descr, {0, "a\x1b[2J\nb\x7f"}), "DESCR(a.[2J.b.)");
}

TEST(AttributeValue, ShownAsTheCommandLanguageWritesIt)
{
    EXPECT_EQ(formatAttribute(row(MQIA_MAX_Q_DEPTH), {5000, {}}), "MAXDEPTH(5000)");
    EXPECT_EQ(formatAttribute(row(MQIA_INHIBIT_GET), {MQQA_GET_INHIBITED, {}}), "GET(DISABLED)");
    EXPECT_EQ(formatAttribute(row(MQIA_SHAREABILITY), {MQQA_NOT_SHAREABLE, {}}), "NOSHARE");
    EXPECT_EQ(formatAttribute(row(MQCA_Q_DESC), {0, ""}), "DESCR( )");
    EXPECT_EQ(formatAttribute(row(MQCA_Q_DESC), {0, "a b"}), "DESCR(a b)");
    EXPECT_EQ(formatAttribute(row(MQIA_INHIBIT_GET), {77, {}}), "GET(77)");
}

TEST(AttributeValue, NameListIsOneTextWithCommas)
{
    const Attribute &names = *findKeyword(ObjectKind::Namelist, "NAMES").attribute;
    const ParsedValue two = parseValue(names, "A.QUEUE,b.queue");
    ASSERT_TRUE(two);
    EXPECT_EQ(formatAttribute(names, two.value), "NAMES(A.QUEUE,b.queue)");
    EXPECT_EQ(splitNames(two.value.text), (std::vector<std::string_view>{"A.QUEUE", "b.queue"}));
    EXPECT_EQ(formatAttribute(names, parseValue(names, "").value), "NAMES( )");
    EXPECT_TRUE(splitNames("").empty());
}

TEST(AttributeValue, NameListTakesOnlyNamesAndNotTooMany)
{
    const Attribute &names = *findKeyword(ObjectKind::Namelist, "NAMES").attribute;
    EXPECT_EQ(checkText(names, "A,,B"), ValueFault::BadName);
    EXPECT_EQ(checkText(names, "A,"), ValueFault::BadName);
    EXPECT_EQ(checkText(names, "A B"), ValueFault::BadName);
    EXPECT_EQ(checkText(names, std::string(49, 'A')), ValueFault::TooLong);
    std::string many = "N";
    for (MQLONG i = 1; i < maxNames; ++i)
        many += ",N";
    EXPECT_EQ(checkText(names, many), ValueFault::None);
    EXPECT_EQ(checkText(names, many + ",N"), ValueFault::TooMany);
}

} // namespace
} // namespace mqrig::qmgr::objects
