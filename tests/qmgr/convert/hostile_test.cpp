// Bodies that lie about themselves: nothing is read beside them, and nothing of them is lost.
#include <array>
#include <limits>
#include <random>

#include "cmqcfc.h"
#include "conversions.h"

namespace mqrig::qmgr::convert {
namespace {

constexpr std::array<MQLONG, 7> lies = {
    0, -1, 1, 35, 1025, std::numeric_limits<MQLONG>::max(), std::numeric_limits<MQLONG>::min()};

void expectKept(const char *format, const std::string &body, const Representation &source = mainframe)
{
    const Converted converted = convertBody({.format = format, .source = source}, body);
    EXPECT_EQ(converted.conversion.reason, MQRC_FORMAT_ERROR);
    EXPECT_EQ(converted.body, body);
    EXPECT_EQ(converted.conversion.representation, source);
}

TEST(Hostile, HeaderShorterThanItself)
{
    const std::string whole = dlh(mainframe, mainframe, MQFMT_NONE);
    for (const std::size_t size : {std::size_t{1}, std::size_t{4}, std::size_t{8}, whole.size() - 1})
        expectKept(MQFMT_DEAD_LETTER_HEADER, whole.substr(0, size));
}

TEST(Hostile, HeaderOfAnotherStructureOrVersion)
{
    expectKept(MQFMT_XMIT_Q_HEADER, dlh(mainframe, mainframe, MQFMT_NONE) + std::string(500, ' '));
    std::string wrong = dlh(mainframe, mainframe, MQFMT_NONE);
    wrong[7] = 9;
    expectKept(MQFMT_DEAD_LETTER_HEADER, wrong);
}

TEST(Hostile, LengthOfAStructureThatLies)
{
    for (const MQLONG lie : lies) {
        expectKept(MQFMT_MD_EXTENSION, mde(mainframe, mainframe, MQFMT_NONE, lie));
        expectKept(MQFMT_RF_HEADER_2, rfh2(mainframe, mainframe, MQFMT_NONE, 1208, "", lie == -1 ? -2 : lie));
    }
}

TEST(Hostile, LengthOfAPairThatLies)
{
    for (const MQLONG lie : {-1, 5, 1025, std::numeric_limits<MQLONG>::max(), std::numeric_limits<MQLONG>::min()})
        expectKept(MQFMT_RF_HEADER_2,
                   rfh2(mainframe, mainframe, MQFMT_NONE, 1208, std::string(Bytes(mainframe).number(lie).raw("abcd"))));
    expectKept(MQFMT_RF_HEADER_2,
               rfh2(mainframe, mainframe, MQFMT_NONE, 1200, std::string(Bytes(mainframe).number(3).raw("abc"))));
    expectKept(MQFMT_RF_HEADER_2, rfh2(mainframe, mainframe, MQFMT_NONE, 1208, "ab"));
}

TEST(Hostile, RecordsThatLie)
{
    const auto dh = [](MQLONG present, MQLONG objects, MQLONG puts) -> std::string {
        return Bytes(mainframe)
            .field("DH  ", 4)
            .number(1)
            .number(48 + 96)
            .number(0)
            .number(0)
            .field("", 8)
            .number(0)
            .number(MQPMRF_FEEDBACK)
            .number(present)
            .number(objects)
            .number(puts)
            .raw(std::string(96, '\x40'));
    };
    for (const MQLONG lie : {-1, 2, 1025, std::numeric_limits<MQLONG>::max()})
        expectKept(MQFMT_DIST_HEADER, dh(lie, 48, 0));
    for (const MQLONG lie : {-1, 1, 47, 49, 1025, std::numeric_limits<MQLONG>::max()})
        expectKept(MQFMT_DIST_HEADER, dh(1, lie, 0));
    expectKept(MQFMT_DIST_HEADER, dh(1, 48, 60)); // one upon the other
}

TEST(Hostile, ParametersThatLie)
{
    const std::string cfh =
        Bytes(mainframe).number(1).number(36).number(1).number(1).number(1).number(1).number(0).number(0).number(1);
    for (const MQLONG type : {0, 3, 4, 5, 6, 9, 13, 14, 15, 20, 23, 25, 99, -1})
        for (const MQLONG lie : {0, -1, 7, 15, 1025, std::numeric_limits<MQLONG>::max()}) {
            const std::string body =
                cfh + std::string(Bytes(mainframe).number(type).number(lie).raw(std::string(24, '\0')));
            expectKept(MQFMT_ADMIN, body);
        }
    for (const MQLONG lie : {-1, 1025, std::numeric_limits<MQLONG>::max()}) {
        expectKept(MQFMT_PCF,
                   cfh +
                       std::string(
                           Bytes(mainframe).number(MQCFT_STRING).number(24).number(1).number(0).number(lie).number(0)));
        expectKept(
            MQFMT_EVENT,
            cfh + std::string(Bytes(mainframe).number(MQCFT_INTEGER_LIST).number(20).number(1).number(lie).number(0)));
        expectKept(MQFMT_EVENT, cfh + std::string(Bytes(mainframe)
                                                      .number(MQCFT_STRING_LIST)
                                                      .number(28)
                                                      .number(1)
                                                      .number(0)
                                                      .number(lie)
                                                      .number(1)
                                                      .number(0)));
        expectKept(MQFMT_EVENT, cfh + std::string(Bytes(mainframe)
                                                      .number(MQCFT_STRING_LIST)
                                                      .number(28)
                                                      .number(1)
                                                      .number(0)
                                                      .number(2)
                                                      .number(lie)
                                                      .number(0)));
    }
    expectKept(MQFMT_ADMIN, cfh.substr(0, 20));
}

TEST(Hostile, ListOfManyEmptyStringsTakesNoTime)
{
    const std::string body = std::string(Bytes(mainframe)
                                             .number(1)
                                             .number(36)
                                             .number(1)
                                             .number(1)
                                             .number(1)
                                             .number(1)
                                             .number(0)
                                             .number(0)
                                             .number(1)
                                             .number(MQCFT_STRING_LIST)
                                             .number(24)
                                             .number(1)
                                             .number(0)
                                             .number(std::numeric_limits<MQLONG>::max())
                                             .number(0));
    EXPECT_EQ(convertBody({.format = MQFMT_ADMIN, .source = mainframe}, body).conversion.reason, MQRC_NONE);
}

// Headers that name each other go on to the end of the body and no further.
TEST(Hostile, LongChain)
{
    std::string body;
    std::string expected;
    for (int i = 0; i < 50000; ++i) {
        body += mde(mainframe, mainframe, MQFMT_MD_EXTENSION);
        expected += mde(native, native, MQFMT_MD_EXTENSION);
    }
    body.resize(body.size() - 10); // and the last one is cut
    const Converted converted =
        convertBody({.format = MQFMT_MD_EXTENSION, .source = mainframe, .buffer = body.size()}, body);
    EXPECT_EQ(converted.conversion.reason, MQRC_FORMAT_ERROR);
    ASSERT_EQ(converted.body.size(), body.size());
    EXPECT_EQ(converted.body.substr(0, 72 * 49998), expected.substr(0, 72 * 49998));
    EXPECT_EQ(converted.body.substr(72 * 49999), body.substr(72 * 49999));
}

TEST(Hostile, BodyOfAHundredMegabytes)
{
    std::string body = dlh(mainframe, mainframe, MQFMT_STRING);
    body.resize(100 * 1024 * 1024, '\xC1');
    const Converted converted =
        convertBody({.format = MQFMT_DEAD_LETTER_HEADER, .source = mainframe, .buffer = body.size()}, body);
    EXPECT_EQ(converted.conversion.reason, MQRC_NONE);
    ASSERT_EQ(converted.body.size(), body.size());
    EXPECT_EQ(converted.body.back(), 'A');
    body[8] = '\xFF';
    body.resize(sizeof(MQDLH));
}

// Any bytes at all: whatever the answer, the buffer keeps its bounds.
TEST(Hostile, ChangedBytesAnywhere)
{
    std::mt19937 random(20261121);
    const std::string pairs = Bytes(mainframe).number(8).raw("<a>b</a>");
    const std::string good = dlh(mainframe, mainframe, MQFMT_RF_HEADER_2) +
                             rfh2(mainframe, mainframe, MQFMT_MD_EXTENSION, 1208, pairs) +
                             mde(mainframe, mainframe, MQFMT_ADMIN) +
                             std::string(Bytes(mainframe)
                                             .number(1)
                                             .number(36)
                                             .number(1)
                                             .number(1)
                                             .number(1)
                                             .number(1)
                                             .number(0)
                                             .number(0)
                                             .number(1)
                                             .number(MQCFT_STRING)
                                             .number(24)
                                             .number(1)
                                             .number(0)
                                             .number(4)
                                             .encoded("text"));
    for (int round = 0; round < 20000; ++round) {
        std::string body = good;
        for (unsigned changes = 1 + random() % 4; changes != 0; --changes)
            body[random() % body.size()] = static_cast<char>(random());
        body.resize(random() % (body.size() + 1));
        const std::size_t buffer = random() % (good.size() + 40);
        static_cast<void>(convertBody({.format = MQFMT_DEAD_LETTER_HEADER,
                                       .source = mainframe,
                                       .target = random() % 2 == 0 ? native : Representation{MQENC_NORMAL, 1200},
                                       .buffer = buffer,
                                       .acceptTruncated = true},
                                      body));
    }
}

} // namespace
} // namespace mqrig::qmgr::convert
