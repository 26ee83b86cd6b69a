// Groups of worker threads.

#include "common.h"
#include "fake_routines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <malloc.h>
#include <regex>
#include <set>
#include <string>
#include <unistd.h>
#include <vector>

using testing::ElementsAre;
using testing::ExitedWithCode;
using testing::HasSubstr;

namespace {

class WorkerThreads : public DriverTest {
protected:
    WorkerThreads() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

class WorkerThreadsDeathTest : public WorkerThreads {
protected:
    const std::vector<std::string> shared = {"-qm", "QM1", "-q", "Q1", "-nt", "2"};
    const std::vector<std::string> inner = {"-qm", "QM1", "-q", "Q1", "-ni", "2"};

    /// The run, without the streams caught: a death test looks at them itself.
    int runBare(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), "mqrig");
        std::vector<char *> argv;
        for (std::string &argument : arguments)
            argv.push_back(argument.data());
        argv.push_back(nullptr);
        return ::run(static_cast<int>(argv.size()) - 1, argv.data());
    }

    void expectExit(const char *call, int code, int exitCode, const std::string &report)
    {
        routines.failingCalls[call] = code;
        EXPECT_EXIT(runBare(shared), ExitedWithCode(exitCode), "thread_main,[0-9]+,0: " + report);
        EXPECT_EXIT(runBare(inner), ExitedWithCode(exitCode), "thread_main_i,[0-9]+,0: " + report);
    }
};

} // namespace

TEST_F(WorkerThreads, ShareTheConnectionOfTheDriver)
{
    const Finished done = run({"-qm", "QM1", "-q", "Q1", "-nt", "3"});
    EXPECT_EQ(done.exitCode, 0);
    EXPECT_THAT(done.steps,
                ElementsAre("connect QM1", "open input Q1", "get", "get", "get", "close Q1", "disconnect QM1"));
}

TEST_F(WorkerThreads, WorkOnTheirOwnRecords)
{
    std::mutex guard;
    std::set<const RunParams *> records;
    std::set<MQLONG> ids;
    std::set<const pthread_mutex_t *> locks;
    routines.during["get"] = [&](RunParams &params) {
        const std::lock_guard lock(guard);
        records.insert(&params);
        ids.insert(params.ThreadId);
        locks.insert(params.OutputLock);
        EXPECT_EQ(params.ThreadId, gettid());
    };
    run({"-qm", "QM1", "-q", "Q1", "-nt", "4"});
    EXPECT_EQ(records.size(), 4u);
    EXPECT_EQ(ids.size(), 4u);
    EXPECT_EQ(locks.size(), 1u);
    EXPECT_FALSE(locks.contains(nullptr));
}

TEST_F(WorkerThreads, OneThreadIsAGroupToo)
{
    std::string line;
    routines.during["get"] = [&](RunParams &params) {
        EXPECT_NE(gettid(), getpid());
        EXPECT_NE(params.OutputLock, nullptr);
        dsp_timestamp(&params);
    };
    EXPECT_THAT(run({"-qm", "QM1", "-q", "Q1", "-nt", "1"}).out, HasSubstr(" tid="));
}

TEST_F(WorkerThreads, RunAPairedOperationOnBothRecords)
{
    routines.during["queue to queue"] = [](RunParams &params) { EXPECT_NE(params.OutputLock, nullptr); };
    run({"-qm", "QM1", "-q", "Q1", "-oq", "Q2", "-nt", "2"});
    EXPECT_EQ(routines.count("queue to queue"), 2);
}

TEST_F(WorkerThreads, ResultsAreNotCollected)
{
    routines.answers["get"] = {3, 1};
    EXPECT_EQ(run({"-qm", "QM1", "-q", "Q1", "-nt", "2"}).exitCode, 0);
}

TEST_F(WorkerThreads, TheDriverCommitsForTheGroupOnce)
{
    const Finished done = run({"-qm", "QM1", "-q", "Q1", "-m", "x", "-nt", "4", "MQPMO_SYNCPOINT"});
    EXPECT_EQ(routines.count("commit"), 1);
    EXPECT_EQ(done.steps[done.steps.size() - 3], "commit");
}

TEST_F(WorkerThreads, TheDriverBacksOutWithB)
{
    run({"-qm", "QM1", "-q", "Q1", "-m", "x", "-nt", "4", "-b", "MQPMO_SYNCPOINT"});
    EXPECT_EQ(routines.count("commit"), 0);
    EXPECT_EQ(routines.count("back out"), 1);
}

TEST_F(WorkerThreads, TheDriverSettlesNothingWithoutSyncpoint)
{
    run({"-qm", "QM1", "-q", "Q1", "-m", "x", "-nt", "4"});
    EXPECT_EQ(routines.count("commit") + routines.count("back out"), 0);
}

TEST_F(WorkerThreads, TheDriverSettlesNothingWithoutThreads)
{
    run({"-qm", "QM1", "-q", "Q1", "-m", "x", "MQPMO_SYNCPOINT"});
    EXPECT_EQ(routines.count("commit") + routines.count("back out"), 0);
}

