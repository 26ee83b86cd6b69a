/// A group of worker threads: started together on copies of one block, joined before the launcher returns.
#pragma once

#include "RunParams.h"
#include "status.h"

#include <pthread.h>

/// What a worker thread works on: its own copies of both records.
struct Worker {
    RunParams record;
    RunParams secondary;
    MQHCONN hconn;
    bool connected; ///< the connection stays when the group has ended, and with it its event handler
    SingleOperation single;
    PairedOperation paired;
    pthread_t thread;
};

/// Starts `count` threads, each on its own copy of `block`, and joins them in order. Their results are not collected.
/// `source` is the launcher's name in reports. A failure to set up ends the process.
///
/// The group's output lock is entered in every copy, and in `params`, the connection's own record, so that the lines
/// of an event handler stay whole too. Where one may come when the group has ended, the lock is kept to the end of the
/// process, and so are the copies that are the record of their own connection.
Status runWorkers(const char *source, RunParams *params, const Worker &block, MQLONG count, void *(*function)(void *));

/// Runs the worker's operation. Its thread id is set.
void runOperation(Worker &worker, MQHCONN hconn);
/// Enters the thread id in both records.
void setThreadId(Worker &worker, MQLONG threadId);
