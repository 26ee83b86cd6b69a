// Puts that the queue manager makes itself: report, trigger and event messages, answers to commands.
//
// Such a put belongs to a unit of work that the caller names: booked on its queue at once, visible when that unit is
// committed, gone when it is backed out. What shall be visible at once goes into a PrivateUnit of its own. No handle
// is needed and no authority asked for, but the queue's attributes hold as for any put.
//
// How to make one
//   1. `message.header.md = queueManagerDescriptor(connection, MQFMT_...)`, then the fields that differ.
//   2. `message.body`: the caller's memory; it is copied.
//   3. putByQueueManager, putOrDeadLetter (dead_letter.h) where the message must not get lost.
//   4. Commit the unit.
#pragma once

#include "cmqc.h"
#include "qmgr/core/connection.h"
#include "qmgr/core/unit_of_work.h"
#include "qmgr/objects/catalog.h"
#include "qmgr/store/message.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::core {

// Whether a put failed for the store's reasons, not its queue's: what belongs together with it cannot be either.
bool isOfStore(const Outcome &outcome);

// The descriptor of a message that the queue manager makes: a datagram without identifiers (MsgId is made by the
// put), priority and persistence as the queue's definition has them, no reply queue, this queue manager in ReplyToQMgr,
// no identity, this queue manager as its origin, put now. Version 2.
MQMD queueManagerDescriptor(Connection &connection, const char *format);

// Origin of a message that the queue manager puts: MQAT_QMGR, its name, now.
void setQueueManagerOrigin(Connection &connection, MQMD &md);

// Puts on a queue. Completes `message`: key, put time, deadline, MsgId where there is none, priority and
// persistence. Failures, which leave the unit as it was: MQRC_PUT_INHIBITED, MQRC_PERSISTENT_NOT_ALLOWED, MQRC_Q_FULL,
// MQRC_MSG_TOO_BIG_FOR_Q, MQRC_MSG_TOO_BIG_FOR_Q_MGR, MQRC_Q_DELETED, and those of the store.
Outcome putByQueueManager(Connection &connection, UnitOfWork &unit, const objects::QueueHold &hold,
                          store::NewMessage &message);

} // namespace mqrig::qmgr::core
