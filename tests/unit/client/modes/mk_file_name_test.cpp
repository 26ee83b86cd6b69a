// File names from put dates and times, whatever these hold.
#include "receive.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>

namespace {

class MkFileNameTest : public testing::Test {
protected:
    ~MkFileNameTest() override { zone("UTC"); }

    static void zone(const char *name)
    {
        setenv("TZ", name, 1);
        tzset();
    }
    static std::string name_of(const char (&date)[9], const char (&time)[9])
    {
        MQMD md = {MQMD_DEFAULT};
        std::memcpy(md.PutDate, date, sizeof md.PutDate);
        std::memcpy(md.PutTime, time, sizeof md.PutTime);
        char name[64];
        const MQLONG length = mkFileName(&md, name);
        EXPECT_EQ(std::strlen(name), static_cast<std::size_t>(length));
        return name;
    }
};

TEST_F(MkFileNameTest, NineHoursAreAdded)
{
    EXPECT_EQ(name_of("20220422", "10111213"), "20220422_191112_13");
}

TEST_F(MkFileNameTest, HoursBeyondTheDayAreCarried)
{
    EXPECT_EQ(name_of("20220422", "23301512"), "20220423_083015_12");
    EXPECT_EQ(name_of("20220430", "15000000"), "20220501_000000_00");
    EXPECT_EQ(name_of("20221231", "23595999"), "20230101_085959_99");
    EXPECT_EQ(name_of("20240228", "15000000"), "20240229_000000_00");
    EXPECT_EQ(name_of("20230228", "15000000"), "20230301_000000_00");
}

TEST_F(MkFileNameTest, ZoneOfTheMachineDoesNotMatter)
{
    for (const char *name : {"UTC", "Asia/Tokyo", "America/New_York", "Pacific/Kiritimati"}) {
        zone(name);
        EXPECT_EQ(name_of("20220722", "23301512"), "20220723_083015_12") << name;
        EXPECT_EQ(name_of("20220122", "23301512"), "20220123_083015_12") << name;
    }
}

TEST_F(MkFileNameTest, FieldsThatAreNoNumbersGiveANameAllTheSame)
{
    const std::string blanks = name_of("        ", "        ");
    EXPECT_EQ(blanks.substr(blanks.size() - 3), "_  ");
    EXPECT_EQ(blanks.find('/'), std::string::npos);
    EXPECT_EQ(name_of("abcdefgh", "ijklmnop").substr(blanks.size() - 2), "op");
}

TEST_F(MkFileNameTest, ZeroBytesEndTheName)
{
    const std::string name = name_of("20220422", "101112\0\0");
    EXPECT_EQ(name, "20220422_191112_");
}

TEST_F(MkFileNameTest, SlashesDoNotLeadElsewhere)
{
    EXPECT_EQ(name_of("20220422", "101112//"), "20220422_191112___");
    EXPECT_EQ(name_of("../../..", "/../../.").find('/'), std::string::npos);
}

TEST_F(MkFileNameTest, LargestNumbersFitTheName)
{
    EXPECT_LT(name_of("99999999", "99999999").size(), 64U);
    EXPECT_LT(name_of("-999-9-9", "-9-9-9-9").size(), 64U);
}

} // namespace
