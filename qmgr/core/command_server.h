// The command server: runs the command messages (PCF) on SYSTEM.ADMIN.COMMAND.QUEUE and puts their replies.
//
// There is no process of the queue manager's own. Whoever puts a request runs it before the call that made it visible
// returns; should that program die first, the next one to make any call, or one that waits, finds that requests wait
// (store/requests.cpp says why nobody overlooks one). One server at a time, requests in the order of their queue.
//
// What is guaranteed. Getting a request and putting all its replies are one unit of work on a connection of the
// server's own; the program's unit of work, handles and locks have no part in it. The effect on object definitions is
// on disk before that unit is committed. So a request is run at least once and answered exactly once:
//   killed before the effect     the request comes back to its queue and is run by the next server;
//   killed between effect and    the request comes back with its BackoutCount raised, and is run again. It is then
//   commit                       known to be a repetition: Create and Copy that find what they would have made, and
//                                Delete that finds nothing, answer success; Reset Queue Statistics answers what the
//                                run that was killed had counted, too; Change, Clear and the inquiries do the same
//                                once more;
//   killed after the commit      nothing is left to be done.
// A loss of power instead of a kill is the same, except that a count raised just before may be lost with it: then a
// repeated Create may answer MQRCCF_OBJECT_ALREADY_EXISTS, a repeated Delete MQRC_UNKNOWN_OBJECT_NAME.
// A request that was begun often and never finished goes to the dead-letter queue.
#pragma once

#include "qmgr/core/connection.h"

namespace mqrig::qmgr::core {

enum class Served {
    Done,      // none is left, or none can be served now
    ByAnother, // another thread or process is at it or holds one; should it die, somebody has to look again
};

// Serves what waits. Never called inside a transaction of the store; the caller holds the program's connection.
Served serveRequests(Connection &program) noexcept;

} // namespace mqrig::qmgr::core
