#include "qmgr/core/put.h"

#include <algorithm>

#include "qmgr/store/seams.h"

namespace mqrig::qmgr::core {
namespace {

constexpr std::uint8_t lowestRank = 9;

// Where the message stands among those of its queue. First in, first out: one rank, the lowest, so that messages
// put before MSGDLVSQ was altered are not overtaken.
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

// Runs `step` in a transaction that has found room on the queue.
template <class Step>
Outcome updateWithRoom(store::Attachment &store, const objects::QueueDefinition &queue, std::size_t bytes, Step &&step)
{
    for (;;) {
        const Outcome outcome = store.update(bytes, [&](store::WriteTransaction &transaction) {
            if (transaction.queue(queue.id).depth >= static_cast<std::uint32_t>(queue.maxDepth))
                return failure(MQRC_Q_FULL);
            step(transaction);
            return success();
        });
        // What a killed program had booked makes room again.
        if (outcome.Reason == MQRC_Q_FULL && store.releaseDead()) continue;
        return outcome;
    }
}

Outcome putNow(store::Attachment &store, const objects::QueueDefinition &queue, const store::NewMessage &message)
{
    store::Ticket ticket = 0;
    // Never 0 bytes, also without a body: what is said to store nothing may use the space that gets need when all else
    // is full.
    const std::size_t bytes = sizeof message.header + message.body.size();
    const Outcome stored = updateWithRoom(
        store, queue, bytes, [&](store::WriteTransaction &transaction) { ticket = transaction.put(message); });
    return stored.failed() ? stored : store.harden(ticket);
}

Outcome putInUnitOfWork(Connection &connection, const objects::QueueDefinition &queue, const store::NewMessage &message)
{
    UnitOfWork &unit = connection.unit;
    if (unit.size() >= static_cast<std::size_t>(connection.queueManager().maxUncommittedMsgs))
        return failure(MQRC_SYNCPOINT_LIMIT_REACHED);
    unit.keepPut(message);
    const Outcome booked = updateWithRoom(*connection.store, queue, 0,
                                          [&](store::WriteTransaction &transaction) { transaction.bookPut(queue.id); });
    if (booked.failed()) unit.dropLastPut();
    return booked;
}

// Expiry is in tenths of a second.
std::int64_t deadlineOf(const MQMD &md, std::int64_t putTime)
{
    constexpr std::int64_t tenth = 100000;
    return md.Expiry == MQEI_UNLIMITED ? 0 : putTime + md.Expiry * tenth;
}

} // namespace

Outcome putMessage(Connection &connection, const objects::QueueDefinition &queue, const PutRequest &request,
                   store::NewMessage &message)
{
    if ((request.openOptions & MQOO_OUTPUT) == 0) return failure(MQRC_NOT_OPEN_FOR_OUTPUT);
    store::Attachment &store = *connection.store;
    if (request.has(MQPMO_FAIL_IF_QUIESCING) && store.state() == store::State::Quiescing)
        return failure(MQRC_Q_MGR_QUIESCING);
    if (queue.inhibitPut == MQQA_PUT_INHIBITED) return failure(MQRC_PUT_INHIBITED);

    MQMD &md = message.header.md;
    const Outcome completed = completeDescriptor(connection, queue, request, md);
    if (completed.failed()) return completed;
    if (const Outcome fits = checkLength(connection, queue, message.body.size()); fits.failed()) return fits;
    message.header.putTime = store::currentTime();
    if (const Outcome context = completeContext(connection, request, message.header.putTime, md); context.failed())
        return context;

    message.header.expiryDeadline = deadlineOf(md, message.header.putTime);
    message.key = store.newKey(queue.id, rankOf(queue, md.Priority));
    const Outcome put =
        request.has(MQPMO_SYNCPOINT) ? putInUnitOfWork(connection, queue, message) : putNow(store, queue, message);
    return put.failed() ? put : completed;
}

} // namespace mqrig::qmgr::core
