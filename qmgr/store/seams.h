// The places where the store meets the world: clock, storage errors, process liveness, and the named points at which
// a crash test may kill the process. Production code leaves the pointers as they are; a test sets them before it
// starts threads. None of them is read on the path of a non-persistent put or get, the clock aside.
#pragma once

#include <chrono>
#include <cstdint>

namespace mqrig::qmgr::store {

// Steps of an operation between which a process may die.
enum class Step : std::uint8_t {
    CreateWritten,     // a queue manager's folder is complete but not yet in its place
    LifeBegun,         // a new life's generation is in the log, its live state not yet made
    LiveFilling,       // some of the log's messages copied into the new live state
    LiveRebuilt,       // live state rebuilt, not yet declared valid
    SlotTaken,         // connection slot taken, attach not yet answered
    SlotCleaning,      // what a connection held is being given back, inside the transaction
    SlotCleaned,       // given back, the slot not yet free
    UnitPreparing,     // unit of work being prepared, inside the transaction
    UnitPrepared,      // prepared in the live state, not yet logged
    LogTakenOver,      // log lock of a killed holder taken, what it left not yet finished
    UnitLogging,       // the log's transaction complete but for its commit
    UnitLogged,        // in the log, not yet flipped
    UnitFlipping,      // being made visible, inside the transaction
    UnitFlipped,       // visible, owners and getters not yet woken
    UnitUndoing,       // the log could not take it: its owner's slot is marked, the unit not yet undone
    UnitReturning,     // being backed out, inside the transaction
    UnitReturned,      // backed out, MQBACK not yet answered
    DefinitionLogged,  // object definition in the log, not yet in the live state
    QueueMarked,       // a queue that is deleted takes nothing any more, the log still has it
    QueueSweeping,     // some of its records are gone
    TemporaryRemoving, // some records of a temporary queue are gone
    EndLogged,         // end of the queue manager on disk, not yet in the control block
    MapReserved,       // space for a larger live state reserved, not yet published
    MapPublished,      // its size published, not yet mapped
    RequestTaken,      // a request to the queue manager is locked, nothing of it has been done
    RequestRun,        // it has had its effect, its replies are not yet on their queue
    RequestAnswered,   // request and replies are committed
    RequestsLookedFor, // whether requests are left has been found out
    steps
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
    // Bytes of a new live state, the unit in which it grows: small, it grows often. An eighth of it is kept for getting
    // messages out. Read when a life is opened, the same in all processes of a queue manager.
    std::uint64_t firstMap = std::uint64_t{64} << 20;
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
