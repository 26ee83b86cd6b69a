// When work is under syncpoint, and the one rule that ends a unit of work.
#include "calls_test.h"

#include "mqicalls.h"

namespace {

class JudgesTest : public CallsTest {
protected:
    RunParams other = DEFAULT_RUN_PARAMS;
};

TEST_F(JudgesTest, PutUnderSyncpointSetsTheWord)
{
    params.Pmo.Options = MQPMO_SYNCPOINT | MQPMO_NEW_MSG_ID;
    Judge_syncpoint_put("mqrig", &params);
    EXPECT_EQ(params.SyncpointFlag, 1);
}

TEST_F(JudgesTest, PutOutsideSyncpointLeavesTheWord)
{
    params.Pmo.Options = MQPMO_NO_SYNCPOINT;
    Judge_syncpoint_put("mqrig", &params);
    EXPECT_EQ(params.SyncpointFlag, 0);
}

TEST_F(JudgesTest, PutJudgeDoesNotLookAtGetOptions)
{
    params.Gmo.Options = MQGMO_SYNCPOINT;
    Judge_syncpoint_put("mqrig", &params);
    EXPECT_EQ(params.SyncpointFlag, 0);
}

TEST_F(JudgesTest, JudgesNeverClearTheWord)
{
    params.SyncpointFlag = 1;
    Judge_syncpoint_put("mqrig", &params);
    Judge_syncpoint_get("mqrig", &params);
    Judge_syncpoint_getput("mqrig", &params, &other);
    EXPECT_EQ(params.SyncpointFlag, 1);
}

TEST_F(JudgesTest, GetUnderSyncpointSetsTheWord)
{
    params.Gmo.Options = MQGMO_SYNCPOINT;
    Judge_syncpoint_get("mqrig", &params);
    EXPECT_EQ(params.SyncpointFlag, 1);
}

TEST_F(JudgesTest, GetSyncpointIfPersistentWithAPersistentDescriptorSetsTheWord)
{
    params.Gmo.Options = MQGMO_SYNCPOINT_IF_PERSISTENT;
    params.Md.Persistence = MQPER_PERSISTENT;
    Judge_syncpoint_get("mqrig", &params);
    EXPECT_EQ(params.SyncpointFlag, 1);
}

TEST_F(JudgesTest, GetSyncpointIfPersistentWithANonPersistentDescriptorMakesNoUnitOfWork)
{
    params.Gmo.Options = MQGMO_SYNCPOINT_IF_PERSISTENT;
    params.Md.Persistence = MQPER_NOT_PERSISTENT;
    Judge_syncpoint_get("mqrig", &params);
    EXPECT_EQ(params.SyncpointFlag, 0);
}

TEST_F(JudgesTest, GetputSetsBothWordsForAGetUnderSyncpoint)
{
    params.Gmo.Options = MQGMO_SYNCPOINT;
    Judge_syncpoint_getput("mqrig", &params, &other);
    EXPECT_EQ(params.SyncpointFlag, 1);
    EXPECT_EQ(other.SyncpointFlag, 1);
}

TEST_F(JudgesTest, GetputSetsBothWordsForAPutUnderSyncpoint)
{
    other.Pmo.Options = MQPMO_SYNCPOINT;
    Judge_syncpoint_getput("mqrig", &params, &other);
    EXPECT_EQ(params.SyncpointFlag, 1);
    EXPECT_EQ(other.SyncpointFlag, 1);
}

TEST_F(JudgesTest, GetputSetsBothWordsForSyncpointIfPersistent)
{
    params.Gmo.Options = MQGMO_SYNCPOINT_IF_PERSISTENT;
    params.Md.Persistence = MQPER_PERSISTENT;
    Judge_syncpoint_getput("mqrig", &params, &other);
    EXPECT_EQ(params.SyncpointFlag, 1);
    EXPECT_EQ(other.SyncpointFlag, 1);
}

TEST_F(JudgesTest, GetputLooksAtThePutOptionsOfThePutSideOnly)
{
    params.Pmo.Options = MQPMO_SYNCPOINT;
    Judge_syncpoint_getput("mqrig", &params, &other);
    EXPECT_EQ(params.SyncpointFlag, 0);
}

class EndOfWorkTest : public CallsTest {
protected:
    EndOfWorkTest() { params.SyncpointFlag = 1; }
    Written end(Status result)
    {
        return written([&, result] { return end_unit_of_work(&params, hconn, result); });
    }
    Written settle(Status result)
    {
        return written([&, result] { return settle_unit_of_work(&params, hconn, result); });
    }
};

using Calls = std::vector<std::string>;

TEST_F(EndOfWorkTest, SuccessCommits)
{
    EXPECT_EQ(end(0).status, 0);
    EXPECT_EQ(fakeMqi.calls, Calls{"MQCMIT"});
}

TEST_F(EndOfWorkTest, WarningCommitsAndStays)
{
    EXPECT_EQ(end(2).status, 2);
    EXPECT_EQ(fakeMqi.calls, Calls{"MQCMIT"});
}

TEST_F(EndOfWorkTest, NegativeResultCommits)
{
    EXPECT_EQ(end(-1).status, -1);
    EXPECT_EQ(fakeMqi.calls, Calls{"MQCMIT"});
}

TEST_F(EndOfWorkTest, LocalFailureBacksOut)
{
    EXPECT_EQ(end(1).status, 1);
    EXPECT_EQ(fakeMqi.calls, Calls{"MQBACK"});
}

TEST_F(EndOfWorkTest, MqiFailureBacksOut)
{
    EXPECT_EQ(end(3).status, 3);
    EXPECT_EQ(fakeMqi.calls, Calls{"MQBACK"});
}

TEST_F(EndOfWorkTest, ForcedBackoutBacksOutASuccess)
{
    params.ForceBackout = 1;
    const Written written = end(0);
    EXPECT_EQ(written.status, 0);
    EXPECT_EQ(written.out, "MQBACK success : CompCd=00 ReasonCd=00\n");
}

TEST_F(EndOfWorkTest, FailedCommitTurnsTheResultInto1)
{
    fakeMqi.answers["MQCMIT"].push_back({MQCC_FAILED, MQRC_CONNECTION_BROKEN});
    EXPECT_EQ(end(0).status, 1);
}

TEST_F(EndOfWorkTest, FailedBackoutTurnsTheResultInto1)
{
    fakeMqi.answers["MQBACK"].push_back({MQCC_FAILED, MQRC_CONNECTION_BROKEN});
    EXPECT_EQ(end(3).status, 1);
}

TEST_F(EndOfWorkTest, OutsideSyncpointNothingEnds)
{
    params.SyncpointFlag = 0;
    params.ForceBackout = 1;
    EXPECT_EQ(end(3).status, 3);
    EXPECT_EQ(fakeMqi.calls, Calls{});
}

TEST_F(EndOfWorkTest, ThreadsThatShareAConnectionEndNothing)
{
    params.ThreadCount = 4;
    EXPECT_EQ(end(0).status, 0);
    EXPECT_EQ(fakeMqi.calls, Calls{});
}

TEST_F(EndOfWorkTest, ThreadsWithTheirOwnConnectionsEndTheirOwn)
{
    params.InnerConnThreadCount = 4;
    end(0);
    EXPECT_EQ(fakeMqi.calls, Calls{"MQCMIT"});
}

TEST_F(EndOfWorkTest, DriverCommitsWhatAGroupShared)
{
    params.ThreadCount = 4;
    EXPECT_EQ(settle(2).status, 0);
    EXPECT_EQ(fakeMqi.calls, Calls{"MQCMIT"});
}

TEST_F(EndOfWorkTest, DriverBacksOutWhatAFailedGroupShared)
{
    params.ThreadCount = 4;
    EXPECT_EQ(settle(3).status, 0);
    EXPECT_EQ(fakeMqi.calls, Calls{"MQBACK"});
}

TEST_F(EndOfWorkTest, DriverLearnsOfAFailedCommit)
{
    fakeMqi.answers["MQCMIT"].push_back({MQCC_WARNING, MQRC_BACKED_OUT});
    EXPECT_EQ(settle(0).status, 3);
}

TEST_F(EndOfWorkTest, DriverSettlesNothingOutsideSyncpoint)
{
    params.SyncpointFlag = 0;
    EXPECT_EQ(settle(0).status, 0);
    EXPECT_EQ(fakeMqi.calls, Calls{});
}

TEST_F(EndOfWorkTest, WorkThatTheDriverEndsIsLeftAloneByTheMode)
{
    params.GlobalUowMode = 1;
    EXPECT_EQ(end(0).status, 0);
    EXPECT_EQ(fakeMqi.calls, Calls{});
}

TEST_F(EndOfWorkTest, TransactionOfEachOperationEndsWithoutTheMqi)
{
    params.GlobalUowMode = 2;
    EXPECT_EQ(end(0).status, 0);
    EXPECT_EQ(fakeMqi.calls, Calls{});
}

TEST(TransactionHooksTest, DoNothingAndSucceed)
{
    EXPECT_EQ(TNSBeginTransaction(), 0);
    EXPECT_EQ(TNSEndTransaction(), 0);
    EXPECT_EQ(TNSAbortTransaction(), 0);
    EXPECT_EQ(TNSResumeTransaction(), 0);
    EXPECT_EQ(TNSOpenTFILE(), 0);
}

} // namespace
