// Damaged, foreign, copied and unreadable files: an outcome, never a signal, and nothing made worse.

#include <cstdlib>
#include <fstream>
#include <optional>

#include "qmgr/store/log_database.h"
#include "qmgr/store/paths.h"
#include "qmgr/store/seams.h"
#include "store_test.h"

#include <csignal>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <sqlite3.h>

namespace mqrig::qmgr::store::test {
namespace {

using Texts = std::vector<std::string>;

class Files : public StoreTest {
protected:
    void SetUp() override
    {
        ASSERT_EQ(put(*connect(), q1_, "safe", {.persistence = MQPER_PERSISTENT}), success());
        ASSERT_EQ(put(*connect(), q1_, "gone with its life"), success());
        ASSERT_EQ(endQueueManager(folder_, "QM1", End::Quiesce), success());
    }
    void sql(const char *statement) const
    {
        sqlite3 *database = nullptr;
        ASSERT_EQ(sqlite3_open(log().c_str(), &database), SQLITE_OK);
        char *message = nullptr;
        EXPECT_EQ(sqlite3_exec(database, statement, nullptr, nullptr, &message), SQLITE_OK) << message;
        sqlite3_close(database);
    }
    [[nodiscard]] std::filesystem::path log() const { return folder_ / "QM1" / "log.db"; }
    [[nodiscard]] std::filesystem::path live() const { return folder_ / "QM1" / "live"; }
};

void overwrite(const std::filesystem::path &file, std::size_t at, std::string_view with)
{
    std::fstream stream(file, std::ios::in | std::ios::out | std::ios::binary);
    stream.seekp(static_cast<std::streamoff>(at));
    stream << with;
}

TEST_F(Files, ALogOfANewerFormatIsRefusedWithItsOwnReason)
{
    sql("PRAGMA user_version = 3");
    EXPECT_EQ(startQueueManager(folder_, "QM1"), failure(MQRC_ENVIRONMENT_ERROR));
    sql("PRAGMA user_version = 2");
    EXPECT_EQ(startQueueManager(folder_, "QM1"), success());
}

TEST_F(Files, ALogOfAnOlderFormatIsBroughtUpToDate)
{
    // In the first format the checksum did not cover the backout count.
    sql("UPDATE messages SET checksum = (checksum | 5) & ~(checksum & 5), backouts = 5");
    ASSERT_EQ(startQueueManager(folder_, "QM1"), success());
    ASSERT_EQ(endQueueManager(folder_, "QM1", End::Immediate), success());
    sql("UPDATE messages SET checksum = (checksum | 5) & ~(checksum & 5); PRAGMA user_version = 1");
    ASSERT_EQ(startQueueManager(folder_, "QM1"), success());
    const auto a = connect();
    EXPECT_EQ(browse(*a, q1_), (Texts{"safe"}));
    const Outcome read = a->read([this](ReadTransaction &transaction) {
        MessageCursor cursor(transaction, q1_);
        EXPECT_TRUE(cursor.first());
        EXPECT_EQ(cursor.header().md.BackoutCount, 5);
        return success();
    });
    EXPECT_EQ(read, success());
}

TEST_F(Files, ALogOfAFormatThatThereNeverWasIsRefused)
{
    for (const char *format : {"0", "-5"}) {
        sql((std::string("PRAGMA user_version = ") + format).c_str());
        EXPECT_EQ(startQueueManager(folder_, "QM1"), failure(MQRC_UNEXPECTED_ERROR));
        EXPECT_EQ(findings(), std::string("log.db has the format number ") + format + ", which there never was\n");
    }
    sql("PRAGMA user_version = 2");
    EXPECT_EQ(startQueueManager(folder_, "QM1"), success());
}

TEST_F(Files, ALogThatDoesNotSayWhetherItsQueueManagerRunsIsRefused)
{
    sql("UPDATE queue_manager SET state = 7");
    EXPECT_EQ(startQueueManager(folder_, "QM1"), failure(MQRC_UNEXPECTED_ERROR));
    sql("UPDATE queue_manager SET state = 3");
    EXPECT_EQ(startQueueManager(folder_, "QM1"), success());
    ASSERT_EQ(endQueueManager(folder_, "QM1", End::Immediate), success());
    sql("DELETE FROM queue_manager");
    EXPECT_EQ(startQueueManager(folder_, "QM1"), failure(MQRC_UNEXPECTED_ERROR));
}

TEST_F(Files, ALogThatLeadsToItselfIsRefusedAndItsNameTaken)
{
    std::filesystem::remove(log());
    std::filesystem::create_symlink("log.db", log());
    EXPECT_EQ(attach(folder_, "QM1").outcome, failure(MQRC_UNEXPECTED_ERROR));
    EXPECT_EQ(startQueueManager(folder_, "QM1"), failure(MQRC_UNEXPECTED_ERROR));
    EXPECT_EQ(createQueueManager(folder_, "QM1", {}, DefaultQueueManager::No), failure(MQRC_OBJECT_ALREADY_EXISTS));
    EXPECT_TRUE(std::filesystem::is_symlink(log()));
}

TEST_F(Files, LocksThatCannotBeOpenedKeepEverybodyOut)
{
    const auto locks = folder_ / "QM1" / "locks";
    const auto expectRefused = [this] {
        EXPECT_EQ(startQueueManager(folder_, "QM1"), failure(MQRC_UNEXPECTED_ERROR));
        EXPECT_EQ(attach(folder_, "QM1").outcome, failure(MQRC_UNEXPECTED_ERROR));
        EXPECT_EQ(deleteQueueManager(folder_, "QM1"), failure(MQRC_UNEXPECTED_ERROR));
        EXPECT_EQ(findings(), "locks cannot be opened\n");
    };
    std::filesystem::rename(locks, folder_ / "aside");
    std::filesystem::create_directory(locks, folder_ / "QM1");
    expectRefused();
    std::filesystem::remove(locks);
    std::filesystem::create_symlink("locks", locks);
    expectRefused();
    std::filesystem::remove(locks);
    std::filesystem::rename(folder_ / "aside", locks);
    EXPECT_EQ(startQueueManager(folder_, "QM1"), success());
    EXPECT_EQ(browse(*connect(), q1_), (Texts{"safe"}));
}

TEST_F(Files, AForeignDatabaseIsRefusedAndLeftAlone)
{
    sql("PRAGMA application_id = 17; PRAGMA journal_mode = DELETE");
    const auto size = std::filesystem::file_size(log());
    EXPECT_EQ(startQueueManager(folder_, "QM1"), failure(MQRC_UNEXPECTED_ERROR));
    EXPECT_EQ(std::filesystem::file_size(log()), size);
    EXPECT_FALSE(std::filesystem::exists(log().string() + "-wal"));
}

TEST_F(Files, AFileThatIsNoDatabaseIsRefused)
{
    std::filesystem::remove(log().string() + "-wal");
    std::filesystem::remove(log().string() + "-shm");
    std::ofstream(log(), std::ios::trunc) << std::string(20'000, 'x');
    std::filesystem::remove_all(live());
    EXPECT_EQ(attach(folder_, "QM1").outcome, failure(MQRC_UNEXPECTED_ERROR));
    EXPECT_EQ(stateOf(folder_, "QM1").outcome, failure(MQRC_UNEXPECTED_ERROR));
    const auto all = listQueueManagers(folder_);
    ASSERT_EQ(all.size(), 1U);
    EXPECT_TRUE(all[0].outcome.failed());
}

TEST_F(Files, AnEmptyLogIsRefused)
{
    std::filesystem::remove(log().string() + "-wal");
    std::filesystem::remove(log().string() + "-shm");
    std::ofstream(log(), std::ios::trunc).flush();
    std::filesystem::remove_all(live());
    EXPECT_EQ(attach(folder_, "QM1").outcome, failure(MQRC_UNEXPECTED_ERROR));
}

TEST_F(Files, ADamagedMessageIsNoticedByItsChecksum)
{
    sql("UPDATE messages SET body = 'sofe'");
    EXPECT_EQ(startQueueManager(folder_, "QM1"), failure(MQRC_UNEXPECTED_ERROR));
    sql("UPDATE messages SET body = CAST('safe' AS BLOB)");
    EXPECT_EQ(startQueueManager(folder_, "QM1"), success());
    EXPECT_EQ(browse(*connect(), q1_), (Texts{"safe"}));
}

TEST_F(Files, ADamagedDefinitionIsNoticedByItsChecksum)
{
    sql("UPDATE definitions SET queue = 77 WHERE name = 'Q1'");
    EXPECT_EQ(startQueueManager(folder_, "QM1"), failure(MQRC_UNEXPECTED_ERROR));
}

// Whatever happens to the live state while nobody has it open, it is thrown away and made again from the log.
class LiveFiles : public Files {
protected:
    // Makes a life with nobody in it, outside this process, as after the death of all its users.
    void live(const std::function<void()> &damage)
    {
        ASSERT_EQ(runProcess([&] {
                      if (startQueueManager(folder_, "QM1").failed()) return 1;
                      const auto attached = attach(folder_, "QM1");
                      if (attached.outcome.failed()) return 2;
                      return put(*attached.attachment, q1_, "unsafe") == success() ? 0 : 3;
                  }),
                  0);
        damage();
    }
    void expectRebuilt()
    {
        EXPECT_EQ(browse(*connect(), q1_), (Texts{"safe"}));
        EXPECT_EQ(put(*connect(), q1_, "new", {.persistence = MQPER_PERSISTENT}), success());
    }
};

TEST_F(LiveFiles, LeftByTheDeadAreUsedOn)
{
    live([] {});
    EXPECT_EQ(browse(*connect(), q1_), (Texts{"safe", "unsafe"}));
}

TEST_F(LiveFiles, MissingAreRebuilt)
{
    live([this] { std::filesystem::remove_all(Files::live()); });
    expectRebuilt();
}

TEST_F(LiveFiles, OfAnotherBootAreRebuilt)
{
    live([this] { overwrite(Files::live() / "control", 16, "00000000-0000"); });
    expectRebuilt();
}

TEST_F(LiveFiles, WithAStampThatIsNotReadyAreRebuilt)
{
    live([this] { overwrite(Files::live() / "control", 12, std::string(1, '\0')); });
    expectRebuilt();
}

TEST_F(LiveFiles, WithATruncatedControlBlockAreRebuilt)
{
    live([this] { std::filesystem::resize_file(Files::live() / "control", 100); });
    expectRebuilt();
}

TEST_F(LiveFiles, WithATruncatedDataFileAreRebuilt)
{
    live([this] { std::filesystem::resize_file(Files::live() / "data.mdb", 12'288); });
    expectRebuilt();
}

TEST_F(LiveFiles, WithAForeignDataFileAreRebuilt)
{
    live([this] { overwrite(Files::live() / "data.mdb", 0, std::string(16'384, 'x')); });
    expectRebuilt();
}

TEST_F(LiveFiles, OfACopiedStoreAreRebuilt)
{
    live([] {});
    const auto copy = folder_ / "COPY";
    std::filesystem::copy(folder_ / "QM1", copy, std::filesystem::copy_options::recursive);
    const auto a = connect("COPY");
    EXPECT_EQ(browse(*a, q1_), (Texts{"safe"}));
    EXPECT_EQ(browse(*connect(), q1_), (Texts{"safe", "unsafe"}));
    ASSERT_EQ(put(*a, q1_, "only in the copy", {.persistence = MQPER_PERSISTENT}), success());
    EXPECT_EQ(browse(*connect(), q1_), (Texts{"safe", "unsafe"}));
}

TEST_F(LiveFiles, ChangedFromOutsideAreFoundByACheckAndLeftAlone)
{
    live([this] { overwrite(Files::live() / "data.mdb", 0, std::string(16'384, 'x')); });
    EXPECT_EQ(findings(),
              "live: page 0 is not the head of such a file: the next connection makes it anew from log.db\n");
    EXPECT_EQ(findings(),
              "live: page 0 is not the head of such a file: the next connection makes it anew from log.db\n");
    expectRebuilt();
    EXPECT_EQ(findings(), "");
}

TEST_F(LiveFiles, TouchedFromOutsideAreFoundByACheck)
{
    live([this] {
        const auto changed = std::filesystem::last_write_time(Files::live() / "data.mdb");
        std::filesystem::last_write_time(Files::live() / "data.mdb", changed - std::chrono::seconds(1));
    });
    EXPECT_EQ(findings(), "live: its files were changed from outside: the next connection makes it anew from log.db\n");
    expectRebuilt();
}

TEST_F(LiveFiles, ThatMayNotBeOpenedAreSaidToBeOutOfReach)
{
    live([] {});
    const Unprivileged user(folder_);
    std::filesystem::permissions(Files::live() / "slots", std::filesystem::perms::none);
    EXPECT_EQ(findings(), "live: it cannot be looked at now\n");
    EXPECT_EQ(attach(folder_, "QM1").outcome, failure(MQRC_NOT_AUTHORIZED));
    std::filesystem::permissions(Files::live() / "slots", std::filesystem::perms(0600));
    EXPECT_EQ(browse(*connect(), q1_), (Texts{"safe", "unsafe"}));
}

TEST_F(LiveFiles, RemovedUnderAConnectionEndItsPersistentWork)
{
    ASSERT_EQ(startQueueManager(folder_, "QM1"), success());
    const auto old = connect();
    std::filesystem::remove_all(Files::live());
    const auto fresh = connect();
    ASSERT_EQ(put(*fresh, q1_, "1", {.persistence = MQPER_PERSISTENT}), success());
    EXPECT_EQ(put(*old, q1_, "2", {.persistence = MQPER_PERSISTENT}), failure(MQRC_CONNECTION_BROKEN));
    EXPECT_EQ(old->state(), State::Ended);
    EXPECT_EQ(browse(*fresh, q1_), (Texts{"safe", "1"}));
}

// A life whose last work stands in the log only, and is over before anybody has finished it.
TEST_F(LiveFiles, RemovedUnderUnfinishedWorkAreNotWrittenToAgain)
{
    ASSERT_EQ(startQueueManager(folder_, "QM1"), success());
    const auto old = connect();
    EXPECT_EQ(runProcess([this]() -> int {
                  const auto attached = attach(folder_, "QM1");
                  seams.reached = [](Step step) {
                      if (step == Step::UnitLogged) die();
                  };
                  static_cast<void>(put(*attached.attachment, q1_, "logged", {.persistence = MQPER_PERSISTENT}));
                  return 1;
              }),
              -SIGKILL);
    std::filesystem::remove_all(Files::live());
    const auto fresh = connect();
    EXPECT_EQ(put(*old, q1_, "late", {.persistence = MQPER_PERSISTENT}), failure(MQRC_CONNECTION_BROKEN));
    EXPECT_EQ(old->state(), State::Ended);
    EXPECT_EQ(put(*fresh, q1_, "1", {.persistence = MQPER_PERSISTENT}), success());
    EXPECT_EQ(browse(*fresh, q1_), (Texts{"safe", "logged", "1"}));
}

TEST_F(Files, AreForTheirOwnerAlone)
{
    using std::filesystem::perms;
    const mode_t before = umask(0);
    ASSERT_EQ(createQueueManager(folder_, "OPEN", {}, DefaultQueueManager::No), success());
    {
        const auto attached = attach(folder_, "OPEN");
        ASSERT_EQ(attached.outcome, success());
        Definition queue{.type = MQOT_Q, .name = "Q", .bytes = "x"};
        ASSERT_EQ(attached.attachment->define(queue), success());
        ASSERT_EQ(put(*attached.attachment, queue.queue, "x", {.persistence = MQPER_PERSISTENT}), success());
        int files = 0;
        for (const auto &entry : std::filesystem::recursive_directory_iterator(folder_ / "OPEN")) {
            if (!entry.is_regular_file()) continue;
            ++files;
            EXPECT_EQ(entry.status().permissions(), perms::owner_read | perms::owner_write) << entry.path();
        }
        EXPECT_GE(files, 6);
    }
    umask(before);
}

TEST_F(Files, OfAnotherUserAreNotAuthorized)
{
    // Root may read everything: the look is made by somebody else.
    ASSERT_EQ(startQueueManager(folder_, "QM1"), success());
    ASSERT_EQ(chmod(folder_.c_str(), 0755), 0);
    if (geteuid() != 0) {
        ASSERT_EQ(chmod((folder_ / "QM1").c_str(), 0), 0);
    }
    EXPECT_EQ(runProcess([&] {
                  if (geteuid() == 0 && setuid(65534) != 0) return 1;
                  return attach(folder_, "QM1").outcome == failure(MQRC_NOT_AUTHORIZED) ? 0 : 2;
              }),
              0);
    chmod((folder_ / "QM1").c_str(), 0700);
}

TEST_F(Files, ALogThatMayOnlyBeReadTakesNothingUntilItMayBeWritten)
{
    const Unprivileged user(folder_);
    ASSERT_EQ(startQueueManager(folder_, "QM1"), success());
    const auto a = connect();
    const auto putSafe = [&] { return put(*a, q1_, "new", {.persistence = MQPER_PERSISTENT}); };
    Definition queue{.type = MQOT_Q, .name = "NEW", .bytes = "x"};
    ASSERT_EQ(chmod(log().c_str(), 0400), 0);
    EXPECT_EQ(putSafe(), failure(MQRC_STORAGE_NOT_AVAILABLE));
    EXPECT_EQ(a->define(queue), failure(MQRC_NOT_AUTHORIZED));
    EXPECT_EQ(put(*a, q1_, "not logged"), success());
    ASSERT_EQ(chmod(log().c_str(), 0600), 0);
    EXPECT_EQ(putSafe(), success());
    EXPECT_EQ(a->define(queue), success());
    EXPECT_EQ(browse(*a, q1_), (Texts{"safe", "not logged", "new"}));
}

TEST_F(Files, ALogOpenedWhileItMightOnlyBeReadHasToBeOpenedAgain)
{
    const Unprivileged user(folder_);
    const auto store = [](LogDatabase &database) {
        if (const Outcome begun = database.begin(); begun.failed()) return begun;
        database.storeDefinition({.type = MQOT_Q, .name = "Q1", .queue = 1, .bytes = "x"});
        return database.commit();
    };
    ASSERT_EQ(chmod(log().c_str(), 0400), 0);
    const auto opened = LogDatabase::open(log());
    ASSERT_EQ(opened.outcome, success());
    ASSERT_EQ(chmod(log().c_str(), 0600), 0);
    EXPECT_EQ(store(*opened.log), failure(MQRC_RESOURCE_PROBLEM));
    EXPECT_TRUE(opened.log->isStale());
    const auto again = LogDatabase::open(log());
    ASSERT_EQ(again.outcome, success());
    EXPECT_EQ(store(*again.log), success());
    EXPECT_FALSE(again.log->isStale());
}

// The environment as it is now, and again when this ends.
class WithoutVariables {
public:
    explicit WithoutVariables(std::initializer_list<const char *> names)
    {
        for (const char *name : names) {
            const char *value = std::getenv(name);
            kept_.emplace_back(name, value == nullptr ? std::nullopt : std::optional<std::string>(value));
            unsetenv(name);
        }
    }
    ~WithoutVariables()
    {
        for (const auto &[name, value] : kept_)
            if (value) setenv(name, value->c_str(), 1);
    }
    WithoutVariables(const WithoutVariables &) = delete;
    WithoutVariables &operator=(const WithoutVariables &) = delete;

private:
    std::vector<std::pair<const char *, std::optional<std::string>>> kept_;
};

TEST(StorePaths, HomeOfThePasswordFileIsTakenWithoutHOME)
{
    const WithoutVariables without{"MQRIG_STORE", "XDG_DATA_HOME", "HOME"};
    const passwd *const entry = getpwuid(getuid());
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(defaultStoreFolder(), std::filesystem::path(entry->pw_dir) / ".local/share/mqrig");
}

TEST(StorePaths, AUserWhomNobodyKnowsHasTheRootAsHome)
{
    constexpr uid_t nobodys = 2'000'000'123;
    if (geteuid() != 0 || getpwuid(nobodys) != nullptr) GTEST_SKIP() << "only root can become such a user";
    const WithoutVariables without{"MQRIG_STORE", "XDG_DATA_HOME", "HOME"};
    ASSERT_EQ(setresuid(nobodys, 0, 0), 0);
    const auto folder = defaultStoreFolder();
    ASSERT_EQ(setresuid(0, 0, 0), 0);
    EXPECT_EQ(folder, "/.local/share/mqrig");
}

} // namespace
} // namespace mqrig::qmgr::store::test
