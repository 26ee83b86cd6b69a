// A queue manager's log in a file of its own, and a queue manager made from such a file.
//
// A backup has what the log has at one commit: definitions and committed persistent messages, a unit of work as a whole
// or not at all. It is one file, for its owner alone, and there under its name only when it is complete, verified and
// on disk.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "qmgr/store/log_check.h"

namespace mqrig::qmgr::store {

enum class ExistingFile : std::uint8_t { Keep, Replace };

struct BackupResult {
    enum class Fault : std::uint8_t {
        None,
        QueueManager,      // `outcome` says what is wrong
        FileExists,        // and is to be kept
        FileError,         // the operating system refused: `error`
        InsideStore,       // the backup would stand between the files of queue managers
        Damaged,           // what was to be backed up, or restored: `findings`
        NoBackup,          // a log as a queue manager uses it: what stands beside it is missing
        OtherQueueManager, // `contents.name` says whose backup it is
    };
    Fault fault = Fault::None;
    Outcome outcome;
    int error = 0;
    std::vector<std::string> findings;
    LogContents contents;
};

// Whether it runs or has ended; nobody is kept waiting meanwhile.
[[nodiscard]] BackupResult backUpQueueManager(const std::filesystem::path &storeFolder, std::string_view name,
                                              const std::filesystem::path &file, ExistingFile existing,
                                              const CanDecode &canDecode);

// Makes the queue manager of that name, as it was when the backup was made, and running. All or nothing.
// MQRC_OBJECT_ALREADY_EXISTS: there is one of that name.
[[nodiscard]] BackupResult restoreQueueManager(const std::filesystem::path &storeFolder, std::string_view name,
                                               const std::filesystem::path &file, const CanDecode &canDecode);

} // namespace mqrig::qmgr::store
