// MQCB: event handlers and the thread that calls them.
#include "callback_fixture.h"

#include <atomic>
#include <csignal>
#include <future>
#include <thread>

namespace mqrig::qmgr::testing {
namespace {

using namespace std::chrono_literals;
using Reasons = std::vector<MQLONG>;

class EventHandler : public CallbackTest {
public:
    EventHandler() : hconn(connect()) {}
    // Nobody writes into a diary that is gone.
    ~EventHandler() override { disconnect(hconn); }

    Diary diary;
    MQHCONN hconn;
};

TEST_F(EventHandler, IsToldThatTheQueueManagerQuiesces)
{
    EXPECT_EQ(manage(hconn, MQOP_REGISTER, handlerInto(diary)), ok);
    endQuiesce();
    const Told told = diary.entries(1).front();
    EXPECT_EQ(told.hconn, hconn);
    EXPECT_EQ(std::string(told.context.StrucId, 4), "CBC ");
    EXPECT_EQ(told.context.Version, MQCBC_VERSION_2);
    EXPECT_EQ(told.context.CallType, MQCBCT_EVENT_CALL);
    EXPECT_EQ(told.context.Hobj, MQHO_NONE);
    EXPECT_EQ(told.context.CallbackArea, &diary);
    EXPECT_EQ(told.context.ConnectionArea, nullptr);
    EXPECT_EQ(told.context.CompCode, MQCC_FAILED);
    EXPECT_EQ(told.context.Reason, MQRC_Q_MGR_QUIESCING);
    EXPECT_EQ(told.context.State, MQCS_NONE);
    EXPECT_EQ(disconnect(hconn), ok);
    EXPECT_EQ(diary.size(), 1U);
}

TEST_F(EventHandler, IsToldOfAnImmediateEndAsCallsAre)
{
    manage(hconn, MQOP_REGISTER, handlerInto(diary));
    endImmediate();
    EXPECT_EQ(diary.reasons(2), (Reasons{MQRC_Q_MGR_STOPPING, MQRC_CONNECTION_BROKEN}));
    EXPECT_EQ(diary.entries(2).back().context.State, MQCS_STOPPED);
    EXPECT_EQ(commit(hconn), failed(MQRC_Q_MGR_STOPPING));
    EXPECT_EQ(commit(hconn), failed(MQRC_CONNECTION_BROKEN));
}

TEST_F(EventHandler, IsToldWhenItIsRegisteredWhileTheQueueManagerQuiesces)
{
    endQuiesce();
    EXPECT_EQ(manage(hconn, MQOP_REGISTER, handlerInto(diary)), ok);
    EXPECT_EQ(diary.reasons(1), Reasons{MQRC_Q_MGR_QUIESCING});
}

TEST_F(EventHandler, FailIfQuiescingIs2161)
{
    endQuiesce();
    EXPECT_EQ(manage(hconn, MQOP_REGISTER, handlerInto(diary, MQCBDO_FAIL_IF_QUIESCING)), failed(MQRC_Q_MGR_QUIESCING));
    EXPECT_EQ(disconnect(hconn), ok);
    EXPECT_EQ(diary.size(), 0U);
}

TEST_F(EventHandler, RegisterAndDeregisterCallsComeWhereAskedFor)
{
    const MQCBD cbd = handlerInto(diary, MQCBDO_REGISTER_CALL | MQCBDO_DEREGISTER_CALL);
    EXPECT_EQ(manage(hconn, MQOP_REGISTER, cbd), ok);
    // Both have been made when the calls are back.
    EXPECT_EQ(diary.size(), 1U);
    EXPECT_EQ(manage(hconn, MQOP_DEREGISTER, cbd), ok);
    ASSERT_EQ(diary.size(), 2U);
    EXPECT_EQ(diary.entries(2)[0].context.CallType, MQCBCT_REGISTER_CALL);
    EXPECT_EQ(diary.entries(2)[1].context.CallType, MQCBCT_DEREGISTER_CALL);
    EXPECT_EQ(diary.entries(2)[1].context.Reason, MQRC_NONE);
}

TEST_F(EventHandler, DisconnectingMakesTheDeregisterCall)
{
    manage(hconn, MQOP_REGISTER, handlerInto(diary, MQCBDO_DEREGISTER_CALL));
    EXPECT_EQ(disconnect(hconn), ok);
    ASSERT_EQ(diary.size(), 1U);
    EXPECT_EQ(diary.entries(1)[0].context.CallType, MQCBCT_DEREGISTER_CALL);
}

TEST_F(EventHandler, DeregisteredItIsToldNothing)
{
    manage(hconn, MQOP_REGISTER, handlerInto(diary));
    EXPECT_EQ(manage(hconn, MQOP_DEREGISTER, handlerInto(diary)), ok);
    EXPECT_EQ(manage(hconn, MQOP_DEREGISTER, handlerInto(diary)), failed(MQRC_CALLBACK_NOT_REGISTERED));
    endImmediate();
    EXPECT_EQ(disconnect(hconn), failed(MQRC_Q_MGR_STOPPING));
    EXPECT_EQ(diary.size(), 0U);
}

TEST_F(EventHandler, SuspendedItMissesWhatHappens)
{
    manage(hconn, MQOP_REGISTER, handlerInto(diary));
    Diary other;
    MQHCONN witness = connect();
    manage(witness, MQOP_REGISTER, handlerInto(other));
    EXPECT_EQ(manage(hconn, MQOP_SUSPEND, handlerInto(diary)), ok);
    endQuiesce();
    other.entries(1);
    // The connection's thread has looked at the state before it registers another.
    std::this_thread::sleep_for(50ms);
    EXPECT_EQ(manage(hconn, MQOP_RESUME, handlerInto(diary)), ok);
    endImmediate();
    EXPECT_EQ(diary.reasons(2), (Reasons{MQRC_Q_MGR_STOPPING, MQRC_CONNECTION_BROKEN}));
    disconnect(witness);
}

TEST_F(EventHandler, RegisteredSuspendedItWaitsForItsResume)
{
    EXPECT_EQ(manage(hconn, MQOP_REGISTER | MQOP_SUSPEND, handlerInto(diary)), ok);
    EXPECT_EQ(manage(hconn, MQOP_REGISTER | MQOP_RESUME, handlerInto(diary)), ok);
    endQuiesce();
    EXPECT_EQ(diary.reasons(1), Reasons{MQRC_Q_MGR_QUIESCING});
}

TEST_F(EventHandler, AnotherInItsPlaceKeepsTheArea)
{
    Diary second;
    manage(hconn, MQOP_REGISTER, handlerInto(diary));
    EXPECT_EQ(manage(hconn, MQOP_REGISTER, handlerInto(second)), ok);
    endQuiesce();
    EXPECT_EQ(diary.reasons(1), Reasons{MQRC_Q_MGR_QUIESCING});
    EXPECT_EQ(second.size(), 0U);
}

TEST_F(EventHandler, BlocksAllSignals)
{
    std::promise<bool> blocked;
    diary.then = [&](MQHCONN, MQCBC &) {
        sigset_t set;
        pthread_sigmask(SIG_BLOCK, nullptr, &set);
        bool all = true;
        for (const int number : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGALRM, SIGCHLD, SIGUSR1, SIGPIPE, SIGRTMAX})
            all = all && sigismember(&set, number) == 1;
        blocked.set_value(all);
    };
    sigset_t before;
    sigset_t after;
    pthread_sigmask(SIG_BLOCK, nullptr, &before);
    manage(hconn, MQOP_REGISTER, handlerInto(diary, MQCBDO_REGISTER_CALL));
    pthread_sigmask(SIG_BLOCK, nullptr, &after);
    EXPECT_TRUE(blocked.get_future().get());
    EXPECT_EQ(sigismember(&before, SIGTERM), sigismember(&after, SIGTERM));
    disconnect(hconn); // before what the callback uses goes
}

TEST_F(EventHandler, OnlyARegistrationMakesAThread)
{
    std::thread([] {}).join(); // with the first thread a sanitizer makes one of its own
    const std::size_t before = threads();
    MQHCONN other = connectWith(MQCNO_RECONNECT);
    commit(other);
    EXPECT_EQ(threads(), before);
    manage(other, MQOP_REGISTER, handlerInto(diary));
    EXPECT_EQ(threads(), before + 1);
    manage(other, MQOP_REGISTER, handlerInto(diary));
    EXPECT_EQ(threads(), before + 1);
    disconnect(other);
    EXPECT_TRUE(comesTrue([&] { return threads() == before; }));
}

TEST_F(EventHandler, DeregisteringWaitsForTheCallThatRuns)
{
    std::atomic<bool> running{false};
    std::atomic<bool> returned{false};
    diary.then = [&](MQHCONN, MQCBC &) {
        running = true;
        std::this_thread::sleep_for(100ms);
        returned = true;
    };
    manage(hconn, MQOP_REGISTER, handlerInto(diary));
    endQuiesce();
    ASSERT_TRUE(comesTrue([&] { return running.load(); }));
    EXPECT_EQ(manage(hconn, MQOP_DEREGISTER, handlerInto(diary)), ok);
    EXPECT_TRUE(returned);
    disconnect(hconn); // before what the callback uses goes
}

TEST_F(EventHandler, MayUseItsConnection)
{
    const MQHOBJ q1 = open(hconn, "Q1", MQOO_OUTPUT | MQOO_INPUT_SHARED);
    std::promise<Codes> made;
    diary.then = [&](MQHCONN its, MQCBC &) { made.set_value(put(its, q1, "from the handler")); };
    manage(hconn, MQOP_REGISTER, handlerInto(diary));
    endQuiesce();
    EXPECT_EQ(made.get_future().get(), ok);
    EXPECT_EQ(get(hconn, q1).body, "from the handler");
    disconnect(hconn); // before what the callback uses goes
}

TEST_F(EventHandler, MayDeregisterItself)
{
    std::promise<Codes> made;
    diary.then = [&](MQHCONN its, MQCBC &context) {
        if (context.CallType == MQCBCT_EVENT_CALL) made.set_value(manage(its, MQOP_DEREGISTER, handlerInto(diary)));
    };
    manage(hconn, MQOP_REGISTER, handlerInto(diary, MQCBDO_DEREGISTER_CALL));
    endQuiesce();
    EXPECT_EQ(made.get_future().get(), ok);
    EXPECT_EQ(diary.entries(2)[1].context.CallType, MQCBCT_DEREGISTER_CALL);
    EXPECT_EQ(disconnect(hconn), ok);
    EXPECT_EQ(diary.size(), 2U);
}

TEST_F(EventHandler, CannotDisconnectItsConnection)
{
    std::promise<Codes> made;
    diary.then = [&](MQHCONN its, MQCBC &) {
        MQHCONN handle = its;
        made.set_value(disconnect(handle));
    };
    manage(hconn, MQOP_REGISTER, handlerInto(diary, MQCBDO_REGISTER_CALL));
    EXPECT_EQ(made.get_future().get(), failed(MQRC_CALL_IN_PROGRESS));
    EXPECT_EQ(disconnect(hconn), ok);
}

// ---- What is refused ----

TEST_F(EventHandler, UnknownConnectionIs2018)
{
    EXPECT_EQ(manage(MQHC_UNUSABLE_HCONN, MQOP_REGISTER, handlerInto(diary)), failed(MQRC_HCONN_ERROR));
}

TEST_F(EventHandler, ImpossibleOperationsAre2488)
{
    for (const MQLONG operation : {0, MQOP_START, MQOP_REGISTER | MQOP_DEREGISTER, MQOP_SUSPEND | MQOP_RESUME,
                                   MQOP_DEREGISTER | MQOP_SUSPEND, MQOP_REGISTER | 8})
        EXPECT_EQ(manage(hconn, operation, handlerInto(diary)), failed(MQRC_OPERATION_ERROR)) << operation;
}

TEST_F(EventHandler, BadDescriptorIs2444)
{
    MQCBD cbd = handlerInto(diary);
    cbd.StrucId[0] = 'X';
    EXPECT_EQ(manage(hconn, MQOP_REGISTER, cbd), failed(MQRC_CBD_ERROR));
    cbd = handlerInto(diary);
    cbd.Version = 2;
    EXPECT_EQ(manage(hconn, MQOP_REGISTER, cbd), failed(MQRC_CBD_ERROR));
    Codes codes;
    MQCB(hconn, MQOP_REGISTER, nullptr, MQHO_NONE, nullptr, nullptr, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, failed(MQRC_CBD_ERROR));
}

TEST_F(EventHandler, UnknownTypeIs2483)
{
    MQCBD cbd = handlerInto(diary);
    cbd.CallbackType = 3;
    EXPECT_EQ(manage(hconn, MQOP_REGISTER, cbd), failed(MQRC_CALLBACK_TYPE_ERROR));
}

TEST_F(EventHandler, UnknownOptionsAre2484)
{
    EXPECT_EQ(manage(hconn, MQOP_REGISTER, handlerInto(diary, 2)), failed(MQRC_CBD_OPTIONS_ERROR));
}

TEST_F(EventHandler, ImpossibleLengthIs2485)
{
    MQCBD cbd = handlerInto(diary);
    cbd.MaxMsgLength = -2;
    EXPECT_EQ(manage(hconn, MQOP_REGISTER, cbd), failed(MQRC_MAX_MSG_LENGTH_ERROR));
}

TEST_F(EventHandler, NoRoutineOrTwoAre2486)
{
    MQCBD cbd = handlerInto(diary);
    setText(cbd.CallbackName, "module(entry)");
    EXPECT_EQ(manage(hconn, MQOP_REGISTER, cbd), failed(MQRC_CALLBACK_ROUTINE_ERROR));
    cbd.CallbackFunction = nullptr;
    EXPECT_EQ(manage(hconn, MQOP_REGISTER, cbd), failed(MQRC_FUNCTION_NOT_SUPPORTED));
    cbd = handlerInto(diary);
    cbd.CallbackFunction = nullptr;
    EXPECT_EQ(manage(hconn, MQOP_REGISTER, cbd), failed(MQRC_CALLBACK_ROUTINE_ERROR));
}

TEST_F(EventHandler, NothingRegisteredIs2448)
{
    for (const MQLONG operation : {MQOP_DEREGISTER, MQOP_SUSPEND, MQOP_RESUME})
        EXPECT_EQ(manage(hconn, operation, handlerInto(diary)), failed(MQRC_CALLBACK_NOT_REGISTERED));
}

} // namespace
} // namespace mqrig::qmgr::testing
