#include "qmgr/command/status_attributes.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "qmgr/command/process_facts.h"
#include "qmgr/command/status_row.h"
#include "qmgr/objects/connection_tag.h"
#include "qmgr/objects/object_name.h"
#include "qmgr/objects/queue_counters.h"

namespace mqrig::qmgr::command {
namespace {

using objects::Access;
using objects::Attribute;
using objects::AttributeValue;
using objects::ObjectKind;
using objects::Word;

constexpr ObjectKind ofQueue = ObjectKind::LocalQueue;
constexpr ObjectKind ofConnection = ObjectKind::QueueManager;

constexpr Word noUncommitted[] = {{"NO", 0}};
constexpr Word user[] = {{"USER", MQAT_USER}};
constexpr Word queueStatus[] = {{"QUEUE", MQIACF_Q_STATUS}};
constexpr Word handleStatus[] = {{"HANDLE", MQIACF_Q_HANDLE}};
constexpr Word connectionInfo[] = {{"CONN", MQIACF_CONN_INFO_CONN}};
constexpr Word notMonitored[] = {{" ", MQMON_NOT_AVAILABLE}};
constexpr Word monitoring[] = {{"OFF", MQMON_OFF}};
constexpr Word noYes[] = {{"NO", MQQSO_NO}, {"YES", MQQSO_YES}};
constexpr Word inputs[] = {{"NO", MQQSO_NO}, {"SHARED", MQQSO_SHARED}, {"EXCL", MQQSO_EXCLUSIVE}};

// The form of a connection's id in the command language; it has no number in command messages.
constexpr MQLONG externalNameField = 0;

// In the order in which they are shown. What is always shown has the access of an identity. Times and ages are not
// collected: they are blank, as where a queue is not monitored.
constexpr Attribute queueRows[] = {
    statusText("QUEUE", MQCA_Q_NAME, ofQueue, MQ_Q_NAME_LENGTH, Access::Identity),
    statusNumber("TYPE", MQIACF_Q_STATUS_TYPE, ofQueue, queueStatus, Access::Identity),
    statusNumber("CURDEPTH", MQIA_CURRENT_Q_DEPTH, ofQueue, {}, Access::Identity),
    statusNumber("IPPROCS", MQIA_OPEN_INPUT_COUNT, ofQueue),
    statusText("LGETDATE", MQCACF_LAST_GET_DATE, ofQueue, MQ_DATE_LENGTH),
    statusText("LGETTIME", MQCACF_LAST_GET_TIME, ofQueue, MQ_TIME_LENGTH),
    statusText("LPUTDATE", MQCACF_LAST_PUT_DATE, ofQueue, MQ_DATE_LENGTH),
    statusText("LPUTTIME", MQCACF_LAST_PUT_TIME, ofQueue, MQ_TIME_LENGTH),
    statusNumber("MONQ", MQIA_MONITORING_Q, ofQueue, monitoring),
    statusNumber("MSGAGE", MQIACF_OLDEST_MSG_AGE, ofQueue, notMonitored),
    statusNumber("OPPROCS", MQIA_OPEN_OUTPUT_COUNT, ofQueue),
    statusNumber("UNCOM", MQIACF_UNCOMMITTED_MSGS, ofQueue, noUncommitted),
};

constexpr Attribute handleRows[] = {
    statusText("QUEUE", MQCA_Q_NAME, ofQueue, MQ_Q_NAME_LENGTH, Access::Identity),
    statusNumber("TYPE", MQIACF_Q_STATUS_TYPE, ofQueue, handleStatus, Access::Identity),
    statusText("APPLTAG", MQCACF_APPL_TAG, ofQueue, MQ_APPL_TAG_LENGTH),
    statusNumber("APPLTYPE", MQIA_APPL_TYPE, ofQueue, user),
    statusNumber("BROWSE", MQIACF_OPEN_BROWSE, ofQueue, noYes),
    statusNumber("INPUT", MQIACF_OPEN_INPUT_TYPE, ofQueue, inputs),
    statusNumber("OUTPUT", MQIACF_OPEN_OUTPUT, ofQueue, noYes),
    statusNumber("PID", MQIACF_PROCESS_ID, ofQueue),
    statusText("USERID", MQCACF_USER_IDENTIFIER, ofQueue, MQ_USER_ID_LENGTH),
};

constexpr Attribute connectionRows[] = {
    statusText("CONN", MQBACF_CONNECTION_ID, ofConnection, connectionIdDigits, Access::Identity),
    statusText("EXTCONN", externalNameField, ofConnection, connectionIdDigits, Access::Identity),
    statusNumber("TYPE", MQIACF_CONN_INFO_TYPE, ofConnection, connectionInfo, Access::Identity),
    statusText("APPLTAG", MQCACF_APPL_TAG, ofConnection, MQ_APPL_TAG_LENGTH),
    statusNumber("APPLTYPE", MQIA_APPL_TYPE, ofConnection, user),
    statusText("CONNTAG", MQBACF_CONN_TAG, ofConnection, MQ_CONN_TAG_LENGTH),
    statusNumber("PID", MQIACF_PROCESS_ID, ofConnection),
    statusText("USERID", MQCACF_USER_IDENTIFIER, ofConnection, MQ_USER_ID_LENGTH),
};

std::string idOf(const std::string &queueManager)
{
    std::string bytes = "AMQC" + queueManager;
    bytes.resize(16, ' ');
    return bytes;
}

std::string externalName(const std::string &queueManager)
{
    std::string digits;
    for (const char byte : idOf(queueManager)) {
        std::array<char, 3> pair{};
        std::snprintf(pair.data(), pair.size(), "%02X", static_cast<unsigned char>(byte));
        digits += pair.data();
    }
    return digits;
}

} // namespace

std::span<const Attribute> queueStatusAttributes()
{
    return queueRows;
}

std::span<const Attribute> handleAttributes()
{
    return handleRows;
}

std::span<const Attribute> connectionAttributes()
{
    return connectionRows;
}

AttributeValue statusOf(const InquiredObject &queue, const Attribute &attribute)
{
    const store::QueueStatus &status = queue.status;
    switch (attribute.selector) {
    case MQCA_Q_NAME:
        return {0, queue.definition.name()};
    case MQIACF_Q_STATUS_TYPE:
        return {MQIACF_Q_STATUS, {}};
    case MQIACF_UNCOMMITTED_MSGS:
        return {static_cast<MQLONG>(status.held + status.uncommitted), {}};
    case MQIA_MONITORING_Q:
        return {MQMON_OFF, {}};
    case MQIACF_OLDEST_MSG_AGE:
        return {MQMON_NOT_AVAILABLE, {}};
    default:
        if (attribute.isText()) return {};
        return {objects::countedValue(status, attribute.selector), {}};
    }
}

AttributeValue statusOf(const store::ConnectionInfo &connection, const std::string &queueManager,
                        const Attribute &attribute)
{
    switch (attribute.selector) {
    case MQBACF_CONNECTION_ID:
        return {0, connectionName(connection)};
    case externalNameField:
        return {0, externalName(queueManager)};
    case MQIACF_CONN_INFO_TYPE:
        return {MQIACF_CONN_INFO_CONN, {}};
    case MQCACF_APPL_TAG:
        return {0, connection.program.empty() ? programOf(connection.pid) : connection.program};
    case MQBACF_CONN_TAG:
        return {0, objects::connectionTag(queueManager, connection.number)};
    case MQIA_APPL_TYPE:
        return {MQAT_USER, {}};
    case MQIACF_PROCESS_ID:
        return {connection.pid, {}};
    case MQCACF_USER_IDENTIFIER:
        return {0, userOf(connection.pid)};
    default:
        return {};
    }
}

AttributeValue statusOf(const Handle &handle, const Attribute &attribute)
{
    const store::OpenCounts &opens = handle.open.opens;
    switch (attribute.selector) {
    case MQCA_Q_NAME:
        return {0, handle.queue};
    case MQIACF_Q_STATUS_TYPE:
        return {MQIACF_Q_HANDLE, {}};
    case MQIACF_OPEN_BROWSE:
        return {opens.browse > 0 ? MQQSO_YES : MQQSO_NO, {}};
    case MQIACF_OPEN_INPUT_TYPE:
        return {opens.exclusive > 0 ? MQQSO_EXCLUSIVE : opens.input > 0 ? MQQSO_SHARED : MQQSO_NO, {}};
    case MQIACF_OPEN_OUTPUT:
        return {opens.output > 0 ? MQQSO_YES : MQQSO_NO, {}};
    default:
        return statusOf(handle.open.connection, {}, attribute);
    }
}

bool isOpenFor(const store::OpenCounts &opens, MQLONG openType)
{
    switch (openType) {
    case MQQSOT_INPUT:
        return opens.input > 0;
    case MQQSOT_OUTPUT:
        return opens.output > 0;
    default:
        return true;
    }
}

std::vector<Handle> findHandles(store::Attachment &attachment, const std::string &genericName)
{
    std::vector<Handle> handles;
    const std::vector<store::OpenQueue> open = attachment.openQueues();
    for (const store::Definition &queue : attachment.definitions(MQOT_Q)) {
        if (!objects::matchesGeneric(genericName, queue.name)) continue;
        for (const store::OpenQueue &entry : open)
            if (entry.queue == queue.queue) handles.push_back({queue.name, entry});
    }
    return handles;
}

std::string connectionName(const store::ConnectionInfo &connection)
{
    std::array<char, 17> digits{};
    std::snprintf(digits.data(), digits.size(), "%016llX", static_cast<unsigned long long>(connection.number));
    return digits.data();
}

std::array<MQBYTE, MQ_CONNECTION_ID_LENGTH> connectionId(const store::ConnectionInfo &connection,
                                                         const std::string &queueManager)
{
    std::string bytes = idOf(queueManager);
    for (int shift = 56; shift >= 0; shift -= 8)
        bytes += static_cast<char>((connection.number >> shift) & 0xFF);
    std::array<MQBYTE, MQ_CONNECTION_ID_LENGTH> id{};
    std::memcpy(id.data(), bytes.data(), id.size());
    return id;
}

} // namespace mqrig::qmgr::command
