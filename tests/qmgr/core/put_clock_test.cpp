#include "qmgr/core/put_clock.h"

#include <gtest/gtest.h>

#include <ctime>
#include <string>

namespace mqrig::qmgr::core {
namespace {

std::string textsOf(PutClock &clock, std::int64_t microseconds)
{
    MQCHAR8 date;
    MQCHAR8 time;
    clock.write(microseconds, date, time);
    return std::string(date, 8) + ' ' + std::string(time, 8);
}

TEST(PutClock, HundredthsAreCutNotRounded)
{
    PutClock clock;
    EXPECT_EQ(textsOf(clock, 0), "19700101 00000000");
    EXPECT_EQ(textsOf(clock, 9999), "19700101 00000000");
    EXPECT_EQ(textsOf(clock, 10000), "19700101 00000001");
    EXPECT_EQ(textsOf(clock, 999999), "19700101 00000099");
    EXPECT_EQ(textsOf(clock, 1000000), "19700101 00000100");
}

TEST(PutClock, LeapDaysAndYearEnds)
{
    PutClock clock;
    EXPECT_EQ(textsOf(clock, 951782400000000), "20000229 00000000");
    EXPECT_EQ(textsOf(clock, 1798761599990000), "20261231 23595999");
}

TEST(PutClock, TimesBefore1970AreTheirs)
{
    PutClock clock;
    EXPECT_EQ(textsOf(clock, -1), "19691231 23595999");
    EXPECT_EQ(textsOf(clock, -1000000), "19691231 23595900");
    EXPECT_EQ(textsOf(clock, -1000001), "19691231 23595899");
}

TEST(PutClock, GoingBackInTimeIsShown)
{
    PutClock clock;
    textsOf(clock, 1798761599990000);
    EXPECT_EQ(textsOf(clock, 951782400000000), "20000229 00000000");
}

TEST(PutClock, AgreesWithTheSystemOverManyYears)
{
    PutClock clock;
    for (std::time_t second = 0; second < 4102444800; second += 8640077) {
        std::tm parts{};
        gmtime_r(&second, &parts);
        char expected[32];
        std::strftime(expected, sizeof expected, "%Y%m%d %H%M%S00", &parts);
        EXPECT_EQ(textsOf(clock, second * 1000000), expected);
    }
}

} // namespace
} // namespace mqrig::qmgr::core
