#include "qmgr/store/log_database.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <unistd.h>

#include <sqlite3.h>

#include "qmgr/store/checksum.h"
#include "qmgr/store/seams.h"

namespace mqrig::qmgr::store {

namespace {

constexpr int formatNumber = 1;
constexpr std::uint64_t pageSize = 4096;
constexpr std::uint64_t aheadWindow = 2000 * (pageSize + 24); // the write-ahead file between two checkpoints
constexpr int spaceStep = 1 << 20;
constexpr int applicationId = 0x4d51524c; // "MQRL": tells file(1) and us that the file is a log of ours

constexpr const char *schema = R"(
CREATE TABLE queue_manager(
    id INTEGER PRIMARY KEY CHECK(id = 1),
    name TEXT NOT NULL,
    state INTEGER NOT NULL,
    generation INTEGER NOT NULL,
    ticket INTEGER NOT NULL,
    next_queue INTEGER NOT NULL,
    sequence_base INTEGER NOT NULL);
CREATE TABLE definitions(
    type INTEGER NOT NULL,
    name TEXT NOT NULL,
    queue INTEGER NOT NULL,
    bytes BLOB NOT NULL,
    checksum INTEGER NOT NULL,
    PRIMARY KEY(type, name)) WITHOUT ROWID;
CREATE TABLE messages(
    sequence INTEGER PRIMARY KEY,
    queue INTEGER NOT NULL,
    place INTEGER NOT NULL,
    backouts INTEGER NOT NULL,
    checksum INTEGER NOT NULL,
    header BLOB NOT NULL,
    body BLOB NOT NULL);
)";

constexpr std::array<const char *, 19> statementTexts{
    "BEGIN IMMEDIATE",
    "COMMIT",
    "ROLLBACK",
    "INSERT INTO messages(sequence, queue, place, backouts, checksum, header, body) VALUES(?, ?, ?, ?, ?, ?, ?)",
    "DELETE FROM messages WHERE sequence = ?",
    "UPDATE messages SET backouts = ? WHERE sequence = ?",
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

Outcome outcomeOfLog(int code)
{
    switch (code & 0xff) {
    case SQLITE_OK:
    case SQLITE_ROW:
    case SQLITE_DONE:
        return success();
    case SQLITE_FULL:
    case SQLITE_BUSY:
        return failure(MQRC_STORAGE_NOT_AVAILABLE);
    case SQLITE_NOMEM:
        return failure(MQRC_RESOURCE_PROBLEM);
    case SQLITE_PERM:
    case SQLITE_READONLY:
    case SQLITE_AUTH:
        return failure(MQRC_NOT_AUTHORIZED);
    case SQLITE_CANTOPEN:
        return failure(errno == EACCES ? MQRC_NOT_AUTHORIZED : MQRC_STORAGE_NOT_AVAILABLE);
    default:
        return failure(MQRC_UNEXPECTED_ERROR);
    }
}

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

std::uint64_t checksumOfMessage(const MessageKey &key, std::span<const std::byte> header,
                                std::span<const std::byte> body)
{
    const std::uint64_t seed = key.sequence ^ (std::uint64_t{key.queue} << 8 | key.order) * 0x9e3779b97f4a7c15;
    return checksumOf(body, checksumOf(header, seed));
}

std::uint64_t checksumOfDefinition(MQLONG type, std::string_view name, QueueId queue, std::string_view bytes)
{
    const std::uint64_t seed = static_cast<std::uint64_t>(type) << 32 | queue;
    return checksumOf(std::as_bytes(std::span(bytes)), checksumOf(std::as_bytes(std::span(name)), seed));
}

} // namespace

int LogDatabase::connect(const std::filesystem::path &file)
{
    static_assert(statementTexts.size() == statements);
    constexpr int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE;
    return sqlite3_open_v2(file.c_str(), &database_, flags, nullptr);
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
    if (fd < 0) return {outcomeOfLog(errno == ENOSPC || errno == EDQUOT ? SQLITE_FULL : SQLITE_CANTOPEN), nullptr};
    close(fd);
    std::unique_ptr<LogDatabase> log(new LogDatabase);
    int code = log->connect(file);
    if (code == SQLITE_OK) code = log->configure();
    if (code == SQLITE_OK) code = log->execute("BEGIN IMMEDIATE");
    if (code == SQLITE_OK) code = log->execute(schema);
    if (code == SQLITE_OK) {
        const std::string settings = "PRAGMA application_id = " + std::to_string(applicationId) +
                                     "; PRAGMA user_version = " + std::to_string(formatNumber) +
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
    if (code != SQLITE_OK) return {outcomeOfLog(code), nullptr};
    return {success(), std::move(log)};
}

LogDatabase::Opened LogDatabase::open(const std::filesystem::path &file)
{
    std::unique_ptr<LogDatabase> log(new LogDatabase);
    if (const int code = log->connect(file); code != SQLITE_OK) return {outcomeOfLog(code), nullptr};
    // A file that is not ours is not touched.
    if (const Outcome current = log->bringUpToDate(); current.failed()) return {current, nullptr};
    if (const int code = log->configure(); code != SQLITE_OK) return {outcomeOfLog(code), nullptr};
    return {success(), std::move(log)};
}

// How to change the format: raise formatNumber, and add to `upgrades` the statements that turn a log of the format
// before into one of the new format.
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
    if (code != SQLITE_ROW) return outcomeOfLog(code);
    if (id != applicationId) return failure(MQRC_UNEXPECTED_ERROR);
    const int found = number("PRAGMA user_version").second;
    if (found > formatNumber) return failure(MQRC_ENVIRONMENT_ERROR);
    if (found == formatNumber) return success();
    constexpr std::array<const char *, formatNumber> upgrades{nullptr}; // [n]: from format n to n + 1; none before 1
    if (found < 1) return failure(MQRC_UNEXPECTED_ERROR);
    std::string steps = "BEGIN IMMEDIATE;";
    for (int from = found; from < formatNumber; ++from)
        steps += upgrades.at(static_cast<std::size_t>(from));
    steps += "; PRAGMA user_version = " + std::to_string(formatNumber) + "; COMMIT";
    const int upgraded = execute(steps.c_str());
    if (upgraded != SQLITE_OK) execute("ROLLBACK");
    return outcomeOfLog(upgraded);
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
    if (!steps_.failed()) steps_ = outcomeOfLog(code);
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
    const std::uint64_t value = sqlite3_step(statement) == SQLITE_ROW ? unsignedColumn(statement, 0) : 0;
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
    const Outcome failed = outcomeOfLog(code);
    rollback();
    return failed;
}

void LogDatabase::rollback()
{
    if (sqlite3_get_autocommit(database_) != 0) return;
    sqlite3_stmt *statement = prepared(Rollback);
    if (statement == nullptr) return;
    sqlite3_step(statement);
    sqlite3_reset(statement);
}

void LogDatabase::insertMessage(const MessageKey &key, const MessageHeader &header, std::span<const std::byte> body)
{
    sqlite3_stmt *statement = prepared(InsertMessage);
    if (statement == nullptr) return;
    const auto headerBytes = std::as_bytes(std::span(&header, 1));
    sqlite3_bind_int64(statement, 1, signedOf(key.sequence));
    sqlite3_bind_int64(statement, 2, key.queue);
    sqlite3_bind_int(statement, 3, key.order);
    sqlite3_bind_int(statement, 4, header.md.BackoutCount);
    sqlite3_bind_int64(statement, 5, signedOf(checksumOfMessage(key, headerBytes, body)));
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
    sqlite3_bind_int64(
        statement, 5,
        signedOf(checksumOfDefinition(definition.type, definition.name, definition.queue, definition.bytes)));
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
        row.outcome = code == SQLITE_DONE ? failure(MQRC_UNEXPECTED_ERROR) : outcomeOfLog(code);
    }
    sqlite3_reset(statement);
    return row;
}

std::uint64_t LogDatabase::highestSequence()
{
    sqlite3_stmt *statement = prepared(HighestSequence);
    if (statement == nullptr) return 0;
    const std::uint64_t highest = sqlite3_step(statement) == SQLITE_ROW ? unsignedColumn(statement, 0) : 0;
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
    if (code != SQLITE_ROW && code != SQLITE_DONE) outcome = outcomeOfLog(code);
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
        checksumOfMessage(key, headerBytes, body) != unsignedColumn(statement, 4)) {
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
    if (checksumOfDefinition(definition.type, definition.name, definition.queue, definition.bytes) !=
        unsignedColumn(statement, 4)) {
        outcome = failure(MQRC_UNEXPECTED_ERROR);
        return false;
    }
    return true;
}

} // namespace mqrig::qmgr::store
