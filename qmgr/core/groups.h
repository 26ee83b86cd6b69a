// MQPUT of messages in groups and of segments of logical messages: the fields of the version-2 descriptor.
#pragma once

#include <cstddef>

#include "cmqc.h"
#include "qmgr/core/connection.h"
#include "qmgr/core/logical_order.h"
#include "qmgr/core/put.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::core {

// Whether the message stands alone and the handle does not care: nothing below is needed then but makeSingle.
inline bool standsAlone(const PutRequest &request, const MQMD &md)
{
    return (md.MsgFlags & groupingFlags) == 0 && !request.has(MQPMO_LOGICAL_ORDER) &&
           (request.logicalOrder == nullptr || *request.logicalOrder == nullptr);
}

// A message that is in no group and is no segment carries fixed values, whatever the program had there.
void makeSingle(MQMD &md);

// Fills in or checks GroupId, MsgSeqNumber, Offset, OriginalLength and MsgFlags of a message of `length` bytes, and
// makes room for the handle's position; `behind` is the position once the message is put. Persistence is known.
// Failures: MQRC_INCOMPLETE_MSG, MQRC_INCOMPLETE_GROUP, MQRC_INCONSISTENT_PERSISTENCE, MQRC_INCONSISTENT_UOW (warnings
// without MQPMO_LOGICAL_ORDER), MQRC_MSG_SEQ_NUMBER_ERROR, MQRC_OFFSET_ERROR, MQRC_ORIGINAL_LENGTH_ERROR,
// MQRC_SEGMENT_LENGTH_ZERO.
Outcome placeInGroup(Connection &connection, const PutRequest &request, std::size_t length, MQMD &md,
                     GroupPosition &behind);

} // namespace mqrig::qmgr::core
