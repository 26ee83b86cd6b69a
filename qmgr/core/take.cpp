// MQGET that removes a message.
//
// The search runs inside the transaction that takes the message, so that choosing and taking are one step. It is the
// only transaction that others wait for, so it looks at a few messages only: the rest of a long search goes over a
// snapshot, and the transaction then begins behind the messages that the snapshot has shown to be of no interest.
#include <cstddef>
#include <new>
#include <optional>
#include <span>

#include "qmgr/core/delivery.h"
#include "qmgr/core/expiry.h"
#include "qmgr/core/get.h"
#include "qmgr/core/locked_gets.h"
#include "qmgr/core/private_unit.h"
#include "qmgr/core/reports.h"
#include "qmgr/core/segments.h"
#include "qmgr/store/seams.h"

namespace mqrig::qmgr::core {
namespace {

// Messages looked at while others wait.
constexpr std::size_t shortSearch = 64;
constexpr std::size_t anyNumber = static_cast<std::size_t>(-1);
// Bodies from this length on are copied outside the transaction that takes them.
constexpr std::size_t largeBody = 65536;
// What unpacking costs grows with the message. From this length on it is done over a snapshot.
constexpr std::size_t longUnpacking = 4096;

// What the transaction did with the message that it found; made anew whenever it runs again.
struct Taken {
    Outcome outcome = failure(MQRC_NO_MSG_AVAILABLE);
    bool gone = false;   // from the queue
    bool locked = false; // for the unit of work, or until the large body is copied
    bool copyLater = false;
    bool unpackFirst = false; // nothing: the message waits for unpackFound
    store::Ticket ticket = 0;
};

class Taker {
public:
    Taker(Connection &connection, OpenObject &object, const GetRequest &request, GotMessage &got)
        : connection_(connection), store_(*connection.store), object_(object), request_(request), got_(got),
          queue_(object.hold.queue->id),
          maxUncommitted_(static_cast<std::size_t>(connection.queueManager().maxUncommittedMsgs))
    {
    }

    Look underCursor()
    {
        if (!object_.cursor) return {failure(MQRC_NO_MSG_UNDER_CURSOR)};
        if (request_.has(MQGMO_COMPLETE_MSG))
            if (const std::optional<Outcome> whole = wholeUnderCursor()) return {*whole};
        got_.key = *object_.cursor;
        const std::optional<Outcome> outcome = takeFound(store::currentTime());
        return {outcome ? *outcome : failure(MQRC_NO_MSG_UNDER_CURSOR)};
    }

    Look next()
    {
        if (request_.needs != MQGMO_NONE || object_.selector != nullptr) [[unlikely]]
            return nextAvailable();
        connection_.unit.roomForGet();
        std::optional<store::MessageKey> behind;
        for (;;) {
            bool held = false;
            Taken taken;
            const Outcome updated = store_.update(0, [&](store::WriteTransaction &transaction) {
                taken = {};
                showLocked(transaction);
                search(transaction, {queue_, &request_.selection, behind, store::currentTime(), shortSearch}, found_,
                       expired_);
                if (found_.end == SearchEnd::NotFound) held = transaction.queue(queue_).held != 0;
                Outcome answer = success();
                if (found_.end == SearchEnd::Found) {
                    got_.key = found_.key;
                    got_.header = found_.header;
                    answer = take(transaction, taken);
                }
                discardExpired(transaction, expired_);
                return answer;
            });
            if (updated.failed()) return {updated};
            if (found_.end == SearchEnd::Found && !taken.unpackFirst) return {finishThenReport(taken)};
            if (const Outcome reported = reportExpired(connection_, expired_); reported.failed()) return {reported};
            if (found_.end == SearchEnd::Found) {
                if (const Outcome unpacked = unpackFound(); unpacked.failed()) return {unpacked};
                if (const std::optional<Outcome> outcome = takeFound()) return {*outcome};
                continue;
            }
            if (found_.end == SearchEnd::NotFound) return {failure(MQRC_NO_MSG_AVAILABLE), held};
            behind = found_.reached;
            if (expired_.full()) continue;
            if (const Look look = searchSnapshot(behind); look.outcome.failed()) return look;
        }
    }

private:
    // The message that a browse of this handle has locked is there for its gets too.
    void showLocked(store::Transaction &transaction) const
    {
        if (object_.locked) [[unlikely]]
            transaction.showLocked(*object_.locked, store_.slot());
    }

