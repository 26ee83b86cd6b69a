// Asynchronous puts: MQPUT and MQPUT1 whose programs do not wait for the outcome and ask for it later, with MQSTAT.
//
// Nothing between the program and its queue manager could be waited for here, so the put is made before the call
// returns. What the program sees is what it has asked for: the call answers MQRC_NONE whatever became of the message,
// few fields are returned, and the outcome is counted. A message that nothing promises to keep may be put so, and one
// whose unit of work can still be refused: where a persistent message of a unit of work is lost, so is the unit.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "cmqc.h"
#include "qmgr/objects/queue_definition.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::core {

struct Connection;

// What was put to, as the program named it and as it was found; names without padding.
struct AsyncTarget {
    MQLONG type = MQOT_Q;
    std::string_view name;
    std::string_view queueManager;
    std::string_view resolvedName{};
    std::string_view resolvedQueueManager{};
    MQLONG openOptions = 0;
    std::string_view objectString{}; // of a topic
};

// The asynchronous puts of a connection since MQSTAT last told of them.
struct AsyncPuts {
    MQLONG succeeded = 0;
    MQLONG warned = 0;
    MQLONG failed = 0;
    Outcome first; // the first failure, else the first warning, and what it happened to:
    MQLONG type = MQOT_Q;
    std::string name;
    std::string queueManager;
    std::string resolvedName;
    std::string resolvedQueueManager;
    MQLONG openOptions = 0;
    std::string objectString;
};

// What kind of put a program has asked for.
struct AsyncKind {
    bool asynchronous = false;
    bool losesUnit = false; // should it fail: its message is persistent and under syncpoint
};
// `options`: MQPMO_. `defaultResponse`: MQPRT_, of the queue or topic. `persistence`: MQPER_; what is still left to the
// queue counts as persistent.
AsyncKind asyncKind(MQLONG options, MQLONG defaultResponse, MQLONG persistence);
inline AsyncKind asyncKind(MQLONG options, const objects::QueueDefinition &queue, const MQMD &md)
{
    constexpr MQLONG asked = MQPMO_ASYNC_RESPONSE;
    if ((options & asked) == 0 && queue.defPutResponse != MQPRT_ASYNC_RESPONSE) [[likely]]
        return {};
    return asyncKind(options, queue.defPutResponse,
                     md.Persistence == MQPER_PERSISTENCE_AS_Q_DEF ? queue.defPersistence : md.Persistence);
}

// Counts the outcome of an asynchronous put, and answers what the call answers: success, or an outcome that is not of
// this message but of the connection.
Outcome noteAsyncPut(Connection &connection, const AsyncKind &kind, const Outcome &outcome, const AsyncTarget &target);

} // namespace mqrig::qmgr::core
