// A connection's hold on a queue manager, and everything the floors above can ask of the store through it.
//
// How the floors above use it, by call:
//   MQCONN    attach
//   MQOPEN    definitionVersion/find; update { queue(); decide; addOpens() }
//   MQPUT     update { queue(); depth check; t = put() }; harden(t)           outside a unit of work
//             update { queue(); depth check; bookPut() }, message kept in the unit's memory   under syncpoint
//   MQGET     word = observe(); update { cursor: choose; t = take() or lock(); copy body }; harden(t);
//             nothing found: if held messages stood in the way, releaseDead() and look again;
//             with a wait: waitForMessage(queue, word, deadline) and look again
//   browse    read { cursor or find(); copy body }
//   MQCMIT    commit(unit)          MQBACK  backOut(unit)         MQDISC  commit, then destroy the Attachment
// A get that may look long before it finds should choose inside read, and find() its choice again inside update.
//
// Threads: one call at a time, except for the constant-time observers marked [any], which any thread may use at any
// time while the attachment lives. Nothing throws but std::bad_alloc, and that leaves everything whole.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "qmgr/store/message.h"
#include "qmgr/store/outcome.h"
#include "qmgr/store/transaction.h"
#include "qmgr/store/watch.h"

namespace mqrig::qmgr::store {

// The type of the definitions of subscriptions, which the MQI has no type for.
constexpr MQLONG subscriptions = 100000;

// Whether handles on what a definition describes are counted, so that it has a number of its own.
constexpr bool hasCounters(MQLONG type)
{
    return type == MQOT_Q || type == subscriptions;
}

// An object as the store knows it: type (MQOT_*, subscriptions) and name are its key, the rest belongs to qmgr/objects.
struct Definition {
    MQLONG type = 0;
    std::string name;  // without trailing blanks
    QueueId queue = 0; // of queues and subscriptions, which have counters: assigned by the store when defined; else 0
    std::string bytes; // opaque
};

class Attachment;

// A connection to the queue manager, of any process.
struct ConnectionInfo {
    std::uint64_t number = 0; // its Attachment::connectionNumber
    std::int32_t pid = 0;
    std::string program{}; // what it calls itself; empty: as its process is called
};

// A queue that a connection has open, with all its handles for messages.
struct OpenQueue {
    QueueId queue = 0;
    OpenCounts opens;
    ConnectionInfo connection;
};

struct Attached {
    Outcome outcome;
    std::unique_ptr<Attachment> attachment; // null when the outcome failed
};

// Connects to a queue manager of a store folder. An empty name means the default queue manager.
// MQRC_Q_MGR_NAME_ERROR: no such queue manager (or no default, or not a name). MQRC_Q_MGR_QUIESCING, and
// MQRC_Q_MGR_NOT_AVAILABLE for an ended one. MQRC_MAX_CONNS_LIMIT_REACHED. MQRC_NOT_AUTHORIZED: file permissions.
// MQRC_ENVIRONMENT_ERROR: the log is of a newer format, or another pid namespace has live connections.
// MQRC_STORAGE_NOT_AVAILABLE, MQRC_UNEXPECTED_ERROR: no space, damaged or foreign files.
[[nodiscard]] Attached attach(const std::filesystem::path &storeFolder, std::string_view name);

class Attachment {
public:
    // Detaches: releases whatever this connection still holds, as a backout does. After a fork, in the child, and
    // after the end of the queue manager's life, it only frees memory.
    ~Attachment();
    Attachment(const Attachment &) = delete;
    Attachment &operator=(const Attachment &) = delete;

    // ---- Whether calls may go on ----

    // First step of every MQI call; a few loads. MQRC_HCONN_ERROR in a forked child; after `end -i`
    // MQRC_Q_MGR_STOPPING once, then MQRC_CONNECTION_BROKEN; MQRC_CONNECTION_BROKEN also when the queue manager has
    // been started again since, or when it has been an answer before. A quiescing queue manager is success here: see
    // state().
    Outcome check();
    // [any] Whether this process is a fork of the one that attached.
    [[nodiscard]] bool forked() const;
    // [any] Running or Quiescing or Ended, as of now.
    [[nodiscard]] State state() const;
    // [any] Sleeps until the state is no longer `seen`, or the deadline; answers the state.
    State waitForStateChange(State seen, Deadline deadline) const;

    // [any] Whether the queue manager has ended and asks its connections to look for it again.
    [[nodiscard]] bool endedToReconnect() const;
    // What a thread of the connection's own sleeps on. It may outlive the attachment.
    [[nodiscard]] Watch watch() const;