    // Whether the browse lock of this handle is on a segment of the message that `got` names.
    bool locksPart() const
    {
        if (!object_.locked) return false;
        std::optional<store::MessageHeader> locked;
        static_cast<void>(store_.read([&](store::ReadTransaction &transaction) {
            showLocked(transaction);
            locked = transaction.find(*object_.locked);
            return success();
        }));
        return locked && isSameLogicalMessage(locked->md, got_.header.md);
    }

    // The segments of the message that `got` names are got together, as anybody gets them: without the browse lock of
    // this handle on one of them.
    std::optional<Outcome> takeWhole()
    {
        if (locksPart())
            if (const Outcome unlocked = unlockMessage(connection_, object_); unlocked.failed()) return unlocked;
        return takeSegments(connection_, request_, got_);
    }

    // What other messages or a selection string decide about is looked for in a snapshot, however few there are, and
    // taken if it is still there. That the others are, too, was true when the call was made: no more is promised. What
    // could not be taken is gone, or a double that begins no logical message: the search goes on behind it and never
    // meets it again.
    Look nextAvailable()
    {
        std::optional<store::MessageKey> behind;
        for (;;) {
            if (const Look look = searchSnapshot(behind); look.outcome.failed()) return look;
            got_.key = found_.key;
            got_.header = found_.header;
            const bool whole = request_.has(MQGMO_COMPLETE_MSG) && (found_.header.md.MsgFlags & MQMF_SEGMENT) != 0;
            if (const std::optional<Outcome> outcome = whole ? takeWhole() : takeFound()) return {*outcome};
            behind = found_.key;
        }
    }

    // Takes the message whose key is in `got_`; nothing if it is gone, or has expired by `now`.
    std::optional<Outcome> takeFound(std::int64_t now = 0)
    {
        connection_.unit.roomForGet();
        for (;;) {
            Taken taken;
            bool there = false;
            const Outcome updated = store_.update(0, [&](store::WriteTransaction &transaction) {
                taken = {};
                showLocked(transaction);
                const auto header = transaction.find(got_.key);
                there = header && !isExpired(*header, now);
                if (!there) return success();
                got_.header = *header;
                return take(transaction, taken);
            });
            if (updated.failed()) return updated;
            if (!there) return std::nullopt;
            if (!taken.unpackFirst) return finish(taken);
            if (const Outcome unpacked = unpackFound(); unpacked.failed()) return unpacked;
        }
    }

    // Looks for the properties of the message that `got_` names while nobody waits. A stored message does not change,
    // so what is found holds for as long as the message is there.
    Outcome unpackFound()
    {
        return store_.read([&](store::ReadTransaction &transaction) {
            unpacked_ = Unpacked{got_.key, prepareDelivery(request_, transaction.body(got_.key), got_)};
            return success();
        });
    }

    // MQGMO_COMPLETE_MSG on the message under the cursor; nothing if that is no segment.
    std::optional<Outcome> wholeUnderCursor()
    {
        std::optional<store::MessageHeader> header;
        const Outcome read = store_.read([&](store::ReadTransaction &transaction) {
            showLocked(transaction);
            header = transaction.find(*object_.cursor);
            return success();
        });
        if (read.failed()) return read;
        if (!header || (header->md.MsgFlags & MQMF_SEGMENT) == 0) return std::nullopt;
        if (header->md.Offset != 0) return failure(MQRC_INVALID_MSG_UNDER_CURSOR);
        got_.key = *object_.cursor;
        got_.header = *header;
        const std::optional<Outcome> outcome = takeWhole();
        return outcome ? *outcome : failure(MQRC_NO_MSG_UNDER_CURSOR);
    }

