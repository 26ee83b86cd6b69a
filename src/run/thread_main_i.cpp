#include "run.h"

#include "common.h"
#include "mqicalls.h"
#include "worker_group.h"

namespace {

/// Unlike the driver, a thread chooses by the connect options and not by `UseConnX`.
Status connect(RunParams &record, MQHCONN &hconn)
{
    const bool plain = record.Cd.ConnectionName[0] == '\0' && record.Cno.Options == 0;
    return plain ? MQSeriesConn(&hconn, &record) : MQSeriesConnX(&hconn, &record);
}

void *thread_function_i(void *block)
{
    Worker &worker = *static_cast<Worker *>(block);
    // A pthread_t is a number here; its lower half is the id that is shown.
    setThreadId(worker, static_cast<MQLONG>(static_cast<MQULONG>(pthread_self())));

    MQHCONN hconn = MQHC_UNUSABLE_HCONN;
    if (connect(worker.record, hconn) != StatusOk) {
        printf_te(&worker.record, "Queue Manager Connect Fail.\n");
        return nullptr;
    }
    worker.connected = true;
    if (worker.record.Cbd.CallbackFunction != nullptr) MQSeriesCB(hconn, &worker.record);
    runOperation(worker, hconn);
    // With -sd the wrapper succeeds and the connection stays.
    worker.connected = MQSeriesDisconn(&hconn, &worker.record) != StatusOk || worker.record.SkipDisc != 0;
    return nullptr;
}

} // namespace

Status thread_main_i(RunParams *params, RunParams *secondary, SingleOperation single, PairedOperation paired)
{
    const Worker block = {*params, *secondary, MQHC_UNUSABLE_HCONN, false, single, paired, {}};
    return runWorkers("thread_main_i", params, block, params->InnerConnThreadCount, thread_function_i);
}
