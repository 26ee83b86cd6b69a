#include "qmgr/store/log_check.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <limits>
#include <set>
#include <sys/stat.h>

#include <sqlite3.h>

#include "qmgr/store/log_format.h"

namespace mqrig::qmgr::store {

namespace {

// A connection that reads, and whatever it is told by the file, does nothing else.
class Reading {
public:
    explicit Reading(const std::filesystem::path &file)
    {
        constexpr int flags = SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE;
        code_ = sqlite3_open_v2(file.c_str(), &database_, flags, nullptr);
        if (code_ != SQLITE_OK) return;
        sqlite3_db_config(database_, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
        sqlite3_db_config(database_, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
        sqlite3_db_config(database_, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
        // One state of the log for all that is read. SQLite's locks are held by others for moments only.
        sqlite3_busy_timeout(database_, 3000);
        code_ = sqlite3_exec(database_, "PRAGMA cell_size_check = ON; BEGIN", nullptr, nullptr, nullptr);
    }
    ~Reading()
    {
        sqlite3_finalize(statement_);
        sqlite3_close(database_);
    }
    Reading(const Reading &) = delete;
    Reading &operator=(const Reading &) = delete;

    [[nodiscard]] sqlite3 *database() const { return database_; }
    [[nodiscard]] int code() const { return code_; }
    [[nodiscard]] std::string message() const { return database_ == nullptr ? "no memory" : sqlite3_errmsg(database_); }

    void query(const char *sql)
    {
        sqlite3_finalize(statement_);
        statement_ = nullptr;
        code_ = sqlite3_prepare_v2(database_, sql, -1, &statement_, nullptr);
    }
    bool next()
    {
        if (statement_ == nullptr) return false;
        code_ = sqlite3_step(statement_);
        return code_ == SQLITE_ROW;
    }
    // After the last row: whether it was read to its end.
    [[nodiscard]] bool complete() const { return code_ == SQLITE_DONE; }
    [[nodiscard]] int type(int column) const { return sqlite3_column_type(statement_, column); }
    [[nodiscard]] std::int64_t number(int column) const { return sqlite3_column_int64(statement_, column); }
    [[nodiscard]] std::span<const std::byte> bytes(int column) const
    {
        const auto *from = static_cast<const std::byte *>(sqlite3_column_blob(statement_, column));
        return {from, from == nullptr ? 0 : static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))};
    }
    [[nodiscard]] std::string text(int column) const
    {
        const auto from = bytes(column);
        return {reinterpret_cast<const char *>(from.data()), from.size()};
    }
    std::int64_t oneNumber(const char *sql)
    {
        query(sql);
        return next() ? number(0) : -1;
    }

private:
    sqlite3 *database_ = nullptr;
    sqlite3_stmt *statement_ = nullptr;
    int code_ = SQLITE_OK;
};

// The first bytes of the file. Through SQLite's own descriptor: closing another one would drop its locks.
std::array<std::uint8_t, 100> headOf(sqlite3 *database)
{
    std::array<std::uint8_t, 100> head{};
    sqlite3_file *file = nullptr;
    sqlite3_file_control(database, "main", SQLITE_FCNTL_FILE_POINTER, &file);
    if (file != nullptr && file->pMethods != nullptr)
        file->pMethods->xRead(file, head.data(), static_cast<int>(head.size()), 0);
    return head;
}

struct Known {
    std::set<QueueId> queues;
    std::uint64_t nextQueue = 0;
};

void checkQueueManagerRow(Reading &reading, LogContents &contents, Known &known, Findings &findings)
{
    reading.query("SELECT name, state, generation, ticket, next_queue, sequence_base FROM queue_manager");
    int rows = 0;
    while (reading.next()) {
        ++rows;
        contents.name = reading.text(0);
        contents.state = static_cast<State>(reading.number(1));
        contents.generation = static_cast<std::uint64_t>(reading.number(2));
        known.nextQueue = static_cast<std::uint64_t>(reading.number(4));
        bool numbers = true;
        for (int column = 1; column < 6; ++column)
            numbers = numbers && reading.type(column) == SQLITE_INTEGER && reading.number(column) >= 0;
        const auto state = reading.number(1);
        if (!numbers || state < static_cast<int>(State::Running) || state > static_cast<int>(State::Ended) ||
            reading.number(4) > std::numeric_limits<std::int32_t>::max())
            findings.add("log.db: the row about the queue manager has impossible numbers");
    }
    if (reading.complete() && rows != 1)
        findings.add("log.db: there are " + std::to_string(rows) + " rows about the queue manager in place of one");
    else if (!reading.complete())
        findings.add("log.db: the row about the queue manager cannot be read: " + reading.message());
}

void checkDefinitions(Reading &reading, const CanDecode &canDecode, LogContents &contents, Known &known,
                      Findings &findings)
{
    reading.query("SELECT type, name, queue, bytes, checksum FROM definitions");
    while (reading.next()) {
        ++contents.definitions;
        const auto bytes = reading.bytes(3);
        const Definition definition{.type = static_cast<MQLONG>(reading.number(0)),
                                    .name = reading.text(1),
                                    .queue = static_cast<QueueId>(reading.number(2)),
                                    .bytes = {reinterpret_cast<const char *>(bytes.data()), bytes.size()}};
        if (definition.type == subscriptions) ++contents.subscriptions;
        const std::string what =
            "log.db: the definition of " + definition.name + " (type " + std::to_string(definition.type) + ")";
        if (logFormat::checksumOfDefinition(definition.type, definition.name, definition.queue, definition.bytes) !=
            static_cast<std::uint64_t>(reading.number(4))) {
            findings.add(what + " is damaged: its checksum is wrong");
        } else if (definition.name.empty() || definition.name.size() > MQ_OBJECT_NAME_LENGTH ||
                   !canDecode(definition)) {
            findings.add(what + " cannot be read");
        } else if (definition.queue >= known.nextQueue || (hasCounters(definition.type) && definition.queue == 0)) {
            findings.add(what + " has the number " + std::to_string(definition.queue) + ", which was never given");
        } else if (definition.queue != 0 && !known.queues.insert(definition.queue).second) {
            findings.add(what + " has the number " + std::to_string(definition.queue) + ", which another one has");
        }
    }
    if (!reading.complete()) findings.add("log.db: the definitions cannot be read: " + reading.message());
}

void checkMessages(Reading &reading, LogContents &contents, const Known &known, Findings &findings)
{
    reading.query("SELECT sequence, queue, place, backouts, checksum, header, body FROM messages ORDER BY sequence");
    while (reading.next()) {
        ++contents.messages;
        const MessageKey key{.queue = static_cast<QueueId>(reading.number(1)),
                             .order = static_cast<std::uint8_t>(reading.number(2)),
                             .sequence = static_cast<std::uint64_t>(reading.number(0))};
        const auto headerBytes = reading.bytes(5);
        const auto body = reading.bytes(6);
        contents.bytes += body.size();
        const std::string what =
            "log.db: message " + std::to_string(key.sequence) + " of queue number " + std::to_string(key.queue);
        const auto backouts = static_cast<std::uint64_t>(reading.number(3));
        MessageHeader header{};
        if (headerBytes.size() != sizeof header || reading.number(1) != std::int64_t{key.queue} ||
            reading.number(2) != std::int64_t{key.order} || reading.number(0) <= 0 ||
            logFormat::checksumOfMessage(key, backouts, headerBytes, body) !=
                static_cast<std::uint64_t>(reading.number(4))) {
            findings.add(what + " is damaged: its checksum is wrong");
            continue;
        }
        std::memcpy(&header, headerBytes.data(), sizeof header);
        if (!isPersistent(header)) findings.add(what + " is not persistent");
        if (!known.queues.contains(key.queue)) findings.add(what + " is of a queue that does not exist");
    }
    if (!reading.complete()) findings.add("log.db: the messages cannot be read: " + reading.message());
}

// SQLite's own look at its pages: every page in its place once, every row where its key says.
void checkPages(Reading &reading, Findings &findings)
{
    reading.query("PRAGMA integrity_check(20)");
    while (reading.next()) {
        const std::string line = reading.text(0);
        if (line != "ok") findings.add("log.db: " + line);
    }
    if (!reading.complete()) findings.add("log.db: its pages cannot be verified: " + reading.message());
}

// What can be said without opening it; true if it is worth opening.
bool checkFile(const std::filesystem::path &file, LogContents &contents, Findings &findings)
{
    struct stat status {};
    if (stat(file.c_str(), &status) != 0) {
        if (errno == EACCES)
            contents.outcome = failure(MQRC_NOT_AUTHORIZED);
        else
            findings.add("log.db is missing, or leads nowhere");
        return false;
    }
    if (!S_ISREG(status.st_mode))
        findings.add(S_ISDIR(status.st_mode) ? "log.db is a folder" : "log.db is no file");
    else if (status.st_size == 0)
        findings.add("log.db is empty");
    else
        return true;
    return false;
}

} // namespace

void Findings::add(std::string line)
{
    ++count_;
    if (lines_.size() < kept) lines_.push_back(std::move(line));
}

std::vector<std::string> Findings::lines() const
{
    std::vector<std::string> lines = lines_;
    if (count_ > lines_.size()) lines.push_back("and " + std::to_string(count_ - lines_.size()) + " more");
    return lines;
}

LogContents checkLog(const std::filesystem::path &file, const CanDecode &canDecode, Findings &findings)
{
    LogContents contents;
    if (!checkFile(file, contents, findings)) return contents;
    errno = 0;
    Reading reading(file);
    if (reading.code() != SQLITE_OK && (reading.code() & 0xff) != SQLITE_NOTADB) {
        contents.outcome = logFormat::outcomeOf(reading.code());
        if (contents.outcome.Reason != MQRC_UNEXPECTED_ERROR) return contents;
        contents.outcome = success();
        findings.add("log.db cannot be opened: " + reading.message());
        return contents;
    }
    const auto application = reading.oneNumber("PRAGMA application_id");
    if ((reading.code() & 0xff) == SQLITE_CANTOPEN || (reading.code() & 0xff) == SQLITE_READONLY) {
        contents.outcome = failure(MQRC_NOT_AUTHORIZED);
        return contents;
    }
    // No memory, or no space for what SQLite needs to read it: nothing is known of the log.
    if (logFormat::outcomeOfStep(reading.code()).Reason == MQRC_RESOURCE_PROBLEM) {
        contents.outcome = failure(MQRC_RESOURCE_PROBLEM);
        return contents;
    }
    if (reading.code() != SQLITE_ROW) {
        findings.add("log.db is no log: " + reading.message());
        return contents;
    }
    if (application != logFormat::applicationId) {
        findings.add("log.db is a database, but no log of a queue manager");
        return contents;
    }
    contents.format = static_cast<int>(reading.oneNumber("PRAGMA user_version"));
    if (contents.format > logFormat::number) {
        contents.outcome = failure(MQRC_ENVIRONMENT_ERROR);
        return contents;
    }
    if (contents.format < 1) {
        findings.add("log.db has the format number " + std::to_string(contents.format) + ", which there never was");
        return contents;
    }
    const auto head = headOf(reading.database());
    contents.aheadMode = head[18] == 2 && head[19] == 2;
    if (head[18] != head[19] || head[18] < 1 || head[18] > 2) findings.add("log.db: its head is damaged");
    checkPages(reading, findings);
    if (const Outcome ours = logFormat::hasOnlyOurTables(reading.database()); ours.failed()) {
        if (ours.Reason == MQRC_UNEXPECTED_ERROR)
            findings.add("log.db: its tables are not those of a log");
        else
            contents.outcome = ours;
        return contents;
    }
    Known known;
    checkQueueManagerRow(reading, contents, known, findings);
    checkDefinitions(reading, canDecode, contents, known, findings);
    checkMessages(reading, contents, known, findings);
    return contents;
}

} // namespace mqrig::qmgr::store
