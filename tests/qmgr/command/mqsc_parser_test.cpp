#include "qmgr/command/mqsc_parser.h"

#include <gtest/gtest.h>

#include <random>

namespace mqrig::qmgr::command {
namespace {

TEST(MqscParser, WordsAreTakenInUpperCaseAndInOrder)
{
    const ParsedCommand command = parseMqsc("define qlocal(q1) replace MaxDepth(5)");
    ASSERT_TRUE(command.ok);
    ASSERT_EQ(command.words.size(), 4U);
    EXPECT_EQ(command.words[0].keyword, "DEFINE");
    EXPECT_EQ(command.words[1].keyword, "QLOCAL");
    EXPECT_EQ(command.words[1].value(), "Q1");
    EXPECT_EQ(command.words[2].keyword, "REPLACE");
    EXPECT_FALSE(command.words[2].hasValue);
    EXPECT_EQ(command.words[3].value(), "5");
}

TEST(MqscParser, QuotedValueIsKeptAsItIs)
{
    const ParsedCommand command = parseMqsc("DEF QL('a.Queue') DESCR('it''s (a), b; c ')");
    ASSERT_TRUE(command.ok);
    EXPECT_EQ(command.words[1].value(), "a.Queue");
    EXPECT_TRUE(command.words[1].values[0].quoted);
    EXPECT_EQ(command.words[2].value(), "it's (a), b; c ");
}

TEST(MqscParser, BlanksMayStandAnywhereBetweenParts)
{
    const ParsedCommand command = parseMqsc("  DEF\tQL  ( Q1 )  MAXDEPTH ( 5 )  ");
    ASSERT_TRUE(command.ok);
    ASSERT_EQ(command.words.size(), 3U);
    EXPECT_EQ(command.words[1].value(), "Q1");
    EXPECT_EQ(command.words[2].value(), "5");
}

TEST(MqscParser, ParametersMayBeSeparatedByCommas)
{
    const ParsedCommand command = parseMqsc("ALTER QL(Q1) MAXDEPTH(5),MAXMSGL(6), SHARE");
    ASSERT_TRUE(command.ok);
    EXPECT_EQ(command.words.size(), 5U);
    EXPECT_FALSE(parseMqsc("ALTER QL(Q1) MAXDEPTH(5),,SHARE").ok);
    EXPECT_FALSE(parseMqsc("ALTER QL(Q1) MAXDEPTH(5),").ok);
    EXPECT_FALSE(parseMqsc("ALTER, QL(Q1)").ok);
}

TEST(MqscParser, SemicolonEndsTheCommand)
{
    EXPECT_TRUE(parseMqsc("DEF QL(Q1);").ok);
    EXPECT_TRUE(parseMqsc("DEF QL(Q1) ;  ").ok);
    EXPECT_FALSE(parseMqsc("DEF QL(Q1); DEF QL(Q2)").ok);
}

TEST(MqscParser, EmptyParenthesesAreABlankValue)
{
    const ParsedCommand command = parseMqsc("ALTER QMGR DEADQ() DESCR('')");
    ASSERT_TRUE(command.ok);
    EXPECT_TRUE(command.words[2].hasValue);
    EXPECT_EQ(command.words[2].value(), "");
    EXPECT_EQ(command.words[3].value(), "");
}

TEST(MqscParser, SeveralValuesAreAllThere)
{
    const ParsedCommand command = parseMqsc("DIS QL(*) WHERE(CURDEPTH GT 0) NAMES(A,'b', C)");
    ASSERT_TRUE(command.ok);
    ASSERT_EQ(command.words[2].values.size(), 3U);
    EXPECT_EQ(command.words[2].values[1].text, "GT");
    ASSERT_EQ(command.words[3].values.size(), 3U);
    EXPECT_EQ(command.words[3].values[1].text, "b");
}

TEST(MqscParser, FaultsSayWhereAndWhy)
{
    struct Case {
        const char *text;
        std::size_t offset;
        const char *reason;
    };
    for (const Case &c :
         {Case{"DEF QL(Q1", 9, "a closing parenthesis is missing"},
          Case{"DEF QL(", 7, "a closing parenthesis is missing"},
          Case{"DEF QL(Q1) DESCR('abc", 17, "a closing quote is missing"},
          Case{"DEF QL(Q1) DESCR('abc''", 17, "a closing quote is missing"},
          Case{"DEF QL(Q1) )", 11, "a keyword is expected"}, Case{"DEF QL(Q1) (5)", 11, "a keyword is expected"},
          Case{"DEF QL(A,,B)", 9, "a value is expected"},
          Case{"DEF QL(A(B))", 8, "a value with parentheses in it stands between quotes"}}) {
        const ParsedCommand command = parseMqsc(c.text);
        EXPECT_FALSE(command.ok) << c.text;
        EXPECT_EQ(command.fault.offset, c.offset) << c.text;
        EXPECT_EQ(command.fault.reason, c.reason) << c.text;
    }
}

TEST(MqscParser, AnyBytesAreParsedOrRefused)
{
    std::mt19937 random(1);
    using namespace std::string_literals;
    const std::string alphabet = "DEFQL()',;+-* \t\n\0\xff''(("s;
    for (int run = 0; run < 20000; ++run) {
        std::string text;
        for (std::size_t length = random() % 60; length > 0; --length)
            text += alphabet[random() % alphabet.size()];
        const ParsedCommand command = parseMqsc(text);
        if (command.ok) continue;
        EXPECT_LE(command.fault.offset, text.size());
        EXPECT_FALSE(command.fault.reason.empty());
    }
}

} // namespace
} // namespace mqrig::qmgr::command
