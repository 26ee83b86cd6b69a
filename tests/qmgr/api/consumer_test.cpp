// MQCTL and message consumers.
#include "consumer_fixture.h"

#include <atomic>
#include <cstring>
#include <future>
#include <thread>

#include "qmgr/core/callbacks.h"
#include "qmgr/core/connections.h"

namespace mqrig::qmgr::testing {
namespace {

using namespace std::chrono_literals;

TEST_F(Consumer, GetsWhatIsThereAndWhatComesWhenItIsStarted)
{
    put(other, otherQ1, "was there");
    EXPECT_EQ(consume(), ok);
    std::this_thread::sleep_for(20ms);
    EXPECT_EQ(diary.size(), 0U);
    int area = 0;
    EXPECT_EQ(control(hconn, MQOP_START, MQCTLO_NONE, &area), ok);
    diary.entries(1);
    put(other, otherQ1, "comes");
    put(other, otherQ1, "");
    EXPECT_EQ(bodies(3), (Bodies{"was there", "comes", ""}));
    const Told told = diary.entries(3)[1];
    EXPECT_EQ(told.hconn, hconn);
    EXPECT_EQ(told.context.CallType, MQCBCT_MSG_REMOVED);
    EXPECT_EQ(told.context.Hobj, q1);
    EXPECT_EQ(told.context.CallbackArea, &diary);
    EXPECT_EQ(told.context.ConnectionArea, &area);
    EXPECT_EQ(told.context.CompCode, MQCC_OK);
    EXPECT_EQ(told.context.Reason, MQRC_NONE);
    EXPECT_EQ(told.context.DataLength, 5);
    EXPECT_GE(told.context.BufferLength, 5);
    EXPECT_EQ(told.md.PutApplType, MQAT_UNIX);
    EXPECT_EQ(control(hconn, MQOP_STOP), ok);
    EXPECT_EQ(depth("Q1"), 0);
}

TEST_F(Consumer, StoppedItGetsNothing)
{
    consume();
    control(hconn, MQOP_START);
    EXPECT_EQ(control(hconn, MQOP_STOP), ok);
    EXPECT_EQ(control(hconn, MQOP_STOP), ok);
    put(other, otherQ1, "x");
    EXPECT_EQ(get(hconn, q1).body, "x");
    EXPECT_EQ(diary.size(), 0U);
}

TEST_F(Consumer, OtherThreadsAreKeptOffTheConnection)
{
    consume();
    control(hconn, MQOP_START);
    EXPECT_EQ(put(hconn, q1, "x"), failed(MQRC_HCONN_ASYNC_ACTIVE));
    EXPECT_EQ(commit(hconn), failed(MQRC_HCONN_ASYNC_ACTIVE));
    EXPECT_EQ(manage(hconn, MQOP_REGISTER, handlerInto(diary)), failed(MQRC_HCONN_ASYNC_ACTIVE));
    EXPECT_EQ(control(hconn, MQOP_START), failed(MQRC_HCONN_ASYNC_ACTIVE));
    EXPECT_EQ(control(hconn, MQOP_STOP), ok);
    EXPECT_EQ(commit(hconn), ok);
}

TEST_F(Consumer, SuspendingReleasesTheConnectionUntilItIsResumed)
{
    consume();
    EXPECT_EQ(control(hconn, MQOP_SUSPEND), failed(MQRC_OPERATION_NOT_ALLOWED));
    EXPECT_EQ(control(hconn, MQOP_RESUME), failed(MQRC_OPERATION_NOT_ALLOWED));
    control(hconn, MQOP_START);
    EXPECT_EQ(control(hconn, MQOP_SUSPEND), ok);
    EXPECT_EQ(control(hconn, MQOP_START), failed(MQRC_OPERATION_NOT_ALLOWED));
    EXPECT_EQ(put(hconn, q1, "x"), ok);
    EXPECT_EQ(diary.size(), 0U);
    EXPECT_EQ(control(hconn, MQOP_RESUME), ok);
    EXPECT_EQ(bodies(1), Bodies{"x"});
}

TEST_F(Consumer, ControlCallsComeWhereAskedFor)
{
    EXPECT_EQ(consume(MQCBDO_REGISTER_CALL | MQCBDO_START_CALL | MQCBDO_STOP_CALL | MQCBDO_DEREGISTER_CALL), ok);
    EXPECT_EQ(diary.size(), 1U);
    control(hconn, MQOP_START);
    EXPECT_EQ(diary.size(), 2U);
    control(hconn, MQOP_STOP);
    EXPECT_EQ(diary.size(), 3U);
    EXPECT_EQ(consumerOperation(hconn, MQOP_DEREGISTER, q1), ok);
    std::vector<MQLONG> types;
    for (const Told &told : diary.entries(4)) {
        types.push_back(told.context.CallType);
        EXPECT_EQ(told.context.Hobj, q1);
    }
    EXPECT_EQ(types,
              (std::vector<MQLONG>{MQCBCT_REGISTER_CALL, MQCBCT_START_CALL, MQCBCT_STOP_CALL, MQCBCT_DEREGISTER_CALL}));
    EXPECT_EQ(consumerOperation(hconn, MQOP_DEREGISTER, q1), failed(MQRC_CALLBACK_NOT_REGISTERED));
}

TEST_F(Consumer, StoppingInTheStartCallIs2528)
{
    diary.then = [](MQHCONN its, MQCBC &context) {
        if (context.CallType == MQCBCT_START_CALL) control(its, MQOP_STOP);
    };
    consume(MQCBDO_START_CALL);
    EXPECT_EQ(control(hconn, MQOP_START), failed(MQRC_CONNECTION_STOPPED));
    EXPECT_EQ(commit(hconn), ok);
}

TEST_F(Consumer, AStartTakesBackTheStopOfTheSameCallback)
{
    std::promise<std::vector<Codes>> answered;
    diary.then = [&](MQHCONN its, MQCBC &) {
        if (diary.size() == 1) answered.set_value({control(its, MQOP_STOP), control(its, MQOP_START)});
    };
    consume();
    control(hconn, MQOP_START);
    put(other, otherQ1, "first");
    EXPECT_EQ(answered.get_future().get(), (std::vector<Codes>{ok, ok}));
    put(other, otherQ1, "second");
    EXPECT_EQ(bodies(2), (Bodies{"first", "second"}));
    EXPECT_EQ(commit(hconn), failed(MQRC_HCONN_ASYNC_ACTIVE));
    disconnect(hconn); // before what the callback uses goes
}

TEST_F(Consumer, AStartInACallbackOfAStoppedConnectionIs2534)
{
    std::promise<Codes> answered;
    diary.then = [&](MQHCONN its, MQCBC &) { answered.set_value(control(its, MQOP_START)); };
    EXPECT_EQ(consume(MQCBDO_REGISTER_CALL), ok);
    EXPECT_EQ(answered.get_future().get(), failed(MQRC_OPERATION_NOT_ALLOWED));
    EXPECT_EQ(commit(hconn), ok) << "nothing has been started";
    disconnect(hconn); // before what the callback uses goes
}

TEST_F(Consumer, ItsCallsJoinTheUnitOfWorkThatItEnds)
{
    const MQHOBJ output = open(hconn, "Q1", MQOO_OUTPUT);
    defineQueue("Q2");
    const MQHOBJ q2 = open(hconn, "Q2", MQOO_OUTPUT);
    std::atomic<int> messages{0};
    std::promise<void> done;
    diary.then = [&](MQHCONN its, MQCBC &context) {
        if (context.CallType != MQCBCT_MSG_REMOVED) return;
        put(its, q2, "forwarded", {MQMD_DEFAULT}, pmoWith(MQPMO_SYNCPOINT));
        if (++messages == 1) {
            EXPECT_EQ(backOut(its), ok); // the message comes again
        } else {
            EXPECT_EQ(commit(its), ok);
            done.set_value();
        }
    };
    EXPECT_EQ(manage(hconn, MQOP_REGISTER, consumerInto(diary), q1, {MQMD_DEFAULT}, gmo(MQGMO_SYNCPOINT)), ok);
    put(hconn, output, "work");
    control(hconn, MQOP_START);
    done.get_future().get();
    control(hconn, MQOP_STOP);
    EXPECT_EQ(bodies(2), (Bodies{"work", "work"}));
    EXPECT_EQ(diary.entries(2)[1].md.BackoutCount, 1);
    EXPECT_EQ(depth("Q1"), 0);
    EXPECT_EQ(depth("Q2"), 1);
    disconnect(hconn); // before what the callback uses goes
}

TEST_F(Consumer, SeveralTakeTurnsOneAtATime)
{
    defineQueue("Q2");
    const MQHOBJ q2 = open(hconn, "Q2", everything);
    std::atomic<int> inside{0};
    std::atomic<int> most{0};
    diary.then = [&](MQHCONN, MQCBC &) {
        most = std::max(most.load(), ++inside);
        std::this_thread::sleep_for(1ms);
        --inside;
    };
    for (int i = 0; i < 10; ++i) {
        put(other, otherQ1, "1");
        put(other, open(other, "Q2", MQOO_OUTPUT), "2");
    }
    consume();
    manage(hconn, MQOP_REGISTER, consumerInto(diary), q2, {MQMD_DEFAULT}, gmo());
    control(hconn, MQOP_START);
    const Bodies found = bodies(20);
    EXPECT_EQ(most, 1);
    for (std::size_t i = 0; i + 1 < found.size(); i += 2)
        EXPECT_NE(found[i], found[i + 1]);
    put(other, open(other, "Q2", MQOO_OUTPUT), "late");
    EXPECT_EQ(bodies(21).back(), "late");
    disconnect(hconn); // before what the callback uses goes
}

TEST_F(Consumer, MayRegisterAnotherAndDeregisterItself)
{
    defineQueue("Q2");
    Diary second;
    std::atomic<MQHOBJ> q2{MQHO_UNUSABLE_HOBJ};
    diary.then = [&](MQHCONN its, MQCBC &context) {
        if (context.CallType != MQCBCT_MSG_REMOVED) return;
        q2 = open(its, "Q2", everything);
        EXPECT_EQ(manage(its, MQOP_REGISTER, consumerInto(second, MQCBDO_START_CALL), q2, {MQMD_DEFAULT}, gmo()), ok);
        EXPECT_EQ(consumerOperation(its, MQOP_DEREGISTER, context.Hobj), ok);
    };
    consume(MQCBDO_STOP_CALL | MQCBDO_DEREGISTER_CALL);
    control(hconn, MQOP_START);
    put(other, otherQ1, "first");
    EXPECT_EQ(second.entries(1)[0].context.CallType, MQCBCT_START_CALL);
    put(other, otherQ1, "stays");
    put(other, open(other, "Q2", MQOO_OUTPUT), "second");
    EXPECT_EQ(second.entries(2)[1].body, "second");
    EXPECT_EQ(diary.entries(3)[1].context.CallType, MQCBCT_STOP_CALL);
    EXPECT_EQ(diary.entries(3)[2].context.CallType, MQCBCT_DEREGISTER_CALL);
    EXPECT_EQ(depth("Q1"), 1);
    disconnect(hconn);
}

TEST_F(Consumer, ClosingItsObjectDeregistersIt)
{
    std::promise<Codes> closed;
    diary.then = [&](MQHCONN its, MQCBC &context) {
        if (context.CallType != MQCBCT_MSG_REMOVED) return;
        MQHOBJ hobj = context.Hobj;
        closed.set_value(close(its, hobj));
    };
    consume(MQCBDO_DEREGISTER_CALL);
    control(hconn, MQOP_START);
    put(other, otherQ1, "x");
    EXPECT_EQ(closed.get_future().get(), ok);
    EXPECT_EQ(diary.entries(2)[1].context.CallType, MQCBCT_DEREGISTER_CALL);
    disconnect(hconn); // before what the callback uses goes
}

TEST_F(Consumer, DisconnectingStopsIt)
{
    consume(MQCBDO_STOP_CALL);
    control(hconn, MQOP_START);
    EXPECT_EQ(disconnect(hconn), ok);
    ASSERT_EQ(diary.size(), 1U);
    EXPECT_EQ(diary.entries(1)[0].context.CallType, MQCBCT_STOP_CALL);
}

TEST_F(Consumer, SuspendedItLeavesItsMessages)
{
    consume();
    EXPECT_EQ(consumerOperation(hconn, MQOP_SUSPEND, q1), ok);
    control(hconn, MQOP_START);
    put(other, otherQ1, "x");
    std::this_thread::sleep_for(30ms);
    EXPECT_EQ(diary.size(), 0U);
    control(hconn, MQOP_STOP);
    EXPECT_EQ(consumerOperation(hconn, MQOP_RESUME, q1), ok);
    control(hconn, MQOP_START);
    EXPECT_EQ(bodies(1), Bodies{"x"});
}

// ---- Messages ----

TEST_F(Consumer, WholeMessagesAreDeliveredHoweverLong)
{
    alterQueue("Q1", {{MQIA_MAX_Q_DEPTH, 10}});
    consume();
    control(hconn, MQOP_START);
    const std::string large(300000, 'x');
    put(other, otherQ1, large);
    put(other, otherQ1, "small");
    EXPECT_TRUE(bodies(2) == (Bodies{large, "small"}));
}

TEST_F(Consumer, LongerThanItsBufferTheMessageStays)
{
    MQCBD cbd = consumerInto(diary);
    cbd.MaxMsgLength = 3;
    diary.then = [&](MQHCONN its, MQCBC &) { control(its, MQOP_STOP); };
    manage(hconn, MQOP_REGISTER, cbd, q1, {MQMD_DEFAULT}, gmo());
    put(other, otherQ1, "12345");
    control(hconn, MQOP_START);
    const Told told = diary.entries(1)[0];
    EXPECT_EQ(told.context.CallType, MQCBCT_MSG_NOT_REMOVED);
    EXPECT_EQ(told.context.CompCode, MQCC_WARNING);
    EXPECT_EQ(told.context.Reason, MQRC_TRUNCATED_MSG_FAILED);
    EXPECT_EQ(told.context.DataLength, 5);
    EXPECT_EQ(told.context.BufferLength, 3);
    EXPECT_EQ(told.body, "123");
    EXPECT_EQ(depth("Q1"), 1);
}

TEST_F(Consumer, TruncatedMessagesAreRemovedWhereAccepted)
{
    MQCBD cbd = consumerInto(diary);
    cbd.MaxMsgLength = 3;
    manage(hconn, MQOP_REGISTER, cbd, q1, {MQMD_DEFAULT}, gmo(MQGMO_ACCEPT_TRUNCATED_MSG));
    put(other, otherQ1, "12345");
    control(hconn, MQOP_START);
    EXPECT_EQ(diary.entries(1)[0].context.Reason, MQRC_TRUNCATED_MSG_ACCEPTED);
    EXPECT_EQ(diary.entries(1)[0].context.CallType, MQCBCT_MSG_REMOVED);
}

TEST_F(Consumer, SeesWhoseMarkRunsOut)
{
    alterQueueManager({{MQIA_MSG_MARK_BROWSE_INTERVAL, 300}});
    const MQHOBJ marking = open(other, "Q1", MQOO_BROWSE | MQOO_CO_OP);
    put(other, otherQ1, "marked");
    EXPECT_EQ(get(other, marking, {MQMD_DEFAULT}, gmo(MQGMO_BROWSE_FIRST | MQGMO_MARK_BROWSE_CO_OP)).body, "marked");
    const MQHOBJ browsing = open(hconn, "Q1", MQOO_BROWSE | MQOO_CO_OP);
    manage(hconn, MQOP_REGISTER, consumerInto(diary), browsing, {MQMD_DEFAULT},
           gmo(MQGMO_BROWSE_FIRST | MQGMO_UNMARKED_BROWSE_MSG | MQGMO_MARK_BROWSE_CO_OP));
    control(hconn, MQOP_START);
    EXPECT_EQ(bodies(1), Bodies{"marked"});
}

TEST_F(Consumer, ControllingWhatAnotherThreadHasDisconnectedIs2018)
{
    consume();
    // As far as an MQCTL has come when another thread disconnects.
    const std::shared_ptr<core::Callbacks> callbacks = core::ConnectionUse(hconn).callbacks();
    EXPECT_EQ(control(hconn, MQOP_START), ok);
    EXPECT_EQ(disconnect(hconn), ok);
    for (const MQLONG operation : {MQOP_START, MQOP_STOP, MQOP_SUSPEND, MQOP_RESUME})
        EXPECT_EQ(callbacks->control(operation, nullptr).Reason, MQRC_HCONN_ERROR);
}

TEST_F(Consumer, TheSelectionHoldsForEachMessage)
{
    MQMD wanted = {MQMD_DEFAULT};
    setBytes(wanted.CorrelId, "WANTED");
    MQGMO selecting = gmo();
    selecting.MatchOptions = MQMO_MATCH_CORREL_ID;
    manage(hconn, MQOP_REGISTER, consumerInto(diary), q1, wanted, selecting);
    put(other, otherQ1, "not this");
    put(other, otherQ1, "this", wanted);
    control(hconn, MQOP_START);
    put(other, otherQ1, "nor this");
    put(other, otherQ1, "and this", wanted);
    EXPECT_EQ(bodies(2), (Bodies{"this", "and this"}));
}

TEST_F(Consumer, QuiescingSuspendsWhoAskedForIt)
{
    manage(hconn, MQOP_REGISTER, consumerInto(diary, MQCBDO_EVENT_CALL), q1, {MQMD_DEFAULT},
           gmo(MQGMO_FAIL_IF_QUIESCING));
    control(hconn, MQOP_START);
    endQuiesce();
    EXPECT_EQ(diary.entries(1)[0].context.Reason, MQRC_Q_MGR_QUIESCING);
    EXPECT_EQ(diary.entries(1)[0].context.State, MQCS_SUSPENDED_USER_ACTION);
    EXPECT_EQ(control(hconn, MQOP_STOP), ok);
    EXPECT_EQ(control(hconn, MQOP_START, MQCTLO_FAIL_IF_QUIESCING), failed(MQRC_Q_MGR_QUIESCING));
}

TEST_F(Consumer, TheEndOfTheQueueManagerStopsIt)
{
    Diary events;
    manage(hconn, MQOP_REGISTER, handlerInto(events));
    consume(MQCBDO_STOP_CALL);
    control(hconn, MQOP_START);
    endImmediate();
    EXPECT_EQ(diary.entries(1)[0].context.CallType, MQCBCT_STOP_CALL);
    EXPECT_EQ(events.reasons(2), (std::vector<MQLONG>{MQRC_Q_MGR_STOPPING, MQRC_CONNECTION_BROKEN}));
    EXPECT_TRUE(comesTrue([&] { return commit(hconn) == failed(MQRC_CONNECTION_BROKEN); }));
    disconnect(hconn);
}

TEST_F(Consumer, GoesOnAfterReconnecting)
{
    MQHCONN follows = connectWith(MQCNO_RECONNECT_Q_MGR);
    const MQHOBJ its = open(follows, "Q1", everything);
    Diary events;
    manage(follows, MQOP_REGISTER, handlerInto(events));
    manage(follows, MQOP_REGISTER, consumerInto(diary), its, {MQMD_DEFAULT}, gmo());
    control(follows, MQOP_START);
    endToReconnect();
    start();
    MQHCONN late = connect();
    put(late, open(late, "Q1", MQOO_OUTPUT), "after the restart");
    EXPECT_EQ(bodies(1), Bodies{"after the restart"});
    EXPECT_TRUE(comesTrue([&] { return events.reasons(2).back() == MQRC_RECONNECTED; }));
    EXPECT_EQ(disconnect(follows), ok);
}

TEST_F(Consumer, ALockOfAKilledConnectionDoesNotHideTheMessage)
{
    put(other, otherQ1, "locked");
    EXPECT_EQ(get(other, otherQ1, MQGMO_SYNCPOINT).body, "locked");
    consume();
    control(hconn, MQOP_START);
    std::this_thread::sleep_for(20ms);
    EXPECT_EQ(diary.size(), 0U);
    EXPECT_EQ(backOut(other), ok);
    EXPECT_EQ(bodies(1), Bodies{"locked"});
}

// ---- MQOP_START_WAIT ----

TEST_F(Consumer, StartWaitReturnsWhenACallbackStops)
{
    diary.then = [](MQHCONN its, MQCBC &) { control(its, MQOP_STOP); };
    consume();
    put(other, otherQ1, "x");
    EXPECT_EQ(control(hconn, MQOP_START_WAIT), ok);
    EXPECT_EQ(diary.size(), 1U);
    EXPECT_EQ(commit(hconn), ok);
}

TEST_F(Consumer, StartWaitWithoutConsumersIs2446)
{
    EXPECT_EQ(control(hconn, MQOP_START_WAIT), failed(MQRC_NO_CALLBACKS_ACTIVE));
    diary.then = [](MQHCONN its, MQCBC &context) { consumerOperation(its, MQOP_SUSPEND, context.Hobj); };
    consume();
    put(other, otherQ1, "x");
    EXPECT_EQ(control(hconn, MQOP_START_WAIT), failed(MQRC_NO_CALLBACKS_ACTIVE));
}

TEST_F(Consumer, StartWaitSuspendedIsTheWarning2521)
{
    diary.then = [](MQHCONN its, MQCBC &) { control(its, MQOP_SUSPEND); };
    consume();
    put(other, otherQ1, "x");
    EXPECT_EQ(control(hconn, MQOP_START_WAIT), warned(MQRC_CONNECTION_SUSPENDED));
}

TEST_F(Consumer, StartWaitInACallbackIs2012)
{
    std::promise<Codes> answered;
    diary.then = [&](MQHCONN its, MQCBC &) { answered.set_value(control(its, MQOP_START_WAIT)); };
    consume();
    put(other, otherQ1, "x");
    control(hconn, MQOP_START);
    EXPECT_EQ(answered.get_future().get(), failed(MQRC_ENVIRONMENT_ERROR));
    disconnect(hconn); // before what the callback uses goes
}

// ---- Several threads ----

TEST_F(Consumer, AStopBeforeTheStartHasBegunEndsItsWaiting)
{
    consume();
    // The library's thread is busy meanwhile.
    std::promise<void> goOn;
    Diary handler;
    handler.then = [&](MQHCONN, MQCBC &) { goOn.get_future().wait(); };
    auto registered = std::async(
        std::launch::async, [&] { return manage(hconn, MQOP_REGISTER, handlerInto(handler, MQCBDO_REGISTER_CALL)); });
    handler.entries(1);
    for (const MQLONG start : {MQOP_START, MQOP_START_WAIT}) {
        auto started = std::async(std::launch::async, [&] { return control(hconn, start); });
        EXPECT_EQ(started.wait_for(50ms), std::future_status::timeout);
        EXPECT_EQ(control(hconn, MQOP_STOP), ok);
        EXPECT_EQ(started.get(), failed(MQRC_CONNECTION_STOPPED));
    }
    goOn.set_value();
    EXPECT_EQ(registered.get(), ok);
    EXPECT_EQ(commit(hconn), ok);
    disconnect(hconn); // before what the callback uses goes
}

TEST_F(Consumer, WhoNeverBlocksMayStillStopAndSuspendIt)
{
    constexpr int messages = 300;
    for (int i = 0; i < messages; ++i)
        put(other, otherQ1, "x");
    MQHCONN its = connectWith(MQCNO_HANDLE_SHARE_NO_BLOCK);
    const MQHOBJ hobj = open(its, "Q1", everything);
    // Both the thread of the library and the callbacks use the connection all the time.
    diary.then = [](MQHCONN called, MQCBC &) { EXPECT_EQ(commit(called), ok); };
    manage(its, MQOP_REGISTER, consumerInto(diary), hobj, {MQMD_DEFAULT}, gmo());
    EXPECT_EQ(control(its, MQOP_START), ok);
    while (diary.size() < messages) {
        std::this_thread::sleep_for(1ms);
        ASSERT_EQ(control(its, MQOP_SUSPEND), ok);
        ASSERT_EQ(control(its, MQOP_RESUME), ok);
        ASSERT_EQ(control(its, MQOP_STOP), ok);
        ASSERT_EQ(control(its, MQOP_START), ok);
    }
    put(other, otherQ1, "last");
    EXPECT_EQ(bodies(messages + 1).back(), "last");
    EXPECT_EQ(disconnect(its), ok);
}

// ---- What is refused ----

TEST_F(Consumer, BadControl)
{
    EXPECT_EQ(control(MQHC_UNUSABLE_HCONN, MQOP_START), failed(MQRC_HCONN_ERROR));
    EXPECT_EQ(control(hconn, 3), failed(MQRC_OPERATION_ERROR));
    EXPECT_EQ(control(hconn, MQOP_START, 2), failed(MQRC_OPTIONS_ERROR));
    MQCTLO ctlo = {MQCTLO_DEFAULT};
    ctlo.Version = 2;
    Codes codes;
    MQCTL(hconn, MQOP_START, &ctlo, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, failed(MQRC_CTLO_ERROR));
    MQCTL(hconn, MQOP_START, nullptr, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, ok);
}

} // namespace
} // namespace mqrig::qmgr::testing
