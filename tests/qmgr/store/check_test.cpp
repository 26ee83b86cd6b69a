// What `rigqm check` is made of: a sound store has no findings, a damaged one has, and no damage is a signal.

#include <fstream>
#include <random>

#include "qmgr/store/check.h"
#include "qmgr/store/live_pages.h"
#include "qmgr/store/log_database.h"
#include "qmgr/store/seams.h"
#include "store_test.h"

#include <csignal>
#include <sys/stat.h>
#include <unistd.h>

#include <sqlite3.h>

namespace mqrig::qmgr::store::test {
namespace {

bool anyBytes(const Definition &)
{
    return true;
}

class Check : public StoreTest {
protected:
    [[nodiscard]] StoreCheck check(const CanDecode &canDecode = anyBytes) const
    {
        return checkQueueManager(folder_, "QM1", canDecode);
    }
    [[nodiscard]] std::string allFindings() const
    {
        std::string all;
        for (const std::string &line : check().findings)
            all += line + '\n';
        return all;
    }
    void end() const { ASSERT_EQ(endQueueManager(folder_, "QM1", End::Immediate), success()); }
    void putSome() const
    {
        const auto a = connect();
        for (int n = 0; n < 30; ++n)
            ASSERT_EQ(put(*a, q1_, std::string(static_cast<std::size_t>(40 + n * 137), static_cast<char>('a' + n % 26)),
                          {.persistence = MQPER_PERSISTENT, .priority = n % 10, .msgId = "an id"}),
                      success());
        ASSERT_EQ(put(*a, q2_, "not persistent", {.correlId = "another"}), success());
    }
    void sql(const std::string &statement) const
    {
        sqlite3 *database = nullptr;
        ASSERT_EQ(sqlite3_open(log().c_str(), &database), SQLITE_OK);
        char *message = nullptr;
        EXPECT_EQ(sqlite3_exec(database, statement.c_str(), nullptr, nullptr, &message), SQLITE_OK) << message;
        sqlite3_close(database);
    }
    [[nodiscard]] std::filesystem::path log() const { return folder_ / "QM1" / "log.db"; }
    [[nodiscard]] std::filesystem::path live() const { return folder_ / "QM1" / "live"; }
};

std::string contentsOfFile(const std::filesystem::path &file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

void writeFile(const std::filesystem::path &file, std::string_view bytes)
{
    std::ofstream(file, std::ios::binary | std::ios::trunc) << bytes;
}

TEST_F(Check, FindsNothingWhileATemporaryQueueGoes)
{
    static std::function<void()> look;
    std::string found;
    int looks = 0;
    look = [&] {
        ++looks;
        found += allFindings();
    };
    const auto a = connect();
    Definition queue{.type = MQOT_Q, .name = "TEMPORARY", .bytes = "x"};
    ASSERT_EQ(a->defineTemporary(queue), success());
    for (int message = 0; message < 2100; ++message)
        ASSERT_EQ(put(*a, queue.queue, "goes"), success());
    seams.reached = [](Step step) {
        if (step == Step::TemporaryRemoving) look();
    };
    EXPECT_EQ(a->removeTemporary(queue), success());
    seams.reached = nullptr;
    EXPECT_GT(looks, 1);
    EXPECT_EQ(found, "");
    EXPECT_TRUE(browse(*a, queue.queue).empty());
    EXPECT_EQ(put(*a, queue.queue, "late"), failure(MQRC_Q_DELETED));
}

TEST_F(Check, FindsNothingInASoundStore)
{
    putSome();
    const StoreCheck running = check();
    EXPECT_EQ(running.outcome, success());
    EXPECT_EQ(allFindings(), "");
    EXPECT_EQ(running.log.messages, 30U);
    EXPECT_EQ(running.log.definitions, 3U);
    EXPECT_TRUE(running.live.looked);
    EXPECT_EQ(running.live.messages, 31U);
    end();
    const StoreCheck ended = check();
    EXPECT_EQ(ended.count, 0U);
    EXPECT_FALSE(ended.live.looked);
    EXPECT_EQ(ended.log.messages, 30U);
}

TEST_F(Check, ChangesNothing)
{
    putSome();
    const auto a = connect();
    UnitOfWork unit(*a);
    ASSERT_EQ(unit.put(q1_, "unfinished", {.persistence = MQPER_PERSISTENT}), success());
    ASSERT_FALSE(unit.get(q1_).empty());
    for (int n = 0; n < 3; ++n)
        EXPECT_EQ(runProcess([this] { return check().count == 0 ? 0 : 1; }), 0);
    EXPECT_EQ(unit.commit(), success());
    EXPECT_EQ(statusOf(*a, q1_).depth, 30U);
    EXPECT_EQ(allFindings(), "");
}

TEST_F(Check, CountsWhatIsHeldForKilledPrograms)
{
    putSome();
    const auto witness = connect(); // keeps the dead slot as it is: nobody connects after
    const pid_t process = startProcess([this] {
        const auto attached = attach(folder_, "QM1");
        UnitOfWork unit(*attached.attachment);
        if (unit.get(q1_).empty() || unit.get(q1_).empty()) return 1;
        die();
    });
    EXPECT_EQ(endOfProcess(process), -SIGKILL);
    EXPECT_EQ(check().live.heldForTheDead, 2U);
    EXPECT_EQ(allFindings(), "");
    witness->releaseDead();
    EXPECT_EQ(check().live.heldForTheDead, 0U);
}

TEST_F(Check, FindsEachDisorderOfRows)
{
    putSome();
    end();
    const std::string attachKept = "ATTACH '" + (folder_ / "kept.db").string() + "' AS k;";
    sql(attachKept + "CREATE TABLE k.m AS SELECT * FROM messages; CREATE TABLE k.d AS SELECT * FROM definitions;"
                     "CREATE TABLE k.q AS SELECT * FROM queue_manager");
    const std::string mendAll = attachKept +
                                "DELETE FROM messages; INSERT INTO messages SELECT * FROM k.m; DELETE FROM definitions;"
                                "INSERT INTO definitions SELECT * FROM k.d; DELETE FROM queue_manager;"
                                "INSERT INTO queue_manager SELECT * FROM k.q";
    ASSERT_EQ(allFindings(), "");
    const std::vector<std::pair<std::string, std::string>> disorders{
        {"UPDATE messages SET body = 'x' WHERE sequence = (SELECT max(sequence) FROM messages)", "checksum is wrong"},
        {"UPDATE messages SET backouts = 1 WHERE sequence = (SELECT max(sequence) FROM messages)", "checksum is wrong"},
        {"UPDATE messages SET queue = queue + 4294967296", "checksum is wrong"},
        {"UPDATE messages SET place = place + 256", "checksum is wrong"},
        {"UPDATE messages SET sequence = -sequence", "checksum is wrong"},
        {"UPDATE messages SET header = x'00'", "checksum is wrong"},
        {"DELETE FROM definitions WHERE name = 'Q1'", "of a queue that does not exist"},
        {"UPDATE definitions SET bytes = 'x' WHERE name = 'Q2'", "definition of Q2 (type 1) is damaged"},
        {"UPDATE queue_manager SET next_queue = 1", "which was never given"},
        {"UPDATE queue_manager SET state = 7", "impossible numbers"},
        {"UPDATE queue_manager SET ticket = -1", "impossible numbers"},
        {"UPDATE queue_manager SET generation = 'x'", "impossible numbers"},
        {"DELETE FROM queue_manager", "0 rows about the queue manager"},
        {"UPDATE queue_manager SET state = 0", "impossible numbers"},
    };
    for (const auto &[damage, said] : disorders) {
        sql(damage);
        EXPECT_NE(allFindings().find(said), std::string::npos) << damage << '\n' << allFindings();
        sql(mendAll);
        EXPECT_EQ(allFindings(), "") << damage;
    }
    EXPECT_NE(check([](const Definition &) { return false; }).count, 0U);
}

TEST_F(Check, FindsTwoQueuesWithOneNumber)
{
    end();
    {
        const auto [outcome, database] = LogDatabase::open(log());
        ASSERT_EQ(outcome, success());
        ASSERT_EQ(database->begin(), success());
        database->storeDefinition({.type = MQOT_Q, .name = "Q2", .queue = q1_, .bytes = "second"});
        ASSERT_EQ(database->commit(), success());
    }
    EXPECT_EQ(allFindings(), "log.db: the definition of Q2 (type 1) has the number " + std::to_string(q1_) +
                                 ", which another one has\n");
}

TEST_F(Check, OfANameThatIsNoneIsRefused)
{
    for (const char *name : {"", "no good", "../QM1"}) {
        const StoreCheck refused = checkQueueManager(folder_, name, anyBytes);
        EXPECT_EQ(refused.outcome, failure(MQRC_Q_MGR_NAME_ERROR)) << name;
        EXPECT_EQ(refused.count, 0U);
    }
}

TEST_F(Check, FindsThatThereIsNoLog)
{
    std::filesystem::create_symlink("nowhere", folder_ / "link");
    for (const auto &file : {folder_ / "nowhere", folder_ / "link"}) {
        Findings findings;
        EXPECT_EQ(checkLog(file, anyBytes, findings).outcome, success());
        EXPECT_EQ(findings.lines(), std::vector<std::string>{"log.db is missing, or leads nowhere"});
    }
}

TEST_F(Check, OfALogThatMayNotBeReadIsRefused)
{
    putSome();
    end();
    const Unprivileged user(folder_);
    for (const auto &file : {log(), std::filesystem::path(log().string() + "-shm")}) {
        ASSERT_EQ(chmod(file.c_str(), 0), 0) << file;
        EXPECT_EQ(check().outcome, failure(MQRC_NOT_AUTHORIZED)) << file;
        ASSERT_EQ(chmod(file.c_str(), 0600), 0);
    }
    ASSERT_EQ(chmod((folder_ / "QM1").c_str(), 0), 0);
    EXPECT_EQ(check().outcome, failure(MQRC_NOT_AUTHORIZED));
    Findings findings;
    EXPECT_EQ(checkLog(log(), anyBytes, findings).outcome, failure(MQRC_NOT_AUTHORIZED));
    EXPECT_EQ(findings.count(), 0U);
    ASSERT_EQ(chmod((folder_ / "QM1").c_str(), 0700), 0);
    EXPECT_EQ(allFindings(), "");
}

TEST_F(Check, FindsFilesOfAnotherUser)
{
    if (geteuid() != 0) GTEST_SKIP() << "only root can give files away";
    ASSERT_EQ(chown(log().c_str(), 65534, 65534), 0);
    EXPECT_EQ(allFindings(), "log.db belongs to user 65534, the folder to user 0\n");
    ASSERT_EQ(chown((folder_ / "QM1").c_str(), 65534, 65534), 0);
    EXPECT_NE(allFindings().find("live belongs to user 0, the folder to user 65534\n"), std::string::npos);
    EXPECT_EQ(allFindings().find("log.db belongs"), std::string::npos);
}

TEST_F(Check, FindsWhatIsNoLog)
{
    putSome();
    end();
    const std::string whole = contentsOfFile(log());
    const auto said = [&](std::string_view bytes) {
        writeFile(log(), bytes);
        return allFindings();
    };
    EXPECT_EQ(said(""), "log.db is empty\n");
    EXPECT_EQ(said(std::string(20'000, 'x')), "log.db is no log: file is not a database\n");
    EXPECT_EQ(said(std::string(20'000, '\0')), "log.db is no log: file is not a database\n");
    std::string foreign = whole;
    foreign[68] = 17;
    EXPECT_EQ(said(foreign), "log.db is a database, but no log of a queue manager\n");
    std::filesystem::remove(log());
    std::filesystem::create_directory(log());
    EXPECT_EQ(check().findings.back(), "log.db is a folder");
    EXPECT_EQ(startQueueManager(folder_, "QM1"), failure(MQRC_UNEXPECTED_ERROR));
    std::filesystem::remove(log());
    EXPECT_EQ(check().outcome, failure(MQRC_Q_MGR_NAME_ERROR));
    writeFile(log(), whole);
    ASSERT_EQ(chmod(log().c_str(), 0600), 0);
    EXPECT_EQ(allFindings(), "");
    sql("CREATE VIEW v AS SELECT 1");
    EXPECT_EQ(allFindings(), "log.db: its tables are not those of a log\n");
    EXPECT_EQ(startQueueManager(folder_, "QM1"), failure(MQRC_UNEXPECTED_ERROR));
    sql("DROP VIEW v; CREATE TRIGGER t AFTER DELETE ON messages BEGIN DELETE FROM messages; END");
    EXPECT_EQ(startQueueManager(folder_, "QM1"), failure(MQRC_UNEXPECTED_ERROR));
    sql("DROP TRIGGER t; PRAGMA user_version = 3");
    EXPECT_EQ(check().outcome, failure(MQRC_ENVIRONMENT_ERROR));
}

TEST_F(Check, FindsFilesThatOthersMayRead)
{
    ASSERT_EQ(chmod(log().c_str(), 0640), 0);
    EXPECT_EQ(allFindings(), "log.db is open to other users\n");
}

// All that a log says, or why it says nothing.
std::string readAll(const std::filesystem::path &file)
{
    const auto [outcome, database] = LogDatabase::open(file);
    if (outcome.failed()) return "refused";
    std::string all;
    const Outcome definitions = database->forEachDefinition([&](const Definition &definition) {
        all += definition.name + definition.bytes + std::to_string(definition.queue);
        return true;
    });
    const Outcome messages = database->forEachMessage(
        [&](const MessageKey &key, const MessageHeader &header, std::span<const std::byte> body) {
            all += std::to_string(key.sequence) + textOf(std::as_bytes(std::span(&header, 1))) + textOf(body);
            return true;
        });
    return definitions.failed() || messages.failed() ? "refused" : all;
}

class DamagedLog : public Check {
protected:
    void SetUp() override
    {
        putSome();
        end();
        whole_ = contentsOfFile(log());
        rows_ = readAll(log());
        ASSERT_NE(rows_, "refused");
    }
    // Nothing is found only where nothing that is stored has changed. Whether something was found.
    bool judge(std::string_view bytes, const std::string &what)
    {
        for (const char *companion : {"-wal", "-shm"})
            std::filesystem::remove(log().string() + companion);
        writeFile(log(), bytes);
        const StoreCheck checked = check();
        if (checked.count != 0 || checked.outcome.failed()) {
            // A reason; or it starts, where what is damaged is not needed. Never a signal.
            if (++judged_ % 8 == 0 && !startQueueManager(folder_, "QM1").failed()) {
                static_cast<void>(browse(*connect(), q1_));
                end();
            }
            return true;
        }
        EXPECT_EQ(readAll(log()), rows_) << what;
        return false;
    }
    std::string whole_;
    std::string rows_;
    int judged_ = 0;
};

TEST_F(DamagedLog, OfWhichASingleBitIsChangedIsFoundOrUnharmed)
{
    std::mt19937 random(7); // NOLINT: the same places every time
    int found = 0;
    const std::size_t used = 4096 * 24;
    ASSERT_GT(whole_.size(), used);
    for (int n = 0; n < 250; ++n) {
        std::string damaged = whole_;
        const std::size_t at = n < 100 ? static_cast<std::size_t>(n) : random() % used;
        damaged[at] = static_cast<char>(damaged[at] ^ (1 << random() % 8));
        found += judge(damaged, "byte " + std::to_string(at)) ? 1 : 0;
    }
    EXPECT_GT(found, 100);
}

TEST_F(DamagedLog, OfWhichABitOfAMessageIsChangedIsFound)
{
    const std::size_t body = whole_.find(std::string(300, 'd'));
    ASSERT_NE(body, std::string::npos);
    for (std::size_t at = body - sizeof(MessageHeader); at < body + 300; at += 17) {
        std::string damaged = whole_;
        damaged[at] = static_cast<char>(damaged[at] ^ 4);
        EXPECT_TRUE(judge(damaged, "byte " + std::to_string(at)));
    }
}

TEST_F(DamagedLog, ThatWasCutOffIsFoundOrUnharmed)
{
    std::size_t found = 0;
    std::vector<std::size_t> sizes{1, 15, 16, 17, 99, 100, 101, 511, 512, 4095, 4096, 4097, 8192};
    for (std::size_t pages = 3; pages < 26; ++pages)
        sizes.insert(sizes.end(), {pages * 4096 - 1, pages * 4096, pages * 4096 + 600});
    for (const std::size_t size : sizes)
        found += judge(std::string_view(whole_).substr(0, size), "cut at " + std::to_string(size)) ? 1 : 0;
    EXPECT_GT(found, sizes.size() / 2);
}

// A queue manager whose machine went down: its latest commits stand in the write-ahead file only.
TEST_F(Check, FindsCommitsThatTheWriteAheadFileHasLost)
{
    EXPECT_EQ(runProcess([this]() -> int {
                  const auto attached = attach(folder_, "QM1");
                  for (int n = 0; n < 20; ++n)
                      static_cast<void>(put(*attached.attachment, q1_, "text " + std::to_string(n),
                                            {.persistence = MQPER_PERSISTENT}));
                  die();
              }),
              -SIGKILL);
    EXPECT_EQ(allFindings(), "");
    const std::filesystem::path ahead = log().string() + "-wal";
    const std::string whole = contentsOfFile(ahead);
    const std::size_t at = whole.find("text 7");
    ASSERT_NE(at, std::string::npos);
    std::string damaged = whole;
    damaged[at] ^= 1;
    writeFile(ahead, damaged);
    EXPECT_NE(allFindings().find("log.db-wal: frame "), std::string::npos) << allFindings();
    damaged = whole;
    damaged[9] ^= 1;
    writeFile(ahead, damaged);
    EXPECT_NE(allFindings().find("log.db-wal: its head is damaged"), std::string::npos) << allFindings();
    writeFile(ahead, whole);
    EXPECT_EQ(allFindings(), "");
}

} // namespace
} // namespace mqrig::qmgr::store::test
