#include "run_pass.h"

#include "common.h"
#include "connection.h"
#include "mqicalls.h"
#include "run.h"

#include <cerrno>

namespace {

constexpr int ExitFailure = 1;

/// How the connecting of a pass ended.
enum class Connecting {
    Done,       ///< every queue manager, or all up to one that is tried again: run what there is
    PassedOver, ///< nothing is run, what is connected is neither used nor closed
    Exit,       ///< the run ends
};

/// The report speaks of the arrays that grow by one connection.
void reportNoMemory(const RunParams &record, std::size_t index)
{
    const int error = errno;
    if (index == 0) {
        report_failure(nullptr, {"main"}, "malloc()", error, "malloc() failed. size=%zu\n", sizeof(RunParams));
        return;
    }
    const std::size_t records = record.InnerConnThreadCount != 0 ? index : index + 1;
    report_failure(nullptr, {"main"}, "realloc()", error, "realloc() failed. size=%zu\n", records * sizeof(RunParams));
}

/// After a failed connect: try it again in another pass, pass over it, or end the run.
Connecting afterConnectFailure(RunState &state, Connection &connection, Status status)
{
    RunParams &record = connection.record;
    flush_output();
    std::fprintf(stderr, "!!! Queue Manager Connect Fail %s !!!\n", connection.name);
    if (status != StatusMqiFailure) return Connecting::Exit;

    if (state.retries > 0) {
        state.retrying = true;
        --state.retries;
        ++state.passes;
        sleep_millisecond(&record, record.WaitMs);
    } else if (record.ContinueOnConnFail == 0) {
        return Connecting::Exit;
    }
    return record.ContinueOnConnFail != 0 ? Connecting::PassedOver : Connecting::Done;
}

/// False when the run ends: the registration failed, and -ca does not pass over it.
bool registerCallback(Connection &connection)
{
    RunParams &record = connection.record;
    if (record.Cbd.CallbackFunction == nullptr) return true;
    const Status status = MQSeriesCB(connection.hconn, &record);
    if (status == StatusOk) return true;
    flush_output();
    std::fprintf(stderr, "!!! Callback fuction Resistration Fail %s !!!\n", connection.name);
    return status == StatusMqiFailure && record.ContinueOnConnFail != 0;
}

/// Connects to every name of the list and opens the queues there. Threads that connect by themselves run here.
Connecting connectAll(RunState &state, Connections &connections, const RunParams &primary, const RunParams &secondary,
                      const CommandLine &operation)
{
    char names[MaxQMgrListLength + 1] = {};
    strncpy2(names, primary.QMgrName, MaxQMgrListLength);
    char *position = nullptr;
    // This tokenizer keeps an empty name between two separators: the default queue manager.
    const char *name = strtoknn_r(names, ",", &position);
    if (name == nullptr) {
        flush_output();
        std::fprintf(stderr, "Invalid queue manager name: %s\n", primary.QMgrName);
        return Connecting::Exit;
    }

    for (std::size_t index = 0; name != nullptr; ++index, name = strtoknn_r(nullptr, ",", &position)) {
        Connection *const connection = connections.add(primary, secondary, name);
        if (connection == nullptr) {
            reportNoMemory(primary, index);
            return Connecting::Exit;
        }
        RunParams *const record = &connection->record;
        if (record->InnerConnThreadCount != 0) {
            state.result = thread_main_i(record, &connection->secondary, operation.single, operation.paired);
            continue;
        }
        const Status status = connect(*connection);
        state.retrying = false;
        if (status != StatusOk) return afterConnectFailure(state, *connection, status);
        if (!registerCallback(*connection)) return Connecting::Exit;
        if (openQueues(*connection, operation) != StatusOk) return Connecting::Exit;
    }
    return Connecting::Done;
}

/// Several processes that wait for one file start together when it is created.
void waitForStartFile(RunParams params)
{
    if (params.SyncStartFile == nullptr) return;
    flush_output(); // opening a pipe waits as well
    std::FILE *file = nullptr;
    while ((file = std::fopen(params.SyncStartFile, "r")) == nullptr)
        sleep_millisecond(&params, 1);
    std::fclose(file);
}

Status runOperation(Connection &connection, const CommandLine &operation)
{
    RunParams *const record = &connection.record;
    RunParams *const secondary = &connection.secondary;
    if (record->ThreadCount != 0) {
        return thread_main(record, connection.hconn, secondary, operation.single, operation.paired);
    }
    if (operation.paired != nullptr) return operation.paired(record, connection.hconn, secondary);
    return operation.single(record, connection.hconn);
}

/// Threads on one connection share its unit of work, which ends when the whole group has. False when that fails.
bool settleThreads(Connection &connection, Status result)
{
    RunParams *const record = &connection.record;
    if (record->ThreadCount == 0 || record->SyncpointFlag == 0) return true;
    return settle_unit_of_work(record, connection.hconn, result) == StatusOk;
}

} // namespace

std::optional<int> runPass(RunState &state, const RunParams &primary, const RunParams &secondary,
                           const CommandLine &operation)
{
    Connections connections;
    const Connecting connecting = connectAll(state, connections, primary, secondary, operation);
    if (connecting == Connecting::Exit) return ExitFailure;
    if (connecting == Connecting::PassedOver || primary.InnerConnThreadCount != 0) return std::nullopt;

    waitForStartFile(primary);
    for (Connection *connection = connections.first(); connection != nullptr; connection = connection->next.get()) {
        if (!connection->connected) continue;
        state.result = runOperation(*connection, operation);
        if (!settleThreads(*connection, state.result)) return ExitFailure;
    }
    for (Connection *connection = connections.first(); connection != nullptr; connection = connection->next.get()) {
        if (!connection->connected) continue;
        const Status status = closeAndDisconnect(*connection, operation);
        if (state.result == StatusOk) state.result = status;
    }
    return std::nullopt;
}
