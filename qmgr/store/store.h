// One life of one queue manager, open in this process: control block, live state, log and locks, and the mechanisms
// over them. Shared by all connections of the process; the floors above see Attachment only.
//
// Lock order: start-up lock, slots mutex, log lock, SQLite, map lock, gate, LMDB's writer lock, control block.
// Nothing is waited for under LMDB's writer lock.
//
// Where things are:
//   store.cpp         opening the present life, transactions
//   rebuild.cpp       beginning a life: the live state rebuilt from the log
//   soundness.cpp     whether the files are as the last connection left them
//   slots.cpp         connections of this and other processes, the clean-up of dead ones
//   commit.cpp        units of work: prepare, log, flip (the protocol and why it is right)
//   definitions.cpp   object definitions
//   temporary_queues.cpp  queues that go with their connection
//   requests.cpp      whether requests to the queue manager wait, and whose turn it is to serve them
//   waiting.cpp       sleeping and waking, state changes
//   live_check.cpp    verifying the live state
//   queue_managers.cpp  create, delete, list, start, end
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "qmgr/store/attachment.h"
#include "qmgr/store/control_block.h"
#include "qmgr/store/live_environment.h"
#include "qmgr/store/lock_file.h"
#include "qmgr/store/log_database.h"
#include "qmgr/store/queue_managers.h"
#include "qmgr/store/transaction.h"
#include "qmgr/store/with_memory.h"

namespace mqrig::qmgr::store {

class Findings;
class LogLock;
struct LiveContents;

class Store {
public:
    struct Opened {
        Outcome outcome;
        std::shared_ptr<Store> store;
    };
    // The present life of the queue manager in this folder: the one this process has open, else opened, else begun
    // (first use after a boot, a copied folder). A queue manager that is ended has none: MQRC_Q_MGR_NOT_AVAILABLE.
    static Opened open(const std::filesystem::path &folder);
    // Begins a new life of an ended queue manager.
    static Outcome start(const std::filesystem::path &folder);
    // The state, without opening the life or beginning one.
    static StateOfQueueManager look(const std::filesystem::path &folder);
    // Renames the folder of an ended queue manager, so that it is none any more; MQRC_Q_MGR_ACTIVE for another. Nobody
    // begins a life of it meanwhile.
    static Outcome bury(const std::filesystem::path &folder, const std::filesystem::path &grave);
    // Lets go of a life that has ended, so that it goes when its last connection does.
    static void forgetEnded(const std::shared_ptr<Store> &store);
    // Verifies the live state of the present life, if there is one, and changes nothing (live_check.cpp).
    static void check(const std::filesystem::path &folder, LiveContents &contents, Findings &findings);
    // Whether a queue manager's folder is there: MQRC_Q_MGR_NAME_ERROR if not.
    static Outcome exists(const std::filesystem::path &folder);

    [[nodiscard]] ControlBlock &control() const { return **control_; }
    [[nodiscard]] const std::string &name() const { return name_; }

    // ---- Transactions (store.cpp) ----
    Outcome begin(ReadTransaction &transaction);
    Outcome begin(WriteTransaction &transaction, std::size_t room, std::uint32_t slot);
    // Commits and wakes, or gives everything up if the answer or a step failed. The body's answer, or the failure.
    Outcome end(WriteTransaction &transaction, const Outcome &answer);
    Outcome grow(std::size_t room) { return live_->grow(room); }
    template <class Body>
    Outcome read(Body &&body)
    {
        ReadTransaction transaction;
        if (const Outcome begun = begin(transaction); begun.failed()) return begun;
        const Outcome answer = body(transaction);
        return transaction.outcome().failed() ? transaction.outcome() : answer;
    }
    template <class Body>
    Outcome update(std::size_t room, std::uint32_t slot, Body &&body)
    {
        for (;;) {
            WriteTransaction transaction;
            if (const Outcome begun = begin(transaction, room, slot); begun.failed()) return begun;
            const Outcome ended = end(transaction, body(transaction));
            if (!transaction.outgrown_) return ended;
            if (const Outcome grown = grow(room); grown.failed()) return grown;
        }
    }

