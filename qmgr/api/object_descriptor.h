// The MQOD of MQOPEN and MQPUT1.
#pragma once

#include <string>

#include "cmqc.h"
#include "qmgr/api/structures.h"
#include "qmgr/core/connection.h"
#include "qmgr/core/distribution_list.h"
#include "qmgr/core/open.h"

namespace mqrig::qmgr::api {

// What is wrong with a checked and loaded MQOD: MQRC_RECS_PRESENT_ERROR, MQRC_SELECTOR_INVALID_FOR_TYPE for a selection
// string where it could select nothing. `selects`: messages are to be got or browsed.
enum class Selects { No, Yes };
MQLONG checkObject(const MQOD &od, Selects selects);

// The names in it; valid as long as the descriptor.
core::ObjectName objectName(const MQOD &od);

// The long names of a topic: `string` in UTF-8. `descriptor`: the program's own. MQRC_NONE, MQRC_OBJECT_STRING_ERROR,
// MQRC_RES_OBJECT_STRING_ERROR.
MQLONG loadObjectString(core::Connection &connection, const MQOD &od, const void *descriptor, std::string &string);
// Tells the topic that was opened or published on.
void storeTopic(core::Connection &connection, const core::OpenTopic &topic, void *descriptor);

// What MQOPEN and the puts tell of the queue that a name led to: the queue elsewhere, or, where `told` says so, the
// local one that keeps the messages.
enum class Told { Destination, LocalQueue };
inline Told toldBy(const MQPMO &pmo)
{
    return (pmo.Options & MQPMO_RESOLVE_LOCAL_Q) != 0 ? Told::LocalQueue : Told::Destination;
}
ResolvedNames resolvedNames(const core::Connection &connection, const objects::QueueDefinition &queue, Told told);
// One queue that was opened or put to.
DestinationCounts countsOf(const objects::QueueDefinition &queue);
// All that were.
DestinationCounts countsOf(const core::DistributionList &list);

} // namespace mqrig::qmgr::api
