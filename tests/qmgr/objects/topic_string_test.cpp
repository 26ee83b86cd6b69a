#include "qmgr/objects/topic_string.h"

#include <gtest/gtest.h>

namespace mqrig::qmgr::objects {
namespace {

using Levels = std::vector<std::string_view>;

TEST(TopicString, LevelsStandBetweenSlashes)
{
    EXPECT_EQ(topicLevels(""), Levels{});
    EXPECT_EQ(topicLevels("a"), Levels{"a"});
    EXPECT_EQ(topicLevels("a/b"), (Levels{"a", "b"}));
    EXPECT_EQ(topicLevels("/a"), (Levels{"", "a"}));
    EXPECT_EQ(topicLevels("a//b/"), (Levels{"a", "", "b", ""}));
}

TEST(TopicString, ParentIsOneLevelUp)
{
    EXPECT_EQ(parentTopic("a/b/c"), "a/b");
    EXPECT_EQ(parentTopic("a"), "");
    EXPECT_EQ(parentTopic("/a"), "");
    EXPECT_EQ(parentTopic(""), std::nullopt);
}

struct Case {
    const char *pattern;
    const char *topic;
    bool matches;
};

bool matches(const Case &row, WildcardScheme scheme)
{
    const auto pattern = TopicPattern::parse(row.pattern, scheme);
    return pattern && pattern->matches(row.topic);
}

TEST(TopicString, WildcardsOfLevelsMatchLevels)
{
    constexpr Case cases[] = {
        {"a", "a", true},
        {"a", "b", false},
        {"a", "a/", false},
        {"#", "a", true},
        {"#", "a/b/c", true},
        {"#", "", true},
        {"#", "/", true},
        {"+", "a", true},
        {"+", "a/b", false},
        {"+", "", false},
        {"+/+", "/a", true},
        {"a/+", "a", false},
        {"a/+", "a/b", true},
        {"a/+", "a/", true},
        {"a/+", "a/b/c", false},
        {"a/#", "a", true},
        {"a/#", "a/b", true},
        {"a/#", "a/b/c", true},
        {"a/#", "ab", false},
        {"#/c", "c", true},
        {"#/c", "a/b/c", true},
        {"#/c", "a/b/d", false},
        {"a/#/d", "a/d", true},
        {"a/#/d", "a/b/c/d", true},
        {"a/#/d", "a/b/c/e", false},
        {"a/#/b/#/c", "a/b/c", true},
        {"a/#/b/#/c", "a/b/x/b/y/c", true},
        {"a/#/b/#/c", "a/c", false},
        {"+/b/#", "a/b/c/d", true},
        {"a+", "a+", true},
        {"a+", "ab", false},
        {"a/b#", "a/b#", true},
        {"a/b#", "a/bc", false},
        {"*", "a", false},
        {"*", "*", true},
        {"/#", "a", false},
        {"/#", "/a/b", true},
        {"/+", "/a", true},
        {"A", "a", false},
    };
    for (const Case &row : cases)
        EXPECT_EQ(matches(row, WildcardScheme::Topic), row.matches) << row.pattern << " and " << row.topic;
}

TEST(TopicString, WildcardsOfCharactersMatchCharacters)
{
    constexpr Case cases[] = {
        {"a", "a", true},          {"*", "", true},           {"*", "a/b/c", true},  {"a*", "a", true},
        {"a*", "abc/d", true},     {"a*", "ba", false},       {"*c", "a/b/c", true}, {"*c", "a/b/d", false},
        {"a?c", "abc", true},      {"a?c", "a/c", true},      {"a?c", "ac", false},  {"a?c", "abbc", false},
        {"a*b*c", "a1b2c", true},  {"a*b*c", "a1c2b", false}, {"a%*", "a*", true},   {"a%*", "ab", false},
        {"100%%", "100%", true},   {"%?", "?", true},         {"%?", "a", false},    {"#", "#", true},
        {"#", "a", false},         {"+/b", "+/b", true},      {"+/b", "a/b", false}, {"?", "\xC3\xA4", true},
        {"?", "\xC3\xA4x", false}, {"??", "\xC3\xA4x", true}, {"*?", "", false},     {"*?", "abc", true},
    };
    for (const Case &row : cases)
        EXPECT_EQ(matches(row, WildcardScheme::Characters), row.matches) << row.pattern << " and " << row.topic;
}

TEST(TopicString, EscapeOfNothingIsNoPattern)
{
    for (const char *text : {"%", "a%", "%a", "%%%"})
        EXPECT_FALSE(TopicPattern::parse(text, WildcardScheme::Characters)) << text;
    EXPECT_TRUE(TopicPattern::parse("%", WildcardScheme::Topic));
}

TEST(TopicString, PatternWithoutWildcardsIsATopic)
{
    const auto pattern = TopicPattern::parse("100%%/%*", WildcardScheme::Characters);
    ASSERT_TRUE(pattern);
    EXPECT_FALSE(pattern->hasWildcards());
    EXPECT_EQ(pattern->topic(), "100%/*");
    EXPECT_EQ(pattern->levelsBeforeWildcard(), 2U);
}

TEST(TopicString, CountsTheLevelsBeforeItsWildcard)
{
    EXPECT_EQ(TopicPattern::parse("#", WildcardScheme::Topic)->levelsBeforeWildcard(), 0U);
    EXPECT_EQ(TopicPattern::parse("a/+/c", WildcardScheme::Topic)->levelsBeforeWildcard(), 1U);
    EXPECT_EQ(TopicPattern::parse("a/b", WildcardScheme::Topic)->levelsBeforeWildcard(), 2U);
    EXPECT_EQ(TopicPattern::parse("a/b*", WildcardScheme::Characters)->levelsBeforeWildcard(), 1U);
    EXPECT_EQ(TopicPattern::parse("*", WildcardScheme::Characters)->levelsBeforeWildcard(), 0U);
}

TEST(TopicString, LongPatternOfManyWildcardsIsMatchedInTime)
{
    std::string pattern;
    std::string topic;
    for (int i = 0; i < 2000; ++i) {
        pattern += "#/a/";
        topic += "a/";
    }
    EXPECT_TRUE(TopicPattern::parse(pattern + "#", WildcardScheme::Topic)->matches(topic));
    EXPECT_FALSE(TopicPattern::parse(pattern + "b", WildcardScheme::Topic)->matches(topic));
}

} // namespace
} // namespace mqrig::qmgr::objects
