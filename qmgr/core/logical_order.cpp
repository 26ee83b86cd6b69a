#include "qmgr/core/logical_order.h"

#include <algorithm>
#include <cstring>

namespace mqrig::qmgr::core {
namespace {

MQLONG unfinished(const GroupPosition &position)
{
    return position.logicalMessage ? MQRC_INCOMPLETE_MSG : MQRC_INCOMPLETE_GROUP;
}

} // namespace

GroupPosition positionBehind(const MQMD &md, bool syncpoint, bool ordered)
{
    GroupPosition position;
    const auto has = [&md](MQLONG flag) { return (md.MsgFlags & flag) != 0; };
    position.logicalMessage = has(MQMF_SEGMENT) && !has(MQMF_LAST_SEGMENT);
    position.lastOfGroup = has(MQMF_LAST_MSG_IN_GROUP);
    position.group = has(MQMF_MSG_IN_GROUP) && (position.logicalMessage || !position.lastOfGroup);
    position.persistent = md.Persistence == MQPER_PERSISTENT;
    position.syncpoint = syncpoint;
    position.ordered = ordered;
    std::copy_n(md.GroupId, sizeof position.groupId, position.groupId);
    position.msgSeqNumber = md.MsgSeqNumber;
    // No overflow: both were checked when the message was put.
    if (position.logicalMessage) position.nextOffset = md.Offset + std::max(md.OriginalLength, MQLONG{0});
    return position;
}

MQLONG judgeFlags(const GroupPosition &position, MQLONG flags)
{
    const bool inGroup = (flags & MQMF_MSG_IN_GROUP) != 0;
    if (position.logicalMessage) {
        const bool goesOn = (flags & MQMF_SEGMENT) != 0 && inGroup == position.group &&
                            ((flags & MQMF_LAST_MSG_IN_GROUP) != 0) == position.lastOfGroup;
        return goesOn ? MQRC_NONE : MQRC_INCOMPLETE_MSG;
    }
    return position.group && !inGroup ? MQRC_INCOMPLETE_GROUP : MQRC_NONE;
}

MQLONG judgeFields(const GroupPosition &position, const MQMD &md)
{
    if (!position.open()) return MQRC_NONE;
    if (const MQLONG reason = judgeFlags(position, md.MsgFlags)) return reason;
    MQMD next = md;
    setNext(position, next);
    const bool goesOn = std::memcmp(next.GroupId, md.GroupId, sizeof md.GroupId) == 0 &&
                        next.MsgSeqNumber == md.MsgSeqNumber && next.Offset == md.Offset;
    return goesOn ? MQRC_NONE : unfinished(position);
}

MQLONG judgeManner(const GroupPosition &position, bool persistent, bool syncpoint)
{
    if (!position.open()) return MQRC_NONE;
    if (persistent != position.persistent) return MQRC_INCONSISTENT_PERSISTENCE;
    return syncpoint == position.syncpoint ? MQRC_NONE : MQRC_INCONSISTENT_UOW;
}

void setNext(const GroupPosition &position, MQMD &md)
{
    std::copy_n(position.groupId, sizeof md.GroupId, md.GroupId);
    md.MsgSeqNumber = position.logicalMessage ? position.msgSeqNumber : position.msgSeqNumber + 1;
    md.Offset = position.logicalMessage ? position.nextOffset : 0;
}

Outcome judgeClose(const LogicalOrder &order)
{
    MQLONG reason = MQRC_NONE;
    for (const GroupPosition *position : {&order.put, &order.get, &order.browse})
        if (position->ordered && position->open() && reason != MQRC_INCOMPLETE_MSG) reason = unfinished(*position);
    return reason == MQRC_NONE ? success() : warning(reason);
}

} // namespace mqrig::qmgr::core
