// Transactions on the live state: what MQPUT, MQGET and browsing are made of.
//
// A ReadTransaction is a snapshot: nothing that others do changes what it sees, it takes no lock and keeps nobody
// waiting, but what others delete stays in the file until it ends. A WriteTransaction is alone: it holds the live
// state's one writer lock (a process-shared mutex; no disk is ever waited for under it), sees its own changes, and
// is all or nothing, also when its process is killed.
//
// Rules:
// - Made only by Attachment::read and Attachment::update. A thread has at most one transaction at a time, and starts
//   no other call of the store inside one: growth of the live state waits for all transactions of the process.
// - Spans and views that a transaction gives out point into the live state itself. They are valid until the
//   transaction ends, and within a WriteTransaction until its next change. Never write through them.
// - Errors stick: after the first storage error every further step does nothing and finds nothing, and the error is
//   what read or update answers. So the steps of a body need no checks of their own.
// - A body given to update may run more than once (the live state was full and has grown): it must build its results
//   from scratch each time and change nothing else of the caller's.
//
// "Visible" messages are those that anybody may get: committed, and not got by another (or this) unit of work.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <type_traits>

#include "qmgr/store/live_key.h"
#include "qmgr/store/message.h"
#include "qmgr/store/outcome.h"

struct MDB_txn;
struct MDB_cursor;

namespace mqrig::qmgr::store {

class LiveEnvironment;
struct Hold;
struct ConnectionSlot;
struct Booking;
struct TransactionScratch;
enum class StepKind : std::uint32_t;
enum class UnitKind : std::uint32_t;

// How many handles are open on a queue. `exclusive` counts within `input`.
struct OpenCounts {
    std::int32_t input = 0;
    std::int32_t exclusive = 0;
    std::int32_t output = 0;
    std::int32_t browse = 0;
    std::int32_t together = 0; // within `browse`: MQOO_CO_OP
};

constexpr OpenCounts operator-(const OpenCounts &counts)
{
    return {-counts.input, -counts.exclusive, -counts.output, -counts.browse, -counts.together};
}

// The live counters of one queue.
struct QueueStatus {
    std::uint32_t depth = 0;       // MQ's CURDEPTH: counts uncommitted puts, no longer messages got under syncpoint
    std::uint32_t held = 0;        // messages there but not visible: got and not committed, on their way to the log, or
                                   // locked by a browse
    std::uint32_t uncommitted = 0; // booked puts whose unit is not committed; with `held` MQ's UNCOM
    std::uint32_t marked = 0;      // messages marked for the handles that browse together
    std::uint32_t deleted = 0;     // 1 once the queue is being deleted: nothing can be done with it any more
    OpenCounts opens;

    // Statistics of MQ's counting since they were last reset (or the queue manager started): units of work count when
    // their puts and gets are made, and a backout takes nothing back.
    std::int64_t resetTime = 0;   // microseconds since 1970 UTC
    std::int64_t triggerTime = 0; // when the last trigger message of the queue was made; 0: never
    std::uint32_t enqueued = 0;   // messages put
    std::uint32_t dequeued = 0;   // messages got and removed
    std::uint32_t highDepth = 0;  // the highest depth

    // What the last request that reset the statistics was told, in case its server was killed before it could answer.
    std::uint32_t toldHighDepth = 0; // no padding here: records are compared as bytes
    std::int64_t toldRequest = 0;    // when that request was put; 0: there was none
    std::int64_t toldResetTime = 0;
    std::uint32_t toldEnqueued = 0;
    std::uint32_t toldDequeued = 0;

    // Nothing before this place is visible (place 0: not known), so that a search does not step over what others hold,
    // message by message: a unit of work that gets many would take longer with each. Lowered by whatever comes to be
    // visible before it, raised by searches.
    std::uint64_t searchSequence = 0;
    std::uint32_t searchOrder = 0;

    std::uint32_t depthTriggers = 0; // booked: a DEPTH trigger message is being made; no padding here either

    void addToDepth()
    {
        depth += 1;
        highDepth = highDepth < depth ? depth : highDepth;
    }
    void countPut()
    {
        addToDepth();
        enqueued += 1;
    }
    void countGet()
    {
        depth -= 1;
        dequeued += 1;
    }
    [[nodiscard]] std::optional<MessageKey> searchFrom(QueueId queue) const
    {
        if (searchSequence == 0) return std::nullopt;
        return MessageKey{.queue = queue, .order = static_cast<std::uint8_t>(searchOrder), .sequence = searchSequence};
    }
    void setSearch(const MessageKey &from)
    {
        searchOrder = from.order;
        searchSequence = from.sequence;
    }
    void mayShow(const MessageKey &key)
    {
        if (const auto from = searchFrom(key.queue); from && key < *from) setSearch(key);
    }
    void resetStatistics(std::int64_t now)
    {
        resetTime = now;
        enqueued = 0;
        dequeued = 0;
        highDepth = depth;
    }
};
static_assert(std::has_unique_object_representations_v<QueueStatus>);

class Transaction {
public:
    Transaction(const Transaction &) = delete;
    Transaction &operator=(const Transaction &) = delete;