    // ---- Connections (slots.cpp) ----
    struct SlotTaken {
        Outcome outcome;
        std::uint32_t slot = 0;
        std::uint64_t connection = 0;
    };
    SlotTaken takeSlot();
    // Gives back what the connection holds, as a backout does, and the slot. What cannot be given back now is left as
    // that of a dead connection.
    void freeSlot(std::uint32_t slot) noexcept;
    bool releaseDead();
    [[nodiscard]] bool anyConnection();
    [[nodiscard]] std::optional<ConnectionInfo> connectionOf(std::uint32_t slot); // of a slot, if it is alive
    [[nodiscard]] std::vector<ConnectionInfo> connections();
    [[nodiscard]] std::vector<OpenQueue> openQueues();

    // ---- Units of work (commit.cpp) ----
    Outcome commit(std::uint32_t slot, const Unit &unit);
    Outcome backOut(std::uint32_t slot, const Unit &unit);
    // The unit's outcome once it is finished.
    Outcome harden(std::uint32_t slot, Ticket ticket);
    // Logs and flips whatever is prepared, also by processes that died.
    Outcome finishPrepared();
    [[nodiscard]] bool anyPrepared();

    // ---- Definitions (definitions.cpp) ----
    std::optional<Definition> findDefinition(MQLONG type, std::string_view name);
    std::vector<Definition> definitions(MQLONG type);
    Outcome define(Definition &definition);
    Outcome alter(const Definition &definition, std::optional<std::string_view> seen);
    Outcome remove(MQLONG type, std::string_view name, const std::function<Outcome(const QueueStatus &)> &mayGo);

    // ---- Temporary queues (temporary_queues.cpp) ----
    Outcome defineTemporary(std::uint32_t slot, Definition &definition);
    Outcome removeTemporary(std::uint32_t slot, const Definition &definition);
    Outcome removeTemporariesOf(std::uint32_t slot);

    // ---- Waiting (waiting.cpp) ----
    [[nodiscard]] WaitCell &cellOf(QueueId queue) const;
    void wakeGetters(QueueId queue);
    void wakeOneGetter(QueueId queue);
    void wakeEverybody();
    void wakeSlot(std::uint32_t slot);
    void wakeWatchers(QueueId queue);
    bool waitForMessage(std::uint32_t slot, QueueId queue, std::uint32_t observed, Deadline deadline);
    State waitForStateChange(State seen, Deadline deadline) const;

    // ---- Requests (requests.cpp) ----
    void setRequestQueue(QueueId queue);
    // Live state's writer lock held, the transaction not yet committed: messages of these queues become visible.
    void noteRequests(std::span<const QueueId> queues);
    bool noRequestsLeft();

    // ---- States (queue_managers.cpp) ----
    Outcome end(End how);
    // Completes a quiesce whose last connection has gone.
    void completeQuiesce();

    // ---- The files between two connections (soundness.cpp) ----
    // The files change: what was noted of them says nothing any more.
    void noteChange() noexcept;
    // Notes how the files are, if nobody is connected.
    void noteQuiet() noexcept;
    // What is changed without a slot counts before and after.
    class Change {
    public:
        explicit Change(Store &store) : store_(store) { store_.noteChange(); }
        ~Change() { store_.noteChange(); }
        Change(const Change &) = delete;
        Change &operator=(const Change &) = delete;

    private:
        Store &store_;
    };

private:
    friend class LogLock;
    Store(std::filesystem::path folder, LockFile &locks) : folder_(std::move(folder)), locks_(locks) {}

    static StateOfQueueManager stateInLog(const std::filesystem::path &folder);
    static Opened openUnderLock(const std::filesystem::path &folder, LockFile &locks);
    enum class Damage : std::uint8_t { EndsLife, IsLookedAt };
    static Opened openLife(const std::filesystem::path &folder, LockFile &locks,
                           std::unique_ptr<ControlMapping> control, Damage damage = Damage::EndsLife);
    static Opened beginLife(const std::filesystem::path &folder, LockFile &locks, LogDatabase &log);
    Outcome fill(LogDatabase &log);
    // Start-up lock held, the live state not yet open in this process: keeps the note that the files are quiet while
    // the library opens them, which moves their time.
    class Opening {
    public:
        explicit Opening(Store &store);
        ~Opening();
        Opening(const Opening &) = delete;
        Opening &operator=(const Opening &) = delete;

