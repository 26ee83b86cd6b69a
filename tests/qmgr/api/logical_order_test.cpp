#include "groups_fixture.h"

#include <atomic>
#include <thread>

namespace mqrig::qmgr::testing {
namespace {

constexpr MQLONG inGroup = MQMF_MSG_IN_GROUP;
constexpr MQLONG lastInGroup = MQMF_LAST_MSG_IN_GROUP;
constexpr MQLONG inOrder = MQGMO_LOGICAL_ORDER | MQGMO_NO_SYNCPOINT;
constexpr MQLONG whenComplete = inOrder | MQGMO_ALL_MSGS_AVAILABLE;

class GetInOrder : public GroupTest {
public:
    // The groups Y (y1 y2 and y3 in two segments) and Z, one overtaking the other, and single messages around them.
    void putMixed()
    {
        put(hconn, q1, "a");
        putPiece({"Y", 1, inGroup}, "y1");
        putPiece({"Z", 2, lastInGroup}, "z2");
        putPiece({"Y", 2, inGroup}, "y2");
        putPiece({"Y", 3, lastInGroup | MQMF_LAST_SEGMENT, 3}, "end");
        putPiece({"Y", 3, lastInGroup | MQMF_SEGMENT, 0}, "y3-");
        putPiece({"Z", 1, inGroup}, "z1");
        put(hconn, q1, "b");
    }
    static inline const Bodies logical{"a", "y1", "y2", "y3-", "end", "z1", "z2", "b"};
};

TEST_F(GetInOrder, GroupsComeTogetherAndInSequence)
{
    putMixed();
    EXPECT_EQ(all(inOrder), logical);
    EXPECT_EQ(depth("Q1"), 0);
}

TEST_F(GetInOrder, WithoutItMessagesComeInTheOrderOfTheQueue)
{
    putMixed();
    EXPECT_EQ(all(MQGMO_NO_SYNCPOINT), (Bodies{"a", "y1", "z2", "y2", "end", "y3-", "z1", "b"}));
}

TEST_F(GetInOrder, BrowsingComesInTheSameOrder)
{
    putMixed();
    EXPECT_EQ(browsed(MQGMO_LOGICAL_ORDER), logical);
    EXPECT_EQ(browsed(MQGMO_LOGICAL_ORDER), logical);
    EXPECT_EQ(depth("Q1"), 8);
}

TEST_F(GetInOrder, BrowsingGoesOnBehindTheBeginningOfTheGroup)
{
    putPiece({"Y", 1, inGroup}, "y1");
    put(hconn, q1, "single");
    putPiece({"Y", 2, lastInGroup}, "y2");
    EXPECT_EQ(browsed(MQGMO_LOGICAL_ORDER), (Bodies{"y1", "y2", "single"}));
}

TEST_F(GetInOrder, MembersOfOtherPriorityStayWithTheirGroup)
{
    putPiece({"Y", 1, inGroup, 0, 3}, "y1");
    putPiece({"Y", 2, inGroup, 0, 9}, "y2");
    putPiece({"Y", 3, lastInGroup, 0, 0}, "y3");
    put(hconn, q1, "high", withPriority(8));
    put(hconn, q1, "low", withPriority(1));
    EXPECT_EQ(browsed(MQGMO_LOGICAL_ORDER), (Bodies{"high", "y1", "y2", "y3", "low"}));
    EXPECT_EQ(all(inOrder), (Bodies{"high", "y1", "y2", "y3", "low"}));
}

TEST_F(GetInOrder, StatusTellsWhereTheGroupEnds)
{
    putMixed();
    std::string statuses;
    for (int i = 0; i < 8; ++i) {
        const Got got = next(inOrder);
        statuses += {got.gmo.GroupStatus, got.gmo.SegmentStatus, ','};
    }
    EXPECT_EQ(statuses, "  ,G ,G ,LS,LL,G ,L ,  ,");
}

TEST_F(GetInOrder, SinglesBetweenTheMessagesOfAGroupDoNotDisturb)
{
    const MQHOBJ other = open(hconn, "Q1", MQOO_OUTPUT);
    for (const char *body : {"1", "2", "3"}) {
        ASSERT_EQ(putInOrder(*body == '3' ? lastInGroup : inGroup, body), ok);
        ASSERT_EQ(put(hconn, other, "single"), ok);
    }
    EXPECT_EQ(all(inOrder), (Bodies{"1", "2", "3", "single", "single", "single"}));
}

TEST_F(GetInOrder, MissingMessageHoldsTheGroupUp)
{
    putPiece({"Y", 1, inGroup}, "y1");
    putPiece({"Y", 3, lastInGroup}, "y3");
    put(hconn, q1, "single");
    EXPECT_EQ(next(inOrder).body, "y1");
    EXPECT_EQ(next(inOrder).codes, failed(MQRC_NO_MSG_AVAILABLE));
    putPiece({"Y", 2, inGroup}, "y2");
    EXPECT_EQ(all(inOrder), (Bodies{"y2", "y3", "single"}));
}

TEST_F(GetInOrder, WaitsForTheNextMessageOfTheGroup)
{
    putPiece({"Y", 1, inGroup}, "y1");
    put(hconn, q1, "single");
    EXPECT_EQ(next(inOrder).body, "y1");
    std::thread putter([this] {
        const MQHCONN own = connect();
        const MQHOBJ target = open(own, "Q1", MQOO_OUTPUT);
        EXPECT_EQ(put(own, target, "another single"), ok);
        EXPECT_EQ(put(own, target, "y2", mdOf({"Y", 2, lastInGroup})), ok);
    });
    MQGMO gmo = gmoWith(inOrder | MQGMO_WAIT, MQGMO_VERSION_2);
    gmo.MatchOptions = MQMO_NONE;
    gmo.WaitInterval = 20000;
    EXPECT_EQ(get(hconn, q1, version2Md(), gmo).body, "y2");
    putter.join();
}

TEST_F(GetInOrder, MessagesWithoutABeginningAreNotReturned)
{
    putPiece({"Y", 2, lastInGroup}, "y2");
    putPiece({"S", 1, MQMF_LAST_SEGMENT, 5}, "rest");
    put(hconn, q1, "single");
    EXPECT_EQ(all(inOrder), (Bodies{"single"}));
}

TEST_F(GetInOrder, SelectionChoosesTheGroup)
{
    putPiece({"Y", 1, inGroup}, "y1");
    putPiece({"Z", 1, inGroup}, "z1");
    putPiece({"Z", 2, lastInGroup}, "z2");
    const Got got = next(inOrder, MQMO_MATCH_GROUP_ID, mdOf({"Z", 1, MQMF_NONE}));
    EXPECT_EQ(got.body, "z1");
    EXPECT_EQ(next(inOrder, MQMO_MATCH_GROUP_ID, got.md).body, "z2");
}

TEST_F(GetInOrder, SelectionOfSomethingElseThanTheNextIs2247)
{
    EXPECT_EQ(next(inOrder, MQMO_MATCH_MSG_SEQ_NUMBER, mdOf({"", 2, MQMF_NONE})).codes,
              failed(MQRC_MATCH_OPTIONS_ERROR));
    putPiece({"Y", 1, inGroup}, "y1");
    putPiece({"Y", 2, lastInGroup}, "y2");
    const Got first = next(inOrder, MQMO_MATCH_MSG_SEQ_NUMBER | MQMO_MATCH_OFFSET, mdOf({"", 1, MQMF_NONE}));
    EXPECT_EQ(first.body, "y1");
    EXPECT_EQ(next(inOrder, MQMO_MATCH_MSG_ID, first.md).codes, failed(MQRC_MATCH_OPTIONS_ERROR));
    EXPECT_EQ(next(inOrder, MQMO_MATCH_MSG_SEQ_NUMBER, first.md).codes, failed(MQRC_MATCH_OPTIONS_ERROR));
    EXPECT_EQ(next(inOrder, MQMO_MATCH_GROUP_ID, mdOf({"Z", 2, MQMF_NONE})).codes, failed(MQRC_MATCH_OPTIONS_ERROR));
    EXPECT_EQ(next(inOrder, MQMO_MATCH_OFFSET, mdOf({"Y", 2, MQMF_NONE, 1})).codes, failed(MQRC_MATCH_OPTIONS_ERROR));
    EXPECT_EQ(next(inOrder, MQMO_MATCH_MSG_SEQ_NUMBER, mdOf({"Y", 2, MQMF_NONE})).body, "y2");
}

TEST_F(GetInOrder, ChangedUnitOfWorkIs2245)
{
    putMixed();
    EXPECT_EQ(next(MQGMO_LOGICAL_ORDER | MQGMO_SYNCPOINT).body, "a");
    EXPECT_EQ(next(MQGMO_LOGICAL_ORDER | MQGMO_SYNCPOINT).body, "y1");
    EXPECT_EQ(next(inOrder).codes, failed(MQRC_INCONSISTENT_UOW));
    ASSERT_EQ(commit(hconn), ok);
    EXPECT_EQ(next(MQGMO_LOGICAL_ORDER | MQGMO_SYNCPOINT).body, "y2");
}

TEST_F(GetInOrder, BrowsingAndGettingKeepTheirOwnPlaces)
{
    putMixed();
    EXPECT_EQ(next(MQGMO_BROWSE_FIRST | MQGMO_LOGICAL_ORDER).body, "a");
    EXPECT_EQ(next(MQGMO_BROWSE_NEXT | MQGMO_LOGICAL_ORDER).body, "y1");
    EXPECT_EQ(next(inOrder).body, "a");
    EXPECT_EQ(next(MQGMO_BROWSE_NEXT | MQGMO_LOGICAL_ORDER).body, "y2");
    EXPECT_EQ(next(inOrder).body, "y1");
}

TEST_F(GetInOrder, BrowseThatChangesTheOrderIs2259)
{
    putMixed();
    EXPECT_EQ(next(MQGMO_BROWSE_NEXT | MQGMO_LOGICAL_ORDER).body, "a");
    EXPECT_EQ(next(MQGMO_BROWSE_NEXT).codes, failed(MQRC_INCONSISTENT_BROWSE));
    EXPECT_EQ(next(MQGMO_BROWSE_FIRST).body, "a");
    EXPECT_EQ(next(MQGMO_BROWSE_NEXT | MQGMO_LOGICAL_ORDER).codes, failed(MQRC_INCONSISTENT_BROWSE));
    EXPECT_EQ(next(MQGMO_BROWSE_NEXT).body, "y1");
}

TEST_F(GetInOrder, LeavingAGroupWarnsOnce)
{
    putMixed();
    EXPECT_EQ(next(inOrder).body, "a");
    EXPECT_EQ(next(inOrder).body, "y1");
    const Got other = next(MQGMO_NO_SYNCPOINT);
    EXPECT_EQ(other.body, "z2");
    EXPECT_EQ(other.codes, warned(MQRC_INCOMPLETE_GROUP));
    EXPECT_EQ(next(MQGMO_NO_SYNCPOINT).codes, ok);
}

TEST_F(GetInOrder, LeavingALogicalMessageWarns)
{
    putPiece({"S", 1, MQMF_SEGMENT}, "beginning");
    put(hconn, q1, "single");
    EXPECT_EQ(next(inOrder).body, "beginning");
    EXPECT_EQ(next(MQGMO_NO_SYNCPOINT).codes, warned(MQRC_INCOMPLETE_MSG));
}

TEST_F(GetInOrder, GoingOnInAnotherUnitOfWorkWithoutItWarns)
{
    putPiece({"Y", 1, inGroup}, "y1");
    putPiece({"Y", 2, lastInGroup}, "y2");
    EXPECT_EQ(next(inOrder).body, "y1");
    EXPECT_EQ(next(MQGMO_SYNCPOINT).codes, warned(MQRC_INCONSISTENT_UOW));
}

TEST_F(GetInOrder, GroupIsTakenUpWhereAGetWithoutItLeftIt)
{
    putPiece({"Y", 2, inGroup}, "y2");
    putPiece({"Y", 4, lastInGroup}, "y4");
    putPiece({"Y", 3, inGroup}, "y3");
    EXPECT_EQ(next(MQGMO_NO_SYNCPOINT, MQMO_MATCH_GROUP_ID | MQMO_MATCH_MSG_SEQ_NUMBER, mdOf({"Y", 2, MQMF_NONE})).body,
              "y2");
    EXPECT_EQ(all(inOrder), (Bodies{"y3", "y4"}));
}

TEST_F(GetInOrder, TruncatedMessageThatStaysMovesNothing)
{
    putPiece({"Y", 1, inGroup}, "long message");
    putPiece({"Y", 2, lastInGroup}, "y2");
    MQGMO gmo = gmoWith(inOrder, MQGMO_VERSION_2);
    gmo.MatchOptions = MQMO_NONE;
    EXPECT_EQ(get(hconn, q1, version2Md(), gmo, 4).codes, warned(MQRC_TRUNCATED_MSG_FAILED));
    EXPECT_EQ(all(inOrder), (Bodies{"long message", "y2"}));
}

TEST_F(GetInOrder, CloseWarnsOfAnUnfinishedGroup)
{
    putMixed();
    EXPECT_EQ(next(inOrder).body, "a");
    EXPECT_EQ(next(inOrder).body, "y1");
    EXPECT_EQ(close(hconn, q1), warned(MQRC_INCOMPLETE_GROUP));
}

TEST_F(GetInOrder, CloseWarnsOfAnUnfinishedBrowse)
{
    putPiece({"S", 1, MQMF_SEGMENT}, "beginning");
    EXPECT_EQ(next(MQGMO_BROWSE_FIRST | MQGMO_LOGICAL_ORDER).body, "beginning");
    EXPECT_EQ(close(hconn, q1), warned(MQRC_INCOMPLETE_MSG));
}

TEST_F(GetInOrder, NeedsVersion2Structures)
{
    EXPECT_EQ(get(hconn, q1, version2Md(), gmoWith(inOrder)).codes, failed(MQRC_WRONG_GMO_VERSION));
    EXPECT_EQ(get(hconn, q1, MQMD{MQMD_DEFAULT}, gmoWith(inOrder, MQGMO_VERSION_2)).codes,
              failed(MQRC_WRONG_MD_VERSION));
}

TEST_F(GetInOrder, MatchedFieldOutOfRangeIs2250Or2251)
{
    EXPECT_EQ(next(MQGMO_NO_SYNCPOINT, MQMO_MATCH_MSG_SEQ_NUMBER, mdOf({"", 0, MQMF_NONE})).codes,
              failed(MQRC_MSG_SEQ_NUMBER_ERROR));
    EXPECT_EQ(next(MQGMO_NO_SYNCPOINT, MQMO_MATCH_OFFSET, mdOf({"", 1, MQMF_NONE, -1})).codes,
              failed(MQRC_OFFSET_ERROR));
}

// ---- MQGMO_ALL_MSGS_AVAILABLE and MQGMO_ALL_SEGMENTS_AVAILABLE ----

TEST_F(GetInOrder, IncompleteGroupIsPassedOverWhereAllMustBeThere)
{
    putPiece({"Y", 1, inGroup}, "y1");
    putPiece({"Z", 1, inGroup}, "z1");
    putPiece({"Z", 2, lastInGroup}, "z2");
    EXPECT_EQ(all(whenComplete), (Bodies{"z1", "z2"}));
    EXPECT_EQ(browsed(MQGMO_LOGICAL_ORDER | MQGMO_ALL_MSGS_AVAILABLE), Bodies{});
    putPiece({"Y", 3, lastInGroup}, "y3");
    EXPECT_EQ(all(whenComplete), Bodies{});
    putPiece({"Y", 2, inGroup}, "y2");
    EXPECT_EQ(browsed(MQGMO_LOGICAL_ORDER | MQGMO_ALL_MSGS_AVAILABLE), (Bodies{"y1", "y2", "y3"}));
    EXPECT_EQ(all(whenComplete), (Bodies{"y1", "y2", "y3"}));
}

TEST_F(GetInOrder, MissingSegmentMakesItsGroupIncomplete)
{
    putPiece({"Y", 1, inGroup | MQMF_SEGMENT}, "ab");
    putPiece({"Y", 2, lastInGroup}, "y2");
    EXPECT_EQ(all(whenComplete), Bodies{});
    putPiece({"Y", 1, inGroup | MQMF_LAST_SEGMENT, 2}, "c");
    EXPECT_EQ(all(whenComplete), (Bodies{"ab", "c", "y2"}));
}

TEST_F(GetInOrder, MessageOfAnotherUnitOfWorkIsMissing)
{
    const MQHCONN other = connect();
    const MQHOBJ target = open(other, "Q1", MQOO_OUTPUT | MQOO_INPUT_SHARED);
    putPiece({"Y", 1, inGroup}, "y1");
    ASSERT_EQ(put(other, target, "y2", mdOf({"Y", 2, lastInGroup}), pmoWith(MQPMO_SYNCPOINT)), ok);
    EXPECT_EQ(all(whenComplete), Bodies{});
    ASSERT_EQ(commit(other), ok);
    ASSERT_EQ(get(other, target, MQGMO_SYNCPOINT).body, "y1");
    EXPECT_EQ(all(whenComplete), Bodies{});
    ASSERT_EQ(backOut(other), ok);
    EXPECT_EQ(all(whenComplete), (Bodies{"y1", "y2"}));
}

TEST_F(GetInOrder, WithoutLogicalOrderEveryMessageNeedsItsWholeGroup)
{
    putPiece({"Y", 2, lastInGroup}, "y2");
    put(hconn, q1, "single");
    putPiece({"Y", 1, inGroup}, "y1");
    EXPECT_EQ(next(MQGMO_ALL_MSGS_AVAILABLE).body, "y2");
    EXPECT_EQ(all(MQGMO_ALL_MSGS_AVAILABLE), (Bodies{"single"}));
    EXPECT_EQ(all(MQGMO_NO_SYNCPOINT), (Bodies{"y1"}));
}

TEST_F(GetInOrder, SegmentsWaitForOneAnotherWhereAllMustBeThere)
{
    putPiece({"S", 1, MQMF_SEGMENT}, "ab");
    put(hconn, q1, "single");
    EXPECT_EQ(all(inOrder | MQGMO_ALL_SEGMENTS_AVAILABLE), (Bodies{"single"}));
    putPiece({"S", 1, MQMF_LAST_SEGMENT, 2}, "c");
    EXPECT_EQ(all(inOrder | MQGMO_ALL_SEGMENTS_AVAILABLE), (Bodies{"ab", "c"}));
}

TEST_F(GetInOrder, DoublesDoNotCount)
{
    for (int i = 0; i < 2; ++i) {
        putPiece({"Y", 1, inGroup}, "y1");
        putPiece({"Y", 2, lastInGroup}, "y2");
    }
    EXPECT_EQ(all(whenComplete), (Bodies{"y1", "y2", "y1", "y2"}));
}

TEST_F(GetInOrder, CompletionWakesTheGetter)
{
    putPiece({"Y", 1, inGroup}, "y1");
    std::thread putter([this] {
        const MQHCONN own = connect();
        const MQHOBJ target = open(own, "Q1", MQOO_OUTPUT);
        EXPECT_EQ(put(own, target, "y2", mdOf({"Y", 2, inGroup})), ok);
        EXPECT_EQ(put(own, target, "y3", mdOf({"Y", 3, lastInGroup})), ok);
    });
    MQGMO gmo = gmoWith(whenComplete | MQGMO_WAIT, MQGMO_VERSION_2);
    gmo.MatchOptions = MQMO_NONE;
    gmo.WaitInterval = 20000;
    EXPECT_EQ(get(hconn, q1, version2Md(), gmo).body, "y1");
    EXPECT_EQ(all(whenComplete), (Bodies{"y2", "y3"}));
    putter.join();
}

// Each member is found by its place: this would take minutes otherwise.
TEST_F(GetInOrder, LargeGroupPutBackwardsIsDrained)
{
    constexpr MQLONG members = 10000;
    alterQueue("Q1", {{MQIA_MAX_Q_DEPTH, members}});
    for (MQLONG number = members; number >= 1; --number)
        ASSERT_EQ(putPiece({"Y", number, number == members ? lastInGroup : inGroup}, std::to_string(number)), ok);
    for (MQLONG number = 1; number <= members; ++number)
        ASSERT_EQ(next(whenComplete).body, std::to_string(number));
    EXPECT_EQ(depth("Q1"), 0);
}

} // namespace
} // namespace mqrig::qmgr::testing
