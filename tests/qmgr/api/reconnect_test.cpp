// Connections that follow their queue manager through `rigqm end -r` and `rigqm start`.
#include "callback_fixture.h"

#include <array>
#include <atomic>
#include <cstring>
#include <future>
#include <map>
#include <set>
#include <thread>

#include "qmgr/core/callbacks.h"
#include "qmgr/core/connections.h"
#include "qmgr/store/queue_managers.h"

namespace mqrig::qmgr::testing {
namespace {

using namespace std::chrono_literals;
using Reasons = std::vector<MQLONG>;

class Reconnect : public CallbackTest {
public:
    static constexpr MQLONG everything = MQOO_INPUT_SHARED | MQOO_OUTPUT | MQOO_BROWSE | MQOO_INQUIRE;

    Reconnect() : hconn(connectWith(MQCNO_RECONNECT_Q_MGR)), q1(open(hconn, "Q1", everything)) {}
    // Nobody writes into a diary that is gone.
    ~Reconnect() override { disconnect(hconn); }

    static MQGMO waiting(MQLONG options = MQGMO_NO_SYNCPOINT)
    {
        MQGMO gmo = gmoWith(MQGMO_WAIT | options, MQGMO_VERSION_2);
        gmo.WaitInterval = MQWI_UNLIMITED;
        gmo.MatchOptions = MQMO_NONE;
        return gmo;
    }

    // A get that waits in a thread of its own.
    std::future<Got> getter(MQGMO gmo = waiting())
    {
        auto started = std::async(std::launch::async, [this, gmo] { return get(hconn, q1, version2Md(), gmo); });
        std::this_thread::sleep_for(50ms);
        return started;
    }

