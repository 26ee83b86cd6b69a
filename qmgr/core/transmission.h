// Messages for other queue managers, as they lie on a transmission queue.
//
//   separate MQMD        made by the queue manager: what programs that read the transmission queue see
//   MQXQH                where the message is going, and the program's MQMD in version 1
//   MQDH                 to whom, if that are several
//   MQMDE                what version 2 has beyond that, where it is not what every message has
//   data
//
// Properties in front of the data stay in front of everything.
#pragma once

#include <cstddef>
#include <memory>

#include "cmqc.h"
#include "qmgr/core/connection.h"
#include "qmgr/core/distribution_header.h"
#include "qmgr/objects/queue_definition.h"
#include "qmgr/store/message.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::core {

// Bits of MQMD.Report and MQMD.MsgFlags that are refused in a message that stays here.
inline constexpr MQLONG reportsOnlyElsewhere = 0x00038000;
inline constexpr MQLONG flagsOnlyElsewhere = MQMF_ACCEPT_UNSUP_IF_XMIT_MASK;

class TransmissionMessage {
public:
    // `original`: complete, context included. `queue`: the transmission queue with the names of the destination.
    // `distribution`: the destinations, where they are several.
    TransmissionMessage(Connection &connection, const objects::QueueDefinition &queue,
                        const store::NewMessage &original, const DistributionHeader *distribution = nullptr);

    // Valid as long as this object.
    store::NewMessage &message() { return message_; }

private:
    std::unique_ptr<std::byte[]> body_;
    store::NewMessage message_;
};

// What a program puts on a transmission queue itself. MQRC_XQH_ERROR: it says that it begins with an MQXQH, and does
// not.
Outcome checkOwnHeader(const store::NewMessage &message);

} // namespace mqrig::qmgr::core
