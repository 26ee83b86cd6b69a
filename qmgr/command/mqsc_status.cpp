// DISPLAY QSTATUS and DISPLAY CONN: what is counted and who is connected, as of now.
#include <algorithm>
#include <array>
#include <cstdio>
#include <string>
#include <string_view>

#include "cmqcfc.h"
#include "qmgr/command/mqsc_selection.h"
#include "qmgr/command/process_facts.h"
#include "qmgr/objects/object_name.h"
#include "qmgr/objects/queue_counters.h"

namespace mqrig::qmgr::command {
namespace {

using objects::Access;
using objects::Attribute;
using objects::AttributeValue;
using objects::ObjectKind;
using objects::ValueKind;
using objects::Word;

constexpr objects::ObjectKinds ofQueue = objects::kinds(ObjectKind::LocalQueue);
constexpr objects::ObjectKinds ofConnection = objects::kinds(ObjectKind::QueueManager);

constexpr MQLONG noLimit = 2147483647;
constexpr MQLONG hexDigits = 2 * MQ_CONNECTION_ID_LENGTH;

constexpr Attribute number(std::string_view keyword, MQLONG selector, objects::ObjectKinds kinds,
                           std::span<const Word> words = {}, Access access = Access::Dynamic)
{
    return {.keyword = keyword,
            .selector = selector,
            .kinds = kinds,
            .value = ValueKind::Number,
            .access = access,
            .high = noLimit,
            .words = words,
            .defaultText = {}};
}

constexpr Attribute text(std::string_view keyword, MQLONG selector, objects::ObjectKinds kinds, MQLONG length,
                         Access access = Access::Dynamic)
{
    return {.keyword = keyword,
            .selector = selector,
            .kinds = kinds,
            .value = ValueKind::Text,
            .access = access,
            .words = {},
            .textLength = length,
            .defaultText = {}};
}

constexpr Word noUncommitted[] = {{"NO", 0}};
constexpr Word user[] = {{"USER", MQAT_USER}};
constexpr Word noYes[] = {{"NO", 0}, {"YES", 1}};
constexpr Word inputs[] = {{"NO", 0}, {"SHARED", MQOO_INPUT_SHARED}, {"EXCL", MQOO_INPUT_EXCLUSIVE}};

// In place of selectors, where not every column has one.
enum Field : MQLONG { Queue, Type, Connection, External, Program, ProgramType, Browse, Input, Output, ProcessId, User };

// In the order in which they are shown. What is always shown has the access of an identity.
constexpr Attribute queueRows[] = {
    text("QUEUE", MQCA_Q_NAME, ofQueue, MQ_Q_NAME_LENGTH, Access::Identity),
    text("TYPE", MQIACF_Q_STATUS_TYPE, ofQueue, MQ_Q_NAME_LENGTH, Access::Identity),
    number("CURDEPTH", MQIA_CURRENT_Q_DEPTH, ofQueue, {}, Access::Identity),
    number("IPPROCS", MQIA_OPEN_INPUT_COUNT, ofQueue),
    number("OPPROCS", MQIA_OPEN_OUTPUT_COUNT, ofQueue),
    number("UNCOM", MQIACF_UNCOMMITTED_MSGS, ofQueue, noUncommitted),
};

constexpr Attribute handleRows[] = {
    text("QUEUE", Queue, ofQueue, MQ_Q_NAME_LENGTH, Access::Identity),
    text("TYPE", Type, ofQueue, MQ_Q_NAME_LENGTH, Access::Identity),
    text("APPLTAG", Program, ofQueue, MQ_APPL_TAG_LENGTH),
    number("APPLTYPE", ProgramType, ofQueue, user),
    number("BROWSE", Browse, ofQueue, noYes),
    number("INPUT", Input, ofQueue, inputs),
    number("OUTPUT", Output, ofQueue, noYes),
    number("PID", ProcessId, ofQueue),
    text("USERID", User, ofQueue, MQ_USER_ID_LENGTH),
};

constexpr Attribute connectionRows[] = {
    text("CONN", Connection, ofConnection, hexDigits, Access::Identity),
    text("EXTCONN", External, ofConnection, hexDigits, Access::Identity),
    text("TYPE", Type, ofConnection, MQ_Q_NAME_LENGTH, Access::Identity),
    text("APPLTAG", Program, ofConnection, MQ_APPL_TAG_LENGTH),
    number("APPLTYPE", ProgramType, ofConnection, user),
    number("PID", ProcessId, ofConnection),
    text("USERID", User, ofConnection, MQ_USER_ID_LENGTH),
};

constexpr std::string_view statusTypes[] = {"QUEUE", "HANDLE"};

AttributeValue valueOf(const InquiredObject &queue, const Attribute &attribute)
{
    const store::QueueStatus &status = queue.status;
    switch (attribute.selector) {
    case MQCA_Q_NAME:
        return {0, queue.definition.name()};
    case MQIACF_Q_STATUS_TYPE:
        return {0, "QUEUE"};
    case MQIACF_UNCOMMITTED_MSGS:
        return {static_cast<MQLONG>(status.held + status.uncommitted), {}};
    default:
        return {objects::countedValue(status, attribute.selector), {}};
    }
}

// The last eight bytes of the connection id that programs know (MQCNO ConnectionId) name the connection; those in
// front are the same for all of this queue manager.
std::string connectionName(const store::ConnectionInfo &connection)
{
    std::array<char, 17> digits{};
    std::snprintf(digits.data(), digits.size(), "%016llX", static_cast<unsigned long long>(connection.number));
    return digits.data();
}

std::string externalName(const std::string &queueManager)
{
    std::string bytes = "AMQC" + queueManager;
    bytes.resize(16, ' ');
    std::string digits;
    for (const char byte : bytes) {
        std::array<char, 3> pair{};
        std::snprintf(pair.data(), pair.size(), "%02X", static_cast<unsigned char>(byte));
        digits += pair.data();
    }
    return digits;
}

AttributeValue valueOf(const store::ConnectionInfo &connection, const std::string &queueManager,
                       const Attribute &attribute)
{
    switch (attribute.selector) {
    case Connection:
        return {0, connectionName(connection)};
    case External:
        return {0, externalName(queueManager)};
    case Type:
        return {0, "CONN"};
    case Program:
        return {0, programOf(connection.pid)};
    case ProgramType:
        return {MQAT_USER, {}};
    case ProcessId:
        return {connection.pid, {}};
    case User:
        return {0, userOf(connection.pid)};
    default:
        return {};
    }
}

// A queue and who has it open.
struct Handle {
    std::string queue;
    store::OpenQueue open;
};

AttributeValue valueOf(const Handle &handle, const Attribute &attribute)
{
    const store::OpenCounts &opens = handle.open.opens;
    switch (attribute.selector) {
    case Queue:
        return {0, handle.queue};
    case Type:
        return {0, "HANDLE"};
    case Browse:
        return {opens.browse > 0 ? 1 : 0, {}};
    case Input:
        return {opens.exclusive > 0 ? MQOO_INPUT_EXCLUSIVE : opens.input > 0 ? MQOO_INPUT_SHARED : 0, {}};
    case Output:
        return {opens.output > 0 ? 1 : 0, {}};
    default:
        return valueOf(handle.open.connection, {}, attribute);
    }
}

// The handles of the queues whose name fits, by queue.
std::vector<Handle> findHandles(const store::Attachment &attachment, const std::vector<store::Definition> &queues,
                                const std::string &genericName)
{
    std::vector<Handle> handles;
    const std::vector<store::OpenQueue> open = attachment.openQueues();
    for (const store::Definition &queue : queues) {
        if (!objects::matchesGeneric(genericName, queue.name)) continue;
        for (const store::OpenQueue &entry : open)
            if (entry.queue == queue.queue) handles.push_back({queue.name, entry});
    }
    return handles;
}

// One entry per thing that passes the filter.
template <class Things, class ValueOfThing>
CommandAnswer display(const Things &things, std::span<const Attribute> rows, ObjectKind kind, Message details,
                      const Selection &selection, const ValueOfThing &valueOfThing)
{
    CommandAnswer answer;
    for (const auto &thing : things) {
        const auto value = [&](const Attribute &attribute) { return valueOfThing(thing, attribute); };
        if (selection.filter) {
            const Attribute &compared =
                *objects::findKeyword(rows, objects::kinds(kind), selection.filter->keyword).attribute;
            if (!selection.filter->holdsFor(compared, value(compared))) continue;
        }
        answer.lines.push_back(formatMessage(details, {}));
        showAttributes(answer.lines, rows, kind, selection, value);
    }
    return answer;
}

bool asksForHandles(const MqscCommand &command)
{
    return std::ranges::any_of(command.parameters(), [](const MqscParameter &parameter) {
        return parameter.keyword == "TYPE" && parameter.value() == "HANDLE";
    });
}

} // namespace

CommandAnswer displayQueueStatus(const MqscCommand &command)
{
    const ReadName name = readName(command, NameForm::Generic);
    if (!name.ok) return name.answer;
    const bool handles = asksForHandles(command);
    const std::span<const Attribute> rows = handles ? std::span<const Attribute>(handleRows) : queueRows;
    const Selection selection = readSelection(command, {.rows = rows, .types = statusTypes}, name.name.ends_with('*'));
    if (!selection.ok) return selection.answer;

    const auto show = [&](const auto &things) {
        return display(things, rows, command.kind(), Message::QueueStatusDetails, selection,
                       [](const auto &thing, const Attribute &attribute) { return valueOf(thing, attribute); });
    };
    CommandAnswer answer;
    if (handles) {
        answer = show(findHandles(command.attachment, command.attachment.definitions(MQOT_Q), name.name));
    } else {
        const InquiredObjects inquired = inquireObjects(command.attachment, name.name, command.kinds);
        if (inquired.outcome.failed()) return {CommandResult::Failed, {formatFailure(inquired.outcome, name.name)}};
        answer = show(inquired.objects);
    }
    if (!answer.lines.empty()) return answer;
    return {CommandResult::Failed, {formatFailure(failure(MQRC_UNKNOWN_OBJECT_NAME), name.name)}};
}

CommandAnswer displayConnections(const MqscCommand &command)
{
    const ReadName name = readName(command, NameForm::Generic);
    if (!name.ok) return name.answer;
    const Selection selection = readSelection(command, {.rows = connectionRows}, name.name.ends_with('*'));
    if (!selection.ok) return selection.answer;

    std::vector<store::ConnectionInfo> connections = command.attachment.connections();
    std::erase_if(connections, [&](const store::ConnectionInfo &connection) {
        return !objects::matchesGeneric(name.name, connectionName(connection));
    });
    const std::string &queueManager = command.attachment.queueManagerName();
    CommandAnswer answer = display(connections, connectionRows, command.kind(), Message::ConnectionDetails, selection,
                                   [&](const store::ConnectionInfo &connection, const Attribute &attribute) {
                                       return valueOf(connection, queueManager, attribute);
                                   });
    if (!answer.lines.empty()) return answer;
    return {CommandResult::Failed, {formatMessage(Message::ConnectionNotFound, name.name)}};
}

} // namespace mqrig::qmgr::command
