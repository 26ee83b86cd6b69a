// The output lock.

#include "common.h"

#include "captured.h"
#include "wrapped_calls.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace {

class OutputLockTest : public testing::Test {
protected:
    OutputLockTest()
    {
        pthread_mutexattr_t recursive;
        pthread_mutexattr_init(&recursive);
        pthread_mutexattr_settype(&recursive, PTHREAD_MUTEX_RECURSIVE);
        pthread_mutex_init(&lock, &recursive);
        pthread_mutexattr_destroy(&recursive);
        params.ThreadCount = 2;
        params.OutputLock = &lock;
    }
    ~OutputLockTest() override
    {
        wrapped = {};
        pthread_mutex_destroy(&lock);
    }

    bool heldByThisThread()
    {
        bool free = false;
        std::thread([&] {
            free = pthread_mutex_trylock(&lock) == 0;
            if (free) pthread_mutex_unlock(&lock);
        }).join();
        return !free;
    }

    pthread_mutex_t lock;
    RunParams params = DEFAULT_RUN_PARAMS;
};

/// Line numbers are no part of the facts.
std::string withoutLine(const std::string &text)
{
    return std::regex_replace(text, std::regex(R"(^(\w+),\d+,)"), "$1,#,");
}

} // namespace

TEST_F(OutputLockTest, IsHeldBetweenLockAndUnlock)
{
    EXPECT_EQ(lock_section(&params), 0);
    EXPECT_TRUE(heldByThisThread());
    EXPECT_EQ(unlock_section(&params), 0);
    EXPECT_FALSE(heldByThisThread());
}

TEST_F(OutputLockTest, IsRecursive)
{
    LockedSection outer(&params);
    const Captured written = captured([&] { EXPECT_EQ(printf_t(&params, "inside\n"), 0); });
    EXPECT_EQ(written.out, "inside\n");
    EXPECT_TRUE(heldByThisThread());
}

TEST_F(OutputLockTest, IsNotTakenWithoutThreads)
{
    params.ThreadCount = 0;
    EXPECT_EQ(lock_section(&params), 0);
    EXPECT_FALSE(heldByThisThread());
    EXPECT_EQ(unlock_section(&params), 0);
}

TEST_F(OutputLockTest, IsTakenForThreadsThatConnectThemselves)
{
    params.ThreadCount = 0;
    params.InnerConnThreadCount = 1;
    EXPECT_EQ(lock_section(&params), 0);
    EXPECT_TRUE(heldByThisThread());
    unlock_section(&params);
}

TEST_F(OutputLockTest, ARecordWithoutALockNeedsNone)
{
    params.OutputLock = nullptr;
    EXPECT_EQ(lock_section(&params), 0);
    EXPECT_EQ(unlock_section(&params), 0);
}

TEST_F(OutputLockTest, AFailedLockIsReportedWithTheCode)
{
    wrapped.lockCode = 22;
    const Captured written = captured([&] { EXPECT_EQ(lock_section(&params), 1); });
    EXPECT_EQ(withoutLine(written.err), "lock_section,#,0: pthread_mutex_lock() failed. return code=22\n");
}

TEST_F(OutputLockTest, AFailedUnlockIsReportedWithABlankBeforeTheCode)
{
    lock_section(&params);
    wrapped.unlockCode = 22;
    const Captured written = captured([&] { EXPECT_EQ(unlock_section(&params), 1); });
    EXPECT_EQ(withoutLine(written.err), "unlock_section,#,0: pthread_mutex_unlock() failed. return code= 22\n");
    wrapped.unlockCode = 0;
    unlock_section(&params);
}

TEST_F(OutputLockTest, WritersWriteNothingWithoutTheLock)
{
    wrapped.lockCode = 22;
    const Captured written = captured([&] {
        EXPECT_EQ(printf_t(&params, "text"), 1);
        EXPECT_EQ(printf_te(&params, "text"), 1);
        EXPECT_EQ(printf_td(&params, "source", 1, 0, "text"), 1);
        report_failure(&params, {"source"}, "call()", 1, "text");
    });
    EXPECT_EQ(written.out, "");
    EXPECT_EQ(written.err.find("text"), std::string::npos);
}

TEST_F(OutputLockTest, WritersAnswerAFailedUnlockAfterWriting)
{
    wrapped.unlockCode = 22;
    const Captured written = captured([&] { EXPECT_EQ(printf_t(&params, "text"), 1); });
    EXPECT_EQ(written.out, "text");
    wrapped.unlockCode = 0;
    unlock_section(&params);
}

TEST_F(OutputLockTest, ASectionReleasesAtItsEnd)
{
    {
        LockedSection section(&params);
        EXPECT_EQ(section.status(), 0);
        EXPECT_TRUE(heldByThisThread());
    }
    EXPECT_FALSE(heldByThisThread());
}

TEST_F(OutputLockTest, ASectionReleasedEarlyIsNotReleasedTwice)
{
    LockedSection outer(&params);
    {
        LockedSection section(&params);
        EXPECT_EQ(section.release(), 0);
        EXPECT_EQ(section.release(), 0);
    }
    EXPECT_TRUE(heldByThisThread());
}

TEST_F(OutputLockTest, ASectionReleasesTheLockThatItTook)
{
    {
        LockedSection section(&params);
        set_output_lock(&params, nullptr);
    }
    EXPECT_FALSE(heldByThisThread());
}

TEST_F(OutputLockTest, ASectionThatFailedHoldsNothing)
{
    wrapped.lockCode = 22;
    captured([&] {
        LockedSection section(&params);
        EXPECT_EQ(section.status(), 1);
        EXPECT_EQ(section.release(), 1);
    });
    EXPECT_FALSE(heldByThisThread());
}

TEST_F(OutputLockTest, LinesOfSeveralThreadsStayWhole)
{
    constexpr int Threads = 4;
    constexpr int Lines = 200;
    const Captured written = captured([&] {
        std::vector<std::thread> threads;
        for (int i = 0; i < Threads; ++i) {
            threads.emplace_back([this, i] {
                RunParams own = params;
                own.ThreadId = i;
                for (int line = 0; line < Lines; ++line) {
                    LockedSection section(&own);
                    dsp_timestamp(&own);
                    printf_t(&own, "line of %d\n", i);
                }
            });
        }
        for (std::thread &thread : threads)
            thread.join();
    });
    std::istringstream lines(written.out);
    const std::regex shape(R"(\[../../.. ..:..:..\.\d{9} tid=(\d)\] line of (\d))");
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
        std::smatch parts;
        ASSERT_TRUE(std::regex_match(line, parts, shape)) << line;
        EXPECT_EQ(parts[1], parts[2]);
    }
    EXPECT_EQ(count, Threads * Lines);
}
