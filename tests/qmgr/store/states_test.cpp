#include <algorithm>
#include <fstream>
#include <thread>

#include "qmgr/store/paths.h"
#include "store_test.h"

#include <csignal>
#include <sys/stat.h>
#include <unistd.h>

namespace mqrig::qmgr::store::test {
namespace {

using States = StoreTest;
using Texts = std::vector<std::string>;

State stateNow(const std::filesystem::path &folder)
{
    const auto [outcome, state] = stateOf(folder, "QM1");
    EXPECT_EQ(outcome, success());
    return state;
}

TEST_F(States, ANewQueueManagerIsRunning)
{
    EXPECT_EQ(stateNow(folder_), State::Running);
    EXPECT_EQ(createQueueManager(folder_, "QM2", {}, DefaultQueueManager::Yes), success());
    EXPECT_EQ(attach(folder_, "").outcome, success());
    EXPECT_EQ(connect("QM2")->queueManagerName(), "QM2");
}

TEST_F(States, UnknownNamesAndNoNamesAreRefused)
{
    EXPECT_EQ(attach(folder_, "QM9").outcome, failure(MQRC_Q_MGR_NAME_ERROR));
    EXPECT_EQ(attach(folder_, "").outcome, failure(MQRC_Q_MGR_NAME_ERROR));
    EXPECT_EQ(attach(folder_, "../QM1").outcome, failure(MQRC_Q_MGR_NAME_ERROR));
    EXPECT_EQ(attach(folder_, std::string(49, 'Q')).outcome, failure(MQRC_Q_MGR_NAME_ERROR));
    EXPECT_EQ(attach(folder_ / "nowhere", "QM1").outcome, failure(MQRC_Q_MGR_NAME_ERROR));
    EXPECT_EQ(createQueueManager(folder_, "no good", {}, DefaultQueueManager::No), failure(MQRC_Q_MGR_NAME_ERROR));
    EXPECT_EQ(createQueueManager(folder_, "QM1", {}, DefaultQueueManager::No), failure(MQRC_OBJECT_ALREADY_EXISTS));
    EXPECT_EQ(endQueueManager(folder_, "QM9", End::Immediate), failure(MQRC_Q_MGR_NAME_ERROR));
    EXPECT_EQ(startQueueManager(folder_, "QM9"), failure(MQRC_Q_MGR_NAME_ERROR));
    EXPECT_EQ(deleteQueueManager(folder_, "QM9"), failure(MQRC_Q_MGR_NAME_ERROR));
}

TEST_F(States, QuiesceWithoutConnectionsEndsAtOnce)
{
    ASSERT_EQ(endQueueManager(folder_, "QM1", End::Quiesce), success());
    EXPECT_EQ(stateNow(folder_), State::Ended);
    EXPECT_EQ(attach(folder_, "QM1").outcome, failure(MQRC_Q_MGR_NOT_AVAILABLE));
    EXPECT_EQ(endQueueManager(folder_, "QM1", End::Quiesce), failure(MQRC_Q_MGR_NOT_ACTIVE));
}

TEST_F(States, QuiesceEndsWhenTheLastConnectionGoes)
{
    auto a = connect();
    auto b = connect();
    ASSERT_EQ(endQueueManager(folder_, "QM1", End::Quiesce), success());
    EXPECT_EQ(attach(folder_, "QM1").outcome, failure(MQRC_Q_MGR_QUIESCING));
    EXPECT_EQ(startQueueManager(folder_, "QM1"), failure(MQRC_Q_MGR_QUIESCING));
    EXPECT_EQ(a->check(), success());
    EXPECT_EQ(a->state(), State::Quiescing);
    EXPECT_EQ(put(*a, q1_, "still works", {.persistence = MQPER_PERSISTENT}), success());
    a.reset();
    EXPECT_EQ(stateNow(folder_), State::Quiescing);
    b.reset();
    EXPECT_EQ(stateNow(folder_), State::Ended);
    ASSERT_EQ(startQueueManager(folder_, "QM1"), success());
    EXPECT_EQ(browse(*connect(), q1_), (Texts{"still works"}));
}

TEST_F(States, QuiesceEndsWhenTheLastConnectionIsKilled)
{
    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    const pid_t process = startProcess([&] {
        const auto attached = attach(folder_, "QM1");
        static_cast<void>(!write(ready[1], "x", 1));
        pause();
        return attached.outcome.failed() ? 1 : 0;
    });
    char byte = 0;
    ASSERT_EQ(read(ready[0], &byte, 1), 1);
    ASSERT_EQ(endQueueManager(folder_, "QM1", End::Quiesce), success());
    EXPECT_EQ(stateNow(folder_), State::Quiescing);
    kill(process, SIGKILL);
    EXPECT_EQ(endOfProcess(process), -SIGKILL);
    EXPECT_EQ(stateNow(folder_), State::Ended);
}

TEST_F(States, ImmediateEndBreaksConnections)
{
    const auto a = connect();
    ASSERT_EQ(endQueueManager(folder_, "QM1", End::Immediate), success());
    EXPECT_EQ(stateNow(folder_), State::Ended);
    EXPECT_EQ(a->check(), failure(MQRC_Q_MGR_STOPPING));
    EXPECT_EQ(a->check(), failure(MQRC_CONNECTION_BROKEN));
    EXPECT_EQ(put(*a, q1_, "late", {.persistence = MQPER_PERSISTENT}), failure(MQRC_CONNECTION_BROKEN));
}

TEST_F(States, ConnectionsOfAnEarlierLifeStayBroken)
{
    const auto old = connect();
    UnitOfWork unit(*old);
    ASSERT_EQ(unit.put(q1_, "never", {.persistence = MQPER_PERSISTENT}), success());
    ASSERT_EQ(endQueueManager(folder_, "QM1", End::Immediate), success());
    ASSERT_EQ(startQueueManager(folder_, "QM1"), success());
    const auto fresh = connect();
    ASSERT_EQ(put(*fresh, q1_, "now"), success());
    EXPECT_EQ(old->check(), failure(MQRC_Q_MGR_STOPPING));
    EXPECT_EQ(old->check(), failure(MQRC_CONNECTION_BROKEN));
    EXPECT_EQ(unit.commit().Reason, MQRC_CONNECTION_BROKEN);
    EXPECT_EQ(browse(*fresh, q1_), (Texts{"now"}));
    ASSERT_EQ(endQueueManager(folder_, "QM1", End::Immediate), success());
    ASSERT_EQ(startQueueManager(folder_, "QM1"), success());
    EXPECT_TRUE(browse(*connect(), q1_).empty());
}

TEST_F(States, ARestartKeepsPersistentMessagesInOrderAndNoOthers)
{
    {
        const auto a = connect();
        ASSERT_EQ(put(*a, q1_, "p low", {.persistence = MQPER_PERSISTENT, .priority = 1, .msgId = "low"}), success());
        ASSERT_EQ(put(*a, q1_, "n", {.priority = 5}), success());
        ASSERT_EQ(put(*a, q1_, "p high", {.persistence = MQPER_PERSISTENT, .priority = 5}), success());
        ASSERT_EQ(put(*a, q2_, std::string(1'000'000, 'z'), {.persistence = MQPER_PERSISTENT}), success());
        ASSERT_EQ(put(*a, q2_, "got", {.persistence = MQPER_PERSISTENT, .priority = 9}), success());
        ASSERT_EQ(get(*a, q2_), "got");
        UnitOfWork backedOut(*a);
        ASSERT_EQ(backedOut.get(q1_), "n");
        ASSERT_EQ(backedOut.get(q1_), "p high");
        ASSERT_EQ(backedOut.backOut(), success());
    }
    ASSERT_EQ(endQueueManager(folder_, "QM1", End::Quiesce), success());
    ASSERT_EQ(startQueueManager(folder_, "QM1"), success());
    const auto a = connect();
    EXPECT_EQ(browse(*a, q1_), (Texts{"p high", "p low"}));
    EXPECT_EQ(browse(*a, q2_), (Texts{std::string(1'000'000, 'z')}));
    EXPECT_EQ(statusOf(*a, q1_).depth, 2U);
    EXPECT_EQ(a->findDefinition(MQOT_Q, "Q1").value_or(Definition{}).queue, q1_);
    ASSERT_EQ(a->read([&](ReadTransaction &transaction) {
        MessageCursor all(transaction, q1_);
        EXPECT_TRUE(all.first());
        EXPECT_EQ(all.header().md.BackoutCount, 1) << "kept over the restart";
        const MQBYTE24 low{'l', 'o', 'w'};
        MessageCursor byId(transaction, q1_, Index::MsgId, low);
        EXPECT_TRUE(byId.first());
        EXPECT_EQ(byId.header().md.BackoutCount, 0);
        return success();
    }),
              success());
}

TEST_F(States, NumbersGoOnAfterARestart)
{
    const std::uint64_t before = connect()->uniqueNumber();
    ASSERT_EQ(endQueueManager(folder_, "QM1", End::Quiesce), success());
    ASSERT_EQ(startQueueManager(folder_, "QM1"), success());
    EXPECT_GT(connect()->uniqueNumber(), before);
}

// Who deletes and who starts at the same moment: one of the two, never both.
TEST_F(States, WhatIsStartedIsNotDeletedAtTheSameTime)
{
    for (int round = 0; round < 25; ++round) {
        if (listQueueManagers(folder_).empty()) {
            ASSERT_EQ(createQueueManager(folder_, "QM1", {}, DefaultQueueManager::No), success());
        }
        ASSERT_FALSE(endQueueManager(folder_, "QM1", End::Immediate).failed()) << round;
        const pid_t starter = startProcess([&] {
            const Outcome started = startQueueManager(folder_, "QM1");
            return started.failed() ? (started.Reason == MQRC_Q_MGR_NAME_ERROR ? 1 : 2) : 0;
        });
        const pid_t deleter = startProcess([&] {
            const Outcome deleted = deleteQueueManager(folder_, "QM1");
            return deleted.failed() ? (deleted.Reason == MQRC_Q_MGR_ACTIVE ? 1 : 2) : 0;
        });
        const int started = endOfProcess(starter);
        const int deleted = endOfProcess(deleter);
        EXPECT_EQ(started + deleted, 1) << "start " << started << ", delete " << deleted;
        ASSERT_EQ(listQueueManagers(folder_).size(), started == 0 ? 1U : 0U);
    }
}

TEST_F(States, OnlyAnEndedQueueManagerIsDeleted)
{
    auto a = connect();
    ASSERT_EQ(setDefaultQueueManager(folder_, "QM1"), success());
    EXPECT_EQ(deleteQueueManager(folder_, "QM1"), failure(MQRC_Q_MGR_ACTIVE));
    a.reset();
    ASSERT_EQ(endQueueManager(folder_, "QM1", End::Quiesce), success());
    ASSERT_EQ(deleteQueueManager(folder_, "QM1"), success());
    EXPECT_TRUE(listQueueManagers(folder_).empty());
    EXPECT_EQ(defaultQueueManager(folder_), "");
    EXPECT_EQ(attach(folder_, "QM1").outcome, failure(MQRC_Q_MGR_NAME_ERROR));
    ASSERT_EQ(createQueueManager(folder_, "QM1", {}, DefaultQueueManager::No), success());
    EXPECT_TRUE(connect()->definitions(MQOT_ALL).empty());
}

// What a create or delete that was killed has left begins with a dot.
std::vector<std::string> leftovers(const std::filesystem::path &folder)
{
    std::vector<std::string> names;
    for (const auto &entry : std::filesystem::directory_iterator(folder))
        if (const std::string name = entry.path().filename(); name.front() == '.') names.push_back(name);
    std::sort(names.begin(), names.end());
    return names;
}

TEST_F(States, ACreateRemovesWhatKilledOnesLeftMoreThanAnHourAgo)
{
    const auto age = [](const std::filesystem::path &path, std::chrono::minutes by) {
        std::filesystem::last_write_time(path, std::filesystem::file_time_type::clock::now() - by);
    };
    for (const char *name : {".new-1", ".old-2", ".new-3", ".other-4"}) {
        std::filesystem::create_directory(folder_ / name);
        std::ofstream(folder_ / name / "log.db") << "half";
    }
    std::ofstream(folder_ / ".new-5") << "QM1";
    std::ofstream(folder_ / ".new-6") << "QM1";
    for (const char *name : {".new-1", ".old-2", ".other-4", ".new-5"})
        age(folder_ / name, std::chrono::minutes(61));
    for (const char *name : {".new-3", ".new-6"})
        age(folder_ / name, std::chrono::minutes(59));
    ASSERT_EQ(createQueueManager(folder_, "QM2", {}, DefaultQueueManager::No), success());
    EXPECT_EQ(leftovers(folder_), (Texts{".new-3", ".new-6", ".other-4"}));
    EXPECT_EQ(listQueueManagers(folder_).size(), 2U);
}

TEST_F(States, AStoreFolderIsMadeWithTheFoldersAboveIt)
{
    const auto deep = folder_ / "a" / "b" / "c";
    ASSERT_EQ(createQueueManager(deep, "QM2", {}, DefaultQueueManager::Yes), success());
    EXPECT_EQ(attach(deep, "").outcome, success());
    EXPECT_EQ(std::filesystem::status(folder_ / "a").permissions(), std::filesystem::perms::owner_all);
}

TEST_F(States, ADefaultThatCannotBeSetLeavesNothing)
{
    std::filesystem::create_directory(folder_ / ".default");
    EXPECT_EQ(setDefaultQueueManager(folder_, "QM1"), failure(MQRC_UNEXPECTED_ERROR));
    EXPECT_EQ(leftovers(folder_), Texts{".default"});
    EXPECT_EQ(defaultQueueManager(folder_), "");
    std::filesystem::remove(folder_ / ".default");
    EXPECT_EQ(setDefaultQueueManager(folder_, "QM1"), success());
    EXPECT_EQ(defaultQueueManager(folder_), "QM1");
}

TEST_F(States, AFolderThatIsNoQueueManagerIsNotReplacedByOne)
{
    std::filesystem::create_directory(folder_ / "QM2");
    std::ofstream(folder_ / "QM2" / "somebody's") << "x";
    EXPECT_EQ(createQueueManager(folder_, "QM2", {}, DefaultQueueManager::No), failure(MQRC_OBJECT_ALREADY_EXISTS));
    EXPECT_TRUE(std::filesystem::exists(folder_ / "QM2" / "somebody's"));
    EXPECT_EQ(leftovers(folder_), Texts{});
}

TEST_F(States, AStoreFolderThatLeadsNowhereTakesNoQueueManager)
{
    std::filesystem::create_symlink("nowhere", folder_ / "link");
    EXPECT_EQ(createQueueManager(folder_ / "link", "QM2", {}, DefaultQueueManager::Yes),
              failure(MQRC_UNEXPECTED_ERROR));
    EXPECT_FALSE(std::filesystem::exists(folder_ / "nowhere"));
}

// Nobody can be sure of what was renamed in a folder that cannot be synced.
TEST_F(States, InAFolderThatMayNotBeReadNothingIsMadeOrDeleted)
{
    ASSERT_EQ(endQueueManager(folder_, "QM1", End::Immediate), success());
    const Unprivileged user(folder_);
    ASSERT_EQ(chmod(folder_.c_str(), 0300), 0);
    EXPECT_EQ(createQueueManager(folder_, "QM2", {}, DefaultQueueManager::No), failure(MQRC_NOT_AUTHORIZED));
    EXPECT_EQ(deleteQueueManager(folder_, "QM1"), failure(MQRC_NOT_AUTHORIZED));
    ASSERT_EQ(chmod(folder_.c_str(), 0700), 0);
    EXPECT_EQ(leftovers(folder_), Texts{});
    const auto all = listQueueManagers(folder_);
    ASSERT_EQ(all.size(), 1U);
    EXPECT_EQ(all[0].name, "QM1");
    EXPECT_EQ(all[0].state, State::Ended);
    EXPECT_EQ(deleteQueueManager(folder_, "QM1"), success());
    EXPECT_TRUE(std::filesystem::is_empty(folder_));
}

TEST_F(States, AQuiesceEndsWithTheLifeThatWasDamagedMeanwhile)
{
    ASSERT_EQ(endQueueManager(folder_, "QM1", End::Immediate), success());
    EXPECT_EQ(runProcess([this]() -> int {
                  if (startQueueManager(folder_, "QM1").failed()) return 1;
                  const auto attached = attach(folder_, "QM1");
                  if (put(*attached.attachment, q1_, "safe", {.persistence = MQPER_PERSISTENT}).failed()) return 2;
                  if (endQueueManager(folder_, "QM1", End::Quiesce).failed()) return 3;
                  die();
              }),
              -SIGKILL);
    std::fstream data(folder_ / "QM1" / "live" / "data.mdb", std::ios::in | std::ios::out | std::ios::binary);
    data << std::string(16'384, 'x') << std::flush;
    EXPECT_EQ(stateNow(folder_), State::Ended);
    ASSERT_EQ(startQueueManager(folder_, "QM1"), success());
    EXPECT_EQ(browse(*connect(), q1_), Texts{"safe"});
}

TEST_F(States, AreListedByName)
{
    ASSERT_EQ(createQueueManager(folder_, "a/b%c", {}, DefaultQueueManager::No), success());
    ASSERT_EQ(createQueueManager(folder_, ".HIDDEN", {}, DefaultQueueManager::Yes), success());
    ASSERT_EQ(endQueueManager(folder_, "QM1", End::Quiesce), success());
    std::filesystem::create_directory(folder_ / "not one");
    std::filesystem::create_directory(folder_ / "EMPTY");
    const auto all = listQueueManagers(folder_);
    ASSERT_EQ(all.size(), 3U);
    EXPECT_EQ(all[0].name, ".HIDDEN");
    EXPECT_TRUE(all[0].isDefault);
    EXPECT_EQ(all[0].state, State::Running);
    EXPECT_EQ(all[1].name, "QM1");
    EXPECT_FALSE(all[1].isDefault);
    EXPECT_EQ(all[1].state, State::Ended);
    EXPECT_EQ(all[2].name, "a/b%c");
}

TEST_F(States, AWaiterForAChangeOfStateSeesIt)
{
    const auto a = connect();
    State seen = State::Running;
    std::thread waiter(
        [&] { seen = a->waitForStateChange(State::Running, std::chrono::steady_clock::now() + patience); });
    ASSERT_EQ(endQueueManager(folder_, "QM1", End::Quiesce), success());
    waiter.join();
    EXPECT_EQ(seen, State::Quiescing);
}

TEST_F(States, FoldersAreForTheOwnerOnly)
{
    using std::filesystem::perms;
    for (const auto &folder : {folder_ / "QM1", folder_ / "QM1" / "live"}) {
        EXPECT_EQ(std::filesystem::status(folder).permissions(), perms::owner_all) << folder;
    }
}

TEST(QueueManagerNames, HaveOneFolderEach)
{
    for (const char *name : {"QM1", ".", "..", "...", "a/b", "%2F", "/", "%", ".new.1", "A.B_C%D/E"}) {
        ASSERT_TRUE(isQueueManagerName(name));
        const std::string folder = folderOfName(name);
        EXPECT_EQ(folder.find('/'), std::string::npos) << name;
        EXPECT_NE(folder.front(), '.') << name;
        EXPECT_EQ(nameOfFolder(folder), name);
    }
    for (const char *folder : {"", ".", ".new-1", "%", "%2", "%41", "a b", "%2f", "x%2E"}) {
        EXPECT_EQ(nameOfFolder(folder), std::nullopt) << folder;
    }
}

TEST(StoreFolder, FollowsTheEnvironment)
{
    const auto set = [](const char *name, const char *value) {
        value == nullptr ? unsetenv(name) : setenv(name, value, 1);
    };
    const char *home = getenv("HOME");
    const std::string savedHome = home == nullptr ? "" : home;
    set("MQRIG_STORE", "/x/store");
    EXPECT_EQ(defaultStoreFolder(), "/x/store");
    set("MQRIG_STORE", nullptr);
    set("XDG_DATA_HOME", "/x/data");
    EXPECT_EQ(defaultStoreFolder(), "/x/data/mqrig");
    set("XDG_DATA_HOME", "relative");
    set("HOME", "/x/home");
    EXPECT_EQ(defaultStoreFolder(), "/x/home/.local/share/mqrig");
    set("XDG_DATA_HOME", nullptr);
    EXPECT_EQ(defaultStoreFolder(), "/x/home/.local/share/mqrig");
    set("HOME", savedHome.c_str());
}

} // namespace
} // namespace mqrig::qmgr::store::test
