// The control block: the shared memory of one life of a queue manager, file `live/control`.
//
// A life begins with a start (or the first use after a boot) and ends with `end`. Each life has its own folder of
// files, so a process that still maps those of an earlier life keeps looking at a state word that says Ended for
// ever: nothing it does can reach the present life. (The log is shared by all lives; log_database.h says how a late
// writer of an earlier life is refused there.)
//
// Everything here is either an atomic that is right by itself, or a hint. Whatever must be right together stands in
// the live state's transactions, not here: a process may die between any two stores.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <filesystem>
#include <memory>

#include <pthread.h>

#include "qmgr/store/attachment.h"

namespace mqrig::qmgr::store {

static_assert(sizeof(std::atomic<std::uint32_t>) == 4 && std::atomic<std::uint64_t>::is_always_lock_free);

constexpr std::uint32_t maxSlots = 4096;
constexpr std::uint32_t waitCells = 1024; // a power of two
// ControlBlock::logUnfinished after a holder of the log lock could not bring it there, said that it was done, and went
// on living.
constexpr std::uint32_t liveBehind = 2;

// Tells whether the files of a life are those that were made in this boot at this place. Read before anything is
// mapped.
struct LifeStamp {
    std::array<char, 8> magic;
    std::uint32_t format;
    std::uint32_t ready; // 0 until the live state is complete
    std::array<char, 40> bootId;
    std::uint64_t controlDevice;
    std::uint64_t controlInode; // a copied file has another one
    std::uint64_t dataInode;
    std::uint64_t generation;
};

enum class SlotState : std::uint32_t { Free = 0, Taken = 1 };

struct alignas(64) ConnectionSlot {
    std::atomic<SlotState> state;
    std::atomic<std::int32_t> pid;
    std::atomic<std::uint64_t> process;    // the owner's Process::token
    std::atomic<std::uint64_t> connection; // its connection number
    std::atomic<std::uint64_t> undone;     // ticket of this connection's latest unit that could not be logged
    std::atomic<std::uint32_t> waitsOn;    // 1 + the wait cell its getter sleeps on, 0 for none
    std::atomic<std::uint32_t> holds;      // at least as many messages as it has locked: 0 spares the search for them
    std::atomic<std::uint32_t> watch;      // futex word of the connection's own thread, see watch.h
    std::atomic<std::uint64_t> watched;    // the wait cells that this thread watches, a bit for each, shared by many
    // What the program calls itself, MQ_APPL_NAME_LENGTH characters and zeros; empty: as its process is called. A
    // reader at the moment of a change sees part of it.
    std::array<std::atomic<std::uint64_t>, 4> program;
};
static_assert(sizeof(ConnectionSlot) == 128);

// Getters of the queues that share the cell sleep on `word`; who changes it makes the system call only for waiters.
struct alignas(64) WaitCell {
    std::atomic<std::uint32_t> word;
    std::atomic<std::uint32_t> waiters;
    std::atomic<std::uint32_t> watched; // by connections' own threads that sleep: look through the slots for them
};

struct ControlBlock {
    LifeStamp stamp;
    // How the last connection left the files, so that what happens to them while nobody is connected is noticed; see
    // soundness.cpp. 0: not known.
    std::atomic<std::uint64_t> quiet;
    std::atomic<std::uint64_t> changes; // counted with openings of the file; odd while one goes on
    // What a connection changes before it has its slot.
    std::atomic<std::uint64_t> pidNamespace;
    std::atomic<std::uint64_t> connections; // numbers given to connections
    std::atomic<std::uint32_t> slotLimit;   // slots from here on have never been taken

    alignas(64) std::atomic<State> state; // a futex word too
    std::atomic<std::uint32_t> reconnect; // set before the state says Ended: its connections may look for a new life
    std::atomic<std::uint64_t> mapSize;   // bytes of the live state that are reserved and may be mapped
    std::atomic<std::int64_t> started;    // when this life began, microseconds since 1970 UTC
    std::atomic<std::uint64_t> definitionVersion;
    std::atomic<std::uint64_t> subscriptionVersion;
    std::atomic<std::uint32_t> startTold;       // somebody has announced this life
    std::atomic<QueueId> requestQueue;          // the queue of requests to the queue manager itself; 0: not known yet
    std::atomic<std::uint32_t> requestsWaiting; // 0: it is certain that none is there; see requests.cpp

    alignas(64) std::atomic<std::uint64_t> sequence; // next number for a message
    std::atomic<std::uint32_t> temporaryQueues;      // numbers given to temporary queues

    alignas(64) pthread_mutex_t requestLock;  // process-shared, robust: who works off the requests
    alignas(64) pthread_mutex_t retainedLock; // process-shared, robust: whose turn with retained publications it is

    alignas(64) pthread_mutex_t logLock;      // process-shared, robust: see commit.cpp
    std::atomic<std::uint32_t> logTurns;      // futex word: moves when a holder has let go of the log lock
    std::atomic<std::uint32_t> logWaiters;    // sleepers on it; too many if some were killed, never too few
    std::atomic<std::uint32_t> logUnfinished; // not 0: what the log says has not all been brought to the live state
    std::atomic<std::uint64_t> flipped;       // highest ticket known to be finished; may lag behind

    std::array<WaitCell, waitCells> cells;
    std::array<ConnectionSlot, maxSlots> slots;
};

// A control block mapped into this process.
class ControlMapping {
public:
    // Makes the file, not ready, with a state of Ended and an initialised log lock. Null: errno in `error`.
    static std::unique_ptr<ControlMapping> create(const std::filesystem::path &live, std::uint64_t generation,
                                                  int &error);
    // Maps the file if its stamp (and the live state's file beside it) is of this boot and place, complete, and of
    // our format. Null otherwise; `error` is 0 when there is simply no valid life, else an errno (permissions).
    static std::unique_ptr<ControlMapping> open(const std::filesystem::path &live, int &error);
    // Declares the life valid: the data file beside it is complete.
    bool declareReady(const std::filesystem::path &live);
    // Whether the path still leads to the file that is mapped here.
    [[nodiscard]] bool isStillAt(const std::filesystem::path &live) const;

    ~ControlMapping();
    ControlMapping(const ControlMapping &) = delete;
    ControlMapping &operator=(const ControlMapping &) = delete;

    [[nodiscard]] ControlBlock &operator*() const { return *block_; }
    [[nodiscard]] ControlBlock *operator->() const { return block_; }

private:
    explicit ControlMapping(ControlBlock *block) : block_(block) {}
    ControlBlock *block_;
};

// 0 if it cannot be found out now.
[[nodiscard]] std::uint64_t pidNamespaceOfThisProcess();

} // namespace mqrig::qmgr::store
