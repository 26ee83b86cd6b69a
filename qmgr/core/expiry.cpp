#include "qmgr/core/expiry.h"

#include <algorithm>
#include <optional>

#include "qmgr/core/private_unit.h"
#include "qmgr/core/reports.h"
#include "qmgr/store/seams.h"

namespace mqrig::qmgr::core {
namespace {

// Several programs may meet the message at once: the one that locks it reports it. Whoever is killed before the
// report is stored leaves the message as it was, to be met again.
Outcome reportAndRemove(Connection &connection, const store::MessageKey &key)
{
    PrivateUnit unit(connection);
    unit->roomForGet();
    std::optional<store::MessageHeader> header;
    const Outcome locked = connection.store->update(0, [&](store::WriteTransaction &transaction) {
        header = transaction.find(key);
        if (header) transaction.lock(key);
        return success();
    });
    if (locked.failed() || !header) return locked;
    unit->addGet({key, store::isPersistent(*header)});
    if (const Outcome reported = reportExpiration(connection, *unit, key, *header); reported.failed()) return reported;
    return unit.commit();
}

} // namespace

MQLONG remainingExpiry(const store::MessageHeader &header)
{
    if (header.expiryDeadline == 0) return MQEI_UNLIMITED;
    constexpr std::int64_t tenth = 100000;
    const std::int64_t left = (header.expiryDeadline - store::currentTime() + tenth - 1) / tenth;
    return static_cast<MQLONG>(std::max<std::int64_t>(left, 1));
}

void discardExpired(store::WriteTransaction &transaction, const ExpiredMessages &expired)
{
    for (const store::MessageKey &key : expired)
        if (const auto header = transaction.find(key); header && !wantsExpirationReport(header->md))
            transaction.discard(key);
}

Outcome reportExpired(Connection &connection, const ExpiredMessages &expired)
{
    if (!expired.anyReports()) return success();
    for (const store::MessageKey &key : expired)
        if (const Outcome removed = reportAndRemove(connection, key); removed.failed()) return removed;
    return success();
}

Outcome removeExpired(Connection &connection, const ExpiredMessages &expired)
{
    if (expired.empty()) return success();
    const Outcome discarded = connection.store->update(0, [&](store::WriteTransaction &transaction) {
        discardExpired(transaction, expired);
        return success();
    });
    return discarded.failed() ? discarded : reportExpired(connection, expired);
}

} // namespace mqrig::qmgr::core
