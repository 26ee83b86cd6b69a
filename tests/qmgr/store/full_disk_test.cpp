// A disk that is really full: a small tmpfs that another program fills. Where none can be mounted (no privilege), the
// storage seam stands in for it: nothing more can be reserved. What was used is printed.

#include <cerrno>
#include <fstream>
#include <iostream>

#include "qmgr/store/backup.h"
#include "qmgr/store/check.h"
#include "qmgr/store/seams.h"
#include "store_test.h"

#include <fcntl.h>
#include <sys/mount.h>
#include <unistd.h>

namespace mqrig::qmgr::store::test {
namespace {

class FullDisk : public StoreTest {
protected:
    FullDisk()
    {
        disk_ = folder_ / "disk";
        std::filesystem::create_directory(disk_);
        mounted_ = mount("tmpfs", disk_.c_str(), "tmpfs", 0, "size=200m,mode=0700") == 0;
        std::cout << (mounted_ ? "on a tmpfs of 200 MB\n" : "no tmpfs can be mounted: the storage seam stands in\n");
        const std::vector<Definition> objects{{.type = MQOT_Q, .name = "Q1", .bytes = ""}};
        EXPECT_EQ(createQueueManager(disk_, "QM1", objects, DefaultQueueManager::No), success());
    }
    ~FullDisk() override
    {
        seams.storageError = nullptr;
        if (mounted_) umount2(disk_.c_str(), MNT_DETACH);
    }
    // Leaves not a byte to anybody.
    void fill() const
    {
        if (!mounted_) {
            seams.storageError = [](StorageCall call) { return call == StorageCall::Reserve ? ENOSPC : 0; };
            return;
        }
        const int fd = open((disk_ / "somebody else's").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
        ASSERT_GE(fd, 0);
        std::vector<char> block(1 << 20, 'x');
        for (std::size_t size = block.size(); size > 0;) {
            if (write(fd, block.data(), size) <= 0) size /= 2;
        }
        close(fd);
    }
    std::filesystem::path disk_;
    bool mounted_ = false;
};

// Stores `before` messages, lets the disk fill up, stores what else fits, and gets them all.
void fillAndEmpty(Attachment &attachment, QueueId queue, MQLONG persistence, std::size_t size, unsigned before,
                  const std::function<void()> &fillDisk)
{
    const std::string text(size, 't');
    unsigned stored = 0;
    for (; stored < before; ++stored)
        ASSERT_EQ(put(attachment, queue, text, {.persistence = persistence}), success());
    fillDisk();
    Outcome outcome;
    while (stored < 500'000 && !(outcome = put(attachment, queue, text, {.persistence = persistence})).failed())
        ++stored;
    EXPECT_EQ(outcome, failure(MQRC_STORAGE_NOT_AVAILABLE));
    EXPECT_EQ(statusOf(attachment, queue).depth, stored);
    std::cout << stored << " messages of " << size << " bytes fitted\n";
    unsigned got = 0;
    while (get(attachment, queue) == text)
        ++got;
    EXPECT_EQ(got, stored);
    EXPECT_EQ(put(attachment, queue, text, {.persistence = persistence}), success());
    EXPECT_EQ(get(attachment, queue), text);
}

TEST_F(FullDisk, CanBeEmptiedOfPersistentMessages)
{
    const auto attached = attach(disk_, "QM1");
    ASSERT_EQ(attached.outcome, success());
    const QueueId queue = attached.attachment->findDefinition(MQOT_Q, "Q1").value_or(Definition{}).queue;
    fillAndEmpty(*attached.attachment, queue, MQPER_PERSISTENT, 20'000, 200, [this] { fill(); });
}

TEST_F(FullDisk, CanBeEmptiedOfManySmallPersistentMessages)
{
    const auto attached = attach(disk_, "QM1");
    ASSERT_EQ(attached.outcome, success());
    const QueueId queue = attached.attachment->findDefinition(MQOT_Q, "Q1").value_or(Definition{}).queue;
    fillAndEmpty(*attached.attachment, queue, MQPER_PERSISTENT, 500, mounted_ ? 10'000 : 500, [this] { fill(); });
}

TEST_F(FullDisk, CanBeEmptiedOfNonPersistentMessages)
{
    const auto attached = attach(disk_, "QM1");
    ASSERT_EQ(attached.outcome, success());
    const QueueId queue = attached.attachment->findDefinition(MQOT_Q, "Q1").value_or(Definition{}).queue;
    fillAndEmpty(*attached.attachment, queue, MQPER_NOT_PERSISTENT, 3'000, 200, [this] { fill(); });
}

TEST_F(FullDisk, IsNoPlaceForANewQueueManager)
{
    if (!mounted_) {
        std::cout << "needs a disk of its own; the damage is the same as that of a killed create\n";
        seams.storageError = [](StorageCall call) { return call == StorageCall::LogCommit ? ENOSPC : 0; };
    } else {
        fill();
    }
    EXPECT_EQ(createQueueManager(disk_, "QM2", {}, DefaultQueueManager::No), failure(MQRC_STORAGE_NOT_AVAILABLE));
    EXPECT_EQ(listQueueManagers(disk_).size(), 1U);
    // Nor is there room for the first life of the one that was made before.
    if (mounted_) {
        EXPECT_EQ(attach(disk_, "QM1").outcome, failure(MQRC_STORAGE_NOT_AVAILABLE));
        std::filesystem::remove(disk_ / "somebody else's");
        EXPECT_EQ(attach(disk_, "QM1").outcome, success());
    }
}

TEST_F(FullDisk, TakesNoBackupAndRestoresNone)
{
    if (!mounted_) GTEST_SKIP() << "only root can mount a small disk";
    const auto anyBytes = [](const Definition &) { return true; };
    const auto store = disk_ / "store";
    const auto backup = disk_ / "backup";
    {
        const auto attached = attach(disk_, "QM1");
        const QueueId queue = attached.attachment->findDefinition(MQOT_Q, "Q1").value_or(Definition{}).queue;
        ASSERT_EQ(put(*attached.attachment, queue, std::string(5'000'000, 't'), {.persistence = MQPER_PERSISTENT}),
                  success());
    }
    const auto elsewhere = folder_ / "elsewhere";
    ASSERT_EQ(backUpQueueManager(disk_, "QM1", elsewhere, ExistingFile::Keep, anyBytes).fault,
              BackupResult::Fault::None);
    ASSERT_EQ(restoreQueueManager(store, "QM1", elsewhere, anyBytes).fault, BackupResult::Fault::None);
    fill();
    const BackupResult backedUp = backUpQueueManager(store, "QM1", backup, ExistingFile::Keep, anyBytes);
    EXPECT_EQ(backedUp.fault, BackupResult::Fault::FileError);
    EXPECT_EQ(backedUp.error, ENOSPC);
    const StoreCheck checked = checkQueueManager(store, "QM1", anyBytes);
    EXPECT_EQ(checked.outcome, failure(MQRC_RESOURCE_PROBLEM)) << "nothing is said against the files";
    EXPECT_EQ(checked.count, 0U);
    const BackupResult restored = restoreQueueManager(disk_ / "other", "QM1", elsewhere, anyBytes);
    EXPECT_EQ(restored.fault, BackupResult::Fault::FileError);
    EXPECT_EQ(restored.error, ENOSPC);
    EXPECT_TRUE(std::filesystem::is_empty(disk_ / "other"));
    std::filesystem::remove(disk_ / "somebody else's");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(disk_), {}), 3); // the two stores and the queue manager
    EXPECT_EQ(backUpQueueManager(store, "QM1", backup, ExistingFile::Keep, anyBytes).fault, BackupResult::Fault::None);
    EXPECT_EQ(checkQueueManager(store, "QM1", anyBytes).findings, std::vector<std::string>{});
    std::filesystem::remove(elsewhere);
}

TEST_F(FullDisk, KeepsItsDefaultQueueManager)
{
    if (!mounted_) GTEST_SKIP() << "only root can mount a small disk";
    ASSERT_EQ(createQueueManager(disk_, "QM2", {}, DefaultQueueManager::Yes), success());
    fill();
    EXPECT_EQ(setDefaultQueueManager(disk_, "QM1"), failure(MQRC_STORAGE_NOT_AVAILABLE));
    EXPECT_EQ(defaultQueueManager(disk_), "QM2");
    std::filesystem::remove(disk_ / "somebody else's");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(disk_), {}), 3); // two queue managers, the default
    EXPECT_EQ(setDefaultQueueManager(disk_, "QM1"), success());
    EXPECT_EQ(defaultQueueManager(disk_), "QM1");
}

} // namespace
} // namespace mqrig::qmgr::store::test
