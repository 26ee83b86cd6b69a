// Backups of running queue managers, and queue managers made from them.

#include <algorithm>
#include <fstream>
#include <functional>
#include <map>
#include <random>

#include "qmgr/store/backup.h"
#include "qmgr/store/check.h"
#include "store_test.h"

#include <cerrno>
#include <csignal>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mqrig::qmgr::store::test {
namespace {

using Fault = BackupResult::Fault;
using Texts = std::vector<std::string>;

bool anyBytes(const Definition &)
{
    return true;
}

class Backups : public StoreTest {
protected:
    Backups()
    {
        std::filesystem::create_directory(elsewhere_);
        std::filesystem::create_directory(other_);
    }
    [[nodiscard]] BackupResult backUp(ExistingFile existing = ExistingFile::Keep) const
    {
        return backUpQueueManager(folder_, "QM1", file_, existing, anyBytes);
    }
    [[nodiscard]] BackupResult restore(std::string_view name = "QM1") const
    {
        return restoreQueueManager(other_, name, file_, anyBytes);
    }
    [[nodiscard]] std::unique_ptr<Attachment> connectRestored() const
    {
        Attached attached = attach(other_, "QM1");
        EXPECT_EQ(attached.outcome, success());
        return std::move(attached.attachment);
    }

    std::filesystem::path elsewhere_ = std::filesystem::path(folder_.string() + "-backups");
    std::filesystem::path other_ = elsewhere_ / "store";
    std::filesystem::path file_ = elsewhere_ / "QM1.backup";

