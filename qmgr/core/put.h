// MQPUT and MQPUT1.
#pragma once

#include <cstddef>
#include <memory>
#include <span>

#include "cmqc.h"
#include "qmgr/core/connection.h"
#include "qmgr/core/logical_order.h"
#include "qmgr/objects/catalog.h"
#include "qmgr/store/message.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::core {

// The most bytes that a message may have: 100 MiB.
constexpr std::size_t longestMessage = 104857600;

class DistributionHeader;

struct PutRequest {
    MQLONG options = MQPMO_NONE;      // checked: no two that exclude each other
    MQLONG openOptions = MQOO_OUTPUT; // MQOO_ bits of the handle; MQPUT1: those that its options ask for
    MQHOBJ contextHandle = MQHO_NONE; // MQPMO.Context
    std::unique_ptr<LogicalOrder> *logicalOrder = nullptr; // of the handle; MQPUT1 has none
    UnitOfWork *unit = nullptr;                            // that the message joins; none: as MQPMO_SYNCPOINT says
    const DistributionHeader *distribution = nullptr;      // whom a message on a transmission queue is for, if several

    bool has(MQLONG anyOf) const { return (options & anyOf) != 0; }
};

// Puts the message: `message.header.md` is the program's descriptor in version 2 and becomes that of the message,
// `message.body` is the program's buffer. For a queue elsewhere, a message made of it (transmission.h) goes on the
// transmission queue. Warnings: MQRC_PRIORITY_EXCEEDS_MAXIMUM, and those of placeInGroup (groups.h), whose failures
// come too. Failures: MQRC_PUT_INHIBITED, MQRC_Q_DELETED, MQRC_Q_FULL, MQRC_MSG_TOO_BIG_FOR_Q,
// MQRC_MSG_TOO_BIG_FOR_Q_MGR, MQRC_PERSISTENT_NOT_ALLOWED, MQRC_SYNCPOINT_LIMIT_REACHED, MQRC_Q_MGR_QUIESCING,
// MQRC_XQH_ERROR, those of descriptor and context, and those of the store.
Outcome putMessage(Connection &connection, const objects::QueueDefinition &queue, const PutRequest &request,
                   store::NewMessage &message);

// The parts of it.

// Checks the fields that the program gives, and fills in what it leaves to the queue manager, context aside.
Outcome completeDescriptor(Connection &connection, const objects::QueueDefinition &queue, const PutRequest &request,
                           MQMD &md);
// Writes the context that the options ask for.
Outcome completeContext(Connection &connection, const PutRequest &request, std::int64_t putTime, MQMD &md);

} // namespace mqrig::qmgr::core
