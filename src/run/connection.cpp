#include "connection.h"

#include "attributes.h"
#include "common.h"
#include "keep.h"
#include "mqicalls.h"
#include "receive.h"

#include <new>
#include <utility>

Connections::~Connections()
{
    while (std::unique_ptr<Connection> connection = std::move(first_)) {
        first_ = std::move(connection->next);
        if (connection->connected) keepToTheEnd(std::move(connection));
    }
}

Connection *Connections::add(const RunParams &record, const RunParams &secondary, const char *name)
{
    std::unique_ptr<Connection> connection(new (std::nothrow) Connection);
    if (!connection) return nullptr;
    connection->record = record;
    connection->secondary = secondary;
    strncpy2(connection->name, name, sizeof connection->name - 1);
    connection->name[sizeof connection->name - 1] = '\0';
    connection->record.QMgrName = connection->name;
    connection->secondary.QMgrName = connection->name;

    std::unique_ptr<Connection> &place = last_ != nullptr ? last_->next : first_;
    place = std::move(connection);
    last_ = place.get();
    return last_;
}

Status connect(Connection &connection)
{
    RunParams *const record = &connection.record;
    const Status status =
        record->UseConnX != 0 ? MQSeriesConnX(&connection.hconn, record) : MQSeriesConn(&connection.hconn, record);
    connection.connected = status == StatusOk;
    return status;
}

namespace {

/// "*" and "**" stand for the reply-to queue of each message, which the operation opens by itself.
bool outputQueueIsNamed(const RunParams &record)
{
    return record.OutputQName[0] != '*';
}

Status openInput(Connection &connection, RunParams &record)
{
    return MQSeriesQOpenForInput(connection.hconn, &record.InputHobj, &record);
}

Status openOutput(Connection &connection, RunParams &record)
{
    return MQSeriesQOpenForOutput(connection.hconn, &record.OutputHobj, &record);
}

} // namespace

Status openQueues(Connection &connection, const CommandLine &operation)
{
    RunParams &record = connection.record;
    RunParams &secondary = connection.secondary;

    if (operation.paired == Queue2Queue) {
        secondary.QName = record.OutputQName;
        if (const Status status = openInput(connection, record); status != StatusOk) return status;
        return outputQueueIsNamed(record) ? openOutput(connection, secondary) : StatusOk;
    }
    if (operation.paired == SendReceive) {
        secondary.QName = record.InputQName;
        if (const Status status = openInput(connection, secondary); status != StatusOk) return status;
        return openOutput(connection, record);
    }
    if (operation.single == CallMQSET) return MQSeriesQOpen(connection.hconn, &record.ObjectHobj, &record, MQOO_SET);
    if (operation.single == CallMQINQ) {
        return MQSeriesQOpen(connection.hconn, &record.ObjectHobj, &record, MQOO_INQUIRE);
    }
    if (record.InputQName != nullptr) {
        if (const Status status = openInput(connection, record); status != StatusOk) return status;
    }
    return record.OutputQName != nullptr ? openOutput(connection, record) : StatusOk;
}

namespace {

Status closeQueues(Connection &connection, const CommandLine &operation)
{
    RunParams &record = connection.record;
    RunParams &secondary = connection.secondary;
    Status result = StatusOk;
    const auto closing = [&](RunParams &owner, MQHOBJ &hobj) {
        const Status status = MQSeriesQClose(connection.hconn, &hobj, &owner);
        if (result == StatusOk) result = status;
    };

    if (operation.paired == Queue2Queue) {
        closing(record, record.InputHobj);
        if (outputQueueIsNamed(record)) closing(secondary, secondary.OutputHobj);
    } else if (operation.paired == SendReceive) {
        closing(record, record.OutputHobj);
        closing(secondary, secondary.InputHobj);
    } else if (operation.single == CallMQSET || operation.single == CallMQINQ) {
        closing(record, record.ObjectHobj);
    } else {
        if (record.InputQName != nullptr) closing(record, record.InputHobj);
        if (record.OutputQName != nullptr) closing(record, record.OutputHobj);
    }
    return result;
}

} // namespace

Status closeAndDisconnect(Connection &connection, const CommandLine &operation)
{
    const Status closed = closeQueues(connection, operation);
    const Status disconnected = MQSeriesDisconn(&connection.hconn, &connection.record);
    // With -sd the wrapper succeeds and the connection stays.
    if (disconnected == StatusOk && connection.record.SkipDisc == 0) connection.connected = false;
    return closed != StatusOk ? closed : disconnected;
}
