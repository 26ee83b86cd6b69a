#include "qmgr/core/put.h"

#include "qmgr/core/groups.h"
#include "qmgr/core/private_unit.h"
#include "qmgr/core/put_steps.h"
#include "qmgr/core/reports.h"
#include "qmgr/core/transmission.h"
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

// On a transmission queue a message has not arrived yet.
bool reportsArrival(const objects::QueueDefinition &queue, const MQMD &md)
{
    return wantsArrivalReport(md) && queue.usage != MQUS_TRANSMISSION;
}

// The message and what goes with it: all of it or nothing.
Outcome putInUnit(Connection &connection, UnitOfWork &unit, const objects::QueueDefinition &queue,
                  const store::NewMessage &message)
{
    const std::size_t kept = unit.puts();
    if (const Outcome booked = bookPut(connection, unit, queue, message); booked.failed()) return booked;
    if (!reportsArrival(queue, message.header.md)) return success();
    const Outcome reported = reportArrival(connection, unit, message);
    if (reported.failed()) unit.takeBackPuts(*connection.store, kept);
    return reported;
}

Outcome putOutsideUnitOfWork(Connection &connection, const objects::QueueDefinition &queue,
                             const store::NewMessage &message)
{
    if (!reportsArrival(queue, message.header.md)) [[likely]]
        return putNow(*connection.store, queue, message);
    PrivateUnit unit(*connection.store);
    const Outcome put = putInUnit(connection, *unit, queue, message);
    return put.failed() ? put : unit.commit();
}

Outcome putInUnitOfWork(Connection &connection, const objects::QueueDefinition &queue, const store::NewMessage &message)
{
    UnitOfWork &unit = connection.unit;
    if (unit.size() >= static_cast<std::size_t>(connection.queueManager().maxUncommittedMsgs))
        return failure(MQRC_SYNCPOINT_LIMIT_REACHED);
    return putInUnit(connection, unit, queue, message);
}

// A message with its descriptor complete.
Outcome place(Connection &connection, const objects::QueueDefinition &queue, const PutRequest &request,
              store::NewMessage &message)
{
    if (const Outcome fits = checkLength(connection, queue, message.body.size()); fits.failed()) return fits;
    const MQMD &md = message.header.md;
    message.header.expiryDeadline = expiryDeadline(md, message.header.putTime);
    message.key = connection.store->newKey(queue.id, rankOf(queue, md.Priority));
    if (request.unit != nullptr) return putInUnit(connection, *request.unit, queue, message);
    return request.has(MQPMO_SYNCPOINT) ? putInUnitOfWork(connection, queue, message)
                                        : putOutsideUnitOfWork(connection, queue, message);
}

Outcome placeOnTransmissionQueue(Connection &connection, const objects::QueueDefinition &queue,
                                 const PutRequest &request, store::NewMessage &message)
{
    if (queue.remote) {
        TransmissionMessage onItsWay(connection, queue, message);
        return place(connection, queue, request, onItsWay.message());
    }
    const Outcome whole = checkOwnHeader(message);
    return whole.failed() ? whole : place(connection, queue, request, message);
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
    message.header.putTime = store::currentTime();
    if (const Outcome context = completeContext(connection, request, message.header.putTime, md); context.failed())
        return context;
    const Outcome put = queue.usage == MQUS_TRANSMISSION ? placeOnTransmissionQueue(connection, queue, request, message)
                                                         : place(connection, queue, request, message);
    if (put.failed()) return put;
    if (!alone && request.logicalOrder != nullptr) (*request.logicalOrder)->put = behind;
    return completed;
}

} // namespace mqrig::qmgr::core
