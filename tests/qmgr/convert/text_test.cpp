#include "conversions.h"

namespace mqrig::qmgr::convert {
namespace {

std::string to(std::string_view from, Representation source, Representation target)
{
    std::string converted;
    const Outcome outcome = text(from, source, target, converted);
    return outcome.failed() ? std::to_string(outcome.Reason) : converted;
}

TEST(Text, GoesFromEbcdicToAsciiAndBack)
{
    EXPECT_EQ(to("\xC8\x85\x93\x93\x96", {0, 500}, {0, 819}), "Hello");
    EXPECT_EQ(to("Hello", {0, 819}, {0, 37}), "\xC8\x85\x93\x93\x96");
}

TEST(Text, NewLineOfEbcdicBecomesALineFeed)
{
    EXPECT_EQ(to("\x15", {0, 500}, {0, 819}), "\n");
    EXPECT_EQ(to("\x15", {0, 1047}, {0, 1208}), "\n");
    EXPECT_EQ(to("\x15", {0, 500}, {0, 37}), "\x15");
    EXPECT_EQ(to("\n", {0, 819}, {0, 500}), "\x25");
}

TEST(Text, GrowsAndShrinksWithUtf8)
{
    EXPECT_EQ(to("gr\xFC\xDF", {0, 819}, {0, 1208}), "gr\xC3\xBC\xC3\x9F");
    EXPECT_EQ(to("gr\xC3\xBC\xC3\x9F", {0, 1208}, {0, 850}), "gr\x81\xE1");
    EXPECT_EQ(to("\xE2\x82\xAC", {0, 1208}, {0, 923}), "\xA4");
    EXPECT_EQ(to("\xE2\x82\xAC", {0, 1208}, {0, 1140}), "\x9F");
}

TEST(Text, OrderOfTwoByteUnicodeIsThatOfTheEncoding)
{
    EXPECT_EQ(to("A", {0, 819}, {MQENC_NORMAL, 1200}), std::string("\0A", 2));
    EXPECT_EQ(to("A", {0, 819}, {MQENC_REVERSED, 1200}), std::string("A\0", 2));
    EXPECT_EQ(to("A", {0, 819}, {MQENC_NORMAL, 1202}), std::string("A\0", 2));
    EXPECT_EQ(to(std::string("\0A", 2), {MQENC_NORMAL, 13488}, {MQENC_REVERSED, 17584}), std::string("A\0", 2));
}

TEST(Text, ShiftsInAndOutOfDoubleBytes)
{
    const std::string japanese = "A\xE6\x97\xA5"; // A and the sun
    const std::string host = to(japanese, {0, 1208}, {0, 939});
    EXPECT_EQ(host.front(), '\xC1');
    EXPECT_EQ(host[1], '\x0E');
    EXPECT_EQ(host.back(), '\x0F');
    EXPECT_EQ(to(host, {0, 939}, {0, 1208}), japanese);
    EXPECT_EQ(to(to(japanese, {0, 1208}, {0, 943}), {0, 943}, {0, 1208}), japanese);
}

TEST(Text, CharacterThatTheTargetHasNotIsNotReplaced)
{
    EXPECT_EQ(to("\xE2\x82\xAC", {0, 1208}, {0, 819}), "2119");
    EXPECT_EQ(to("\xA4", {0, 923}, {0, 819}), "2119");
}

TEST(Text, BytesThatAreNoTextAreNotConverted)
{
    EXPECT_EQ(to("\xFF", {0, 1208}, {0, 819}), "2119");
    EXPECT_EQ(to("a\xC3", {0, 1208}, {0, 819}), "2119");
    EXPECT_EQ(to("A", {MQENC_NORMAL, 1200}, {0, 819}), "2119");
}

TEST(Text, UnknownSetsAreToldApart)
{
    EXPECT_EQ(to("a", {0, 4711}, {0, 819}), "2111");
    EXPECT_EQ(to("a", {0, 819}, {0, 4711}), "2115");
    EXPECT_EQ(to("a", {0, -1}, {0, -2}), "2111");
}

TEST(Text, EmptyTextStaysEmpty)
{
    EXPECT_EQ(to("", {0, 500}, {0, 939}), "");
}

TEST(Text, EverySetOfTheTableConvertsToUnicodeAndBack)
{
    int known = 0;
    for (MQLONG ccsid = 1; ccsid < 40000; ++ccsid) {
        if (findCharacterSet(ccsid) == nullptr) continue;
        ++known;
        const std::string there = to("MQ 12", {MQENC_NATIVE, 1208}, {MQENC_NATIVE, ccsid});
        EXPECT_EQ(to(there, {MQENC_NATIVE, ccsid}, {MQENC_NATIVE, 1208}), "MQ 12") << ccsid;
    }
    EXPECT_GT(known, 150);
}

// More pairs than a thread keeps converters for.
TEST(Text, ConvertersComeAndGo)
{
    for (int round = 0; round < 3; ++round)
        for (const MQLONG ccsid : {37, 273, 277, 278, 280, 284, 285, 297, 500, 871, 1047})
            EXPECT_EQ(to(to("text", {0, 819}, {0, ccsid}), {0, ccsid}, {0, 819}), "text");
}

// ---- Messages of MQFMT_STRING ----

TEST(StringMessage, IsConvertedAndDescribedAnew)
{
    const Converted converted = convertBody({.source = {MQENC_S390, 500}}, "\xC8\x85\x93\x93\x96");
    EXPECT_EQ(converted.conversion.reason, MQRC_NONE);
    EXPECT_EQ(converted.body, "Hello");
    EXPECT_EQ(converted.conversion.representation, native);
    EXPECT_EQ(converted.conversion.length, 5U);
}

TEST(StringMessage, ZeroMeansTheQueueManagersSet)
{
    const Converted converted = convertBody({.source = {0, 819}, .target = {MQENC_NATIVE, MQCCSI_Q_MGR}}, "\xFC");
    EXPECT_EQ(converted.body, "\xC3\xBC");
    EXPECT_EQ(converted.conversion.representation.ccsid, 1208);
}

TEST(StringMessage, LengthIsThatAfterTheConversion)
{
    const Converted converted = convertBody({.source = {0, 819}}, "\xFC\xFC");
    EXPECT_EQ(converted.conversion.length, 4U);
    EXPECT_EQ(converted.conversion.returned, 4U);
}

TEST(StringMessage, ThatGrowsOutOfTheBufferStaysAsItIs)
{
    const Converted converted = convertBody({.source = {0, 819}, .buffer = 3}, "\xFC\xFC");
    EXPECT_EQ(converted.conversion.reason, MQRC_CONVERTED_MSG_TOO_BIG);
    EXPECT_EQ(converted.body, "\xFC\xFC");
    EXPECT_EQ(converted.conversion.representation, (Representation{0, 819}));
    EXPECT_EQ(converted.conversion.length, 2U);
}

TEST(StringMessage, ThatGrowsOutOfTheBufferIsCutBetweenCharactersWhereThatIsAccepted)
{
    const Converted converted = convertBody({.source = {0, 819}, .buffer = 3, .acceptTruncated = true}, "\xFC\xFC");
    EXPECT_EQ(converted.conversion.reason, MQRC_TRUNCATED_MSG_ACCEPTED);
    EXPECT_EQ(converted.body, "\xC3\xBC");
    EXPECT_EQ(converted.conversion.length, 2U);
    EXPECT_EQ(converted.conversion.representation, native);
}

TEST(StringMessage, CutBeforeTheConversionEndsWithAWholeCharacter)
{
    const Case test{.target = {0, 819}, .buffer = 4, .acceptTruncated = true};
    const Converted converted = convertBody(test, "ab\xC3\xBC\xC3\xBC");
    EXPECT_EQ(converted.body, "ab\xFC");
    const Converted inTheMiddle =
        convertBody({.target = {0, 819}, .buffer = 5, .acceptTruncated = true}, "ab\xC3\xBC\xC3\xBC");
    EXPECT_EQ(inTheMiddle.body, "ab\xFC");
    EXPECT_EQ(inTheMiddle.conversion.reason, MQRC_TRUNCATED_MSG_ACCEPTED);
    EXPECT_EQ(inTheMiddle.conversion.length, 6U);
}

TEST(StringMessage, CutOneOfSingleBytesKeepsItsLength)
{
    const Converted converted =
        convertBody({.source = {0, 500}, .target = {0, 819}, .buffer = 2, .acceptTruncated = true}, "\xC8\x85\x93");
    EXPECT_EQ(converted.body, "He");
    EXPECT_EQ(converted.conversion.reason, MQRC_TRUNCATED_MSG_ACCEPTED);
    EXPECT_EQ(converted.conversion.length, 3U);
}

TEST(StringMessage, BytesThatAreNoTextAreKept)
{
    for (const MQLONG target : {819, 500}) {
        const Converted converted = convertBody({.target = {MQENC_NATIVE, target}}, "good \xFF\xFE");
        EXPECT_EQ(converted.conversion.reason, MQRC_NOT_CONVERTED);
        EXPECT_EQ(converted.body, "good \xFF\xFE");
        EXPECT_EQ(converted.conversion.representation, native);
    }
}

TEST(StringMessage, ThatEndsWithinACharacterIsKept)
{
    const Converted converted = convertBody({.target = {0, 819}}, "gr\xC3\xBC\xC3");
    EXPECT_EQ(converted.conversion.reason, MQRC_NOT_CONVERTED);
    EXPECT_EQ(converted.body, "gr\xC3\xBC\xC3");
    EXPECT_EQ(converted.conversion.representation, native);
}

// A letter waits for the accent that may follow it, and comes when the text is over.
TEST(StringMessage, ItsLastLetterNeedsItsRoomToo)
{
    Case test{.source = {0, 1258}, .buffer = 3};
    EXPECT_EQ(convertBody(test, "\xE2\x61").body, "\xC3\xA2\x61");
    test.buffer = 2;
    const Converted kept = convertBody(test, "\xE2\x61");
    EXPECT_EQ(kept.conversion.reason, MQRC_CONVERTED_MSG_TOO_BIG);
    EXPECT_EQ(kept.body, "\xE2\x61");
    test.acceptTruncated = true;
    const Converted cut = convertBody(test, "\xE2\x61");
    EXPECT_EQ(cut.conversion.reason, MQRC_TRUNCATED_MSG_ACCEPTED);
    EXPECT_EQ(cut.body, "\xC3\xA2");
}

TEST(StringMessage, OfSingleBytesIsKeptAsAWhole)
{
    const Converted converted = convertBody({.source = {0, 923}, .target = {0, 819}}, "ab\xA4");
    EXPECT_EQ(converted.conversion.reason, MQRC_NOT_CONVERTED);
    EXPECT_EQ(converted.body, "ab\xA4");
}

TEST(StringMessage, UnknownSetsAreToldApart)
{
    EXPECT_EQ(convertBody({.source = {0, 4711}}, "a").conversion.reason, MQRC_SOURCE_CCSID_ERROR);
    EXPECT_EQ(convertBody({.target = {0, 4711}}, "a").conversion.reason, MQRC_TARGET_CCSID_ERROR);
    EXPECT_EQ(convertBody({.target = {0, MQCCSI_INHERIT}}, "a").conversion.reason, MQRC_TARGET_CCSID_ERROR);
}

TEST(StringMessage, NothingIsDoneWithoutDataOrBufferOrDifference)
{
    EXPECT_EQ(convertBody({.target = {0, 500}}, "").conversion.reason, MQRC_NONE);
    EXPECT_EQ(convertBody({.target = {0, 500}}, "").conversion.representation, native);
    const Converted nowhere = convertBody({.target = {0, 500}, .buffer = 0, .acceptTruncated = true}, "abc");
    EXPECT_EQ(nowhere.conversion.reason, MQRC_TRUNCATED_MSG_ACCEPTED);
    EXPECT_EQ(nowhere.conversion.representation, native);
    EXPECT_EQ(convertBody({}, "\xFF").conversion.reason, MQRC_NONE);
}

TEST(StringMessage, EncodingAloneMattersToTwoByteUnicodeOnly)
{
    const Converted same = convertBody({.target = {MQENC_NORMAL, 1208}}, "text");
    EXPECT_EQ(same.conversion.reason, MQRC_NONE);
    EXPECT_EQ(same.body, "text");
    EXPECT_EQ(same.conversion.representation.encoding, MQENC_NORMAL);
    const Converted turned =
        convertBody({.source = {MQENC_NORMAL, 1200}, .target = {MQENC_REVERSED, 1200}}, std::string_view("\0A\0B", 4));
    EXPECT_EQ(turned.body, std::string("A\0B\0", 4));
}

TEST(OtherMessage, WithoutAKnownFormatStaysAsItIs)
{
    for (const char *format : {MQFMT_NONE, "MYFORMAT"}) {
        const Converted converted = convertBody({.format = format, .target = {MQENC_NATIVE, 500}}, "bytes");
        EXPECT_EQ(converted.conversion.reason, MQRC_FORMAT_ERROR);
        EXPECT_EQ(converted.body, "bytes");
        EXPECT_EQ(converted.conversion.representation, native);
    }
}

} // namespace
} // namespace mqrig::qmgr::convert
