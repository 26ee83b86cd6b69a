#include "fixture.h"

#include <cstring>

namespace mqrig::qmgr::testing {
namespace {

using Bodies = std::vector<std::string>;

class UnitOfWork : public OpenQueueTest {
public:
    UnitOfWork() : other(connect()), otherQ1(open(other, "Q1", everything)) {}

    Codes putInUnit(std::string_view body, MQMD md = {MQMD_DEFAULT})
    {
        return put(hconn, q1, body, md, pmoWith(MQPMO_SYNCPOINT));
    }
    Got getInUnit(MQLONG option = MQGMO_SYNCPOINT) { return get(hconn, q1, option); }
    Bodies seenByOthers() { return drain(other, otherQ1); }

    MQHCONN other;
    MQHOBJ otherQ1;
};

TEST_F(UnitOfWork, PutIsSeenAfterCommitOnly)
{
    ASSERT_EQ(putInUnit("1"), ok);
    EXPECT_EQ(seenByOthers(), Bodies{});
    ASSERT_EQ(commit(hconn), ok);
    EXPECT_EQ(seenByOthers(), Bodies{"1"});
}

TEST_F(UnitOfWork, OwnUncommittedPutIsNotGotEither)
{
    putInUnit("1");
    EXPECT_EQ(get(hconn, q1).codes, failed(MQRC_NO_MSG_AVAILABLE));
}

TEST_F(UnitOfWork, BackedOutPutIsGone)
{
    putInUnit("1");
    ASSERT_EQ(backOut(hconn), ok);
    EXPECT_EQ(seenByOthers(), Bodies{});
    EXPECT_EQ(depth("Q1"), 0);
}

TEST_F(UnitOfWork, GotMessageIsGoneAfterCommit)
{
    put(hconn, q1, "1");
    EXPECT_EQ(getInUnit().body, "1");
    EXPECT_EQ(seenByOthers(), Bodies{});
    ASSERT_EQ(commit(hconn), ok);
    EXPECT_EQ(seenByOthers(), Bodies{});
}

TEST_F(UnitOfWork, BackedOutGetIsThereAgainInItsPlace)
{
    for (const char *body : {"1", "2"})
        put(hconn, q1, body);
    EXPECT_EQ(getInUnit().body, "1");
    ASSERT_EQ(backOut(hconn), ok);
    EXPECT_EQ(seenByOthers(), (Bodies{"1", "2"}));
}

TEST_F(UnitOfWork, BackoutCountCountsBackouts)
{
    for (const MQMD &md : {MQMD{MQMD_DEFAULT}, persistentMd()}) {
        put(hconn, q1, "1", md);
        for (MQLONG count = 0; count < 3; ++count) {
            EXPECT_EQ(getInUnit().md.BackoutCount, count);
            backOut(hconn);
        }
        EXPECT_EQ(get(hconn, q1).md.BackoutCount, 3);
    }
}

TEST_F(UnitOfWork, BackoutCountOfPersistentMessagesOutlivesARestart)
{
    put(hconn, q1, "1", persistentMd());
    getInUnit();
    backOut(hconn);
    putInUnit("a log transaction after it", persistentMd());
    commit(hconn);
    restart();
    const MQHCONN again = connect();
    EXPECT_EQ(get(again, open(again, "Q1", MQOO_INPUT_SHARED)).md.BackoutCount, 1);
}

TEST_F(UnitOfWork, EmptyUnitCommitsAndBacksOut)
{
    EXPECT_EQ(commit(hconn), ok);
    EXPECT_EQ(backOut(hconn), ok);
}

TEST_F(UnitOfWork, SyncpointIfPersistentTakesPersistentMessagesOnly)
{
    put(hconn, q1, "persistent", persistentMd());
    put(hconn, q1, "not persistent");
    EXPECT_EQ(getInUnit(MQGMO_SYNCPOINT_IF_PERSISTENT).body, "persistent");
    EXPECT_EQ(getInUnit(MQGMO_SYNCPOINT_IF_PERSISTENT).body, "not persistent");
    backOut(hconn);
    EXPECT_EQ(seenByOthers(), Bodies{"persistent"});
}

TEST_F(UnitOfWork, WorkOutsideTheUnitIsNotBackedOut)
{
    putInUnit("inside");
    put(hconn, q1, "outside");
    backOut(hconn);
    EXPECT_EQ(seenByOthers(), Bodies{"outside"});
}

TEST_F(UnitOfWork, WithoutASyncpointOptionCallsAreOutside)
{
    put(hconn, q1, "1", {MQMD_DEFAULT}, pmoWith(MQPMO_NONE));
    EXPECT_EQ(get(hconn, q1, MQGMO_NONE).body, "1");
    backOut(hconn);
    EXPECT_EQ(seenByOthers(), Bodies{});
}

TEST_F(UnitOfWork, DisconnectCommits)
{
    put(other, otherQ1, "to be got");
    putInUnit("to be put");
    getInUnit();
    ASSERT_EQ(disconnect(hconn), ok);
    EXPECT_EQ(seenByOthers(), Bodies{"to be put"});
}

TEST_F(UnitOfWork, ClosingTheQueueLeavesTheUnit)
{
    putInUnit("1");
    close(hconn, q1);
    ASSERT_EQ(commit(hconn), ok);
    EXPECT_EQ(seenByOthers(), Bodies{"1"});
}

TEST_F(UnitOfWork, BodiesAreTheUnitsOwn)
{
    char buffer[] = "first";
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = pmoWith(MQPMO_SYNCPOINT);
    Codes codes;
    MQPUT(hconn, q1, &md, &pmo, 5, buffer, &codes.CompCode, &codes.Reason);
    ASSERT_EQ(codes, ok);
    std::memset(buffer, '#', 5);
    commit(hconn);
    EXPECT_EQ(seenByOthers(), Bodies{"first"});
}

TEST_F(UnitOfWork, LargeAndManyMessagesCommitTogether)
{
    Bodies bodies;
    for (int i = 0; i < 300; ++i)
        bodies.push_back(std::to_string(i) + std::string(static_cast<std::size_t>(i) * 7, 'x'));
    bodies.push_back(std::string(1000000, 'y'));
    bodies.push_back("after the large one");
    for (const std::string &body : bodies)
        ASSERT_EQ(putInUnit(body), ok);
    commit(hconn);
    Bodies seen;
    for (std::size_t i = 0; i < bodies.size(); ++i)
        seen.push_back(get(other, otherQ1, version2Md(), gmoWith(MQGMO_NO_SYNCPOINT), 2000000).body);
    EXPECT_TRUE(seen == bodies);
}

TEST_F(UnitOfWork, LargeMessageIsGotUnderSyncpoint)
{
    const std::string body(300000, 'z');
    put(hconn, q1, body);
    EXPECT_TRUE(get(hconn, q1, version2Md(), gmoWith(MQGMO_SYNCPOINT), body.size()).body == body);
    backOut(hconn);
    EXPECT_TRUE(get(hconn, q1, version2Md(), gmoWith(MQGMO_SYNCPOINT), body.size()).body == body);
    commit(hconn);
    EXPECT_EQ(depth("Q1"), 0);
}

TEST_F(UnitOfWork, TwoUnitsDoNotMix)
{
    putInUnit("mine");
    put(other, otherQ1, "theirs", {MQMD_DEFAULT}, pmoWith(MQPMO_SYNCPOINT));
    backOut(other);
    commit(hconn);
    EXPECT_EQ(seenByOthers(), Bodies{"mine"});
}

TEST_F(UnitOfWork, ExpiryCountsFromThePut)
{
    putInUnit("1", withExpiry(3000));
    commit(hconn);
    EXPECT_LE(get(hconn, q1).md.Expiry, 3000);
}

// ---- Limits ----

TEST_F(UnitOfWork, DepthAndFullQueueCountUncommittedPuts)
{
    alterQueue("Q1", {{MQIA_MAX_Q_DEPTH, 2}});
    putInUnit("1");
    EXPECT_EQ(depth("Q1"), 1);
    putInUnit("2");
    EXPECT_EQ(putInUnit("3"), failed(MQRC_Q_FULL));
    EXPECT_EQ(put(other, otherQ1, "3"), failed(MQRC_Q_FULL));
    backOut(hconn);
    EXPECT_EQ(put(other, otherQ1, "3"), ok);
    EXPECT_EQ(depth("Q1"), 1);
}

TEST_F(UnitOfWork, PutThatFailedIsNotInTheUnit)
{
    alterQueue("Q1", {{MQIA_MAX_Q_DEPTH, 1}});
    putInUnit("1");
    EXPECT_EQ(putInUnit("2"), failed(MQRC_Q_FULL));
    ASSERT_EQ(commit(hconn), ok);
    EXPECT_EQ(seenByOthers(), Bodies{"1"});
}

TEST_F(UnitOfWork, MoreThanMAXUMSGSIs2024)
{
    alterQueueManager({{MQIA_MAX_UNCOMMITTED_MSGS, 2}});
    put(hconn, q1, "there");
    ASSERT_EQ(putInUnit("1"), ok);
    ASSERT_EQ(getInUnit().codes, ok);
    put(hconn, q1, "there too");
    EXPECT_EQ(putInUnit("2"), failed(MQRC_SYNCPOINT_LIMIT_REACHED));
    EXPECT_EQ(getInUnit().codes, failed(MQRC_SYNCPOINT_LIMIT_REACHED));
    EXPECT_EQ(put(hconn, q1, "outside"), ok);
    commit(hconn);
    EXPECT_EQ(putInUnit("2"), ok);
}

// ---- Persistence ----

TEST_F(UnitOfWork, PersistentMessagesOutliveARestartAndOthersDoNot)
{
    putInUnit("persistent in a unit", persistentMd());
    putInUnit("not persistent in a unit");
    commit(hconn);
    put(hconn, q1, "persistent", persistentMd());
    put(hconn, q1, "not persistent");
    putInUnit("never committed", persistentMd());
    restart();
    const MQHCONN again = connect();
    EXPECT_EQ(drain(again, open(again, "Q1", MQOO_INPUT_SHARED)), (Bodies{"persistent in a unit", "persistent"}));
}

TEST_F(UnitOfWork, PersistentGetsOutliveARestart)
{
    put(hconn, q1, "got", persistentMd());
    put(hconn, q1, "got in a unit", persistentMd());
    put(hconn, q1, "got and not committed", persistentMd());
    get(hconn, q1);
    getInUnit();
    commit(hconn);
    getInUnit();
    restart();
    const MQHCONN again = connect();
    EXPECT_EQ(drain(again, open(again, "Q1", MQOO_INPUT_SHARED)), Bodies{"got and not committed"});
}

TEST_F(UnitOfWork, CommitAfterTheEndIsRefusedAndNothingIsPut)
{
    putInUnit("late", persistentMd());
    endImmediate();
    EXPECT_EQ(commit(hconn), failed(MQRC_Q_MGR_STOPPING));
    start();
    const MQHCONN again = connect();
    EXPECT_EQ(drain(again, open(again, "Q1", MQOO_INPUT_SHARED)), Bodies{});
}

// ---- MQBEGIN ----

Codes begin(MQHCONN hconn, MQBO *bo)
{
    Codes codes;
    MQBEGIN(hconn, bo, &codes.CompCode, &codes.Reason);
    return codes;
}

TEST_F(UnitOfWork, BeginWarnsThatThereAreNoOtherParticipants)
{
    MQBO bo = {MQBO_DEFAULT};
    EXPECT_EQ(begin(hconn, &bo), warned(MQRC_NO_EXTERNAL_PARTICIPANTS));
    commit(hconn);
    EXPECT_EQ(begin(hconn, nullptr), warned(MQRC_NO_EXTERNAL_PARTICIPANTS));
    backOut(hconn);
    EXPECT_EQ(begin(hconn, nullptr), warned(MQRC_NO_EXTERNAL_PARTICIPANTS));
}

TEST_F(UnitOfWork, BeginInsideAUnitIs2128)
{
    begin(hconn, nullptr);
    EXPECT_EQ(begin(hconn, nullptr), failed(MQRC_UOW_IN_PROGRESS));
    commit(hconn);
    putInUnit("1");
    EXPECT_EQ(begin(hconn, nullptr), failed(MQRC_UOW_IN_PROGRESS));
}

TEST_F(UnitOfWork, BeginChecksItsOptions)
{
    MQBO bo = {MQBO_DEFAULT};
    bo.Version = 2;
    EXPECT_EQ(begin(hconn, &bo), failed(MQRC_BO_ERROR));
    bo = {MQBO_DEFAULT};
    bo.Options = 1;
    EXPECT_EQ(begin(hconn, &bo), failed(MQRC_OPTIONS_ERROR));
    EXPECT_EQ(begin(hconn + 1, nullptr), failed(MQRC_HCONN_ERROR));
}

} // namespace
} // namespace mqrig::qmgr::testing
