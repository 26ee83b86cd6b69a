// Report lines, error reports, time stamps, waiting.

#include "common.h"

#include "captured.h"
#include "wrapped_calls.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>

#include <string>
#include <unistd.h>

using testing::MatchesRegex;

namespace {

class Console : public testing::Test {
protected:
    ~Console() override { wrapped = {}; }

    /// The fixed time, in UTC so that the stamp is known.
    void setClock(std::time_t seconds, long nanoseconds)
    {
        setenv("TZ", "UTC", 1);
        tzset();
        wrapped.now = timespec{seconds, nanoseconds};
    }

    RunParams params = DEFAULT_RUN_PARAMS;
};

constexpr std::time_t April22 = 1650632707; // 2022-04-22 13:05:07 UTC

} // namespace

TEST_F(Console, ReportLinesGoToStandardOutput)
{
    const Captured written = captured([&] { EXPECT_EQ(printf_t(&params, "%s %d\n", "put", 3), 0); });
    EXPECT_EQ(written.out, "put 3\n");
    EXPECT_EQ(written.err, "");
}

TEST_F(Console, RawMovesReportLinesToStandardError)
{
    params.OutputForm = OutputFormRaw;
    const Captured written = captured([&] { printf_t(&params, "line\n"); });
    EXPECT_EQ(written.out, "");
    EXPECT_EQ(written.err, "line\n");
}

TEST_F(Console, HexLeavesReportLinesOnStandardOutput)
{
    params.OutputForm = OutputFormHex;
    const Captured written = captured([&] { printf_t(&params, "line\n"); });
    EXPECT_EQ(written.out, "line\n");
}

TEST_F(Console, RawLeavesTimeStampsOnStandardOutput)
{
    params.OutputForm = OutputFormRaw;
    setClock(April22, 1);
    const Captured written = captured([&] { dsp_timestamp(&params); });
    EXPECT_EQ(written.out, "[22/04/22 13:05:07.000000001] ");
    EXPECT_EQ(written.err, "");
}

TEST_F(Console, FailureLinesGoToStandardError)
{
    const Captured written = captured([&] { EXPECT_EQ(printf_te(&params, "MQPUT fail : %s\n", "Q1"), 0); });
    EXPECT_EQ(written.out, "");
    EXPECT_EQ(written.err, "MQPUT fail : Q1\n");
}

TEST_F(Console, ANullTextPrintsAsNull)
{
    const char *volatile nothing = nullptr;
    const Captured written = captured([&] { printf_te(&params, "%s\n", static_cast<const char *>(nothing)); });
    EXPECT_EQ(written.err, "(null)\n");
}

TEST_F(Console, DebugLinesCarrySourceLineAndError)
{
    const Captured written =
        captured([&] { EXPECT_EQ(printf_td(&params, "PutFromCmdLine", 57, 12, "failed. size=%d\n", 8), 0); });
    EXPECT_EQ(written.err, "PutFromCmdLine,57,12: failed. size=8\n");
}

TEST_F(Console, DebugLinesWithoutARecordHaveTheSameShape)
{
    const Captured written = captured([] { printf_d("main", 9, 0, "%s\n", "text"); });
    EXPECT_EQ(written.err, "main,9,0: text\n");
}

TEST_F(Console, PerrinfoDescribesTheError)
{
    const Captured written = captured([] { perrinfo("malloc()", ENOMEM); });
    EXPECT_EQ(written.err, "malloc(): Cannot allocate memory\n");
}

TEST_F(Console, PerrinfoIsSilentForErrorZero)
{
    const Captured written = captured([&] {
        perrinfo("fopen()", 0);
        printf_td(&params, "GetToFile", 3, 0, "text\n");
    });
    EXPECT_EQ(written.err, "GetToFile,3,0: text\n");
}

TEST_F(Console, AFailureIsReportedAsAPairOfLines)
{
    const Captured written = captured([&] {
        report_failure(&params, {"PutFromFile", 12}, "fopen(_s)()", ENOENT, "fopen(_s)() failed. file name=%s\n", "f");
    });
    EXPECT_EQ(written.err, "fopen(_s)(): No such file or directory\n"
                           "PutFromFile,12,2: fopen(_s)() failed. file name=f\n");
}

TEST_F(Console, AFailureWithoutARecordIsTheSamePair)
{
    const Captured written = captured([] {
        report_failure(nullptr, {"main", 5}, "malloc()", ENOMEM, "malloc() failed. size=%d\n", 4);
    });
    EXPECT_EQ(written.err, "malloc(): Cannot allocate memory\nmain,5,12: malloc() failed. size=4\n");
}

TEST_F(Console, ACallerIsTheLineThatNamesIt)
{
    const Caller caller = {"routine"};
    EXPECT_EQ(caller.line, __LINE__ - 1);
}

