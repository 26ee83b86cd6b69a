// Reasons that every call answers while something else has the connection or a message handle.
#include <atomic>
#include <future>
#include <vector>

#include "consumer_fixture.h"
#include "every_call.h"
#include "property_calls.h"

namespace mqrig::qmgr::testing {
namespace {

using namespace std::chrono_literals;

class Occupied : public Consumer {
public:
    static bool is(const CallOnConnection &call, std::string_view name) { return call.name == name; }
};

// MQCTL stops the consumers, and MQDISC does so too.
TEST_F(Occupied, ConnectionOfConsumersIs2500)
{
    consume();
    control(hconn, MQOP_START);
    for (const CallOnConnection &call : callsOnConnections)
        if (!is(call, "MQCTL") && !is(call, "MQDISC")) {
            EXPECT_EQ(call.make(hconn), failed(MQRC_HCONN_ASYNC_ACTIVE)) << call.name;
        }
    EXPECT_EQ(control(hconn, MQOP_START), failed(MQRC_HCONN_ASYNC_ACTIVE));
    EXPECT_EQ(control(hconn, MQOP_STOP), ok);
}

// A get makes the connection follow its queue manager, and waits for the handler, which is told of it.
TEST_F(Occupied, ConnectionOfACallThatWaitsForTheHandlerIs2219)
{
    reconnectEvery(1ms);
    MQHCONN follows = connectWith(MQCNO_RECONNECT_Q_MGR);
    const MQHOBJ hobj = open(follows, "Q1", MQOO_INPUT_SHARED);
    std::promise<std::vector<Codes>> made;
    std::atomic<bool> first{true};
    diary.then = [&](MQHCONN its, MQCBC &) {
        if (!first.exchange(false)) return;
        std::vector<Codes> answers;
        for (const CallOnConnection &call : callsOnConnections)
            answers.push_back(call.make(its));
        made.set_value(answers);
    };
    manage(follows, MQOP_REGISTER, handlerInto(diary));
    MQGMO waits = gmo(MQGMO_WAIT | MQGMO_NO_SYNCPOINT);
    waits.WaitInterval = MQWI_UNLIMITED;
    auto getter = std::async(std::launch::async, [&] { return get(follows, hobj, version2Md(), waits); });
    endToReconnect();
    const std::vector<Codes> answers = made.get_future().get();
    for (std::size_t i = 0; i < answers.size(); ++i)
        EXPECT_EQ(answers[i], failed(MQRC_CALL_IN_PROGRESS)) << callsOnConnections[i].name;
    start();
    MQHCONN anew = connect();
    EXPECT_EQ(put(anew, open(anew, "Q1", MQOO_OUTPUT), "there"), ok);
    EXPECT_EQ(getter.get().body, "there");
    disconnect(follows); // before what the callback uses goes
}

// MQDISC does not wait for a reconnection.
TEST_F(Occupied, ConnectionThatCouldNotFollowItsQueueManagerIs2556)
{
    reconnectEvery(1ms, 5ms);
    std::vector<MQHCONN> connections;
    for (std::size_t i = 0; i < callsOnConnections.size(); ++i)
        connections.push_back(connectWith(MQCNO_RECONNECT_Q_MGR));
    endToReconnect();
    for (std::size_t i = 0; i < callsOnConnections.size(); ++i)
        if (!is(callsOnConnections[i], "MQDISC")) {
            EXPECT_EQ(callsOnConnections[i].make(connections[i]), failed(MQRC_RECONNECT_TIMED_OUT))
                << callsOnConnections[i].name;
        }
    for (MQHCONN &connection : connections)
        disconnect(connection);
}

// What MQGET would say of its matching, MQCB says.
TEST_F(Occupied, ConsumersMatchingIsChecked)
{
    const auto registered = [this](MQHCONN connection, MQHOBJ hobj, MQLONG match, const MQMD &md, MQLONG options = 0) {
        MQGMO wanted = gmoWith(MQGMO_NO_SYNCPOINT | options, MQGMO_VERSION_3);
        wanted.MatchOptions = match;
        return manage(connection, MQOP_REGISTER, consumerInto(diary), hobj, md, wanted);
    };
    MQMD md = version2Md();
    EXPECT_EQ(registered(hconn, q1, 0x40000000, md), failed(MQRC_MATCH_OPTIONS_ERROR));
    md.MsgSeqNumber = 0;
    EXPECT_EQ(registered(hconn, q1, MQMO_MATCH_MSG_SEQ_NUMBER, md), failed(MQRC_MSG_SEQ_NUMBER_ERROR));
    md.Offset = -1;
    EXPECT_EQ(registered(hconn, q1, MQMO_MATCH_OFFSET, md), failed(MQRC_OFFSET_ERROR));

    MQHCONN follows = connectWith(MQCNO_RECONNECT);
    const MQHOBJ hobj = open(follows, "Q1", everything);
    const MQMD any = version2Md();
    EXPECT_EQ(registered(follows, hobj, MQMO_MATCH_MSG_TOKEN, any), failed(MQRC_RECONNECT_Q_MGR_REQD));
    EXPECT_EQ(registered(follows, hobj, MQMO_NONE, any, MQGMO_LOGICAL_ORDER), failed(MQRC_RECONNECT_INCOMPATIBLE));
    EXPECT_EQ(get(follows, hobj, MQGMO_LOGICAL_ORDER).codes, failed(MQRC_RECONNECT_INCOMPATIBLE));
    disconnect(follows);
}

TEST_F(Occupied, ConnectionThatHasLostItsUnitOfWorkSaysSo)
{
    MQHCONN follows = connectWith(MQCNO_RECONNECT_Q_MGR);
    const MQHOBJ hobj = open(follows, "Q1", MQOO_OUTPUT);
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = pmoWith(MQPMO_SYNCPOINT);
    ASSERT_EQ(put(follows, hobj, "lost", md, pmo), ok);
    endToReconnect();
    start();
    EXPECT_EQ(put1(follows, "Q1", "x", md, pmo), failed(MQRC_BACKED_OUT));
    EXPECT_EQ(disconnect(follows), warned(MQRC_BACKED_OUT));
}

// A get that waits has its message handle for as long.
TEST_F(Occupied, MessageHandleOfAnotherCallIs2499)
{
    MQCMHO cmho = {MQCMHO_DEFAULT};
    MQHMSG hmsg = MQHM_NONE;
    ASSERT_EQ(answerOf(MQCRTMH, MQHC_UNASSOCIATED_HCONN, &cmho, &hmsg), ok);
    MQGMO waits = gmoWith(MQGMO_WAIT | MQGMO_NO_SYNCPOINT | MQGMO_PROPERTIES_IN_HANDLE, MQGMO_VERSION_4);
    waits.WaitInterval = MQWI_UNLIMITED;
    waits.MsgHandle = hmsg;
    constexpr Codes inUse = failed(MQRC_MSG_HANDLE_IN_USE);
    auto getter = std::async(std::launch::async, [&] {
        for (;;) // an inquiry below may have the handle at this moment
            if (const Got got = get(other, otherQ1, version2Md(), waits); got.codes != inUse) return got;
    });

    MQDMHO dmho = {MQDMHO_DEFAULT};
    MQSMPO smpo = {MQSMPO_DEFAULT};
    MQIMPO impo = {MQIMPO_DEFAULT};
    MQDMPO dmpo = {MQDMPO_DEFAULT};
    MQBMHO bmho = {MQBMHO_DEFAULT};
    MQMHBO mhbo = {MQMHBO_DEFAULT};
    MQPD pd = {MQPD_DEFAULT};
    MQMD md = {MQMD_DEFAULT};
    MQCHARV name = charv("name");
    MQLONG type = MQTYPE_STRING;
    MQLONG length = 0;
    char buffer[100] = {};
    const auto inquire = [&] { return answerOf(MQINQMP, hconn, hmsg, &impo, &name, &pd, &type, 100, buffer, &length); };
    ASSERT_TRUE(comesTrue([&] { return inquire() == inUse; }));
    MQHMSG same = hmsg;
    EXPECT_EQ(answerOf(MQDLTMH, hconn, &same, &dmho), inUse);
    EXPECT_EQ(answerOf(MQSETMP, hconn, hmsg, &smpo, &name, &pd, MQTYPE_STRING, 4, buffer), inUse);
    EXPECT_EQ(answerOf(MQDLTMP, hconn, hmsg, &dmpo, &name), inUse);
    EXPECT_EQ(answerOf(MQBUFMH, hconn, hmsg, &bmho, &md, 0, buffer, &length), inUse);
    EXPECT_EQ(answerOf(MQMHBUF, hconn, hmsg, &mhbo, &name, &md, 100, buffer, &length), inUse);
    MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT);
    pmo.Version = MQPMO_VERSION_3;
    pmo.OriginalMsgHandle = hmsg;
    EXPECT_EQ(put(hconn, q1, "x", md, pmo), inUse);
    EXPECT_EQ(put1(hconn, "Q1", "x", md, pmo), inUse);
    MQGMO another = waits;
    another.Options &= ~MQGMO_WAIT;
    EXPECT_EQ(get(hconn, q1, version2Md(), another).codes, inUse);

    EXPECT_EQ(put(hconn, q1, "x"), ok);
    EXPECT_EQ(getter.get().codes, ok);
    EXPECT_EQ(answerOf(MQDLTMH, MQHC_UNASSOCIATED_HCONN, &hmsg, &dmho), ok);
}

} // namespace
} // namespace mqrig::qmgr::testing
