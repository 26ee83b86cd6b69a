// The live state's environment in this process: LMDB over `live/`, unsynced, and write-mapped where that is safe.
//
// Its rules, kept here and nowhere else:
// - One environment for each process and life; a forked child leaves its parent's alone.
// - The map never exceeds the space that is reserved on disk: writing to a mapped page without space behind it is a
//   SIGBUS. The size that may be mapped stands in the control block; only under the map lock is it read to open or
//   to remap, and raised, because a process that maps less truncates the file under the others.
// - Remapping needs a moment without any transaction of this process: the gate.
// - Reader slots are pooled: a slot costs every writer a look, so there are as many as threads inside transactions,
//   not as many as connections.
#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <vector>

#include <lmdb.h>

#include "qmgr/store/control_block.h"
#include "qmgr/store/live_pages.h"
#include "qmgr/store/lock_file.h"
#include "qmgr/store/outcome.h"
#include "qmgr/store/seams.h"

namespace mqrig::qmgr::store {

// Lets any number of transactions in, or one remapping.
class Gate {
public:
    void enter();
    void leave();
    void close();
    void open();

private:
    static constexpr std::uint32_t closed = 1U << 31;
    std::atomic<std::uint32_t> inside_{0};
};

class LiveEnvironment {
public:
    struct Opened {
        Outcome outcome;
        std::unique_ptr<LiveEnvironment> environment;
    };
    // Opens the environment of the life, and makes it (reserving its first space) if the control block says that
    // there is none yet. `locks` is the queue manager's lock file.
    static Opened open(const std::filesystem::path &live, ControlBlock &control, LockFile &locks);
    ~LiveEnvironment();
    LiveEnvironment(const LiveEnvironment &) = delete;
    LiveEnvironment &operator=(const LiveEnvironment &) = delete;

    // The tree of all records.
    [[nodiscard]] MDB_dbi records() const { return records_; }

    // Transactions. What begin gives must be handed to the end of the same kind, also after an error inside.
    Outcome beginRead(MDB_txn *&txn);
    // The same on the latest state, with the heads of the file as they are now. Keeps writers waiting for a moment.
    Outcome beginReadOfPages(MDB_txn *&txn, const std::filesystem::path &data, PageHeads &heads);
    void endRead(MDB_txn *txn);
    // Gets the one writer lock of the live state. `room`: bytes that the transaction may add, 0 if it may use the
    // space that is kept for getting messages out.
    Outcome beginWrite(MDB_txn *&txn, std::size_t room);
    // Answers LMDB's code.
    int commitWrite(MDB_txn *txn);
    void abortWrite(MDB_txn *txn);

    // Frees the reader slots of processes that died inside a read transaction: their snapshots keep pages from being
    // used again. Answers how many there were.
    int clearDeadReaders();

    // The library has met pages that cannot be: nothing in there is to be believed any more.
    void noteDamage() { damaged_.store(true, std::memory_order_relaxed); }
    [[nodiscard]] bool damaged() const { return damaged_.load(std::memory_order_relaxed); }

    // After MDB_MAP_FULL, outside every transaction of this thread: makes the map larger by at least `room` bytes.
    // MQRC_STORAGE_NOT_AVAILABLE if the disk does not have them.
    Outcome grow(std::size_t room);

private:
    LiveEnvironment(ControlBlock &control, LockFile &locks) : control_(control), locks_(locks) {}
    Outcome reserve(std::uint64_t size);
    Outcome followMap();
    bool roomForOneReader();
    void forgetReader();
    template <class NewSize>
    Outcome remap(NewSize &&newSize);
    [[nodiscard]] bool hasRoom(std::size_t room) const;
    [[nodiscard]] bool hasFreePages(std::size_t room) const;

    ControlBlock &control_;
    LockFile &locks_;
    const std::uint64_t firstSize_ = seams.firstMap;
    // Space at the end of the map that only gets, locks and flips may enter, so that a full queue manager can be
    // emptied: a deletion needs a few dozen pages before it frees its own.
    const std::uint64_t margin_ = firstSize_ / 8;
    MDB_env *env_ = nullptr;
    MDB_dbi records_ = 0;
    bool writeMapped_ = false;
    std::atomic<std::uint64_t> mapped_{0};
    bool broken_ = false;                      // has lost its map; under mapMutex_
    std::atomic<std::uint64_t> cannotGrow_{0}; // the size at which growing failed last
    std::atomic<bool> damaged_{false};
    Gate gate_;
    std::mutex readersMutex_;
    std::vector<MDB_txn *> readers_; // reset, ready to be renewed
    std::size_t readersMade_ = 0;    // those in use too; there is room for all of them
    std::mutex mapMutex_;            // with the map lock of lock_file.h: one thread of one process
};

// What an LMDB code means to a caller of the MQI.
[[nodiscard]] Outcome outcomeOfLive(int code);

} // namespace mqrig::qmgr::store
