// What this process as a whole owns of the store: its identity and the files it may never close.
#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace mqrig::qmgr::store {

class LockFile;
class Store;

// Counts the forks between this process and the one that loaded the library. A handle that remembers another count
// belongs to an ancestor: one load tells. (Kept by a pthread_atfork handler: getpid is a system call.)
extern std::atomic<std::uint32_t> forkCount;

// One for each process. A forked child starts with a new one and leaves the parent's where it lies: it must neither
// use nor close what it inherited (storage environments, descriptors that carry the parent's locks).
struct Process {
    std::uint64_t token; // random: tells this process from an earlier one with the same pid
    std::mutex mutex;    // guards the maps; taken while a store is opened, so two threads do not open it twice
    std::map<std::string, std::shared_ptr<Store>> stores;                                   // by queue manager folder
    std::map<std::pair<std::uint64_t, std::uint64_t>, std::unique_ptr<LockFile>> lockFiles; // by device and inode

    Process();
};

[[nodiscard]] Process &thisProcess();

} // namespace mqrig::qmgr::store
