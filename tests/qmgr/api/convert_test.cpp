// MQGMO_CONVERT as a program sees it.
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