    [[nodiscard]] QueueStatus queue(QueueId queue);

    // The header of a message if it is there and visible. (A copy: the stored bytes have no alignment.)
    [[nodiscard]] std::optional<MessageHeader> find(const MessageKey &key);

    // The body of a message that find or a cursor gave, or that this connection has locked.
    [[nodiscard]] std::span<const std::byte> body(const MessageKey &key);

    // The header of a message whether visible or not, e.g. one this connection has locked.
    [[nodiscard]] std::optional<MessageHeader> findHeld(const MessageKey &key);

    // Lets the holder of a browse lock see the message that it has locked, for the rest of the transaction, as if it
    // were visible. `slot`: of the holder's connection.
    void showLocked(const MessageKey &key, std::uint32_t slot);

    // The bytes of a definition as it is now, whatever anybody remembers of it; empty if there is none. Valid until the
    // next change.
    [[nodiscard]] std::string_view definition(MQLONG type, std::string_view name);

    // Since when the message is marked for the handles that browse together (microseconds since 1970 UTC), if it is.
    [[nodiscard]] std::optional<std::int64_t> markOf(const MessageKey &key);

    // The error that stuck, else success.
    [[nodiscard]] Outcome outcome() const { return outcome_; }

protected:
    friend class MessageCursor;
    friend class Attachment;
    friend class Store;
    friend struct TransactionScratch;
    Transaction() = default;
    ~Transaction() = default;

    // Steps of the store's own code.
    struct Value {
        const void *data = nullptr; // null: not there
        std::size_t size = 0;
    };
    Value get(const LiveKey &key);
    template <class Visit>
    void walk(const LiveKey &prefix, const LiveKey &from, Visit &&visit);
    template <class Visit>
    void forEach(const LiveKey &prefix, Visit &&visit);
    template <class Visit>
    void forFirst(const LiveKey &prefix, Visit &&visit);
    [[nodiscard]] std::optional<Hold> holdOf(const MessageKey &key);
    [[nodiscard]] bool isHeld(const MessageKey &key);
    [[nodiscard]] bool isShown(const MessageKey &key) const { return shown_ && *shown_ == key; }
    // A search has found nothing visible before this. Kept for the next ones, if anything is stored.
    void noteSearch(const MessageKey &found);
    // Remembers LMDB's error code; MDB_NOTFOUND is none. True if there was no error.
    bool sticks(int code);

    MDB_txn *txn_ = nullptr;
    LiveEnvironment *environment_ = nullptr;
    TransactionScratch *scratch_ = nullptr; // of the thread; null in a ReadTransaction
    std::uint32_t records_ = 0;
    Outcome outcome_;
    std::optional<MessageKey> shown_; // locked by a browse of whoever made this transaction
    bool outgrown_ = false;           // the error is that the map is full: grow it and run the body again
};

class ReadTransaction : public Transaction {
public:
    ReadTransaction() = default;
    ~ReadTransaction();
};

class WriteTransaction : public Transaction {
public:
    WriteTransaction() = default;
    ~WriteTransaction();

    // Whether the queue is defined. Storing, booking and opening on one that is not (any more) fails the transaction
    // with MQRC_Q_DELETED, so what a caller knows from a cached definition cannot go astray.
    [[nodiscard]] bool exists(QueueId queue);

    // ---- Single messages outside a unit of work ----

    // Stores a message; depth + 1. A non-persistent one is visible when update is back, and its getters are woken.
    // A persistent one is stored hidden, and the ticket is to be handed to Attachment::harden after update.
    Ticket put(const NewMessage &message);

    // Takes a visible message for good; depth - 1. The same with the ticket: harden before the get is answered. Copy
    // the body out inside the body of update, or, if it is large, use lock, read the body with read, then commit a
    // Unit of this one get: so that nobody waits for the copying.
    Ticket take(const MessageKey &key);

    // Removes an expired message; depth - 1. A persistent one leaves the log with the next unit that is logged (its
    // deadline keeps it from being seen again after a crash before that): no ticket, no sync.
    void discard(const MessageKey &key);

    // ---- Units of work ----

    // Gives a put under syncpoint its place in the depth, booked on this connection: depth + 1.
    void bookPut(QueueId queue);
    // Takes such a booking back (a put that failed after it was booked).
    void unbookPut(QueueId queue);

    // Marks a visible message as got by this connection's unit of work; depth - 1.
    void lock(const MessageKey &key);
    // Undoes lock as if the get had never been: depth + 1, backout count unchanged.
    void unlock(const MessageKey &key);

    // ---- Statistics ----

    // Begins the queue's statistics anew; answers what they were.
    QueueStatus resetStatistics(QueueId queue);
    // The same for a request that was put at that time. `repeated`: it may have been begun before; what was counted up
    // to then is in the answer too.
    QueueStatus resetStatisticsFor(QueueId queue, std::int64_t requestTime, bool repeated);
    // A trigger message of the queue is made now.
    void noteTrigger(QueueId queue);
    // From a DEPTH trigger message until the trigger is turned off, so that nobody else makes one meanwhile. Booked on
    // this connection.
    void bookDepthTrigger(QueueId queue);
    void unbookDepthTrigger(QueueId queue);