TEST_F(WorkerThreads, AFailedCommitEndsTheRun)
{
    routines.answers["commit"] = {3};
    const Finished done = run({"-qm", "QM1", "-q", "Q1", "-m", "x", "-nt", "2", "MQPMO_SYNCPOINT"});
    EXPECT_EQ(done.exitCode, 1);
    EXPECT_EQ(done.steps.back(), "commit");
}

TEST_F(WorkerThreads, GroupsRunOneAfterAnother)
{
    std::atomic<int> running = 0;
    std::atomic<bool> mixed = false;
    std::mutex guard;
    std::set<std::string> names;
    routines.during["get"] = [&](RunParams &params) {
        ++running;
        {
            const std::lock_guard lock(guard);
            names.insert(params.QMgrName);
        }
        if (running > 2) mixed = true;
        --running;
    };
    run({"-qm", "A,B", "-q", "Q1", "-nt", "2"});
    EXPECT_FALSE(mixed);
    EXPECT_EQ(names, (std::set<std::string>{"A", "B"}));
}

TEST_F(WorkerThreads, TheConnectionsRecordHasTheLockWhileTheGroupRuns)
{
    std::atomic<RunParams *> connection = nullptr;
    std::atomic<int> locked = 0;
    routines.during["connect QM1"] = [&](RunParams &params) { connection = &params; };
    routines.during["get"] = [&](RunParams &params) {
        if (output_lock(connection) == output_lock(&params)) ++locked;
    };
    routines.during["close Q1"] = [&](RunParams &params) { EXPECT_EQ(output_lock(&params), nullptr); };
    run({"-qm", "QM1", "-q", "Q1", "-nt", "3"});
    EXPECT_EQ(locked, 3);
}

TEST_F(WorkerThreads, AnEventHandlerKeepsTheLockToTheEnd)
{
    std::vector<RunParams *> records;
    routines.during["close Q1"] = [&](RunParams &params) {
        records.push_back(&params);
        // The group has ended; the handler's lock still works.
        EXPECT_NE(output_lock(&params), nullptr);
        EXPECT_EQ(lock_section(&params), 0);
        EXPECT_EQ(unlock_section(&params), 0);
    };
    const Finished done = run({"-qm", "QM1", "-q", "Q1", "-nt", "2", "-sd", "-cf", "EventHandler"});
    EXPECT_EQ(done.err, "");
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(lock_section(records[0]), 0);
    EXPECT_EQ(unlock_section(records[0]), 0);
}

TEST_F(WorkerThreads, ThatConnectThemselvesConnectRunAndDisconnect)
{
    const Finished done = run({"-qm", "QM1", "-q", "Q1", "-ni", "3"});
    EXPECT_EQ(done.exitCode, 0);
    EXPECT_EQ(routines.count("connect QM1"), 3);
    EXPECT_EQ(routines.count("get"), 3);
    EXPECT_EQ(routines.count("disconnect QM1"), 3);
    // The driver itself neither connects nor opens.
    EXPECT_EQ(done.steps.size(), 9u);
}

TEST_F(WorkerThreads, ThatConnectThemselvesHaveTheirOwnThreadIds)
{
    std::mutex guard;
    std::set<MQLONG> ids;
    routines.during["get"] = [&](RunParams &params) {
        const std::lock_guard lock(guard);
        ids.insert(params.ThreadId);
        EXPECT_EQ(params.ThreadId, static_cast<MQLONG>(static_cast<MQULONG>(pthread_self())));
    };
    run({"-qm", "QM1", "-q", "Q1", "-ni", "1"});
    EXPECT_EQ(ids.size(), 1u);
}

TEST_F(WorkerThreads, AFailedConnectEndsOnlyItsThread)
{
    routines.answers["connect QM1"] = {0, 3, 0};
    const Finished done = run({"-qm", "QM1", "-q", "Q1", "-ni", "3"});
    EXPECT_EQ(done.exitCode, 0);
    EXPECT_EQ(done.err, "Queue Manager Connect Fail.\n");
    EXPECT_EQ(routines.count("get"), 2);
    EXPECT_EQ(routines.count("disconnect QM1"), 2);
}

TEST_F(WorkerThreads, ThatConnectThemselvesRunForEveryQueueManager)
{
    run({"-qm", "A,B", "-q", "Q1", "-ni", "2"});
    EXPECT_EQ(routines.count("connect A"), 2);
    EXPECT_EQ(routines.count("connect B"), 2);
    EXPECT_EQ(routines.count("get"), 4);
}

TEST_F(WorkerThreads, ConnectOptionsSelectMqconnxInThreads)
{
    run({"-qm", "QM1", "-q", "Q1", "-ni", "1", "MQCNO_SHARED_BINDING"});
    EXPECT_EQ(routines.count("connectx QM1"), 1);
}

TEST_F(WorkerThreads, AConnectionNameSelectsMqconnxInThreads)
{
    run({"-qm", "QM1", "-q", "Q1", "-ni", "1", "-x", "host"});
    EXPECT_EQ(routines.count("connectx QM1"), 1);
}

