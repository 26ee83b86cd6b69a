#include "qmgr/core/put_steps.h"

#include <algorithm>

#include "qmgr/core/events.h"
#include "qmgr/core/trigger.h"
#include "qmgr/objects/object_name.h"

namespace mqrig::qmgr::core {
namespace {

constexpr std::uint8_t lowestRank = 9;

// `look` sees the queue with the put counted.
template <class Look>
Outcome book(Connection &connection, UnitOfWork &unit, const objects::QueueDefinition &queue,
             const store::NewMessage &message, Look &&look)
{
    unit.keepPut(message);
    Outcome booked = failure(MQRC_STORAGE_NOT_AVAILABLE);
    try {
        booked = updateWithRoom(connection, queue, 0, [&](store::WriteTransaction &transaction) {
            transaction.bookPut(queue.id);
            look(transaction);
        });
    } catch (...) {
        unit.dropLastPut();
        throw;
    }
    if (booked.failed()) unit.dropLastPut();
    return booked;
}

// With what a put on this queue may bring about: a trigger message in the same unit, a depth event.
Outcome bookWatchedPut(Connection &connection, UnitOfWork &unit, const objects::QueueDefinition &queue,
                       const store::NewMessage &message)
{
    const std::size_t kept = unit.puts();
    const objects::FoundQueue found = connection.catalog.definition(objects::fieldText(queue.name));
    if (found.outcome.failed()) return failure(MQRC_Q_DELETED);
    Trigger trigger(connection, unit, found.hold, TriggerCause::Put);
    std::uint32_t depth = 0;
    const Outcome booked = book(connection, unit, queue, message, [&](store::WriteTransaction &transaction) {
        trigger.judge(transaction, message.header.md.Priority);
        depth = transaction.queue(queue.id).depth;
    });
    if (booked.failed()) return booked;
    Outcome triggered = failure(MQRC_STORAGE_NOT_AVAILABLE);
    try {
        triggered = trigger.put();
    } catch (...) {
        unit.takeBackPuts(*connection.store, kept);
        throw;
    }
    if (triggered.failed()) {
        unit.takeBackPuts(*connection.store, kept);
        return triggered;
    }
    if (queue.depthHighEvent == MQEVR_ENABLED && isHigh(queue, depth))
        performanceEvent(connection, queue, MQRC_Q_DEPTH_HIGH);
    return booked;
}

} // namespace

// First in, first out: one rank, the lowest, so that messages put before MSGDLVSQ was altered are not overtaken.
std::uint8_t rankOf(const objects::QueueDefinition &queue, MQLONG priority)
{
    if (queue.msgDeliverySequence == MQMDS_FIFO) return lowestRank;
    return static_cast<std::uint8_t>(lowestRank - std::min<MQLONG>(priority, lowestRank));
}

Outcome checkLength(Connection &connection, const objects::QueueDefinition &queue, std::size_t length)
{
    if (length > static_cast<std::size_t>(queue.maxMsgLength)) return failure(MQRC_MSG_TOO_BIG_FOR_Q);
    if (length > static_cast<std::size_t>(connection.queueManager().maxMsgLength))
        return failure(MQRC_MSG_TOO_BIG_FOR_Q_MGR);
    return success();
}

// Expiry is in tenths of a second.
std::int64_t expiryDeadline(const MQMD &md, std::int64_t putTime)
{
    constexpr std::int64_t tenth = 100000;
    return md.Expiry == MQEI_UNLIMITED ? 0 : putTime + md.Expiry * tenth;
}

Outcome bookPut(Connection &connection, UnitOfWork &unit, const objects::QueueDefinition &queue,
                const store::NewMessage &message)
{
    if (queue.watchesPuts) return bookWatchedPut(connection, unit, queue, message);
    return book(connection, unit, queue, message, [](store::WriteTransaction &) {});
}

} // namespace mqrig::qmgr::core
