// Messages in groups and segments, as tests put and get them.
#pragma once

#include "fixture.h"

namespace mqrig::qmgr::testing {

inline MQMD withFlags(MQLONG flags)
{
    MQMD md = version2Md();
    md.MsgFlags = flags;
    return md;
}

// The fields of a group as the queue has them.
struct Place {
    std::string groupId;
    MQLONG msgSeqNumber;
    MQLONG offset;
    MQLONG flags;
    MQLONG originalLength = MQOL_UNDEFINED;

    bool operator==(const Place &) const = default;
};
inline std::ostream &operator<<(std::ostream &out, const Place &place)
{
    return out << ::testing::PrintToString(place.groupId) << " seq " << place.msgSeqNumber << " offset " << place.offset
               << " flags " << place.flags << " length " << place.originalLength;
}
inline Place placeOf(const MQMD &md)
{
    return {bytes(md.GroupId), md.MsgSeqNumber, md.Offset, md.MsgFlags, md.OriginalLength};
}

class GroupTest : public OpenQueueTest {
public:
    using Bodies = std::vector<std::string>;

    Codes putWith(MQLONG flags, MQLONG options, std::string_view body = "x")
    {
        return put(hconn, q1, body, withFlags(flags), pmoWith(options));
    }
    Codes putInOrder(MQLONG flags, std::string_view body = "x")
    {
        return putWith(flags, MQPMO_LOGICAL_ORDER | MQPMO_NO_SYNCPOINT, body);
    }

    // By hand, without logical order.
    struct Piece {
        std::string_view group;
        MQLONG msgSeqNumber;
        MQLONG flags;
        MQLONG offset = 0;
        MQLONG priority = MQPRI_PRIORITY_AS_Q_DEF;
        MQLONG persistence = MQPER_NOT_PERSISTENT;
    };
    Codes putPiece(const Piece &piece, std::string_view body) { return put(hconn, q1, body, mdOf(piece)); }
    static MQMD mdOf(const Piece &piece)
    {
        MQMD md = withFlags(piece.flags);
        setBytes(md.GroupId, piece.group);
        md.MsgSeqNumber = piece.msgSeqNumber;
        md.Offset = piece.offset;
        md.Priority = piece.priority;
        md.Persistence = piece.persistence;
        return md;
    }

    Got next(MQLONG options = MQGMO_NO_SYNCPOINT, MQLONG match = MQMO_NONE, MQMD md = version2Md())
    {
        MQGMO gmo = gmoWith(options, MQGMO_VERSION_2);
        gmo.MatchOptions = match;
        return get(hconn, q1, md, gmo);
    }
    // Bodies until nothing comes any more; a warning stands behind its body.
    Bodies all(MQLONG options)
    {
        Bodies bodies;
        for (;;) {
            const Got got = next(options);
            if (got.codes.CompCode == MQCC_FAILED) {
                EXPECT_EQ(got.codes, failed(MQRC_NO_MSG_AVAILABLE));
                return bodies;
            }
            bodies.push_back(got.body);
            if (got.codes.CompCode == MQCC_WARNING) bodies.push_back(std::to_string(got.codes.Reason));
        }
    }
    // The same in a browse from the beginning.
    Bodies browsed(MQLONG options)
    {
        const Got first = next(MQGMO_BROWSE_FIRST | options);
        if (first.codes != ok) return {};
        Bodies bodies = all(MQGMO_BROWSE_NEXT | options);
        bodies.insert(bodies.begin(), first.body);
        return bodies;
    }
};

} // namespace mqrig::qmgr::testing
