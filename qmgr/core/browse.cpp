// MQGET that leaves the message where it is: a search over a snapshot, from where the handle's browse cursor stands.
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

// The message that `got` names, or with MQGMO_COMPLETE_MSG the logical message that it begins.
Outcome deliverBrowsed(store::ReadTransaction &transaction, const GetRequest &request, GotMessage &got)
{
    if (!request.has(MQGMO_COMPLETE_MSG) || (got.header.md.MsgFlags & MQMF_SEGMENT) == 0)
        return deliver(request, transaction.body(got.key), got);
    if (got.header.md.Offset != 0) return failure(MQRC_INVALID_MSG_UNDER_CURSOR);
    const std::optional<LogicalMessage> whole = assemble(transaction, {got.key, got.header}, store::currentTime());
    if (!whole) return failure(MQRC_NO_MSG_UNDER_CURSOR);
    got.header = whole->header;
    const Outcome outcome = deliver(request, whole->stored, got);
    return outcome.ok() ? whole->outcome : outcome;
}

// MQGMO_BROWSE_MSG_UNDER_CURSOR: whatever the selection.
Outcome browseUnderCursor(store::Attachment &store, const OpenObject &object, const GetRequest &request,
                          GotMessage &got)
{
    if (!object.cursor) return failure(MQRC_NO_MSG_UNDER_CURSOR);
    return store.read([&](store::ReadTransaction &transaction) {
        const auto header = transaction.find(*object.cursor);
        if (!header || isExpired(*header, store::currentTime())) return failure(MQRC_NO_MSG_UNDER_CURSOR);
        got.key = *object.cursor;
        got.header = *header;
        return deliverBrowsed(transaction, request, got);
    });
}

Look browseNext(Connection &connection, const OpenObject &object, const GetRequest &request, GotMessage &got)
{
    const store::QueueId queue = object.hold.queue->id;
    std::optional<store::MessageKey> behind;
    if (request.has(MQGMO_BROWSE_NEXT)) behind = request.has(MQGMO_LOGICAL_ORDER) ? request.behind : object.cursor;
    SearchResult found;
    ExpiredMessages expired;
    for (;;) {
        Look look{failure(MQRC_NO_MSG_AVAILABLE)};
        const Outcome looked = connection.store->read([&](store::ReadTransaction &transaction) {
            search(transaction, {queue, &request.selection, behind, store::currentTime(), anyNumber, request.needs},
                   found, expired);
            if (found.end == SearchEnd::Found) {
                got.key = found.key;
                got.header = found.header;
                look.outcome = deliverBrowsed(transaction, request, got);
            } else {
                look.held = transaction.queue(queue).held != 0;
            }
            return success();
        });
        if (looked.failed()) return {looked};
        if (!expired.empty())
            if (const Outcome removed = removeExpired(connection, expired); removed.failed()) return {removed};
        if (found.end != SearchEnd::Stopped) return look;
        behind = found.reached;
    }
}

} // namespace

Look browseMessage(Connection &connection, OpenObject &object, const GetRequest &request, GotMessage &got)
{
    const Look look = request.has(MQGMO_BROWSE_MSG_UNDER_CURSOR)
                          ? Look{browseUnderCursor(*connection.store, object, request, got)}
                          : browseNext(connection, object, request, got);
    if (!look.outcome.failed() && look.outcome.Reason != MQRC_TRUNCATED_MSG_FAILED) object.cursor = got.key;
    return look;
}

} // namespace mqrig::qmgr::core
