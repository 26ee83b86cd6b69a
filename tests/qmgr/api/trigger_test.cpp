// Trigger messages, read from the initiation queue as a trigger monitor does.

#include <array>
#include <barrier>
#include <cstring>
#include <optional>
#include <string>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

#include "fixture.h"
#include "qmgr/store/seams.h"

namespace mqrig::qmgr::testing {
namespace {

class Trigger : public QueueManagerTest {
public:
    Trigger() : hconn(connect())
    {
        defineQueue("INIT");
        defineProcess("PROC");
        alterText(MQOT_Q, "Q1", MQCA_INITIATION_Q_NAME, "INIT");
        alterText(MQOT_Q, "Q1", MQCA_PROCESS_NAME, "PROC");
        alterText(MQOT_Q, "Q1", MQCA_TRIGGER_DATA, "the trigger data");
        q1 = open(hconn, "Q1", MQOO_OUTPUT | MQOO_SET | MQOO_INQUIRE);
        init = open(hconn, "INIT", MQOO_INPUT_SHARED);
    }

    void trigger(MQLONG type, Attributes others = {})
    {
        alterQueue("Q1", {{MQIA_TRIGGER_TYPE, type}, {MQIA_TRIGGER_CONTROL, MQTC_ON}});
        alterQueue("Q1", others);
    }
    // How many trigger messages there are now; they are taken.
    std::size_t triggers() { return drain(hconn, init).size(); }
    Codes set(MQLONG selector, MQLONG value) { return setAttribute(hconn, q1, selector, value); }
    static Codes setAttribute(MQHCONN connection, MQHOBJ hobj, MQLONG selector, MQLONG value)
    {
        Codes codes;
        MQSET(connection, hobj, 1, &selector, 1, &value, 0, nullptr, &codes.CompCode, &codes.Reason);
        return codes;
    }
    MQLONG control()
    {
        MQLONG selector = MQIA_TRIGGER_CONTROL;
        MQLONG value = -1;
        Codes codes;
        MQINQ(hconn, q1, 1, &selector, 1, &value, 0, nullptr, &codes.CompCode, &codes.Reason);
        EXPECT_EQ(codes, ok);
        return value;
    }
    void take()
    {
        MQHOBJ server = input();
        drain(hconn, server);
        close(hconn, server);
    }
    MQHOBJ input() { return open(hconn, "Q1", MQOO_INPUT_SHARED); }

