#include "qmgr/core/put.h"

#include <algorithm>

#include "qmgr/core/groups.h"
#include "qmgr/core/private_unit.h"
#include "qmgr/core/put_properties.h"
#include "qmgr/core/put_steps.h"
#include "qmgr/core/reports.h"
#include "qmgr/core/segments.h"
#include "qmgr/core/transmission.h"
#include "qmgr/store/seams.h"

namespace mqrig::qmgr::core {
namespace {

Outcome putNow(Connection &connection, const objects::QueueDefinition &queue, const store::NewMessage &message)
{
    store::Ticket ticket = 0;
    // Never 0 bytes, also without a body: what is said to store nothing may use the space that gets need when all else
    // is full.
    const std::size_t bytes = sizeof message.header + message.body.size();
    const Outcome stored = updateWithRoom(
        connection, queue, bytes, [&](store::WriteTransaction &transaction) { ticket = transaction.put(message); });
    return stored.failed() ? stored : connection.store->harden(ticket);
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
    if (!reportsArrival(queue, message.header.md)) return bookPut(connection, unit, queue, message);
    AllOrNone all(*connection.store, unit);
    if (const Outcome booked = bookPut(connection, unit, queue, message); booked.failed()) return booked;
    const Outcome reported = reportArrival(connection, unit, message);
    if (!reported.failed()) all.keep();
    return reported;
}

Outcome putOutsideUnitOfWork(Connection &connection, const objects::QueueDefinition &queue,
                             const store::NewMessage &message)
{
    if (!queue.watchesPuts && !reportsArrival(queue, message.header.md)) [[likely]]
        return putNow(connection, queue, message);
    PrivateUnit unit(connection);
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
    if (const Outcome fits = checkLength(connection, queue, bodyLengthOf(message)); fits.failed()) return fits;
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
        TransmissionMessage onItsWay(connection, queue, message, request.distribution);
        return place(connection, queue, request, onItsWay.message());
    }
    const Outcome whole = checkOwnHeader(message);
    return whole.failed() ? whole : place(connection, queue, request, message);
}

Outcome placeWhole(Connection &connection, const objects::QueueDefinition &queue, const PutRequest &request,
                   store::NewMessage &message)
{
    return queue.usage == MQUS_TRANSMISSION ? placeOnTransmissionQueue(connection, queue, request, message)
                                            : place(connection, queue, request, message);
}

// How long a body can be, with the headers that a message on its way elsewhere gets.
std::size_t longestBody(Connection &connection, const objects::QueueDefinition &queue)
{
    const auto most = static_cast<std::size_t>(std::min(queue.maxMsgLength, connection.queueManager().maxMsgLength));
    const std::size_t headers = queue.usage == MQUS_TRANSMISSION && queue.remote ? sizeof(MQXQH) + sizeof(MQMDE) : 0;
    return most - std::min(most, headers);
}

// All segments of a message that is too long, in one unit of work.
Outcome placeSegments(Connection &connection, const objects::QueueDefinition &queue, const PutRequest &request,
                      store::NewMessage &message, std::size_t most)
{
    SegmentCutter cutter(connection, message, most);
    if (!cutter.possible()) return placeWhole(connection, queue, request, message); // which says that it is too long
    const bool own = request.unit == nullptr && !request.has(MQPMO_SYNCPOINT);
    if (own && store::isPersistent(message.header) && (connection.begun || !connection.unit.empty()))
        return failure(MQRC_UOW_NOT_AVAILABLE);

    PrivateUnit privateUnit(connection);
    UnitOfWork &unit = own ? *privateUnit : request.unit != nullptr ? *request.unit : connection.unit;
    PutRequest segmentRequest = request;
    if (own) segmentRequest.unit = &unit;
    AllOrNone segments(*connection.store, unit);
    while (cutter.more()) {
        store::NewMessage segment = cutter.next();
        const Outcome placed = placeWhole(connection, queue, segmentRequest, segment);
        if (placed.failed()) return placed;
    }
    segments.keep();
    return own ? privateUnit.commit() : success();
}

} // namespace

Outcome putMessage(Connection &connection, const objects::QueueDefinition &queue, const PutRequest &request,
                   store::NewMessage &message)
{
    if ((request.openOptions & MQOO_OUTPUT) == 0) return failure(MQRC_NOT_OPEN_FOR_OUTPUT);
    store::Attachment &store = *connection.store;
    if (request.has(MQPMO_FAIL_IF_QUIESCING) && store.state() == store::State::Quiescing)
        return failure(MQRC_Q_MGR_QUIESCING);
    if (request.has(MQPMO_SYNCPOINT) && connection.unit.lost()) return failure(MQRC_BACKED_OUT);
    if (queue.inhibitPut == MQQA_PUT_INHIBITED) return failure(MQRC_PUT_INHIBITED);

    MQMD &md = message.header.md;
    Outcome completed = completeDescriptor(connection, queue, request, md);
    if (completed.failed()) return completed;
    const bool alone = standsAlone(request, md);
    GroupPosition behind;
    if (alone) {
        makeSingle(md);
    } else {
        const Outcome placed = placeInGroup(connection, request, bodyLengthOf(message), md, behind);
        if (placed.failed()) return placed;
        if (completed.ok()) completed = placed;
    }
    message.header.putTime = store::currentTime();
    if (const Outcome context = completeContext(connection, request, message.header.putTime, md); context.failed())
        return context;
    std::size_t most = 0;
    const bool tooLong = (md.MsgFlags & MQMF_SEGMENTATION_ALLOWED) != 0 &&
                         bodyLengthOf(message) > (most = longestBody(connection, queue));
    const Outcome put = tooLong ? placeSegments(connection, queue, request, message, most)
                                : placeWhole(connection, queue, request, message);
    if (put.failed()) return put;
    if (!alone && request.logicalOrder != nullptr) (*request.logicalOrder)->put = behind;
    return completed;
}

} // namespace mqrig::qmgr::core
