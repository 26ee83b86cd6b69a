// Asynchronous puts and MQSTAT.
#include "fixture.h"

#include <cstring>
#include <string>
#include <vector>

namespace mqrig::qmgr::testing {
namespace {

constexpr MQLONG outsideAsync = MQPMO_NO_SYNCPOINT | MQPMO_ASYNC_RESPONSE;
constexpr MQLONG insideAsync = MQPMO_SYNCPOINT | MQPMO_ASYNC_RESPONSE;

struct Told {
    Codes codes;
    MQSTS sts = {MQSTS_DEFAULT};

    Codes first() const { return {sts.CompCode, sts.Reason}; }
    std::vector<MQLONG> counts() const { return {sts.PutSuccessCount, sts.PutWarningCount, sts.PutFailureCount}; }
};

Told stat(MQHCONN hconn, MQLONG type = MQSTAT_TYPE_ASYNC_ERROR, MQLONG version = MQSTS_VERSION_2)
{
    Told told;
    told.sts.Version = version;
    MQSTAT(hconn, type, &told.sts, &told.codes.CompCode, &told.codes.Reason);
    return told;
}

using Counts = std::vector<MQLONG>;

class AsyncPut : public OpenQueueTest {};

TEST_F(AsyncPut, MessagesAreThereAndCounted)
{
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(put(hconn, q1, "hello", {MQMD_DEFAULT}, pmoWith(outsideAsync)), ok);
    EXPECT_EQ(depth("Q1"), 3);
    const Told told = stat(hconn);
    EXPECT_EQ(told.codes, ok);
    EXPECT_EQ(told.first(), ok);
    EXPECT_EQ(told.counts(), (Counts{3, 0, 0}));
    EXPECT_EQ(told.sts.ObjectType, MQOT_NONE);
}

TEST_F(AsyncPut, TextsOfTopicsAreEmpty)
{
    char texts[2][8] = {"object", "subs"};
    MQSTS sts = {MQSTS_DEFAULT};
    sts.Version = MQSTS_VERSION_2;
    sts.ObjectString.VSPtr = texts[0];
    sts.ObjectString.VSBufSize = sizeof texts[0];
    sts.SubName.VSPtr = texts[1];
    sts.SubName.VSBufSize = sizeof texts[1];
    sts.ObjectString.VSLength = sts.SubName.VSLength = -1;
    Codes codes;
    MQSTAT(hconn, MQSTAT_TYPE_ASYNC_ERROR, &sts, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, ok);
    EXPECT_EQ(sts.ObjectString.VSLength, 0);
    EXPECT_EQ(sts.SubName.VSLength, 0);
    EXPECT_EQ(std::string(texts[0]), "object");
}

TEST_F(AsyncPut, SynchronousPutsAreNotCounted)
{
    put(hconn, q1, "hello");
    put(hconn, q1, "hello", {MQMD_DEFAULT}, pmoWith(MQPMO_NO_SYNCPOINT | MQPMO_SYNC_RESPONSE));
    EXPECT_EQ(stat(hconn).counts(), (Counts{0, 0, 0}));
}

TEST_F(AsyncPut, FailureIsAnsweredByMqstatOnly)
{
    alterQueue("Q1", {{MQIA_INHIBIT_PUT, MQQA_PUT_INHIBITED}});
    EXPECT_EQ(put(hconn, q1, "hello", {MQMD_DEFAULT}, pmoWith(outsideAsync)), ok);
    const Told told = stat(hconn);
    EXPECT_EQ(told.first(), failed(MQRC_PUT_INHIBITED));
    EXPECT_EQ(told.counts(), (Counts{0, 0, 1}));
    EXPECT_EQ(told.sts.ObjectType, MQOT_Q);
    EXPECT_EQ(text(told.sts.ObjectName), "Q1");
    EXPECT_EQ(text(told.sts.ObjectQMgrName), "");
    EXPECT_EQ(text(told.sts.ResolvedObjectName), "Q1");
    EXPECT_EQ(text(told.sts.ResolvedQMgrName), "QM1");
    EXPECT_EQ(told.sts.OpenOptions, everything);
}

TEST_F(AsyncPut, TheNameIsTheOneThatWasOpened)
{
    defineAlias("A1", "Q1", {{MQIA_INHIBIT_PUT, MQQA_PUT_INHIBITED}});
    put(hconn, open(hconn, "A1", MQOO_OUTPUT), "hello", {MQMD_DEFAULT}, pmoWith(outsideAsync));
    const Told told = stat(hconn);
    EXPECT_EQ(text(told.sts.ObjectName), "A1");
    EXPECT_EQ(text(told.sts.ResolvedObjectName), "Q1");
}

TEST_F(AsyncPut, MqstatForgetsWhatItHasTold)
{
    alterQueue("Q1", {{MQIA_INHIBIT_PUT, MQQA_PUT_INHIBITED}});
    put(hconn, q1, "hello", {MQMD_DEFAULT}, pmoWith(outsideAsync));
    stat(hconn);
    const Told again = stat(hconn);
    EXPECT_EQ(again.first(), ok);
    EXPECT_EQ(again.counts(), (Counts{0, 0, 0}));
    EXPECT_EQ(text(again.sts.ObjectName), "");
}

TEST_F(AsyncPut, FirstFailureStaysAndReplacesAWarning)
{
    alterQueue("Q1", {{MQIA_MAX_Q_DEPTH, 1}});
    MQMD urgent = withPriority(12);
    EXPECT_EQ(put(hconn, q1, "warned", urgent, pmoWith(outsideAsync)), ok);
    EXPECT_EQ(stat(hconn).first(), warned(MQRC_PRIORITY_EXCEEDS_MAXIMUM));

    drain(hconn, q1);
    put(hconn, q1, "warned", urgent, pmoWith(outsideAsync));
    put(hconn, q1, "no room", {MQMD_DEFAULT}, pmoWith(outsideAsync));
    alterQueue("Q1", {{MQIA_INHIBIT_PUT, MQQA_PUT_INHIBITED}});
    put(hconn, q1, "inhibited", {MQMD_DEFAULT}, pmoWith(outsideAsync));
    const Told told = stat(hconn);
    EXPECT_EQ(told.first(), failed(MQRC_Q_FULL));
    EXPECT_EQ(told.counts(), (Counts{0, 1, 2}));
}

TEST_F(AsyncPut, OnlyFewFieldsAreReturned)
{
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = pmoWith(outsideAsync | MQPMO_NEW_CORREL_ID);
    setText(pmo.ResolvedQName, "as it was");
    EXPECT_EQ(putInOut(hconn, q1, "hello", md, pmo), ok);
    EXPECT_EQ(bytes(md.MsgId).substr(0, 4), "AMQ ");
    EXPECT_EQ(bytes(md.CorrelId).substr(0, 4), "AMQ ");
    EXPECT_NE(text(md.PutApplName), "");
    EXPECT_EQ(text(md.PutDate), "");
    EXPECT_EQ(text(md.UserIdentifier), "");
    EXPECT_EQ(md.Priority, MQPRI_PRIORITY_AS_Q_DEF);
    EXPECT_EQ(text(pmo.ResolvedQName), "as it was");
    EXPECT_EQ(bytes(get(hconn, q1).md.MsgId), bytes(md.MsgId));
}

TEST_F(AsyncPut, WhatIsWrongWithTheCallIsAnsweredAtOnce)
{
    EXPECT_EQ(put(hconn, MQHO_NONE, "hello", {MQMD_DEFAULT}, pmoWith(outsideAsync)), failed(MQRC_HOBJ_ERROR));
    EXPECT_EQ(put(hconn, q1, "hello", {MQMD_DEFAULT}, pmoWith(outsideAsync | MQPMO_SYNC_RESPONSE)),
              failed(MQRC_OPTIONS_ERROR));
    EXPECT_EQ(stat(hconn).counts(), (Counts{0, 0, 0}));
}

TEST_F(AsyncPut, TheEndOfTheQueueManagerIsAnsweredAtOnce)
{
    endImmediate();
    EXPECT_EQ(put(hconn, q1, "hello", {MQMD_DEFAULT}, pmoWith(outsideAsync)), failed(MQRC_Q_MGR_STOPPING));
    EXPECT_EQ(put(hconn, q1, "hello", {MQMD_DEFAULT}, pmoWith(outsideAsync)), failed(MQRC_CONNECTION_BROKEN));
}

TEST_F(AsyncPut, PersistentMessageOutsideAUnitOfWorkIsPutSynchronously)
{
    alterQueue("Q1", {{MQIA_INHIBIT_PUT, MQQA_PUT_INHIBITED}});
    EXPECT_EQ(put(hconn, q1, "hello", persistentMd(), pmoWith(outsideAsync)), failed(MQRC_PUT_INHIBITED));
    EXPECT_EQ(stat(hconn).counts(), (Counts{0, 0, 0}));
}

TEST_F(AsyncPut, LostPersistentMessageTakesItsUnitOfWorkWithIt)
{
    EXPECT_EQ(put(hconn, q1, "first", persistentMd(), pmoWith(insideAsync)), ok);
    alterQueue("Q1", {{MQIA_INHIBIT_PUT, MQQA_PUT_INHIBITED}});
    EXPECT_EQ(put(hconn, q1, "second", persistentMd(), pmoWith(insideAsync)), ok);
    EXPECT_EQ(commit(hconn), warned(MQRC_BACKED_OUT));
    EXPECT_EQ(depth("Q1"), 0);
    const Told told = stat(hconn);
    EXPECT_EQ(told.first(), failed(MQRC_PUT_INHIBITED));
    EXPECT_EQ(told.counts(), (Counts{1, 0, 1}));
    EXPECT_EQ(commit(hconn), ok);
}

TEST_F(AsyncPut, BackoutForgetsTheLostMessage)
{
    alterQueue("Q1", {{MQIA_INHIBIT_PUT, MQQA_PUT_INHIBITED}});
    put(hconn, q1, "lost", persistentMd(), pmoWith(insideAsync));
    EXPECT_EQ(backOut(hconn), ok);
    EXPECT_EQ(commit(hconn), ok);
}

TEST_F(AsyncPut, LostNonPersistentMessageLeavesTheUnitOfWork)
{
    put(hconn, q1, "first", persistentMd(), pmoWith(insideAsync));
    alterQueue("Q1", {{MQIA_INHIBIT_PUT, MQQA_PUT_INHIBITED}});
    put(hconn, q1, "second", {MQMD_DEFAULT}, pmoWith(insideAsync));
    EXPECT_EQ(commit(hconn), ok);
    EXPECT_EQ(depth("Q1"), 1);
}

TEST_F(AsyncPut, QueueDefinitionDecidesForMqput)
{
    defineQueue("ASYNC", {{MQIA_DEF_PUT_RESPONSE_TYPE, MQPRT_ASYNC_RESPONSE}, {MQIA_MAX_Q_DEPTH, 1}});
    const MQHOBJ hobj = open(hconn, "ASYNC", MQOO_OUTPUT);
    EXPECT_EQ(put(hconn, hobj, "fits", {MQMD_DEFAULT}, pmoWith(MQPMO_RESPONSE_AS_Q_DEF)), ok);
    EXPECT_EQ(put(hconn, hobj, "full", {MQMD_DEFAULT}, pmoWith(MQPMO_RESPONSE_AS_Q_DEF)), ok);
    EXPECT_EQ(put(hconn, hobj, "full", {MQMD_DEFAULT}, pmoWith(MQPMO_SYNC_RESPONSE)), failed(MQRC_Q_FULL));
    EXPECT_EQ(stat(hconn).counts(), (Counts{1, 0, 1}));
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = pmoWith(MQPMO_NONE);
    EXPECT_EQ(put1(hconn, "ASYNC", "full", md, pmo), failed(MQRC_Q_FULL));
}

TEST_F(AsyncPut, Put1IsAsynchronousWhenAsked)
{
    alterQueue("Q1", {{MQIA_INHIBIT_PUT, MQQA_PUT_INHIBITED}});
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = pmoWith(outsideAsync);
    EXPECT_EQ(put1(hconn, "Q1", "hello", md, pmo), ok);
    EXPECT_EQ(stat(hconn).first(), failed(MQRC_PUT_INHIBITED));
    EXPECT_EQ(put1(hconn, "NO.SUCH", "hello", md, pmo), failed(MQRC_UNKNOWN_OBJECT_NAME));
}

TEST_F(AsyncPut, DistributionListCountsEachDestination)
{
    defineQueue("FULL", {{MQIA_MAX_Q_DEPTH, 0}});
    MQOR records[2] = {{MQOR_DEFAULT}, {MQOR_DEFAULT}};
    setText(records[0].ObjectName, "Q1");
    setText(records[1].ObjectName, "FULL");
    MQOD od = {MQOD_DEFAULT};
    od.Version = MQOD_VERSION_2;
    od.RecsPresent = 2;
    od.ObjectRecPtr = records;
    MQHOBJ list = MQHO_NONE;
    ASSERT_EQ(tryOpen(hconn, od, MQOO_OUTPUT, list), ok);
    MQMD md = {MQMD_DEFAULT};
    md.Persistence = MQPER_NOT_PERSISTENT;
    EXPECT_EQ(put(hconn, list, "hello", md, pmoWith(outsideAsync)), ok);
    const Told told = stat(hconn);
    EXPECT_EQ(told.counts(), (Counts{1, 0, 1}));
    EXPECT_EQ(told.first(), failed(MQRC_Q_FULL));
    EXPECT_EQ(text(told.sts.ObjectName), "FULL");
}

TEST_F(AsyncPut, StatusRefusesWhatIsNone)
{
    Codes codes;
    MQSTS sts = {MQSTS_DEFAULT};
    MQSTAT(hconn, 3, &sts, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, failed(MQRC_STAT_TYPE_ERROR));
    MQSTAT(hconn, MQSTAT_TYPE_ASYNC_ERROR, nullptr, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, failed(MQRC_STS_ERROR));
    EXPECT_EQ(stat(hconn, MQSTAT_TYPE_ASYNC_ERROR, 3).codes, failed(MQRC_STS_ERROR));
    sts.StrucId[0] = 'X';
    MQSTAT(hconn, MQSTAT_TYPE_ASYNC_ERROR, &sts, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, failed(MQRC_STS_ERROR));
    EXPECT_EQ(stat(MQHC_UNUSABLE_HCONN).codes, failed(MQRC_HCONN_ERROR));
}

TEST_F(AsyncPut, ReconnectionIsNothingForAConnectionThatDoesNotReconnect)
{
    EXPECT_EQ(stat(hconn, MQSTAT_TYPE_RECONNECTION).codes, failed(MQRC_ENVIRONMENT_ERROR));
    EXPECT_EQ(stat(hconn, MQSTAT_TYPE_RECONNECTION_ERROR).codes, failed(MQRC_ENVIRONMENT_ERROR));
}

TEST_F(AsyncPut, ReconnectionThatIsNotNeededIsAllRight)
{
    MQCNO cno = {MQCNO_DEFAULT};
    cno.Options = MQCNO_RECONNECT;
    MQHCONN follows = MQHC_UNUSABLE_HCONN;
    ASSERT_EQ(tryConnectX("QM1", cno, follows), ok);
    const Told told = stat(follows, MQSTAT_TYPE_RECONNECTION);
    EXPECT_EQ(told.codes, ok);
    EXPECT_EQ(told.first(), ok);
}

TEST_F(AsyncPut, Version1EndsBeforeTheStrings)
{
    put(hconn, q1, "hello", {MQMD_DEFAULT}, pmoWith(outsideAsync));
    MQSTS sts;
    std::memset(&sts, 0xA5, sizeof sts);
    const MQSTS defaults = {MQSTS_DEFAULT};
    std::memcpy(static_cast<void *>(&sts), &defaults, MQSTS_LENGTH_1);
    Codes codes;
    MQSTAT(hconn, MQSTAT_TYPE_ASYNC_ERROR, &sts, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, ok);
    EXPECT_EQ(sts.PutSuccessCount, 1);
    const auto *bytes = reinterpret_cast<const unsigned char *>(&sts);
    for (std::size_t i = MQSTS_LENGTH_1; i < sizeof sts; ++i)
        ASSERT_EQ(bytes[i], 0xA5) << i;
}

} // namespace
} // namespace mqrig::qmgr::testing
