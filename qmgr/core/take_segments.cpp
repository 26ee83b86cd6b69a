// MQGET that removes a logical message with all its segments.
//
// The segments are put together over a snapshot, where nobody waits for the copying; the transaction behind it only
// locks them, if all are still there. From then on they go their way in one unit of work.
#include <algorithm>
#include <vector>

#include "qmgr/core/delivery.h"
#include "qmgr/core/locked_gets.h"
#include "qmgr/core/private_unit.h"
#include "qmgr/core/reports.h"
#include "qmgr/core/segments.h"
#include "qmgr/store/seams.h"

namespace mqrig::qmgr::core {
namespace {

// Whether a unit of work can take this many messages.
Outcome mayTake(Connection &connection, bool inUnitOfWork, const LogicalMessage &whole)
{
    const auto most = static_cast<std::size_t>(connection.queueManager().maxUncommittedMsgs);
    if (inUnitOfWork)
        return connection.unit.size() + whole.parts.size() > most ? failure(MQRC_SYNCPOINT_LIMIT_REACHED) : success();
    // What is persistent takes a unit of work of its own, and there can be one at a time.
    const bool needsOwn = whole.parts.size() > 1 && store::isPersistent(whole.header);
    const bool hasOne = connection.begun || !connection.unit.empty();
    return needsOwn && hasOne ? failure(MQRC_UOW_NOT_AVAILABLE) : success();
}

// All or none: false.
bool lockAll(store::WriteTransaction &transaction, const std::vector<store::TakenMessage> &messages)
{
    const bool there = std::all_of(messages.begin(), messages.end(), [&](const store::TakenMessage &message) {
        return transaction.find(message.key).has_value();
    });
    if (!there) return false;
    for (const store::TakenMessage &message : messages)
        transaction.lock(message.key);
    return true;
}

Outcome reportParts(Connection &connection, UnitOfWork &unit, const LogicalMessage &whole)
{
    for (const Member &part : whole.parts)
        if (const Outcome reported = reportDelivery(connection, unit, part.key, part.header); reported.failed())
            return reported;
    return success();
}

// The locked messages into the unit of work that the request names, or into one of their own.
Outcome takeLocked(Connection &connection, bool inUnitOfWork, const LogicalMessage &whole,
                   const std::vector<store::TakenMessage> &messages)
{
    LockedGets lock(*connection.store, messages);
    PrivateUnit own(connection);
    UnitOfWork &unit = inUnitOfWork ? connection.unit : *own;
    unit.roomForGet(messages.size());
    const std::size_t puts = unit.puts();
    if (const Outcome reported = reportParts(connection, unit, whole); reported.failed()) {
        unit.takeBackPuts(*connection.store, puts);
        return reported;
    }
    for (const store::TakenMessage &message : messages)
        unit.addGet(message);
    lock.belongToUnit();
    return own.commit();
}

} // namespace

std::optional<Outcome> takeSegments(Connection &connection, const GetRequest &request, GotMessage &got)
{
    std::optional<LogicalMessage> whole;
    const Outcome read = connection.store->read([&](store::ReadTransaction &transaction) {
        whole = assemble(transaction, {got.key, got.header}, store::currentTime());
        return success();
    });
    if (read.failed()) return read;
    if (!whole) return std::nullopt;

    got.header = whole->header;
    const Outcome delivered = prepareDelivery(request, whole->stored, got);
    copyDelivery(request, whole->stored, got);
    if (delivered.Reason == MQRC_TRUNCATED_MSG_FAILED) return delivered;
    const bool inUnitOfWork = request.inUnitOfWork(store::isPersistent(got.header));
    if (const Outcome may = mayTake(connection, inUnitOfWork, *whole); may.failed()) return may;

    std::vector<store::TakenMessage> messages;
    messages.reserve(whole->parts.size());
    for (const Member &part : whole->parts)
        messages.push_back({part.key, store::isPersistent(part.header)});
    bool there = false;
    const Outcome locked = connection.store->update(0, [&](store::WriteTransaction &transaction) {
        there = lockAll(transaction, messages);
        return success();
    });
    if (locked.failed()) return locked;
    if (!there) return std::nullopt;
    const Outcome taken = takeLocked(connection, inUnitOfWork, *whole, messages);
    if (taken.failed()) return taken;
    return delivered.ok() ? whole->outcome : delivered;
}

} // namespace mqrig::qmgr::core
