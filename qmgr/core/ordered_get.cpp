#include "qmgr/core/ordered_get.h"

#include <limits>
#include <memory>
#include <new>

#include "qmgr/core/logical_order.h"
#include "qmgr/core/search.h"
#include "qmgr/store/seams.h"

namespace mqrig::qmgr::core {
namespace {

constexpr MQLONG underCursor = MQGMO_MSG_UNDER_CURSOR | MQGMO_BROWSE_MSG_UNDER_CURSOR;

// MQRC_NONE, or MQRC_MATCH_OPTIONS_ERROR where the message at the place is there and has other identifiers.
Outcome judgeIdentifiers(Connection &connection, const OpenObject &object, const Selection &selection,
                         const MQMD &place)
{
    Selection atPlace;
    (void)atPlace.restrictToPlace(place, true);
    SearchResult next;
    ExpiredMessages expired;
    const Outcome looked = connection.store->read([&](store::ReadTransaction &transaction) {
        search(transaction,
               {object.hold.queue->id, &atPlace, std::nullopt, store::currentTime(),
                std::numeric_limits<std::size_t>::max()},
               next, expired);
        return success();
    });
    if (looked.failed()) return looked;
    return next.end == SearchEnd::Found && !selection.matches(next.header) ? failure(MQRC_MATCH_OPTIONS_ERROR)
                                                                           : success();
}

// Restricts the selection to what comes behind the position, or to beginnings where nothing is current.
Outcome selectNext(Connection &connection, const OpenObject &object, const GroupPosition &position, GetRequest &request)
{
    MQMD place{};
    place.MsgSeqNumber = 1;
    if (position.open()) setNext(position, place);
    if (!request.selection.restrictToPlace(place, position.open())) return failure(MQRC_MATCH_OPTIONS_ERROR);
    if (!position.open() || !request.selection.wantsIdentifiers()) return success();
    return judgeIdentifiers(connection, object, request.selection, place);
}

MQLONG needsOf(const GetRequest &request, const GroupPosition &position)
{
    if (request.has(underCursor)) return MQGMO_NONE;
    if (request.has(MQGMO_ALL_MSGS_AVAILABLE) && !position.open()) return MQGMO_ALL_MSGS_AVAILABLE;
    const bool segments = request.has(MQGMO_ALL_SEGMENTS_AVAILABLE | MQGMO_COMPLETE_MSG);
    return segments && !position.logicalMessage ? MQGMO_ALL_SEGMENTS_AVAILABLE : MQGMO_NONE;
}

} // namespace

Outcome prepareOrderedGet(Connection &connection, OpenObject &object, GetRequest &request)
{
    const bool browses = request.has(browseOptions);
    GroupPosition position; // without logical order, and at the beginning of the queue, nothing is current
    if (request.has(MQGMO_LOGICAL_ORDER)) {
        if (object.logicalOrder == nullptr) object.logicalOrder = std::make_unique<LogicalOrder>();
        const LogicalOrder &order = *object.logicalOrder;
        if (!request.has(underCursor | MQGMO_BROWSE_FIRST)) position = browses ? order.browse : order.get;
        if (!position.open()) request.behind = order.browsedFrom;
    }
    if (!browses && position.open() && request.inUnitOfWork(position.persistent) != position.syncpoint)
        return failure(MQRC_INCONSISTENT_UOW);
    request.needs = needsOf(request, position);
    if (request.has(underCursor)) return success();
    if (request.has(MQGMO_LOGICAL_ORDER)) {
        if (const Outcome next = selectNext(connection, object, position, request); next.failed()) return next;
        if (request.has(MQGMO_COMPLETE_MSG) && position.logicalMessage) return failure(MQRC_NO_MSG_AVAILABLE);
    } else if (request.has(MQGMO_COMPLETE_MSG)) {
        request.selection.restrictToBeginnings();
    }
    return success();
}

Outcome notePosition(OpenObject &object, const GetRequest &request, const Outcome &outcome, const GotMessage &got)
{
    const MQMD &md = got.header.md;
    if (object.logicalOrder == nullptr && (md.MsgFlags & (groupFlags | segmentFlags)) == 0) return outcome;
    if (outcome.Reason == MQRC_TRUNCATED_MSG_FAILED || request.has(MQGMO_BROWSE_MSG_UNDER_CURSOR)) return outcome;
    // The message is the program's by now. Where there is no memory for its place, the place is not known.
    if (object.logicalOrder == nullptr) object.logicalOrder.reset(new (std::nothrow) LogicalOrder);
    if (object.logicalOrder == nullptr) return outcome;

    LogicalOrder &order = *object.logicalOrder;
    const bool ordered = request.has(MQGMO_LOGICAL_ORDER);
    const bool syncpoint = request.inUnitOfWork(store::isPersistent(got.header));
    const GroupPosition behind = positionBehind(md, syncpoint, ordered);
    if (request.has(browseOptions)) {
        if (request.has(MQGMO_BROWSE_FIRST) || !order.browse.open()) order.browsedFrom = got.key;
        order.browsedInOrder = ordered;
        order.browse = behind;
        return outcome;
    }
    const GroupPosition before = order.get;
    order.get = behind;
    if (ordered || !before.ordered || !before.open() || !outcome.ok()) return outcome;
    if (const MQLONG reason = judgeFields(before, md)) return warning(reason);
    return syncpoint == before.syncpoint ? outcome : warning(MQRC_INCONSISTENT_UOW);
}

} // namespace mqrig::qmgr::core