    MQHCONN hconn;
    MQHOBJ q1;
    MQHOBJ init;
};

TEST_F(Trigger, TheMessageTellsQueueProcessAndData)
{
    alterText(MQOT_PROCESS, "PROC", MQCA_APPL_ID, "/bin/server");
    alterText(MQOT_PROCESS, "PROC", MQCA_ENV_DATA, "&");
    alterText(MQOT_PROCESS, "PROC", MQCA_USER_DATA, "user data");
    trigger(MQTT_FIRST);
    ASSERT_EQ(put(hconn, q1, "x"), ok);
    const Got got = get(hconn, init);
    ASSERT_EQ(got.codes, ok);
    EXPECT_EQ(text(got.md.Format), "MQTRIG");
    EXPECT_EQ(got.md.MsgType, MQMT_DATAGRAM);
    EXPECT_EQ(got.md.Persistence, MQPER_NOT_PERSISTENT);
    EXPECT_EQ(got.md.PutApplType, MQAT_QMGR);
    EXPECT_EQ(text(got.md.PutApplName), "QM1");
    ASSERT_EQ(got.body.size(), sizeof(MQTM));
    MQTM message;
    std::memcpy(&message, got.body.data(), sizeof message);
    EXPECT_EQ(std::string(message.StrucId, 4), MQTM_STRUC_ID);
    EXPECT_EQ(message.Version, MQTM_VERSION_1);
    EXPECT_EQ(text(message.QName), "Q1");
    EXPECT_EQ(text(message.ProcessName), "PROC");
    EXPECT_EQ(text(message.TriggerData), "the trigger data");
    EXPECT_EQ(message.ApplType, MQAT_UNIX);
    EXPECT_EQ(text(message.ApplId), "/bin/server");
    EXPECT_EQ(text(message.EnvData), "&");
    EXPECT_EQ(text(message.UserData), "user data");
}

TEST_F(Trigger, FirstIsForTheFirstMessageOnly)
{
    trigger(MQTT_FIRST);
    ASSERT_EQ(put(hconn, q1, "1"), ok);
    ASSERT_EQ(put(hconn, q1, "2"), ok);
    EXPECT_EQ(triggers(), 1U);
    take();
}

TEST_F(Trigger, FirstComesAgainWhenTheIntervalHasPassed)
{
    alterQueueManager({{MQIA_TRIGGER_INTERVAL, 0}});
    trigger(MQTT_FIRST);
    for (int i = 0; i < 3; ++i)
        ASSERT_EQ(put(hconn, q1, "x"), ok);
    EXPECT_EQ(triggers(), 3U);
}

TEST_F(Trigger, EveryIsForEachMessage)
{
    trigger(MQTT_EVERY);
    MQHOBJ server = input();
    for (int i = 0; i < 3; ++i)
        ASSERT_EQ(put(hconn, q1, "x"), ok);
    EXPECT_EQ(triggers(), 3U);
    close(hconn, server);
    EXPECT_EQ(triggers(), 0U);
}

TEST_F(Trigger, DepthTurnsItselfOff)
{
    trigger(MQTT_DEPTH, {{MQIA_TRIGGER_DEPTH, 3}});
    ASSERT_EQ(put(hconn, q1, "1"), ok);
    ASSERT_EQ(put(hconn, q1, "2"), ok);
    EXPECT_EQ(triggers(), 0U);
    ASSERT_EQ(put(hconn, q1, "3"), ok);
    EXPECT_EQ(triggers(), 1U);
    EXPECT_EQ(control(), MQTC_OFF);
    ASSERT_EQ(put(hconn, q1, "4"), ok);
    EXPECT_EQ(triggers(), 0U);
    ASSERT_EQ(set(MQIA_TRIGGER_CONTROL, MQTC_ON), ok);
    EXPECT_EQ(triggers(), 1U);
    EXPECT_EQ(control(), MQTC_OFF);
}

TEST_F(Trigger, NothingIsDueWhileAConditionIsMissing)
{
    const auto noneFor = [&](const char *what) {
        ASSERT_EQ(put(hconn, q1, "x"), ok) << what;
        EXPECT_EQ(triggers(), 0U) << what;
        take();
        EXPECT_EQ(triggers(), 0U) << what;
    };
    noneFor("no TRIGGER");
    trigger(MQTT_NONE);
    noneFor("TRIGTYPE(NONE)");
    trigger(MQTT_FIRST);
    alterText(MQOT_Q, "Q1", MQCA_PROCESS_NAME, "");
    noneFor("no process");
    alterText(MQOT_Q, "Q1", MQCA_PROCESS_NAME, "NO.PROC");
    noneFor("a process that is not defined");
    alterText(MQOT_Q, "Q1", MQCA_PROCESS_NAME, "PROC");
    alterText(MQOT_Q, "Q1", MQCA_INITIATION_Q_NAME, "");
    noneFor("no initiation queue");
    alterText(MQOT_Q, "Q1", MQCA_INITIATION_Q_NAME, "NO.INIT");
    noneFor("an initiation queue that is not defined");
    alterText(MQOT_Q, "Q1", MQCA_INITIATION_Q_NAME, "INIT");
    alterQueue("INIT", {{MQIA_INHIBIT_PUT, MQQA_PUT_INHIBITED}});
    noneFor("an initiation queue that takes no messages");
    alterQueue("INIT", {{MQIA_INHIBIT_PUT, MQQA_PUT_ALLOWED}, {MQIA_USAGE, MQUS_TRANSMISSION}});
    noneFor("a transmission queue for the initiation queue");
    alterQueue("INIT", {{MQIA_USAGE, MQUS_NORMAL}});
    MQHOBJ server = input();
    ASSERT_EQ(put(hconn, q1, "x"), ok);
    EXPECT_EQ(triggers(), 0U) << "open for input";
    drain(hconn, server);
    close(hconn, server);
    ASSERT_EQ(put(hconn, q1, "x"), ok);
    EXPECT_EQ(triggers(), 1U) << "nothing is missing";
}

TEST_F(Trigger, ATransmissionQueueNeedsNoProcess)
{
    alterText(MQOT_Q, "Q1", MQCA_PROCESS_NAME, "");
    trigger(MQTT_FIRST, {{MQIA_USAGE, MQUS_TRANSMISSION}});
    ASSERT_EQ(put(hconn, q1, "x"), ok);
    EXPECT_EQ(triggers(), 1U);
}

TEST_F(Trigger, MessagesOfLowerPriorityDoNotCount)
{
    trigger(MQTT_FIRST, {{MQIA_TRIGGER_MSG_PRIORITY, 5}});
    ASSERT_EQ(put(hconn, q1, "x", withPriority(4)), ok);
    EXPECT_EQ(triggers(), 0U);
    ASSERT_EQ(put(hconn, q1, "x", withPriority(5)), ok);
    EXPECT_EQ(triggers(), 1U);
    ASSERT_EQ(put(hconn, q1, "x", withPriority(9)), ok);
    EXPECT_EQ(triggers(), 0U);

    alterQueue("Q1", {{MQIA_TRIGGER_TYPE, MQTT_DEPTH}, {MQIA_TRIGGER_DEPTH, 3}});
    ASSERT_EQ(put(hconn, q1, "x", withPriority(0)), ok);
    EXPECT_EQ(triggers(), 0U);
    ASSERT_EQ(put(hconn, q1, "x", withPriority(6)), ok);
    EXPECT_EQ(triggers(), 1U);
}

// ---- Units of work ----

TEST_F(Trigger, TheMessageAppearsWithTheCommit)
{
    trigger(MQTT_EVERY);
    ASSERT_EQ(put(hconn, q1, "x", {MQMD_DEFAULT}, pmoWith(MQPMO_SYNCPOINT)), ok);
    EXPECT_EQ(triggers(), 0U);
    ASSERT_EQ(commit(hconn), ok);
    EXPECT_EQ(triggers(), 1U);
    ASSERT_EQ(put(hconn, q1, "x", {MQMD_DEFAULT}, pmoWith(MQPMO_SYNCPOINT)), ok);
    ASSERT_EQ(backOut(hconn), ok);
    EXPECT_EQ(triggers(), 0U);
    EXPECT_EQ(depth("INIT"), 0);
}

TEST_F(Trigger, FirstAndDepthOutliveABackout)
{
    trigger(MQTT_FIRST);
    ASSERT_EQ(put(hconn, q1, "x", {MQMD_DEFAULT}, pmoWith(MQPMO_SYNCPOINT)), ok);
    EXPECT_EQ(triggers(), 0U);
    ASSERT_EQ(backOut(hconn), ok);
    EXPECT_EQ(triggers(), 1U);

    alterQueue("Q1", {{MQIA_TRIGGER_TYPE, MQTT_DEPTH}, {MQIA_TRIGGER_DEPTH, 2}});
    for (int i = 0; i < 3; ++i)
        ASSERT_EQ(put(hconn, q1, "x", {MQMD_DEFAULT}, pmoWith(MQPMO_SYNCPOINT)), ok);
    ASSERT_EQ(backOut(hconn), ok);
    EXPECT_EQ(triggers(), 1U);
    EXPECT_EQ(control(), MQTC_OFF);
}

TEST_F(Trigger, UncommittedMessagesOfOthersCount)
{
    trigger(MQTT_DEPTH, {{MQIA_TRIGGER_DEPTH, 2}});
    MQHCONN other = connect();
    ASSERT_EQ(put(other, open(other, "Q1", MQOO_OUTPUT), "x", {MQMD_DEFAULT}, pmoWith(MQPMO_SYNCPOINT)), ok);
    ASSERT_EQ(put(hconn, q1, "x"), ok);
    EXPECT_EQ(triggers(), 1U);
}

// ---- DEPTH: one trigger message for all who reach the depth ----

TEST_F(Trigger, AUnitThatReachedTheDepthMakesTheOnlyMessage)
{
    for (const bool commits : {true, false}) {
        trigger(MQTT_DEPTH, {{MQIA_TRIGGER_DEPTH, 2}});
        MQHCONN other = connect();
        const MQHOBJ theirs = open(other, "Q1", MQOO_OUTPUT);
        for (int i = 0; i < 2; ++i)
            ASSERT_EQ(put(other, theirs, "x", {MQMD_DEFAULT}, pmoWith(MQPMO_SYNCPOINT)), ok);
        ASSERT_EQ(put(hconn, q1, "x"), ok);
        EXPECT_EQ(triggers(), 0U); // it is in the other unit
        ASSERT_EQ(commits ? commit(other) : backOut(other), ok);
        EXPECT_EQ(triggers(), 1U);
        EXPECT_EQ(control(), MQTC_OFF);
        ASSERT_EQ(disconnect(other), ok);
        take();
    }
}

TEST_F(Trigger, AProgramThatDiesWithTheMessageLeavesItToTheNextPut)
{
    trigger(MQTT_DEPTH, {{MQIA_TRIGGER_DEPTH, 2}});
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        MQHCONN other = connect();
        const MQHOBJ theirs = open(other, "Q1", MQOO_OUTPUT);
        for (int i = 0; i < 2; ++i)
            if (put(other, theirs, "x", {MQMD_DEFAULT}, pmoWith(MQPMO_SYNCPOINT)) != ok) _exit(1);
        _exit(0);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_EQ(status, 0);
    MQHCONN next = connect(); // cleans up behind it
    ASSERT_EQ(put(hconn, q1, "x"), ok);
    EXPECT_EQ(triggers(), 0U);
    ASSERT_EQ(put(hconn, q1, "x"), ok);
    EXPECT_EQ(triggers(), 1U);
    EXPECT_EQ(control(), MQTC_OFF);
    ASSERT_EQ(disconnect(next), ok);
}

TEST_F(Trigger, ADroppedMessageIsMadeAgainByTheNextPut)
{
    trigger(MQTT_DEPTH, {{MQIA_TRIGGER_DEPTH, 1}});
    alterQueue("INIT", {{MQIA_MAX_Q_DEPTH, 0}});
    ASSERT_EQ(put(hconn, q1, "x"), ok);
    EXPECT_EQ(control(), MQTC_ON);
    alterQueue("INIT", {{MQIA_MAX_Q_DEPTH, 10}});
    ASSERT_EQ(put(hconn, q1, "x"), ok);
    EXPECT_EQ(triggers(), 1U);
    EXPECT_EQ(control(), MQTC_OFF);
}

TEST_F(Trigger, ThoseThatReachTheDepthAtOnceMakeOneMessage)
{
    for (int round = 0; round < 30; ++round) {
        trigger(MQTT_DEPTH, {{MQIA_TRIGGER_DEPTH, 4}});
        std::array<std::thread, 4> programs;
        std::barrier together(programs.size());
        for (std::thread &program : programs)
            program = std::thread([&together] {
                MQHCONN own = connect();
                const MQHOBJ theirs = open(own, "Q1", MQOO_OUTPUT);
                together.arrive_and_wait();
                for (int i = 0; i < 4; ++i)
                    EXPECT_EQ(put(own, theirs, "x"), ok);
                EXPECT_EQ(disconnect(own), ok);
            });
        for (std::thread &program : programs)
            program.join();
        ASSERT_EQ(triggers(), 1U) << round;
        ASSERT_EQ(control(), MQTC_OFF) << round;
        take();
    }
}

// ---- Causes other than a put ----

TEST_F(Trigger, TheLastCloseTriggersForWhatIsLeft)
{
    trigger(MQTT_FIRST);
    MQHOBJ one = input();
    MQHOBJ two = input();
    ASSERT_EQ(put(hconn, q1, "x"), ok);
    close(hconn, one);
    EXPECT_EQ(triggers(), 0U);
    close(hconn, two);
    EXPECT_EQ(triggers(), 1U);
    MQHOBJ three = input();
    drain(hconn, three);
    close(hconn, three);
    EXPECT_EQ(triggers(), 0U);
}

TEST_F(Trigger, DisconnectingClosesToo)
{
    trigger(MQTT_FIRST);
    MQHCONN server = connect();
    open(server, "Q1", MQOO_INPUT_SHARED);
    ASSERT_EQ(put(hconn, q1, "x"), ok);
    EXPECT_EQ(triggers(), 0U);
    disconnect(server);
    EXPECT_EQ(triggers(), 1U);
}

TEST_F(Trigger, SettingTheControlTriggersForWhatIsThere)
{
    alterQueue("Q1", {{MQIA_TRIGGER_TYPE, MQTT_FIRST}});
    ASSERT_EQ(set(MQIA_TRIGGER_CONTROL, MQTC_ON), ok);
    EXPECT_EQ(triggers(), 0U);
    ASSERT_EQ(set(MQIA_TRIGGER_CONTROL, MQTC_OFF), ok);
    ASSERT_EQ(put(hconn, q1, "x"), ok);
    EXPECT_EQ(triggers(), 0U);
    ASSERT_EQ(set(MQIA_TRIGGER_CONTROL, MQTC_ON), ok);
    EXPECT_EQ(triggers(), 1U);
}

TEST_F(Trigger, EnablingGetsTriggersForWhatIsThereAndDisablingThemDoesNot)
{
    ASSERT_EQ(put(hconn, q1, "x"), ok);
    trigger(MQTT_FIRST);
    ASSERT_EQ(set(MQIA_INHIBIT_GET, MQQA_GET_INHIBITED), ok);
    EXPECT_EQ(triggers(), 0U);
    ASSERT_EQ(set(MQIA_TRIGGER_DEPTH, 1), ok);
    EXPECT_EQ(triggers(), 0U) << "while gets are inhibited";
    ASSERT_EQ(set(MQIA_INHIBIT_GET, MQQA_GET_ALLOWED), ok);
    EXPECT_EQ(triggers(), 1U);
}

TEST_F(Trigger, SettingWhatHasNoPartInTriggeringTriggersNothing)
{
    ASSERT_EQ(put(hconn, q1, "x"), ok);
    trigger(MQTT_FIRST);
    ASSERT_EQ(set(MQIA_INHIBIT_PUT, MQQA_PUT_INHIBITED), ok);
    ASSERT_EQ(set(MQIA_DIST_LISTS, MQDL_SUPPORTED), ok);
    EXPECT_EQ(triggers(), 0U);
    ASSERT_EQ(set(MQIA_TRIGGER_MSG_PRIORITY, 0), ok);
    EXPECT_EQ(triggers(), 1U);
}

TEST_F(Trigger, TheMonitorsOpenTriggersForWhatIsThere)
{
    trigger(MQTT_FIRST);
    close(hconn, init);
    ASSERT_EQ(put(hconn, q1, "x"), ok);
    EXPECT_EQ(depth("INIT"), 0);
    init = open(hconn, "INIT", MQOO_INPUT_SHARED);
    EXPECT_EQ(triggers(), 1U);
    take();
    EXPECT_EQ(triggers(), 0U);
    MQHOBJ again = open(hconn, "INIT", MQOO_INPUT_SHARED);
    EXPECT_EQ(triggers(), 0U);
    close(hconn, again);
}

TEST_F(Trigger, AfterARestartTheMonitorsOpenTriggers)
{
    trigger(MQTT_FIRST);
    ASSERT_EQ(put(hconn, q1, "x", persistentMd()), ok);
    restart();
    hconn = connect();
    EXPECT_EQ(depth("INIT"), 0);
    init = open(hconn, "INIT", MQOO_INPUT_SHARED);
    EXPECT_EQ(triggers(), 1U);
}

// ---- Where the trigger message goes ----

TEST_F(Trigger, AFullInitiationQueueSendsItToTheDeadLetterQueue)
{
    defineQueue("DLQ");
    setDeadLetterQueue("DLQ");
    alterQueue("INIT", {{MQIA_MAX_Q_DEPTH, 0}});
    trigger(MQTT_EVERY);
    ASSERT_EQ(put(hconn, q1, "x"), ok);
    const Got got = get(hconn, open(hconn, "DLQ", MQOO_INPUT_SHARED));
    ASSERT_EQ(got.body.size(), sizeof(MQDLH) + sizeof(MQTM));
    MQDLH header;
    std::memcpy(&header, got.body.data(), sizeof header);
    EXPECT_EQ(header.Reason, MQRC_Q_FULL);
    EXPECT_EQ(text(header.DestQName), "INIT");
    EXPECT_EQ(text(header.Format), "MQTRIG");
}

TEST_F(Trigger, WithoutADeadLetterQueueItIsDroppedAndThePutGoesOn)
{
    alterQueue("INIT", {{MQIA_MAX_Q_DEPTH, 0}});
    trigger(MQTT_EVERY);
    EXPECT_EQ(put(hconn, q1, "x"), ok);
    EXPECT_EQ(depth("Q1"), 1);
}

TEST_F(Trigger, TriggerMessagesTriggerNothing)
{
    alterText(MQOT_Q, "INIT", MQCA_INITIATION_Q_NAME, "INIT");
    alterText(MQOT_Q, "INIT", MQCA_PROCESS_NAME, "PROC");
    alterQueue("INIT", {{MQIA_TRIGGER_TYPE, MQTT_EVERY}, {MQIA_TRIGGER_CONTROL, MQTC_ON}});
    trigger(MQTT_EVERY);
    ASSERT_EQ(put(hconn, q1, "x"), ok);
    EXPECT_EQ(triggers(), 1U);
}

// Storage that fails at any step leaves message and trigger message, or neither.
int remaining = 0;
int failNext(store::StorageCall call)
{
    if (call == store::StorageCall::LogSync || call == store::StorageCall::LogCommit) return 0;
    return --remaining == 0 ? 28 : 0;
}

TEST_F(Trigger, StorageFailuresLeaveBothOrNone)
{
    trigger(MQTT_EVERY);
    std::optional<Codes> firstFailure;
    for (int n = 1;; ++n) {
        ASSERT_LT(n, 500);
        remaining = n;
        store::seams.storageError = failNext;
        const Codes codes = put(hconn, q1, "x", persistentMd());
        const bool ran = remaining > 0;
        store::seams.storageError = nullptr;
        if (codes != ok) firstFailure = codes;
        MQHOBJ server = input();
        const std::size_t messages = drain(hconn, server).size();
        close(hconn, server);
        ASSERT_EQ(messages, codes == ok ? 1U : 0U) << n;
        ASSERT_EQ(triggers(), messages) << n;
        ASSERT_EQ(depth("INIT"), 0) << n;
        if (ran) break;
    }
    EXPECT_TRUE(firstFailure.has_value());
}

} // namespace
} // namespace mqrig::qmgr::testing
