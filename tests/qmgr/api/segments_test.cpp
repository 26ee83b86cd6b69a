#include "groups_fixture.h"

#include <cstring>

namespace mqrig::qmgr::testing {
namespace {

constexpr MQLONG complete = MQGMO_COMPLETE_MSG | MQGMO_NO_SYNCPOINT;

class Segments : public GroupTest {
public:
    // "abcdef" in three segments, the last one first.
    void putThree(std::string_view group, MQLONG persistence = MQPER_NOT_PERSISTENT)
    {
        const auto piece = [&](MQLONG flags, MQLONG offset) {
            return Piece{group, 1, flags, offset, MQPRI_PRIORITY_AS_Q_DEF, persistence};
        };
        putPiece(piece(MQMF_LAST_SEGMENT, 4), "ef");
        putPiece(piece(MQMF_SEGMENT, 0), "ab");
        putPiece(piece(MQMF_SEGMENT, 2), "cd");
    }
};

TEST_F(Segments, CompleteMessageIsPutTogether)
{
    putThree("S");
    const Got got = next(complete);
    EXPECT_EQ(got.codes, ok);
    EXPECT_EQ(got.body, "abcdef");
    EXPECT_EQ(got.dataLength, 6);
    EXPECT_EQ(got.md.Offset, 0);
    EXPECT_EQ(got.md.MsgFlags, MQMF_SEGMENT | MQMF_LAST_SEGMENT);
    EXPECT_EQ(got.gmo.SegmentStatus, MQSS_LAST_SEGMENT);
    EXPECT_EQ(depth("Q1"), 0);
}

TEST_F(Segments, WithoutItSegmentsComeOneByOne)
{
    putThree("S");
    EXPECT_EQ(all(MQGMO_NO_SYNCPOINT), (Bodies{"ef", "ab", "cd"}));
}

TEST_F(Segments, MessagesWithoutSegmentsComeAsTheyAre)
{
    put(hconn, q1, "single");
    putPiece({"Y", 1, MQMF_LAST_MSG_IN_GROUP}, "grouped");
    putThree("S");
    EXPECT_EQ(all(complete), (Bodies{"single", "grouped", "abcdef"}));
}

TEST_F(Segments, IncompleteMessageStays)
{
    putPiece({"S", 1, MQMF_SEGMENT}, "ab");
    putPiece({"S", 1, MQMF_LAST_SEGMENT, 4}, "ef");
    put(hconn, q1, "single");
    EXPECT_EQ(all(complete), (Bodies{"single"}));
    EXPECT_EQ(depth("Q1"), 2);
}

TEST_F(Segments, EmptyLastSegmentEndsTheMessage)
{
    putPiece({"S", 1, MQMF_SEGMENT}, "ab");
    putPiece({"S", 1, MQMF_LAST_SEGMENT, 2}, "");
    EXPECT_EQ(next(complete).body, "ab");
}

TEST_F(Segments, LogicalMessagesOfAGroupArePutTogetherInOrder)
{
    constexpr MQLONG inGroup = MQMF_MSG_IN_GROUP;
    putPiece({"Y", 2, MQMF_LAST_MSG_IN_GROUP}, "f");
    putPiece({"Y", 1, inGroup | MQMF_LAST_SEGMENT, 4}, "e");
    putPiece({"Y", 1, inGroup | MQMF_SEGMENT, 2}, "cd");
    putPiece({"Y", 1, inGroup | MQMF_SEGMENT, 0}, "ab");
    constexpr MQLONG options = complete | MQGMO_LOGICAL_ORDER | MQGMO_ALL_MSGS_AVAILABLE;
    const Got first = next(options);
    EXPECT_EQ(first.body, "abcde");
    EXPECT_EQ(first.gmo.GroupStatus, MQGS_MSG_IN_GROUP);
    EXPECT_EQ(first.gmo.SegmentStatus, MQSS_LAST_SEGMENT);
    const Got second = next(options);
    EXPECT_EQ(second.body, "f");
    EXPECT_EQ(second.gmo.GroupStatus, MQGS_LAST_MSG_IN_GROUP);
    EXPECT_EQ(close(hconn, q1), ok);
}

TEST_F(Segments, BrowseReturnsCompleteMessages)
{
    putThree("S");
    putThree("T");
    EXPECT_EQ(browsed(MQGMO_COMPLETE_MSG), (Bodies{"abcdef", "abcdef"}));
    EXPECT_EQ(browsed(MQGMO_COMPLETE_MSG | MQGMO_LOGICAL_ORDER), (Bodies{"abcdef", "abcdef"}));
    EXPECT_EQ(depth("Q1"), 6);
    EXPECT_EQ(next(complete | MQGMO_MSG_UNDER_CURSOR).body, "abcdef");
    EXPECT_EQ(depth("Q1"), 3);
}

TEST_F(Segments, MiddleOfAMessageUnderTheCursorIs2246)
{
    putThree("S");
    ASSERT_EQ(next(MQGMO_BROWSE_FIRST).body, "ef");
    EXPECT_EQ(next(complete | MQGMO_MSG_UNDER_CURSOR).codes, failed(MQRC_INVALID_MSG_UNDER_CURSOR));
    EXPECT_EQ(next(MQGMO_COMPLETE_MSG | MQGMO_BROWSE_MSG_UNDER_CURSOR).codes, failed(MQRC_INVALID_MSG_UNDER_CURSOR));
    ASSERT_EQ(next(MQGMO_BROWSE_NEXT).body, "ab");
    EXPECT_EQ(next(MQGMO_COMPLETE_MSG | MQGMO_BROWSE_MSG_UNDER_CURSOR).body, "abcdef");
}

TEST_F(Segments, IncompleteMessageUnderTheCursorIs2034)
{
    putPiece({"S", 1, MQMF_SEGMENT}, "ab");
    ASSERT_EQ(next(MQGMO_BROWSE_FIRST).body, "ab");
    EXPECT_EQ(next(complete | MQGMO_MSG_UNDER_CURSOR).codes, failed(MQRC_NO_MSG_UNDER_CURSOR));
    EXPECT_EQ(next(MQGMO_COMPLETE_MSG | MQGMO_BROWSE_MSG_UNDER_CURSOR).codes, failed(MQRC_NO_MSG_UNDER_CURSOR));
}

TEST_F(Segments, CompleteMessageJoinsTheUnitOfWork)
{
    putThree("S", MQPER_PERSISTENT);
    EXPECT_EQ(next(MQGMO_COMPLETE_MSG | MQGMO_SYNCPOINT).body, "abcdef");
    EXPECT_EQ(depth("Q1"), 0);
    ASSERT_EQ(backOut(hconn), ok);
    EXPECT_EQ(depth("Q1"), 3);
    const Got again = next(MQGMO_COMPLETE_MSG | MQGMO_SYNCPOINT);
    EXPECT_EQ(again.body, "abcdef");
    EXPECT_EQ(again.md.BackoutCount, 1);
    ASSERT_EQ(commit(hconn), ok);
    restart();
}

TEST_F(Segments, PersistentMessageIsGoneForGood)
{
    putThree("S", MQPER_PERSISTENT);
    EXPECT_EQ(next(complete).body, "abcdef");
    restart();
    EXPECT_EQ(depth("Q1"), 0);
}

TEST_F(Segments, PersistentMessageBesideAUnitOfWorkIs2255)
{
    putThree("S", MQPER_PERSISTENT);
    ASSERT_EQ(put(hconn, q1, "pending", {MQMD_DEFAULT}, pmoWith(MQPMO_SYNCPOINT)), ok);
    EXPECT_EQ(next(complete).codes, failed(MQRC_UOW_NOT_AVAILABLE));
    EXPECT_EQ(depth("Q1"), 4);
    ASSERT_EQ(commit(hconn), ok);
    EXPECT_EQ(next(complete).body, "abcdef");
}

TEST_F(Segments, NonPersistentMessageNeedsNoUnitOfWork)
{
    putThree("S");
    ASSERT_EQ(put(hconn, q1, "pending", {MQMD_DEFAULT}, pmoWith(MQPMO_SYNCPOINT)), ok);
    EXPECT_EQ(next(complete).body, "abcdef");
}

TEST_F(Segments, UnitOfWorkWithoutRoomForAllSegmentsIs2024)
{
    alterQueueManager({{MQIA_MAX_UNCOMMITTED_MSGS, 2}});
    putThree("S");
    EXPECT_EQ(next(MQGMO_COMPLETE_MSG | MQGMO_SYNCPOINT).codes, failed(MQRC_SYNCPOINT_LIMIT_REACHED));
    EXPECT_EQ(depth("Q1"), 3);
}

TEST_F(Segments, SmallBufferTruncatesTheWholeMessage)
{
    putThree("S");
    MQGMO gmo = gmoWith(complete, MQGMO_VERSION_2);
    gmo.MatchOptions = MQMO_NONE;
    Got got = get(hconn, q1, version2Md(), gmo, 5);
    EXPECT_EQ(got.codes, warned(MQRC_TRUNCATED_MSG_FAILED));
    EXPECT_EQ(got.dataLength, 6);
    EXPECT_EQ(depth("Q1"), 3);
    gmo.Options |= MQGMO_ACCEPT_TRUNCATED_MSG;
    got = get(hconn, q1, version2Md(), gmo, 5);
    EXPECT_EQ(got.codes, warned(MQRC_TRUNCATED_MSG_ACCEPTED));
    EXPECT_EQ(got.body, "abcde");
    EXPECT_EQ(depth("Q1"), 0);
}

TEST_F(Segments, SegmentsInDifferentCharacterSetsComeInParts)
{
    MQMD md = mdOf({"S", 1, MQMF_SEGMENT});
    md.CodedCharSetId = 1208;
    put(hconn, q1, "ab", md);
    md.Offset = 2;
    put(hconn, q1, "cd", md);
    md.Offset = 4;
    md.CodedCharSetId = 500;
    md.MsgFlags = MQMF_LAST_SEGMENT;
    put(hconn, q1, "ef", md);

    const Got got = next(complete | MQGMO_LOGICAL_ORDER);
    EXPECT_EQ(got.codes, warned(MQRC_INCONSISTENT_CCSIDS));
    EXPECT_EQ(got.body, "abcd");
    EXPECT_EQ(got.gmo.SegmentStatus, MQSS_SEGMENT);
    EXPECT_EQ(next(complete | MQGMO_LOGICAL_ORDER).codes, failed(MQRC_NO_MSG_AVAILABLE));
    EXPECT_EQ(next(MQGMO_LOGICAL_ORDER).body, "ef");
}

TEST_F(Segments, SegmentsInDifferentEncodingsComeInParts)
{
    MQMD md = mdOf({"S", 1, MQMF_SEGMENT});
    put(hconn, q1, "ab", md);
    md.Offset = 2;
    md.Encoding = 273;
    md.MsgFlags = MQMF_LAST_SEGMENT;
    put(hconn, q1, "cd", md);
    const Got got = next(complete);
    EXPECT_EQ(got.codes, warned(MQRC_INCONSISTENT_ENCODINGS));
    EXPECT_EQ(got.body, "ab");
    EXPECT_EQ(all(MQGMO_NO_SYNCPOINT), (Bodies{"cd"}));
}

TEST_F(Segments, ReportsAboutSegmentsArePutTogetherByTheirKind)
{
    const auto report = [&](MQLONG feedback, MQLONG offset, MQLONG flags, std::string_view data) {
        MQMD md = mdOf({"S", 1, flags, offset});
        md.MsgType = MQMT_REPORT;
        md.Feedback = feedback;
        md.OriginalLength = 4;
        EXPECT_EQ(put(hconn, q1, data, md), ok);
    };
    report(MQFB_COA, 0, MQMF_SEGMENT, "abcd");
    report(MQFB_COD, 0, MQMF_SEGMENT, "ABCD");
    report(MQFB_COD, 4, MQMF_LAST_SEGMENT, "EF");
    report(MQFB_COA, 4, MQMF_LAST_SEGMENT, "ef");
    const std::string missing(2, '\0');
    EXPECT_EQ(all(complete), (Bodies{"abcdef" + missing, "ABCDEF" + missing}));
}

TEST_F(Segments, IncompleteReportDoesNotHideOneOfAnotherKind)
{
    const auto report = [&](MQLONG feedback, MQLONG flags, std::string_view data) {
        MQMD md = mdOf({"S", 1, flags});
        md.MsgType = MQMT_REPORT;
        md.Feedback = feedback;
        md.OriginalLength = 2;
        EXPECT_EQ(put(hconn, q1, data, md), ok);
    };
    report(MQFB_COA, MQMF_SEGMENT, "ab");
    report(MQFB_COD, MQMF_LAST_SEGMENT, "AB");
    EXPECT_EQ(all(complete), (Bodies{"AB"}));
}

TEST_F(Segments, IncompleteDatagramDoesNotHideARequest)
{
    putPiece({"S", 1, MQMF_SEGMENT}, "ab");
    MQMD md = mdOf({"S", 1, MQMF_LAST_SEGMENT});
    md.MsgType = MQMT_REQUEST;
    setText(md.ReplyToQ, "Q1");
    ASSERT_EQ(put(hconn, q1, "request", md), ok);
    EXPECT_EQ(browsed(MQGMO_COMPLETE_MSG), (Bodies{"request"}));
    EXPECT_EQ(all(complete), (Bodies{"request"}));
}

TEST_F(Segments, ReportsOfMoreThanAMessageCanHaveAreNotFilled)
{
    const auto report = [&](MQLONG offset, MQLONG flags, std::string_view data, MQLONG originalLength) {
        MQMD md = mdOf({"S", 1, flags, offset});
        md.MsgType = MQMT_REPORT;
        md.Feedback = MQFB_COA;
        md.OriginalLength = originalLength;
        return put(hconn, q1, data, md);
    };
    constexpr MQLONG most = 104857600;
    EXPECT_EQ(report(0, MQMF_LAST_SEGMENT, "", 999999999), failed(MQRC_ORIGINAL_LENGTH_ERROR));
    EXPECT_EQ(report(0, MQMF_LAST_SEGMENT, "", most + 1), failed(MQRC_ORIGINAL_LENGTH_ERROR));
    ASSERT_EQ(report(0, MQMF_SEGMENT, "ab", most), ok);
    ASSERT_EQ(report(most, MQMF_LAST_SEGMENT, "c", most), ok);
    EXPECT_EQ(next(MQGMO_COMPLETE_MSG | MQGMO_BROWSE_FIRST).body, "abc");
    const Got got = next(complete);
    EXPECT_EQ(got.codes, ok);
    EXPECT_EQ(got.dataLength, 3);
}

// Two messages for one place: the first one counts, and the other begins nothing while that is there.
TEST_F(Segments, DoubleIsNoCompleteMessageOfItsOwn)
{
    MQMD md = mdOf({"S", 1, MQMF_LAST_SEGMENT});
    setBytes(md.MsgId, "A");
    ASSERT_EQ(put(hconn, q1, "first", md), ok);
    setBytes(md.MsgId, "B");
    ASSERT_EQ(put(hconn, q1, "double", md), ok);
    EXPECT_EQ(next(complete, MQMO_MATCH_MSG_ID, md).codes, failed(MQRC_NO_MSG_AVAILABLE));
    EXPECT_EQ(depth("Q1"), 2);
    EXPECT_EQ(next(complete).body, "first");
    EXPECT_EQ(next(complete, MQMO_MATCH_MSG_ID, md).body, "double");
}

TEST_F(Segments, BrowseGoesOnBehindADouble)
{
    putPiece({"S", 1, MQMF_LAST_SEGMENT}, "first");
    putPiece({"S", 1, MQMF_LAST_SEGMENT}, "double");
    put(hconn, q1, "single");
    EXPECT_EQ(browsed(MQGMO_COMPLETE_MSG), (Bodies{"first", "single"}));
}

TEST_F(Segments, HandleGetsTheMessageOfASegmentThatItHasLocked)
{
    putPiece({"S", 1, MQMF_SEGMENT}, "ab");
    putPiece({"S", 1, MQMF_LAST_SEGMENT, 2}, "cd");
    ASSERT_EQ(next(MQGMO_BROWSE_FIRST).body, "ab");
    ASSERT_EQ(next(MQGMO_BROWSE_NEXT | MQGMO_LOCK).body, "cd");
    const MQHOBJ other = open(hconn, "Q1", everything);
    EXPECT_EQ(get(hconn, other, complete).codes, failed(MQRC_NO_MSG_AVAILABLE));
    EXPECT_EQ(next(complete).body, "abcd");
    EXPECT_EQ(depth("Q1"), 0);
}

TEST_F(Segments, CompleteMessageLeavesTheLockOnAnother)
{
    put(hconn, q1, "single");
    putThree("S");
    ASSERT_EQ(next(MQGMO_BROWSE_FIRST | MQGMO_LOCK).body, "single");
    EXPECT_EQ(get(hconn, open(hconn, "Q1", everything), complete).body, "abcdef");
    putThree("T");
    MQMD md = version2Md();
    setBytes(md.GroupId, "T");
    EXPECT_EQ(next(complete, MQMO_MATCH_GROUP_ID, md).body, "abcdef");
    EXPECT_EQ(get(hconn, open(hconn, "Q1", everything)).codes, failed(MQRC_NO_MSG_AVAILABLE));
    EXPECT_EQ(next().body, "single");
}

TEST_F(Segments, LargeSegmentsArePutTogether)
{
    const std::string half(2000000, 'x');
    putPiece({"S", 1, MQMF_SEGMENT}, half);
    putPiece({"S", 1, MQMF_LAST_SEGMENT, 2000000}, half);
    MQGMO gmo = gmoWith(complete, MQGMO_VERSION_2);
    gmo.MatchOptions = MQMO_NONE;
    EXPECT_EQ(get(hconn, q1, version2Md(), gmo, 4000000).body, half + half);
}

TEST_F(Segments, OptionsThatCannotGoWithCompleteMessages)
{
    EXPECT_EQ(next(MQGMO_COMPLETE_MSG | MQGMO_SYNCPOINT_IF_PERSISTENT).codes, failed(MQRC_OPTIONS_ERROR));
    EXPECT_EQ(next(complete, MQMO_MATCH_OFFSET).codes, failed(MQRC_MATCH_OPTIONS_ERROR));
}

// ---- Segmentation by the queue manager ----

class Segmentation : public GroupTest {
public:
    // 50 bytes are allowed: segments of 48.
    Segmentation() { alterQueue("Q1", {{MQIA_MAX_MSG_LENGTH, 50}}); }

