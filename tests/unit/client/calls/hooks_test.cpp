// What stands around every MQI call: the stop before it, its trace lines, the yield after it.
#include "calls_test.h"

#include "common.h"
#include "mqicalls.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <termios.h>
#include <thread>
#include <unistd.h>

namespace {

// ---- Names that can be stopped before ----

class StoppableNameTest : public testing::TestWithParam<const char *> {};

TEST_P(StoppableNameTest, IsAccepted)
{
    EXPECT_EQ(checkAPIname(GetParam()), 0);
}

INSTANTIATE_TEST_SUITE_P(Each, StoppableNameTest,
                         testing::Values("MQCONNX", "MQCONN", "MQOPEN", "MQPUT", "MQGET", "MQCLOSE", "MQCMIT", "MQBACK",
                                         "MQDISC", "MQINQ", "MQSET", "MQCRTMH", "MQDLTMH", "MQSETMP", "MQCB",
                                         "BEGINTRANSACTION", "ENDTRANSACTION", "ABORTTRANSACTION", "RESUMETRANSACTION",
                                         "PUT_BEGINTRANSACTION", "PUT_ENDTRANSACTION", "PUT_ABORTTRANSACTION",
                                         "PUT_RESUMETRANSACTION"));

TEST(StoppableNamesTest, Mqput1IsRefused)
{
    EXPECT_EQ(checkAPIname("MQPUT1"), 1);
}
TEST(StoppableNamesTest, MqinqmpIsRefused)
{
    EXPECT_EQ(checkAPIname("MQINQMP"), 1);
}
TEST(StoppableNamesTest, LowerCaseIsRefused)
{
    EXPECT_EQ(checkAPIname("mqput"), 1);
}
TEST(StoppableNamesTest, EmptyNameIsRefused)
{
    EXPECT_EQ(checkAPIname(""), 1);
}

// ---- Trace ----

class HooksTest : public CallsTest {
protected:
    /// Standard input for the length of a test.
    void use_as_input(int descriptor)
    {
        savedInput_ = dup(STDIN_FILENO);
        dup2(descriptor, STDIN_FILENO);
    }
    ~HooksTest() override
    {
        if (savedInput_ < 0) return;
        dup2(savedInput_, STDIN_FILENO);
        ::close(savedInput_);
    }
    Written stop_before(const char *name)
    {
        return written_by([&, name] { stopUntilHitKey(&params, name); });
    }

private:
    int savedInput_ = -1;
};

TEST_F(HooksTest, TraceWritesNothingWithoutTheOption)
{
    EXPECT_EQ(written_by([&] { api_trace_dsp(&params, "MQCMIT start hcon:%d\n", 7); }).out, "");
}

TEST_F(HooksTest, TraceWritesTheTextBehindATimeStamp)
{
    params.ApiTrace = 1;
    EXPECT_EQ(written_by([&] { api_trace_dsp(&params, "MQCMIT start hcon:%d\n", 7); }).out,
              "[now] MQCMIT start hcon:7\n");
}

TEST_F(HooksTest, TraceOfAThreadShowsItsId)
{
    params.ApiTrace = 1;
    params.ThreadCount = 1;
    params.ThreadId = 4711;
    EXPECT_EQ(written_by([&] { api_trace_dsp(&params, "MQCMIT start hcon:%d\n", 7); }).out,
              "[now tid=4711] MQCMIT start hcon:7\n");
}

TEST_F(HooksTest, TraceStaysOnStandardOutputWithRaw)
{
    params.ApiTrace = 1;
    params.OutputForm = OutputFormRaw;
    EXPECT_EQ(written_by([&] { api_trace_dsp(&params, "MQCMIT start hcon:%d\n", 7); }).out,
              "[now] MQCMIT start hcon:7\n");
}

// ---- Yield ----

TEST_F(HooksTest, YieldWithoutThreadsDoesNothing)
{
    params.YieldAfterCall = 1;
    EXPECT_EQ(_thread_yield(&params), 0);
    EXPECT_EQ(intercepted.yields, 0);
}

TEST_F(HooksTest, ThreadsDoNotYieldWithoutTheOption)
{
    params.ThreadCount = 2;
    EXPECT_EQ(_thread_yield(&params), 0);
    EXPECT_EQ(intercepted.yields, 0);
}

TEST_F(HooksTest, ThreadsThatShareAConnectionYield)
{
    params.YieldAfterCall = 1;
    params.ThreadCount = 2;
    EXPECT_EQ(_thread_yield(&params), 0);
    EXPECT_EQ(intercepted.yields, 1);
}

TEST_F(HooksTest, ThreadsWithTheirOwnConnectionsYield)
{
    params.YieldAfterCall = 1;
    params.InnerConnThreadCount = 2;
    EXPECT_EQ(_thread_yield(&params), 0);
    EXPECT_EQ(intercepted.yields, 1);
}

TEST_F(HooksTest, YieldThatFailsIsReported)
{
    params.YieldAfterCall = 1;
    params.ThreadCount = 2;
    intercepted.yieldError = EPERM;
    const Written written = this->written([&] { return _thread_yield(&params); });
    EXPECT_EQ(written.status, 1);
    EXPECT_EQ(written.err, "sched_yield(): Operation not permitted\n_thread_yield,#,1: sched_yield() failed.\n");
}

TEST_F(HooksTest, YieldThatFailsDoesNotFailTheCall)
{
    params.YieldAfterCall = 1;
    params.ThreadCount = 2;
    intercepted.yieldError = EPERM;
    EXPECT_EQ(written([&] { return MQSeriesCommit(hconn, &params); }).status, 0);
}

TEST_F(HooksTest, YieldComesBetweenTheCallAndTheStopTrace)
{
    params.YieldAfterCall = 1;
    params.ThreadCount = 2;
    int yieldsBeforeCall = -1;
    fakeMqi.during["MQCMIT"] = [&] { yieldsBeforeCall = intercepted.yields; };
    written([&] { return MQSeriesCommit(hconn, &params); });
    EXPECT_EQ(yieldsBeforeCall, 0);
    EXPECT_EQ(intercepted.yields, 1);
}

// ---- Stop before a call ----

TEST_F(HooksTest, AnotherCallIsNotStoppedBefore)
{
    params.StopApiName = "MQPUT";
    EXPECT_EQ(stop_before("MQPUT1").out, "");
}

TEST_F(HooksTest, NothingIsStoppedBeforeWithoutTheOption)
{
    EXPECT_EQ(stop_before("MQPUT").out, "");
}

TEST_F(HooksTest, InputThatIsNoTerminalIsReportedAndNotWaitedFor)
{
    const int null = open("/dev/null", O_RDONLY);
    use_as_input(null);
    params.StopApiName = "MQPUT";
    const Written written = stop_before("MQPUT");
    EXPECT_EQ(written.out, "stop before calling MQPUT().\nHit Any Key!!!\n");
    EXPECT_EQ(written.err, "tcgetattr(): Inappropriate ioctl for device\n"
                           "stopUntilHitKey,#,25: tcgetattr() failed. return code=-1\n");
    ::close(null);
}

TEST_F(HooksTest, StopHappensBeforeTheCall)
{
    const int null = open("/dev/null", O_RDONLY);
    use_as_input(null);
    params.StopApiName = "MQCMIT";
    const Written written = this->written([&] { return MQSeriesCommit(hconn, &params); });
    EXPECT_EQ(written.out, "stop before calling MQCMIT().\nHit Any Key!!!\n"
                           "MQCMIT success : CompCd=00 ReasonCd=00\n");
    ::close(null);
}

TEST_F(HooksTest, StopBeforeDisconnectHappensThoughTheDisconnectIsSkipped)
{
    const int null = open("/dev/null", O_RDONLY);
    use_as_input(null);
    params.StopApiName = "MQDISC";
    params.SkipDisc = 1;
    MQHCONN connection = FakeHconn;
    const Written written = this->written([&] { return MQSeriesDisconn(&connection, &params); });
    EXPECT_EQ(written.out, "stop before calling MQDISC().\nHit Any Key!!!\n");
    EXPECT_EQ(fakeMqi.count("MQDISC"), 0);
    ::close(null);
}

TEST_F(HooksTest, LockThatCannotBeHadIsSaidAndNothingStops)
{
    const UnavailableLock lock(params);
    params.StopApiName = "MQPUT";
    EXPECT_EQ(stop_before("MQPUT").out, "lock error!\n");
}

TEST_F(HooksTest, TraceThatCannotHaveTheLockWritesNothing)
{
    const UnavailableLock lock(params);
    params.ApiTrace = 1;
    EXPECT_EQ(written_by([&] { api_trace_dsp(&params, "MQCMIT start hcon:%d\n", 7); }).out, "");
}

TEST_F(HooksTest, WithoutTraceNoLockIsTaken)
{
    const UnavailableLock lock(params);
    EXPECT_EQ(written_by([&] { api_trace_dsp(&params, "MQCMIT start hcon:%d\n", 7); }).err, "");
}

/// A terminal of our own as standard input.
class TerminalTest : public HooksTest {
protected:
    TerminalTest()
    {
        master_ = posix_openpt(O_RDWR | O_NOCTTY);
        grantpt(master_);
        unlockpt(master_);
        terminal_ = open(ptsname(master_), O_RDWR | O_NOCTTY);
        use_as_input(terminal_);
    }
    ~TerminalTest() override
    {
        ::close(terminal_);
        ::close(master_);
    }
    termios attributes() const
    {
        termios now{};
        tcgetattr(terminal_, &now);
        return now;
    }
    /// Hits a key once the program waits for it, and answers the attributes in force while it waited.
    termios hit_key_while(const std::function<void()> &work) const
    {
        termios waiting{};
        std::thread user([&] {
            do {
                std::this_thread::yield();
                waiting = attributes();
            } while ((waiting.c_lflag & ICANON) != 0);
            EXPECT_EQ(write(master_, "x", 1), 1);
        });
        work();
        user.join();
        return waiting;
    }