    [[nodiscard]] const std::string &queueManagerName() const;
    // [any] When the queue manager was started, microseconds since 1970 UTC.
    [[nodiscard]] std::int64_t startTime() const;
    // True for the first that asks in this life of the queue manager.
    [[nodiscard]] bool announcesStart() const;
    // Number of this connection's slot: unique among the connections alive now.
    [[nodiscard]] std::uint32_t slot() const { return slot_; }
    // Number of this connection: never used again while the queue manager runs. For connection ids.
    [[nodiscard]] std::uint64_t connectionNumber() const { return connectionNumber_; }
    // What the connection's program calls itself, for those that ask for connections; the first 28 characters count.
    void nameProgram(std::string_view name);
    // Every connection whose process lives, in the order in which they were made, this one too.
    [[nodiscard]] std::vector<ConnectionInfo> connections() const;
    // What these have open, by connection; handles that only inquire or set do not count.
    [[nodiscard]] std::vector<OpenQueue> openQueues() const;
    // Unlike any value given before by this queue manager, restarts included. For message ids. [any]
    [[nodiscard]] std::uint64_t uniqueNumber() const;

    // ---- Object definitions ----
    // Kept on disk when define, alter and remove are back. The floors above parse `bytes` and may cache what they
    // parsed for as long as definitionVersion() stays the same. These calls take the log lock; never call them inside
    // a transaction.

    // [any] Changes whenever any definition changes or goes, and when one that is kept on disk comes; one load.
    [[nodiscard]] std::uint64_t definitionVersion() const;
    // [any] The same for subscriptions alone, which do not touch the other: it also changes when one comes that is not
    // kept on disk.
    [[nodiscard]] std::uint64_t subscriptionVersion() const;
    // Empty if there is none. These two throw std::bad_alloc also when it cannot be known.
    [[nodiscard]] std::optional<Definition> findDefinition(MQLONG type, std::string_view name);
    // All of one type in name order; all types with MQOT_ALL. Temporary queues of dead connections are removed first.
    [[nodiscard]] std::vector<Definition> definitions(MQLONG type);
    // MQRC_OBJECT_ALREADY_EXISTS. `queue` of the argument is ignored; the number given is left in it.
    Outcome define(Definition &definition);
    // Replaces the bytes. MQRC_UNKNOWN_OBJECT_NAME. With `seen` only while the stored bytes are still these, else
    // MQRC_OBJECT_CHANGED: who changes a part of them reads again, so that no change of another is lost.
    Outcome alter(const Definition &definition, std::optional<std::string_view> seen = std::nullopt);
    // Makes a queue or subscription that goes with this connection: removed with its messages by removeTemporary, when
    // the connection ends, when its process is found dead, at the latest with the life of the queue manager. It is in
    // no log: no disk is waited for, and nothing persistent may be put on it. MQRC_OBJECT_ALREADY_EXISTS. A new queue
    // changes nothing that is known: definitionVersion() stays. Units of work with messages on a queue that has gone go
    // on without.
    Outcome defineTemporary(Definition &definition);
    Outcome removeTemporary(const Definition &definition);
    // Deletes a definition, and a queue's messages with it. `mayGo` sees the queue's counters inside the transaction
    // that removes it and may refuse (MQRC_OBJECT_IN_USE, MQRC_Q_NOT_EMPTY); null allows. MQRC_UNKNOWN_OBJECT_NAME.
    Outcome remove(MQLONG type, std::string_view name, const std::function<Outcome(const QueueStatus &)> &mayGo);

    // ---- Messages ----

    // The key of a message put now: takes the next sequence number. Gaps are harmless.
    [[nodiscard]] MessageKey newKey(QueueId queue, std::uint8_t order);

    // Runs body(ReadTransaction &) -> Outcome on a snapshot.
    template <class Body>
    Outcome read(Body &&body)
    {
        ReadTransaction transaction;
        if (const Outcome begun = beginRead(transaction); begun.failed()) return begun;
        const Outcome answer = body(transaction);
        return transaction.outcome().failed() ? transaction.outcome() : answer;
    }

    // Runs body(WriteTransaction &) -> Outcome and commits, unless it answers MQCC_FAILED. `bytesToStore`: about how
    // many body bytes it will add, 0 when it only gets, locks, removes or counts: those go through even when the
    // disk is full. When it is back the changes are visible to all and the getters concerned are woken.
    // MQRC_STORAGE_NOT_AVAILABLE when there is no room.
    template <class Body>
    Outcome update(std::size_t bytesToStore, Body &&body)
    {
        for (;;) {
            WriteTransaction transaction;
            if (const Outcome begun = beginUpdate(transaction, bytesToStore); begun.failed()) return begun;
            const Outcome answer = body(transaction);
            const Outcome ended = endUpdate(transaction, answer);
            if (!transaction.outgrown_) return ended;
            if (const Outcome grown = grow(bytesToStore); grown.failed()) return grown;
        }
    }

