#include "qmgr/properties/selector.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <string>
#include <vector>

namespace mqrig::qmgr::properties {
namespace {

using namespace std::string_literals;

// What the conditions below are asked of.
const std::map<std::string, SelectorValue> message = {
    {"colour", SelectorValue::ofText("red")},
    {"empty", SelectorValue::ofText("")},
    {"size", SelectorValue::of(std::int64_t{42})},
    {"weight", SelectorValue::of(2.5)},
    {"none", SelectorValue::of(std::numeric_limits<double>::quiet_NaN())},
    {"large", SelectorValue::of(std::numeric_limits<std::int64_t>::max())},
    {"fresh", SelectorValue::of(true)},
    {"stale", SelectorValue::of(false)},
    {"bytes", SelectorValue::ofBytes("\x0A\xFC\x23")},
    {"umlaut", SelectorValue::ofText("M\xC3\xBCller")},
    {"percent", SelectorValue::ofText("100%")},
    {"a.b.c", SelectorValue::of(std::int64_t{1})},
    {"Root.MQMD.Priority", SelectorValue::of(std::int64_t{4})},
};

enum Answer { True, False, Unknown, Fault, AlwaysFalse };

std::ostream &operator<<(std::ostream &out, Answer answer)
{
    static const char *const names[] = {"True", "False", "Unknown", "Fault", "AlwaysFalse"};
    return out << names[answer];
}

Answer answerOf(const std::string &text)
{
    Selector selector;
    switch (Selector::compile(text, selector)) {
    case MQRC_NONE:
        break;
    case MQRC_SELECTOR_ALWAYS_FALSE:
        return AlwaysFalse;
    default:
        return Fault;
    }
    std::vector<SelectorValue> values;
    for (const std::string &name : selector.names()) {
        const auto found = message.find(name);
        values.push_back(found == message.end() ? SelectorValue() : found->second);
    }
    const SelectorValue value = selector.evaluate(values);
    EXPECT_EQ(selector.holds(values), value.isTrue());
    return value.isTrue() ? True : value.isFalse() ? False : Unknown;
}

struct Case {
    const char *text;
    Answer answer;
};

void check(std::initializer_list<Case> cases)
{
    for (const Case &one : cases)
        EXPECT_EQ(answerOf(one.text), one.answer) << one.text;
}

TEST(Selector, ComparesLikeTypes)
{
    check({{"colour = 'red'", True},
           {"colour = 'RED'", False},
           {"colour <> 'blue'", True},
           {"'red' = colour", True},
           {"empty = ''", True},
           {"size = 42", True},
           {"size <> 42", False},
           {"size > 41", True},
           {"size >= 43", False},
           {"size < 42.5", True},
           {"weight <= 2.5", True},
           {"weight > 2", True},
           {"fresh = TRUE", True},
           {"fresh <> true", False},
           {"stale = FALSE", True},
           {"fresh", True},
           {"stale", False},
           {"NOT stale", True},
           {"bytes = \"0x0AFC23\"", True},
           {"bytes = \"0X0afc23\"", True},
           {"bytes = \"0x0AFC2300\"", False},
           {"bytes = \"0x000AFC23\"", False},
           {"bytes <> \"0x23FC0A\"", True},
           {"a.b.c = 1", True},
           {"Root.MQMD.Priority = 4", True}});
}

TEST(Selector, UnlikeTypesAreNeverEqualNorInOrder)
{
    check({{"colour = 42", False},
           {"colour <> 42", False},
           {"size = '42'", False},
           {"fresh = 'TRUE'", False},
           {"bytes = '0x0AFC23'", False},
           {"colour > 1", False},
           {"fresh = 1", False}});
}

TEST(Selector, WhatIsNoNumberIsUnequalToAllAndInNoOrder)
{
    check({{"none = none", False},
           {"none <> none", True},
           {"none = weight", False},
           {"size <> none", True},
           {"none < 1", False},
           {"none > 1", False},
           {"none <= none", False},
           {"1 >= none", False},
           {"none BETWEEN 0 AND 1", False},
           {"none NOT BETWEEN 0 AND 1", True},
           {"none + 1 = none + 1", False},
           {"none IS NULL", False}});
}

TEST(Selector, WhatIsMissingIsUnknown)
{
    check({{"missing = 1", Unknown},
           {"missing <> 1", Unknown},
           {"NOT missing = 1", Unknown},
           {"missing", Unknown},
           {"missing IS NULL", True},
           {"missing IS NOT NULL", False},
           {"size IS NULL", False},
           {"size is not null", True},
           {"missing + 1 = 1", Unknown},
           {"missing BETWEEN 1 AND 2", Unknown},
           {"missing LIKE '%'", Unknown},
           {"missing IN ('a')", Unknown},
           {"missing NOT IN ('a')", Unknown}});
}

TEST(Selector, TruthHasThreeValues)
{
    check({{"fresh AND fresh", True},
           {"fresh AND stale", False},
           {"fresh AND missing", Unknown},
           {"stale AND missing", False},
           {"missing AND missing", Unknown},
           {"missing AND stale", False},
           {"fresh OR missing", True},
           {"missing OR fresh", True},
           {"stale OR missing", Unknown},
           {"stale OR stale", False},
           {"NOT missing", Unknown},
           {"NOT NOT fresh", True},
           {"NOT colour", Unknown},
           {"size OR fresh", True},
           {"size AND fresh", Unknown}});
}

TEST(Selector, OperatorsBindAsInSql)
{
    check({{"fresh OR stale AND stale", True},
           {"(fresh OR stale) AND stale", False},
           {"NOT stale AND stale", False},
           {"NOT (stale AND stale)", True},
           {"1 + 2 * 3 = 7", True},
           {"(1 + 2) * 3 = 9", True},
           {"10 - 4 - 3 = 3", True},
           {"100 / 10 / 5 = 2", True},
           {"-2 * -3 = 6", True},
           {"- - 2 = 2", True},
           {"+size = 42", True},
           {"-size < -41", True},
           {"size - 2 = 40 AND size + -2 = 40", True},
           {"((((size)))) = 42", True}});
}

TEST(Selector, NumbersAreIntegersAsLongAsTheyFit)
{
    check({{"7 / 2 = 3", True},
           {"7.0 / 2 = 3.5", True},
           {"size / 0 = 1", Unknown},
           {"weight / 0 = 1", Unknown},
           {"large = 9223372036854775807", True},
           {"large = 9223372036854775807.0", False},
           {"large + 1 > large", True},
           {"large * 2 > large", True},
           {"-9223372036854775808 < -large", True},
           {"9223372036854775808 > 1", Fault},
           {"- -9223372036854775808 > large", True},
           {"+9223372036854775808 > large", Fault},
           {"18446744073709551616 > large", Fault},
           {"-9223372036854775808 / -1 > large", True}});
}

TEST(Selector, NumbersAreReadAsInJava)
{
    check({{"57 = 57L", True},
           {"57l = 57", True},
           {"0xA = 10", True},
           {"0XaF = 175", True},
           {"0177 = 127", True},
           {"0 = 00", True},
           {"09 = 9", Fault},
           {"0xG = 1", Fault},
           {"0x = 0", Fault},
           {"7E3 = 7000", True},
           {"57.9e-1 = 5.79", True},
           {"7. = 7", True},
           {".5 = 0.5", True},
           {"0.5 = .5", True},
           {"1e = 1", Fault},
           {"1e400 > 1", Fault},
           {"1a = 1", Fault},
           {"1.5x = 1", Fault},
           {"0x8000000000000000 = 1", Fault},
           {"-0x8000000000000000 < 0", True}});
}

TEST(Selector, Between)
{
    check({{"size BETWEEN 42 AND 43", True},
           {"size between 43 and 44", False},
           {"size NOT BETWEEN 43 AND 44", True},
           {"size BETWEEN 40 AND 41 OR fresh", True},
           {"size BETWEEN 20 + 20 AND 50 AND fresh", True},
           {"colour BETWEEN 1 AND 2", False},
           {"size BETWEEN 1 AND missing", Unknown},
           {"size BETWEEN 100 AND missing", False},
           {"size BETWEEN 'a' AND 'b'", Fault},
           {"size BETWEEN 1", Fault},
           {"size BETWEEN 1 OR 2", Fault}});
}

TEST(Selector, In)
{
    check({{"colour IN ('blue', 'red')", True},
           {"colour NOT IN ('blue', 'red')", False},
           {"colour in ('blue')", False},
           {"colour NOT IN ('blue')", True},
           {"size IN ('42')", False},
           {"colour IN ()", Fault},
           {"colour IN ('red'", Fault},
           {"colour IN ('red',)", Fault},
           {"colour IN (1)", Fault},
           {"'red' IN ('red')", Fault},
           {"(colour) IN ('red')", Fault}});
}

TEST(Selector, Like)
{
    check({{"colour LIKE 'red'", True},
           {"colour LIKE 'r_d'", True},
           {"colour LIKE 'r%'", True},
           {"colour LIKE '%d'", True},
           {"colour LIKE '%'", True},
           {"colour LIKE '%e%'", True},
           {"colour LIKE '___'", True},
           {"colour LIKE '__'", False},
           {"colour LIKE 'R%'", False},
           {"colour NOT LIKE 'b%'", True},
           {"empty LIKE ''", True},
           {"empty LIKE '_'", False},
           {"empty LIKE '%%'", True},
           {"umlaut LIKE 'M_ller'", True},
           {"umlaut LIKE 'M\xC3\xBCller'", True},
           {"percent LIKE '100!%' ESCAPE '!'", True},
           {"colour LIKE 'r!_d' ESCAPE '!'", False},
           {"percent LIKE '100!x' ESCAPE '!'", False},
           {"percent LIKE '100%%' ESCAPE '%'", True},
           {"size LIKE '4%'", False},
           {"colour LIKE 'red!' ESCAPE '!'", Fault},
           {"colour LIKE 'red' ESCAPE 'xy'", Fault},
           {"colour LIKE 'red' ESCAPE ''", Fault},
           {"colour LIKE 5", Fault},
           {"'red' LIKE 'red'", Fault},
           {"colour LIKE other", Fault}});
}

TEST(Selector, LikeTriesEveryPlace)
{
    LikePattern pattern;
    ASSERT_TRUE(LikePattern::parse("%ab%abc%", 0, pattern));
    EXPECT_TRUE(pattern.matches("xxabyyababcz"));
    EXPECT_FALSE(pattern.matches("xxabcyyabab"));
    ASSERT_TRUE(LikePattern::parse("%a_c", 0, pattern));
    EXPECT_TRUE(pattern.matches("aacabc"));
    EXPECT_FALSE(pattern.matches("abcd"));
}

TEST(Selector, StringsDoubleTheirQuotes)
{
    check({{"colour = 'it''s'", False},
           {"'it''s' = 'it''s'", True},
           {"'''' = ''''", True},
           {"colour = 'red", Fault},
           {"colour = red'", Fault},
           {"colour = \"red\"", Fault}});
}

TEST(Selector, WhatLooksLikeOtherLanguagesIsRefused)
{
    check({{"size == 42", Fault},
           {"size != 42", Fault},
           {"fresh && fresh", Fault},
           {"fresh || fresh", Fault},
           {"20 < size < 50", Fault},
           {"size > 1 > 2", Fault},
           {"colour = 'red';", Fault},
           {"bytes = \"0xAFC23\"", Fault},
           {"bytes = \"0x\"", Fault},
           {"bytes = \"AFC2\"", Fault}});
}

TEST(Selector, OperandsThatCanNeverFitAreRefused)
{
    check({{"'a' > 'b'", Fault},
           {"TRUE < FALSE", Fault},
           {"colour > 'a'", Fault},
           {"'a' + 1 = 2", Fault},
           {"size AND 'a'", Fault},
           {"1", Fault},
           {"'red'", Fault},
           {"size + 1", Fault},
           {"NOT 1", Fault},
           {"1 AND fresh", Fault},
           {"-TRUE = 1", Fault},
           {"-'a' = 1", Fault},
           {"(size > 1) + 1 = 2", Fault},
           {"(size > 1) = fresh", True}});
}

TEST(Selector, SentencesThatEndTooSoonOrTooLate)
{
    check({{"", Fault},
           {"   ", Fault},
           {"colour =", Fault},
           {"= 'red'", Fault},
           {"(fresh", Fault},
           {"fresh)", Fault},
           {"()", Fault},
           {"fresh fresh", Fault},
           {"fresh AND", Fault},
           {"OR fresh", Fault},
           {"NOT", Fault},
           {"size IS", Fault},
           {"size IS NOT", Fault},
           {"size NOT", Fault},
           {"1 IS NULL", Fault},
           {"size + IS NULL", Fault},
           {"NULL = NULL", Fault},
           {"and", Fault},
           {".x = 1", Fault},
           {"x. = 1", Fault},
           {"a..b = 1", Fault},
           {"#", Fault},
           {"size = 42 #", Fault}});
}

TEST(Selector, ConditionsWithoutNamesAreDecidedAtOnce)
{
    check({{"TRUE", True},
           {"TRUE <> FALSE", True},
           {"1 = 1 OR 1 = 2", True},
           {"FALSE", AlwaysFalse},
           {"1 = 2", AlwaysFalse},
           {"TRUE = 'TRUE'", AlwaysFalse},
           {"1 / 0 = 1", AlwaysFalse}});
}

TEST(Selector, WordsAreNotCaseSensitiveAndNamesAre)
{
    check({{"Colour IS NULL", True}, {"colour Is Not nUlL aNd NoT stale", True}, {"\tsize\n=\r42 ", True}});
}

TEST(Selector, EachNameIsAskedForOnce)
{
    Selector selector;
    ASSERT_EQ(Selector::compile("b = 1 OR a = 2 OR b = 3", selector), MQRC_NONE);
    EXPECT_EQ(selector.names(), (std::vector<std::string>{"b", "a"}));
}

TEST(Selector, DepthAndLengthAreLimited)
{
    const auto nested = [](std::size_t depth) { return std::string(depth, '(') + "fresh" + std::string(depth, ')'); };
    EXPECT_EQ(answerOf(nested(Selector::deepest)), True);
    EXPECT_EQ(answerOf(nested(Selector::deepest + 1)), Fault);
    EXPECT_EQ(answerOf(std::string(10000, '(')), Fault);

    std::string longOne = "stale";
    while (longOne.size() + 9 <= MQ_SELECTOR_LENGTH)
        longOne += " OR stale";
    EXPECT_EQ(answerOf(longOne), False);
    longOne.resize(MQ_SELECTOR_LENGTH, ' ');
    EXPECT_EQ(answerOf(longOne), False);
    EXPECT_EQ(answerOf(longOne + " "), Fault);

    std::string nots;
    while (nots.size() + 10 < MQ_SELECTOR_LENGTH)
        nots += "NOT NOT ";
    EXPECT_EQ(answerOf(nots + "fresh"), True);
    EXPECT_EQ(answerOf("size = " + std::string(10000, '-') + "42"), True);
}

TEST(Selector, TextThatIsNoUtf8IsRefused)
{
    check({{"colour = '\xC3'", Fault}, {"\xFF = 1", Fault}, {"colour = '\xC3\xA9'", False}});
}

TEST(Selector, ZeroBytesAreNoBlanks)
{
    EXPECT_EQ(answerOf("fresh\0"s), Fault);
    EXPECT_EQ(answerOf("colour = 'a\0b'"s), False);
}

} // namespace
} // namespace mqrig::qmgr::properties
