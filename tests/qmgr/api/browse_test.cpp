#include "fixture.h"

#include <cstring>

namespace mqrig::qmgr::testing {
namespace {

class Browse : public OpenQueueTest {
public:
    Browse()
    {
        for (const char *body : {"1", "2", "3"})
            put(hconn, q1, body);
    }
    std::string browse(MQLONG options)
    {
        const Got got = get(hconn, q1, options);
        return got.codes == ok ? got.body : std::to_string(got.codes.Reason);
    }
};

TEST_F(Browse, FirstThenNextWalksTheQueueAndLeavesIt)
{
    EXPECT_EQ(browse(MQGMO_BROWSE_FIRST), "1");
    EXPECT_EQ(browse(MQGMO_BROWSE_NEXT), "2");
    EXPECT_EQ(browse(MQGMO_BROWSE_NEXT), "3");
    EXPECT_EQ(browse(MQGMO_BROWSE_NEXT), "2033");
    EXPECT_EQ(depth("Q1"), 3);
}

TEST_F(Browse, NextBeginsWithTheFirst)
{
    EXPECT_EQ(browse(MQGMO_BROWSE_NEXT), "1");
}

TEST_F(Browse, FirstBeginsAgain)
{
    browse(MQGMO_BROWSE_FIRST);
    browse(MQGMO_BROWSE_NEXT);
    EXPECT_EQ(browse(MQGMO_BROWSE_FIRST), "1");
}

TEST_F(Browse, NextGoesOnAtTheEndWhenMoreComes)
{
    for (int i = 0; i < 4; ++i)
        browse(MQGMO_BROWSE_NEXT);
    put(hconn, q1, "4");
    EXPECT_EQ(browse(MQGMO_BROWSE_NEXT), "4");
}

TEST_F(Browse, MessageOfHigherPriorityBehindTheCursorIsNotSeenByNext)
{
    browse(MQGMO_BROWSE_FIRST);
    put(hconn, q1, "urgent", withPriority(9));
    EXPECT_EQ(browse(MQGMO_BROWSE_NEXT), "2");
    EXPECT_EQ(browse(MQGMO_BROWSE_FIRST), "urgent");
}

TEST_F(Browse, EachHandleHasItsOwnCursor)
{
    browse(MQGMO_BROWSE_FIRST);
    const MQHOBJ other = open(hconn, "Q1", MQOO_BROWSE);
    EXPECT_EQ(get(hconn, other, MQGMO_BROWSE_NEXT).body, "1");
    EXPECT_EQ(browse(MQGMO_BROWSE_NEXT), "2");
}

TEST_F(Browse, UnderCursorShowsTheSameMessageAgain)
{
    browse(MQGMO_BROWSE_FIRST);
    browse(MQGMO_BROWSE_NEXT);
    EXPECT_EQ(browse(MQGMO_BROWSE_MSG_UNDER_CURSOR), "2");
    EXPECT_EQ(browse(MQGMO_BROWSE_MSG_UNDER_CURSOR), "2");
    EXPECT_EQ(browse(MQGMO_BROWSE_NEXT), "3");
}

TEST_F(Browse, UnderCursorIgnoresMatchOptions)
{
    browse(MQGMO_BROWSE_FIRST);
    MQMD md = version2Md();
    setBytes(md.MsgId, "no message has it");
    EXPECT_EQ(get(hconn, q1, md, gmoWith(MQGMO_BROWSE_MSG_UNDER_CURSOR)).body, "1");
    EXPECT_EQ(get(hconn, q1, md, gmoWith(MQGMO_MSG_UNDER_CURSOR)).body, "1");
}

TEST_F(Browse, WithoutACursorThereIsNothingUnderIt)
{
    EXPECT_EQ(browse(MQGMO_BROWSE_MSG_UNDER_CURSOR), "2034");
    EXPECT_EQ(browse(MQGMO_MSG_UNDER_CURSOR), "2034");
}

TEST_F(Browse, GetUnderCursorRemovesThatMessage)
{
    browse(MQGMO_BROWSE_FIRST);
    browse(MQGMO_BROWSE_NEXT);
    EXPECT_EQ(browse(MQGMO_MSG_UNDER_CURSOR), "2");
    EXPECT_EQ(browse(MQGMO_MSG_UNDER_CURSOR), "2034");
    EXPECT_EQ(browse(MQGMO_BROWSE_MSG_UNDER_CURSOR), "2034");
    EXPECT_EQ(browse(MQGMO_BROWSE_NEXT), "3");
    EXPECT_EQ(drain(hconn, q1), (std::vector<std::string>{"1", "3"}));
}

TEST_F(Browse, MessageGotByAnotherIsNoLongerUnderTheCursor)
{
    browse(MQGMO_BROWSE_FIRST);
    get(connect(), q1);
    const MQHCONN other = connect();
    EXPECT_EQ(get(other, open(other, "Q1", MQOO_INPUT_SHARED)).body, "1");
    EXPECT_EQ(browse(MQGMO_MSG_UNDER_CURSOR), "2034");
    EXPECT_EQ(browse(MQGMO_BROWSE_NEXT), "2");
}

TEST_F(Browse, GetUnderCursorInAUnitOfWorkComesBackWithBackout)
{
    browse(MQGMO_BROWSE_FIRST);
    EXPECT_EQ(browse(MQGMO_MSG_UNDER_CURSOR | MQGMO_SYNCPOINT), "1");
    EXPECT_EQ(browse(MQGMO_BROWSE_FIRST), "2");
    backOut(hconn);
    EXPECT_EQ(browse(MQGMO_BROWSE_FIRST), "1");
}

TEST_F(Browse, PlainGetLeavesTheCursor)
{
    browse(MQGMO_BROWSE_FIRST);
    browse(MQGMO_BROWSE_NEXT);
    EXPECT_EQ(browse(MQGMO_NO_SYNCPOINT), "1");
    EXPECT_EQ(browse(MQGMO_BROWSE_MSG_UNDER_CURSOR), "2");
}

TEST_F(Browse, TruncationFailedLeavesTheCursor)
{
    browse(MQGMO_BROWSE_FIRST);
    const Got got = get(hconn, q1, version2Md(), gmoWith(MQGMO_BROWSE_NEXT), 0);
    EXPECT_EQ(got.codes, warned(MQRC_TRUNCATED_MSG_FAILED));
    EXPECT_EQ(browse(MQGMO_BROWSE_MSG_UNDER_CURSOR), "1");
    EXPECT_EQ(browse(MQGMO_BROWSE_NEXT), "2");
}

TEST_F(Browse, TruncationAcceptedMovesTheCursor)
{
    browse(MQGMO_BROWSE_FIRST);
    const Got got = get(hconn, q1, version2Md(), gmoWith(MQGMO_BROWSE_NEXT | MQGMO_ACCEPT_TRUNCATED_MSG), 0);
    EXPECT_EQ(got.codes, warned(MQRC_TRUNCATED_MSG_ACCEPTED));
    EXPECT_EQ(browse(MQGMO_BROWSE_NEXT), "3");
}

TEST_F(Browse, NextWithASelectionSkipsTheOthers)
{
    for (const char *body : {"a", "b"}) {
        MQMD md = {MQMD_DEFAULT};
        setBytes(md.CorrelId, "WANTED");
        put(hconn, q1, body, md);
        put(hconn, q1, "other");
    }
    MQMD md = version2Md();
    setBytes(md.CorrelId, "WANTED");
    MQGMO gmo = gmoWith(MQGMO_BROWSE_FIRST, MQGMO_VERSION_2);
    gmo.MatchOptions = MQMO_MATCH_CORREL_ID;
    EXPECT_EQ(get(hconn, q1, md, gmo).body, "a");
    gmo.Options = MQGMO_BROWSE_NEXT;
    EXPECT_EQ(get(hconn, q1, md, gmo).body, "b");
    EXPECT_EQ(get(hconn, q1, md, gmo).codes, failed(MQRC_NO_MSG_AVAILABLE));
}

TEST_F(Browse, ByTokenStandsOnThatMessage)
{
    browse(MQGMO_BROWSE_FIRST);
    const Got second = get(hconn, q1, MQGMO_BROWSE_NEXT);
    MQGMO gmo = gmoWith(MQGMO_BROWSE_FIRST, MQGMO_VERSION_3);
    gmo.MatchOptions = MQMO_MATCH_MSG_TOKEN;
    std::memcpy(gmo.MsgToken, second.gmo.MsgToken, sizeof gmo.MsgToken);
    EXPECT_EQ(get(hconn, q1, version2Md(), gmo).body, "2");
    gmo.Options = MQGMO_BROWSE_NEXT;
    EXPECT_EQ(get(hconn, q1, version2Md(), gmo).codes, failed(MQRC_NO_MSG_AVAILABLE));
    EXPECT_EQ(browse(MQGMO_BROWSE_NEXT), "3");
}

TEST_F(Browse, UncommittedPutsOfOthersAreNotSeen)
{
    const MQHCONN other = connect();
    put(other, open(other, "Q1", MQOO_OUTPUT), "4", {MQMD_DEFAULT}, pmoWith(MQPMO_SYNCPOINT));
    for (int i = 0; i < 3; ++i)
        browse(MQGMO_BROWSE_NEXT);
    EXPECT_EQ(browse(MQGMO_BROWSE_NEXT), "2033");
    commit(other);
    EXPECT_EQ(browse(MQGMO_BROWSE_NEXT), "4");
}

TEST_F(Browse, MessagesGotButNotCommittedAreNotSeen)
{
    const MQHCONN other = connect();
    get(other, open(other, "Q1", MQOO_INPUT_SHARED), MQGMO_SYNCPOINT);
    EXPECT_EQ(browse(MQGMO_BROWSE_FIRST), "2");
    backOut(other);
    EXPECT_EQ(browse(MQGMO_BROWSE_FIRST), "1");
}

} // namespace
} // namespace mqrig::qmgr::testing
