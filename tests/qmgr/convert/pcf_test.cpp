// Messages of PCF structures.
#include "cmqcfc.h"
#include "conversions.h"

namespace mqrig::qmgr::convert {
namespace {

std::string cfh(const Representation &own, MQLONG parameters)
{
    return Bytes(own)
        .number(MQCFT_COMMAND)
        .number(36)
        .number(1)
        .number(MQCMD_INQUIRE_Q)
        .number(1)
        .number(1)
        .number(0)
        .number(0)
        .number(parameters);
}

std::string cfst(const Representation &own, std::string_view value, MQLONG ccsid = MQCCSI_DEFAULT)
{
    std::string encoded = Bytes(own).encoded(value);
    const auto length = static_cast<MQLONG>(encoded.size());
    encoded.resize((encoded.size() + 3) / 4 * 4);
    return Bytes(own)
        .number(MQCFT_STRING)
        .number(20 + static_cast<MQLONG>(encoded.size()))
        .number(2016)
        .number(ccsid)
        .number(length)
        .raw(encoded);
}

Converted convertPcfBody(const std::string &body, const Case &given = {})
{
    Case test = given;
    test.format = MQFMT_ADMIN;
    test.source = mainframe;
    return convertBody(test, body);
}

TEST(Pcf, EveryStructure)
{
    const auto message = [](const Representation &own) -> std::string {
        return cfh(own, 10) +
               std::string(Bytes(own)
                               .number(MQCFT_INTEGER)
                               .number(16)
                               .number(20)
                               .number(-7)
                               .number(MQCFT_INTEGER_LIST)
                               .number(24)
                               .number(1002)
                               .number(2)
                               .number(3)
                               .number(4)
                               .number(MQCFT_BYTE_STRING)
                               .number(20)
                               .number(7001)
                               .number(3)
                               .raw({"\x01\x02\x03\0", 4})
                               .number(MQCFT_GROUP)
                               .number(16)
                               .number(8001)
                               .number(1)
                               .number(MQCFT_INTEGER_FILTER)
                               .number(20)
                               .number(3)
                               .number(2)
                               .number(100)
                               .number(MQCFT_BYTE_STRING_FILTER)
                               .number(24)
                               .number(7002)
                               .number(2)
                               .number(2)
                               .raw({"\xFF\0\0\0", 4})
                               .number(MQCFT_STRING_FILTER)
                               .number(28)
                               .number(2016)
                               .number(18)
                               .number(0)
                               .number(2)
                               .field("A*", 2)
                               .raw({"\0\0", 2})) +
               cfst(own, "QUEUE");
    };
    const Converted converted = convertPcfBody(message(mainframe));
    EXPECT_EQ(converted.conversion.reason, MQRC_NONE);
    EXPECT_EQ(converted.body, message(native));
}

TEST(Pcf, WideNumbersAreTurnedAsAWhole)
{
    const std::string body = cfh(mainframe, 2) + std::string(Bytes(mainframe)
                                                                 .number(MQCFT_INTEGER64)
                                                                 .number(24)
                                                                 .number(1)
                                                                 .number(0)
                                                                 .raw({"\0\0\0\0\0\0\0\x07", 8})
                                                                 .number(MQCFT_INTEGER64_LIST)
                                                                 .number(24)
                                                                 .number(2)
                                                                 .number(1)
                                                                 .raw({"\0\0\0\0\0\0\0\x08", 8}));
    const Converted converted = convertPcfBody(body);
    EXPECT_EQ(converted.body, cfh(native, 2) + std::string(Bytes(native)
                                                               .number(MQCFT_INTEGER64)
                                                               .number(24)
                                                               .number(1)
                                                               .number(0)
                                                               .raw({"\x07\0\0\0\0\0\0\0", 8})
                                                               .number(MQCFT_INTEGER64_LIST)
                                                               .number(24)
                                                               .number(2)
                                                               .number(1)
                                                               .raw({"\x08\0\0\0\0\0\0\0", 8})));
}

TEST(Pcf, StringsGrowAndTheirStructuresWithThem)
{
    const Converted converted = convertPcfBody(cfh(mainframe, 1) + cfst(mainframe, "abc\xC3\xBC"));
    EXPECT_EQ(converted.conversion.reason, MQRC_NONE);
    EXPECT_EQ(converted.body, cfh(native, 1) + cfst(native, "abc\xC3\xBC"));
}

TEST(Pcf, StringInASetOfItsOwn)
{
    const std::string body =
        cfh(mainframe, 1) +
        std::string(
            Bytes(mainframe).number(MQCFT_STRING).number(24).number(2016).number(819).number(1).raw({"\xFC\0\0\0", 4}));
    const Converted converted = convertPcfBody(body);
    EXPECT_EQ(converted.body, cfh(native, 1) + cfst(native, "\xC3\xBC", 1208));
}

TEST(Pcf, StringsOfAListKeepOneLength)
{
    const std::string body = cfh(mainframe, 1) + std::string(Bytes(mainframe)
                                                                 .number(MQCFT_STRING_LIST)
                                                                 .number(28)
                                                                 .number(2016)
                                                                 .number(0)
                                                                 .number(2)
                                                                 .number(2)
                                                                 .encoded("ab\xC3\xBC\xC3\xBC"));
    const Converted converted = convertPcfBody(body);
    EXPECT_EQ(converted.conversion.reason, MQRC_NONE);
    EXPECT_EQ(converted.body, cfh(native, 1) + std::string(Bytes(native)
                                                               .number(MQCFT_STRING_LIST)
                                                               .number(32)
                                                               .number(2016)
                                                               .number(0)
                                                               .number(2)
                                                               .number(4)
                                                               .raw("ab  \xC3\xBC\xC3\xBC")));
}

TEST(Pcf, EmbeddedHeaderWithTextBehindIt)
{
    const auto eph = [](const Representation &own, std::string_view name) -> std::string {
        const std::string parameter = cfst(own, name);
        return std::string(Bytes(own)
                               .field("EPH ", 4)
                               .number(1)
                               .number(68 + static_cast<MQLONG>(parameter.size()))
                               .number(own.encoding)
                               .number(own.ccsid)
                               .field(MQFMT_STRING, 8)
                               .number(0)) +
               cfh(own, 1) + parameter;
    };
    const Converted converted =
        convertBody({.format = MQFMT_EMBEDDED_PCF, .source = mainframe},
                    eph(mainframe, "abc\xC3\xBC") + std::string(Bytes(mainframe).encoded("Hi")));
    EXPECT_EQ(converted.conversion.reason, MQRC_NONE);
    EXPECT_EQ(converted.body, eph(native, "abc\xC3\xBC") + "Hi");
}

TEST(Pcf, ThatGrowsOutOfTheBuffer)
{
    const std::string body = cfh(mainframe, 1) + cfst(mainframe, "abc\xC3\xBC");
    EXPECT_EQ(convertPcfBody(body, {.buffer = body.size()}).conversion.reason, MQRC_CONVERTED_MSG_TOO_BIG);
    EXPECT_EQ(convertPcfBody(body, {.buffer = body.size()}).body, body);
    const Converted cut = convertPcfBody(body, {.buffer = body.size(), .acceptTruncated = true});
    EXPECT_EQ(cut.conversion.reason, MQRC_TRUNCATED_MSG_ACCEPTED);
}

TEST(Pcf, CutAtEveryByteKeepsWithinTheBuffer)
{
    const std::string body = cfh(mainframe, 2) + cfst(mainframe, "abc\xC3\xBC") + cfst(mainframe, "second");
    for (std::size_t buffer = 1; buffer < body.size(); ++buffer)
        EXPECT_EQ(convertPcfBody(body, {.buffer = buffer, .acceptTruncated = true}).conversion.reason,
                  MQRC_TRUNCATED_MSG_ACCEPTED)
            << buffer;
}

} // namespace
} // namespace mqrig::qmgr::convert
