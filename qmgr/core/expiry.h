// Messages whose time is over: met by a search, never returned, removed by whoever met them.
#pragma once

#include <cstdint>

#include "cmqc.h"
#include "qmgr/core/connection.h"
#include "qmgr/core/search.h"
#include "qmgr/store/message.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::core {

// MQMD.Expiry counts tenths of a second down, and a message that is returned has at least one left.
MQLONG remainingExpiry(const store::MessageHeader &header);

// Removes those that are still there, except those whose sender wants to know of it.
void discardExpired(store::WriteTransaction &transaction, const ExpiredMessages &expired);

// Outside a transaction: removes those whose sender wants to know, each together with its report.
Outcome reportExpired(Connection &connection, const ExpiredMessages &expired);

// Both.
Outcome removeExpired(Connection &connection, const ExpiredMessages &expired);

} // namespace mqrig::qmgr::core