    // Waits until the prepared put or get is on disk, and makes it visible. Ticket 0: returns at once. Whoever comes
    // first does the work for all who wait. MQRC_STORAGE_NOT_AVAILABLE: could not be logged and has been undone (a
    // message taken is on its queue again). MQRC_CONNECTION_BROKEN: the queue manager's log ended; not known.
    Outcome harden(Ticket ticket);

    // Ends the unit of work. Afterwards, whatever the outcome, the unit holds nothing any more: the caller forgets it.
    // MQCC_OK: visible, and on disk if any of it is persistent. MQCC_WARNING, MQRC_BACKED_OUT: backed out.
    // MQRC_CONNECTION_BROKEN: the queue manager ended meanwhile; what was logged stays, else it is as backed out.
    Outcome commit(const Unit &unit);
    // Drops the puts (depth bookings given back) and returns the gets to their queues with BackoutCount + 1, for
    // persistent messages kept over a restart. The same rule about forgetting.
    Outcome backOut(const Unit &unit);

    // ---- Requests to the queue manager itself (requests.cpp) ----
    // One queue holds requests that the connections work off, one connection at a time: whoever has put one, or finds
    // that somebody died who should have. What stands in it and how it is served is the business of the floors above.

    // Says which queue that is; needed once in each life of the queue manager, and harmless at any time.
    void setRequestQueue(QueueId queue);
    // [any] False when it is certain that no request is there; one load. True from before the moment when one becomes
    // visible until noRequestsLeft, whoever dies meanwhile.
    [[nodiscard]] bool requestsWaiting() const { return requestsWaiting_->load(std::memory_order_relaxed) != 0; }
    // The turn to work them off, unless another thread or process has it. Ends with the object, or with its process.
    class RequestTurn {
    public:
        explicit RequestTurn(const Attachment &attachment);
        ~RequestTurn();
        RequestTurn(const RequestTurn &) = delete;
        RequestTurn &operator=(const RequestTurn &) = delete;
        [[nodiscard]] explicit operator bool() const { return store_ != nullptr; }

    private:
        Store *store_ = nullptr;
    };
    // Whoever has the turn has found no more. True, and requestsWaiting is false until the next, if that is so:
    // nothing visible, and nothing held that could come back.
    bool noRequestsLeft();

    // ---- Retained publications ----
    // One turn for all who publish what is retained, from their look at the subscriptions to the end of their unit of
    // work, and who subscribe to it, from the definition of the subscription to the look at what is retained: each has
    // seen all that the other has done, or nothing. The constructor waits for it; it ends with the object, or with its
    // process. Nothing that is done in it may wait for a program. A thread may not have it twice.
    class RetainedTurn {
    public:
        explicit RetainedTurn(const Attachment &attachment);
        ~RetainedTurn();
        RetainedTurn(const RetainedTurn &) = delete;
        RetainedTurn &operator=(const RetainedTurn &) = delete;

    private:
        Store *store_ = nullptr;
    };

    // Another connection of this process to the same queue manager, with what attach answers.
    [[nodiscard]] Attached another() const;

    // ---- Waiting ----

    // [any] A number that changes whenever messages become visible on the queue (now and then more often). Take it
    // before looking, hand it to waitForMessage when nothing was found: so no message slips between.
    [[nodiscard]] std::uint32_t observe(QueueId queue) const;
    // Sleeps until the number differs from `observed` or the state of the queue manager changes: true, look again
    // and check(); or until the deadline: false. While messages of the queue are held by others it looks every
    // 500 ms whether the holders still live, and releases what dead ones held (true).
    bool waitForMessage(QueueId queue, std::uint32_t observed, Deadline deadline);
    // Looks for connections whose process died, and gives back what they held: messages locked, depth booked, handles
    // open. True if there was any: look again. To be asked before a queue is reported empty with held > 0, full, or
    // in use. System calls: one for each slot in use by another process.
    bool releaseDead();

private:
    friend Attached attach(const std::filesystem::path &, std::string_view);
    Attachment(std::shared_ptr<Store> store, std::uint32_t slot);
    static Attached on(const std::shared_ptr<Store> &store);
    Outcome beginRead(ReadTransaction &transaction);
    Outcome beginUpdate(WriteTransaction &transaction, std::size_t bytesToStore);
    Outcome noteLoss(const Outcome &outcome);
    Outcome endUpdate(WriteTransaction &transaction, const Outcome &answer);
    Outcome grow(std::size_t bytesToStore);

    std::shared_ptr<Store> store_;
    std::uint32_t slot_ = 0;
    bool lost_ = false;       // a call could not tell what became of what it did, though the queue manager goes on
    std::uint32_t forks_ = 0; // the process's fork count when attached
    std::uint64_t connectionNumber_ = 0;
    bool toldOfEnd_ = false;
    const std::atomic<std::uint32_t> *requestsWaiting_ = nullptr; // in the control block
};

} // namespace mqrig::qmgr::store
