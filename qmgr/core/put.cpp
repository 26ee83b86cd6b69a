#include "qmgr/core/put.h"

#include "qmgr/core/groups.h"
#include "qmgr/core/put_steps.h"
#include "qmgr/store/seams.h"

namespace mqrig::qmgr::core {
namespace {

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
    return bookPut(connection, unit, queue, message);
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
    Outcome completed = completeDescriptor(connection, queue, request, md);
    if (completed.failed()) return completed;
    const bool alone = standsAlone(request, md);
    GroupPosition behind;
    if (alone) {
        makeSingle(md);
    } else {
        const Outcome placed = placeInGroup(connection, request, message.body.size(), md, behind);
        if (placed.failed()) return placed;
        if (completed.ok()) completed = placed;
    }
    if (const Outcome fits = checkLength(connection, queue, message.body.size()); fits.failed()) return fits;
    message.header.putTime = store::currentTime();
    if (const Outcome context = completeContext(connection, request, message.header.putTime, md); context.failed())
        return context;

    message.header.expiryDeadline = expiryDeadline(md, message.header.putTime);
    message.key = store.newKey(queue.id, rankOf(queue, md.Priority));
    const Outcome put =
        request.has(MQPMO_SYNCPOINT) ? putInUnitOfWork(connection, queue, message) : putNow(store, queue, message);
    if (put.failed()) return put;
    if (!alone && request.logicalOrder != nullptr) (*request.logicalOrder)->put = behind;
    return completed;
}

} // namespace mqrig::qmgr::core
