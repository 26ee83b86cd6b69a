// Several processes on one queue manager.
#include "fixture.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <memory>
#include <set>
#include <thread>

#include "qmgr/store/queue_managers.h"

namespace mqrig::qmgr::testing {
namespace {

using Lines = std::vector<std::string>;

// A running mqi_program (see there for its steps).
class Program {
public:
    explicit Program(Lines steps)
    {
        int in[2];
        int out[2];
        if (pipe2(in, O_CLOEXEC) != 0 || pipe2(out, O_CLOEXEC) != 0) throw std::runtime_error("pipe");
        std::vector<char *> arguments;
        std::string path = MQI_PROGRAM;
        arguments.push_back(path.data());
        for (std::string &step : steps)
            arguments.push_back(step.data());
        arguments.push_back(nullptr);
        pid_ = fork();
        if (pid_ == 0) {
            dup2(in[0], STDIN_FILENO);
            dup2(out[1], STDOUT_FILENO);
            execv(path.c_str(), arguments.data());
            _exit(127);
        }
        ::close(in[0]);
        ::close(out[1]);
        input_ = fdopen(in[1], "w");
        output_ = fdopen(out[0], "r");
    }
    ~Program()
    {
        if (pid_ > 0) kill();
        std::fclose(input_);
        std::fclose(output_);
    }
    Program(const Program &) = delete;
    Program &operator=(const Program &) = delete;

