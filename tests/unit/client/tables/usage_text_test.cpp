// The usage text.

#include "option_rows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

using testing::Contains;
using testing::HasSubstr;

namespace {

std::vector<std::string> linesOfUsage()
{
    std::vector<std::string> lines;
    std::istringstream text(CMD_LINE);
    for (std::string line; std::getline(text, line);)
        lines.push_back(line);
    return lines;
}

/// The line of an option, or an empty one.
std::string lineOf(const std::string &flag)
{
    for (const std::string &line : linesOfUsage()) {
        if (line.compare(0, flag.size() + 3, "  " + flag + " ") == 0) return line;
    }
    return "";
}

} // namespace

TEST(UsageText, HasALineForEveryOption)
{
    for (const OptionGroup &group : OPTION_GROUPS) {
        for (const OptionRow &row : group.rows) {
            EXPECT_THAT(lineOf(row.flag), HasSubstr(row.help)) << row.flag;
            EXPECT_THAT(lineOf(row.flag), HasSubstr(row.value)) << row.flag;
        }
    }
}

TEST(UsageText, HasALineForEveryPrefixOfConstants)
{
    const std::string text = CMD_LINE;
    for (const ConstantRow &row : CONSTANT_ROWS)
        EXPECT_THAT(text, HasSubstr(row.help)) << row.prefix;
}

TEST(UsageText, HasTheOptionsInAlignedColumns)
{
    constexpr std::size_t Column = 24;
    for (const OptionGroup &group : OPTION_GROUPS) {
        for (const OptionRow &row : group.rows)
            EXPECT_EQ(lineOf(row.flag).find(row.help), Column) << row.flag;
    }
}

TEST(UsageText, HasATitleForEveryGroup)
{
    for (const OptionGroup &group : OPTION_GROUPS) {
        EXPECT_THAT(linesOfUsage(), Contains(std::string(group.title) + ":"));
    }
}

TEST(UsageText, FitsIntoHundredAndTwentyColumns)
{
    for (const std::string &line : linesOfUsage())
        EXPECT_LE(line.size(), 120u) << line;
}

TEST(UsageText, EndsWithALineFeed)
{
    EXPECT_EQ(std::string(CMD_LINE).back(), '\n');
}

TEST(UsageText, HasTheSyntaxOfListsAsExamples)
{
    EXPECT_THAT(lineOf("-smp"), HasSubstr("MQTYPE_STRING:property name:value,..:.."));
    EXPECT_THAT(lineOf("-set"), HasSubstr("MQIA_INHIBIT_GET:MQQA_GET_ALLOWED,MQIA_TRIGGER_DEPTH:5"));
}

TEST(UsageText, SaysWhatAnOptionNeeds)
{
    EXPECT_THAT(lineOf("-or"), HasSubstr("MQOD_VERSION_2"));
    EXPECT_THAT(lineOf("-or"), HasSubstr("MQPMO_VERSION_2"));
    EXPECT_THAT(lineOf("-smp"), HasSubstr("MQPMO_VERSION_3"));
    for (const char *flag : {"-dl", "-as"}) {
        EXPECT_THAT(lineOf(flag), HasSubstr("MQMD_VERSION_2"));
        EXPECT_THAT(lineOf(flag), HasSubstr("MQPMO_LOGICAL_ORDER"));
        EXPECT_THAT(lineOf(flag), HasSubstr("-gi"));
    }
    EXPECT_THAT(lineOf("-kr"), HasSubstr("MQCNO_VERSION_4"));
    EXPECT_THAT(lineOf("-cu"), HasSubstr("MQCNO_VERSION_5"));
    EXPECT_THAT(lineOf("-cp"), HasSubstr("MQCNO_VERSION_5"));
    EXPECT_THAT(lineOf("-cs"), HasSubstr("MQCD_VERSION_7"));
    EXPECT_THAT(lineOf("-er"), HasSubstr("MQCD_VERSION_7"));
    EXPECT_THAT(lineOf("-cl"), HasSubstr("MQCD_VERSION_11"));
    EXPECT_THAT(lineOf("MQGMO_*"), HasSubstr("MQGMO_PROPERTIES_IN_HANDLE needs MQGMO_VERSION_4"));
    EXPECT_THAT(lineOf("MQMO_*"), HasSubstr("MQGMO_VERSION_2"));
}

TEST(UsageText, SaysHowConnectOptionsReachTheQueueManager)
{
    EXPECT_THAT(lineOf("MQCNO_*"), HasSubstr("with -ni, or with an option that selects MQCONNX"));
    EXPECT_THAT(lineOf("MQCSP_*"), HasSubstr("MQCSP_AUTH_NONE does nothing else"));
}

TEST(UsageText, SaysTheDefaults)
{
    EXPECT_THAT(lineOf("-sz"), HasSubstr("12000"));
    EXPECT_THAT(lineOf("-ds"), HasSubstr("128"));
    EXPECT_THAT(lineOf("-n"), HasSubstr("default 1"));
    EXPECT_THAT(lineOf("-c"), HasSubstr("default 1"));
    EXPECT_THAT(lineOf("-ch"), HasSubstr("SYSTEM.DEF.SVRCONN"));
    EXPECT_THAT(lineOf("-dq"), HasSubstr("AMQ.*"));
}
