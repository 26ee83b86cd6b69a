// Command messages on SYSTEM.ADMIN.COMMAND.QUEUE, put by programs and answered by whichever of them comes by.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <functional>
#include <map>
#include <optional>
#include <thread>

#include "cmqcfc.h"
#include "fixture.h"
#include "qmgr/command/pcf_reader.h"
#include "qmgr/command/pcf_writer.h"
#include "qmgr/store/seams.h"

namespace mqrig::qmgr::testing {
namespace {

using command::PcfWriter;

constexpr std::string_view commandQueue = "SYSTEM.ADMIN.COMMAND.QUEUE";
constexpr std::string_view deadLetterQueue = "SYSTEM.DEAD.LETTER.QUEUE";

std::string ping()
{
    MQCFH header = {MQCFH_DEFAULT};
    header.Command = MQCMD_PING_Q_MGR;
    return PcfWriter(header).message();
}

std::string onQueue(MQLONG what, std::string_view queue)
{
    MQCFH header = {MQCFH_DEFAULT};
    header.Command = what;
    PcfWriter writer(header);
    writer.text(MQCA_Q_NAME, queue);
    if (what == MQCMD_CREATE_Q || what == MQCMD_CHANGE_Q) writer.integer(MQIA_Q_TYPE, MQQT_LOCAL);
    if (what == MQCMD_CHANGE_Q) writer.integer(MQIA_MAX_Q_DEPTH, 77);
    return writer.message();
}

MQMD requestMd(std::string_view replyQueue = "REPLY")
{
    MQMD md = {MQMD_DEFAULT};
    md.MsgType = MQMT_REQUEST;
    std::memcpy(md.Format, MQFMT_ADMIN, sizeof md.Format);
    setText(md.ReplyToQ, replyQueue);
    return md;
}

MQCFH headerIn(const std::string &body)
{
    return command::readPcf({reinterpret_cast<const std::byte *>(body.data()), body.size()}, MQENC_NATIVE).header;
}

std::vector<command::PcfParameter> parametersIn(const std::string &body)
{
    return command::readPcf({reinterpret_cast<const std::byte *>(body.data()), body.size()}, MQENC_NATIVE).parameters;
}

class CommandServer : public QueueManagerTest {
public:
    CommandServer()
    {
        defineQueue("REPLY");
        hconn = connect();
        commands = open(hconn, commandQueue, MQOO_OUTPUT);
        replies = open(hconn, "REPLY", MQOO_INPUT_SHARED | MQOO_OUTPUT);
    }

    void useDeadLetterQueue()
    {
        MQCFH header = {MQCFH_DEFAULT};
        header.Command = MQCMD_CHANGE_Q_MGR;
        PcfWriter writer(header);
        writer.text(MQCA_DEAD_LETTER_Q_NAME, deadLetterQueue);
        send(writer.message());
        ASSERT_EQ(nextReason(), MQRC_NONE);
    }

    void send(const std::string &message) { send(message, requestMd()); }
    void send(const std::string &message, const MQMD &md) { ASSERT_EQ(put(hconn, commands, message, md), ok); }

    // The reason in the next reply, -1 where there is none.
    MQLONG nextReason()
    {
        const Got got = get(hconn, replies);
        return got.codes == ok ? headerIn(got.body).Reason : -1;
    }
    // Those of all replies.
    std::vector<MQLONG> reasons()
    {
        std::vector<MQLONG> all;
        for (const std::string &body : drain(hconn, replies))
            all.push_back(headerIn(body).Reason);
        return all;
    }
    Got nextDeadLetter()
    {
        MQHOBJ dead = open(hconn, deadLetterQueue, MQOO_INPUT_SHARED);
        Got got = get(hconn, dead);
        close(hconn, dead);
        return got;
    }

