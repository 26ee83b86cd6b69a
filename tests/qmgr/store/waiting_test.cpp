#include <atomic>
#include <thread>

#include "qmgr/store/control_block.h"
#include "qmgr/store/paths.h"
#include "qmgr/store/seams.h"
#include "store_test.h"

#include <csignal>
#include <unistd.h>

namespace mqrig::qmgr::store::test {
namespace {

using Waiting = StoreTest;

// Gets with a wait, as the floor above does it.
std::string waitAndGet(Attachment &attachment, QueueId queue, Deadline deadline)
{
    for (;;) {
        const std::uint32_t seen = attachment.observe(queue);
        if (attachment.check().failed()) return "broken";
        if (std::string text = get(attachment, queue); !text.empty()) return text;
        if (!attachment.waitForMessage(queue, seen, deadline)) return "";
    }
}

Deadline soon()
{
    return std::chrono::steady_clock::now() + patience;
}

TEST_F(Waiting, EndsAtTheDeadline)
{
    const auto a = connect();
    EXPECT_EQ(waitAndGet(*a, q1_, std::chrono::steady_clock::now() + std::chrono::milliseconds(50)), "");
    EXPECT_EQ(waitAndGet(*a, q1_, std::chrono::steady_clock::now() - std::chrono::seconds(1)), "");
}

TEST_F(Waiting, ReturnsAtOnceWhenTheNumberHasMoved)
{
    const auto a = connect();
    const std::uint32_t seen = a->observe(q1_);
    ASSERT_EQ(put(*a, q1_, "1"), success());
    EXPECT_NE(a->observe(q1_), seen);
    EXPECT_TRUE(a->waitForMessage(q1_, seen, unlimitedWait));
}

TEST_F(Waiting, IsEndedByAPutOfAnotherProcess)
{
    for (const MQLONG persistence : {MQPER_NOT_PERSISTENT, MQPER_PERSISTENT}) {
        const pid_t process = startProcess([&] {
            const auto attached = attach(folder_, "QM1");
            return waitAndGet(*attached.attachment, q1_, soon()) == "wake" ? 0 : 1;
        });
        ASSERT_EQ(put(*connect(), q1_, "wake", {.persistence = persistence}), success());
        EXPECT_EQ(endOfProcess(process), 0);
    }
}

TEST_F(Waiting, IsEndedByACommitAndByABackout)
{
    const auto a = connect();
    ASSERT_EQ(put(*a, q1_, "1"), success());
    UnitOfWork unit(*a);
    ASSERT_EQ(unit.get(q1_), "1");
    const auto waitingProcess = [&](const char *expected) {
        return startProcess([this, expected] {
            const auto attached = attach(folder_, "QM1");
            return waitAndGet(*attached.attachment, q1_, soon()) == expected ? 0 : 1;
        });
    };
    const pid_t first = waitingProcess("1");
    ASSERT_EQ(unit.backOut(), success());
    EXPECT_EQ(endOfProcess(first), 0);
    ASSERT_EQ(unit.put(q1_, "2", {.persistence = MQPER_PERSISTENT}), success());
    const pid_t second = waitingProcess("2");
    ASSERT_EQ(unit.commit(), success());
    EXPECT_EQ(endOfProcess(second), 0);
}

TEST_F(Waiting, EveryWaiterGetsOneOfManyMessages)
{
    constexpr int waiters = 8;
    std::atomic<int> got{0};
    std::vector<std::thread> threads;
    for (int n = 0; n < waiters; ++n) {
        threads.emplace_back([&] {
            const auto b = connect();
            if (waitAndGet(*b, q1_, soon()) == "m") ++got;
        });
    }
    const auto a = connect();
    for (int n = 0; n < waiters; ++n) {
        ASSERT_EQ(put(*a, q1_, "m", {.persistence = n % 2 == 0 ? MQPER_PERSISTENT : MQPER_NOT_PERSISTENT}), success());
    }
    for (auto &thread : threads)
        thread.join();
    EXPECT_EQ(got, waiters);
    EXPECT_EQ(get(*a, q1_), "");
}

TEST_F(Waiting, EndsWithTheQueueManager)
{
    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    const pid_t process = startProcess([&] {
        const auto attached = attach(folder_, "QM1");
        static_cast<void>(!write(ready[1], "x", 1));
        return waitAndGet(*attached.attachment, q1_, soon()) == "broken" ? 0 : 1;
    });
    char byte = 0;
    ASSERT_EQ(read(ready[0], &byte, 1), 1);
    ASSERT_EQ(endQueueManager(folder_, "QM1", End::Immediate), success());
    EXPECT_EQ(endOfProcess(process), 0);
}

// Nobody is left who would finish the unit but the sleeper itself.
TEST_F(Waiting, GetsTheMessageThatAKilledProcessHadPrepared)
{
    std::string got;
    std::atomic<bool> asleep{false};
    std::thread getter([&] {
        const auto b = connect();
        asleep = true;
        got = waitAndGet(*b, q1_, soon());
    });
    while (!asleep)
        std::this_thread::yield();
    EXPECT_EQ(runProcess([&] {
                  const auto attached = attach(folder_, "QM1");
                  seams.reached = [](Step step) {
                      if (step == Step::UnitPrepared) die();
                  };
                  static_cast<void>(put(*attached.attachment, q1_, "heir", {.persistence = MQPER_PERSISTENT}));
                  return 1;
              }),
              -SIGKILL);
    getter.join();
    EXPECT_EQ(got, "heir");
}

// A getter sleeps in another thread; a process takes the message under syncpoint and is killed.
TEST_F(Waiting, GetsTheMessageThatAKilledProcessHadLocked)
{
    const auto a = connect();
    ASSERT_EQ(put(*a, q1_, "orphan"), success());
    int locked[2];
    ASSERT_EQ(pipe(locked), 0);
    const pid_t process = startProcess([&] {
        auto attached = attach(folder_, "QM1");
        UnitOfWork unit(*attached.attachment);
        if (unit.get(q1_) != "orphan") return 1;
        static_cast<void>(!write(locked[1], "x", 1));
        pause();
        return 2;
    });
    char byte = 0;
    ASSERT_EQ(read(locked[0], &byte, 1), 1);
    std::string got;
    std::thread getter([&] {
        const auto b = connect();
        got = waitAndGet(*b, q1_, soon());
    });
    kill(process, SIGKILL);
    EXPECT_EQ(endOfProcess(process), -SIGKILL);
    getter.join();
    EXPECT_EQ(got, "orphan");
}

// A process dies between making its message visible and the call that wakes; here it makes no such call, because it
// believes that nobody waits. Nobody else ever comes.
TEST_F(Waiting, GetsTheMessageThatAKilledProcessHadShownToNobody)
{
    int error = 0;
    const auto control = ControlMapping::open(folder_ / folderOfName("QM1") / "live", error);
    ASSERT_NE(control, nullptr);
    (*control)->requestsWaiting = 0; // who sleeps looks more often while there are some
    WaitCell &cell = (*control)->cells[q1_ % waitCells];
    std::string got;
    std::thread getter([&] {
        const auto b = connect();
        got = waitAndGet(*b, q1_, soon());
    });
    while (cell.waiters == 0)
        std::this_thread::yield();
    EXPECT_EQ(runProcess([&] {
                  const auto attached = attach(folder_, "QM1");
                  cell.waiters = 0;
                  static_cast<void>(put(*attached.attachment, q1_, "unannounced"));
                  cell.waiters = 1;
                  die();
                  return 1;
              }),
              -SIGKILL);
    getter.join();
    EXPECT_EQ(got, "unannounced");
}

} // namespace
} // namespace mqrig::qmgr::store::test
