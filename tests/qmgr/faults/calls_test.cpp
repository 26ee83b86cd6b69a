// Single calls of the store whose n-th call of the system fails, looked at more closely than a history can.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <unistd.h>

#include "../store/store_test.h"
#include "nth_call.h"
#include "qmgr/objects/system_objects.h"
#include "qmgr/store/backup.h"
#include "qmgr/store/log_database.h"
#include "qmgr/store/queue_managers.h"

namespace mqrig::qmgr::faults {
namespace {

class Calls : public ::testing::Test {
protected:
    Calls()
    {
        std::string folder =
            (::access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp") + std::string("/mqrig-calls-XXXXXX");
        if (::mkdtemp(folder.data()) == nullptr) throw std::runtime_error("mkdtemp");
        folder_ = folder;
    }
    ~Calls() override
    {
        nthCallDisarm();
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    std::filesystem::path folder_;
};

class StoreCalls : public store::test::StoreTest {
protected:
    ~StoreCalls() override { nthCallDisarm(); }
};

// How many messages a log has after a power failure, when what is in memory alone has gone.
int messagesAfterPowerFailure(const std::filesystem::path &log, const std::filesystem::path &copy)
{
    std::filesystem::remove_all(copy);
    std::filesystem::create_directory(copy);
    for (const char *companion : {"", "-wal"})
        std::filesystem::copy_file(log.string() + companion, (copy / "log.db").string() + companion);
    const auto [outcome, opened] = store::LogDatabase::open(copy / "log.db");
    if (outcome.failed()) return -1;
    int messages = 0;
    const Outcome read = opened->forEachMessage([&](const auto &, const auto &, auto) {
        ++messages;
        return true;
    });
    return read.failed() ? -1 : messages;
}

// The commit brings the write-ahead file to where SQLite needs memory for more of its index: by then all is on disk.
TEST_F(Calls, ACommitThatLacksMemoryIsUndoneOnDiskTooOrIsNotKnown)
{
    const std::filesystem::path log = folder_ / "log.db";
    const std::string body(std::size_t{4100} * 4092, 'b');
    store::MessageHeader header{};
    header.bodyLength = static_cast<decltype(header.bodyLength)>(body.size());
    long failed = 1;
    int undone = 0;
    for (long nth = 1; failed > 0; ++nth) {
        for (const char *companion : {"", "-wal", "-shm"})
            std::filesystem::remove(log.string() + companion);
        const auto [created, database] = store::LogDatabase::create(log, "QM1");
        ASSERT_TRUE(created.ok());
        ASSERT_TRUE(database->begin().ok());
        database->insertMessage({.queue = 1, .order = 5, .sequence = 1}, header, std::as_bytes(std::span(body)));
        nthCallArm(CallMemory, nth, 0);
        const Outcome committed = database->commit();
        nthCallDisarm();
        failed = nthCallFailed();
        const int messages = messagesAfterPowerFailure(log, folder_ / "copy");
        if (committed.ok()) {
            EXPECT_EQ(messages, 1) << nth;
        } else if (committed.Reason != MQRC_UNEXPECTED_ERROR) {
            EXPECT_EQ(messages, 0) << nth;
            ++undone;
        }
    }
    EXPECT_GT(undone, 0);
}

TEST_F(Calls, ABackupWhoseNameMayBeLostWithThePowerIsNotSaidToBeMade)
{
    const auto canDecode = [](const store::Definition &) { return true; };
    const auto made = store::createQueueManager(folder_ / "store", "QM1", objects::systemObjects("QM1"),
                                                store::DefaultQueueManager::No);
    ASSERT_TRUE(made.ok());
    std::filesystem::create_directory(folder_ / "backups");
    const auto backUp = [&](long nth) {
        nthCallArm(CallSync, nth, 0);
        auto result = store::backUpQueueManager(folder_ / "store", "QM1", folder_ / "backups" / "QM1",
                                                store::ExistingFile::Replace, canDecode);
        nthCallDisarm();
        return result;
    };
    EXPECT_EQ(backUp(0).fault, store::BackupResult::Fault::None);
    const auto last = backUp(nthCallCount(CallSync));
    EXPECT_EQ(nthCallFailed(), 1);
    EXPECT_EQ(last.fault, store::BackupResult::Fault::FileError);
    EXPECT_EQ(last.error, EIO);
}

TEST_F(Calls, AQueueManagerWhoseFolderIsNotOnDiskIsNotMade)
{
    const auto create = [&](long nth) {
        nthCallArm(CallSync, nth, 0);
        const Outcome made =
            store::createQueueManager(folder_, "QM1", objects::systemObjects("QM1"), store::DefaultQueueManager::No);
        nthCallDisarm();
        return made;
    };
    ASSERT_TRUE(create(0).ok());
    const long syncs = nthCallCount(CallSync);
    ASSERT_TRUE(store::endQueueManager(folder_, "QM1", store::End::Immediate).ok());
    ASSERT_TRUE(store::deleteQueueManager(folder_, "QM1").ok());
    EXPECT_EQ(create(syncs), failure(MQRC_RESOURCE_PROBLEM));
    EXPECT_EQ(nthCallFailed(), 1);
    EXPECT_EQ(store::stateOf(folder_, "QM1").outcome.Reason, MQRC_Q_MGR_NAME_ERROR);
    EXPECT_TRUE(create(0).ok());
}

// Whoever cannot sweep the messages out leaves that to the next one, and everybody else's life goes on.
TEST_F(StoreCalls, AQueueDeletedWithoutMemoryEndsNobodysLife)
{
    const auto connection = connect();
    const std::string body(3000, 'b');
    long failed = 1;
    int gone = 0;
    int kept = 0;
    for (long nth = 1; failed > 0; ++nth) {
        store::Definition queue{.type = MQOT_Q, .name = "NEW", .bytes = "new"};
        ASSERT_TRUE(connection->define(queue).ok()) << nth;
        for (int message = 0; message < 40; ++message)
            ASSERT_TRUE(store::test::put(*connection, queue.queue, body).ok());
        nthCallArm(CallMemory, nth, 1);
        const Outcome removed = connection->remove(MQOT_Q, "NEW", nullptr);
        nthCallDisarm();
        failed = nthCallFailed();
        ASSERT_NE(connection->state(), store::State::Ended) << nth;
        if (removed.ok()) {
            ++gone;
        } else {
            ++kept;
            EXPECT_EQ(store::test::browse(*connection, queue.queue).size(), 40U) << nth;
            ASSERT_TRUE(connection->remove(MQOT_Q, "NEW", nullptr).ok()) << nth;
        }
        store::Definition other{.type = MQOT_Q, .name = "OTHER", .bytes = "other"};
        ASSERT_TRUE(connection->define(other).ok()) << nth;
        EXPECT_FALSE(connection->findDefinition(MQOT_Q, "NEW").has_value()) << nth;
        EXPECT_EQ(store::test::browse(*connection, queue.queue).size(), 0U) << nth;
        ASSERT_TRUE(connection->remove(MQOT_Q, "OTHER", nullptr).ok()) << nth;
    }
    EXPECT_GT(gone, 1);
    EXPECT_GT(kept, 0);
}

} // namespace
} // namespace mqrig::qmgr::faults
