// Whether a group or a logical message is complete on its queue, and what belongs to it.
//
// The store has the members of a group in logical order beside delivery order, so each question is one walk over the
// members, never over the queue.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <map>
#include <tuple>
#include <vector>

#include "cmqc.h"
#include "qmgr/store/message.h"
#include "qmgr/store/transaction.h"

namespace mqrig::qmgr::core {

struct Member {
    store::MessageKey key;
    store::MessageHeader header;
};

// Whether both have the place of one logical message in a group.
inline bool isSameLogicalMessage(const MQMD &one, const MQMD &other)
{
    return std::memcmp(one.GroupId, other.GroupId, sizeof one.GroupId) == 0 && one.MsgSeqNumber == other.MsgSeqNumber;
}

// The segments of the logical message to which this message belongs, from the first to the last, or the message itself
// if it is no segment. Empty while one is missing. Of reports, only segments of a report of the same kind count.
std::vector<Member> segmentsOf(store::Transaction &transaction, const Member &message, std::int64_t now);

// MQGMO_ALL_MSGS_AVAILABLE and MQGMO_ALL_SEGMENTS_AVAILABLE, for the messages that one search meets. Remembers what it
// found out: messages of one group may come one after the other.
class Availability {
public:
    // `needs`: one of the two options or none. Then every message is available.
    Availability(store::Transaction &transaction, MQLONG needs, std::int64_t now)
        : transaction_(transaction), needs_(needs), now_(now)
    {
    }

    bool holds(const store::MessageKey &key, const store::MessageHeader &header)
    {
        return needs_ == MQGMO_NONE || holdsForMember(key, header);
    }

private:
    bool holdsForMember(const store::MessageKey &key, const store::MessageHeader &header);

    store::Transaction &transaction_;
    MQLONG needs_;
    std::int64_t now_;
    // By GroupId, MsgSeqNumber, MsgType and of reports Feedback; by GroupId alone for the whole group.
    using Walked = std::tuple<std::array<MQBYTE, 24>, MQLONG, MQLONG, MQLONG>;
    static Walked walkedFor(const MQMD &md, bool wholeGroup);
    std::map<Walked, bool> known_;
};

} // namespace mqrig::qmgr::core
