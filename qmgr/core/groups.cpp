#include "qmgr/core/groups.h"

#include <algorithm>
#include <cstring>

namespace mqrig::qmgr::core {
namespace {

bool isNone(const MQBYTE24 &id)
{
    return std::all_of(std::begin(id), std::end(id), [](MQBYTE byte) { return byte == 0; });
}

// MQPMO_LOGICAL_ORDER: whatever the program had in the fields.
Outcome makeFields(Connection &connection, const GroupPosition &position, bool syncpoint, MQMD &md)
{
    if (const MQLONG reason = judgeFlags(position, md.MsgFlags)) return failure(reason);
    const bool persistent = md.Persistence == MQPER_PERSISTENT;
    if (const MQLONG reason = judgeManner(position, persistent, syncpoint)) return failure(reason);
    makeSingle(md);
    if (position.open())
        setNext(position, md);
    else if ((md.MsgFlags & groupingFlags) != 0)
        connection.newIdentifier(md.GroupId);
    return success();
}

// Without it: the program's own values, as far as they mean something.
Outcome takeFields(Connection &connection, const GroupPosition &position, bool syncpoint, MQMD &md)
{
    const MQMD given = md;
    makeSingle(md);
    if ((md.MsgFlags & groupingFlags) != 0) {
        std::memcpy(md.GroupId, given.GroupId, sizeof md.GroupId);
        if (isNone(md.GroupId)) connection.newIdentifier(md.GroupId);
    }
    if ((md.MsgFlags & MQMF_MSG_IN_GROUP) != 0) md.MsgSeqNumber = given.MsgSeqNumber;
    if ((md.MsgFlags & MQMF_SEGMENT) != 0) md.Offset = given.Offset;
    if (!position.ordered) return success();
    MQLONG reason = judgeFields(position, md);
    if (reason == MQRC_NONE) reason = judgeManner(position, md.Persistence == MQPER_PERSISTENT, syncpoint);
    return reason == MQRC_NONE ? success() : warning(reason);
}

// Of a segment: the length of what it stands for, which for a report is a segment put elsewhere.
Outcome setOriginalLength(MQLONG length, MQLONG given, MQMD &md)
{
    const bool last = (md.MsgFlags & MQMF_LAST_SEGMENT) != 0;
    if (length == 0 && !last) return failure(MQRC_SEGMENT_LENGTH_ZERO);
    if (md.MsgType != MQMT_REPORT) {
        md.OriginalLength = length;
        return success();
    }
    constexpr auto most = static_cast<MQLONG>(longestMessage);
    if (given < length || given < (last ? 0 : 1) || given > most) return failure(MQRC_ORIGINAL_LENGTH_ERROR);
    md.OriginalLength = given;
    return success();
}

} // namespace

void makeSingle(MQMD &md)
{
    std::memset(md.GroupId, 0, sizeof md.GroupId);
    md.MsgSeqNumber = 1;
    md.Offset = 0;
    md.OriginalLength = MQOL_UNDEFINED;
}

Outcome placeInGroup(Connection &connection, const PutRequest &request, std::size_t length, MQMD &md,
                     GroupPosition &behind)
{
    GroupPosition position; // MQPUT1 begins and ends with nothing current
    if (request.logicalOrder != nullptr) {
        if (*request.logicalOrder == nullptr) *request.logicalOrder = std::make_unique<LogicalOrder>();
        position = (*request.logicalOrder)->put;
    }
    const bool ordered = request.has(MQPMO_LOGICAL_ORDER);
    const bool syncpoint = request.has(MQPMO_SYNCPOINT);
    const MQLONG originalLength = md.OriginalLength;
    md.MsgFlags = impliedFlags(md.MsgFlags);
    Outcome outcome =
        ordered ? makeFields(connection, position, syncpoint, md) : takeFields(connection, position, syncpoint, md);
    if (outcome.failed()) return outcome;

    if (md.MsgSeqNumber < 1 || md.MsgSeqNumber > highestSequenceNumber) return failure(MQRC_MSG_SEQ_NUMBER_ERROR);
    if ((md.MsgFlags & MQMF_SEGMENT) != 0) {
        if (md.Offset < 0 || md.Offset > highestOffset) return failure(MQRC_OFFSET_ERROR);
        const Outcome set = setOriginalLength(static_cast<MQLONG>(length), originalLength, md);
        if (set.failed()) return set;
        if (md.OriginalLength > highestOffset - md.Offset) return failure(MQRC_OFFSET_ERROR);
    }
    behind = positionBehind(md, syncpoint, ordered);
    return outcome;
}

} // namespace mqrig::qmgr::core
