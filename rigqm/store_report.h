// What `check`, `backup` and `restore` say of a store.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "qmgr/store/backup.h"

namespace mqrig::rigqm {

// Whether a stored definition can be read; for the store, which knows bytes only.
bool canDecode(const qmgr::store::Definition &definition);

// Writes findings to standard output, a line each, without control characters.
void printFindings(const std::vector<std::string> &findings);

// "1 queue", "2 queues"
std::string counted(std::uint64_t number, const char *one, const char *many);

// "12 objects, 3 persistent messages of 450 bytes"
std::string contentsOf(const qmgr::store::LogContents &log);

// Says why a backup was not made or not restored; answers the exit code.
int reportBackupFault(std::string_view name, std::string_view file, const qmgr::store::BackupResult &result);

} // namespace mqrig::rigqm