TEST_F(WorkerThreads, CredentialsAloneDoNotSelectMqconnxInThreads)
{
    run({"-qm", "QM1", "-q", "Q1", "-ni", "1", "-cu", "me"});
    EXPECT_EQ(routines.count("connect QM1"), 1);
}

TEST_F(WorkerThreads, RegisterTheirCallbackAndIgnoreItsFailure)
{
    routines.answers["register QM1"] = {3};
    const Finished done = run({"-qm", "QM1", "-q", "Q1", "-ni", "2", "-cf", "EventHandler"});
    EXPECT_EQ(routines.count("register QM1"), 2);
    EXPECT_EQ(routines.count("get"), 2);
    EXPECT_EQ(done.exitCode, 0);
}

TEST_F(WorkerThreads, RecordsWithAnEventHandlerThatStaysConnectedLiveOn)
{
    std::mutex guard;
    std::vector<RunParams *> records;
    routines.during["register QM1"] = [&](RunParams &params) {
        const std::lock_guard lock(guard);
        records.push_back(&params);
    };
    run({"-qm", "QM1", "-q", "Q1", "-ni", "2", "-sd", "-cf", "EventHandler"});
    ASSERT_EQ(records.size(), 2u);
    for (RunParams *record : records) {
        EXPECT_EQ(lock_section(record), 0);
        EXPECT_EQ(unlock_section(record), 0);
    }
}

TEST_F(WorkerThreads, CopiesOfASharedConnectionsRecordDoNotPileUp)
{
    const auto inUse = [] {
        const struct mallinfo2 memory = mallinfo2();
        return memory.uordblks + memory.hblkhd;
    };
    // As the wrapper does it.
    routines.during["register QM1"] = [](RunParams &params) { params.Cbd.CallbackArea = &params; };
    const std::size_t before = inUse();
    run({"-qm", "QM1", "-q", "Q1", "-nt", "20", "-c", "50", "-cf", "EventHandler"});
    EXPECT_LT(inUse(), before + 50 * sizeof(RunParams));
}

TEST_F(WorkerThreads, RecordsWithAnEventHandlerWhoseDisconnectFailedLiveOn)
{
    std::mutex guard;
    std::vector<RunParams *> records;
    routines.during["register QM1"] = [&](RunParams &params) {
        const std::lock_guard lock(guard);
        records.push_back(&params);
    };
    routines.answers["disconnect QM1"] = {3};
    // Destroying the lock would end the process with 2.
    routines.failingCalls["pthread_mutex_destroy"] = 16;
    const Finished done = run({"-qm", "QM1", "-q", "Q1", "-ni", "2", "-cf", "EventHandler"});
    EXPECT_EQ(done.exitCode, 0);
    ASSERT_EQ(records.size(), 2u);
    for (RunParams *record : records) {
        EXPECT_EQ(lock_section(record), 0);
        EXPECT_EQ(unlock_section(record), 0);
    }
}

TEST_F(WorkerThreads, AFailedJoinIsReportedAndPassedOver)
{
    routines.failingCalls["pthread_join"] = 35;
    const Finished done = run({"-qm", "QM1", "-q", "Q1", "-nt", "2"});
    EXPECT_EQ(done.exitCode, 0);
    EXPECT_EQ(std::regex_replace(done.err, std::regex(",\\d+,0"), ",#,0"),
              "thread_main,#,0: pthread_join() #0 failed return code=35\n"
              "thread_main,#,0: pthread_join() #1 failed return code=35\n");
}

TEST_F(WorkerThreadsDeathTest, NoMemoryEndsTheRun)
{
    routines.failCalloc = true;
    EXPECT_EXIT(runBare(shared), ExitedWithCode(1),
                "calloc\\(\\): Cannot allocate memory\nthread_main,[0-9]+,12: calloc\\(\\) failed. size=[0-9]+\n");
    EXPECT_EXIT(runBare(inner), ExitedWithCode(1),
                "calloc\\(\\): Cannot allocate memory\nthread_main_i,[0-9]+,12: calloc\\(\\) failed. size=[0-9]+\n");
}

TEST_F(WorkerThreadsDeathTest, AFailedAttributeInitEndsTheRun)
{
    expectExit("pthread_mutexattr_init", 12, 1, "pthread_mutexattr_init\\(\\) failed. return code=12\n");
}

TEST_F(WorkerThreadsDeathTest, AFailedAttributeTypeEndsTheRun)
{
    expectExit("pthread_mutexattr_settype", 22, 1, "pthread_mutexattr_settype\\(\\) failed. return code=22\n");
}

TEST_F(WorkerThreadsDeathTest, AFailedLockInitAlwaysSaysOne)
{
    expectExit("pthread_mutex_init", 11, 1, "pthread_mutex_init\\(\\) failed. return code=1\n");
}

TEST_F(WorkerThreadsDeathTest, ThreadNumbersInReportsStartAtZero)
{
    expectExit("pthread_create", 11, 1, "pthread_create\\(\\) #0 failed. return code=11\n");
}

TEST_F(WorkerThreadsDeathTest, AFailedLockDestroyEndsTheRunWithTwo)
{
    expectExit("pthread_mutex_destroy", 16, 2, "pthread_mutex_destroy\\(\\) failed. return code=16\n");
}