    ~Backups() override
    {
        std::error_code ignored;
        std::filesystem::remove_all(elsewhere_, ignored);
    }
};

TEST_F(Backups, HoldCommittedPersistentMessagesInOrderAndDefinitions)
{
    const auto a = connect();
    ASSERT_EQ(put(*a, q1_, "low", {.persistence = MQPER_PERSISTENT, .priority = 1}), success());
    ASSERT_EQ(put(*a, q1_, "gone", {.priority = 9}), success());
    ASSERT_EQ(put(*a, q1_, std::string(70'000, 'h'), {.persistence = MQPER_PERSISTENT, .priority = 9}), success());
    ASSERT_EQ(put(*a, q1_, "low too", {.persistence = MQPER_PERSISTENT, .priority = 1}), success());
    ASSERT_EQ(put(*a, q2_, "got, not committed", {.persistence = MQPER_PERSISTENT}), success());
    UnitOfWork unit(*a);
    ASSERT_EQ(unit.put(q1_, "uncommitted", {.persistence = MQPER_PERSISTENT}), success());
    ASSERT_EQ(unit.get(q2_), "got, not committed");
    const BackupResult made = backUp();
    EXPECT_EQ(made.fault, Fault::None);
    EXPECT_EQ(made.contents.messages, 4U);
    ASSERT_EQ(unit.commit(), success());

    EXPECT_EQ(restore().fault, Fault::None);
    const auto b = connectRestored();
    EXPECT_EQ(browse(*b, q1_), (Texts{std::string(70'000, 'h'), "low", "low too"}));
    EXPECT_EQ(browse(*b, q2_), (Texts{"got, not committed"}));
    EXPECT_EQ(b->findDefinition(MQOT_Q, "Q2").value_or(Definition{}).bytes, "second");
    EXPECT_EQ(put(*b, q1_, "new", {.persistence = MQPER_PERSISTENT}), success());
    EXPECT_EQ(statusOf(*b, q1_).depth, 4U);
    EXPECT_EQ(checkQueueManager(other_, "QM1", anyBytes).count, 0U);
    EXPECT_EQ(statusOf(*a, q1_).depth, 5U); // the original is as it was
}

TEST_F(Backups, AreOneFileForTheOwnerAlone)
{
    const mode_t before = umask(0);
    EXPECT_EQ(backUp().fault, Fault::None);
    umask(before);
    struct stat status {};
    ASSERT_EQ(stat(file_.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0600U);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(elsewhere_), {}), 2); // and the other store
}

TEST_F(Backups, OfAnEndedQueueManagerComeBackRunning)
{
    ASSERT_EQ(put(*connect(), q1_, "kept", {.persistence = MQPER_PERSISTENT}), success());
    ASSERT_EQ(endQueueManager(folder_, "QM1", End::Quiesce), success());
    EXPECT_EQ(backUp().fault, Fault::None);
    EXPECT_EQ(stateOf(folder_, "QM1").state, State::Ended);
    EXPECT_EQ(restore().fault, Fault::None);
    EXPECT_EQ(browse(*connectRestored(), q1_), Texts{"kept"});
}

TEST_F(Backups, ReplaceAFileOnlyWhenTold)
{
    std::ofstream(file_) << "precious";
    EXPECT_EQ(backUp().fault, Fault::FileExists);
    EXPECT_EQ(std::filesystem::file_size(file_), 8U);
    EXPECT_EQ(backUp(ExistingFile::Replace).fault, Fault::None);
    EXPECT_GT(std::filesystem::file_size(file_), 4096U);
    std::filesystem::remove(file_);
    std::filesystem::create_directory(file_);
    EXPECT_EQ(backUp(ExistingFile::Replace).error, EISDIR);
    std::filesystem::remove(file_);
    const auto target = elsewhere_ / "target";
    std::ofstream(target) << "precious";
    std::filesystem::create_symlink(target, file_);
    EXPECT_EQ(backUp(ExistingFile::Replace).fault, Fault::None);
    EXPECT_EQ(std::filesystem::file_size(target), 8U); // the link was replaced, not what it leads to
}

TEST_F(Backups, AreRefusedWhereTheyCannotBe)
{
    const auto at = [this](const std::filesystem::path &file) {
        return backUpQueueManager(folder_, "QM1", file, ExistingFile::Replace, anyBytes);
    };
    EXPECT_EQ(at(folder_ / "QM1" / "log.db").fault, Fault::InsideStore);
    EXPECT_EQ(at(folder_ / "backup").fault, Fault::InsideStore);
    EXPECT_EQ(at(elsewhere_ / "nowhere" / "backup").error, ENOENT);
    EXPECT_EQ(backUpQueueManager(folder_, "QM9", file_, ExistingFile::Keep, anyBytes).outcome,
              failure(MQRC_Q_MGR_NAME_ERROR));
    EXPECT_FALSE(std::filesystem::exists(file_));
    EXPECT_EQ(browse(*connect(), q1_), Texts{});
}

// As other programs that open the file may: nobody waits for ever, and no disk is said to be full.
TEST_F(Backups, OfALogThatSomebodyElseKeepsAreRefusedAsBusy)
{
    ASSERT_EQ(endQueueManager(folder_, "QM1", End::Immediate), success());
    sqlite3 *keeper = nullptr;
    ASSERT_EQ(sqlite3_open((folder_ / "QM1" / "log.db").c_str(), &keeper), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(keeper, "PRAGMA locking_mode = EXCLUSIVE; BEGIN IMMEDIATE", nullptr, nullptr, nullptr),
              SQLITE_OK);
    const BackupResult refused = backUp();
    sqlite3_close(keeper);
    EXPECT_EQ(refused.fault, Fault::FileError);
    EXPECT_EQ(refused.error, EBUSY);
    EXPECT_FALSE(std::filesystem::exists(file_));
    EXPECT_EQ(backUp().fault, Fault::None);
}

TEST_F(Backups, OfADamagedLogAreRefusedWithItsFindings)
{
    ASSERT_EQ(put(*connect(), q1_, "the message in question", {.persistence = MQPER_PERSISTENT}), success());
    ASSERT_EQ(endQueueManager(folder_, "QM1", End::Immediate), success());
    const auto log = folder_ / "QM1" / "log.db";
    sqlite3 *database = nullptr;
    ASSERT_EQ(sqlite3_open(log.c_str(), &database), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(database, "UPDATE messages SET body = x'00'", nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(database);
    std::ofstream(file_) << "precious";
    // A row that is damaged can be copied, and is found in the copy.
    BackupResult refused = backUp(ExistingFile::Replace);
    EXPECT_EQ(refused.fault, Fault::Damaged);
    ASSERT_EQ(refused.findings.size(), 1U);
    EXPECT_NE(refused.findings[0].find("checksum is wrong"), std::string::npos) << refused.findings[0];
    // What is no database cannot.
    std::ofstream(log, std::ios::trunc) << std::string(20'000, 'x');
    refused = backUp(ExistingFile::Replace);
    EXPECT_EQ(refused.fault, Fault::Damaged);
    EXPECT_EQ(refused.findings, Texts{"log.db is no log: file is not a database"});
    EXPECT_EQ(std::filesystem::file_size(file_), 8U);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(elsewhere_), {}), 2); // and the other store
}

// Somebody makes it while the backup is being verified.
TEST_F(Backups, DoNotReplaceWhatComesMeanwhile)
{
    const auto backUpWhile = [this](ExistingFile existing, const std::function<void()> &act) {
        return backUpQueueManager(folder_, "QM1", file_, existing, [&](const Definition &) {
            if (!std::filesystem::exists(file_)) act();
            return true;
        });
    };
    EXPECT_EQ(backUpWhile(ExistingFile::Keep, [this] { std::ofstream(file_) << "precious"; }).fault, Fault::FileExists);
    EXPECT_EQ(std::filesystem::file_size(file_), 8U);
    std::filesystem::remove(file_);
    const BackupResult refused =
        backUpWhile(ExistingFile::Replace, [this] { std::filesystem::create_directory(file_); });
    EXPECT_EQ(refused.fault, Fault::FileError);
    EXPECT_EQ(refused.error, EISDIR);
    EXPECT_TRUE(std::filesystem::is_empty(file_));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(elsewhere_), {}), 2); // and the other store
}

TEST_F(Backups, NeverHoldASplitUnit)
{
    // Units of three: two messages on the first queue, one on the second, all with the unit's name.
    std::vector<pid_t> writers;
    for (int writer = 0; writer < 4; ++writer) {
        writers.push_back(startProcess([this, writer] {
            const auto attached = attach(folder_, "QM1");
            if (attached.outcome.failed()) return 1;
            for (int n = 0; n < 1000; ++n) { // enough for a fast machine, and no more than can be looked through
                UnitOfWork unit(*attached.attachment);
                const std::string text = std::to_string(writer) + '/' + std::to_string(n);
                for (const QueueId queue : {q1_, q2_, q1_})
                    if (unit.put(queue, text, {.persistence = MQPER_PERSISTENT}).failed()) return 2;
                if (unit.commit() != success()) return 3;
            }
            for (;;)
                pause();
        }));
    }
    int backups = 0;
    std::uint64_t before = 0;
    while (backups < 5) {
        const BackupResult made = backUp(ExistingFile::Replace);
        ASSERT_EQ(made.fault, Fault::None) << (made.findings.empty() ? "" : made.findings[0]);
        EXPECT_EQ(made.contents.messages % 3, 0U);
        EXPECT_GE(made.contents.messages, before);
        before = made.contents.messages;
        if (made.contents.messages == 0) continue; // nobody has begun
        ++backups;
        ASSERT_EQ(restore().fault, Fault::None);
        {
            const auto restored = connectRestored();
            std::map<std::string, int> first;
            std::map<std::string, int> second;
            for (const std::string &text : browse(*restored, q1_))
                ++first[text];
            for (const std::string &text : browse(*restored, q2_))
                ++second[text];
            EXPECT_EQ(first.size(), second.size());
            for (const auto &[text, count] : first)
                EXPECT_TRUE(count == 2 && second[text] == 1) << text;
        }
        ASSERT_EQ(endQueueManager(other_, "QM1", End::Immediate), success());
        ASSERT_EQ(deleteQueueManager(other_, "QM1"), success());
    }
    for (const pid_t writer : writers) {
        kill(writer, SIGKILL);
        EXPECT_EQ(endOfProcess(writer), -SIGKILL);
    }
    EXPECT_EQ(checkQueueManager(folder_, "QM1", anyBytes).findings, Texts{});
}

class Restoring : public Backups {
protected:
    void SetUp() override
    {
        ASSERT_EQ(put(*connect(), q1_, "the message in question", {.persistence = MQPER_PERSISTENT}), success());
        ASSERT_EQ(backUp().fault, Fault::None);
        std::ifstream stream(file_, std::ios::binary);
        whole_.assign(std::istreambuf_iterator<char>(stream), {});
    }
    void write(std::string_view bytes) const { std::ofstream(file_, std::ios::binary | std::ios::trunc) << bytes; }
    void expectNothingMade() const { EXPECT_TRUE(std::filesystem::is_empty(other_)); }
    std::string whole_;
};

TEST_F(Restoring, NeedsANameThatIsFree)
{
    EXPECT_EQ(restore().fault, Fault::None);
    EXPECT_EQ(restore().outcome, failure(MQRC_OBJECT_ALREADY_EXISTS));
    EXPECT_EQ(browse(*connectRestored(), q1_).size(), 1U);
}

TEST_F(Restoring, UnderAnotherNameIsRefused)
{
    const BackupResult result = restore("QM2");
    EXPECT_EQ(result.fault, Fault::OtherQueueManager);
    EXPECT_EQ(result.contents.name, "QM1");
    expectNothingMade();
}

TEST_F(Restoring, TakesNoFileThatIsNoBackup)
{
    write("");
    EXPECT_EQ(restore().fault, Fault::Damaged);
    write(std::string(9000, 'x'));
    EXPECT_EQ(restore().fault, Fault::Damaged);
    std::filesystem::remove(file_);
    EXPECT_EQ(restore().error, ENOENT);
    std::filesystem::create_directory(file_);
    EXPECT_EQ(restore().error, EISDIR);
    std::filesystem::remove(file_);
    ASSERT_EQ(mkfifo(file_.c_str(), 0600), 0);
    EXPECT_EQ(restore().error, EINVAL);
    std::filesystem::remove(file_);
    // The log itself, without the write-ahead file that belongs to it.
    std::filesystem::copy_file(folder_ / "QM1" / "log.db", file_);
    EXPECT_EQ(restore().fault, Fault::NoBackup);
    expectNothingMade();
}

TEST_F(Restoring, OfADamagedFileIsRefusedOrUnharmed)
{
    std::mt19937 random(9); // NOLINT: the same places every time
    int refused = 0;
    for (int n = 0; n < 60; ++n) {
        std::string damaged = whole_;
        if (n % 3 == 0) {
            damaged.resize(random() % damaged.size());
        } else {
            const std::size_t at = random() % damaged.size();
            damaged[at] = static_cast<char>(damaged[at] ^ (1 << random() % 8));
        }
        write(damaged);
        if (restore().fault != Fault::None) {
            ++refused;
            expectNothingMade();
            continue;
        }
        EXPECT_EQ(browse(*connectRestored(), q1_), Texts{"the message in question"});
        ASSERT_EQ(endQueueManager(other_, "QM1", End::Immediate), success());
        ASSERT_EQ(deleteQueueManager(other_, "QM1"), success());
    }
    EXPECT_GT(refused, 20);
}

} // namespace
} // namespace mqrig::qmgr::store::test