    MQHCONN hconn = MQHC_UNUSABLE_HCONN;
    MQHOBJ commands = MQHO_UNUSABLE_HOBJ;
    MQHOBJ replies = MQHO_UNUSABLE_HOBJ;
};

using ::testing::ElementsAre;
const std::vector<MQLONG> done = {MQRC_NONE};

TEST_F(CommandServer, RequestIsAnsweredBeforeThePutReturns)
{
    send(ping());
    EXPECT_EQ(depth("REPLY"), 1);
    EXPECT_EQ(depth(std::string(commandQueue)), 0);
    EXPECT_EQ(nextReason(), MQRC_NONE);
}

TEST_F(CommandServer, RequestByMqput1IsAnswered)
{
    MQMD md = requestMd();
    MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT);
    ASSERT_EQ(put1(hconn, commandQueue, ping(), md, pmo), ok);
    EXPECT_EQ(nextReason(), MQRC_NONE);
}

TEST_F(CommandServer, RequestUnderSyncpointIsAnsweredWhenItIsCommitted)
{
    ASSERT_EQ(put(hconn, commands, ping(), requestMd(), pmoWith(MQPMO_SYNCPOINT)), ok);
    EXPECT_EQ(reasons(), std::vector<MQLONG>{});
    ASSERT_EQ(commit(hconn), ok);
    EXPECT_EQ(reasons(), done);
    ASSERT_EQ(put(hconn, commands, ping(), requestMd(), pmoWith(MQPMO_SYNCPOINT)), ok);
    ASSERT_EQ(backOut(hconn), ok);
    EXPECT_EQ(reasons(), std::vector<MQLONG>{});
}

TEST_F(CommandServer, DisconnectServesWhatItCommits)
{
    MQHCONN other = connect();
    MQHOBJ queue = open(other, commandQueue, MQOO_OUTPUT);
    ASSERT_EQ(put(other, queue, ping(), requestMd(), pmoWith(MQPMO_SYNCPOINT)), ok);
    ASSERT_EQ(disconnect(other), ok);
    EXPECT_EQ(depth("REPLY"), 1);
}

TEST_F(CommandServer, UnitOfWorkOfTheProgramIsNotTouched)
{
    MQHOBJ q1 = open(hconn, "Q1", MQOO_OUTPUT | MQOO_INPUT_SHARED);
    ASSERT_EQ(put(hconn, q1, "committed"), ok);
    ASSERT_EQ(put(hconn, q1, "uncommitted", {MQMD_DEFAULT}, pmoWith(MQPMO_SYNCPOINT)), ok);
    ASSERT_EQ(get(hconn, q1, MQGMO_SYNCPOINT).body, "committed");
    send(ping());
    EXPECT_EQ(reasons(), done);
    ASSERT_EQ(backOut(hconn), ok);
    EXPECT_EQ(drain(hconn, q1), std::vector<std::string>{"committed"});
}

TEST_F(CommandServer, CommandsHaveTheirEffect)
{
    send(onQueue(MQCMD_CREATE_Q, "NEW.QUEUE"));
    EXPECT_EQ(reasons(), done);
    EXPECT_EQ(depth("NEW.QUEUE"), 0);
    send(onQueue(MQCMD_DELETE_Q, "NEW.QUEUE"));
    EXPECT_EQ(reasons(), done);
    EXPECT_EQ(openCodes(hconn, "NEW.QUEUE", MQOO_OUTPUT), failed(MQRC_UNKNOWN_OBJECT_NAME));
    send(onQueue(MQCMD_DELETE_Q, "NEW.QUEUE"));
    EXPECT_THAT(reasons(), ElementsAre(MQRC_UNKNOWN_OBJECT_NAME, MQRCCF_COMMAND_FAILED));
}

// What a command makes of a queue with a message and without TRIGGER: how many trigger messages it makes.
class CommandThatTriggers : public CommandServer {
public:
    CommandThatTriggers()
    {
        defineQueue("INIT");
        defineProcess("PROC");
        alterText(MQOT_Q, "Q1", MQCA_INITIATION_Q_NAME, "INIT");
        alterText(MQOT_Q, "Q1", MQCA_PROCESS_NAME, "PROC");
        MQHOBJ q1 = open(hconn, "Q1", MQOO_OUTPUT);
        EXPECT_EQ(put(hconn, q1, "x"), ok);
        EXPECT_EQ(close(hconn, q1), ok);
        init = open(hconn, "INIT", MQOO_INPUT_SHARED);
    }
    template <class Write>
    void command(MQLONG what, Write &&write)
    {
        MQCFH header = {MQCFH_DEFAULT};
        header.Command = what;
        PcfWriter writer(header);
        write(writer);
        send(writer.message());
        EXPECT_EQ(reasons(), done);
    }
    void change(MQLONG attribute, MQLONG value)
    {
        command(MQCMD_CHANGE_Q, [&](PcfWriter &writer) {
            writer.text(MQCA_Q_NAME, "Q1");
            writer.integer(MQIA_Q_TYPE, MQQT_LOCAL);
            writer.integer(attribute, value);
        });
    }
    void mqsc(std::string_view text)
    {
        MQCFH header = {MQCFH_DEFAULT};
        header.Command = MQCMD_ESCAPE;
        PcfWriter writer(header);
        writer.integer(MQIACF_ESCAPE_TYPE, MQET_MQSC);
        writer.text(MQCACF_ESCAPE_TEXT, text);
        send(writer.message());
        EXPECT_EQ(reasons(), done);
    }
    std::size_t triggers() { return drain(hconn, init).size(); }

