// MQGMO_CONVERT as a program sees it.
#include <cmqcfc.h>

#include "fixture.h"

#include <cstring>

namespace mqrig::qmgr::testing {
namespace {

class Convert : public OpenQueueTest {
public:
    Codes putText(std::string_view body, MQLONG ccsid, const char *format = MQFMT_STRING)
    {
        MQMD md = {MQMD_DEFAULT};
        std::memcpy(md.Format, format, sizeof md.Format);
        md.CodedCharSetId = ccsid;
        md.Encoding = MQENC_S390;
        return put(hconn, q1, body, md);
    }
    Got convert(MQLONG ccsid, MQLONG options = MQGMO_NONE, std::size_t bufferLength = 4096)
    {
        MQMD md = version2Md();
        md.CodedCharSetId = ccsid;
        return get(hconn, q1, md, gmoWith(MQGMO_CONVERT | options, MQGMO_VERSION_3), bufferLength);
    }
};

TEST_F(Convert, TextComesInTheWantedSet)
{
    putText("\xC8\x85\x93\x93\x96", 500);
    const Got got = convert(MQCCSI_Q_MGR);
    EXPECT_EQ(got.codes, ok);
    EXPECT_EQ(got.body, "Hello");
    EXPECT_EQ(got.md.CodedCharSetId, 1208);
    EXPECT_EQ(got.md.Encoding, MQENC_NATIVE);
    EXPECT_EQ(std::string(got.md.Format, 8), MQFMT_STRING);
    EXPECT_EQ(depth("Q1"), 0);
}

TEST_F(Convert, LengthsAreThoseAfterTheConversion)
{
    putText("gr\xFC\xDF", 819);
    const Got got = convert(1208);
    EXPECT_EQ(got.dataLength, 6);
    EXPECT_EQ(got.gmo.ReturnedLength, 6);
}

TEST_F(Convert, BrowsedMessageStaysAsItIsOnTheQueue)
{
    putText("\xC8\x89", 500);
    EXPECT_EQ(convert(819, MQGMO_BROWSE_FIRST).body, "Hi");
    EXPECT_EQ(get(hconn, q1).body, "\xC8\x89");
}

TEST_F(Convert, WithoutTheOptionNothingIsConverted)
{
    putText("\xC8\x89", 500);
    const Got got = get(hconn, q1);
    EXPECT_EQ(got.body, "\xC8\x89");
    EXPECT_EQ(got.md.CodedCharSetId, 500);
}

TEST_F(Convert, MessageThatCannotBeConvertedComesAsItIs)
{
    putText("\xE2\x82\xAC", 1208);
    const Got got = convert(819);
    EXPECT_EQ(got.codes, warned(MQRC_NOT_CONVERTED));
    EXPECT_EQ(got.body, "\xE2\x82\xAC");
    EXPECT_EQ(got.md.CodedCharSetId, 1208);
    EXPECT_EQ(got.md.Encoding, MQENC_S390);
    EXPECT_EQ(depth("Q1"), 0);
}

TEST_F(Convert, ReasonsOfSetsAndFormats)
{
    putText("text", 4711);
    EXPECT_EQ(convert(1208).codes, warned(MQRC_SOURCE_CCSID_ERROR));
    putText("text", 819);
    EXPECT_EQ(convert(4711).codes, warned(MQRC_TARGET_CCSID_ERROR));
    putText("text", 819, "UNKNOWN ");
    EXPECT_EQ(convert(1208).codes, warned(MQRC_FORMAT_ERROR));
    putText("no header", 819, MQFMT_DEAD_LETTER_HEADER);
    EXPECT_EQ(convert(1208).codes, warned(MQRC_FORMAT_ERROR));
}

TEST_F(Convert, ReasonsOfEncodings)
{
    struct Case {
        MQLONG encoding; // with one part that is unknown
        MQLONG ofSource;
        MQLONG ofTarget;
    };
    constexpr Case cases[] = {
        {0x00F, MQRC_SOURCE_INTEGER_ENC_ERROR, MQRC_TARGET_INTEGER_ENC_ERROR},
        {0x0F1, MQRC_SOURCE_DECIMAL_ENC_ERROR, MQRC_TARGET_DECIMAL_ENC_ERROR},
        {0xF11, MQRC_SOURCE_FLOAT_ENC_ERROR, MQRC_TARGET_FLOAT_ENC_ERROR},
    };
    const MQDLH header = {MQDLH_DEFAULT}; // a text has no encoding
    const std::string body(reinterpret_cast<const char *>(&header), sizeof header);
    for (const Case &each : cases) {
        MQMD md = {MQMD_DEFAULT};
        std::memcpy(md.Format, MQFMT_DEAD_LETTER_HEADER, sizeof md.Format);
        md.CodedCharSetId = 819;
        md.Encoding = each.encoding;
        put(hconn, q1, body, md);
        EXPECT_EQ(convert(1208).codes, warned(each.ofSource));

        md.Encoding = MQENC_NATIVE;
        put(hconn, q1, body, md);
        MQMD wanted = version2Md();
        wanted.CodedCharSetId = 1208;
        wanted.Encoding = each.encoding;
        EXPECT_EQ(get(hconn, q1, wanted, gmoWith(MQGMO_CONVERT, MQGMO_VERSION_3)).codes, warned(each.ofTarget));
    }
}

TEST_F(Convert, HeaderWithACommandMessageComesInTheWantedOrder)
{
    MQEPH header = {MQEPH_DEFAULT};
    header.StrucLength = sizeof header;
    header.PCFHeader.Command = MQCMD_PING_Q_MGR;
    header.PCFHeader.ParameterCount = 0;
    MQMD md = {MQMD_DEFAULT};
    std::memcpy(md.Format, MQFMT_EMBEDDED_PCF, sizeof md.Format);
    put(hconn, q1, {reinterpret_cast<const char *>(&header), sizeof header}, md);
    MQMD wanted = version2Md();
    wanted.Encoding = MQENC_NORMAL;
    wanted.CodedCharSetId = 1208;
    const Got got = get(hconn, q1, wanted, gmoWith(MQGMO_CONVERT, MQGMO_VERSION_3));
    ASSERT_EQ(got.codes, ok);
    ASSERT_EQ(got.body.size(), sizeof header);
    std::memcpy(&header, got.body.data(), sizeof header);
    const auto turned = [](MQLONG number) {
        return static_cast<MQLONG>(__builtin_bswap32(static_cast<MQULONG>(number)));
    };
    EXPECT_EQ(turned(header.PCFHeader.Command), MQCMD_PING_Q_MGR);
    EXPECT_EQ(turned(header.PCFHeader.StrucLength), MQCFH_STRUC_LENGTH);
    EXPECT_EQ(turned(header.StrucLength), static_cast<MQLONG>(sizeof header));
}

TEST_F(Convert, TextThatGrowsOutOfItsFieldIsSaid)
{
    MQDLH header = {MQDLH_DEFAULT};
    header.Encoding = MQENC_S390;
    std::memset(header.PutApplName, 0xFC, sizeof header.PutApplName);
    header.Version = 0x01000000; // most significant byte first
    header.Reason = 0;
    const std::string body(reinterpret_cast<const char *>(&header), sizeof header);
    putText(body, 819, MQFMT_DEAD_LETTER_HEADER);
    const Got got = convert(1208);
    EXPECT_EQ(got.codes, warned(MQRC_CONVERTED_STRING_TOO_BIG));
    EXPECT_EQ(got.body, body);
    EXPECT_EQ(got.md.CodedCharSetId, 819);
}

TEST_F(Convert, HeaderTooShortForTheWantedSetIsInTheQueueManagers)
{
    MQDLH header = {MQDLH_DEFAULT};
    header.Version = 0x01000000; // most significant byte first
    std::memset(header.DestQName, 'Q', sizeof header.DestQName);
    putText({reinterpret_cast<const char *>(&header), sizeof header}, 819, MQFMT_DEAD_LETTER_HEADER);
    const Got got = convert(1200);
    EXPECT_EQ(got.codes, warned(MQRC_PARTIALLY_CONVERTED));
    EXPECT_EQ(got.md.CodedCharSetId, 1208);
    EXPECT_EQ(got.md.Encoding, MQENC_NATIVE);
}

TEST_F(Convert, MessageThatGrowsOutOfTheBufferIsGoneFromTheQueueAndComesAsItIs)
{
    putText("\xFC\xFC", 819);
    const Got got = convert(1208, MQGMO_NONE, 3);
    EXPECT_EQ(got.codes, warned(MQRC_CONVERTED_MSG_TOO_BIG));
    EXPECT_EQ(got.body, "\xFC\xFC");
    EXPECT_EQ(got.md.CodedCharSetId, 819);
    EXPECT_EQ(depth("Q1"), 0);
}

TEST_F(Convert, MessageThatGrowsOutOfTheBufferIsCutWhereThatIsAccepted)
{
    putText("\xFC\xFC", 819);
    const Got got = convert(1208, MQGMO_ACCEPT_TRUNCATED_MSG, 3);
    EXPECT_EQ(got.codes, warned(MQRC_TRUNCATED_MSG_ACCEPTED));
    EXPECT_EQ(got.dataLength, 2);
    EXPECT_EQ(got.gmo.ReturnedLength, 2);
    EXPECT_EQ(got.body, "\xC3\xBC");
}

TEST_F(Convert, MessageTooLongForTheBufferIsNotConverted)
{
    putText("\xC8\x85\x93\x93\x96", 500);
    const Got got = convert(819, MQGMO_NONE, 2);
    EXPECT_EQ(got.codes, warned(MQRC_TRUNCATED_MSG_FAILED));
    EXPECT_EQ(got.body, "\xC8\x85");
    EXPECT_EQ(got.md.CodedCharSetId, 500);
    EXPECT_EQ(convert(819, MQGMO_ACCEPT_TRUNCATED_MSG, 2).body, "He");
}

TEST_F(Convert, UnderSyncpointTheMessageOnTheQueueIsUntouched)
{
    putText("\xC8\x89", 500);
    EXPECT_EQ(convert(819, MQGMO_SYNCPOINT).body, "Hi");
    ASSERT_EQ(backOut(hconn), ok);
    EXPECT_EQ(get(hconn, q1).body, "\xC8\x89");
}

} // namespace
} // namespace mqrig::qmgr::testing
