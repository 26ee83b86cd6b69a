// Inquire Queue Status, Inquire Queue Manager Status, Inquire Connection: what is counted and who is connected, as of
// now.
#include <algorithm>
#include <ctime>
#include <string_view>

#include "qmgr/command/pcf_commands.h"
#include "qmgr/command/status_attributes.h"

namespace mqrig::qmgr::command {
namespace {

using objects::Attribute;
using objects::ObjectKind;

// What a queue manager's status has beside its name.
struct QueueManagerStatus {
    std::string date;
    std::string time;
};

QueueManagerStatus startOf(const store::Attachment &attachment)
{
    const auto seconds = static_cast<std::time_t>(attachment.startTime() / 1000000);
    std::tm parts{};
    localtime_r(&seconds, &parts);
    char date[16];
    char time[16];
    std::strftime(date, sizeof date, "%Y-%m-%d", &parts);
    std::strftime(time, sizeof time, "%H.%M.%S", &parts);
    return {date, time};
}

constexpr MQLONG queueManagerStatusSelectors[] = {
    MQCA_Q_MGR_NAME,         MQIACF_Q_MGR_STATUS,     MQIACF_CHINIT_STATUS,    MQIACF_CMD_SERVER_STATUS,
    MQIACF_CONNECTION_COUNT, MQCACF_Q_MGR_START_DATE, MQCACF_Q_MGR_START_TIME,
};

bool isSelected(const PcfSelection &selection, MQLONG selector)
{
    const auto &selectors = selection.selectors;
    return selection.all || std::find(selectors.begin(), selectors.end(), selector) != selectors.end();
}

// The connections that the command's id or generic id names.
struct PcfConnections {
    PcfFault fault;
    std::vector<store::ConnectionInfo> connections;
};
PcfConnections readConnections(const PcfCommand &command)
{
    const PcfParameter *whole = command.find(MQBACF_CONNECTION_ID);
    const PcfParameter *generic = command.find(MQBACF_GENERIC_CONNECTION_ID);
    if (whole == nullptr && generic == nullptr) return {faultOf(MQRCCF_PARM_MISSING, MQBACF_CONNECTION_ID), {}};
    if (whole != nullptr && generic != nullptr)
        return {faultOf(MQRCCF_PARM_CONFLICT, MQBACF_GENERIC_CONNECTION_ID), {}};
    const std::string &wanted = (whole != nullptr ? whole : generic)->texts.front();
    const bool fits =
        whole != nullptr ? wanted.size() == MQ_CONNECTION_ID_LENGTH : wanted.size() <= MQ_CONNECTION_ID_LENGTH;
    if (!fits) {
        const MQLONG id = whole != nullptr ? MQBACF_CONNECTION_ID : MQBACF_GENERIC_CONNECTION_ID;
        return {faultOf(MQRCCF_CFBS_STRING_LENGTH_ERR, id), {}};
    }
    PcfConnections read{{}, command.attachment.connections()};
    std::erase_if(read.connections, [&](const store::ConnectionInfo &connection) {
        const auto id = connectionId(connection, command.attachment.queueManagerName());
        return !std::equal(wanted.begin(), wanted.end(), id.begin(),
                           [](char a, MQBYTE b) { return static_cast<MQBYTE>(a) == b; });
    });
    return read;
}

// The whole field, as in MQCNO.
std::array<MQBYTE, MQ_CONN_TAG_LENGTH> tagBytes(const std::string &tag)
{
    std::array<MQBYTE, MQ_CONN_TAG_LENGTH> bytes{};
    std::copy_n(tag.begin(), std::min(tag.size(), bytes.size()), bytes.begin());
    return bytes;
}

} // namespace

void inquireQueueStatus(const PcfCommand &command, PcfReplies &replies)
{
    const MQLONG type = command.number(MQIACF_Q_STATUS_TYPE).value_or(MQIACF_Q_STATUS);
    if (type != MQIACF_Q_STATUS && type != MQIACF_Q_HANDLE)
        return replies.fail(faultOf(MQRCCF_PARM_VALUE_ERROR, MQIACF_Q_STATUS_TYPE));
    const MQLONG openType = command.number(MQIACF_OPEN_TYPE).value_or(MQQSOT_ALL);
    if (openType < MQQSOT_ALL || openType > MQQSOT_OUTPUT)
        return replies.fail(faultOf(MQRCCF_PARM_VALUE_ERROR, MQIACF_OPEN_TYPE));
    const auto rows = type == MQIACF_Q_HANDLE ? handleAttributes() : queueStatusAttributes();
    const PcfSelection selection = readSelection(command, MQIACF_Q_STATUS_ATTRS, rows);
    const PcfFilter filter = readFilter(command, rows);
    for (const PcfFault &fault : {selection.fault, filter.fault})
        if (fault) replies.fail(fault);
    if (replies.failed()) return;

    const std::string name = command.text(MQCA_Q_NAME);
    const InquiredObjects inquired = inquireObjects(command.attachment, name, objects::allQueues);
    if (!inquired.outcome.ok()) return replies.judge(inquired.outcome, MQCA_Q_NAME);
    constexpr MQLONG always[] = {MQCA_Q_NAME, MQIACF_Q_STATUS_TYPE};
    const auto write = [&](const auto &thing) {
        const auto value = [&](const Attribute &attribute) { return statusOf(thing, attribute); };
        if (filter.filter && !filter.filter->holdsFor(*filter.attribute, value(*filter.attribute))) return;
        writeAttributes(replies.add(), rows, ObjectKind::LocalQueue, selection, always, value);
    };
    bool anyLocal = false;
    for (const InquiredObject &queue : inquired.objects) {
        if (queue.definition.kind() != ObjectKind::LocalQueue) continue;
        anyLocal = true;
        if (type == MQIACF_Q_STATUS && isOpenFor(queue.status.opens, openType)) write(queue);
    }
    if (type == MQIACF_Q_HANDLE)
        for (const Handle &handle : findHandles(command.attachment, name))
            if (isOpenFor(handle.open.opens, openType)) write(handle);
    if (!replies.empty()) return;
    // Queues of another kind have no status.
    replies.fail(faultOf(anyLocal ? MQRCCF_Q_STATUS_NOT_FOUND : MQRCCF_Q_WRONG_TYPE, MQCA_Q_NAME));
}

void inquireQueueManagerStatus(const PcfCommand &command, PcfReplies &replies)
{
    PcfSelection selection;
    if (const PcfParameter *list = command.find(MQIACF_Q_MGR_STATUS_ATTRS)) {
        selection = readSelection(*list, queueManagerStatusSelectors);
        if (selection.fault) return replies.fail(selection.fault);
    }
    const QueueManagerStatus start = startOf(command.attachment);
    const bool running = command.attachment.state() == store::State::Running;
    PcfWriter &reply = replies.add();
    reply.text(MQCA_Q_MGR_NAME, command.attachment.queueManagerName(), MQ_Q_MGR_NAME_LENGTH);
    reply.integer(MQIACF_Q_MGR_STATUS, running ? MQQMSTA_RUNNING : MQQMSTA_QUIESCING);
    const auto number = [&](MQLONG id, MQLONG value) {
        if (isSelected(selection, id)) reply.integer(id, value);
    };
    number(MQIACF_CHINIT_STATUS, MQSVC_STATUS_STOPPED);
    number(MQIACF_CMD_SERVER_STATUS, MQSVC_STATUS_RUNNING);
    number(MQIACF_CONNECTION_COUNT, static_cast<MQLONG>(command.attachment.connections().size()));
    if (isSelected(selection, MQCACF_Q_MGR_START_DATE)) reply.text(MQCACF_Q_MGR_START_DATE, start.date, MQ_DATE_LENGTH);
    if (isSelected(selection, MQCACF_Q_MGR_START_TIME)) reply.text(MQCACF_Q_MGR_START_TIME, start.time, MQ_TIME_LENGTH);
}

void inquireConnections(const PcfCommand &command, PcfReplies &replies)
{
    const auto rows = connectionAttributes();
    if (command.number(MQIACF_CONN_INFO_TYPE).value_or(MQIACF_CONN_INFO_CONN) != MQIACF_CONN_INFO_CONN)
        return replies.fail(faultOf(MQRCCF_PARM_VALUE_ERROR, MQIACF_CONN_INFO_TYPE));
    const PcfConnections read = readConnections(command);
    const PcfSelection selection = readSelection(command, MQIACF_CONNECTION_ATTRS, rows);
    const PcfFilter filter = readFilter(command, rows);
    for (const PcfFault &fault : {read.fault, selection.fault, filter.fault})
        if (fault) replies.fail(fault);
    if (replies.failed()) return;

    const std::string &queueManager = command.attachment.queueManagerName();
    for (const store::ConnectionInfo &connection : read.connections) {
        const auto value = [&](const Attribute &attribute) { return statusOf(connection, queueManager, attribute); };
        if (filter.filter && !filter.filter->holdsFor(*filter.attribute, value(*filter.attribute))) continue;
        PcfWriter &reply = replies.add();
        reply.bytes(MQBACF_CONNECTION_ID, connectionId(connection, queueManager));
        reply.integer(MQIACF_CONN_INFO_TYPE, MQIACF_CONN_INFO_CONN);
        for (const Attribute &row : rows) {
            if (row.access == objects::Access::Identity || !isSelected(selection, row.selector)) continue;
            if (row.selector == MQBACF_CONN_TAG)
                reply.bytes(row.selector, tagBytes(value(row).text));
            else
                writeAttribute(reply, row, value(row));
        }
    }
    if (replies.empty()) replies.fail(faultOf(MQRCCF_CONNECTION_ID_ERROR, MQBACF_CONNECTION_ID));
}

} // namespace mqrig::qmgr::command
