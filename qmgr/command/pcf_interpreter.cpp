#include "qmgr/command/pcf_interpreter.h"

#include <algorithm>
#include <iterator>

#include "qmgr/command/pcf_commands.h"

namespace mqrig::qmgr::command {
namespace {

using objects::kinds;
using objects::ObjectKind;

constexpr PcfFamily queueManager = {kinds(ObjectKind::QueueManager), MQCA_Q_MGR_NAME, 0, 0, MQIACF_Q_MGR_ATTRS, 0};
constexpr PcfFamily queues = {objects::allQueues, MQCA_Q_NAME,    MQCACF_FROM_Q_NAME,
                              MQCACF_TO_Q_NAME,   MQIACF_Q_ATTRS, MQCACF_Q_NAMES};
constexpr PcfFamily localQueues = {kinds(ObjectKind::LocalQueue), MQCA_Q_NAME, 0, 0, MQIACF_Q_STATUS_ATTRS, 0};
constexpr PcfFamily namelists = {kinds(ObjectKind::Namelist), MQCA_NAMELIST_NAME,    MQCACF_FROM_NAMELIST_NAME,
                                 MQCACF_TO_NAMELIST_NAME,     MQIACF_NAMELIST_ATTRS, MQCACF_NAMELIST_NAMES};
constexpr PcfFamily processes = {kinds(ObjectKind::Process), MQCA_PROCESS_NAME,    MQCACF_FROM_PROCESS_NAME,
                                 MQCACF_TO_PROCESS_NAME,     MQIACF_PROCESS_ATTRS, MQCACF_PROCESS_NAMES};

constexpr PcfFamily topics = {kinds(ObjectKind::Topic), MQCA_TOPIC_NAME,    MQCACF_FROM_TOPIC_NAME,
                              MQCACF_TO_TOPIC_NAME,     MQIACF_TOPIC_ATTRS, MQCACF_TOPIC_NAMES};

// A parameter that a command has.
struct Rule {
    MQLONG id;
    MQLONG type; // MQCFT_
};

constexpr Rule queueName[] = {{MQCA_Q_NAME, MQCFT_STRING}};
constexpr Rule queueNameAndType[] = {{MQCA_Q_NAME, MQCFT_STRING}, {MQIA_Q_TYPE, MQCFT_INTEGER}};
constexpr Rule copyOfQueue[] = {
    {MQCACF_FROM_Q_NAME, MQCFT_STRING}, {MQCACF_TO_Q_NAME, MQCFT_STRING}, {MQIA_Q_TYPE, MQCFT_INTEGER}};
constexpr Rule namelistName[] = {{MQCA_NAMELIST_NAME, MQCFT_STRING}};
constexpr Rule copyOfNamelist[] = {{MQCACF_FROM_NAMELIST_NAME, MQCFT_STRING}, {MQCACF_TO_NAMELIST_NAME, MQCFT_STRING}};
constexpr Rule processName[] = {{MQCA_PROCESS_NAME, MQCFT_STRING}};
constexpr Rule copyOfProcess[] = {{MQCACF_FROM_PROCESS_NAME, MQCFT_STRING}, {MQCACF_TO_PROCESS_NAME, MQCFT_STRING}};
constexpr Rule topicName[] = {{MQCA_TOPIC_NAME, MQCFT_STRING}};
constexpr Rule copyOfTopic[] = {{MQCACF_FROM_TOPIC_NAME, MQCFT_STRING}, {MQCACF_TO_TOPIC_NAME, MQCFT_STRING}};
constexpr Rule topicAttributes[] = {{MQIACF_TOPIC_ATTRS, MQCFT_INTEGER_LIST}};
constexpr Rule escapeText[] = {{MQIACF_ESCAPE_TYPE, MQCFT_INTEGER}, {MQCACF_ESCAPE_TEXT, MQCFT_STRING}};

constexpr Rule replace[] = {{MQIACF_REPLACE, MQCFT_INTEGER}};
constexpr Rule replaceOrForce[] = {{MQIACF_REPLACE, MQCFT_INTEGER}, {MQIACF_FORCE, MQCFT_INTEGER}};
constexpr Rule force[] = {{MQIACF_FORCE, MQCFT_INTEGER}};
constexpr Rule typeAndPurge[] = {
    {MQIA_Q_TYPE, MQCFT_INTEGER}, {MQIACF_PURGE, MQCFT_INTEGER}, {MQIACF_REMOVE_AUTHREC, MQCFT_INTEGER}};
constexpr Rule authorities[] = {{MQIACF_REMOVE_AUTHREC, MQCFT_INTEGER}};
constexpr Rule queueType[] = {{MQIA_Q_TYPE, MQCFT_INTEGER}};
constexpr Rule queueTypeAndAttributes[] = {{MQIA_Q_TYPE, MQCFT_INTEGER}, {MQIACF_Q_ATTRS, MQCFT_INTEGER_LIST}};
constexpr Rule namelistAttributes[] = {{MQIACF_NAMELIST_ATTRS, MQCFT_INTEGER_LIST}};
constexpr Rule processAttributes[] = {{MQIACF_PROCESS_ATTRS, MQCFT_INTEGER_LIST}};
constexpr Rule queueStatus[] = {{MQIACF_Q_STATUS_TYPE, MQCFT_INTEGER},
                                {MQIACF_OPEN_TYPE, MQCFT_INTEGER},
                                {MQIACF_Q_STATUS_ATTRS, MQCFT_INTEGER_LIST}};
constexpr Rule queueManagerStatus[] = {{MQIACF_Q_MGR_STATUS_ATTRS, MQCFT_INTEGER_LIST}};
constexpr Rule connections[] = {{MQBACF_CONNECTION_ID, MQCFT_BYTE_STRING},
                                {MQBACF_GENERIC_CONNECTION_ID, MQCFT_BYTE_STRING},
                                {MQIACF_CONN_INFO_TYPE, MQCFT_INTEGER},
                                {MQIACF_CONNECTION_ATTRS, MQCFT_INTEGER_LIST}};
constexpr Rule queueManagerAttributes[] = {{MQIACF_Q_MGR_ATTRS, MQCFT_INTEGER_LIST}};

// What a command takes beside the parameters of its row.
enum class Beside { Nothing, Attributes, Filter };

struct Row {
    MQLONG command; // MQCMD_
    const PcfFamily &family;
    std::span<const Rule> required; // in this order, before all others
    std::span<const Rule> optional;
    Beside beside;
    PcfFunction run;
};

const Row table[] = {
    {MQCMD_CHANGE_Q_MGR, queueManager, {}, force, Beside::Attributes, changeQueueManager},
    {MQCMD_INQUIRE_Q_MGR, queueManager, {}, queueManagerAttributes, Beside::Nothing, inquireQueueManager},
    {MQCMD_CHANGE_PROCESS, processes, processName, {}, Beside::Attributes, changeObject},
    {MQCMD_COPY_PROCESS, processes, copyOfProcess, replace, Beside::Attributes, copyObject},
    {MQCMD_CREATE_PROCESS, processes, processName, replace, Beside::Attributes, createObject},
    {MQCMD_DELETE_PROCESS, processes, processName, authorities, Beside::Nothing, deleteObject},
    {MQCMD_INQUIRE_PROCESS, processes, processName, processAttributes, Beside::Filter, inquireObjects},
    {MQCMD_CHANGE_Q, queues, queueNameAndType, force, Beside::Attributes, changeObject},
    {MQCMD_CLEAR_Q, queues, queueName, {}, Beside::Nothing, clearQueue},
    {MQCMD_COPY_Q, queues, copyOfQueue, replaceOrForce, Beside::Attributes, copyObject},
    {MQCMD_CREATE_Q, queues, queueNameAndType, replaceOrForce, Beside::Attributes, createObject},
    {MQCMD_DELETE_Q, queues, queueName, typeAndPurge, Beside::Nothing, deleteObject},
    {MQCMD_INQUIRE_Q, queues, queueName, queueTypeAndAttributes, Beside::Filter, inquireObjects},
    {MQCMD_RESET_Q_STATS, queues, queueName, {}, Beside::Nothing, resetQueueStatistics},
    {MQCMD_INQUIRE_Q_NAMES, queues, queueName, queueType, Beside::Nothing, inquireObjectNames},
    {MQCMD_INQUIRE_PROCESS_NAMES, processes, processName, {}, Beside::Nothing, inquireObjectNames},
    {MQCMD_CHANGE_NAMELIST, namelists, namelistName, {}, Beside::Attributes, changeObject},
    {MQCMD_COPY_NAMELIST, namelists, copyOfNamelist, replace, Beside::Attributes, copyObject},
    {MQCMD_CREATE_NAMELIST, namelists, namelistName, replace, Beside::Attributes, createObject},
    {MQCMD_DELETE_NAMELIST, namelists, namelistName, authorities, Beside::Nothing, deleteObject},
    {MQCMD_INQUIRE_NAMELIST, namelists, namelistName, namelistAttributes, Beside::Filter, inquireObjects},
    {MQCMD_INQUIRE_NAMELIST_NAMES, namelists, namelistName, {}, Beside::Nothing, inquireObjectNames},
    {MQCMD_CHANGE_TOPIC, topics, topicName, {}, Beside::Attributes, changeObject},
    {MQCMD_COPY_TOPIC, topics, copyOfTopic, replace, Beside::Attributes, copyObject},
    {MQCMD_CREATE_TOPIC, topics, topicName, replace, Beside::Attributes, createObject},
    {MQCMD_DELETE_TOPIC, topics, topicName, authorities, Beside::Nothing, deleteObject},
    {MQCMD_INQUIRE_TOPIC, topics, topicName, topicAttributes, Beside::Filter, inquireObjects},
    {MQCMD_INQUIRE_TOPIC_NAMES, topics, topicName, {}, Beside::Nothing, inquireObjectNames},
    {MQCMD_ESCAPE, queueManager, escapeText, {}, Beside::Nothing, escape},
    {MQCMD_PING_Q_MGR, queueManager, {}, {}, Beside::Nothing, pingQueueManager},
    {MQCMD_INQUIRE_Q_STATUS, localQueues, queueName, queueStatus, Beside::Filter, inquireQueueStatus},
    {MQCMD_INQUIRE_CONNECTION, queueManager, {}, connections, Beside::Filter, inquireConnections},
    {MQCMD_INQUIRE_Q_MGR_STATUS, queueManager, {}, queueManagerStatus, Beside::Nothing, inquireQueueManagerStatus},
};

const Row *findRow(MQLONG command)
{
    const auto *row =
        std::find_if(std::begin(table), std::end(table), [command](const Row &r) { return r.command == command; });
    return row == std::end(table) ? nullptr : row;
}

PcfFault checkHeader(const MQCFH &header)
{
    if (header.Type != MQCFT_COMMAND && header.Type != MQCFT_COMMAND_XR) return {MQRCCF_CFH_TYPE_ERROR};
    if (header.Version < MQCFH_VERSION_1 || header.Version > MQCFH_CURRENT_VERSION) return {MQRCCF_CFH_VERSION_ERROR};
    if (header.MsgSeqNumber != 1) return {MQRCCF_CFH_MSG_SEQ_NUMBER_ERR};
    if (header.Control != MQCFC_LAST) return {MQRCCF_CFH_CONTROL_ERROR};
    return {};
}

bool isFilter(MQLONG type)
{
    return type == MQCFT_INTEGER_FILTER || type == MQCFT_STRING_FILTER || type == MQCFT_BYTE_STRING_FILTER;
}

MQLONG duplicateError(MQLONG type)
{
    switch (type) {
    case MQCFT_STRING:
        return MQRCCF_CFST_DUPLICATE_PARM;
    case MQCFT_STRING_LIST:
        return MQRCCF_CFSL_DUPLICATE_PARM;
    case MQCFT_BYTE_STRING:
        return MQRCCF_CFBS_DUPLICATE_PARM;
    case MQCFT_GROUP:
        return MQRCCF_CFGR_PARM_ID_ERROR;
    default:
        return MQRCCF_CFIN_DUPLICATE_PARM;
    }
}

// The parameters that must be there, in their order.
PcfFault checkRequired(const Row &row, std::span<const PcfParameter> parameters)
{
    if (parameters.size() < row.required.size()) return {MQRCCF_PARM_COUNT_TOO_SMALL};
    for (std::size_t i = 0; i < row.required.size(); ++i) {
        const Rule &rule = row.required[i];
        const PcfParameter &parameter = parameters[i];
        if (parameter.id == rule.id) {
            if (parameter.type != rule.type) return faultOf(MQRCCF_STRUCTURE_TYPE_ERROR, rule.id);
            continue;
        }
        const bool elsewhere = std::any_of(parameters.begin(), parameters.end(),
                                           [&](const PcfParameter &other) { return other.id == rule.id; });
        return faultOf(elsewhere ? MQRCCF_PARM_SEQUENCE_ERROR : MQRCCF_PARM_MISSING, rule.id);
    }
    return {};
}

// One parameter behind the required ones; `before` are all that stand in front of it.
PcfFault checkOptional(const Row &row, const PcfParameter &parameter, std::span<const PcfParameter> before)
{
    const bool filter = isFilter(parameter.type);
    if (filter) {
        if (row.beside != Beside::Filter) return faultOf(parameterIdError(parameter.type), parameter.id);
        const bool another =
            std::any_of(before.begin(), before.end(), [](const PcfParameter &other) { return isFilter(other.type); });
        return another ? faultOf(MQRCCF_TOO_MANY_FILTERS, parameter.id) : PcfFault{};
    }
    const bool twice = std::any_of(before.begin(), before.end(), [&](const PcfParameter &other) {
        return other.id == parameter.id && !isFilter(other.type);
    });
    if (twice) return faultOf(duplicateError(parameter.type), parameter.id);
    for (const Rule &rule : row.optional) {
        if (rule.id != parameter.id) continue;
        return parameter.type == rule.type ? PcfFault{} : faultOf(MQRCCF_STRUCTURE_TYPE_ERROR, rule.id);
    }
    if (row.beside == Beside::Attributes) {
        for (const objects::Attribute &attribute : objects::attributes())
            if (attribute.selector == parameter.id && (attribute.kinds & row.family.kinds) != 0 &&
                attribute.access == objects::Access::Alterable)
                return {};
    }
    return faultOf(parameterIdError(parameter.type), parameter.id);
}

PcfFault checkParameters(const Row &row, std::span<const PcfParameter> parameters)
{
    if (const PcfFault fault = checkRequired(row, parameters)) return fault;
    const bool takesNoMore = row.optional.empty() && row.beside == Beside::Nothing;
    if (takesNoMore && parameters.size() > row.required.size()) return {MQRCCF_PARM_COUNT_TOO_BIG};
    for (std::size_t i = row.required.size(); i < parameters.size(); ++i)
        if (const PcfFault fault = checkOptional(row, parameters[i], parameters.first(i))) return fault;
    return {};
}

void run(store::Attachment &attachment, const PcfRequest &request, const ReadPcf &read, PcfReplies &replies)
{
    if (read.fault) return replies.fail(read.fault);
    if (const PcfFault fault = checkHeader(read.header)) return replies.fail(fault);
    const Row *row = findRow(read.header.Command);
    if (row == nullptr) return replies.fail({MQRCCF_CFH_COMMAND_ERROR});
    if (const PcfFault fault = checkParameters(*row, read.parameters)) return replies.fail(fault);
    row->run({attachment, row->family, read.parameters, request.putTime, request.repeated}, replies);
}

} // namespace

PcfAnswer runPcf(store::Attachment &attachment, const PcfRequest &request)
{
    const ReadPcf read = readPcf(request.message, request.encoding);
    PcfReplies replies(read.header);
    run(attachment, request, read, replies);
    return replies.finish();
}

PcfAnswer refusePcf(const PcfFault &fault)
{
    PcfReplies replies(MQCFH{});
    replies.fail(fault);
    return replies.finish();
}

} // namespace mqrig::qmgr::command
