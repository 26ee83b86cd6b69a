// Report messages: what the sender of a message asked in MQMD.Report to be told about it.
//
//   report      made by
//   COA         the put, when the message is on its queue; not on a transmission queue, where it has not arrived
//   COD         the get that removes the message
//   expiration  whoever meets the message after its time (expiry.h)
//
// An exception is reported by the channel that cannot deliver a message, and there are no channels.
//
// A report stands in the same unit of work as what it reports: one is never seen without the other. It goes to the
// message's reply-to queue, else to the dead-letter queue; where neither takes it, it is dropped and the call goes on.
// Failed answers below are those of the store only: the caller then takes back what was to be reported.
#pragma once

#include <cstddef>
#include <span>

#include "cmqc.h"
#include "qmgr/core/connection.h"
#include "qmgr/core/unit_of_work.h"
#include "qmgr/store/message.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::core {

// For the paths that every message takes: one test.
inline bool wantsArrivalReport(const MQMD &md)
{
    return (md.Report & MQRO_COA) != 0;
}
inline bool wantsDeliveryReport(const MQMD &md)
{
    return (md.Report & MQRO_COD) != 0;
}
inline bool wantsExpirationReport(const MQMD &md)
{
    return (md.Report & MQRO_EXPIRATION) != 0;
}

// Whether each kind of report is asked for with one amount of data: the MQI's names are no bits to be combined.
bool areReportOptionsValid(MQLONG report);

// About a message that was just put, with its body. A message that does not ask for the report gets none.
Outcome reportArrival(Connection &connection, UnitOfWork &unit, const store::NewMessage &message);
// About a message that this connection has locked to remove it; the body is read from the store.
Outcome reportDelivery(Connection &connection, UnitOfWork &unit, const store::MessageKey &key,
                       const store::MessageHeader &header);
Outcome reportExpiration(Connection &connection, UnitOfWork &unit, const store::MessageKey &key,
                         const store::MessageHeader &header);

} // namespace mqrig::qmgr::core
