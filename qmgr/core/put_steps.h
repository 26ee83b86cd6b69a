// The steps that puts of programs and of the queue manager itself have in common.
#pragma once

#include <cstddef>
#include <cstdint>

#include "cmqc.h"
#include "qmgr/core/connection.h"
#include "qmgr/core/events.h"
#include "qmgr/objects/queue_definition.h"
#include "qmgr/store/attachment.h"
#include "qmgr/store/message.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::core {

// Where a message of this priority stands among those of its queue.
std::uint8_t rankOf(const objects::QueueDefinition &queue, MQLONG priority);

// MQRC_MSG_TOO_BIG_FOR_Q, MQRC_MSG_TOO_BIG_FOR_Q_MGR.
Outcome checkLength(Connection &connection, const objects::QueueDefinition &queue, std::size_t length);

// MQRC_PERSISTENT_NOT_ALLOWED: a temporary queue does not outlive its creator, so nothing on it can be promised to.
inline Outcome checkPersistence(const objects::QueueDefinition &queue, const MQMD &md)
{
    const bool refused = md.Persistence == MQPER_PERSISTENT && queue.definitionType == MQQDT_TEMPORARY_DYNAMIC;
    return refused ? failure(MQRC_PERSISTENT_NOT_ALLOWED) : success();
}

// Microseconds since 1970; 0 for a message that never expires.
std::int64_t expiryDeadline(const MQMD &md, std::int64_t putTime);

// Runs `step` in a transaction that has found room on the queue: MQRC_Q_FULL.
template <class Step>
Outcome updateWithRoom(Connection &connection, const objects::QueueDefinition &queue, std::size_t bytes, Step &&step)
{
    for (;;) {
        const Outcome outcome = connection.store->update(bytes, [&](store::WriteTransaction &transaction) {
            if (transaction.queue(queue.id).depth >= static_cast<std::uint32_t>(queue.maxDepth))
                return failure(MQRC_Q_FULL);
            step(transaction);
            return success();
        });
        // What a killed program had booked makes room again.
        if (outcome.Reason == MQRC_Q_FULL) {
            if (connection.store->releaseDead()) continue;
            if (queue.depthMaxEvent == MQEVR_ENABLED) performanceEvent(connection, queue, MQRC_Q_FULL);
        }
        return outcome;
    }
}

// Takes back what was put since, unless all of it is to be kept.
class AllOrNone {
public:
    AllOrNone(store::Attachment &store, UnitOfWork &unit) : store_(store), unit_(unit), kept_(unit.puts()) {}
    ~AllOrNone()
    {
        if (!all_) unit_.takeBackPuts(store_, kept_);
    }
    AllOrNone(const AllOrNone &) = delete;
    AllOrNone &operator=(const AllOrNone &) = delete;
    void keep() { all_ = true; }

private:
    store::Attachment &store_;
    UnitOfWork &unit_;
    std::size_t kept_;
    bool all_ = false;
};

// Adds the message to the unit and books its place on the queue.
Outcome bookPut(Connection &connection, UnitOfWork &unit, const objects::QueueDefinition &queue,
                const store::NewMessage &message);

} // namespace mqrig::qmgr::core
