// Event messages: what the queue manager tells its administrators, in PCF on the SYSTEM.ADMIN.*.EVENT queues.
//
//   events                           on, when             queue                     parameters
//   depth high, depth low, full      PERFMEV, QDP*EV      SYSTEM.ADMIN.PERFM.EVENT  performanceEvent
//   put inhibited, get inhibited     INHIBTEV             SYSTEM.ADMIN.QMGR.EVENT   callEvent
//   unknown objects, bad alias base  LOCALEV              SYSTEM.ADMIN.QMGR.EVENT   callEvent
//   names of other queue managers    REMOTEEV             SYSTEM.ADMIN.QMGR.EVENT   callEvent
//   start and stop                   STRSTPEV             SYSTEM.ADMIN.QMGR.EVENT   startEvent, stopEvent
//
// An event message is in no unit of work: it is there at once, and stays when what caused it is backed out. Where its
// queue does not take it, it is lost; no call fails because of an event.
//
// How to add one: its reason in `switchOf` and its parameters in the routine of its kind, in events.cpp.
#pragma once

#include <cstdint>
#include <string_view>

#include "cmqc.h"
#include "cmqcfc.h"
#include "qmgr/core/connection.h"
#include "qmgr/core/open.h"
#include "qmgr/objects/queue_definition.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::core {

// Whether a depth has reached a limit that is given in percent of the queue's maximum.
inline bool isHigh(const objects::QueueDefinition &queue, std::uint32_t depth)
{
    return std::uint64_t{depth} * 100 >=
           static_cast<std::uint64_t>(queue.maxDepth) * static_cast<std::uint64_t>(queue.depthHighLimit);
}
inline bool isLow(const objects::QueueDefinition &queue, std::uint32_t depth)
{
    return std::uint64_t{depth} * 100 <=
           static_cast<std::uint64_t>(queue.maxDepth) * static_cast<std::uint64_t>(queue.depthLowLimit);
}

// MQRC_Q_DEPTH_HIGH, MQRC_Q_DEPTH_LOW or MQRC_Q_FULL has come about on the queue. Each event turns itself off and the
// others on, in the queue's definition; so of several programs that see a limit crossed one reports it. The statistics
// of the queue begin anew.
void performanceEvent(Connection &connection, const objects::QueueDefinition &queue, MQLONG reason) noexcept;

// A call about an object has failed, for a reason that may be an event's: other reasons are passed over. `name`: as in
// the object descriptor.
void callEvent(Connection &connection, const Outcome &outcome, const ObjectName &name) noexcept;

// The same for a call on a handle.
void callEvent(Connection &connection, const Outcome &outcome, const OpenObject &object) noexcept;

void startEvent(Connection &connection) noexcept;
// MQRQ_Q_MGR_STOPPING or MQRQ_Q_MGR_QUIESCING.
void stopEvent(Connection &connection, MQLONG qualifier) noexcept;

} // namespace mqrig::qmgr::core