TEST_F(Console, StandardErrorComesAfterWhatWasWrittenBefore)
{
    // Both streams into one file, as in a merged log.
    std::FILE *const log = std::tmpfile();
    std::fflush(stdout);
    const int out = dup(1);
    const int err = dup(2);
    dup2(fileno(log), 1);
    dup2(fileno(log), 2);
    std::printf("first ");
    printf_te(&params, "second ");
    std::printf("third ");
    printf_td(&params, "s", 1, 0, "fourth ");
    std::printf("fifth ");
    perrinfo("sixth", EPERM);
    std::printf("seventh ");
    printf_d("s", 2, 0, "eighth ");
    std::printf("ninth ");
    info(stderr, "tenth");
    std::fflush(stdout);
    dup2(out, 1);
    dup2(err, 2);
    close(out);
    close(err);

    char text[512] = {};
    std::rewind(log);
    const std::size_t length = std::fread(text, 1, sizeof text - 1, log);
    std::fclose(log);
    EXPECT_EQ(std::string(text, length), "first second third s,1,0: fourth fifth sixth: Operation not permitted\n"
                                         "seventh s,2,0: eighth ninth tenth\n");
}

TEST_F(Console, InfoEndsTheLine)
{
    const Captured written = captured([] { info(stdout, "Elapsed time = %f sec", 1.5); });
    EXPECT_EQ(written.out, "Elapsed time = 1.500000 sec\n");
}

TEST_F(Console, InfoIsBounded)
{
    const std::string text(1000, 'x');
    const Captured written = captured([&] { info(stdout, "%s", text.c_str()); });
    EXPECT_EQ(written.out, std::string(255, 'x') + "\n");
}

TEST_F(Console, ElapsedTimeCrossesSeconds)
{
    const Captured written = captured([] { timeDiff(stdout, {10, 900000000}, {12, 100000000}); });
    EXPECT_EQ(written.out, "Elapsed time = 1.200000 sec\n");
}

TEST_F(Console, TimespecBecomesSeconds)
{
    EXPECT_DOUBLE_EQ(timespecToDouble(3, 500000000), 3.5);
}

TEST_F(Console, NanosecondsAreNineDigits)
{
    setClock(April22, 42);
    const Captured written = captured([&] { dsp_timestamp(&params); });
    EXPECT_EQ(written.out, "[22/04/22 13:05:07.000000042] ");
}

TEST_F(Console, AllNineDigitsAreShown)
{
    setClock(April22, 123456789);
    const Captured written = captured([&] { dsp_timestamp(&params); });
    EXPECT_EQ(written.out, "[22/04/22 13:05:07.123456789] ");
}

TEST_F(Console, TheStampFollowsTheSecond)
{
    const Captured written = captured([&] {
        setClock(April22, 0);
        dsp_timestamp(&params);
        setClock(April22 + 1, 0);
        dsp_timestamp(&params);
        setClock(April22, 5);
        dsp_timestamp(&params);
    });
    EXPECT_EQ(written.out,
              "[22/04/22 13:05:07.000000000] [22/04/22 13:05:08.000000000] [22/04/22 13:05:07.000000005] ");
}

TEST_F(Console, WithThreadsTheStampNamesTheThread)
{
    setClock(April22, 7);
    params.ThreadCount = 1;
    params.ThreadId = 4711;
    const Captured written = captured([&] { dsp_timestamp(&params); });
    EXPECT_EQ(written.out, "[22/04/22 13:05:07.000000007 tid=4711] ");
}

TEST_F(Console, InnerConnThreadsAreThreadsToo)
{
    setClock(April22, 7);
    params.InnerConnThreadCount = 1;
    params.ThreadId = -5;
    const Captured written = captured([&] { dsp_timestamp(&params); });
    EXPECT_EQ(written.out, "[22/04/22 13:05:07.000000007 tid=-5] ");
}

TEST_F(Console, TheTimeIsLocal)
{
    setClock(April22, 0);
    setenv("TZ", "JST-9", 1);
    tzset();
    wrapped.now->tv_sec += 60; // the text of a second is kept
    const Captured written = captured([&] { dsp_timestamp(&params); });
    EXPECT_EQ(written.out, "[22/04/22 22:06:07.000000000] ");
}

TEST_F(Console, WithoutThreadsNoThreadIdIsWritten)
{
    params.ThreadId = 4711;
    const Captured written = captured([&] {
        dsp_tid(&params);
        dsp_timestamp(&params);
    });
    EXPECT_THAT(written.out, MatchesRegex("\\[../../.. ..:..:..\\..........\\] "));
}

TEST_F(Console, WithThreadsTheThreadIdIsWritten)
{
    params.ThreadCount = 2;
    params.ThreadId = 4711;
    const Captured written = captured([&] { dsp_tid(&params); });
    EXPECT_EQ(written.out, "tid=4711 ");
}

TEST_F(Console, SleepsInMilliseconds)
{
    sleep_millisecond(&params, 2005);
    ASSERT_EQ(wrapped.sleeps.size(), 1u);
    EXPECT_EQ(wrapped.sleeps[0].tv_sec, 2);
    EXPECT_EQ(wrapped.sleeps[0].tv_nsec, 5000000);
}

TEST_F(Console, TheLongestSleepDoesNotOverflow)
{
    sleep_millisecond(&params, 2147483647);
    ASSERT_EQ(wrapped.sleeps.size(), 1u);
    EXPECT_EQ(wrapped.sleeps[0].tv_sec, 2147483);
    EXPECT_EQ(wrapped.sleeps[0].tv_nsec, 647000000);
}

TEST_F(Console, NoTimeIsNoSleep)
{
    sleep_millisecond(&params, 0);
    sleep_millisecond(&params, -1);
    EXPECT_TRUE(wrapped.sleeps.empty());
}

