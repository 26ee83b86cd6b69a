// The places where the store meets the world: clock, storage errors, process liveness, and the named points at which
// a crash test may kill the process. Production code leaves the pointers as they are; a test sets them before it
// starts threads. None of them is read on the path of a non-persistent message, the clock aside.
#pragma once

#include <chrono>
#include <cstdint>

namespace mqrig::qmgr::store {

// Steps of an operation between which a process may die.
enum class Step : std::uint8_t {
    CreateWritten,    // a queue manager's folder is complete but not yet in its place
    LiveRebuilt,      // live state rebuilt, not yet declared valid
    SlotTaken,        // connection slot taken, attach not yet answered
    UnitPrepared,     // unit of work prepared in the live state, not yet logged
    UnitLogged,       // in the log, not yet flipped
    UnitFlipped,      // visible, owners and getters not yet woken
    DefinitionLogged, // object definition in the log, not yet in the live state
    EndLogged,        // end of the queue manager on disk, not yet in the control block
    MapReserved,      // space for a larger live state reserved, not yet published
    RequestTaken,     // a request to the queue manager is locked, nothing of it has been done
    RequestRun,       // it has had its effect, its replies are not yet on their queue
    RequestAnswered,  // request and replies are committed
};

// Storage calls that a test may let fail.
enum class StorageCall : std::uint8_t {
    LogBegin,
    LogWrite,
    LogCommit,
    LogSync,
    LiveBegin,
    LivePut,
    LiveCommit,
    Reserve
};

struct Seams {
    // Wall clock, microseconds since 1970 UTC. Used for put times and expiry.
    std::int64_t (*now)();
    // Called at each step; null (the default) costs one load on paths that sync a disk anyway.
    void (*reached)(Step) = nullptr;
    // Answers the errno to fail with, 0 to go on; null by default.
    int (*storageError)(StorageCall) = nullptr;
    // Whether the process that holds this slot is alive; null asks the kernel's record lock.
    bool (*slotAlive)(std::uint32_t slot) = nullptr;
};

extern Seams seams;

// The queue manager's only wall clock: microseconds since 1970 UTC.
[[nodiscard]] inline std::int64_t currentTime()
{
    return seams.now();
}

inline void reached(Step step)
{
    if (seams.reached != nullptr) seams.reached(step);
}

[[nodiscard]] inline int injectedError(StorageCall call)
{
    return seams.storageError == nullptr ? 0 : seams.storageError(call);
}

} // namespace mqrig::qmgr::store
