// What a connection that follows its queue manager (core/reconnect.h) cannot ask for, because it rests on what the queue
// manager's end takes away.
#pragma once

#include "cmqc.h"
#include "qmgr/core/connection.h"

namespace mqrig::qmgr::api {

// MQRC_NONE or MQRC_RECONNECT_INCOMPATIBLE: the place in a group is lost.
inline MQLONG checkToFollow(const core::Connection &connection, const MQPMO &pmo)
{
    return connection.follows() && (pmo.Options & MQPMO_LOGICAL_ORDER) != 0 ? MQRC_RECONNECT_INCOMPATIBLE : MQRC_NONE;
}

// The same, or MQRC_RECONNECT_Q_MGR_REQD: a message token means something to one queue manager only.
inline MQLONG checkToFollow(const core::Connection &connection, const MQGMO &gmo)
{
    if (!connection.follows()) return MQRC_NONE;
    if ((gmo.Options & MQGMO_LOGICAL_ORDER) != 0) return MQRC_RECONNECT_INCOMPATIBLE;
    const bool anyQueueManager = (connection.options & MQCNO_RECONNECT_Q_MGR) == 0;
    return anyQueueManager && (gmo.MatchOptions & MQMO_MATCH_MSG_TOKEN) != 0 ? MQRC_RECONNECT_Q_MGR_REQD : MQRC_NONE;
}

} // namespace mqrig::qmgr::api
