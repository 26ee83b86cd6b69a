// The attributes of a queue that are not stored but counted: CURDEPTH, IPPROCS, OPPROCS.
#pragma once

#include "cmqc.h"
#include "qmgr/store/transaction.h"

namespace mqrig::qmgr::objects {

// The value of a dynamic attribute (Access::Dynamic) from the store's counters of the queue.
MQLONG countedValue(const store::QueueStatus &status, MQLONG selector);

} // namespace mqrig::qmgr::objects