    int master_ = -1;
    int terminal_ = -1;
};

TEST_F(TerminalTest, WaitsForOneKeyAndRestoresTheTerminal)
{
    const termios before = attributes();
    params.StopApiName = "MQPUT";
    Written written;
    hit_key_while([&] { written = stop_before("MQPUT"); });
    EXPECT_EQ(written.out, "stop before calling MQPUT().\nHit Any Key!!!\n");
    EXPECT_EQ(written.err, "");
    EXPECT_EQ(attributes().c_lflag, before.c_lflag);
    EXPECT_EQ(attributes().c_iflag, before.c_iflag);
}

TEST_F(TerminalTest, KeyIsNotEchoedAndInterruptKeyStaysInForce)
{
    params.StopApiName = "MQPUT";
    const termios waiting = hit_key_while([&] { stop_before("MQPUT"); });
    EXPECT_EQ(waiting.c_lflag & (ICANON | ECHO | ECHOE | ECHOK | ECHONL | IEXTEN), 0U);
    EXPECT_EQ(waiting.c_iflag & (BRKINT | ISTRIP | IXON), 0U);
    EXPECT_NE(waiting.c_lflag & ISIG, 0U);
    EXPECT_EQ(waiting.c_cc[VMIN], 1);
    EXPECT_EQ(waiting.c_cc[VTIME], 0);
}

TEST_F(TerminalTest, StopsEachTime)
{
    params.StopApiName = "MQPUT";
    const auto put = [&] { return MQSeriesPut(hconn, FakeHobj, &params, "abc", 3); };
    for (int i = 0; i < 3; ++i) {
        Written written;
        hit_key_while([&] { written = this->written(put); });
        EXPECT_EQ(written.out, "stop before calling MQPUT().\nHit Any Key!!!\n");
    }
    EXPECT_EQ(fakeMqi.count("MQPUT"), 3);
}

} // namespace
