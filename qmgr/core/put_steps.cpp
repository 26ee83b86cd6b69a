#include "qmgr/core/put_steps.h"

#include <algorithm>

namespace mqrig::qmgr::core {
namespace {

constexpr std::uint8_t lowestRank = 9;

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
    unit.keepPut(message);
    Outcome booked = failure(MQRC_STORAGE_NOT_AVAILABLE);
    try {
        booked = updateWithRoom(*connection.store, queue, 0,
                                [&](store::WriteTransaction &transaction) { transaction.bookPut(queue.id); });
    } catch (...) {
        unit.dropLastPut();
        throw;
    }
    if (booked.failed()) unit.dropLastPut();
    return booked;
}

} // namespace mqrig::qmgr::core
