// Damage to the live state while nobody has it open: it is noticed and made anew from the log, and no persistent
// message is lost.

#include <fstream>
#include <random>

#include "qmgr/store/check.h"
#include "qmgr/store/control_block.h"
#include "qmgr/store/seams.h"
#include "store_test.h"

#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <lmdb.h>

namespace mqrig::qmgr::store::test {
namespace {

using Texts = std::vector<std::string>;

enum class LastOne { Leaves, IsKilled };

class LiveDamage : public StoreTest {
protected:
    [[nodiscard]] std::filesystem::path live() const { return folder_ / "QM1" / "live"; }

    // A life with messages in it and nobody connected, in a process of its own.
    void leaveALife(LastOne how, int messages = 1) const
    {
        const int answer = runProcess([&] {
            const auto attached = attach(folder_, "QM1");
            if (attached.outcome.failed()) return 1;
            if (browse(*attached.attachment, q1_).empty() &&
                put(*attached.attachment, q1_, "safe", {.persistence = MQPER_PERSISTENT}).failed())
                return 2;
            for (int n = 0; n < messages; ++n) {
                const std::string text(static_cast<std::size_t>(10 + n * 50), 'u');
                if (put(*attached.attachment, q2_, text, {.msgId = "id", .correlId = "other"}).failed()) return 3;
            }
            if (how == LastOne::IsKilled) die();
            return 0;
        });
        ASSERT_EQ(answer, how == LastOne::IsKilled ? -SIGKILL : 0);
        usleep(10'000); // times of files move in steps of a few milliseconds
    }
    // Another process looks, so that nothing stays mapped here: what is on the first queue, or its end.
    [[nodiscard]] int lookOutside(bool rebuilt) const
    {
        return runProcess([&] {
            const auto attached = attach(folder_, "QM1");
            if (attached.outcome.failed()) return 1;
            if (browse(*attached.attachment, q1_) != Texts{"safe"}) return 2;
            if (browse(*attached.attachment, q2_).empty() != rebuilt) return 3;
            if (put(*attached.attachment, q2_, "more").failed()) return 4;
            return get(*attached.attachment, q2_).empty() ? 5 : 0;
        });
    }
};

void flip(const std::filesystem::path &file, std::size_t at)
{
    const int fd = open(file.c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_GE(fd, 0);
    char byte = 0;
    ASSERT_EQ(pread(fd, &byte, 1, static_cast<off_t>(at)), 1);
    byte = static_cast<char>(byte ^ 16);
    ASSERT_EQ(pwrite(fd, &byte, 1, static_cast<off_t>(at)), 1);
    close(fd);
}

TEST_F(LiveDamage, ThatIsNoneIsUsedOn)
{
    for (const LastOne how : {LastOne::Leaves, LastOne::IsKilled, LastOne::Leaves}) {
        leaveALife(how);
        EXPECT_EQ(lookOutside(false), 0);
        EXPECT_EQ(checkQueueManager(folder_, "QM1", [](const Definition &) { return true; }).findings, Texts{});
        EXPECT_EQ(lookOutside(false), 0);
    }
}

TEST_F(LiveDamage, OfAnyByteIsNoticedWhenTheLastConnectionHadLeft)
{
    std::mt19937 random(11); // NOLINT: the same places every time
    for (int n = 0; n < 40; ++n) {
        leaveALife(LastOne::Leaves, 20);
        // Anywhere in the used pages, bodies of messages included, or far behind them.
        flip(live() / "data.mdb", n % 5 == 4 ? random() % (std::size_t{64} << 20) : random() % (30 * 4096));
        ASSERT_EQ(lookOutside(true), 0) << n;
    }
}

TEST_F(LiveDamage, OfTheControlBlockIsNoticedWhenTheLastConnectionHadLeft)
{
    for (std::size_t at = 0; at < 640; at += 9) {
        leaveALife(LastOne::Leaves);
        flip(live() / "control", at);
        const int looked = lookOutside(true);
        // Bytes that mean nothing to anybody (the ends of texts, gaps between records) are as good as whole. The state
        // alone may say that the queue manager has ended.
        if (looked == 3) {
            EXPECT_EQ(lookOutside(false), 0) << at;
        } else if (looked != 0) {
            EXPECT_EQ(looked, 1) << at;
            EXPECT_EQ(stateOf(folder_, "QM1").state, State::Ended) << at;
            EXPECT_EQ(runProcess([this] { return startQueueManager(folder_, "QM1").failed() ? 1 : 0; }), 0) << at;
            EXPECT_EQ(lookOutside(true), 0) << at;
        }
    }
}

// As one has made it that was slow to leave.
TEST_F(LiveDamage, IsNotConcludedFromANoteOfAnEarlierTime)
{
    std::uint64_t note = 0;
    const auto access = [&](auto &&call) {
        const int fd = open((live() / "control").c_str(), O_RDWR | O_CLOEXEC);
        EXPECT_EQ(call(fd, &note, sizeof note, off_t{offsetof(ControlBlock, quiet)}), ssize_t{sizeof note});
        close(fd);
    };
    leaveALife(LastOne::Leaves);
    access(pread);
    EXPECT_NE(note, 0U);
    leaveALife(LastOne::Leaves);
    access(pwrite);
    EXPECT_EQ(lookOutside(false), 0);
    leaveALife(LastOne::Leaves);
    access(pread);
    note ^= 1;
    access(pwrite);
    EXPECT_EQ(lookOutside(true), 0) << "one of this time is believed";
}

TEST_F(LiveDamage, OfPagesIsNoticedWhenTheLastConnectionWasKilled)
{
    std::mt19937 random(5); // NOLINT: the same places every time
    for (int n = 0; n < 40; ++n) {
        leaveALife(LastOne::IsKilled, 20);
        // In the heads of pages, where the library would be led astray.
        const std::size_t page = random() % 20;
        flip(live() / "data.mdb", page * 4096 + random() % 40);
        const int looked = lookOutside(true);
        EXPECT_TRUE(looked == 0 || looked == 3) << "page " << page << " answer " << looked; // 3: an unused page
        if (looked == 3) {
            EXPECT_EQ(lookOutside(false), 0);
        }
    }
}

TEST_F(LiveDamage, OfManyBytesIsNeverASignal)
{
    std::mt19937 random(3); // NOLINT: the same places every time
    for (int n = 0; n < 25; ++n) {
        leaveALife(LastOne::IsKilled, 20);
        for (int bytes = 0; bytes < 30; ++bytes)
            flip(live() / "data.mdb", random() % (25 * 4096));
        const int looked = runProcess([&] {
            const auto attached = attach(folder_, "QM1");
            if (attached.outcome.failed()) return 1;
            static_cast<void>(browse(*attached.attachment, q2_));
            while (!get(*attached.attachment, q2_).empty())
                continue;
            return 0;
        });
        EXPECT_GE(looked, 0) << "signal " << -looked;
        // Whatever was believed of the non-persistent ones: the log is as it was.
        std::filesystem::remove_all(live());
        EXPECT_EQ(lookOutside(true), 0);
    }
}

TEST_F(LiveDamage, OfWholeFilesIsRebuilt)
{
    using std::filesystem::create_directory;
    using std::filesystem::remove_all;
    const std::vector<std::string> files{"control", "data.mdb", "lock.mdb", "slots"};
    for (const LastOne how : {LastOne::Leaves, LastOne::IsKilled}) {
        for (const std::string &file : files) {
            const auto path = live() / file;
            const std::vector<std::function<void()>> damages{
                [&] { remove_all(path); },
                [&] { remove_all(path), create_directory(path); },
                [&] { remove_all(path), std::filesystem::create_symlink(path, path); },
                [&] { remove_all(path), std::filesystem::create_symlink("/dev/null", path); },
                [&] { remove_all(path), static_cast<void>(mkfifo(path.c_str(), 0600)); },
                [&] { std::filesystem::resize_file(path, 0); },
                [&] { std::filesystem::resize_file(path, 5000); },
            };
            for (std::size_t n = 0; n < damages.size(); ++n) {
                leaveALife(how);
                damages[n]();
                // Without what the library keeps for itself between its users nothing is missing.
                const int looked = lookOutside(true);
                EXPECT_TRUE(looked == 0 || (looked == 3 && file != "control" && file != "data.mdb"))
                    << file << ' ' << n << " answer " << looked;
                if (looked == 3) {
                    EXPECT_EQ(lookOutside(false), 0) << file << ' ' << n;
                }
            }
        }
        leaveALife(how);
        remove_all(live());
        std::ofstream(live()) << "a file in place of the folder";
        EXPECT_EQ(lookOutside(true), 0);
        leaveALife(how);
        remove_all(live());
        std::filesystem::create_symlink(folder_ / "nowhere", live());
        EXPECT_EQ(lookOutside(true), 0);
    }
}

TEST_F(LiveDamage, IsSaidByACheck)
{
    leaveALife(LastOne::Leaves, 20);
    flip(live() / "data.mdb", 6 * 4096 + 3000);
    EXPECT_EQ(runProcess([this] {
                  const auto check = checkQueueManager(folder_, "QM1", [](const Definition &) { return true; });
                  return check.count == 1 && check.findings[0].starts_with("live: ") ? 0 : 1;
              }),
              0);
    EXPECT_EQ(lookOutside(true), 0);
}

TEST_F(LiveDamage, ThatTheLibraryMeetsEndsTheLife)
{
    ASSERT_EQ(put(*connect(), q1_, "safe", {.persistence = MQPER_PERSISTENT}), success());
    const auto a = connect();
    const auto b = connect();
    seams.storageError = [](StorageCall call) { return call == StorageCall::LivePut ? MDB_CORRUPTED : 0; };
    EXPECT_EQ(put(*a, q1_, "more"), failure(MQRC_UNEXPECTED_ERROR));
    seams.storageError = nullptr;
    EXPECT_EQ(put(*a, q1_, "more"), failure(MQRC_CONNECTION_BROKEN));
    EXPECT_EQ(b->state(), State::Ended);
    EXPECT_EQ(startQueueManager(folder_, "QM1"), success());
    EXPECT_EQ(browse(*connect(), q1_), Texts{"safe"});
}

} // namespace
} // namespace mqrig::qmgr::store::test
