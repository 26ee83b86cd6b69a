// What MQCONN and MQCONNX hand to the core.
#pragma once

#include "cmqc.h"
#include "qmgr/core/connection.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::api {

// Checks the options of MQCONNX: MQRC_CNO_ERROR, MQRC_OPTIONS_ERROR, MQRC_CD_ERROR, MQRC_CSP_ERROR,
// MQRC_HOST_NOT_AVAILABLE. Credentials and TLS settings are for a connection through a channel or for a user
// registry, neither of which there is: they are accepted when well formed. `cno` is the program's own structure,
// which the offsets in it count from, `loaded` its copy.
Outcome checkConnectOptions(const void *cno, const MQCNO &loaded);

// Connects and leaves the handle, or MQHC_UNUSABLE_HCONN, in *pHconn.
Outcome connectTo(PMQCHAR pQMgrName, core::ConnectRequest request, PMQHCONN pHconn);

} // namespace mqrig::qmgr::api