    static inline const std::string body = std::string(48, 'a') + std::string(48, 'b') + "rest";
    static MQMD allowed(MQLONG flags = MQMF_NONE, MQLONG persistence = MQPER_NOT_PERSISTENT)
    {
        MQMD md = withFlags(MQMF_SEGMENTATION_ALLOWED | flags);
        md.Persistence = persistence;
        return md;
    }
};

TEST_F(Segmentation, MessageThatFitsStaysWhole)
{
    ASSERT_EQ(put(hconn, q1, "short", allowed()), ok);
    const Got got = next();
    EXPECT_EQ(got.md.MsgFlags, MQMF_SEGMENTATION_ALLOWED);
    EXPECT_NE(bytes(got.md.GroupId), std::string(24, '\0'));
    EXPECT_EQ(got.gmo.Segmentation, MQSEG_ALLOWED);
    EXPECT_EQ(got.gmo.SegmentStatus, MQSS_NOT_A_SEGMENT);
}

TEST_F(Segmentation, LongMessageIsCutIntoMultiplesOf16)
{
    MQMD md = allowed();
    MQPMO pmo = {MQPMO_DEFAULT};
    ASSERT_EQ(putInOut(hconn, q1, body, md, pmo), ok);
    constexpr MQLONG segment = MQMF_SEGMENTATION_ALLOWED | MQMF_SEGMENT;
    const std::string group = bytes(md.GroupId);
    const Got first = next();
    const Got second = next();
    const Got third = next();
    EXPECT_EQ(first.body + second.body + third.body, body);
    EXPECT_EQ(placeOf(first.md), (Place{group, 1, 0, segment, 48}));
    EXPECT_EQ(placeOf(second.md), (Place{group, 1, 48, segment, 48}));
    EXPECT_EQ(placeOf(third.md), (Place{group, 1, 96, segment | MQMF_LAST_SEGMENT, 4}));
    EXPECT_EQ(bytes(first.md.MsgId), bytes(md.MsgId));
    EXPECT_NE(bytes(second.md.MsgId), bytes(first.md.MsgId));
    EXPECT_EQ(md.MsgFlags, MQMF_SEGMENTATION_ALLOWED);
}

TEST_F(Segmentation, CompleteMessageIsWhatWasPut)
{
    ASSERT_EQ(put(hconn, q1, body, allowed(MQMF_NONE, MQPER_PERSISTENT)), ok);
    EXPECT_EQ(depth("Q1"), 3);
    EXPECT_EQ(next(complete).body, body);
    EXPECT_EQ(depth("Q1"), 0);
}

TEST_F(Segmentation, PersistentSegmentsAreThereAfterARestart)
{
    ASSERT_EQ(put(hconn, q1, body, allowed(MQMF_NONE, MQPER_PERSISTENT)), ok);
    restart();
    const MQHCONN again = connect();
    const MQHOBJ queue = open(again, "Q1", everything);
    EXPECT_EQ(get(again, queue, complete).body, body);
}

TEST_F(Segmentation, SegmentOfTheProgramIsCutFurther)
{
    constexpr MQLONG inOrder = MQPMO_LOGICAL_ORDER | MQPMO_NO_SYNCPOINT;
    ASSERT_EQ(put(hconn, q1, std::string(60, 'x'), allowed(MQMF_SEGMENT), pmoWith(inOrder)), ok);
    ASSERT_EQ(put(hconn, q1, std::string(60, 'y'), allowed(MQMF_LAST_SEGMENT), pmoWith(inOrder)), ok);
    std::string offsets;
    for (int i = 0; i < 4; ++i) {
        const Got got = next();
        offsets += std::to_string(got.md.Offset) + got.gmo.SegmentStatus + ' ';
    }
    EXPECT_EQ(offsets, "0S 48S 60S 108L ");
}

TEST_F(Segmentation, LogicalMessageOfAGroupIsCut)
{
    constexpr MQLONG inOrder = MQPMO_LOGICAL_ORDER | MQPMO_NO_SYNCPOINT;
    ASSERT_EQ(put(hconn, q1, body, allowed(MQMF_MSG_IN_GROUP), pmoWith(inOrder)), ok);
    ASSERT_EQ(put(hconn, q1, "end", allowed(MQMF_LAST_MSG_IN_GROUP), pmoWith(inOrder)), ok);
    EXPECT_EQ(all(complete | MQGMO_LOGICAL_ORDER | MQGMO_ALL_MSGS_AVAILABLE), (Bodies{body, "end"}));
}

TEST_F(Segmentation, SegmentsJoinTheUnitOfWork)
{
    ASSERT_EQ(put(hconn, q1, body, allowed(), pmoWith(MQPMO_SYNCPOINT)), ok);
    EXPECT_EQ(next().codes, failed(MQRC_NO_MSG_AVAILABLE));
    ASSERT_EQ(commit(hconn), ok);
    EXPECT_EQ(next(complete).body, body);
}

TEST_F(Segmentation, QueueWithoutRoomForAllSegmentsTakesNone)
{
    alterQueue("Q1", {{MQIA_MAX_Q_DEPTH, 2}});
    EXPECT_EQ(put(hconn, q1, body, allowed()), failed(MQRC_Q_FULL));
    EXPECT_EQ(put(hconn, q1, body, allowed(), pmoWith(MQPMO_SYNCPOINT)), failed(MQRC_Q_FULL));
    EXPECT_EQ(depth("Q1"), 0);
    ASSERT_EQ(commit(hconn), ok);
    EXPECT_EQ(all(MQGMO_NO_SYNCPOINT), Bodies{});
}

TEST_F(Segmentation, UnitOfWorkWithoutRoomForAllSegmentsIs2024)
{
    alterQueueManager({{MQIA_MAX_UNCOMMITTED_MSGS, 2}});
    EXPECT_EQ(put(hconn, q1, body, allowed(), pmoWith(MQPMO_SYNCPOINT)), failed(MQRC_SYNCPOINT_LIMIT_REACHED));
    EXPECT_EQ(depth("Q1"), 0);
}

TEST_F(Segmentation, PersistentMessageBesideAUnitOfWorkIs2255)
{
    ASSERT_EQ(put(hconn, q1, "pending", {MQMD_DEFAULT}, pmoWith(MQPMO_SYNCPOINT)), ok);
    EXPECT_EQ(put(hconn, q1, body, allowed(MQMF_NONE, MQPER_PERSISTENT)), failed(MQRC_UOW_NOT_AVAILABLE));
    EXPECT_EQ(put(hconn, q1, "short", allowed(MQMF_NONE, MQPER_PERSISTENT)), ok);
    EXPECT_EQ(put(hconn, q1, body, allowed()), ok);
    EXPECT_EQ(depth("Q1"), 5);
}

TEST_F(Segmentation, WithoutTheFlagLongMessagesAre2030)
{
    EXPECT_EQ(put(hconn, q1, body), failed(MQRC_MSG_TOO_BIG_FOR_Q));
}

TEST_F(Segmentation, LimitBelow16BytesIs2030)
{
    alterQueue("Q1", {{MQIA_MAX_MSG_LENGTH, 15}});
    EXPECT_EQ(put(hconn, q1, body, allowed()), failed(MQRC_MSG_TOO_BIG_FOR_Q));
}

TEST_F(Segmentation, HeaderThatWouldBeCutIs2030)
{
    MQDLH header = {MQDLH_DEFAULT};
    MQMD md = allowed();
    std::memcpy(md.Format, MQFMT_DEAD_LETTER_HEADER, sizeof md.Format);
    const std::string text(reinterpret_cast<const char *>(&header), sizeof header);
    EXPECT_EQ(put(hconn, q1, text, md), failed(MQRC_MSG_TOO_BIG_FOR_Q));
}

TEST_F(Segmentation, EachSegmentIsReported)
{
    defineQueue("ANSWERS");
    MQMD md = allowed();
    md.Report = MQRO_COA | MQRO_COD;
    setText(md.ReplyToQ, "ANSWERS");
    ASSERT_EQ(put(hconn, q1, body, md), ok);
    EXPECT_EQ(depth("ANSWERS"), 3);
    EXPECT_EQ(next(complete).body, body);
    EXPECT_EQ(depth("ANSWERS"), 6);

    // The reports of each kind are segments themselves: without data they stand for as many zeros.
    const MQHOBJ answers = open(hconn, "ANSWERS", MQOO_INPUT_SHARED);
    for (const MQLONG feedback : {MQFB_COA, MQFB_COD}) {
        const Got report = get(hconn, answers, version2Md(), gmoWith(complete));
        EXPECT_EQ(report.md.Feedback, feedback);
        EXPECT_EQ(report.body, std::string(body.size(), '\0'));
    }
    EXPECT_EQ(depth("ANSWERS"), 0);
}

} // namespace
} // namespace mqrig::qmgr::testing
