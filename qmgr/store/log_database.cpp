#include "qmgr/store/log_database.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <unistd.h>

#include <sqlite3.h>

#include "qmgr/store/log_format.h"
#include "qmgr/store/seams.h"
#include "qmgr/store/system_error.h"

namespace mqrig::qmgr::store {

namespace {

using logFormat::pageSize;
constexpr std::uint64_t aheadWindow = 2000 * (pageSize + 24); // the write-ahead file between two checkpoints
constexpr int spaceStep = 1 << 20;

constexpr std::array<const char *, 19> statementTexts{
    "BEGIN IMMEDIATE",
    "COMMIT",
    "ROLLBACK",
    "INSERT INTO messages(sequence, queue, place, backouts, checksum, header, body) VALUES(?, ?, ?, ?, ?, ?, ?)",
    "DELETE FROM messages WHERE sequence = ?",
    // The checksum without the old count and with the new one. (SQLite has no xor: a | b without a & b.)
    "UPDATE messages SET backouts = ?1, checksum = (checksum | ((backouts | ?1) & ~(backouts & ?1)))"
    " & ~(checksum & ((backouts | ?1) & ~(backouts & ?1))) WHERE sequence = ?2",
    "DELETE FROM messages WHERE queue = ?",
    "INSERT OR REPLACE INTO definitions(type, name, queue, bytes, checksum) VALUES(?, ?, ?, ?, ?)",
    "DELETE FROM definitions WHERE type = ? AND name = ?",
    "UPDATE queue_manager SET next_queue = next_queue + 1 RETURNING next_queue - 1",
    "UPDATE queue_manager SET ticket = max(ticket, ?) WHERE generation = ?",
    "UPDATE queue_manager SET state = ? WHERE generation = ?",
    "UPDATE queue_manager SET generation = ?, ticket = 0, sequence_base = ?",
    "SELECT name, state, generation, ticket, sequence_base FROM queue_manager",
    "SELECT max(sequence) FROM messages",
    "SELECT sequence, queue, place, backouts, checksum, header, body FROM messages ORDER BY sequence",
    "SELECT type, name, queue, bytes, checksum FROM definitions",
    "PRAGMA page_count",
    "PRAGMA freelist_count",
};

// Repeats while SQLite finds its locks taken, for a few seconds at most.
template <class Act>
int patiently(Act &&act)
{
    int code = act();
    for (int tries = 0; (code & 0xff) == SQLITE_BUSY && tries < 3000; ++tries) {
        constexpr timespec pause{.tv_sec = 0, .tv_nsec = 1'000'000};
        nanosleep(&pause, nullptr);
        code = act();
    }
    return code;
}

std::int64_t signedOf(std::uint64_t value)
{
    return static_cast<std::int64_t>(value);
}

std::uint64_t unsignedColumn(sqlite3_stmt *statement, int column)
{
    return static_cast<std::uint64_t>(sqlite3_column_int64(statement, column));
}

std::span<const std::byte> blobColumn(sqlite3_stmt *statement, int column)
{
    const auto *bytes = static_cast<const std::byte *>(sqlite3_column_blob(statement, column));
    return {bytes, static_cast<std::size_t>(sqlite3_column_bytes(statement, column))};
}

std::string textColumn(sqlite3_stmt *statement, int column)
{
    const auto *text = reinterpret_cast<const char *>(sqlite3_column_text(statement, column));
    return text == nullptr ? std::string()
                           : std::string(text, static_cast<std::size_t>(sqlite3_column_bytes(statement, column)));
}

// Binds without copying: everything outlives the step.
void bindBlob(sqlite3_stmt *statement, int index, std::span<const std::byte> bytes)
{
    const void *from = bytes.data() == nullptr ? static_cast<const void *>("") : bytes.data();
    sqlite3_bind_blob64(statement, index, from, bytes.size(), SQLITE_STATIC);
}

void bindText(sqlite3_stmt *statement, int index, std::string_view text)
{
    sqlite3_bind_text(statement, index, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
}

} // namespace

int LogDatabase::connect(const std::filesystem::path &file)
{
    static_assert(statementTexts.size() == statements);
    constexpr int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE;
    const int code = sqlite3_open_v2(file.c_str(), &database_, flags, nullptr);
    if (code == SQLITE_OK) sqlite3_db_config(database_, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    return code;
}

int LogDatabase::configure()
{
    int keep = 1;
    sqlite3_file_control(database_, "main", SQLITE_FCNTL_PERSIST_WAL, &keep);
    int chunk = spaceStep;
    sqlite3_file_control(database_, "main", SQLITE_FCNTL_CHUNK_SIZE, &chunk);
    // Commits wait for the disk. The write-ahead file stays as large as it once was: writing over old frames spares
    // the file system's own journal a transaction at every sync.
    return patiently([this] {
        return execute("PRAGMA journal_mode = WAL; PRAGMA synchronous = FULL; PRAGMA wal_autocheckpoint = 2000;"
                       "PRAGMA journal_size_limit = 67108864; PRAGMA temp_store = MEMORY");
    });
}

LogDatabase::Opened LogDatabase::create(const std::filesystem::path &file, std::string_view name)
{
    // Made first, for SQLite would let everybody read it. Its two companions take their permissions from it.
    const int fd = ::open(file.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (fd < 0) return {outcomeOfSystem(errno), nullptr};
    close(fd);
    std::unique_ptr<LogDatabase> log(new LogDatabase);
    int code = log->connect(file);
    if (code == SQLITE_OK) code = log->configure();
    if (code == SQLITE_OK) code = log->execute("BEGIN IMMEDIATE");
    for (const logFormat::Table &table : logFormat::tables)
        if (code == SQLITE_OK) code = log->execute(table.sql);
    if (code == SQLITE_OK) {
        const std::string settings = "PRAGMA application_id = " + std::to_string(logFormat::applicationId) +
                                     "; PRAGMA user_version = " + std::to_string(logFormat::number) +
                                     "; INSERT INTO queue_manager VALUES(1, '', 1, 0, 0, 1, 0)";
        code = log->execute(settings.c_str());
    }
    sqlite3_stmt *naming = nullptr;
    if (code == SQLITE_OK) {
        code = sqlite3_prepare_v2(log->database_, "UPDATE queue_manager SET name = ?", -1, &naming, nullptr);
    }
    if (code == SQLITE_OK) {
        bindText(naming, 1, name);
        code = sqlite3_step(naming);
        if (code == SQLITE_DONE) code = SQLITE_OK;
    }
    sqlite3_finalize(naming);
    if (code == SQLITE_OK) code = log->execute("COMMIT");
    if (code != SQLITE_OK) return {logFormat::outcomeOf(code), nullptr};
    return {success(), std::move(log)};
}

LogDatabase::Opened LogDatabase::open(const std::filesystem::path &file)
{
    std::unique_ptr<LogDatabase> log(new LogDatabase);
    if (const int code = log->connect(file); code != SQLITE_OK) return {logFormat::outcomeOfStep(code), nullptr};
    // A file that is not ours is not touched.
    if (const Outcome current = log->bringUpToDate(); current.failed()) return {current, nullptr};
    if (const Outcome ours = logFormat::hasOnlyOurTables(log->database_); ours.failed()) return {ours, nullptr};
    if (const int code = log->configure(); code != SQLITE_OK) return {logFormat::outcomeOfStep(code), nullptr};
    log->steps_ = success();
    for (const Statement which : {Begin, Commit, Rollback}) // a rollback must not ask for memory
        static_cast<void>(log->prepared(which));
    if (log->steps_.failed()) return {log->steps_, nullptr};
    return {success(), std::move(log)};
}

Outcome LogDatabase::bringUpToDate()
{
    const auto number = [this](const char *sql) {
        sqlite3_stmt *statement = nullptr;
        int value = -1;
        int code = patiently([&] { return sqlite3_prepare_v2(database_, sql, -1, &statement, nullptr); });
        if (code == SQLITE_OK) code = patiently([&] { return sqlite3_step(statement); });
        if (code == SQLITE_ROW) value = sqlite3_column_int(statement, 0);
        sqlite3_finalize(statement);
        return std::pair{code, value};
    };
    const auto [code, id] = number("PRAGMA application_id");
    if (code != SQLITE_ROW) return logFormat::outcomeOfStep(code);
    if (id != logFormat::applicationId) return failure(MQRC_UNEXPECTED_ERROR);
    const auto [readCode, found] = number("PRAGMA user_version");
    if (readCode != SQLITE_ROW) return logFormat::outcomeOfStep(readCode);
    if (found > logFormat::number) return failure(MQRC_ENVIRONMENT_ERROR);
    if (found == logFormat::number) return success();
    constexpr std::array<const char *, logFormat::number> upgrades{
        nullptr, // [n]: from format n to n + 1; none before 1
        // The checksum covers the backout count.
        "UPDATE messages SET checksum = (checksum | backouts) & ~(checksum & backouts) WHERE backouts <> 0",
    };
    if (found < 1) return failure(MQRC_UNEXPECTED_ERROR);
    std::string steps = "BEGIN IMMEDIATE;";
    for (int from = found; from < logFormat::number; ++from)
        steps += std::string(upgrades.at(static_cast<std::size_t>(from))) + ';';
    steps += "PRAGMA user_version = " + std::to_string(logFormat::number) + "; COMMIT";
    const int upgraded = execute(steps.c_str());
    if (upgraded != SQLITE_OK) execute("ROLLBACK");
    return logFormat::outcomeOf(upgraded);
}

LogDatabase::~LogDatabase()
{
    for (sqlite3_stmt *statement : prepared_)
        sqlite3_finalize(statement);
    // Without the closing checkpoint: this may run at the end of a process that holds no lock.
    if (database_ != nullptr) {
        sqlite3_db_config(database_, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
        sqlite3_close(database_);
    }
}

int LogDatabase::execute(const char *sql)
{
    return sqlite3_exec(database_, sql, nullptr, nullptr, nullptr);
}

void LogDatabase::fail(int code)
{
    if (steps_.failed()) return;
    // A file that could not be opened for writing has been opened for reading, in silence.
    if ((code & 0xff) == SQLITE_READONLY || (code & 0xff) == SQLITE_CANTOPEN) stale_ = true;
    if ((code & 0xff) == SQLITE_READONLY && access(sqlite3_db_filename(database_, "main"), W_OK) == 0) {
        steps_ = failure(MQRC_RESOURCE_PROBLEM);
        return;
    }
    steps_ = logFormat::outcomeOfStep(code);
}

sqlite3_stmt *LogDatabase::prepared(Statement which)
{
    sqlite3_stmt *&statement = prepared_.at(which);
    if (statement == nullptr) {
        const int code = patiently([&] {
            return sqlite3_prepare_v3(database_, statementTexts.at(which), -1, SQLITE_PREPARE_PERSISTENT, &statement,
                                      nullptr);
        });
        if (code != SQLITE_OK) fail(code);
    }
    return statement;
}

void LogDatabase::run(sqlite3_stmt *statement)
{
    if (steps_.failed()) return;
    int code = SQLITE_OK;
    if (const int error = injectedError(StorageCall::LogWrite); error != 0) {
        code = error == ENOSPC ? SQLITE_FULL : SQLITE_IOERR;
    } else {
        code = sqlite3_step(statement);
    }
    if (code != SQLITE_DONE && code != SQLITE_ROW) fail(code);
    sqlite3_reset(statement);
}

std::uint64_t LogDatabase::count(Statement which)
{
    sqlite3_stmt *statement = prepared(which);
    if (statement == nullptr) return 0;
    const int code = sqlite3_step(statement);
    const std::uint64_t value = code == SQLITE_ROW ? unsignedColumn(statement, 0) : 0;
    if (code != SQLITE_ROW) fail(code);
    sqlite3_reset(statement);
    return value;
}

// What deletions need is kept allocated at all times, because deletions never ask:
// - in the write-ahead file, the frames up to the next checkpoint and as many again;
// - in the database file, every page that a checkpoint may have to write back.
// So insertions are refused (or taken from pages that deletions have freed) while the disk has no more to give.
void LogDatabase::makeRoom(std::uint64_t messages, std::uint64_t bytes)
{
    const std::uint64_t needed = bytes + bytes / 8 + messages * 128 + std::uint64_t{64} * pageSize;
    const std::uint64_t pages = count(PageCount) * pageSize;
    const std::uint64_t free = count(FreePages) * pageSize;
    if (steps_.failed()) return;
    const auto allocate = [](sqlite3_file *file, std::uint64_t &space, std::uint64_t wanted) {
        if (wanted <= space) return true;
        const std::uint64_t rounded = (wanted + spaceStep - 1) / spaceStep * spaceStep;
        auto size = static_cast<sqlite3_int64>(rounded);
        const bool allocated = injectedError(StorageCall::Reserve) == 0 && file != nullptr &&
                               file->pMethods != nullptr &&
                               file->pMethods->xFileControl(file, SQLITE_FCNTL_SIZE_HINT, &size) == SQLITE_OK;
        if (allocated) space = static_cast<std::uint64_t>(size);
        return allocated;
    };
    sqlite3_file *database = nullptr;
    sqlite3_file *ahead = nullptr;
    sqlite3_file_control(database_, "main", SQLITE_FCNTL_FILE_POINTER, &database);
    sqlite3_file_control(database_, "main", SQLITE_FCNTL_JOURNAL_POINTER, &ahead);
    int chunk = spaceStep;
    if (ahead != nullptr && ahead->pMethods != nullptr) {
        ahead->pMethods->xFileControl(ahead, SQLITE_FCNTL_CHUNK_SIZE, &chunk);
    }
    const std::uint64_t grows = needed > free ? needed - free : 0;
    if (!allocate(database, databaseSpace_, pages + grows) || !allocate(ahead, aheadSpace_, 2 * aheadWindow + needed)) {
        steps_ = failure(MQRC_STORAGE_NOT_AVAILABLE);
    }
}

Outcome LogDatabase::begin()
{
    steps_ = success();
    sqlite3_stmt *statement = prepared(Begin);
    if (steps_.failed()) return steps_;
    if (const int error = injectedError(StorageCall::LogBegin); error != 0) {
        steps_ = failure(MQRC_STORAGE_NOT_AVAILABLE);
        return steps_;
    }
    const int code = patiently([&] {
        const int stepped = sqlite3_step(statement);
        sqlite3_reset(statement);
        return stepped;
    });
    if (code != SQLITE_DONE) fail(code);
    return steps_;
}

Outcome LogDatabase::commit()
{
    sqlite3_stmt *statement = prepared(Commit);
    if (const int error = injectedError(StorageCall::LogCommit); error != 0) fail(SQLITE_FULL);
    if (steps_.failed()) {
        const Outcome failed = steps_;
        rollback();
        return failed;
    }
    const int unsynced = injectedError(StorageCall::LogSync);
    int code = sqlite3_step(statement);
    sqlite3_reset(statement);
    if (unsynced != 0) code = SQLITE_IOERR_FSYNC;
    if (code == SQLITE_DONE) return success();
    const Outcome failed = logFormat::outcomeOf(code);
    rollback();
    // Memory may have run out when the disk had all of it, and only SQLite's index of the write-ahead file did not.
    // What is written next takes its place there. If nothing can be, it is not known what the log has.
    if (failed.Reason == MQRC_RESOURCE_PROBLEM && !writeOver()) return failure(MQRC_UNEXPECTED_ERROR);
    return failed;
}

// A transaction that changes nothing, and is written all the same.
bool LogDatabase::writeOver()
{
    std::array<char, 80> sql{};
    std::snprintf(sql.data(), sql.size(), "BEGIN IMMEDIATE; PRAGMA user_version = %d; COMMIT", logFormat::number);
    const bool written = execute(sql.data()) == SQLITE_OK;
    rollback();
    return written;
}

void LogDatabase::rollback()
{
    if (sqlite3_get_autocommit(database_) != 0) return;
    if (sqlite3_stmt *statement = prepared(Rollback); statement != nullptr) {
        sqlite3_step(statement);
        sqlite3_reset(statement);
    }
    if (sqlite3_get_autocommit(database_) == 0) stale_ = true; // closing it is a rollback
}

void LogDatabase::settle()
{
    sqlite3_file *ahead = nullptr;
    sqlite3_file_control(database_, "main", SQLITE_FCNTL_JOURNAL_POINTER, &ahead);
    sqlite3_int64 size = 0;
    if (ahead != nullptr && ahead->pMethods != nullptr) ahead->pMethods->xFileSize(ahead, &size);
    // A reader stands in the way for as long as it likes, and then everything stays where it is, as good as before.
    sqlite3_wal_checkpoint_v2(database_, "main", SQLITE_CHECKPOINT_TRUNCATE, nullptr, nullptr);
    aheadSpace_ = 0;
    // The head-room for deletions is kept where there was some.
    if (static_cast<std::uint64_t>(size) >= 2 * aheadWindow) makeRoom(0, 0);
    steps_ = success();
}

void LogDatabase::insertMessage(const MessageKey &key, const MessageHeader &header, std::span<const std::byte> body)
{
    sqlite3_stmt *statement = prepared(InsertMessage);
    if (statement == nullptr) return;
    const auto headerBytes = std::as_bytes(std::span(&header, 1));
    sqlite3_bind_int64(statement, 1, signedOf(key.sequence));
    sqlite3_bind_int64(statement, 2, key.queue);
    sqlite3_bind_int(statement, 3, key.order);
    sqlite3_bind_int64(statement, 4, static_cast<std::uint32_t>(header.md.BackoutCount));
    const auto backouts = static_cast<std::uint32_t>(header.md.BackoutCount);
    sqlite3_bind_int64(statement, 5, signedOf(logFormat::checksumOfMessage(key, backouts, headerBytes, body)));
    bindBlob(statement, 6, headerBytes);
    bindBlob(statement, 7, body);
    run(statement);
    sqlite3_clear_bindings(statement);
}

void LogDatabase::deleteMessage(std::uint64_t sequence)
{
    sqlite3_stmt *statement = prepared(DeleteMessage);
    if (statement == nullptr) return;
    sqlite3_bind_int64(statement, 1, signedOf(sequence));
    run(statement);
}

void LogDatabase::setBackoutCount(std::uint64_t sequence, std::uint64_t count)
{
    sqlite3_stmt *statement = prepared(SetBackoutCount);
    if (statement == nullptr) return;
    sqlite3_bind_int64(statement, 1, signedOf(count));
    sqlite3_bind_int64(statement, 2, signedOf(sequence));
    run(statement);
}

void LogDatabase::deleteMessagesOf(QueueId queue)
{
    sqlite3_stmt *statement = prepared(DeleteMessagesOf);
    if (statement == nullptr) return;
    sqlite3_bind_int64(statement, 1, queue);
    run(statement);
}

void LogDatabase::storeDefinition(const Definition &definition)
{
    sqlite3_stmt *statement = prepared(StoreDefinition);
    if (statement == nullptr) return;
    sqlite3_bind_int(statement, 1, definition.type);
    bindText(statement, 2, definition.name);
    sqlite3_bind_int64(statement, 3, definition.queue);
    bindBlob(statement, 4, std::as_bytes(std::span(definition.bytes)));
    sqlite3_bind_int64(statement, 5,
                       signedOf(logFormat::checksumOfDefinition(definition.type, definition.name, definition.queue,
                                                                definition.bytes)));
    run(statement);
    sqlite3_clear_bindings(statement);
}

void LogDatabase::deleteDefinition(MQLONG type, std::string_view name)
{
    sqlite3_stmt *statement = prepared(DeleteDefinition);
    if (statement == nullptr) return;
    sqlite3_bind_int(statement, 1, type);
    bindText(statement, 2, name);
    run(statement);
    sqlite3_clear_bindings(statement);
}

QueueId LogDatabase::takeQueueId()
{
    sqlite3_stmt *statement = prepared(TakeQueueId);
    if (statement == nullptr || steps_.failed()) return 0;
    QueueId taken = 0;
    if (sqlite3_step(statement) == SQLITE_ROW) {
        taken = static_cast<QueueId>(sqlite3_column_int64(statement, 0));
        if (const int code = sqlite3_step(statement); code != SQLITE_DONE) fail(code);
    }
    if (const int code = sqlite3_reset(statement); code != SQLITE_OK) fail(code);
    return taken;
}

void LogDatabase::advance(std::uint64_t generation, Ticket ticket)
{
    sqlite3_stmt *statement = prepared(Advance);
    if (statement == nullptr) return;
    sqlite3_bind_int64(statement, 1, signedOf(ticket));
    sqlite3_bind_int64(statement, 2, signedOf(generation));
    run(statement);
    if (!steps_.failed() && sqlite3_changes(database_) != 1) steps_ = failure(MQRC_CONNECTION_BROKEN);
}

void LogDatabase::setState(std::uint64_t generation, State state)
{
    sqlite3_stmt *statement = prepared(SetState);
    if (statement == nullptr) return;
    sqlite3_bind_int64(statement, 1, static_cast<int>(state));
    sqlite3_bind_int64(statement, 2, signedOf(generation));
    run(statement);
    if (!steps_.failed() && sqlite3_changes(database_) != 1) steps_ = failure(MQRC_CONNECTION_BROKEN);
}

void LogDatabase::beginLife(std::uint64_t generation, std::uint64_t sequenceBase)
{
    sqlite3_stmt *statement = prepared(BeginLife);
    if (statement == nullptr) return;
    sqlite3_bind_int64(statement, 1, signedOf(generation));
    sqlite3_bind_int64(statement, 2, signedOf(sequenceBase));
    run(statement);
}

LogDatabase::QueueManagerRow LogDatabase::queueManager()
{
    steps_ = success();
    QueueManagerRow row;
    sqlite3_stmt *statement = prepared(ReadQueueManager);
    if (statement == nullptr) {
        row.outcome = steps_;
        return row;
    }
    const int code = patiently([&] { return sqlite3_step(statement); });
    if (code == SQLITE_ROW) {
        row.name = textColumn(statement, 0);
        row.state = static_cast<State>(sqlite3_column_int(statement, 1));
        row.generation = unsignedColumn(statement, 2);
        row.ticket = unsignedColumn(statement, 3);
        row.sequenceBase = unsignedColumn(statement, 4);
        if (row.state != State::Running && row.state != State::Quiescing && row.state != State::Ended) {
            row.outcome = failure(MQRC_UNEXPECTED_ERROR);
        }
    } else {
        row.outcome = code == SQLITE_DONE ? failure(MQRC_UNEXPECTED_ERROR) : logFormat::outcomeOfStep(code);
    }
    sqlite3_reset(statement);
    return row;
}

std::uint64_t LogDatabase::highestSequence()
{
    sqlite3_stmt *statement = prepared(HighestSequence);
    if (statement == nullptr) return 0;
    const int code = sqlite3_step(statement);
    const std::uint64_t highest = code == SQLITE_ROW ? unsignedColumn(statement, 0) : 0;
    if (code != SQLITE_ROW) fail(code);
    sqlite3_reset(statement);
    return highest;
}

LogDatabase::Reader::Reader(LogDatabase &database, Rows rows)
    : log(database), statement(database.prepared(rows == Rows::Messages ? ReadMessages : ReadDefinitions))
{
    if (statement == nullptr) outcome = log.steps_;
}

LogDatabase::Reader::~Reader()
{
    sqlite3_reset(statement);
}

bool LogDatabase::Reader::step()
{
    if (outcome.failed()) return false;
    const int code = sqlite3_step(statement);
    if (code != SQLITE_ROW && code != SQLITE_DONE) outcome = logFormat::outcomeOfStep(code);
    return code == SQLITE_ROW;
}

bool LogDatabase::Reader::nextMessage()
{
    if (!step()) return false;
    key = {.queue = static_cast<QueueId>(sqlite3_column_int64(statement, 1)),
           .order = static_cast<std::uint8_t>(sqlite3_column_int(statement, 2)),
           .sequence = unsignedColumn(statement, 0)};
    const auto headerBytes = blobColumn(statement, 5);
    body = blobColumn(statement, 6);
    if (headerBytes.size() != sizeof header ||
        logFormat::checksumOfMessage(key, unsignedColumn(statement, 3), headerBytes, body) !=
            unsignedColumn(statement, 4)) {
        outcome = failure(MQRC_UNEXPECTED_ERROR);
        return false;
    }
    std::memcpy(&header, headerBytes.data(), sizeof header);
    header.md.BackoutCount = sqlite3_column_int(statement, 3);
    return true;
}

bool LogDatabase::Reader::nextDefinition()
{
    if (!step()) return false;
    definition.type = sqlite3_column_int(statement, 0);
    definition.name = textColumn(statement, 1);
    definition.queue = static_cast<QueueId>(sqlite3_column_int64(statement, 2));
    const auto bytes = blobColumn(statement, 3);
    definition.bytes.assign(reinterpret_cast<const char *>(bytes.data()), bytes.size());
    if (logFormat::checksumOfDefinition(definition.type, definition.name, definition.queue, definition.bytes) !=
        unsignedColumn(statement, 4)) {
        outcome = failure(MQRC_UNEXPECTED_ERROR);
        return false;
    }
    return true;
}

} // namespace mqrig::qmgr::store