    // Moves `behind` up to the next message that is wanted.
    Look searchSnapshot(std::optional<store::MessageKey> &behind)
    {
        for (;;) {
            bool held = false;
            const Outcome looked = store_.read([&](store::ReadTransaction &transaction) {
                showLocked(transaction);
                search(transaction,
                       {queue_, &request_.selection, behind, store::currentTime(), anyNumber, request_.needs,
                        object_.selector.get()},
                       found_, expired_);
                held = transaction.queue(queue_).held != 0;
                return success();
            });
            if (looked.failed()) return {looked};
            if (const Outcome removed = removeExpired(connection_, expired_); removed.failed()) return {removed};
            if (found_.reached) behind = found_.reached;
            if (found_.end == SearchEnd::Found) return {success()};
            if (found_.end == SearchEnd::NotFound) return {failure(MQRC_NO_MSG_AVAILABLE), held};
        }
    }

    // Inside the transaction: `got_` names the message.
    Outcome take(store::WriteTransaction &transaction, Taken &taken)
    {
        const std::span<const std::byte> stored = transaction.body(got_.key);
        if (unpacked_ && unpacked_->key == got_.key) {
            taken.outcome = unpacked_->outcome;
        } else if (stored.size() >= longUnpacking && mayHaveProperties(got_.header)) [[unlikely]] {
            taken.unpackFirst = true;
            return success();
        } else {
            unpacked_.reset();
            taken.outcome = prepareDelivery(request_, stored, got_);
        }
        if (taken.outcome.Reason == MQRC_TRUNCATED_MSG_FAILED) {
            copyDelivery(request_, stored, got_);
            return success();
        }
        const bool unit = request_.inUnitOfWork(store::isPersistent(got_.header));
        if (unit && connection_.unit.size() >= maxUncommitted_) return failure(MQRC_SYNCPOINT_LIMIT_REACHED);

        taken.copyLater = stored.size() >= largeBody;
        if (!taken.copyLater) copyDelivery(request_, stored, got_);
        taken.locked = unit || taken.copyLater || wantsDeliveryReport(got_.header.md);
        taken.gone = true;
        if (taken.locked)
            transaction.lock(got_.key);
        else
            taken.ticket = transaction.take(got_.key);
        return success();
    }

    // What was found is the connection's own by now, and perhaps locked: reports about others come behind it, and
    // whatever becomes of them, the program has its message.
    Outcome finishThenReport(const Taken &taken)
    {
        const Outcome finished = finish(taken);
        try {
            (void)reportExpired(connection_, expired_);
        } catch (const std::bad_alloc &) { // NOLINT(bugprone-empty-catch): the reports are lost
        }
        return finished;
    }

    // After the transaction: the large body, the report, the place in the unit of work, the log.
    Outcome finish(const Taken &taken)
    {
        if (taken.gone && object_.locked == got_.key) object_.locked.reset();
        if (!taken.locked) {
            const Outcome hardened = store_.harden(taken.ticket);
            return hardened.failed() ? hardened : taken.outcome;
        }
        const store::TakenMessage message{got_.key, store::isPersistent(got_.header)};
        LockedGets lock(store_, {&message, 1});
        if (taken.copyLater) {
            const Outcome copied = store_.read([&](store::ReadTransaction &transaction) {
                copyDelivery(request_, transaction.body(got_.key), got_);
                return success();
            });
            if (copied.failed()) return copied;
        }
        PrivateUnit own(connection_);
        UnitOfWork &unit = request_.inUnitOfWork(message.persistent) ? connection_.unit : *own;
        unit.roomForGet();
        if (const Outcome reported = reportDelivery(connection_, unit, got_.key, got_.header); reported.failed())
            return reported;
        unit.addGet(message);
        lock.belongToUnit();
        const Outcome committed = own.commit();
        return committed.failed() ? committed : taken.outcome;
    }

    Connection &connection_;
    store::Attachment &store_;
    OpenObject &object_;
    const GetRequest &request_;
    GotMessage &got_;
    store::QueueId queue_;
    std::size_t maxUncommitted_;
    SearchResult found_;
    ExpiredMessages expired_;
    // What prepareDelivery has answered outside of the transaction, and for which message: got_ holds the rest.
    struct Unpacked {
        store::MessageKey key;
        Outcome outcome;
    };
    std::optional<Unpacked> unpacked_;
};

} // namespace

Look takeMessage(Connection &connection, OpenObject &object, const GetRequest &request, GotMessage &got)
{
    Taker taker(connection, object, request, got);
    return request.has(MQGMO_MSG_UNDER_CURSOR) ? taker.underCursor() : taker.next();
}

} // namespace mqrig::qmgr::core
