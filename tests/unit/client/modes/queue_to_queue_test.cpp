// Queue to queue: what the records hold afterwards, and inputs that no command line makes.
#include "calls_test.h"

#include "receive.h"

#include <climits>
#include <cstring>

namespace {

using Calls = std::vector<std::string>;
using Bodies = std::vector<std::string>;

class QueueToQueueTest : public CallsTest {
protected:
    QueueToQueueTest()
    {
        params.InputHobj = 41;
        params.OutputQName = "OUT";
        put = DEFAULT_RUN_PARAMS;
        put.OutputHobj = 42;
    }
    Written move()
    {
        return written([&] { return Queue2Queue(&params, hconn, &put); });
    }

    RunParams put = {};
};

TEST_F(QueueToQueueTest, WithoutAnOutputQueueNothingIsDone)
{
    params.OutputQName = nullptr;
    const Written written = move();
    EXPECT_EQ(written.status, 1);
    EXPECT_EQ(written.err, "invalid function call Queue2Queue() out_q_name is (null).\n");
    EXPECT_EQ(fakeMqi.calls, Calls{});
}

TEST_F(QueueToQueueTest, EmptyNameIsANamedQueue)
{
    params.OutputQName = "";
    fakeMqi.messages.push_back({.body = "a"});
    EXPECT_EQ(move().status, 0);
    EXPECT_EQ(fakeMqi.calls, (Calls{"MQGET", "MQPUT"}));
}

TEST_F(QueueToQueueTest, NamesOfAReplyDoNotOutliveIt)
{
    params.OutputQName = "*";
    put.OutputHobj = 0;
    FakeMessage request{.body = "a"};
    std::memcpy(request.md.ReplyToQ, "REPLY.Q     ", 12);
    fakeMqi.messages.push_back(request);
    EXPECT_EQ(move().status, 0);
    EXPECT_EQ(put.QName, params.OutputQName);
    EXPECT_EQ(put.OutputHobj, 0);
}

TEST_F(QueueToQueueTest, LengthBeyondTheBufferForwardsTheBuffer)
{
    params.Gmo.Options |= MQGMO_ACCEPT_TRUNCATED_MSG;
    fakeMqi.messages.push_back(
        {.body = "", .codes = {MQCC_WARNING, MQRC_TRUNCATED_MSG_ACCEPTED}, .reportedLength = INT_MAX});
    EXPECT_EQ(move().status, 0);
    EXPECT_EQ(fakeMqi.bodies.at(0).size(), static_cast<std::size_t>(params.MaxMsgSize));
}

TEST_F(QueueToQueueTest, BytesOfAnEarlierMessageAreNotForwarded)
{
    params.MsgCount = 2;
    put.MsgLength = 8;
    fakeMqi.messages.push_back({.body = "secretly"});
    fakeMqi.messages.push_back({.body = "b"});
    move();
    EXPECT_EQ(fakeMqi.bodies, (Bodies{"secretly", std::string("b\0\0\0\0\0\0\0", 8)}));
}

TEST_F(QueueToQueueTest, LockThatCannotBeHadEndsTheLoop)
{
    fakeMqi.messages.push_back({.body = "a"});
    const UnavailableLock lock(params);
    EXPECT_EQ(move().status, 1);
    EXPECT_EQ(fakeMqi.count("MQPUT"), 0);
}

TEST_F(QueueToQueueTest, QueuesThatWereOpenedHereAreClosedAndForgotten)
{
    params.InputHobj = put.OutputHobj = 0;
    fakeMqi.messages.push_back({.body = "a"});
    move();
    EXPECT_EQ(fakeMqi.calls, (Calls{"MQOPEN", "MQOPEN", "MQGET", "MQPUT", "MQCLOSE", "MQCLOSE"}));
    EXPECT_EQ(params.InputHobj, 0);
    EXPECT_EQ(put.OutputHobj, 0);
}

class SendReceiveTest : public QueueToQueueTest {
protected:
    SendReceiveTest()
    {
        request = DEFAULT_RUN_PARAMS;
        request.QName = "REQ";
        request.InputQName = "REP";
        request.MsgText = "ping";
        reply = DEFAULT_RUN_PARAMS;
    }
    Written run()
    {
        return written([&] { return SendReceive(&request, hconn, &reply); });
    }

    RunParams request = {};
    RunParams reply = {};
};

TEST_F(SendReceiveTest, QueuesThatWereOpenedHereAreClosedAndForgotten)
{
    fakeMqi.messages.push_back({.body = "pong"});
    EXPECT_EQ(run().status, 0);
    EXPECT_EQ(fakeMqi.calls, (Calls{"MQOPEN", "MQOPEN", "MQPUT", "MQGET", "MQCLOSE", "MQCLOSE"}));
    EXPECT_EQ(request.OutputHobj, 0);
    EXPECT_EQ(reply.InputHobj, 0);
}

TEST_F(SendReceiveTest, FailedCloseIsALocalFailure)
{
    fakeMqi.messages.push_back({.body = "pong"});
    fakeMqi.answers["MQCLOSE"].push_back({MQCC_FAILED, MQRC_HOBJ_ERROR});
    EXPECT_EQ(run().status, 1);
    EXPECT_EQ(fakeMqi.count("MQCLOSE"), 2);
}

} // namespace