    // ---- Browsing ----

    // Hides a visible message from all but the handle that browses it. In no unit of work: the depth stays, and no end
    // of the lock raises a backout count. Ends with take, lock or discard of the message, unlockBrowsed, or the
    // connection.
    void lockBrowsed(const MessageKey &key);
    // Nothing if the connection has no such lock (any more).
    void unlockBrowsed(const MessageKey &key);

    // Marks a message for the handles that browse its queue together. Ends with clearMark, when the message is taken or
    // locked by a get, or with the last of these handles.
    void setMark(const MessageKey &key, std::int64_t since);
    void clearMark(const MessageKey &key);

    // ---- Handles and headers ----

    // Adds to (or with negative numbers takes from) the open counts of the queue, booked on this connection, so that
    // the clean-up of a dead connection gives them back. The caller decides from queue() whether the open may be.
    void addOpens(QueueId queue, const OpenCounts &change);

    // Replaces the header of a message. MsgId, CorrelId, GroupId, MsgSeqNumber, Offset, persistence and bodyLength must
    // stay as they are.
    void changeHeader(const MessageKey &key, const MessageHeader &header);

protected:
    friend class Attachment;
    friend class Store;

    // Steps of the store's own code. Depth counts and holds are kept together: whoever hides or shows a message says
    // what that does to the depth.
    QueueStatus &counters(QueueId queue);
    void createCounters(QueueId queue);
    void eraseCounters(QueueId queue);
    // False, and the transaction fails, if the queue is gone.
    bool mustExist(QueueId queue);
    Booking &booking(QueueId queue);
    void insertMessage(const NewMessage &message);
    void eraseMessage(const MessageKey &key);
    void setHold(const MessageKey &key, const Hold &hold);
    void changeHold(const MessageKey &key, const Hold &hold); // of a message that is held
    void clearHold(const MessageKey &key);
    // A get of the message: browse lock and mark end.
    void endBrowsing(const MessageKey &key);
    void clearMarks(QueueId queue);
    void releaseBrowsed(const MessageKey &key);
    // Takes a connection's open handles out of the queue's counts.
    void addToOpens(QueueId queue, const OpenCounts &change);
    void erase(const LiveKey &key);
    void store(const LiveKey &key, const void *data, std::size_t size);
    // Erases up to `atMost` records whose keys begin with `prefix` and are longer; whether there may be more.
    bool eraseSome(const LiveKey &prefix, int atMost);
    void addStep(UnitKind unit, StepKind step, const MessageKey &key, bool persistent, std::uint64_t backoutCount);
    void returnToQueue(const MessageKey &key);
    void wakeGetters(QueueId queue);
    // Writes the counters, bookings and the unit that the steps have collected.
    void flush();
    [[nodiscard]] Ticket ticket() const;

    std::uint32_t slot_ = 0;
    ConnectionSlot *connection_ = nullptr; // of that slot
};

// Walks visible messages of one queue in delivery order: all of them, or those with one id; or those of a group in
// logical order. Lives inside a transaction; in a WriteTransaction a change to the queue ends the walk (make a new
// cursor).
class MessageCursor {
public:
    MessageCursor(Transaction &transaction, QueueId queue);
    MessageCursor(Transaction &transaction, QueueId queue, Index index, MessageId id);
    MessageCursor(Transaction &transaction, QueueId queue, const GroupPlace &place);
    ~MessageCursor();
    MessageCursor(const MessageCursor &) = delete;
    MessageCursor &operator=(const MessageCursor &) = delete;

    // Each goes to a visible message and says whether there was one. `seek` goes to the first one behind `key`, which
    // itself need not exist any more.
    bool first();
    bool next();
    bool seek(const MessageKey &behind);
    // Goes to the last one instead. Only for walks over an index.
    bool last();

    // Of the message the walk stands on.
    [[nodiscard]] const MessageKey &key() const { return key_; }
    [[nodiscard]] const MessageHeader &header();
    [[nodiscard]] std::span<const std::byte> body();

private:
    void start(QueueId queue);
    bool firstAmongHeld();
    bool go(const LiveKey &from, bool behind);
    bool settle(int code, Transaction::Value name, Transaction::Value value);
    bool isHeld();

    Transaction &transaction_;
    MDB_cursor *walk_ = nullptr;  // over messages or over one index
    MDB_cursor *holds_ = nullptr; // over the queue's holds, beside it; null while the queue has none
    QueueId queue_ = 0;
    LiveKey prefix_; // of the records of the walk
    bool byIndex_ = false;
    MessageKey key_;
    std::optional<MessageKey> nextHold_; // first held message not before key_
    bool nextHoldKnown_ = false;
    Transaction::Value value_; // of the message's record, once known
    MessageHeader header_{};
    bool headerRead_ = false;
};

} // namespace mqrig::qmgr::store
