// Storage that fails: what the caller is told is what has happened.

#include <cerrno>
#include <chrono>
#include <thread>

#include "qmgr/store/seams.h"
#include "store_test.h"

#include <sqlite3.h>

namespace mqrig::qmgr::store::test {
namespace {

using Texts = std::vector<std::string>;

StorageCall failing;
int failWith = 0;
int callsBefore = 0; // this many calls pass, the next one fails
bool forGood = false;

int injected(StorageCall call)
{
    if (call != failing || failWith == 0) return 0;
    if (callsBefore-- > 0) return 0;
    const int error = failWith;
    if (!forGood) failWith = 0;
    return error;
}

class Faults : public StoreTest {
protected:
    Faults() { seams.storageError = injected; }
    ~Faults() override
    {
        failWith = 0;
        seams.storageError = nullptr;
    }
    static void fail(StorageCall call, int before = 0, bool always = false)
    {
        failing = call;
        callsBefore = before;
        forGood = always;
        failWith = ENOSPC;
    }
    static void heal() { failWith = 0; }
};

constexpr Wanted persistent{.persistence = MQPER_PERSISTENT};

TEST_F(Faults, APutThatCannotBeLoggedIsUndone)
{
    const auto a = connect();
    for (const StorageCall call : {StorageCall::LogBegin, StorageCall::LogWrite, StorageCall::LogCommit}) {
        fail(call, 0, true);
        EXPECT_EQ(put(*a, q1_, "never", persistent), failure(MQRC_STORAGE_NOT_AVAILABLE));
        heal();
        EXPECT_EQ(statusOf(*a, q1_).depth, 0U);
        EXPECT_EQ(statusOf(*a, q1_).held, 0U);
    }
    EXPECT_EQ(put(*a, q1_, "now", persistent), success());
    EXPECT_EQ(browse(*a, q1_), (Texts{"now"}));
}

TEST_F(Faults, AGetThatCannotBeLoggedLeavesTheMessage)
{
    const auto a = connect();
    ASSERT_EQ(put(*a, q1_, "stays", persistent), success());
    fail(StorageCall::LogCommit, 0, true);
    EXPECT_EQ(get(*a, q1_), "");
    heal();
    EXPECT_EQ(statusOf(*a, q1_).depth, 1U);
    EXPECT_EQ(get(*a, q1_), "stays");
}

TEST_F(Faults, ACommitThatCannotBeLoggedIsBackedOut)
{
    const auto a = connect();
    ASSERT_EQ(put(*a, q1_, "in", persistent), success());
    UnitOfWork unit(*a);
    ASSERT_EQ(unit.get(q1_), "in");
    ASSERT_EQ(unit.put(q2_, "out"), success());
    fail(StorageCall::LogCommit, 0, true);
    EXPECT_EQ(unit.commit(), warning(MQRC_BACKED_OUT));
    heal();
    EXPECT_EQ(browse(*a, q1_), (Texts{"in"}));
    EXPECT_EQ(browse(*a, q2_), (Texts{}));
    EXPECT_EQ(statusOf(*a, q1_).depth, 1U);
    EXPECT_EQ(statusOf(*a, q2_).depth, 0U);
    EXPECT_EQ(statusOf(*a, q2_).uncommitted, 0U);
    ASSERT_EQ(a->read([&](ReadTransaction &transaction) {
        MessageCursor cursor(transaction, q1_);
        EXPECT_TRUE(cursor.first());
        EXPECT_EQ(cursor.header().md.BackoutCount, 1);
        return success();
    }),
              success());
}

TEST_F(Faults, ADefinitionThatCannotBeLoggedIsAsItWas)
{
    const auto a = connect();
    for (const StorageCall call : {StorageCall::LogBegin, StorageCall::LogWrite, StorageCall::LogCommit}) {
        fail(call, 0, true);
        Definition queue{.type = MQOT_Q, .name = "NEW", .bytes = "x"};
        EXPECT_EQ(a->define(queue), failure(MQRC_STORAGE_NOT_AVAILABLE));
        EXPECT_EQ(a->alter({.type = MQOT_Q, .name = "Q1", .bytes = "other"}, "first"),
                  failure(MQRC_STORAGE_NOT_AVAILABLE));
        EXPECT_EQ(a->remove(MQOT_Q, "Q2", nullptr), failure(MQRC_STORAGE_NOT_AVAILABLE));
        heal();
        EXPECT_FALSE(a->findDefinition(MQOT_Q, "NEW").has_value());
        EXPECT_EQ(a->findDefinition(MQOT_Q, "Q1").value_or(Definition{}).bytes, "first");
        EXPECT_EQ(put(*a, q2_, "any"), success());
    }
}

TEST_F(Faults, ASyncThatFailsEndsTheLife)
{
    const auto a = connect();
    const auto b = connect();
    fail(StorageCall::LogSync);
    EXPECT_EQ(put(*a, q1_, "who knows", persistent), failure(MQRC_CONNECTION_BROKEN));
    EXPECT_EQ(put(*b, q1_, "late", persistent), failure(MQRC_CONNECTION_BROKEN));
    EXPECT_EQ(b->check(), failure(MQRC_Q_MGR_STOPPING));
    EXPECT_EQ(attach(folder_, "QM1").outcome, failure(MQRC_Q_MGR_NOT_AVAILABLE));
    EXPECT_EQ(startQueueManager(folder_, "QM1"), success());
    EXPECT_EQ(browse(*connect(), q1_), (Texts{"who knows"})) << "what the disk has is believed";
}

TEST_F(Faults, AnEndThatCannotBeLoggedLeavesTheQueueManagerRunning)
{
    const auto a = connect();
    fail(StorageCall::LogCommit, 0, true);
    EXPECT_EQ(endQueueManager(folder_, "QM1", End::Reconnect), failure(MQRC_STORAGE_NOT_AVAILABLE));
    EXPECT_EQ(endQueueManager(folder_, "QM1", End::Quiesce), failure(MQRC_STORAGE_NOT_AVAILABLE));
    heal();
    EXPECT_EQ(a->state(), State::Running);
    EXPECT_EQ(put(*a, q1_, "goes on", persistent), success());
    EXPECT_EQ(browse(*connect(), q1_), Texts{"goes on"});
    EXPECT_EQ(endQueueManager(folder_, "QM1", End::Immediate), success());
    EXPECT_FALSE(a->endedToReconnect()) << "as the end that failed had asked";
}

// Neither who has put the message nor who ends the queue manager is there when somebody looks next.
TEST_F(Faults, AnEndThatCannotBeLoggedLeavesTheLifeWithNobodyConnected)
{
    EXPECT_EQ(runProcess([this] { return put(*connect(), q1_, "not persistent").failed() ? 1 : 0; }), 0);
    EXPECT_EQ(runProcess([this] {
                  fail(StorageCall::LogCommit, 0, true);
                  return endQueueManager(folder_, "QM1", End::Immediate).Reason == MQRC_STORAGE_NOT_AVAILABLE ? 0 : 1;
              }),
              0);
    EXPECT_EQ(runProcess([this] { return browse(*connect(), q1_) == Texts{"not persistent"} ? 0 : 1; }), 0);
    EXPECT_EQ(findings(), "");
}

TEST_F(Faults, UnitsThatTheLogDoesNotTakeTogetherAreLoggedOneByOne)
{
    const auto a = connect();
    const auto b = connect();
    Ticket ticket = 0;
    ASSERT_EQ(a->update(1,
                        [&](WriteTransaction &transaction) {
                            ticket = transaction.put(
                                {.key = a->newKey(q1_, 9), .header = headerOf(persistent), .body = bytesOf("first")});
                            return success();
                        }),
              success());
    fail(StorageCall::LogCommit);
    EXPECT_EQ(put(*b, q2_, "second", persistent), success());
    EXPECT_EQ(a->harden(ticket), success());
    EXPECT_EQ(browse(*b, q1_), Texts{"first"});
    ASSERT_EQ(endQueueManager(folder_, "QM1", End::Immediate), success());
    ASSERT_EQ(startQueueManager(folder_, "QM1"), success());
    const auto c = connect();
    EXPECT_EQ(browse(*c, q1_), Texts{"first"});
    EXPECT_EQ(browse(*c, q2_), Texts{"second"});
}

// As other programs that open the file may.
TEST_F(Faults, APutWaitsForWhoeverKeepsTheLogForAMoment)
{
    const auto a = connect();
    ASSERT_EQ(put(*a, q1_, "before", persistent), success());
    sqlite3 *keeper = nullptr;
    ASSERT_EQ(sqlite3_open((folder_ / "QM1" / "log.db").c_str(), &keeper), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(keeper, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr), SQLITE_OK);
    std::thread moment([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        sqlite3_exec(keeper, "COMMIT", nullptr, nullptr, nullptr);
    });
    EXPECT_EQ(put(*a, q1_, "behind", persistent), success());
    moment.join();
    sqlite3_close(keeper);
    EXPECT_EQ(browse(*a, q1_), (Texts{"before", "behind"}));
}

// Lets the first, second, third ... storage call of a script fail until it passes clean. Each time the world must be
// as the answers said.
void sweep(const std::function<std::unique_ptr<Attachment>()> &connect, QueueId q1, QueueId q2, StorageCall call)
{
    const auto a = connect();
    for (int before = 0; before < 200; ++before) {
        failing = call;
        callsBefore = before;
        forGood = false;
        failWith = ENOSPC;
        const bool isPut = put(*a, q1, "1", persistent) == success();
        UnitOfWork unit(*a);
        const std::string got = unit.get(q1);
        const bool isBooked = unit.put(q2, "2").ok();
        const Outcome committed = unit.commit();
        const bool isCommitted = committed.ok();
        const bool failed = failWith == 0;
        failWith = 0;
        const std::size_t left = isPut && (got.empty() || !isCommitted) ? 1 : 0;
        ASSERT_EQ(browse(*a, q1).size(), left) << before;
        ASSERT_EQ(browse(*a, q2).size(), isBooked && isCommitted ? 1U : 0U) << before;
        ASSERT_EQ(statusOf(*a, q1).depth, left) << before;
        ASSERT_EQ(statusOf(*a, q1).held, 0U) << before;
        ASSERT_EQ(statusOf(*a, q2).held, 0U) << before;
        ASSERT_EQ(statusOf(*a, q2).uncommitted, 0U) << before;
        while (!get(*a, q1).empty()) {
        }
        while (!get(*a, q2).empty()) {
        }
        if (!failed) {
            ASSERT_GT(before, 0);
            return;
        }
    }
    FAIL() << "never passed clean";
}

TEST_F(Faults, EveryFailedWriteToTheLogIsToldTruly)
{
    sweep([this] { return connect(); }, q1_, q2_, StorageCall::LogWrite);
}

TEST_F(Faults, EveryFailedCommitOfTheLogIsToldTruly)
{
    sweep([this] { return connect(); }, q1_, q2_, StorageCall::LogCommit);
}

TEST_F(Faults, EveryFailedStepOfTheLiveStateIsToldTruly)
{
    for (const StorageCall call : {StorageCall::LiveBegin, StorageCall::LivePut, StorageCall::LiveCommit}) {
        SCOPED_TRACE(static_cast<int>(call));
        sweep([this] { return connect(); }, q1_, q2_, call);
    }
}

TEST_F(Faults, ALogThatCannotBeOpenedUndoesThePut)
{
    const auto log = folder_ / "QM1" / "log.db";
    const auto a = connect(); // begun by this process: its log is not open yet
    ASSERT_EQ(put(*a, q1_, "not logged"), success());
    std::filesystem::rename(log, folder_ / "aside");
    EXPECT_TRUE(put(*a, q1_, "never", persistent).failed());
    std::filesystem::rename(folder_ / "aside", log);
    EXPECT_EQ(statusOf(*a, q1_).held, 0U);
    EXPECT_EQ(browse(*a, q1_), (Texts{"not logged"}));
    EXPECT_EQ(put(*a, q1_, "now", persistent), success());
}

TEST_F(Faults, AFullMapGrows)
{
    const auto a = connect();
    const auto b = connect();
    const std::string large(10'000'000, 'x');
    for (int n = 0; n < 15; ++n)
        ASSERT_EQ(put(*a, q1_, large), success());
    // A process that had the small map follows.
    EXPECT_EQ(runProcess([&] {
                  const auto attached = attach(folder_, "QM1");
                  if (browse(*attached.attachment, q1_).size() != 15) return 1;
                  for (int n = 0; n < 10; ++n) {
                      if (put(*attached.attachment, q1_, large).failed()) return 2;
                  }
                  return 0;
              }),
              0);
    EXPECT_EQ(browse(*b, q1_).size(), 25U);
    for (int n = 0; n < 25; ++n)
        ASSERT_EQ(get(*b, q1_), large);
}

TEST_F(Faults, AFullMapThatCannotGrowCanStillBeEmptied)
{
    const auto a = connect();
    fail(StorageCall::Reserve, 0, true);
    int stored = 0;
    Outcome outcome;
    while (stored < 100'000 && !(outcome = put(*a, q1_, std::string(5000, 'x'))).failed())
        ++stored;
    EXPECT_EQ(outcome, failure(MQRC_STORAGE_NOT_AVAILABLE));
    EXPECT_GT(stored, 1000);
    EXPECT_EQ(statusOf(*a, q1_).depth, static_cast<std::uint32_t>(stored));
    int got = 0;
    while (!get(*a, q1_).empty())
        ++got;
    EXPECT_EQ(got, stored);
    // What was freed is taken again, although the map has not grown.
    for (int n = 0; n < stored / 2; ++n)
        ASSERT_EQ(put(*a, q1_, std::string(5000, 'x')), success()) << n;
}

TEST_F(Faults, AUnitThatDoesNotFitIsBackedOut)
{
    const auto a = connect();
    UnitOfWork unit(*a);
    for (int n = 0; n < 10; ++n)
        ASSERT_EQ(unit.put(q1_, std::string(10'000'000, 'x')), success());
    fail(StorageCall::Reserve, 0, true);
    EXPECT_EQ(unit.commit(), warning(MQRC_BACKED_OUT));
    heal();
    EXPECT_EQ(statusOf(*a, q1_).depth, 0U);
    EXPECT_EQ(put(*a, q1_, std::string(60'000'000, 'x')), success());
}

TEST_F(Faults, ALogWithoutRoomTakesNoPutsButAllGets)
{
    const auto a = connect();
    for (int n = 0; n < 50; ++n)
        ASSERT_EQ(put(*a, q1_, "x", persistent), success());
    fail(StorageCall::Reserve, 0, true);
    int more = 0;
    Outcome outcome;
    while (more < 100'000 && !(outcome = put(*a, q1_, std::string(50'000, 'x'), persistent)).failed())
        ++more;
    EXPECT_EQ(outcome, failure(MQRC_STORAGE_NOT_AVAILABLE));
    EXPECT_EQ(statusOf(*a, q1_).depth, 50U + static_cast<unsigned>(more));
    for (int n = 0; n < 50 + more; ++n)
        ASSERT_NE(get(*a, q1_), "");
}

} // namespace
} // namespace mqrig::qmgr::store::test
