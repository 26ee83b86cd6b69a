// MQGET in logical order, and of messages that wait for others: the part around the look for one message.
#pragma once

#include "cmqc.h"
#include "qmgr/core/connection.h"
#include "qmgr/core/get.h"
#include "qmgr/core/object_handles.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::core {

inline constexpr MQLONG orderOptions =
    MQGMO_LOGICAL_ORDER | MQGMO_COMPLETE_MSG | MQGMO_ALL_MSGS_AVAILABLE | MQGMO_ALL_SEGMENTS_AVAILABLE;

// Of every get, with those options or without: MQRC_INCONSISTENT_BROWSE where a browse does not go on in the order in
// which the last one did; else MQRC_NONE.
inline MQLONG judgeBrowse(const OpenObject &object, const GetRequest &request)
{
    if (!request.has(MQGMO_BROWSE_NEXT) || !object.cursor) return MQRC_NONE;
    const bool before = object.logicalOrder != nullptr && object.logicalOrder->browsedInOrder;
    return before == request.has(MQGMO_LOGICAL_ORDER) ? MQRC_NONE : MQRC_INCONSISTENT_BROWSE;
}

// Turns a request with one of the order options into a look for what comes next on this handle. Failures:
// MQRC_MATCH_OPTIONS_ERROR where the selection wants something else, MQRC_INCONSISTENT_UOW, MQRC_NO_MSG_AVAILABLE where
// the rest of a logical message that was begun is wanted as a complete one, and those of the store.
Outcome prepareOrderedGet(Connection &connection, OpenObject &object, GetRequest &request);

// After every get that did not fail: where the handle stands now. Answers `outcome`, or instead of success the warning
// of a get without logical order that left what gets with it had begun: MQRC_INCOMPLETE_MSG, MQRC_INCOMPLETE_GROUP,
// MQRC_INCONSISTENT_UOW.
Outcome notePosition(OpenObject &object, const GetRequest &request, const Outcome &outcome, const GotMessage &got);

} // namespace mqrig::qmgr::core
