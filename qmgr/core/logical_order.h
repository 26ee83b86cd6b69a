// Where an object handle stands in a message group and in a logical message that consists of segments.
//
// MQPUT, MQGET that removes and MQGET that browses each leave such a position behind, apart from one another. With
// MQPMO_LOGICAL_ORDER and MQGMO_LOGICAL_ORDER the next call goes on from there; without them the program says itself
// what it means, and the position only tells whether it left something unfinished.
#pragma once

#include <memory>
#include <optional>

#include "cmqc.h"
#include "qmgr/store/message.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::core {

// Each of them makes a message more than one that stands alone.
inline constexpr MQLONG groupFlags = MQMF_MSG_IN_GROUP | MQMF_LAST_MSG_IN_GROUP;
inline constexpr MQLONG segmentFlags = MQMF_SEGMENT | MQMF_LAST_SEGMENT;
inline constexpr MQLONG groupingFlags = groupFlags | segmentFlags | MQMF_SEGMENTATION_ALLOWED;

inline constexpr MQLONG highestSequenceNumber = 999999999;
inline constexpr MQLONG highestOffset = 999999999;

// MsgFlags as they are stored: the last message of a group is in the group, the last segment is a segment.
constexpr MQLONG impliedFlags(MQLONG flags)
{
    if ((flags & MQMF_LAST_MSG_IN_GROUP) != 0) flags |= MQMF_MSG_IN_GROUP;
    if ((flags & MQMF_LAST_SEGMENT) != 0) flags |= MQMF_SEGMENT;
    return flags;
}

struct GroupPosition {
    bool group = false;          // there is a current group
    bool logicalMessage = false; // there is a current logical message: its last segment is still to come
    bool lastOfGroup = false;    // it is the last of its group
    bool persistent = false;
    bool syncpoint = false; // the last one was put or got within a unit of work
    bool ordered = false;   // by a call with logical order
    MQBYTE24 groupId{};
    MQLONG msgSeqNumber = 1; // of the last one
    MQLONG nextOffset = 0;   // in the current logical message

    bool open() const { return group || logicalMessage; }
};

// Behind the message with this descriptor, which has its flags as they are stored; a segment's OriginalLength is its
// length.
GroupPosition positionBehind(const MQMD &md, bool syncpoint, bool ordered);

// Whether a message with these flags and fields goes on where the position stands: MQRC_NONE, MQRC_INCOMPLETE_MSG,
// MQRC_INCOMPLETE_GROUP. The first looks at the flags only, the second also at GroupId, MsgSeqNumber and Offset.
MQLONG judgeFlags(const GroupPosition &position, MQLONG flags);
MQLONG judgeFields(const GroupPosition &position, const MQMD &md);
// MQRC_NONE, MQRC_INCONSISTENT_PERSISTENCE, MQRC_INCONSISTENT_UOW.
MQLONG judgeManner(const GroupPosition &position, bool persistent, bool syncpoint);

// GroupId, MsgSeqNumber and Offset of what comes behind an open position.
void setNext(const GroupPosition &position, MQMD &md);

// The positions of one handle.
struct LogicalOrder {
    GroupPosition put;
    GroupPosition get;
    GroupPosition browse;
    // The last browse was in logical order.
    bool browsedInOrder = false;
    // Where the group or message stands that was browsed last: the queue goes on behind the place of its beginning.
    std::optional<store::MessageKey> browsedFrom;
};

// MQCLOSE: the warning for what calls with logical order left unfinished, if they did.
Outcome judgeClose(const LogicalOrder &order);

} // namespace mqrig::qmgr::core
