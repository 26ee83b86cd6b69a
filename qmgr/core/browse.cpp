// MQGET that leaves the message where it is: a search over a snapshot, from where the handle's browse cursor stands.
//
// A browse that locks or marks the message, or that ends an earlier lock, does so in a second step: a write
// transaction that finds the message again. If it is gone by then, or somebody else was faster, the browse looks again.
// A lock on a logical message is one on its first segment: without that, nobody else gets the message as a whole.
#include <algorithm>
#include <cstddef>
#include <limits>
#include <optional>

#include "qmgr/core/delivery.h"
#include "qmgr/core/expiry.h"
#include "qmgr/core/get.h"
#include "qmgr/core/segments.h"
#include "qmgr/store/seams.h"

namespace mqrig::qmgr::core {
namespace {

constexpr std::size_t anyNumber = std::numeric_limits<std::size_t>::max();
constexpr std::int64_t microsecondsPerMillisecond = 1000;

// The message that `got` names, or with MQGMO_COMPLETE_MSG the logical message that it begins. Nothing if it
// begins none: a segment is missing, or it is a double.
std::optional<Outcome> deliverBrowsed(store::ReadTransaction &transaction, const GetRequest &request, GotMessage &got)
{
    if (!request.has(MQGMO_COMPLETE_MSG) || (got.header.md.MsgFlags & MQMF_SEGMENT) == 0)
        return deliver(request, transaction.body(got.key), got);
    if (got.header.md.Offset != 0) return failure(MQRC_INVALID_MSG_UNDER_CURSOR);
    const std::optional<LogicalMessage> whole = assemble(transaction, {got.key, got.header}, store::currentTime());
    if (!whole) return std::nullopt;
    got.header = whole->header;
    const Outcome outcome = deliver(request, whole->stored, got);
    return outcome.ok() ? whole->outcome : outcome;
}

class Browser {
public:
    Browser(Connection &connection, OpenObject &object, const GetRequest &request, GotMessage &got)
        : connection_(connection), store_(*connection.store), object_(object), request_(request), got_(got),
          now_(store::currentTime())
    {
        const MQLONG interval = connection.queueManager().markBrowseInterval;
        marks_ = {&object.marks, object.allows(MQOO_CO_OP), interval < 0 ? -1 : interval * microsecondsPerMillisecond,
                  now_, &firstOver_};
    }

    Look look()
    {
        for (;;) {
            Look look = request_.has(MQGMO_BROWSE_MSG_UNDER_CURSOR) ? Look{underCursor()} : next();
            if (look.outcome.failed()) {
                if (look.outcome.Reason == MQRC_NO_MSG_AVAILABLE && object_.locked)
                    if (const Outcome ended = unlockMessage(connection_, object_); ended.failed()) return {ended};
                if (firstOver_) look.again = std::max<std::int64_t>(*firstOver_ - now_, 0);
                return look;
            }
            if (look.outcome.Reason == MQRC_TRUNCATED_MSG_FAILED) return look;
            if (!changesStore()) return finish(look);
            const Outcome settled = settle();
            if (settled.Reason == gone) continue;
            return settled.failed() ? Look{settled} : finish(look);
        }
    }

private:
    static constexpr MQLONG gone = MQRC_NO_MSG_AVAILABLE;

    void showLocked(store::Transaction &transaction) const
    {
        if (object_.locked) transaction.showLocked(*object_.locked, store_.slot());
    }

    const MarkFilter *filter() const { return request_.has(MQGMO_UNMARKED_BROWSE_MSG) ? &marks_ : nullptr; }

    // MQGMO_BROWSE_MSG_UNDER_CURSOR: whatever the selection.
    Outcome underCursor()
    {
        if (!object_.cursor) return failure(MQRC_NO_MSG_UNDER_CURSOR);
        return store_.read([&](store::ReadTransaction &transaction) {
            showLocked(transaction);
            const auto header = transaction.find(*object_.cursor);
            if (!header || isExpired(*header, now_)) return failure(MQRC_NO_MSG_UNDER_CURSOR);
            if (filter() != nullptr && filter()->isMarked(transaction, *object_.cursor, *header))
                return failure(MQRC_NO_MSG_UNDER_CURSOR);
            got_.key = *object_.cursor;
            got_.header = *header;
            return deliverBrowsed(transaction, request_, got_).value_or(failure(MQRC_NO_MSG_UNDER_CURSOR));
        });
    }

