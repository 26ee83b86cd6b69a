#include "qmgr/store/log_format.h"

#include <algorithm>
#include <array>
#include <cerrno>

#include <sqlite3.h>

#include "qmgr/store/checksum.h"
#include "qmgr/store/system_error.h"

namespace mqrig::qmgr::store::logFormat {

namespace {

constexpr std::array<Table, 3> allTables{{
    {"queue_manager", R"(CREATE TABLE queue_manager(
    id INTEGER PRIMARY KEY CHECK(id = 1),
    name TEXT NOT NULL,
    state INTEGER NOT NULL,
    generation INTEGER NOT NULL,
    ticket INTEGER NOT NULL,
    next_queue INTEGER NOT NULL,
    sequence_base INTEGER NOT NULL))"},
    {"definitions", R"(CREATE TABLE definitions(
    type INTEGER NOT NULL,
    name TEXT NOT NULL,
    queue INTEGER NOT NULL,
    bytes BLOB NOT NULL,
    checksum INTEGER NOT NULL,
    PRIMARY KEY(type, name)) WITHOUT ROWID)"},
    {"messages", R"(CREATE TABLE messages(
    sequence INTEGER PRIMARY KEY,
    queue INTEGER NOT NULL,
    place INTEGER NOT NULL,
    backouts INTEGER NOT NULL,
    checksum INTEGER NOT NULL,
    header BLOB NOT NULL,
    body BLOB NOT NULL))"},
}};

} // namespace

const std::span<const Table> tables = allTables;

Outcome hasOnlyOurTables(sqlite3 *database)
{
    sqlite3_stmt *statement = nullptr;
    int code =
        sqlite3_prepare_v2(database, "SELECT type, name, tbl_name, sql FROM sqlite_schema", -1, &statement, nullptr);
    if (code != SQLITE_OK) return outcomeOfStep(code);
    const auto text = [&](int column) {
        const auto *bytes = reinterpret_cast<const char *>(sqlite3_column_text(statement, column));
        return bytes == nullptr ? std::string_view() : std::string_view(bytes);
    };
    std::size_t found = 0;
    bool ours = true;
    for (code = sqlite3_step(statement); code == SQLITE_ROW; code = sqlite3_step(statement)) {
        const auto known = std::ranges::find_if(tables, [&](const Table &table) { return text(1) == table.name; });
        ours = ours && known != tables.end() && text(0) == "table" && text(2) == known->name && text(3) == known->sql;
        ++found;
    }
    sqlite3_finalize(statement);
    if (code != SQLITE_DONE) return outcomeOfStep(code);
    return ours && found == tables.size() ? success() : failure(MQRC_UNEXPECTED_ERROR);
}

std::uint64_t checksumOfMessage(const MessageKey &key, std::uint64_t backouts, std::span<const std::byte> header,
                                std::span<const std::byte> body)
{
    const std::uint64_t seed = key.sequence ^ (std::uint64_t{key.queue} << 8 | key.order) * 0x9e3779b97f4a7c15;
    return checksumOf(body, checksumOf(header, seed)) ^ backouts;
}

std::uint64_t checksumOfDefinition(MQLONG type, std::string_view name, QueueId queue, std::string_view bytes)
{
    const std::uint64_t seed = static_cast<std::uint64_t>(type) << 32 | queue;
    return checksumOf(std::as_bytes(std::span(bytes)), checksumOf(std::as_bytes(std::span(name)), seed));
}

Outcome outcomeOf(int code)
{
    if (code == SQLITE_IOERR_NOMEM) return failure(MQRC_RESOURCE_PROBLEM);
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
        return errno == 0 || errno == ENOENT ? failure(MQRC_STORAGE_NOT_AVAILABLE) : outcomeOfSystem(errno);
    default:
        return failure(MQRC_UNEXPECTED_ERROR);
    }
}

Outcome outcomeOfStep(int code)
{
    const bool isSync = code == SQLITE_IOERR_FSYNC || code == SQLITE_IOERR_DIR_FSYNC;
    const bool isTrouble = (code & 0xff) == SQLITE_IOERR || (code & 0xff) == SQLITE_PROTOCOL;
    return isTrouble && !isSync ? failure(MQRC_RESOURCE_PROBLEM) : outcomeOf(code);
}

} // namespace mqrig::qmgr::store::logFormat
