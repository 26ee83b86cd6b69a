// What the start and the end of a queue manager are reported by, for the program that starts and ends it.
#pragma once

#include <filesystem>
#include <string_view>

#include "qmgr/store/queue_managers.h"

namespace mqrig::qmgr::core {

// The start event, unless a program that has connected since was quicker.
void announceStart(const std::filesystem::path &storeFolder, std::string_view queueManager);

// The stop event, made before the end begins; only of a queue manager that is running.
void announceEnd(const std::filesystem::path &storeFolder, std::string_view queueManager, store::End how);

} // namespace mqrig::qmgr::core