    Look next()
    {
        const store::QueueId queue = object_.hold.queue->id;
        std::optional<store::MessageKey> behind;
        if (request_.has(MQGMO_BROWSE_NEXT))
            behind = request_.has(MQGMO_LOGICAL_ORDER) ? request_.behind : object_.cursor;
        SearchResult found;
        ExpiredMessages expired;
        firstOver_.reset();
        for (;;) {
            Look look{failure(MQRC_NO_MSG_AVAILABLE)};
            bool nothing = false; // found, but nothing that can be delivered
            const Outcome looked = store_.read([&](store::ReadTransaction &transaction) {
                showLocked(transaction);
                search(transaction,
                       {queue, &request_.selection, behind, store::currentTime(), anyNumber, request_.needs,
                        object_.selector.get(), filter()},
                       found, expired);
                if (found.end == SearchEnd::Found) {
                    got_.key = found.key;
                    got_.header = found.header;
                    const std::optional<Outcome> delivered = deliverBrowsed(transaction, request_, got_);
                    nothing = !delivered;
                    if (delivered) look.outcome = *delivered;
                } else {
                    look.held = transaction.queue(queue).held != 0;
                }
                return success();
            });
            if (looked.failed()) return {looked};
            if (!expired.empty())
                if (const Outcome removed = removeMet(expired); removed.failed()) return {removed};
            if (found.end != SearchEnd::Stopped && !nothing) return look;
            behind = nothing ? found.key : found.reached;
        }
    }

    // Also the one that this handle has locked.
    Outcome removeMet(const ExpiredMessages &expired)
    {
        if (object_.locked && std::find(expired.begin(), expired.end(), *object_.locked) != expired.end())
            if (const Outcome unlocked = unlockMessage(connection_, object_); unlocked.failed()) return unlocked;
        return removeExpired(connection_, expired);
    }

    bool changesStore() const
    {
        return object_.locked || request_.has(MQGMO_LOCK | MQGMO_MARK_BROWSE_CO_OP | MQGMO_UNMARK_BROWSE_CO_OP);
    }

    // Locks and marks as the request wants it. Fails with `gone` to look again.
    Outcome settle()
    {
        const Outcome settled = store_.update(0, [&](store::WriteTransaction &transaction) {
            showLocked(transaction);
            if (!transaction.find(got_.key)) return failure(gone);
            const auto since = transaction.markOf(got_.key);
            if (request_.has(MQGMO_MARK_BROWSE_CO_OP) && since && markHolds(*since, marks_.interval, now_))
                return failure(filter() != nullptr ? gone : MQRC_MSG_MARKED_BROWSE_CO_OP);
            const bool keeps = object_.locked == got_.key && request_.has(MQGMO_LOCK);
            if (object_.locked && !keeps) transaction.unlockBrowsed(*object_.locked);
            if (request_.has(MQGMO_LOCK) && !keeps) transaction.lockBrowsed(got_.key);
            if (request_.has(MQGMO_MARK_BROWSE_CO_OP)) transaction.setMark(got_.key, now_);
            if (request_.has(MQGMO_UNMARK_BROWSE_CO_OP)) transaction.clearMark(got_.key);
            return success();
        });
        if (settled.failed()) return settled;
        object_.locked.reset();
        if (request_.has(MQGMO_LOCK)) object_.locked = got_.key;
        return settled;
    }

    Look finish(const Look &look)
    {
        object_.cursor = got_.key;
        if (request_.has(MQGMO_MARK_BROWSE_HANDLE)) object_.marks.add(got_.key, got_.header);
        if (request_.has(MQGMO_UNMARK_BROWSE_HANDLE)) object_.marks.remove(got_.key);
        if (object_.marks.wantPruning())
            static_cast<void>(store_.read([&](store::ReadTransaction &transaction) {
                object_.marks.prune(transaction);
                return success();
            }));
        return look;
    }

    Connection &connection_;
    store::Attachment &store_;
    OpenObject &object_;
    const GetRequest &request_;
    GotMessage &got_;
    std::int64_t now_;
    MarkFilter marks_;
    std::optional<std::int64_t> firstOver_;
};

} // namespace

Look browseMessage(Connection &connection, OpenObject &object, const GetRequest &request, GotMessage &got)
{
    return Browser(connection, object, request, got).look();
}

} // namespace mqrig::qmgr::core
