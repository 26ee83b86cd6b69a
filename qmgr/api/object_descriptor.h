// The MQOD of MQOPEN and MQPUT1.
#pragma once

#include "cmqc.h"
#include "qmgr/core/open.h"

namespace mqrig::qmgr::api {

// What of a checked and loaded MQOD is not honoured: distribution lists (MQRC_RECS_PRESENT_ERROR for an impossible
// count), and selection strings where `selects` says that they would count.
enum class Selects { No, Yes };
MQLONG checkObject(const MQOD &od, Selects selects);

// The names in it; valid as long as the descriptor.
core::ObjectName objectName(const MQOD &od);

} // namespace mqrig::qmgr::api
