// Connections that follow their queue manager: made with MQCNO_RECONNECT or MQCNO_RECONNECT_Q_MGR, they survive an end
// of the queue manager that asks for it (`rigqm end -r`).
//
// Nobody watches over a connection for this. The next call on it, or a call that waits in it, or else the thread that
// calls its event handler finds that the queue manager has ended, and looks for its next life, while other calls on the
// connection wait. Then the handles are opened again under their numbers, and the call goes on. What a unit of work
// held is backed out, and the program is told by MQRC_BACKED_OUT when it goes on with the unit.
//
// An end that asks for reconnection is an orderly one: what was logged is finished, nothing is logged afterwards. A
// call that the end has caught on its way has therefore either been done or has not happened at all, and is made again.
#pragma once

#include <chrono>
#include <span>

#include "cmqc.h"
#include "qmgr/core/connection.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::core {

// When attempts are made. MQ's values; tests have no time for them.
struct ReconnectTimes {
    std::span<const std::chrono::milliseconds> delays; // before each attempt; the last one again and again
    std::chrono::milliseconds timeout;                 // from the beginning
};
extern ReconnectTimes reconnectTimes;

// What whoever waits for the connection does when the queue manager has ended: reconnects, if the connection follows.
// Otherwise, or when it could not: the reason once, then MQRC_CONNECTION_BROKEN. The reasons: MQRC_Q_MGR_STOPPING;
// MQRC_RECONNECT_TIMED_OUT, MQRC_RECONNECT_QMID_MISMATCH where another queue manager has the name,
// MQRC_RECONNECT_FAILED where a handle could not be opened again or the event handler wanted no more attempts.
Outcome afterTheEnd(Connection &connection, const Outcome &ended);

// Whether calls on the connection may go on; the first step of every call, and of one that has waited.
// MQRC_HCONN_ERROR in a forked process.
inline Outcome checkConnection(Connection &connection)
{
    const Outcome alive = connection.store->check();
    return alive.failed() ? afterTheEnd(connection, alive) : alive;
}

// Whether the call that has answered this has not happened and may be made again after reconnecting.
bool isInterrupted(const Connection &connection, const Outcome &outcome);

} // namespace mqrig::qmgr::core