    // The next line that it writes, empty at its end.
    std::string line()
    {
        std::array<char, 8192> text;
        if (std::fgets(text.data(), text.size(), output_) == nullptr) return {};
        std::string read = text.data();
        if (!read.empty() && read.back() == '\n') read.pop_back();
        return read;
    }
    void tell()
    {
        std::fputs("go on\n", input_);
        std::fflush(input_);
    }
    void kill()
    {
        ::kill(pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
        pid_ = -1;
    }
    // Its remaining lines.
    Lines rest()
    {
        Lines lines;
        for (std::string text = line(); !text.empty(); text = line())
            lines.push_back(text);
        int status = 0;
        waitpid(pid_, &status, 0);
        pid_ = -1;
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
        return lines;
    }

private:
    pid_t pid_ = -1;
    FILE *input_ = nullptr;
    FILE *output_ = nullptr;
};

Lines run(Lines steps)
{
    return Program(std::move(steps)).rest();
}

using Processes = QueueManagerTest;

TEST_F(Processes, OnePutsAndAnotherGets)
{
    EXPECT_EQ(run({"connect", "open", "put:hello", "disconnect"}), Lines{});
    EXPECT_EQ(run({"connect", "open", "get", "get", "disconnect"}), (Lines{"got hello", "MQGET 2033"}));
}

TEST_F(Processes, PuttingAndGettingAtOnceLosesAndDoublesNothing)
{
    Program firstGetter({"connect", "open", "drain:3000"});
    Program secondGetter({"connect", "open", "drain:3000"});
    Program firstPutter({"connect", "open", "puts:1000:a"});
    Program secondPutter({"connect", "open", "puts:1000:b"});
    EXPECT_EQ(firstPutter.rest(), Lines{});
    EXPECT_EQ(secondPutter.rest(), Lines{});
    std::multiset<std::string> got;
    for (Program *getter : {&firstGetter, &secondGetter})
        for (const std::string &line : getter->rest())
            if (line != "MQGET 2033") got.insert(line);
    std::multiset<std::string> put;
    for (int i = 0; i < 1000; ++i)
        for (const char *name : {"got a", "got b"})
            put.insert(name + std::to_string(i));
    EXPECT_TRUE(got == put) << got.size();
}

TEST_F(Processes, KilledInsideAUnitOfWorkItIsAsIfItHadBackedOut)
{
    MQHCONN hconn = connect();
    const MQHOBJ q1 = open(hconn, "Q1", OpenQueueTest::everything);
    put(hconn, q1, "was there");
    put(hconn, q1, "was there and is persistent", persistentMd());
    Program victim({"connect", "open", "unitput:never committed", "unitget", "unitget", "say:ready", "hear"});
    EXPECT_EQ(victim.line(), "got was there");
    EXPECT_EQ(victim.line(), "got was there and is persistent");
    EXPECT_EQ(victim.line(), "ready");
    EXPECT_EQ(get(hconn, q1).codes, failed(MQRC_NO_MSG_AVAILABLE));
    victim.kill();
    EXPECT_EQ(drain(hconn, q1), (Lines{"was there", "was there and is persistent"}));
    EXPECT_EQ(depth("Q1"), 0);
}

TEST_F(Processes, EndedWithoutDisconnectItIsBackedOut)
{
    MQHCONN hconn = connect();
    const MQHOBJ q1 = open(hconn, "Q1", OpenQueueTest::everything);
    put(hconn, q1, "was there");
    EXPECT_EQ(run({"connect", "open", "unitput:never committed", "unitget", "exit"}), Lines{"got was there"});
    EXPECT_EQ(drain(hconn, q1), Lines{"was there"});
}

TEST_F(Processes, ReturningFromMainWithoutDisconnectBacksOutToo)
{
    EXPECT_EQ(run({"connect", "open", "unitput:never committed"}), Lines{});
    EXPECT_EQ(run({"connect", "open", "get"}), Lines{"MQGET 2033"});
}

TEST_F(Processes, ACommitWakesAGetterOfAnotherProcess)
{
    Program getter({"connect", "open", "say:ready", "getwait:15000"});
    EXPECT_EQ(getter.line(), "ready");
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    run({"connect", "open", "unitput:wake up", "commit"});
    EXPECT_EQ(getter.rest(), Lines{"got wake up"});
}

TEST_F(Processes, ASleepingGetterReceivesWhatAKilledProcessHadLocked)
{
    MQHCONN hconn = connect();
    put(hconn, open(hconn, "Q1", MQOO_OUTPUT), "locked");
    Program victim({"connect", "open", "unitget", "hear"});
    EXPECT_EQ(victim.line(), "got locked");
    Program getter({"connect", "open", "say:ready", "getwait:2500"});
    EXPECT_EQ(getter.line(), "ready");
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    victim.kill();
    // Its wait ends two seconds after the kill.
    EXPECT_EQ(getter.rest(), Lines{"got locked"});
}

TEST_F(Processes, PlacesBookedByAKilledProcessAreFreeAgain)
{
    alterQueue("Q1", {{MQIA_MAX_Q_DEPTH, 1}});
    Program victim({"connect", "open", "unitput:booked", "say:ready", "hear"});
    EXPECT_EQ(victim.line(), "ready");
    EXPECT_EQ(depth("Q1"), 1);
    EXPECT_EQ(run({"connect", "open", "put:no room"}), Lines{"MQPUT 2053"});
    victim.kill();
    EXPECT_EQ(run({"connect", "open", "put:room"}), Lines{});
}

TEST_F(Processes, ExclusiveUseHoldsOverProcessesAndEndsWithTheOwner)
{
    Program owner({"connect", "exclusive", "say:ready", "hear"});
    EXPECT_EQ(owner.line(), "ready");
    EXPECT_EQ(run({"connect", "exclusive"}), Lines{"MQOPEN 2042"});
    owner.kill();
    EXPECT_EQ(run({"connect", "exclusive"}), Lines{});
}

TEST_F(Processes, ImmediateEndReachesWaitingProcesses)
{
    Program getter({"connect", "open", "say:ready", "getwait:15000", "commit"});
    EXPECT_EQ(getter.line(), "ready");
    endImmediate();
    EXPECT_EQ(getter.rest(), (Lines{"MQGET 2162", "MQCMIT 2009"}));
}

TEST_F(Processes, QuiescingReachesWaitingProcessesThatAskedForIt)
{
    Program asked({"connect", "open", "say:ready", "getquiesce:15000", "disconnect"});
    Program waits({"connect", "open", "say:ready", "getwait:15000", "disconnect"});
    EXPECT_EQ(asked.line(), "ready");
    EXPECT_EQ(waits.line(), "ready");
    MQHCONN hconn = connect();
    const MQHOBJ q1 = open(hconn, "Q1", MQOO_OUTPUT);
    endQuiesce();
    EXPECT_EQ(asked.rest(), Lines{"MQGET 2161"});
    EXPECT_EQ(put(hconn, q1, "still served"), ok);
    EXPECT_EQ(waits.rest(), Lines{"got still served"});
    EXPECT_EQ(disconnect(hconn), ok);
    EXPECT_EQ(store::stateOf(storeFolder(), "QM1").state, store::State::Ended);
}

TEST_F(Processes, ProcessesThatFollowTheQueueManagerGoOnInItsNextLife)
{
    Program getter({"follow", "open", "say:ready", "getwait:15000", "disconnect"});
    EXPECT_EQ(getter.line(), "ready");
    endToReconnect();
    start();
    run({"connect", "open", "put:after the restart"});
    EXPECT_EQ(getter.rest(), Lines{"got after the restart"});
}

TEST_F(Processes, KilledWhileItLooksForTheQueueManagerItLeavesNothing)
{
    Program victim({"follow", "exclusive", "say:ready", "getwait:15000"});
    EXPECT_EQ(victim.line(), "ready");
    endToReconnect();
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    victim.kill();
    start();
    EXPECT_EQ(run({"connect", "exclusive"}), Lines{});
    endQuiesce();
    EXPECT_EQ(store::stateOf(storeFolder(), "QM1").state, store::State::Ended);
}

TEST_F(Processes, PersistentMessagesOutliveARestartWhoeverPutThem)
{
    run({"connect", "open", "persistent:stays", "put:goes"});
    restart();
    EXPECT_EQ(run({"connect", "open", "get", "get"}), (Lines{"got stays", "MQGET 2033"}));
}

TEST_F(Processes, AQuiescingQueueManagerEndsWhenItsLastUserIsKilled)
{
    Program victim({"connect", "say:ready", "hear"});
    EXPECT_EQ(victim.line(), "ready");
    endQuiesce();
    MQHCONN hconn = MQHC_UNUSABLE_HCONN;
    EXPECT_EQ(tryConnect("QM1", hconn), failed(MQRC_Q_MGR_QUIESCING));
    victim.kill();
    EXPECT_EQ(tryConnect("QM1", hconn), failed(MQRC_Q_MGR_NOT_AVAILABLE));
}

// ---- fork ----

// Runs in a forked child; true when it answered true.
bool inChild(const std::function<bool()> &body)
{
    const pid_t child = fork();
    if (child == 0) _exit(body() ? 0 : 1);
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

using Fork = OpenQueueTest;

TEST_F(Fork, HandlesOfTheParentAre2018InTheChild)
{
    EXPECT_TRUE(inChild([this] {
        MQHCONN handle = hconn;
        return commit(hconn) == failed(MQRC_HCONN_ERROR) && put(hconn, q1, "x") == failed(MQRC_HCONN_ERROR) &&
               disconnect(handle) == failed(MQRC_HCONN_ERROR);
    }));
    EXPECT_EQ(put(hconn, q1, "the parent goes on"), ok);
}

TEST_F(Fork, TheChildMayConnectAnew)
{
    EXPECT_TRUE(inChild([this] {
        MQHCONN mine = MQHC_UNUSABLE_HCONN;
        if (tryConnect("QM1", mine) != ok) return false;
        MQHOBJ output = MQHO_UNUSABLE_HOBJ;
        return tryOpen(mine, "Q1", MQOO_OUTPUT, output) == ok && put(mine, output, "from the child") == ok &&
               commit(hconn) == failed(MQRC_HCONN_ERROR) && disconnect(mine) == ok;
    }));
    EXPECT_EQ(get(hconn, q1).body, "from the child");
}

TEST_F(Fork, TheEndOfTheChildLeavesTheParentsUnitOfWork)
{
    put(hconn, q1, "1", {MQMD_DEFAULT}, pmoWith(MQPMO_SYNCPOINT));
    EXPECT_TRUE(inChild([] { return true; }));
    const MQHCONN other = connect();
    EXPECT_EQ(get(other, open(other, "Q1", MQOO_INPUT_SHARED)).codes, failed(MQRC_NO_MSG_AVAILABLE));
    EXPECT_EQ(commit(hconn), ok);
    EXPECT_EQ(get(hconn, q1).body, "1");
}

// ---- Browsing ----

std::string with(const char *step, MQLONG options)
{
    return std::string(step) + ":" + std::to_string(options);
}

TEST_F(Processes, MessageLockedByABrowseComesBackWhenItsProcessIsKilled)
{
    const MQHCONN hconn = connect();
    const MQHOBJ q1 = open(hconn, "Q1", MQOO_INPUT_SHARED | MQOO_OUTPUT);
    put(hconn, q1, "locked", persistentMd());
    Program other({"connect", "open", with("getwith", MQGMO_BROWSE_FIRST | MQGMO_LOCK), "say:here", "hear"});
    EXPECT_EQ(other.line(), "got locked");
    EXPECT_EQ(other.line(), "here");
    EXPECT_EQ(get(hconn, q1).codes, failed(MQRC_NO_MSG_AVAILABLE));
    other.kill();
    const Got got = get(hconn, q1);
    EXPECT_EQ(got.body, "locked");
    EXPECT_EQ(got.md.BackoutCount, 0);
}

TEST_F(Processes, SleepingGetterMeetsTheMessageOfAKilledBrowser)
{
    const MQHCONN hconn = connect();
    const MQHOBJ q1 = open(hconn, "Q1", MQOO_INPUT_SHARED | MQOO_OUTPUT);
    put(hconn, q1, "locked");
    Program other({"connect", "open", with("getwith", MQGMO_BROWSE_FIRST | MQGMO_LOCK), "say:here", "hear"});
    EXPECT_EQ(other.line(), "got locked");
    EXPECT_EQ(other.line(), "here");
    std::thread killer([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        other.kill();
    });
    MQGMO gmo = gmoWith(MQGMO_WAIT);
    gmo.WaitInterval = 10000;
    EXPECT_EQ(get(hconn, q1, version2Md(), gmo).body, "locked");
    killer.join();
}

TEST_F(Processes, BrowseTogetherAndSeeEachMessageOnce)
{
    const MQHCONN hconn = connect();
    const MQHOBJ q1 = open(hconn, "Q1", MQOO_OUTPUT);
    for (const char *body : {"1", "2", "3"})
        put(hconn, q1, body);
    const std::string together = with("openwith", MQOO_BROWSE | MQOO_CO_OP);
    const std::string browse = with("getwith", MQGMO_BROWSE_CO_OP);
    Program first({"connect", together, browse, "hear", browse});
    EXPECT_EQ(first.line(), "got 1");
    Program second({"connect", together, browse, "say:done", "hear"});
    EXPECT_EQ(second.line(), "got 2");
    EXPECT_EQ(second.line(), "done");
    second.kill(); // its mark stays as long as others browse together
    first.tell();
    EXPECT_EQ(first.rest(), Lines{"got 3"});
    // Nobody browses together any more: the marks are gone.
    EXPECT_EQ(run({"connect", together, browse}), Lines{"got 1"});
}

} // namespace
} // namespace mqrig::qmgr::testing
