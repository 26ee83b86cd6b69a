// Logical messages that consist of segments: putting them together for MQGET, and cutting them up for MQPUT.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "qmgr/core/connection.h"
#include "qmgr/core/get.h"
#include "qmgr/core/group_walk.h"
#include "qmgr/store/message.h"
#include "qmgr/store/outcome.h"
#include "qmgr/store/transaction.h"

namespace mqrig::qmgr::core {

// Segments as one message: the header is that of the first one with the flags of an only segment.
struct LogicalMessage {
    std::vector<Member> parts;
    store::MessageHeader header;
    std::vector<std::byte> stored; // as the store keeps a message: properties, body
    // Warning: MQRC_INCONSISTENT_CCSIDS or MQRC_INCONSISTENT_ENCODINGS, and only the segments before the one that
    // differs are put together.
    Outcome outcome;
};

// Nothing while a segment is missing. `first` is the message at the beginning.
std::optional<LogicalMessage> assemble(store::Transaction &transaction, const Member &first, std::int64_t now);

// MQGMO_COMPLETE_MSG: takes the logical message that begins with the message `got` names, and makes `got` the whole of
// it. Nothing if a segment is missing. Beside the reasons of any get: MQRC_UOW_NOT_AVAILABLE.
std::optional<Outcome> takeSegments(Connection &connection, const GetRequest &request, GotMessage &got);

// The segments that a message that is too long is cut into, one after the other.
class SegmentCutter {
public:
    // `message`: complete but for its key, MQMF_SEGMENTATION_ALLOWED. `most`: bytes of body that a message may have.
    SegmentCutter(Connection &connection, const store::NewMessage &message, std::size_t most);

    // Whether it can be cut: no header of the MQI is cut into two.
    bool possible() const { return possible_; }
    bool more() const { return offset_ < length_; }
    store::NewMessage next();

private:
    Connection &connection_;
    const store::NewMessage &message_;
    std::size_t length_;
    std::size_t size_;
    std::size_t offset_ = 0;
    bool possible_;
};

} // namespace mqrig::qmgr::core
