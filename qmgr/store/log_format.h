// The format of `log.db`: what those who write a log and those who verify one agree on.
//
// How to change the format: raise `number`, and add to LogDatabase::bringUpToDate the statements that turn a log of the
// format before into one of the new format.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "qmgr/store/message.h"
#include "qmgr/store/outcome.h"

struct sqlite3;

namespace mqrig::qmgr::store::logFormat {

constexpr int number = 2;
constexpr std::uint64_t pageSize = 4096;
constexpr int applicationId = 0x4d51524c; // "MQRL": tells file(1) and us that the file is a log of ours

// A table as SQLite keeps its text. A log has these and nothing else: no trigger, view or index of a stranger's.
struct Table {
    const char *name;
    const char *sql;
};
extern const std::span<const Table> tables;
// MQRC_UNEXPECTED_ERROR if it has others.
[[nodiscard]] Outcome hasOnlyOurTables(sqlite3 *database);

// The backout count is the one column of a message that changes; its checksum is taken last, so that it can be changed
// without the message being read: checksum = (what the rest gives) xor (backouts).
[[nodiscard]] std::uint64_t checksumOfMessage(const MessageKey &key, std::uint64_t backouts,
                                              std::span<const std::byte> header, std::span<const std::byte> body);
[[nodiscard]] std::uint64_t checksumOfDefinition(MQLONG type, std::string_view name, QueueId queue,
                                                 std::string_view bytes);

// What an SQLite code means to a caller of the MQI. Of SQLITE_CANTOPEN errno says why.
[[nodiscard]] Outcome outcomeOf(int code);
// The same of anything but a commit. What fails there is rolled back with all before it, so that the log is as good as
// before, whatever the reason; unless it is a sync that failed.
[[nodiscard]] Outcome outcomeOfStep(int code);

} // namespace mqrig::qmgr::store::logFormat