    MQHOBJ init = MQHO_UNUSABLE_HOBJ;
};

TEST_F(CommandThatTriggers, IsOneThatTurnsTriggeringOn)
{
    change(MQIA_TRIGGER_CONTROL, MQTC_ON);
    EXPECT_EQ(triggers(), 1U);
    change(MQIA_TRIGGER_CONTROL, MQTC_OFF);
    EXPECT_EQ(triggers(), 0U);
    mqsc("ALTER QLOCAL(Q1) TRIGGER");
    EXPECT_EQ(triggers(), 1U);
}

TEST_F(CommandThatTriggers, IsOneThatEnablesGets)
{
    change(MQIA_INHIBIT_GET, MQQA_GET_INHIBITED);
    change(MQIA_TRIGGER_CONTROL, MQTC_ON);
    EXPECT_EQ(triggers(), 0U);
    mqsc("ALTER QLOCAL(Q1) GET(ENABLED)");
    EXPECT_EQ(triggers(), 1U);
}

TEST_F(CommandThatTriggers, IsOneThatReplacesTheQueue)
{
    command(MQCMD_CREATE_Q, [](PcfWriter &writer) {
        writer.text(MQCA_Q_NAME, "Q1");
        writer.integer(MQIA_Q_TYPE, MQQT_LOCAL);
        writer.integer(MQIACF_REPLACE, MQRP_YES);
        writer.integer(MQIA_TRIGGER_CONTROL, MQTC_ON);
        writer.text(MQCA_INITIATION_Q_NAME, "INIT");
        writer.text(MQCA_PROCESS_NAME, "PROC");
    });
    EXPECT_EQ(triggers(), 1U);
}

TEST_F(CommandThatTriggers, IsNoneThatLeavesTriggeringAlone)
{
    change(MQIA_TRIGGER_CONTROL, MQTC_ON);
    EXPECT_EQ(triggers(), 1U);
    change(MQIA_MAX_Q_DEPTH, 77);
    mqsc("ALTER QLOCAL(Q1) DESCR('other words') PUT(DISABLED)");
    EXPECT_EQ(triggers(), 0U);
}

TEST_F(CommandThatTriggers, TurnsOffTriggeringByDepth)
{
    change(MQIA_TRIGGER_TYPE, MQTT_DEPTH);
    change(MQIA_TRIGGER_CONTROL, MQTC_ON);
    EXPECT_EQ(triggers(), 1U);
    change(MQIA_TRIGGER_DEPTH, 1);
    EXPECT_EQ(triggers(), 0U);
}

TEST_F(CommandServer, QueueOfTheProgramThatAsksIsDeletedFromUnderIt)
{
    MQHOBJ q1 = open(hconn, "Q1", MQOO_OUTPUT);
    send(onQueue(MQCMD_DELETE_Q, "Q1"));
    EXPECT_THAT(reasons(), ElementsAre(MQRCCF_OBJECT_OPEN, MQRCCF_COMMAND_FAILED));
    ASSERT_EQ(close(hconn, q1), ok);
    send(onQueue(MQCMD_DELETE_Q, "Q1"));
    EXPECT_EQ(reasons(), done);
}

TEST_F(CommandServer, ReplyIsAReplyOfTheQueueManager)
{
    MQMD md = requestMd();
    md.Persistence = MQPER_PERSISTENT;
    md.Priority = 4;
    setBytes(md.MsgId, "request");
    setBytes(md.CorrelId, "correlation");
    send(ping(), md);
    const Got got = get(hconn, replies, version2Md(), gmoWith(MQGMO_NO_SYNCPOINT));
    ASSERT_EQ(got.codes, ok);
    EXPECT_EQ(got.md.MsgType, MQMT_REPLY);
    EXPECT_EQ(text(got.md.Format), "MQADMIN");
    EXPECT_EQ(got.md.Encoding, MQENC_NATIVE);
    EXPECT_EQ(got.md.CodedCharSetId, 1208);
    EXPECT_EQ(got.md.Persistence, MQPER_PERSISTENT);
    EXPECT_EQ(got.md.Priority, 4);
    EXPECT_EQ(got.md.Expiry, MQEI_UNLIMITED);
    EXPECT_EQ(bytes(got.md.CorrelId), bytes(md.MsgId)) << "MQRO_COPY_MSG_ID_TO_CORREL_ID";
    EXPECT_NE(bytes(got.md.MsgId), bytes(md.MsgId)) << "MQRO_NEW_MSG_ID";
}

TEST_F(CommandServer, ReportOptionsChooseTheIdentifiers)
{
    MQMD md = requestMd();
    setBytes(md.MsgId, "request");
    setBytes(md.CorrelId, "correlation");
    md.Report = MQRO_PASS_MSG_ID | MQRO_PASS_CORREL_ID;
    send(ping(), md);
    const Got got = get(hconn, replies);
    EXPECT_EQ(bytes(got.md.MsgId), bytes(md.MsgId));
    EXPECT_EQ(bytes(got.md.CorrelId), bytes(md.CorrelId));
}

TEST_F(CommandServer, ReplyLivesNoLongerThanItsRequest)
{
    MQMD md = requestMd();
    md.Expiry = 6000;
    send(ping(), md);
    const Got got = get(hconn, replies);
    EXPECT_GT(got.md.Expiry, 0);
    EXPECT_LE(got.md.Expiry, 6000);
}

TEST_F(CommandServer, DatagramIsAnsweredAsItsReportOptionsAsk)
{
    MQMD md = requestMd();
    md.MsgType = MQMT_DATAGRAM;
    const auto reasonsFor = [&](MQLONG report, const std::string &message) {
        md.Report = report;
        send(message, md);
        return reasons();
    };
    const std::string failing = onQueue(MQCMD_CLEAR_Q, "NONE");
    const std::vector<MQLONG> none;
    EXPECT_EQ(reasonsFor(MQRO_NONE, onQueue(MQCMD_CREATE_Q, "NEW.QUEUE")), none);
    EXPECT_EQ(depth("NEW.QUEUE"), 0) << "it has been run";
    EXPECT_EQ(reasonsFor(MQRO_PAN, ping()), done);
    EXPECT_EQ(reasonsFor(MQRO_NAN, ping()), none);
    EXPECT_EQ(reasonsFor(MQRO_PAN, failing), none);
    EXPECT_EQ(reasonsFor(MQRO_NAN, failing).size(), 2U);
}

TEST_F(CommandServer, LongRequestAndManyRepliesAreNoMatter)
{
    MQCFH header = {MQCFH_DEFAULT};
    header.Command = MQCMD_ESCAPE;
    PcfWriter writer(header);
    writer.integer(MQIACF_ESCAPE_TYPE, MQET_MQSC);
    std::string commandsText;
    for (int i = 0; i < 300; ++i)
        commandsText += "DEFINE QLOCAL(MANY." + std::to_string(i) + ") DESCR('one of very many queues')\n";
    writer.text(MQCACF_ESCAPE_TEXT, commandsText);
    send(writer.message());
    EXPECT_EQ(reasons().size(), 300U);
    send(onQueue(MQCMD_INQUIRE_Q, "MANY.*"));
    EXPECT_EQ(reasons(), std::vector<MQLONG>(300, MQRC_NONE));
}

TEST_F(CommandServer, RequestInTheOtherByteOrderIsRun)
{
    MQCFH header = {MQCFH_DEFAULT};
    header.Command = MQCMD_CREATE_Q;
    PcfWriter writer(header, MQENC_INTEGER_NORMAL);
    writer.text(MQCA_Q_NAME, "BIG.ENDIAN");
    writer.integer(MQIA_Q_TYPE, MQQT_LOCAL);
    MQMD md = requestMd();
    md.Encoding = MQENC_INTEGER_NORMAL;
    send(writer.message(), md);
    EXPECT_EQ(reasons(), done);
    EXPECT_EQ(depth("BIG.ENDIAN"), 0);
}

TEST_F(CommandServer, RequestInAnotherCharacterSetIsRun)
{
    MQCFH header = {MQCFH_DEFAULT};
    header.Command = MQCMD_CREATE_Q;
    PcfWriter writer(header);
    writer.text(MQCA_Q_NAME, "\xc5\xc2\xc3"); // "EBC" in character set 500
    writer.integer(MQIA_Q_TYPE, MQQT_LOCAL);
    MQMD md = requestMd();
    md.CodedCharSetId = 500;
    send(writer.message(), md);
    EXPECT_EQ(reasons(), done);
    EXPECT_EQ(depth("EBC"), 0);
}

TEST_F(CommandServer, CharacterSetThatNobodyKnowsIsRefusedWithTheQueueManagers)
{
    MQMD md = requestMd();
    md.CodedCharSetId = 9999;
    send(onQueue(MQCMD_CREATE_Q, "NEW.QUEUE"), md);
    const Got got = get(hconn, replies);
    const auto read =
        command::readPcf({reinterpret_cast<const std::byte *>(got.body.data()), got.body.size()}, MQENC_NATIVE);
    EXPECT_EQ(read.header.Reason, MQRCCF_CCSID_ERROR);
    ASSERT_EQ(read.parameters.size(), 1U);
    EXPECT_EQ(read.parameters[0].id, MQIA_CODED_CHAR_SET_ID);
    EXPECT_THAT(read.parameters[0].numbers, ElementsAre(1208));
}

TEST_F(CommandServer, MessageOfAnotherFormatIsRefused)
{
    MQMD md = requestMd();
    std::memcpy(md.Format, MQFMT_STRING, sizeof md.Format);
    send("PING QMGR", md);
    EXPECT_THAT(reasons(), ElementsAre(MQRCCF_MD_FORMAT_ERROR, MQRCCF_COMMAND_FAILED));
}

TEST_F(CommandServer, MessageOfAnotherFormatWithoutReplyQueueGoesToTheDeadLetterQueue)
{
    useDeadLetterQueue();
    ASSERT_EQ(put(hconn, commands, "hello"), ok);
    const Got dead = nextDeadLetter();
    ASSERT_EQ(dead.codes, ok);
    MQDLH header;
    ASSERT_EQ(dead.body.size(), sizeof header + 5);
    std::memcpy(&header, dead.body.data(), sizeof header);
    EXPECT_EQ(header.Reason, MQRCCF_MD_FORMAT_ERROR);
    EXPECT_EQ(text(header.DestQName), commandQueue);
    EXPECT_EQ(dead.body.substr(sizeof header), "hello");
}

TEST_F(CommandServer, ReplyThatStraysIntoTheCommandQueueIsNotAnswered)
{
    useDeadLetterQueue();
    send(ping(), requestMd(commandQueue));
    EXPECT_EQ(depth(std::string(commandQueue)), 0);
    const Got dead = nextDeadLetter();
    ASSERT_EQ(dead.codes, ok);
    MQDLH header;
    std::memcpy(&header, dead.body.data(), sizeof header);
    EXPECT_EQ(header.Reason, MQRC_MSG_TYPE_ERROR);
    EXPECT_EQ(nextDeadLetter().codes, failed(MQRC_NO_MSG_AVAILABLE));
}

TEST_F(CommandServer, WithoutDeadLetterQueueNothingLoopsOrStays)
{
    send(ping(), requestMd(commandQueue));
    ASSERT_EQ(put(hconn, commands, "hello"), ok);
    EXPECT_EQ(depth(std::string(commandQueue)), 0);
}

TEST_F(CommandServer, ReplyThatCannotBePutGoesToTheDeadLetterQueue)
{
    useDeadLetterQueue();
    send(onQueue(MQCMD_CREATE_Q, "NEW.QUEUE"), requestMd("NO.SUCH.QUEUE"));
    const Got dead = nextDeadLetter();
    ASSERT_EQ(dead.codes, ok);
    MQDLH header;
    std::memcpy(&header, dead.body.data(), sizeof header);
    EXPECT_EQ(header.Reason, MQRC_UNKNOWN_OBJECT_NAME);
    EXPECT_EQ(text(header.DestQName), "NO.SUCH.QUEUE");
    EXPECT_EQ(text(header.Format), "MQADMIN");
    EXPECT_EQ(headerIn(dead.body.substr(sizeof header)).Reason, MQRC_NONE);
    EXPECT_EQ(depth("NEW.QUEUE"), 0) << "the command was run";
}

TEST_F(CommandServer, RequestsWaitWhileTheQueueIsInhibited)
{
    alterQueue(std::string(commandQueue), {{MQIA_INHIBIT_GET, MQQA_GET_INHIBITED}});
    send(onQueue(MQCMD_CREATE_Q, "FIRST"));
    send(onQueue(MQCMD_CHANGE_Q, "FIRST"));
    EXPECT_EQ(reasons(), std::vector<MQLONG>{});
    alterQueue(std::string(commandQueue), {{MQIA_INHIBIT_GET, MQQA_GET_ALLOWED}});
    send(ping());
    EXPECT_THAT(reasons(), ElementsAre(MQRC_NONE, MQRC_NONE, MQRC_NONE)) << "in their order";
}

TEST_F(CommandServer, RequestsWaitWhileTheQueueManagerQuiesces)
{
    endQuiesce();
    MQMD md = requestMd();
    md.Persistence = MQPER_PERSISTENT;
    send(ping(), md);
    EXPECT_EQ(reasons(), std::vector<MQLONG>{});
    ASSERT_EQ(disconnect(hconn), ok);
    start();
    hconn = connect();
    replies = open(hconn, "REPLY", MQOO_INPUT_SHARED);
    EXPECT_EQ(reasons(), done);
}

TEST_F(CommandServer, DeletedCommandQueueIsNoMatter)
{
    ASSERT_EQ(close(hconn, commands), ok);
    deleteQueue(std::string(commandQueue));
    EXPECT_EQ(depth("REPLY"), 0);
    defineQueue(std::string(commandQueue));
    MQHCONN other = connect();
    MQHOBJ queue = open(other, commandQueue, MQOO_OUTPUT);
    ASSERT_EQ(put(other, queue, ping(), requestMd()), ok);
    EXPECT_EQ(reasons(), done);
    disconnect(other);
}

// ---- Several processes, any of which may be killed ----

store::Step killedAt;

// Runs a program in a process of its own, which may be killed when it reaches the step. Its exit code, or minus the
// signal.
int runProgram(const std::function<void(MQHCONN)> &program, std::optional<store::Step> step = std::nullopt)
{
    const pid_t pid = fork();
    if (pid == 0) {
        MQHCONN hconn = QueueManagerTest::connect();
        if (step) {
            killedAt = *step;
            store::seams.reached = [](store::Step reached) {
                if (reached == killedAt) kill(getpid(), SIGKILL);
            };
        }
        program(hconn);
        MQLONG compCode = MQCC_OK;
        MQLONG reason = MQRC_NONE;
        MQDISC(&hconn, &compCode, &reason);
        _exit(::testing::Test::HasFailure() ? 1 : 0);
    }
    int status = 0;
    waitpid(pid, &status, 0);
    return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

void sendFrom(MQHCONN hconn, const std::string &message, MQLONG persistence)
{
    MQHOBJ queue = QueueManagerTest::open(hconn, commandQueue, MQOO_OUTPUT);
    MQMD md = requestMd();
    md.Persistence = persistence;
    EXPECT_EQ(QueueManagerTest::put(hconn, queue, message, md), ok);
}

TEST_F(CommandServer, EffectThatARequestHadBeforeARestartIsAnsweredWithSuccess)
{
    const auto create = [](MQHCONN other) { sendFrom(other, onQueue(MQCMD_CREATE_Q, "NEW.QUEUE"), MQPER_PERSISTENT); };
    ASSERT_EQ(runProgram(create, store::Step::RequestRun), -SIGKILL);
    restart(); // before anybody has found the killed server
    hconn = connect();
    replies = open(hconn, "REPLY", MQOO_INPUT_SHARED);
    EXPECT_EQ(reasons(), done);
    EXPECT_EQ(depth("NEW.QUEUE"), 0);
}

class KilledServer : public CommandServer, public ::testing::WithParamInterface<MQLONG> {
protected:
    void killAt(store::Step step, const std::string &message)
    {
        ASSERT_EQ(runProgram([&](MQHCONN other) { sendFrom(other, message, GetParam()); }, step), -SIGKILL);
    }
    // Programs that connect, find the request and are killed when they have run it.
    static void killWhileConnecting(int programs)
    {
        for (int i = 0; i < programs; ++i) {
            const pid_t pid = fork();
            if (pid == 0) {
                store::seams.reached = [](store::Step reached) {
                    if (reached == store::Step::RequestRun) kill(getpid(), SIGKILL);
                };
                connect();
                _exit(0);
            }
            int status = 0;
            waitpid(pid, &status, 0);
            EXPECT_TRUE(WIFSIGNALED(status));
        }
    }
    // Any call of another program.
    void comeBy() { depth("Q1"); }
};

TEST_P(KilledServer, BeforeTheEffectTheNextProgramRunsIt)
{
    killAt(store::Step::RequestTaken, onQueue(MQCMD_CREATE_Q, "NEW.QUEUE"));
    comeBy();
    EXPECT_EQ(reasons(), done);
    EXPECT_EQ(depth("NEW.QUEUE"), 0);
}

TEST_P(KilledServer, AfterTheEffectTheCommandIsAnsweredOnceWithSuccess)
{
    killAt(store::Step::RequestRun, onQueue(MQCMD_CREATE_Q, "NEW.QUEUE"));
    comeBy();
    EXPECT_EQ(reasons(), done);
    killAt(store::Step::RequestRun, onQueue(MQCMD_CHANGE_Q, "NEW.QUEUE"));
    comeBy();
    EXPECT_EQ(reasons(), done);
    killAt(store::Step::RequestRun, onQueue(MQCMD_DELETE_Q, "NEW.QUEUE"));
    comeBy();
    EXPECT_EQ(reasons(), done);
    EXPECT_EQ(openCodes(hconn, "NEW.QUEUE", MQOO_OUTPUT), failed(MQRC_UNKNOWN_OBJECT_NAME));
}

TEST_P(KilledServer, StatisticsThatItHadResetAreToldByTheNext)
{
    MQHOBJ q1 = open(hconn, "Q1", MQOO_OUTPUT);
    ASSERT_EQ(put(hconn, q1, "one"), ok);
    ASSERT_EQ(put(hconn, q1, "two"), ok);
    const auto counted = [this] {
        const Got got = get(hconn, replies);
        for (const command::PcfParameter &parameter : parametersIn(got.body))
            if (parameter.id == MQIA_MSG_ENQ_COUNT) return static_cast<int>(parameter.numbers.front());
        return -1;
    };
    killAt(store::Step::RequestRun, onQueue(MQCMD_RESET_Q_STATS, "Q1"));
    killWhileConnecting(1);
    comeBy();
    EXPECT_EQ(counted(), 2);
    send(onQueue(MQCMD_RESET_Q_STATS, "Q1"));
    EXPECT_EQ(counted(), 0);
}

TEST_P(KilledServer, AfterTheCommitTheReplyIsThereOnce)
{
    killAt(store::Step::RequestAnswered, onQueue(MQCMD_CREATE_Q, "NEW.QUEUE"));
    comeBy();
    EXPECT_EQ(reasons(), done);
}

TEST_P(KilledServer, SeveralTimesOverTheRequestIsStillAnsweredOnce)
{
    killAt(store::Step::RequestRun, onQueue(MQCMD_CREATE_Q, "NEW.QUEUE"));
    killWhileConnecting(2);
    comeBy();
    EXPECT_EQ(reasons(), done);
}

TEST_P(KilledServer, ThatKillsItsServersEndsOnTheDeadLetterQueue)
{
    useDeadLetterQueue();
    killAt(store::Step::RequestTaken, ping());
    killWhileConnecting(5);
    comeBy();
    const Got dead = nextDeadLetter();
    ASSERT_EQ(dead.codes, ok);
    MQDLH header;
    std::memcpy(&header, dead.body.data(), sizeof header);
    EXPECT_EQ(header.Reason, MQRC_BACKOUT_THRESHOLD_REACHED);
    EXPECT_EQ(reasons(), std::vector<MQLONG>{});
}

TEST_P(KilledServer, IsReplacedByAProgramThatWaitsForTheReply)
{
    killAt(store::Step::RequestTaken, ping());
    MQMD md = {MQMD_DEFAULT};
    MQGMO gmo = gmoWith(MQGMO_WAIT | MQGMO_NO_SYNCPOINT);
    gmo.WaitInterval = 15000;
    EXPECT_EQ(get(hconn, replies, md, gmo).codes, ok);
}

TEST_P(KilledServer, WhileAnotherProgramWaitsForTheReplyIsReplacedByIt)
{
    // It tells when it has the request, and sleeps until it is killed.
    static int taken[2];
    ASSERT_EQ(pipe(taken), 0);
    const pid_t server = fork();
    if (server == 0) {
        MQHCONN other = connect();
        store::seams.reached = [](store::Step reached) {
            if (reached != store::Step::RequestTaken) return;
            EXPECT_EQ(write(taken[1], "x", 1), 1);
            for (;;)
                pause();
        };
        sendFrom(other, ping(), GetParam());
        _exit(1);
    }
    char mark = 0;
    ASSERT_EQ(read(taken[0], &mark, 1), 1);
    std::thread killer([server] {
        usleep(300000); // so that the get below has begun to wait, as a rule
        kill(server, SIGKILL);
    });
    MQGMO gmo = gmoWith(MQGMO_WAIT | MQGMO_NO_SYNCPOINT);
    gmo.WaitInterval = 15000;
    EXPECT_EQ(get(hconn, replies, {MQMD_DEFAULT}, gmo).codes, ok);
    killer.join();
    waitpid(server, nullptr, 0);
    ::close(taken[0]);
    ::close(taken[1]);
}

// The getter sleeps before there is any request, and nobody makes another call.
TEST_P(KilledServer, IsReplacedByAGetterThatHasSleptAllTheTime)
{
    std::vector<store::Step> steps = {store::Step::RequestTaken, store::Step::RequestRun};
    // Visible, and not yet taken.
    if (GetParam() == MQPER_PERSISTENT) steps.push_back(store::Step::UnitFlipped);
    for (const store::Step step : steps) {
        int go[2];
        ASSERT_EQ(pipe(go), 0);
        const pid_t sender = fork();
        if (sender == 0) {
            char mark = 0;
            EXPECT_EQ(read(go[0], &mark, 1), 1);
            MQHCONN other = connect();
            static store::Step last;
            last = step;
            store::seams.reached = [](store::Step reached) {
                if (reached == last) kill(getpid(), SIGKILL);
            };
            sendFrom(other, ping(), GetParam());
            _exit(1);
        }
        std::thread killer([&] {
            usleep(300000); // so that the get below sleeps, as a rule
            EXPECT_EQ(write(go[1], "x", 1), 1);
        });
        MQGMO gmo = gmoWith(MQGMO_WAIT | MQGMO_NO_SYNCPOINT);
        gmo.WaitInterval = 15000;
        EXPECT_EQ(get(hconn, replies, {MQMD_DEFAULT}, gmo).codes, ok);
        killer.join();
        int status = 0;
        waitpid(sender, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status));
        ::close(go[0]);
        ::close(go[1]);
    }
}

INSTANTIATE_TEST_SUITE_P(Persistence, KilledServer, ::testing::Values(MQPER_NOT_PERSISTENT, MQPER_PERSISTENT));

TEST_F(CommandServer, RequestsOfManyProcessesAreEachServedOnce)
{
    constexpr int processes = 4;
    constexpr int requests = 100;
    std::vector<pid_t> children;
    for (int process = 0; process < processes; ++process) {
        const pid_t pid = fork();
        if (pid == 0) {
            MQHCONN other = connect();
            MQHOBJ queue = open(other, commandQueue, MQOO_OUTPUT);
            for (int i = 0; i < requests; ++i) {
                MQMD md = requestMd();
                setBytes(md.MsgId, std::to_string(process) + "/" + std::to_string(i));
                MQPMO pmo = pmoWith(i % 2 == 0 ? MQPMO_SYNCPOINT : MQPMO_NO_SYNCPOINT);
                put(other, queue, ping(), md, pmo);
                if (i % 2 == 0) commit(other);
            }
            disconnect(other);
            _exit(0);
        }
        children.push_back(pid);
    }
    for (const pid_t child : children)
        waitpid(child, nullptr, 0);

    std::map<std::string, int> answered;
    for (Got got = get(hconn, replies); got.codes == ok; got = get(hconn, replies))
        ++answered[bytes(got.md.CorrelId)];
    EXPECT_EQ(answered.size(), std::size_t{processes * requests});
    for (const auto &[request, times] : answered)
        EXPECT_EQ(times, 1) << request;
}

TEST_F(CommandServer, ThreadsOfOneProcessServeEachOther)
{
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back([] {
            MQHCONN other = connect();
            MQHOBJ queue = open(other, commandQueue, MQOO_OUTPUT);
            for (int i = 0; i < 50; ++i)
                EXPECT_EQ(put(other, queue, ping(), requestMd()), ok);
            disconnect(other);
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(reasons(), std::vector<MQLONG>(200, MQRC_NONE));
}

} // namespace
} // namespace mqrig::qmgr::testing
