// What MQPUT and MQPUT1 answer when their put is asynchronous (qmgr/core/async_puts.h).
#pragma once

#include "cmqc.h"
#include "qmgr/api/put_call.h"
#include "qmgr/api/structures.h"
#include "qmgr/core/async_puts.h"
#include "qmgr/core/connection.h"
#include "qmgr/core/distribution_list.h"
#include "qmgr/core/open.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::api {

// Counts the outcome and returns the few fields that an asynchronous put returns. `name`: what was put to, as MQOPEN or
// MQPUT1 had it; `found`: the names that it led to.
Outcome finishAsyncPut(core::Connection &connection, const core::AsyncKind &kind, const Outcome &outcome,
                       const core::ObjectName &name, MQLONG openOptions, const ResolvedNames &found,
                       const PutCall &call, void *msgDesc);

// The same for each destination of a list.
Outcome finishAsyncPut(core::Connection &connection, const core::AsyncKind &kind, const Outcome &outcome,
                       const core::DistributionList &list, MQLONG openOptions, const PutCall &call, void *msgDesc);

} // namespace mqrig::qmgr::api
