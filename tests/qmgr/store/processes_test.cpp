// Several processes on one queue manager, some of them killed.

#include <algorithm>
#include <cerrno>
#include <set>
#include <stdexcept>
#include <thread>

#include "qmgr/store/seams.h"
#include "store_test.h"

#include <csignal>
#include <unistd.h>

namespace mqrig::qmgr::store::test {
namespace {

class Processes : public StoreTest {
protected:
    // A program's end: it comes, puts a message that is not persistent, and leaves.
    [[nodiscard]] int putInPassing(QueueId queue) const
    {
        const auto attached = attach(folder_, "QM1");
        if (attached.outcome.failed()) return 1;
        return put(*attached.attachment, queue, "in passing") == success() ? 0 : 2;
    }
    // The ends of processes that run the body at the same moment.
    static std::vector<int> runAtOnce(int processes, const std::function<int()> &body)
    {
        int gate[2];
        if (pipe(gate) != 0) throw std::runtime_error("pipe"); // ends the test
        std::vector<pid_t> children;
        for (int child = 0; child < processes; ++child) {
            children.push_back(startProcess([&] {
                char byte = 0;
                close(gate[1]);
                static_cast<void>(!read(gate[0], &byte, 1)); // until the parent closes its end
                return body();
            }));
        }
        close(gate[0]);
        close(gate[1]);
        std::vector<int> ends;
        for (const pid_t child : children)
            ends.push_back(endOfProcess(child));
        return ends;
    }
};
using Texts = std::vector<std::string>;

// Kills this process at the given step of the store. For use in a child.
Step deadlyStep;
void dieAt(Step step)
{
    deadlyStep = step;
    seams.reached = [](Step now) {
        if (now == deadlyStep) kill(getpid(), SIGKILL);
    };
}

TEST_F(Processes, PutAndGetForEachOther)
{
    const auto a = connect();
    ASSERT_EQ(put(*a, q1_, "question", {.persistence = MQPER_PERSISTENT}), success());
    EXPECT_EQ(runProcess([&] {
                  const auto attached = attach(folder_, "QM1");
                  if (attached.outcome.failed()) return 1;
                  if (get(*attached.attachment, q1_) != "question") return 2;
                  return put(*attached.attachment, q2_, "answer") == success() ? 0 : 3;
              }),
              0);
    EXPECT_EQ(get(*a, q2_), "answer");
    EXPECT_EQ(get(*a, q1_), "");
}

TEST_F(Processes, PuttingAndGettingAtOnceLoseAndDoubleNothing)
{
    constexpr int writers = 3;
    constexpr int each = 600;
    std::vector<pid_t> children;
    for (int writer = 0; writer < writers; ++writer) {
        children.push_back(startProcess([&] {
            const auto attached = attach(folder_, "QM1");
            if (attached.outcome.failed()) return 1;
            for (int n = 0; n < each; ++n) {
                const MQLONG persistence = n % 4 == 0 ? MQPER_PERSISTENT : MQPER_NOT_PERSISTENT;
                const std::string text = std::to_string(writer) + ":" + std::to_string(n);
                if (n % 3 == 0) {
                    UnitOfWork unit(*attached.attachment);
                    if (unit.put(q1_, text, {.persistence = persistence}).failed()) return 2;
                    if (unit.commit() != success()) return 3;
                } else if (put(*attached.attachment, q1_, text, {.persistence = persistence}).failed()) {
                    return 4;
                }
            }
            return 0;
        }));
    }
    std::set<std::string> got;
    std::mutex mutex;
    std::size_t doubled = 0;
    std::atomic<int> missing{writers * each};
    std::vector<std::thread> readers;
    for (int reader = 0; reader < 2; ++reader) {
        readers.emplace_back([&, reader] {
            const auto b = connect();
            const auto giveUp = std::chrono::steady_clock::now() + patience;
            while (missing > 0 && std::chrono::steady_clock::now() < giveUp) {
                std::string text;
                if (reader == 0) {
                    text = get(*b, q1_);
                } else {
                    UnitOfWork unit(*b);
                    text = unit.get(q1_);
                    if (!text.empty() && text.back() == '7' && unit.backOut() == success()) continue;
                    if (unit.commit() != success()) text.clear();
                }
                if (text.empty()) {
                    std::this_thread::yield();
                    continue;
                }
                const std::scoped_lock lock(mutex);
                doubled += got.insert(text).second ? 0U : 1U;
                --missing;
            }
        });
    }
    for (const pid_t child : children)
        EXPECT_EQ(endOfProcess(child), 0);
    for (auto &reader : readers)
        reader.join();
    EXPECT_EQ(got.size(), std::size_t{writers} * each);
    EXPECT_EQ(doubled, 0U);
    EXPECT_EQ(statusOf(*connect(), q1_).depth, 0U);
    EXPECT_EQ(statusOf(*connect(), q1_).held, 0U);
}

TEST_F(Processes, KilledInsideAUnitAreAsBackedOut)
{
    const auto a = connect();
    ASSERT_EQ(put(*a, q1_, "n"), success());
    ASSERT_EQ(put(*a, q1_, "p", {.persistence = MQPER_PERSISTENT}), success());
    EXPECT_EQ(runProcess([&] {
                  auto attached = attach(folder_, "QM1");
                  UnitOfWork unit(*attached.attachment);
                  if (unit.get(q1_) != "n" || unit.get(q1_) != "p") return 1;
                  if (unit.put(q1_, "never", {.persistence = MQPER_PERSISTENT}).failed()) return 2;
                  if (attached.attachment->update(0, [&](WriteTransaction &transaction) {
                          transaction.addOpens(q1_, {.input = 1, .exclusive = 1});
                          return success();
                      }) != success()) {
                      return 3;
                  }
                  die();
              }),
              -SIGKILL);
    EXPECT_EQ(statusOf(*a, q1_).depth, 1U);
    EXPECT_EQ(statusOf(*a, q1_).opens.exclusive, 1);
    EXPECT_TRUE(browse(*a, q1_).empty());
    EXPECT_TRUE(a->releaseDead());
    EXPECT_FALSE(a->releaseDead());
    EXPECT_EQ(browse(*a, q1_), (Texts{"n", "p"}));
    const QueueStatus status = statusOf(*a, q1_);
    EXPECT_EQ(status.depth, 2U);
    EXPECT_EQ(status.uncommitted, 0U);
    EXPECT_EQ(status.held, 0U);
    EXPECT_EQ(status.opens.exclusive, 0);
    EXPECT_EQ(status.opens.input, 0);
}

TEST_F(Processes, ThatExitWithoutDisconnectingAreBackedOut)
{
    const auto a = connect();
    ASSERT_EQ(put(*a, q1_, "1"), success());
    EXPECT_EQ(runProcess([&]() -> int {
                  auto attached = attach(folder_, "QM1");
                  UnitOfWork unit(*attached.attachment);
                  _exit(unit.get(q1_) == "1" ? 0 : 1); // no destructor runs
              }),
              0);
    EXPECT_TRUE(a->releaseDead());
    EXPECT_EQ(browse(*a, q1_), (Texts{"1"}));
}

// A process dies at a step of a commit of one get and one put; the unit must come out whole.
class KilledCommit : public StoreTest {
protected:
    void run(Step step)
    {
        const auto a = connect();
        ASSERT_EQ(put(*a, q1_, "in", {.persistence = MQPER_PERSISTENT}), success());
        ASSERT_EQ(runProcess([&] {
                      auto attached = attach(folder_, "QM1");
                      UnitOfWork unit(*attached.attachment);
                      if (unit.get(q1_) != "in" || unit.put(q2_, "out", {.persistence = MQPER_PERSISTENT}).failed())
                          return 1;
                      dieAt(step);
                      static_cast<void>(unit.commit());
                      return 2;
                  }),
                  -SIGKILL);
        // Any persistent operation of anybody finishes what the dead one left.
        ASSERT_EQ(put(*a, q1_, "next", {.persistence = MQPER_PERSISTENT}), success());
        EXPECT_EQ(browse(*a, q1_), (Texts{"next"}));
        EXPECT_EQ(browse(*a, q2_), (Texts{"out"}));
        static_cast<void>(a->releaseDead());
        EXPECT_EQ(browse(*a, q1_), (Texts{"next"})) << "a prepared get never comes back with its dead connection";
        EXPECT_EQ(statusOf(*a, q1_).depth, 1U);
        EXPECT_EQ(statusOf(*a, q2_).depth, 1U);
        EXPECT_EQ(statusOf(*a, q1_).held, 0U);
        EXPECT_EQ(statusOf(*a, q2_).held, 0U);
    }
    void restarted()
    {
        ASSERT_EQ(endQueueManager(folder_, "QM1", End::Immediate), success());
        ASSERT_EQ(startQueueManager(folder_, "QM1"), success());
        const auto a = connect();
        EXPECT_EQ(browse(*a, q1_), (Texts{"next"}));
        EXPECT_EQ(browse(*a, q2_), (Texts{"out"}));
    }
};

TEST_F(KilledCommit, AfterPrepareIsFinishedByTheNext)
{
    run(Step::UnitPrepared);
    restarted();
}

TEST_F(KilledCommit, AfterTheLogIsFinishedByTheNext)
{
    run(Step::UnitLogged);
    restarted();
}

TEST_F(KilledCommit, AfterTheFlipIsComplete)
{
    run(Step::UnitFlipped);
    restarted();
}

TEST_F(KilledCommit, PreparedIsFinishedByALookForDeadConnections)
{
    const auto a = connect();
    ASSERT_EQ(runProcess([&] {
                  auto attached = attach(folder_, "QM1");
                  dieAt(Step::UnitPrepared);
                  static_cast<void>(put(*attached.attachment, q1_, "whole", {.persistence = MQPER_PERSISTENT}));
                  return 1;
              }),
              -SIGKILL);
    EXPECT_TRUE(browse(*a, q1_).empty());
    EXPECT_TRUE(a->releaseDead());
    EXPECT_EQ(browse(*a, q1_), (Texts{"whole"}));
}

TEST_F(KilledCommit, LoggedSurvivesARestartThatComesFirst)
{
    ASSERT_EQ(runProcess([&] {
                  auto attached = attach(folder_, "QM1");
                  dieAt(Step::UnitLogged);
                  static_cast<void>(put(*attached.attachment, q1_, "logged", {.persistence = MQPER_PERSISTENT}));
                  return 1;
              }),
              -SIGKILL);
    std::filesystem::remove_all(folder_ / "QM1" / "live"); // as a new boot would find it
    EXPECT_EQ(browse(*connect(), q1_), (Texts{"logged"}));
}

TEST_F(Processes, KilledWhileDefiningLeaveTheDefinitionToTheNext)
{
    const auto a = connect();
    ASSERT_EQ(runProcess([&] {
                  auto attached = attach(folder_, "QM1");
                  dieAt(Step::DefinitionLogged);
                  Definition queue{.type = MQOT_Q, .name = "NEW", .bytes = "x"};
                  static_cast<void>(attached.attachment->define(queue));
                  return 1;
              }),
              -SIGKILL);
    EXPECT_FALSE(a->findDefinition(MQOT_Q, "NEW").has_value());
    ASSERT_EQ(put(*a, q1_, "any", {.persistence = MQPER_PERSISTENT}), success());
    const auto found = a->findDefinition(MQOT_Q, "NEW");
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(put(*a, found->queue, "to it"), success());
}

TEST_F(Processes, KilledWhileRemovingAQueueLeaveItRemoved)
{
    const auto a = connect();
    ASSERT_EQ(put(*a, q2_, "goes", {.persistence = MQPER_PERSISTENT}), success());
    ASSERT_EQ(runProcess([&] {
                  auto attached = attach(folder_, "QM1");
                  dieAt(Step::DefinitionLogged);
                  static_cast<void>(attached.attachment->remove(MQOT_Q, "Q2", nullptr));
                  return 1;
              }),
              -SIGKILL);
    EXPECT_EQ(put(*a, q2_, "late"), failure(MQRC_Q_DELETED));
    ASSERT_EQ(put(*a, q1_, "any", {.persistence = MQPER_PERSISTENT}), success());
    EXPECT_FALSE(a->findDefinition(MQOT_Q, "Q2").has_value());
    EXPECT_TRUE(browse(*a, q2_).empty());
}

TEST_F(Processes, KilledWhileSweepingAQueueLeaveTheRestToTheNext)
{
    const auto a = connect();
    const std::string large(2000, 'l');
    for (int message = 0; message < 4; ++message)
        ASSERT_EQ(put(*a, q2_, message < 2 ? large : "goes"), success());
    ASSERT_EQ(runProcess([&] {
                  auto attached = attach(folder_, "QM1");
                  dieAt(Step::QueueSweeping);
                  static_cast<void>(attached.attachment->remove(MQOT_Q, "Q2", nullptr));
                  return 1;
              }),
              -SIGKILL);
    EXPECT_EQ(browse(*a, q2_).size(), 4U);
    ASSERT_EQ(put(*a, q1_, "any", {.persistence = MQPER_PERSISTENT}), success());
    EXPECT_TRUE(browse(*a, q2_).empty());
    EXPECT_FALSE(a->findDefinition(MQOT_Q, "Q2").has_value());
    EXPECT_EQ(browse(*a, q1_), (Texts{"any"}));
}

TEST_F(Processes, KilledWhileCreatingLeaveNoQueueManager)
{
    ASSERT_EQ(runProcess([&] {
                  dieAt(Step::CreateWritten);
                  static_cast<void>(createQueueManager(folder_, "QM2", {}, DefaultQueueManager::Yes));
                  return 1;
              }),
              -SIGKILL);
    EXPECT_EQ(listQueueManagers(folder_).size(), 1U);
    EXPECT_EQ(defaultQueueManager(folder_), "");
    EXPECT_EQ(attach(folder_, "QM2").outcome, failure(MQRC_Q_MGR_NAME_ERROR));
    EXPECT_EQ(createQueueManager(folder_, "QM2", {}, DefaultQueueManager::No), success());
}

TEST_F(Processes, KilledWhileConnectingLeaveAFreeSlot)
{
    ASSERT_EQ(runProcess([&] {
                  dieAt(Step::SlotTaken);
                  static_cast<void>(attach(folder_, "QM1"));
                  return 1;
              }),
              -SIGKILL);
    const auto a = connect();
    EXPECT_FALSE(a->releaseDead()) << "who connects has cleaned up already";
    EXPECT_EQ(connect()->slot(), 1U - a->slot());
}

TEST_F(Processes, KilledWhileTheLiveStateGrowsLeaveItWhole)
{
    const auto a = connect();
    ASSERT_EQ(put(*a, q1_, "before"), success());
    const std::string large(10'000'000, 'x');
    ASSERT_EQ(runProcess([&] {
                  const auto attached = attach(folder_, "QM1");
                  dieAt(Step::MapReserved);
                  for (int n = 0; n < 20; ++n)
                      static_cast<void>(put(*attached.attachment, q2_, large));
                  return 1;
              }),
              -SIGKILL);
    const std::size_t stored = browse(*a, q2_).size();
    EXPECT_GT(stored, 0U);
    for (int n = 0; n < 20; ++n)
        ASSERT_EQ(put(*a, q2_, large), success());
    EXPECT_EQ(browse(*a, q2_).size(), stored + 20);
    EXPECT_EQ(browse(*a, q1_), (Texts{"before"}));
}

TEST_F(Processes, KilledWhileRebuildingLeaveItToTheNext)
{
    ASSERT_EQ(put(*connect(), q1_, "safe", {.persistence = MQPER_PERSISTENT}), success());
    ASSERT_EQ(endQueueManager(folder_, "QM1", End::Quiesce), success());
    ASSERT_EQ(runProcess([&] {
                  dieAt(Step::LiveRebuilt);
                  static_cast<void>(startQueueManager(folder_, "QM1"));
                  return 1;
              }),
              -SIGKILL);
    EXPECT_EQ(browse(*connect(), q1_), (Texts{"safe"}));
}

TEST_F(Processes, KilledWhileEndingLeaveAnEndThatCanBeRepeated)
{
    const auto a = connect();
    ASSERT_EQ(runProcess([&] {
                  dieAt(Step::EndLogged);
                  static_cast<void>(endQueueManager(folder_, "QM1", End::Immediate));
                  return 1;
              }),
              -SIGKILL);
    EXPECT_EQ(put(*a, q1_, "late", {.persistence = MQPER_PERSISTENT}), failure(MQRC_CONNECTION_BROKEN));
    EXPECT_EQ(attach(folder_, "QM1").outcome, failure(MQRC_Q_MGR_NOT_AVAILABLE));
    EXPECT_EQ(startQueueManager(folder_, "QM1"), success());
}

// One opens the files while another one, who was the last, leaves: nothing of that is damage.
TEST_F(Processes, ThatComeAtOnceFindTheLifeThatThereWas)
{
    constexpr int rounds = 150;
    constexpr int programs = 6;
    for (int round = 0; round < rounds && !HasFailure(); ++round)
        for (const int end : runAtOnce(programs, [this] { return putInPassing(q1_); }))
            EXPECT_EQ(end, 0) << "round " << round;
    EXPECT_EQ(browse(*connect(), q1_).size(), std::size_t{rounds * programs});
}

TEST_F(Processes, TwoFirstOnesAtOnceFindOneLife)
{
    for (int round = 0; round < 5; ++round) {
        ASSERT_EQ(put(*connect(), q1_, "p", {.persistence = MQPER_PERSISTENT}), success());
        std::filesystem::remove_all(folder_ / "QM1" / "live");
        for (const int end : runAtOnce(4, [this] { return putInPassing(q2_); }))
            EXPECT_EQ(end, 0);
        const auto a = connect();
        EXPECT_EQ(browse(*a, q2_).size(), 4U);
        EXPECT_EQ(browse(*a, q1_).size(), static_cast<std::size_t>(round + 1));
        while (!get(*a, q2_).empty()) {
        }
    }
}

TEST_F(Processes, ForkedChildrenDoNotOwnTheConnection)
{
    const auto a = connect();
    ASSERT_EQ(put(*a, q1_, "1"), success());
    UnitOfWork unit(*a);
    ASSERT_EQ(unit.get(q1_), "1");
    EXPECT_FALSE(a->forked());
    EXPECT_EQ(runProcess([&] {
                  if (!a->forked() || a->check() != failure(MQRC_HCONN_ERROR)) return 1;
                  const auto own = attach(folder_, "QM1"); // a connection of its own is fine
                  if (own.outcome.failed()) return 2;
                  if (!browse(*own.attachment, q1_).empty()) return 3;
                  if (own.attachment->releaseDead()) return 4; // the parent is alive
                  return put(*own.attachment, q1_, "child's") == success() ? 0 : 5;
              }),
              0);
    EXPECT_EQ(a->check(), success());
    static_cast<void>(a->releaseDead());
    EXPECT_EQ(unit.commit(), success());
    EXPECT_EQ(browse(*a, q1_), (Texts{"child's"}));
}

TEST_F(Processes, SlotsOfManyConnectionsAreFoundAndGivenBack)
{
    for (int round = 0; round < 3; ++round) {
        std::vector<std::unique_ptr<Attachment>> many;
        std::set<std::uint32_t> slots;
        for (int n = 0; n < 1500; ++n) {
            many.push_back(connect());
            slots.insert(many.back()->slot());
        }
        EXPECT_EQ(slots.size(), many.size());
        EXPECT_EQ(put(*many.back(), q1_, "x"), success());
        EXPECT_EQ(get(*many.front(), q1_), "x");
    }
}

TEST_F(Processes, OnlySoManyConnectionsFit)
{
    std::vector<std::unique_ptr<Attachment>> many;
    Outcome outcome;
    while (!outcome.failed() && many.size() < 5000) {
        auto attached = attach(folder_, "QM1");
        outcome = attached.outcome;
        if (attached.attachment) many.push_back(std::move(attached.attachment));
    }
    EXPECT_EQ(outcome, failure(MQRC_MAX_CONNS_LIMIT_REACHED));
    EXPECT_EQ(many.size(), 4096U);
    many.pop_back();
    EXPECT_EQ(attach(folder_, "QM1").outcome, success());
}

TEST_F(Processes, UnitWhoseUndoerDiedIsAnsweredByWhatTheLogTookInTheEnd)
{
    const auto owner = connect();
    Ticket ticket = 0;
    ASSERT_EQ(owner->update(1,
                            [&](WriteTransaction &transaction) {
                                ticket = transaction.put({.key = owner->newKey(q1_, 9),
                                                          .header = headerOf({.persistence = MQPER_PERSISTENT}),
                                                          .body = bytesOf("kept")});
                                return success();
                            }),
              success());
    // Another process finds the log full, tells the owner that its unit will be undone, and dies before it is.
    const int end = runProcess([&] {
        const auto other = connect();
        static bool full = false;
        seams.storageError = [](StorageCall call) {
            if (call == StorageCall::LiveCommit && full) die();
            if (call != StorageCall::LogCommit) return 0;
            full = true;
            return ENOSPC;
        };
        static_cast<void>(put(*other, q2_, "another", {.persistence = MQPER_PERSISTENT}));
        return 0;
    });
    ASSERT_EQ(end, -SIGKILL);
    EXPECT_EQ(owner->harden(ticket), success());
    EXPECT_EQ(browse(*owner, q1_), std::vector<std::string>{"kept"});
}

} // namespace
} // namespace mqrig::qmgr::store::test
