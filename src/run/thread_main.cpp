#include "run.h"

#include "worker_group.h"

#include <unistd.h>

namespace {

void *thread_function(void *block)
{
    Worker &worker = *static_cast<Worker *>(block);
    setThreadId(worker, gettid());
    runOperation(worker, worker.hconn);
    return nullptr;
}

} // namespace

Status thread_main(RunParams *params, MQHCONN hconn, RunParams *secondary, SingleOperation single,
                   PairedOperation paired)
{
    // The driver made the connection, which outlives the group.
    const Worker block = {*params, *secondary, hconn, true, single, paired, {}};
    return runWorkers("thread_main", params, block, params->ThreadCount, thread_function);
}
