#include "qmgr/core/system_put.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "qmgr/core/put_steps.h"
#include "qmgr/core/transmission.h"
#include "qmgr/objects/object_name.h"
#include "qmgr/store/seams.h"

namespace mqrig::qmgr::core {
namespace {

constexpr MQMD defaultDescriptor = {MQMD_DEFAULT};

bool isNone(const MQBYTE24 &id)
{
    return std::all_of(std::begin(id), std::end(id), [](MQBYTE byte) { return byte == 0; });
}

// A message with its descriptor complete.
Outcome book(Connection &connection, UnitOfWork &unit, const objects::QueueDefinition &queue,
             store::NewMessage &message)
{
    const MQMD &md = message.header.md;
    if (const Outcome may = checkPersistence(queue, md); may.failed()) return may;
    if (const Outcome fits = checkLength(connection, queue, message.body.size() - message.header.coreLength);
        fits.failed())
        return fits;
    message.header.expiryDeadline = expiryDeadline(md, message.header.putTime);
    message.key = connection.store->newKey(queue.id, rankOf(queue, md.Priority));
    return bookPut(connection, unit, queue, message);
}

} // namespace

bool isOfStore(const Outcome &outcome)
{
    switch (outcome.Reason) {
    case MQRC_STORAGE_NOT_AVAILABLE:
    case MQRC_RESOURCE_PROBLEM:
    case MQRC_CONNECTION_BROKEN:
    case MQRC_UNEXPECTED_ERROR:
        return outcome.failed();
    default:
        return false;
    }
}

MQMD queueManagerDescriptor(Connection &connection, const char *format)
{
    MQMD md = defaultDescriptor;
    md.Version = MQMD_VERSION_2;
    md.MsgType = MQMT_DATAGRAM;
    md.CodedCharSetId = connection.queueManager().codedCharSetId;
    std::memcpy(md.Format, format, sizeof md.Format);
    objects::fillField(md.ReplyToQ, sizeof md.ReplyToQ, {});
    std::copy(connection.queueManagerName.begin(), connection.queueManagerName.end(), md.ReplyToQMgr);
    setNoContext(md);
    setQueueManagerOrigin(connection, md);
    return md;
}

void setQueueManagerOrigin(Connection &connection, MQMD &md)
{
    md.PutApplType = MQAT_QMGR;
    std::copy_n(connection.queueManagerName.begin(), sizeof md.PutApplName, md.PutApplName);
    connection.clock.write(store::currentTime(), md.PutDate, md.PutTime);
    objects::fillField(md.ApplOriginData, sizeof md.ApplOriginData, {});
}

Outcome putByQueueManager(Connection &connection, UnitOfWork &unit, const objects::QueueHold &hold,
                          store::NewMessage &message)
{
    const objects::QueueDefinition &queue = *hold.queue;
    if (queue.inhibitPut == MQQA_PUT_INHIBITED) return failure(MQRC_PUT_INHIBITED);
    MQMD &md = message.header.md;
    if (md.Priority == MQPRI_PRIORITY_AS_Q_DEF) md.Priority = queue.defPriority;
    if (md.Persistence == MQPER_PERSISTENCE_AS_Q_DEF) md.Persistence = queue.defPersistence;
    if (isNone(md.MsgId)) connection.newIdentifier(md.MsgId);
    message.header.putTime = store::currentTime();
    if (!queue.remote) return book(connection, unit, queue, message);
    TransmissionMessage onItsWay(connection, queue, message);
    return book(connection, unit, queue, onItsWay.message());
}

} // namespace mqrig::qmgr::core
