#include "qmgr/properties/property_name.h"

#include <gtest/gtest.h>

namespace mqrig::qmgr::properties {
namespace {

MQLONG check(std::string_view name, NameCheck how = NameCheck::Full)
{
    std::string canonical;
    return canonicalName(name, how, canonical);
}

std::string canonical(std::string_view name)
{
    std::string result;
    EXPECT_EQ(canonicalName(name, NameCheck::Full, result), MQRC_NONE) << name;
    return result;
}

NamePattern pattern(std::string_view text)
{
    NamePattern result;
    EXPECT_EQ(NamePattern::parse(text, result), MQRC_NONE) << text;
    return result;
}

TEST(PropertyName, IdentifiersAreNames)
{
    for (const char *name : {"color", "_a", "$x", "a.b", "a.b.c", "a1", "\u00e4\u00f6", "usr.color", "mq_usr.a.b",
                             "mqdata", "notNull", "Bodyguard", "Rooted"})
        EXPECT_EQ(check(name), MQRC_NONE) << name;
}

TEST(PropertyName, OtherCharactersAre2442)
{
    for (const char *name :
         {"1a", "a b", "a-b", "a=b", "a%", "a\tb", ".a", "a.", "a..b", "a\xC2\xA0z", "\xFF", "\U0001F600"})
        EXPECT_EQ(check(name), MQRC_PROPERTY_NAME_ERROR) << name;
}

TEST(PropertyName, WordsOfSelectorsAre2442InAnyCase)
{
    for (const char *name : {"NULL", "null", "True", "FALSE", "not", "And", "OR", "BETWEEN", "like", "IN", "is",
                             "Escape", "usr.NULL", "usr.in"})
        EXPECT_EQ(check(name), MQRC_PROPERTY_NAME_ERROR) << name;
}

TEST(PropertyName, ReservedPrefixesAre2442)
{
    for (const char *name : {"JMSFoo", "usr.JMSFoo", "usr.JMSType", "JMSPriority", "Body.x", "Root.x", "Body", "Root",
                             "mq.a.b", "MQext.a.b", "Mqps.x.y"})
        EXPECT_EQ(check(name), MQRC_PROPERTY_NAME_ERROR) << name;
}

TEST(PropertyName, NamesOfJmsStandForTheirFolders)
{
    EXPECT_EQ(canonical("JMSCorrelationID"), "jms.Cid");
    EXPECT_EQ(canonical("JMSReplyTo"), "jms.Rto");
    EXPECT_EQ(canonical("JMSType"), "mcd.Type");
    EXPECT_EQ(canonical("JMSXGroupID"), "jms.Gid");
    EXPECT_EQ(canonical("JMSXGroupSeq"), "jms.Seq");
}

TEST(PropertyName, ProgramsAreToldTheNamesOfJmsAndOfPublications)
{
    for (const char *name : {"JMSCorrelationID", "JMSReplyTo", "JMSType", "JMSXGroupID", "JMSXGroupSeq",
                             "MQTopicString", "MQSubUserData", "MQIsRetained", "MQPubOptions", "MQPubLevel"})
        EXPECT_EQ(toldName(canonical(name)), name);
    EXPECT_EQ(toldName("jms.Dst"), "JMSDestination");
    EXPECT_EQ(toldName("jms.Exp"), "JMSExpiration");
    EXPECT_EQ(toldName("jms.Foo"), "jms.Foo");
    EXPECT_EQ(toldName("color"), "color");
}

TEST(PropertyName, EmptyNameIs2513)
{
    EXPECT_EQ(check(""), MQRC_PROPERTY_NAME_LENGTH_ERR);
    EXPECT_EQ(check("", NameCheck::Shape), MQRC_PROPERTY_NAME_LENGTH_ERR);
    NamePattern parsed;
    EXPECT_EQ(NamePattern::parse("", parsed), MQRC_PROPERTY_NAME_LENGTH_ERR);
}

TEST(PropertyName, LongestNameIsTheLongest)
{
    EXPECT_EQ(check(std::string(MQ_MAX_PROPERTY_NAME_LENGTH, 'a')), MQRC_NONE);
    EXPECT_EQ(check(std::string(MQ_MAX_PROPERTY_NAME_LENGTH + 1, 'a')), MQRC_PROPERTY_NAME_LENGTH_ERR);
    std::string wide;
    for (int i = 0; i < MQ_MAX_PROPERTY_NAME_LENGTH; ++i)
        wide += "\u20ac";
    EXPECT_EQ(check(wide), MQRC_NONE) << "characters count, not bytes";
}

TEST(PropertyName, WithoutValidationOnlyTheShapeCounts)
{
    for (const char *name : {"NULL", "a b", "JMSFoo", "1", "mq.a.b"})
        EXPECT_EQ(check(name, NameCheck::Shape), MQRC_NONE) << name;
    for (const char *name : {".a", "a.", "a..b", "\xFF"})
        EXPECT_EQ(check(name, NameCheck::Shape), MQRC_PROPERTY_NAME_ERROR) << name;
}

TEST(PropertyName, UsrIsWhereNamesOfOneElementStand)
{
    EXPECT_EQ(canonical("usr.color"), "color");
    EXPECT_EQ(canonical("usr.a.b"), "usr.a.b") << "not the same as a.b";
    EXPECT_EQ(folderOf("color"), "usr");
    EXPECT_EQ(folderOf("usr.a.b"), "usr");
    EXPECT_EQ(folderOf("a.b.c"), "a");
    EXPECT_EQ(pathInFolder("color"), "color");
    EXPECT_EQ(pathInFolder("a.b.c"), "b.c");
    EXPECT_EQ(nameInFolder("usr", "color"), "color");
    EXPECT_EQ(nameInFolder("usr", "a.b"), "usr.a.b");
    EXPECT_EQ(nameInFolder("a", "b.c"), "a.b.c");
}

TEST(NamePattern, OneNameMatchesItself)
{
    EXPECT_TRUE(pattern("usr.color").matches("color"));
    EXPECT_TRUE(pattern("JMSPriority").matches("jms.Pri"));
    EXPECT_FALSE(pattern("color").matches("colors"));
    EXPECT_TRUE(pattern("color").isOneName());
}

TEST(NamePattern, WildcardMatchesWhatBeginsSo)
{
    EXPECT_TRUE(pattern("%").matches("a.b"));
    EXPECT_TRUE(pattern("co%").matches("color"));
    EXPECT_TRUE(pattern("a.%").matches("a.b.c"));
    EXPECT_FALSE(pattern("a.%").matches("ab"));
    EXPECT_FALSE(pattern("co%").matches("a.co"));
    EXPECT_TRUE(pattern("jms.%").matches("jms.Rto"));
    EXPECT_TRUE(pattern("JMS%").matches("jms.Rto")) << "by the name that programs are told";
    EXPECT_TRUE(pattern("MQTop%").matches("mqps.Top"));
    EXPECT_FALSE(pattern("JMS%").matches("jms.Foo"));
}

TEST(NamePattern, UsrWildcardMatchesNamesOfOneElement)
{
    EXPECT_TRUE(pattern("usr.%").matches("color"));
    EXPECT_TRUE(pattern("usr.%").matches("usr.a.b"));
    EXPECT_FALSE(pattern("usr.%").matches("a.b"));
    EXPECT_TRUE(pattern("usr.co%").matches("color"));
    EXPECT_FALSE(pattern("usr.co%").matches("size"));
}

TEST(NamePattern, WildcardAnywhereElseIs2442)
{
    NamePattern parsed;
    for (const char *text : {"a%b", "%a", "%%", "a%%"})
        EXPECT_EQ(NamePattern::parse(text, parsed), MQRC_PROPERTY_NAME_ERROR) << text;
    EXPECT_EQ(NamePattern::parse(std::string(MQ_MAX_PROPERTY_NAME_LENGTH + 1, 'a') + "%", parsed),
              MQRC_PROPERTY_NAME_LENGTH_ERR);
}

TEST(PropertyName, FieldsOfTheDescriptorAreTold)
{
    EXPECT_EQ(descriptorField("Root.MQMD.Priority"), "Priority");
    EXPECT_EQ(descriptorField("Root.MQMD"), "");
    EXPECT_EQ(descriptorField("color"), "");
}

} // namespace
} // namespace mqrig::qmgr::properties
