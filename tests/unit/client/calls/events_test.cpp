// The callback of -cf: its registration, and the lines of the event handler.
#include "calls_test.h"

#include "common.h"
#include "mqicalls.h"

namespace {

class EventsTest : public CallsTest {
protected:
    Written event(MQLONG reason, MQLONG delay = 0)
    {
        return written_by([&, reason, delay] {
            MQCBC context = {};
            context.CallbackArea = &params;
            context.Reason = reason;
            context.ReconnectDelay = delay;
            EventHandler(hconn, nullptr, nullptr, nullptr, &context);
        });
    }
};

TEST_F(EventsTest, RegistrationHandsOverOperationAndRecord)
{
    params.CbOperation = MQOP_REGISTER;
    params.Cbd.CallbackFunction = reinterpret_cast<MQPTR>(&EventHandler);
    const Written written = this->written([&] { return MQSeriesCB(hconn, &params); });
    EXPECT_EQ(written.status, 0);
    EXPECT_EQ(fakeMqi.cbOperation, MQOP_REGISTER);
    EXPECT_EQ(fakeMqi.cbd.CallbackArea, &params);
    EXPECT_EQ(fakeMqi.cbd.CallbackFunction, reinterpret_cast<MQPTR>(&EventHandler));
    EXPECT_EQ(fakeMqi.hobj, MQHO_NONE);
}

TEST_F(EventsTest, RegistrationIsTraced)
{
    params.ApiTrace = 1;
    EXPECT_EQ(written([&] { return MQSeriesCB(hconn, &params); }).out,
              "[now] MQCB start hcon:7\n[now] MQCB stop hcon:7 CompCd=00 ReasonCd=00\n");
}

TEST_F(EventsTest, FailedRegistrationIsReportedAndAnswers3)
{
    fakeMqi.answers["MQCB"].push_back({MQCC_FAILED, MQRC_CALLBACK_TYPE_ERROR});
    const Written written = this->written([&] { return MQSeriesCB(hconn, &params); });
    EXPECT_EQ(written.status, 3);
    EXPECT_EQ(written.err, "MQCB faild : CompCd=02 ReasonCd=2483\n");
}

TEST_F(EventsTest, TableHoldsTheEventHandlerOnly)
{
    const NamedFunction *found = findByName(CALLBACK_FUNCTION_TBL, "EventHandler");
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->function, &EventHandler);
    EXPECT_EQ(found[1].name, nullptr);
    EXPECT_EQ(findByName(CALLBACK_FUNCTION_TBL, "eventhandler"), nullptr);
}

TEST_F(EventsTest, BrokenConnection)
{
    EXPECT_EQ(event(MQRC_CONNECTION_BROKEN).out, "[now] EVENT : Connection Broken\n");
}

TEST_F(EventsTest, ReconnectingShowsTheDelayInMilliseconds)
{
    EXPECT_EQ(event(MQRC_RECONNECTING, 1000).out, "[now] EVENT : Reconnecting (Delay: 1000ms)\n");
}

TEST_F(EventsTest, Reconnected)
{
    EXPECT_EQ(event(MQRC_RECONNECTED).out, "[now] EVENT : Reconnected\n");
}

TEST_F(EventsTest, FailedReconnection)
{
    EXPECT_EQ(event(MQRC_RECONNECT_FAILED).out, "[now] EVENT : Reconnection failed\n");
}

TEST_F(EventsTest, AnyOtherReasonIsShownAsNumber)
{
    EXPECT_EQ(event(MQRC_Q_MGR_QUIESCING).out, "[now] EVENT : Reason(2161)\n");
}

TEST_F(EventsTest, LineIsHandedOnAtOnce)
{
    const OutputFile output;
    MQCBC context = {};
    context.CallbackArea = &params;
    context.Reason = MQRC_RECONNECTED;
    EventHandler(hconn, nullptr, nullptr, nullptr, &context);
    EXPECT_EQ(output.handed_on(), "[now] EVENT : Reconnected\n");
}

TEST_F(EventsTest, HandlerThatCannotHaveTheLockWritesNothingToStandardOutput)
{
    const UnavailableLock lock(params);
    EXPECT_EQ(event(MQRC_RECONNECTED).out, "");
}

} // namespace
