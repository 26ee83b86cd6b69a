// MQDISC.
#pragma once

#include "qmgr/core/connections.h"

namespace mqrig::qmgr::core {

// Ends a connection that was found: its unit of work is committed, whatever it holds is given back, its handle is no
// longer known. Where the queue manager has ended meanwhile, only the last: the answer is that of the use.
Outcome disconnect(ConnectionUse &use);

} // namespace mqrig::qmgr::core