    Diary diary;
    MQHCONN hconn;
    MQHOBJ q1;
};

TEST_F(Reconnect, TheNextCallFindsTheQueueManagerAgain)
{
    put(hconn, q1, "kept", persistentMd());
    endToReconnect();
    start();
    EXPECT_EQ(get(hconn, q1).body, "kept");
    EXPECT_EQ(disconnect(hconn), ok);
}

TEST_F(Reconnect, CallsWaitUntilItIsBack)
{
    endToReconnect();
    auto call = std::async(std::launch::async, [this] { return put(hconn, q1, "late"); });
    EXPECT_EQ(call.wait_for(100ms), std::future_status::timeout);
    start();
    EXPECT_EQ(call.get(), ok);
    EXPECT_EQ(get(hconn, q1).body, "late");
}

TEST_F(Reconnect, AWaitingGetGoesOn)
{
    auto got = getter();
    endToReconnect();
    start();
    MQHCONN other = connect();
    put(other, open(other, "Q1", MQOO_OUTPUT), "after the restart");
    EXPECT_EQ(got.get().body, "after the restart");
}

TEST_F(Reconnect, ADisconnectThatWasRefusedChangesNothing)
{
    MQHCONN impatient = connectWith(MQCNO_RECONNECT_Q_MGR | MQCNO_HANDLE_SHARE_NO_BLOCK);
    const MQHOBJ its = open(impatient, "Q1", everything);
    auto got = std::async(std::launch::async, [&] { return get(impatient, its, version2Md(), waiting()); });
    MQHCONN same = impatient;
    EXPECT_TRUE(comesTrue([&] { return commit(impatient) == failed(MQRC_CALL_IN_PROGRESS); }));
    EXPECT_EQ(disconnect(same), failed(MQRC_CALL_IN_PROGRESS));
    endToReconnect();
    std::this_thread::sleep_for(50ms);
    start();
    MQHCONN other = connect();
    put(other, open(other, "Q1", MQOO_OUTPUT), "there");
    EXPECT_EQ(got.get().body, "there");
    EXPECT_EQ(disconnect(impatient), ok);
}

TEST_F(Reconnect, WhoNeverBlocksWaitsForTheLibrarysOwnThread)
{
    MQHCONN impatient = connectWith(MQCNO_RECONNECT_Q_MGR | MQCNO_HANDLE_SHARE_NO_BLOCK);
    const MQHOBJ its = open(impatient, "Q1", everything);
    manage(impatient, MQOP_REGISTER, handlerInto(diary));
    endToReconnect();
    diary.entries(1);
    auto call = std::async(std::launch::async, [&] { return put(impatient, its, "late"); });
    EXPECT_EQ(call.wait_for(100ms), std::future_status::timeout);
    start();
    EXPECT_EQ(call.get(), ok);
    EXPECT_EQ(disconnect(impatient), ok);
}

TEST_F(Reconnect, WhoNeverBlocksMayDisconnectFromTheLibrarysOwnThread)
{
    MQHCONN impatient = connectWith(MQCNO_RECONNECT_Q_MGR | MQCNO_HANDLE_SHARE_NO_BLOCK);
    manage(impatient, MQOP_REGISTER, handlerInto(diary));
    endToReconnect();
    diary.entries(1);
    EXPECT_EQ(disconnect(impatient), failed(MQRC_CONNECTION_BROKEN));
}

TEST_F(Reconnect, AFirstCallThatUsesTheConnectionDoesNotHoldItUp)
{
    diary.then = [](MQHCONN its, MQCBC &context) {
        if (context.CallType == MQCBCT_REGISTER_CALL) commit(its);
    };
    {
        // As a call that finds the queue manager ended before the handler has had its first call.
        core::ConnectionUse use(hconn);
        const std::shared_ptr<core::Callbacks> &callbacks = use.callbacks();
        const core::Callback handler{&Diary::callback, &diary, MQCBDO_REGISTER_CALL, false};
        ASSERT_FALSE(callbacks->registerHandler(handler).failed());
        EXPECT_EQ(callbacks->tellReconnecting(7), 7);
    }
    EXPECT_EQ(diary.entries(2).size(), 2U);
}

TEST_F(Reconnect, TheHandlerIsToldAndKeepsItsRegistration)
{
    manage(hconn, MQOP_REGISTER, handlerInto(diary));
    auto got = getter();
    for (int times = 1; times <= 2; ++times) {
        const std::size_t before = diary.size();
        endToReconnect();
        diary.entries(before + 1);
        start();
        ASSERT_TRUE(comesTrue([&] { return diary.reasons(1).back() == MQRC_RECONNECTED; }));
        const std::vector<Told> told = diary.entries(1);
        EXPECT_EQ(told[before].context.Reason, MQRC_RECONNECTING);
        EXPECT_EQ(told[before].context.CompCode, MQCC_WARNING);
        EXPECT_EQ(told[before].context.ReconnectDelay, 20);
        EXPECT_EQ(told[before].context.State, MQCS_NONE);
        EXPECT_EQ(told.back().context.CompCode, MQCC_OK);
    }
    MQHCONN other = connect();
    put(other, open(other, "Q1", MQOO_OUTPUT), "there");
    EXPECT_EQ(got.get().body, "there");
}

TEST_F(Reconnect, TheFirstDelayIsOneSecond)
{
    reconnectAsLongAsMq();
    manage(hconn, MQOP_REGISTER, handlerInto(diary));
    // The handler wants it sooner, so that nobody has to wait for it.
    diary.then = [](MQHCONN, MQCBC &context) { context.ReconnectDelay = MQRD_NO_DELAY; };
    endToReconnect();
    EXPECT_EQ(diary.entries(1).front().context.ReconnectDelay, 1000);
    EXPECT_EQ(diary.entries(2)[1].context.ReconnectDelay, 2000);
    start();
    EXPECT_TRUE(comesTrue([&] { return diary.reasons(1).back() == MQRC_RECONNECTED; }));
}

TEST_F(Reconnect, AConnectionWithoutCallsReconnectsByItsThread)
{
    manage(hconn, MQOP_REGISTER, handlerInto(diary));
    endToReconnect();
    start();
    EXPECT_TRUE(comesTrue([&] { return !diary.reasons(1).empty() && diary.reasons(1).back() == MQRC_RECONNECTED; }));
    EXPECT_EQ(put(hconn, q1, "x"), ok);
}

TEST_F(Reconnect, TheHandlerMayStopIt)
{
    diary.then = [](MQHCONN, MQCBC &context) { context.ReconnectDelay = MQRD_NO_RECONNECT; };
    manage(hconn, MQOP_REGISTER, handlerInto(diary));
    auto got = getter();
    endToReconnect();
    EXPECT_EQ(got.get().codes, failed(MQRC_RECONNECT_FAILED));
    EXPECT_EQ(diary.reasons(2), (Reasons{MQRC_RECONNECTING, MQRC_RECONNECT_FAILED}));
    EXPECT_EQ(diary.entries(2)[1].context.State, MQCS_STOPPED);
    EXPECT_EQ(commit(hconn), failed(MQRC_CONNECTION_BROKEN));
    EXPECT_EQ(disconnect(hconn), failed(MQRC_CONNECTION_BROKEN));
}

TEST_F(Reconnect, ItIsGivenUpInTheEnd)
{
    reconnectEvery(10ms, 60ms);
    manage(hconn, MQOP_REGISTER, handlerInto(diary));
    endToReconnect();
    ASSERT_TRUE(
        comesTrue([&] { return !diary.reasons(1).empty() && diary.reasons(1).back() == MQRC_RECONNECT_FAILED; }));
    EXPECT_EQ(commit(hconn), failed(MQRC_RECONNECT_TIMED_OUT));
    EXPECT_EQ(commit(hconn), failed(MQRC_CONNECTION_BROKEN));
    start();
    EXPECT_EQ(commit(hconn), failed(MQRC_CONNECTION_BROKEN));
}

TEST_F(Reconnect, WithoutAHandlerItIsGivenUpToo)
{
    reconnectEvery(10ms, 60ms);
    endToReconnect();
    EXPECT_EQ(put(hconn, q1, "x"), failed(MQRC_RECONNECT_TIMED_OUT));
    EXPECT_EQ(put(hconn, q1, "x"), failed(MQRC_CONNECTION_BROKEN));
}

TEST_F(Reconnect, DisconnectingEndsIt)
{
    manage(hconn, MQOP_REGISTER, handlerInto(diary));
    endToReconnect();
    diary.entries(1);
    EXPECT_EQ(disconnect(hconn), failed(MQRC_CONNECTION_BROKEN));
}

TEST_F(Reconnect, CallsOfTheHandlerMeanwhileAre2219)
{
    std::promise<Codes> made;
    std::atomic<bool> first{true};
    diary.then = [&](MQHCONN its, MQCBC &) {
        if (first.exchange(false)) made.set_value(put(its, q1, "x"));
    };
    manage(hconn, MQOP_REGISTER, handlerInto(diary));
    auto got = getter();
    endToReconnect();
    EXPECT_EQ(made.get_future().get(), failed(MQRC_CALL_IN_PROGRESS));
    start();
    MQHCONN other = connect();
    put(other, open(other, "Q1", MQOO_OUTPUT), "there");
    EXPECT_EQ(got.get().body, "there");
    disconnect(hconn); // before what the callback uses goes
}

TEST_F(Reconnect, TheHandlerMayUseTheConnectionAgainWhenItIsToldSo)
{
    std::promise<Codes> made;
    diary.then = [&](MQHCONN its, MQCBC &context) {
        if (context.Reason == MQRC_RECONNECTED) made.set_value(commit(its));
    };
    manage(hconn, MQOP_REGISTER, handlerInto(diary));
    endToReconnect();
    auto call = std::async(std::launch::async, [this] { return put(hconn, q1, "x"); });
    start();
    EXPECT_EQ(made.get_future().get(), ok);
    EXPECT_EQ(call.get(), ok);
    disconnect(hconn); // before what the callback uses goes
}

TEST_F(Reconnect, TheHandlerMayCallBeforeTheWaitingCallHasTheConnectionBack)
{
    std::promise<Codes> made;
    diary.then = [&](MQHCONN its, MQCBC &context) {
        if (context.Reason == MQRC_RECONNECTED) made.set_value(commit(its));
    };
    manage(hconn, MQOP_REGISTER, handlerInto(diary));
    auto got = getter();
    endToReconnect();
    start();
    MQHCONN other = connect();
    put(other, open(other, "Q1", MQOO_OUTPUT), "there");
    EXPECT_EQ(got.get().body, "there");
    EXPECT_EQ(made.get_future().get(), ok);
    disconnect(hconn); // before what the callback uses goes
}

TEST_F(Reconnect, ACallThatReconnectsDoesNotWaitForACallbackThatRuns)
{
    std::promise<void> goOn;
    diary.then = [&](MQHCONN, MQCBC &context) {
        if (context.CallType == MQCBCT_REGISTER_CALL) goOn.get_future().wait();
    };
    auto registered = std::async(
        std::launch::async, [&] { return manage(hconn, MQOP_REGISTER, handlerInto(diary, MQCBDO_REGISTER_CALL)); });
    diary.entries(1);
    endToReconnect();
    start();
    EXPECT_EQ(put(hconn, q1, "x"), ok);
    EXPECT_EQ(diary.size(), 1U);
    goOn.set_value();
    EXPECT_EQ(registered.get(), ok);
    // The handler is told in the end, and in order.
    EXPECT_EQ(diary.reasons(3), (Reasons{MQRC_NONE, MQRC_RECONNECTING, MQRC_RECONNECTED}));
    EXPECT_EQ(get(hconn, q1).body, "x");
    disconnect(hconn); // before what the callback uses goes
}

TEST_F(Reconnect, OthersAreEndedAtOnce)
{
    MQHCONN other = connect();
    MQHCONN disabled = connectWith(MQCNO_RECONNECT_DISABLED);
    endToReconnect();
    start();
    for (MQHCONN plain : {other, disabled}) {
        EXPECT_EQ(commit(plain), failed(MQRC_Q_MGR_STOPPING));
        EXPECT_EQ(commit(plain), failed(MQRC_CONNECTION_BROKEN));
    }
}

TEST_F(Reconnect, AnImmediateEndIsNotFollowed)
{
    manage(hconn, MQOP_REGISTER, handlerInto(diary));
    restart();
    EXPECT_EQ(diary.reasons(2), (Reasons{MQRC_Q_MGR_STOPPING, MQRC_CONNECTION_BROKEN}));
    EXPECT_EQ(commit(hconn), failed(MQRC_Q_MGR_STOPPING));
    EXPECT_EQ(commit(hconn), failed(MQRC_CONNECTION_BROKEN));
}

// ---- What is restored, and what is not ----

TEST_F(Reconnect, AnOpenUnitOfWorkIsLost)
{
    put(hconn, q1, "was there", persistentMd());
    EXPECT_EQ(get(hconn, q1, MQGMO_SYNCPOINT).body, "was there");
    EXPECT_EQ(put(hconn, q1, "never committed", persistentMd(), pmoWith(MQPMO_SYNCPOINT)), ok);
    endToReconnect();
    start();
    EXPECT_EQ(put(hconn, q1, "x", {MQMD_DEFAULT}, pmoWith(MQPMO_SYNCPOINT)), failed(MQRC_BACKED_OUT));
    EXPECT_EQ(get(hconn, q1, MQGMO_SYNCPOINT).codes, failed(MQRC_BACKED_OUT));
    EXPECT_EQ(put(hconn, q1, "outside"), ok);
    EXPECT_EQ(commit(hconn), warned(MQRC_BACKED_OUT));
    EXPECT_EQ(commit(hconn), ok);
    EXPECT_EQ(drain(hconn, q1), (std::vector<std::string>{"was there", "outside"}));
}

TEST_F(Reconnect, AnAsynchronousPutOfALostUnitOfWorkIsRefusedByTheCallItself)
{
    const MQPMO pmo = pmoWith(MQPMO_SYNCPOINT | MQPMO_ASYNC_RESPONSE);
    EXPECT_EQ(put(hconn, q1, "lost", persistentMd(), pmo), ok);
    MQSTS sts = {MQSTS_DEFAULT};
    Codes codes;
    MQSTAT(hconn, MQSTAT_TYPE_ASYNC_ERROR, &sts, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(sts.PutSuccessCount, 1);
    endToReconnect();
    start();
    EXPECT_EQ(put(hconn, q1, "x", persistentMd(), pmo), failed(MQRC_BACKED_OUT));
    EXPECT_EQ(put(hconn, q1, "x", {MQMD_DEFAULT}, pmo), failed(MQRC_BACKED_OUT));
    MQSTAT(hconn, MQSTAT_TYPE_ASYNC_ERROR, &sts, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, ok);
    EXPECT_EQ((Codes{sts.CompCode, sts.Reason}), ok);
    EXPECT_EQ(sts.PutSuccessCount + sts.PutWarningCount + sts.PutFailureCount, 0);
    EXPECT_EQ(commit(hconn), warned(MQRC_BACKED_OUT));
    EXPECT_EQ(put(hconn, q1, "there", persistentMd(), pmo), ok);
    EXPECT_EQ(commit(hconn), ok);
    EXPECT_EQ(drain(hconn, q1), std::vector<std::string>{"there"});
}

TEST_F(Reconnect, ABackoutEndsALostUnitOfWork)
{
    put(hconn, q1, "x", {MQMD_DEFAULT}, pmoWith(MQPMO_SYNCPOINT));
    endToReconnect();
    start();
    EXPECT_EQ(backOut(hconn), ok);
    EXPECT_EQ(put(hconn, q1, "y", {MQMD_DEFAULT}, pmoWith(MQPMO_SYNCPOINT)), ok);
    EXPECT_EQ(commit(hconn), ok);
    EXPECT_EQ(drain(hconn, q1), std::vector<std::string>{"y"});
}

TEST_F(Reconnect, AWaitingGetOfALostUnitOfWorkIs2003)
{
    put(hconn, q1, "elsewhere", withPriority(0), pmoWith(MQPMO_SYNCPOINT));
    auto got = getter(waiting(MQGMO_SYNCPOINT));
    endToReconnect();
    start();
    EXPECT_EQ(got.get().codes, failed(MQRC_BACKED_OUT));
    EXPECT_EQ(commit(hconn), warned(MQRC_BACKED_OUT));
}

TEST_F(Reconnect, HandlesKeepTheirNumbersAndOptions)
{
    const MQHOBJ output = open(hconn, "Q1", MQOO_OUTPUT);
    const MQHOBJ manager = [&] {
        MQOD od = {MQOD_DEFAULT};
        od.ObjectType = MQOT_Q_MGR;
        MQHOBJ hobj = MQHO_UNUSABLE_HOBJ;
        EXPECT_EQ(tryOpen(hconn, od, MQOO_INQUIRE, hobj), ok);
        return hobj;
    }();
    endToReconnect();
    start();
    EXPECT_EQ(put(hconn, output, "x"), ok);
    EXPECT_EQ(get(hconn, output).codes, failed(MQRC_NOT_OPEN_FOR_INPUT));
    MQLONG selector = MQIA_MAX_PRIORITY;
    MQLONG value = -1;
    Codes codes;
    MQINQ(hconn, manager, 1, &selector, 1, &value, 0, nullptr, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, ok);
    EXPECT_EQ(value, 9);
    MQHOBJ closing = output;
    EXPECT_EQ(close(hconn, closing), ok);
}

TEST_F(Reconnect, ADistributionListIsOpenedAgain)
{
    defineQueue("Q2");
    std::array<MQOR, 3> records{};
    std::memcpy(records[0].ObjectName, "Q1", 2);
    std::memcpy(records[1].ObjectName, "NOSUCH", 6);
    std::memcpy(records[2].ObjectName, "Q2", 2);
    MQOD od = {MQOD_DEFAULT};
    od.Version = MQOD_VERSION_2;
    od.RecsPresent = static_cast<MQLONG>(records.size());
    od.ObjectRecPtr = records.data();
    MQHOBJ list = MQHO_NONE;
    ASSERT_EQ(tryOpen(hconn, od, MQOO_OUTPUT, list), warned(MQRC_MULTIPLE_REASONS));
    endToReconnect();
    start();
    MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT);
    pmo.Version = MQPMO_VERSION_2;
    pmo.RecsPresent = od.RecsPresent;
    EXPECT_EQ(put(hconn, list, "to both", MQMD{MQMD_DEFAULT}, pmo), warned(MQRC_MULTIPLE_REASONS));
    EXPECT_EQ(get(hconn, q1).body, "to both");
    EXPECT_EQ(depth("Q2"), 1);
}

TEST_F(Reconnect, ADistributionListOfADeletedQueueIs2548)
{
    defineQueue("Q2");
    std::array<MQOR, 2> records{};
    std::memcpy(records[0].ObjectName, "Q1", 2);
    std::memcpy(records[1].ObjectName, "Q2", 2);
    MQOD od = {MQOD_DEFAULT};
    od.Version = MQOD_VERSION_2;
    od.RecsPresent = static_cast<MQLONG>(records.size());
    od.ObjectRecPtr = records.data();
    MQHOBJ list = MQHO_NONE;
    ASSERT_EQ(tryOpen(hconn, od, MQOO_OUTPUT, list), ok);
    deleteQueue("Q2");
    endToReconnect();
    start();
    EXPECT_EQ(put(hconn, q1, "x"), failed(MQRC_RECONNECT_FAILED));
}

TEST_F(Reconnect, ATemporaryDynamicQueueIsMadeAgain)
{
    define(objects::ObjectKind::ModelQueue, "MODEL", {}, {{MQIA_MAX_Q_DEPTH, 2}});
    MQOD od = {MQOD_DEFAULT};
    setText(od.ObjectName, "MODEL");
    setText(od.DynamicQName, "REPLY.*");
    MQHOBJ reply = MQHO_UNUSABLE_HOBJ;
    ASSERT_EQ(tryOpen(hconn, od, MQOO_INPUT_EXCLUSIVE | MQOO_OUTPUT, reply), ok);
    const std::string name = text(od.ObjectName);
    EXPECT_EQ(put(hconn, reply, "gone with it"), ok);
    endToReconnect();
    start();
    EXPECT_EQ(get(hconn, reply).codes, failed(MQRC_NO_MSG_AVAILABLE));
    const MQHCONN other = connect();
    EXPECT_EQ(openCodes(other, name, MQOO_INPUT_SHARED), failed(MQRC_OBJECT_IN_USE));
    const MQHOBJ answers = open(other, name, MQOO_OUTPUT);
    EXPECT_EQ(put(other, answers, "1"), ok);
    EXPECT_EQ(put(other, answers, "2"), ok);
    EXPECT_EQ(put(other, answers, "3"), failed(MQRC_Q_FULL));
    EXPECT_EQ(get(hconn, reply).body, "1");
    EXPECT_EQ(close(hconn, reply), ok);
    EXPECT_EQ(openCodes(other, name, MQOO_OUTPUT), failed(MQRC_UNKNOWN_OBJECT_NAME));
}

TEST_F(Reconnect, APermanentDynamicQueueIsOpenedAgain)
{
    define(objects::ObjectKind::ModelQueue, "MODEL", {}, {{MQIA_DEFINITION_TYPE, MQQDT_PERMANENT_DYNAMIC}});
    MQOD od = {MQOD_DEFAULT};
    setText(od.ObjectName, "MODEL");
    setText(od.DynamicQName, "MINE");
    MQHOBJ mine = MQHO_UNUSABLE_HOBJ;
    ASSERT_EQ(tryOpen(hconn, od, MQOO_INPUT_SHARED | MQOO_OUTPUT, mine), ok);
    EXPECT_EQ(put(hconn, mine, "kept", persistentMd()), ok);
    endToReconnect();
    start();
    EXPECT_EQ(get(hconn, mine).body, "kept");
    Codes codes;
    MQCLOSE(hconn, &mine, MQCO_DELETE, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, ok);
    EXPECT_EQ(openCodes(connect(), "MINE", MQOO_OUTPUT), failed(MQRC_UNKNOWN_OBJECT_NAME));
}

TEST_F(Reconnect, ATemporaryDynamicQueueWithoutItsModelIs2548)
{
    define(objects::ObjectKind::ModelQueue, "MODEL", {}, {});
    MQOD od = {MQOD_DEFAULT};
    setText(od.ObjectName, "MODEL");
    setText(od.DynamicQName, "MINE");
    MQHOBJ mine = MQHO_UNUSABLE_HOBJ;
    ASSERT_EQ(tryOpen(hconn, od, MQOO_INPUT_SHARED, mine), ok);
    deleteQueue("MODEL");
    endToReconnect();
    start();
    EXPECT_EQ(put(hconn, q1, "x"), failed(MQRC_RECONNECT_FAILED));
    EXPECT_EQ(openCodes(connect(), "MINE", MQOO_OUTPUT), failed(MQRC_UNKNOWN_OBJECT_NAME));
}

TEST_F(Reconnect, ExclusiveUseIsTakenAgain)
{
    defineQueue("Q2");
    open(hconn, "Q2", MQOO_INPUT_EXCLUSIVE);
    endToReconnect();
    start();
    EXPECT_EQ(commit(hconn), ok);
    const MQHCONN other = connect();
    EXPECT_EQ(openCodes(other, "Q2", MQOO_INPUT_SHARED), failed(MQRC_OBJECT_IN_USE));
}

TEST_F(Reconnect, AHandleThatCannotBeOpenedAgainIs2548)
{
    defineQueue("Q2");
    open(hconn, "Q2", MQOO_OUTPUT);
    manage(hconn, MQOP_REGISTER, handlerInto(diary));
    reconnectEvery(200ms);
    endToReconnect();
    start();
    deleteQueue("Q2");
    EXPECT_EQ(put(hconn, q1, "x"), failed(MQRC_RECONNECT_FAILED));
    EXPECT_EQ(put(hconn, q1, "x"), failed(MQRC_CONNECTION_BROKEN));
    EXPECT_EQ(diary.reasons(2).back(), MQRC_RECONNECT_FAILED);

    Codes codes;
    MQSTS sts = {MQSTS_DEFAULT};
    sts.Version = MQSTS_VERSION_2;
    MQSTAT(hconn, MQSTAT_TYPE_RECONNECTION, &sts, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, ok);
    EXPECT_EQ((Codes{sts.CompCode, sts.Reason}), failed(MQRC_Q_MGR_STOPPING));
    EXPECT_EQ(text(sts.ObjectName), "");
    MQSTAT(hconn, MQSTAT_TYPE_RECONNECTION_ERROR, &sts, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, ok);
    EXPECT_EQ((Codes{sts.CompCode, sts.Reason}), failed(MQRC_RECONNECT_FAILED));
    EXPECT_EQ(text(sts.ObjectName), "Q2");
    EXPECT_EQ(sts.OpenOptions, MQOO_OUTPUT);
    MQSTAT(hconn, MQSTAT_TYPE_ASYNC_ERROR, &sts, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, failed(MQRC_CONNECTION_BROKEN));
    // It has let go of the queue manager.
    endQuiesce();
    EXPECT_EQ(store::stateOf(storeFolder(), "QM1").state, store::State::Ended);
}

TEST_F(Reconnect, BrowsingGoesOnWhereItStood)
{
    for (const char *body : {"1", "2", "3"})
        put(hconn, q1, body, persistentMd());
    EXPECT_EQ(get(hconn, q1, MQGMO_BROWSE_FIRST).body, "1");
    EXPECT_EQ(get(hconn, q1, MQGMO_BROWSE_NEXT).body, "2");
    endToReconnect();
    start();
    EXPECT_EQ(get(hconn, q1, MQGMO_BROWSE_NEXT).body, "3");
    endToReconnect();
    start();
    EXPECT_EQ(get(hconn, q1, MQGMO_MSG_UNDER_CURSOR).body, "3");
}

TEST_F(Reconnect, AMessageThatIsGoneIsNotUnderTheCursor)
{
    put(hconn, q1, "not persistent");
    get(hconn, q1, MQGMO_BROWSE_FIRST);
    endToReconnect();
    start();
    EXPECT_EQ(get(hconn, q1, MQGMO_MSG_UNDER_CURSOR).codes, failed(MQRC_NO_MSG_UNDER_CURSOR));
}

TEST_F(Reconnect, LogicalOrderIs2547)
{
    MQMD md = version2Md();
    md.MsgFlags = MQMF_MSG_IN_GROUP;
    EXPECT_EQ(put(hconn, q1, "x", md, pmoWith(MQPMO_LOGICAL_ORDER)), failed(MQRC_RECONNECT_INCOMPATIBLE));
}

TEST_F(Reconnect, MessageTokensWantTheSameQueueManager)
{
    put(hconn, q1, "token", persistentMd());
    const Got browsed = get(hconn, q1, version2Md(), gmoWith(MQGMO_BROWSE_FIRST, MQGMO_VERSION_3));
    MQGMO gmo = gmoWith(MQGMO_NO_SYNCPOINT, MQGMO_VERSION_3);
    gmo.MatchOptions = MQMO_MATCH_MSG_TOKEN;
    std::memcpy(gmo.MsgToken, browsed.gmo.MsgToken, sizeof gmo.MsgToken);
    const MQHCONN any = connectWith(MQCNO_RECONNECT);
    EXPECT_EQ(get(any, open(any, "Q1", everything), version2Md(), gmo).codes, failed(MQRC_RECONNECT_Q_MGR_REQD));
    endToReconnect();
    start();
    EXPECT_EQ(get(hconn, q1, version2Md(), gmo).body, "token");
}

// ---- Which queue manager ----

class Identity : public Reconnect {
public:
    void replaceQueueManager()
    {
        endToReconnect();
        ASSERT_FALSE(store::deleteQueueManager(storeFolder(), "QM1").failed());
        // The identifier tells queue managers apart by the second in which they were made.
        std::this_thread::sleep_for(1100ms);
        createQueueManager("QM1");
        defineQueue("Q1");
    }
};

TEST_F(Identity, AnotherQueueManagerOfTheNameIs2546)
{
    manage(hconn, MQOP_REGISTER, handlerInto(diary));
    replaceQueueManager();
    EXPECT_EQ(put(hconn, q1, "x"), failed(MQRC_RECONNECT_QMID_MISMATCH));
    EXPECT_EQ(put(hconn, q1, "x"), failed(MQRC_CONNECTION_BROKEN));
    EXPECT_TRUE(comesTrue([&] { return diary.reasons(1).back() == MQRC_RECONNECT_FAILED; }));
}

TEST_F(Identity, AnotherQueueManagerWillDoWhereTheOptionSaysSo)
{
    const MQHCONN any = connectWith(MQCNO_RECONNECT);
    const MQHOBJ its = open(any, "Q1", everything);
    replaceQueueManager();
    EXPECT_EQ(put(any, its, "x"), ok);
    EXPECT_EQ(get(any, its).body, "x");
}

TEST_F(Identity, TheDefaultMayBeAnotherOne)
{
    const MQHCONN any = connectWith(MQCNO_RECONNECT, "");
    const MQHOBJ its = open(any, "Q1", everything);
    createQueueManager("QM2");
    ASSERT_FALSE(store::setDefaultQueueManager(storeFolder(), "QM2").failed());
    endToReconnect();
    auto moved = std::async(std::launch::async, [&] { return put(any, its, "x"); });
    // QM2 has no such queue.
    EXPECT_EQ(moved.get(), failed(MQRC_RECONNECT_FAILED));
}

// ---- Calls that the end meets on their way ----

TEST_F(Reconnect, PersistentPutsAndUnitsAreThereOnceWhenTheyWereAnswered)
{
    constexpr int rounds = 4;
    alterQueue("Q1", {{MQIA_MAX_Q_DEPTH, 100000}});
    std::atomic<bool> stop{false};
    std::vector<std::thread> workers;
    std::mutex mutex;
    std::map<std::string, int> expected;
    for (int worker = 0; worker < 2; ++worker)
        workers.emplace_back([&, worker] {
            MQHCONN mine = connectWith(MQCNO_RECONNECT);
            const MQHOBJ output = open(mine, "Q1", MQOO_OUTPUT);
            std::map<std::string, int> own;
            for (int i = 0; !stop; ++i) {
                const std::string name = std::to_string(worker) + "." + std::to_string(i);
                EXPECT_EQ(put(mine, output, name, persistentMd()), ok);
                own[name] = 1;
                const Codes in = put(mine, output, "u" + name, persistentMd(), pmoWith(MQPMO_SYNCPOINT));
                const Codes both = put(mine, output, "v" + name, persistentMd(), pmoWith(MQPMO_SYNCPOINT));
                const Codes ended = commit(mine);
                const bool done = ended == ok;
                EXPECT_TRUE(done || ended == warned(MQRC_BACKED_OUT)) << ended;
                // A unit that was lost before its second put, or nothing was in it yet.
                if (done && in == ok) own["u" + name] = 1;
                if (done && both == ok) own["v" + name] = 1;
            }
            EXPECT_EQ(disconnect(mine), ok);
            const std::lock_guard lock(mutex);
            expected.insert(own.begin(), own.end());
        });
    for (int round = 0; round < rounds; ++round) {
        std::this_thread::sleep_for(60ms);
        endToReconnect();
        start();
    }
    std::this_thread::sleep_for(60ms);
    stop = true;
    for (std::thread &worker : workers)
        worker.join();
    std::map<std::string, int> found;
    for (const std::string &body : drain(hconn, q1))
        ++found[body];
    EXPECT_GT(found.size(), 4U);
    EXPECT_TRUE(found == expected) << found.size() << " found, " << expected.size() << " expected";
}

} // namespace
} // namespace mqrig::qmgr::testing