    private:
        Store &store_;
        bool wasQuiet_ = false;
    };
    // MQRC_UNEXPECTED_ERROR: damaged; another failure: it cannot be told now.
    [[nodiscard]] Outcome soundness();
    void checkRecords(LiveContents &contents, Findings &findings);
    static void putDefinition(WriteTransaction &transaction, const Definition &definition);
    // Tells everybody that definitions of this type are others now.
    void definitionsChanged(MQLONG type);

    // The log, opened at its first use in this process. Log lock held.
    Outcome openLog();
    Outcome finishLogged();
    Outcome logPrepared();
    struct PreparedUnit;
    std::vector<PreparedUnit> preparedUnits(Outcome &outcome);
    Outcome logUnits(std::span<const PreparedUnit> units);
    Outcome flip(Ticket upTo);
    Outcome flipLogged(Ticket upTo);
    Outcome broughtToLive(const Outcome &outcome);
    Outcome undo(const PreparedUnit &unit);
    template <class OwnOutcome>
    Outcome logOwn(const LogLock &lock, Ticket ticket, OwnOutcome &&outcome);
    Outcome judgeLog(const Outcome &outcome);
    [[nodiscard]] std::optional<Definition> lookUp(MQLONG type, std::string_view name);
    [[nodiscard]] std::vector<Definition> lookUpAll(MQLONG type);
    void catchUp();
    Outcome roomFor(const Definition &definition);
    Outcome logAndStore(const Definition &definition);
    Outcome storeLive(const Definition &definition);
    Outcome sweep(const Definition &definition);
    Outcome sweepQueue(QueueId queue);
    Outcome queuesGoing(std::vector<QueueId> &going);
    Outcome reloadDefinitions();
    Outcome logState(State state);
    bool cleanUp(std::uint32_t slot) noexcept;
    void endLife();
    Outcome endDamagedLife();

    std::filesystem::path folder_;
    LockFile &locks_;
    LockFile *slotLocks_ = nullptr;
    std::string name_;
    std::unique_ptr<ControlMapping> control_;
    std::unique_ptr<LiveEnvironment> live_;
    std::unique_ptr<LogDatabase> log_; // log lock
    std::mutex slotsMutex_;            // record locks do not tell the threads of a process apart
};

// Nobody sleeps longer without a look: see waiting.cpp.
constexpr std::chrono::seconds longestSleep{5};

// Which bit of ConnectionSlot::watched stands for the queue's wait cell, and others.
constexpr std::uint64_t watchBit(QueueId queue)
{
    return std::uint64_t{1} << (queue % waitCells % 64);
}

namespace lockBytes {
constexpr std::uint32_t start = 0;
constexpr std::uint32_t map = 1;
} // namespace lockBytes

// The log lock of a life, held while it exists. Finishes first what a killed holder has left.
class LogLock {
public:
    enum class Busy { Wait, GiveUp };
    explicit LogLock(Store &store, Busy busy = Busy::Wait);
    ~LogLock();
    LogLock(const LogLock &) = delete;
    LogLock &operator=(const LogLock &) = delete;
    // MQRC_CONNECTION_BROKEN: the life has ended. Failed: the log must not be used.
    [[nodiscard]] Outcome outcome() const { return outcome_; }
    [[nodiscard]] bool held() const { return held_; }
    // Somebody else has it, and we gave up.
    [[nodiscard]] bool busy() const { return busy_; }

private:
    Store &store_;
    Store::Change change_; // who ends the queue manager has no slot
    bool held_ = false;
    bool busy_ = false;
    Outcome outcome_;
};

} // namespace mqrig::qmgr::store
