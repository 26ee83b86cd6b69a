// The queue managers of a store folder: creating, listing, deleting, starting and ending them.
//
// Reasons beside those of attach(): MQRC_Q_MGR_NAME_ERROR for an unknown or impossible name,
// MQRC_OBJECT_ALREADY_EXISTS, MQRC_Q_MGR_ACTIVE where an ended queue manager is wanted, MQRC_Q_MGR_NOT_ACTIVE where a
// running one is.
#pragma once

#include <filesystem>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "qmgr/store/attachment.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::store {

enum class DefaultQueueManager { No, Yes };
enum class End { Quiesce, Immediate, Reconnect };

struct QueueManagerEntry {
    std::string name;
    bool isDefault = false;
    Outcome outcome; // of reading its state; the state counts only when this is ok
    State state = State::Ended;
};

// Makes the store folder (0700, parents too) if need be and in it the queue manager with these objects (`queue` of
// each is ignored). It is running at once. All or nothing, whenever the process is killed.
Outcome createQueueManager(const std::filesystem::path &storeFolder, std::string_view name,
                           std::span<const Definition> objects, DefaultQueueManager makeDefault);

// The same of a folder that `write` fills.
Outcome makeQueueManager(const std::filesystem::path &storeFolder, std::string_view name,
                         const std::function<Outcome(const std::filesystem::path &)> &write);

// An ended queue manager goes with everything in it; MQRC_Q_MGR_ACTIVE otherwise.
Outcome deleteQueueManager(const std::filesystem::path &storeFolder, std::string_view name);

// In name order. A store folder that does not exist has none.
[[nodiscard]] std::vector<QueueManagerEntry> listQueueManagers(const std::filesystem::path &storeFolder);

// Empty if there is none.
[[nodiscard]] std::string defaultQueueManager(const std::filesystem::path &storeFolder);
Outcome setDefaultQueueManager(const std::filesystem::path &storeFolder, std::string_view name);

// Ended becomes running: a new life in which only persistent messages are left. Quiescing: MQRC_Q_MGR_QUIESCING.
Outcome startQueueManager(const std::filesystem::path &storeFolder, std::string_view name);

// Quiesce: no new connections, and ended when the last connection is gone (at once if there is none). Immediate:
// ended when this is back; calls in progress complete. Reconnect: the same, and connections that asked for it look for
// the queue manager's next life. Ended already: MQRC_Q_MGR_NOT_ACTIVE.
Outcome endQueueManager(const std::filesystem::path &storeFolder, std::string_view name, End how);

// The state now; a quiescing queue manager whose last connection has died is ended by this look.
struct StateOfQueueManager {
    Outcome outcome;
    State state = State::Ended;
};
[[nodiscard]] StateOfQueueManager stateOf(const std::filesystem::path &storeFolder, std::string_view name);

} // namespace mqrig::qmgr::store
