// The dead-letter queue: where the queue manager puts its own messages that their queue does not take.
#pragma once

#include "cmqc.h"
#include "qmgr/core/connection.h"
#include "qmgr/core/open.h"
#include "qmgr/core/unit_of_work.h"
#include "qmgr/store/message.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::core {

// Puts the message on the queue that `destination` names; if that cannot be, on the dead-letter queue, with an MQDLH
// that says why; a message with MQRO_DISCARD_MSG is dropped instead. Failed: the message is on no queue, because of the
// reason answered, that of its own queue.
Outcome putOrDeadLetter(Connection &connection, UnitOfWork &unit, const ObjectName &destination,
                        store::NewMessage &message);

// Puts the message on the dead-letter queue (DEADQ of the queue manager) behind an MQDLH with `reason`, an MQRC_ or
// MQFB_ value. Fails where there is no dead-letter queue (MQRC_UNKNOWN_OBJECT_NAME) or it does not take the message.
Outcome putOnDeadLetterQueue(Connection &connection, UnitOfWork &unit, MQLONG reason, const ObjectName &destination,
                             const store::NewMessage &message);

} // namespace mqrig::qmgr::core
