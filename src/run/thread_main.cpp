#include "run.h"

#include "mqicalls/put_message_records.h"
#include "worker_group.h"

#include <unistd.h>

namespace {

void *thread_function(void *block)
{
    Worker &worker = *static_cast<Worker *>(block);
    setThreadId(worker, gettid());
    // Where the driver has opened a destination list, the copies of its record lead to arrays that every put writes to.
    WrittenRecords written;
    if (own_written_records(&worker.record, written) != StatusOk) return nullptr;
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
