// MQPUT and MQPUT1 to a topic: one unit of work over all subscriptions that match.
#pragma once

#include "cmqc.h"
#include "qmgr/core/connection.h"
#include "qmgr/core/open_topic.h"
#include "qmgr/core/put.h"
#include "qmgr/store/message.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::core {

// Options of MQPMO that only topics know; MQRC_OPTIONS_ERROR for queues.
inline constexpr MQLONG publishOptions =
    MQPMO_RETAIN | MQPMO_NOT_OWN_SUBS | MQPMO_SUPPRESS_REPLYTO | MQPMO_WARN_IF_NO_SUBS_MATCHED | MQPMO_SCOPE_QMGR;

// Publishes the message, which is as putMessage takes it; `level` is MQPMO.PubLevel. Each subscriber gets its own copy
// (publication.h); what a queue does not take goes on the dead-letter queue, and where that cannot be, PMSGDLV and
// NPMSGDLV of the topic say whether the whole publication fails: MQRC_PUBLICATION_FAILURE, and nobody has it. Warning
// MQRC_NO_SUBS_MATCHED. Other failures: MQRC_PUT_INHIBITED, MQRC_PUBSUB_INHIBITED, MQRC_PUT_NOT_RETAINED, those of
// descriptor, context and groups as of putMessage, and those of the store.
Outcome publish(Connection &connection, OpenTopic &topic, const PutRequest &request, MQLONG level,
                store::NewMessage &message);

} // namespace mqrig::qmgr::core
