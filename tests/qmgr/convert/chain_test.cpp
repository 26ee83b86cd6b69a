// Headers of the MQI and what stands behind them.
#include "conversions.h"

namespace mqrig::qmgr::convert {
namespace {

constexpr Representation sun{MQENC_NORMAL, 819};

// The fixed part of a rules header; text stands behind it.
std::string rfh(const Representation &own, MQLONG length, const Representation &next, std::string_view format)
{
    return Bytes(own)
        .field("RFH ", 4)
        .number(1)
        .number(length)
        .number(next.encoding)
        .number(next.ccsid)
        .field(format, 8)
        .number(0);
}

std::string inEbcdic(std::string_view text)
{
    return Bytes(mainframe).encoded(text);
}

TEST(Chain, DeadLetterHeaderAndItsText)
{
    const std::string body = dlh(mainframe, mainframe, MQFMT_STRING) + inEbcdic("Hello");
    const Converted converted = convertBody({.format = MQFMT_DEAD_LETTER_HEADER, .source = mainframe}, body);
    EXPECT_EQ(converted.conversion.reason, MQRC_NONE);
    EXPECT_EQ(converted.body, dlh(native, native, MQFMT_STRING) + "Hello");
    EXPECT_EQ(converted.conversion.representation, native);
}

TEST(Chain, EachHeaderTellsTheRepresentationOfTheNextPart)
{
    const std::string body =
        dlh(mainframe, sun, MQFMT_MD_EXTENSION) + mde(sun, {MQENC_NATIVE, 923}, MQFMT_STRING) + "\xA4";
    const Converted converted = convertBody({.format = MQFMT_DEAD_LETTER_HEADER, .source = mainframe}, body);
    EXPECT_EQ(converted.conversion.reason, MQRC_NONE);
    EXPECT_EQ(converted.body,
              dlh(native, native, MQFMT_MD_EXTENSION) + mde(native, native, MQFMT_STRING) + "\xE2\x82\xAC");
}

TEST(Chain, InheritedSetIsThatOfTheHeader)
{
    const Representation inherited{MQENC_S390, MQCCSI_INHERIT};
    const std::string body = mde(mainframe, inherited, MQFMT_STRING) + inEbcdic("Hello");
    const Converted converted = convertBody({.format = MQFMT_MD_EXTENSION, .source = mainframe}, body);
    EXPECT_EQ(converted.body, mde(native, {MQENC_NATIVE, MQCCSI_INHERIT}, MQFMT_STRING) + "Hello");
}

TEST(Chain, PartOfUnknownFormatStaysAndItsHeaderSaysSo)
{
    for (const MQLONG ccsid : {500, MQCCSI_INHERIT}) {
        const std::string body = dlh(mainframe, {MQENC_S390, ccsid}, "MYFORMAT") + "\x01\x02\x03";
        const Converted converted = convertBody({.format = MQFMT_DEAD_LETTER_HEADER, .source = mainframe}, body);
        EXPECT_EQ(converted.conversion.reason, MQRC_FORMAT_ERROR);
        EXPECT_EQ(converted.body, dlh(native, mainframe, "MYFORMAT") + "\x01\x02\x03");
        EXPECT_EQ(converted.conversion.representation, native);
    }
}

TEST(Chain, TextThatCannotBeConvertedStaysBehindAConvertedHeader)
{
    const std::string body = dlh(sun, native, MQFMT_STRING) + "\xE2\x82\xAC";
    const Converted converted =
        convertBody({.format = MQFMT_DEAD_LETTER_HEADER, .source = sun, .target = {MQENC_NATIVE, 850}}, body);
    EXPECT_EQ(converted.conversion.reason, MQRC_NOT_CONVERTED);
    EXPECT_EQ(converted.body, dlh({MQENC_NATIVE, 850}, native, MQFMT_STRING) + "\xE2\x82\xAC");
}

TEST(Chain, LastPartThatIsAsWantedIsLeftAlone)
{
    const std::string body = dlh(mainframe, native, MQFMT_NONE) + "bytes";
    const Converted converted = convertBody({.format = MQFMT_DEAD_LETTER_HEADER, .source = mainframe}, body);
    EXPECT_EQ(converted.conversion.reason, MQRC_NONE);
    EXPECT_EQ(converted.body, dlh(native, native, MQFMT_NONE) + "bytes");
}

TEST(Chain, HeaderWithNothingBehindItIsConverted)
{
    const Converted converted =
        convertBody({.format = MQFMT_DEAD_LETTER_HEADER, .source = mainframe}, dlh(mainframe, mainframe, MQFMT_NONE));
    EXPECT_EQ(converted.conversion.reason, MQRC_NONE);
    EXPECT_EQ(converted.body, dlh(native, mainframe, MQFMT_NONE));
}

TEST(Chain, TransmissionHeaderHasTheDescriptorOfItsMessage)
{
    const auto xqh = [](const Representation &own, const Representation &next) -> std::string {
        return Bytes(own)
            .field("XQH ", 4)
            .number(1)
            .field("REMOTE", 48)
            .field("QM2", 48)
            .field("MD  ", 4)
            .number(1)
            .number(0)
            .number(8)
            .number(-1)
            .number(0)
            .number(next.encoding)
            .number(next.ccsid)
            .field(MQFMT_STRING, 8)
            .number(4)
            .number(1)
            .raw(std::string(24, '\x9A'))
            .raw(std::string(24, '\x9B'))
            .number(2)
            .field("R", 48)
            .field("QM1", 48)
            .field("user", 12)
            .raw(std::string(32, '\x9C'))
            .field("", 32)
            .number(6)
            .field("program", 28)
            .field("20260102", 8)
            .field("03040506", 8)
            .field("", 4);
    };
    const Converted converted =
        convertBody({.format = MQFMT_XMIT_Q_HEADER, .source = sun}, xqh(sun, mainframe) + inEbcdic("Hello"));
    EXPECT_EQ(converted.conversion.reason, MQRC_NONE);
    EXPECT_EQ(converted.body, xqh(native, native) + "Hello");
}

TEST(Chain, RulesHeader2KeepsTheSetOfItsPairs)
{
    const auto pairs = [](const Representation &own, std::string_view value) -> std::string {
        return Bytes(own).number(static_cast<MQLONG>(value.size())).raw(value);
    };
    const std::string utf8 = "<usr><a>\xC3\xBC</a></usr>  ";
    const std::string body = rfh2(mainframe, mainframe, MQFMT_STRING, 1208, pairs(mainframe, utf8)) + inEbcdic("Hello");
    const Converted converted = convertBody({.format = MQFMT_RF_HEADER_2, .source = mainframe}, body);
    EXPECT_EQ(converted.conversion.reason, MQRC_NONE);
    EXPECT_EQ(converted.body, rfh2(native, native, MQFMT_STRING, 1208, pairs(native, utf8)) + "Hello");
}

TEST(Chain, PairsOfTwoByteUnicodeChangeTheirOrder)
{
    const std::string body = rfh2(sun, sun, MQFMT_NONE, 1200, std::string(Bytes(sun).number(4).raw({"\0<\0>", 4})));
    const Converted converted = convertBody({.format = MQFMT_RF_HEADER_2, .source = sun}, body);
    EXPECT_EQ(converted.body,
              rfh2(native, sun, MQFMT_NONE, 1200, std::string(Bytes(native).number(4).raw({"<\0>\0", 4}))));
}

TEST(Chain, TextOfTheFirstRulesHeaderMayGrow)
{
    const std::string body = rfh(sun, 36, sun, MQFMT_STRING) + "n v\xFC" + "text";
    const Converted converted = convertBody({.format = MQFMT_RF_HEADER, .source = sun}, body);
    EXPECT_EQ(converted.conversion.reason, MQRC_NONE);
    EXPECT_EQ(converted.body, rfh(native, 37, native, MQFMT_STRING) + "n v\xC3\xBC" + "text");
}

TEST(Chain, DistributionHeaderWithItsRecords)
{
    const auto dh = [](const Representation &own) -> std::string {
        return Bytes(own)
            .field("DH  ", 4)
            .number(1)
            .number(48 + 2 * 96 + 2 * 28)
            .number(own.encoding)
            .number(own.ccsid)
            .field(MQFMT_STRING, 8)
            .number(0)
            .number(MQPMRF_MSG_ID | MQPMRF_FEEDBACK)
            .number(2)
            .number(48)
            .number(48 + 2 * 96)
            .field("Q1", 48)
            .field("QM1", 48)
            .field("Q2", 48)
            .field("QM2", 48)
            .raw(std::string(24, '\xC1'))
            .number(7)
            .raw(std::string(24, '\xC2'))
            .number(8);
    };
    const Converted converted =
        convertBody({.format = MQFMT_DIST_HEADER, .source = mainframe}, dh(mainframe) + inEbcdic("Hello"));
    EXPECT_EQ(converted.conversion.reason, MQRC_NONE);
    EXPECT_EQ(converted.body, dh(native) + "Hello");
}

TEST(Chain, TriggerMessage)
{
    const auto tm = [](const Representation &own) -> std::string {
        return Bytes(own)
            .field("TM  ", 4)
            .number(1)
            .field("Q1", 48)
            .field("P1", 48)
            .field("data", 64)
            .number(6)
            .field("program", 256)
            .field("env", 128)
            .field("user", 128);
    };
    const Converted converted = convertBody({.format = MQFMT_TRIGGER, .source = mainframe}, tm(mainframe));
    EXPECT_EQ(converted.conversion.reason, MQRC_NONE);
    EXPECT_EQ(converted.body, tm(native));
}

// ---- Fields ----

TEST(Fields, GrowIntoTheirBlanks)
{
    const auto header = [](const Representation &own, std::string_view program) -> std::string {
        return Bytes(own)
            .field("DLH ", 4)
            .number(1)
            .number(0)
            .field("", 48)
            .field("", 48)
            .number(own.encoding)
            .number(own.ccsid)
            .field("", 8)
            .number(0)
            .raw(program)
            .field("", 8)
            .field("", 8);
    };
    const std::string grown = "gr\xC3\xBC\xC3\x9F" + std::string(22, ' ');
    const Converted converted = convertBody({.format = MQFMT_DEAD_LETTER_HEADER, .source = {MQENC_NATIVE, 819}},
                                            header({MQENC_NATIVE, 819}, "gr\xFC\xDF" + std::string(24, ' ')));
    EXPECT_EQ(converted.conversion.reason, MQRC_NONE);
    EXPECT_EQ(converted.body, header({MQENC_NATIVE, 819}, grown));
}

TEST(Fields, WhatStandsBehindANullMeansNothing)
{
    std::string header = dlh(native, native, MQFMT_NONE);
    const std::size_t program = offsetof(MQDLH, PutApplName);
    header.replace(program, 28, std::string("prog\0\xFF\xFE rubbish", 15) + std::string(13, ' '));
    const Converted converted =
        convertBody({.format = MQFMT_DEAD_LETTER_HEADER, .target = {MQENC_NATIVE, 819}}, header);
    EXPECT_EQ(converted.conversion.reason, MQRC_NONE);
    EXPECT_EQ(converted.body.substr(program, 28), "prog" + std::string(24, '\0'));
}

TEST(Fields, TooShortForTheTargetStayInTheQueueManagersOwn)
{
    const std::string body = dlh(mainframe, mainframe, MQFMT_STRING) + inEbcdic("Hi");
    const Converted converted =
        convertBody({.format = MQFMT_DEAD_LETTER_HEADER, .source = mainframe, .target = {MQENC_NORMAL, 1200}}, body);
    EXPECT_EQ(converted.conversion.reason, MQRC_PARTIALLY_CONVERTED);
    EXPECT_EQ(converted.body, dlh(native, {MQENC_NORMAL, 1200}, MQFMT_STRING) + std::string("\0H\0i", 4));
    EXPECT_EQ(converted.conversion.representation, native);
}

TEST(Fields, TooShortEvenForTheQueueManagerIs2190)
{
    std::string header = dlh({MQENC_NATIVE, 819}, native, MQFMT_NONE);
    header.replace(offsetof(MQDLH, PutApplName), 28, 28, '\xFC');
    const Converted converted =
        convertBody({.format = MQFMT_DEAD_LETTER_HEADER, .source = {MQENC_NATIVE, 819}}, header);
    EXPECT_EQ(converted.conversion.reason, MQRC_CONVERTED_STRING_TOO_BIG);
    EXPECT_EQ(converted.body, header);
    EXPECT_EQ(converted.conversion.representation, (Representation{MQENC_NATIVE, 819}));
}

// ---- Encodings ----

MQLONG reasonOf(MQLONG source, MQLONG target)
{
    return convertBody({.format = MQFMT_DEAD_LETTER_HEADER, .source = {source, 819}, .target = {target, 1208}},
                       dlh({MQENC_NORMAL, 819}, native, MQFMT_NONE))
        .conversion.reason;
}

TEST(Encodings, ThatAreNoneAreToldApart)
{
    EXPECT_EQ(reasonOf(0, MQENC_NATIVE), MQRC_SOURCE_INTEGER_ENC_ERROR);
    EXPECT_EQ(reasonOf(0x031, MQENC_NATIVE), MQRC_SOURCE_DECIMAL_ENC_ERROR);
    EXPECT_EQ(reasonOf(0x511, MQENC_NATIVE), MQRC_SOURCE_FLOAT_ENC_ERROR);
    EXPECT_EQ(reasonOf(MQENC_NORMAL, 0x003), MQRC_TARGET_INTEGER_ENC_ERROR);
    EXPECT_EQ(reasonOf(MQENC_NORMAL, 0x0F2), MQRC_TARGET_DECIMAL_ENC_ERROR);
    EXPECT_EQ(reasonOf(MQENC_NORMAL, 0xF12), MQRC_TARGET_FLOAT_ENC_ERROR);
    EXPECT_EQ(reasonOf(MQENC_NORMAL, MQENC_NATIVE), MQRC_NONE);
}

// ---- Truncation ----

TEST(Truncation, OfAHeaderLeavesItsWholeFields)
{
    const std::string body = dlh(mainframe, mainframe, MQFMT_STRING) + inEbcdic("Hello");
    const Converted converted = convertBody(
        {.format = MQFMT_DEAD_LETTER_HEADER, .source = mainframe, .buffer = 10, .acceptTruncated = true}, body);
    EXPECT_EQ(converted.conversion.reason, MQRC_TRUNCATED_MSG_ACCEPTED);
    EXPECT_EQ(converted.body, dlh(native, native, MQFMT_STRING).substr(0, 8));
    EXPECT_EQ(converted.conversion.length, body.size());
}

TEST(Truncation, OfTheTextBehindAHeader)
{
    const std::string body = dlh(mainframe, mainframe, MQFMT_STRING) + inEbcdic("Hello");
    const Converted converted = convertBody(
        {.format = MQFMT_DEAD_LETTER_HEADER, .source = mainframe, .buffer = sizeof(MQDLH) + 2, .acceptTruncated = true},
        body);
    EXPECT_EQ(converted.conversion.reason, MQRC_TRUNCATED_MSG_ACCEPTED);
    EXPECT_EQ(converted.body, dlh(native, native, MQFMT_STRING) + "He");
}

TEST(Truncation, OfBytesBehindATextThatHasGrown)
{
    const std::string body = rfh(sun, 36, native, MQFMT_NONE) + "n v\xFC" + "bytes";
    Case test{.format = MQFMT_RF_HEADER, .source = sun, .buffer = body.size()};
    const Converted kept = convertBody(test, body);
    EXPECT_EQ(kept.conversion.reason, MQRC_CONVERTED_MSG_TOO_BIG);
    EXPECT_EQ(kept.body, body);
    EXPECT_EQ(kept.conversion.representation, sun);
    test.acceptTruncated = true;
    const Converted cut = convertBody(test, body);
    EXPECT_EQ(cut.conversion.reason, MQRC_TRUNCATED_MSG_ACCEPTED);
    EXPECT_EQ(cut.body, rfh(native, 37, native, MQFMT_NONE) + "n v\xC3\xBC" + "byte");
    EXPECT_EQ(cut.conversion.length, body.size());
}

TEST(Truncation, AtEveryByteKeepsWithinTheBuffer)
{
    const std::string pairs = Bytes(mainframe).number(8).raw("<a>b</a>");
    const std::string body = dlh(mainframe, mainframe, MQFMT_RF_HEADER_2) +
                             rfh2(mainframe, mainframe, MQFMT_STRING, 1208, pairs) + inEbcdic("gr\xC3\xBC\xC3\x9F");
    for (std::size_t buffer = 1; buffer < body.size() + 4; ++buffer) {
        const Converted converted = convertBody(
            {.format = MQFMT_DEAD_LETTER_HEADER, .source = mainframe, .buffer = buffer, .acceptTruncated = true}, body);
        EXPECT_EQ(converted.conversion.reason, buffer < body.size() + 2 ? MQRC_TRUNCATED_MSG_ACCEPTED : MQRC_NONE)
            << buffer;
    }
}

} // namespace
} // namespace mqrig::qmgr::convert
