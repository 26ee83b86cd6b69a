// DISPLAY QSTATUS and DISPLAY CONN: what is counted and who is connected, as of now.
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <string>
#include <string_view>

#include "cmqcfc.h"
#include "qmgr/command/mqsc_selection.h"
#include "qmgr/objects/object_name.h"
#include "qmgr/objects/queue_counters.h"

namespace mqrig::qmgr::command {
namespace {

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
                           std::span<const Word> words = {}, objects::Access access = objects::Access::Dynamic)
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
                         objects::Access access = objects::Access::Dynamic)
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

// Of queues, in the order in which they are shown. Those that are always shown have the access of an identity.
constexpr Attribute queueRows[] = {
    text("QUEUE", MQCA_Q_NAME, ofQueue, MQ_Q_NAME_LENGTH, objects::Access::Identity),
    text("TYPE", MQIACF_Q_STATUS_TYPE, ofQueue, MQ_Q_NAME_LENGTH, objects::Access::Identity),
    number("CURDEPTH", MQIA_CURRENT_Q_DEPTH, ofQueue, {}, objects::Access::Identity),
    number("IPPROCS", MQIA_OPEN_INPUT_COUNT, ofQueue),
    number("OPPROCS", MQIA_OPEN_OUTPUT_COUNT, ofQueue),
    number("UNCOM", MQIACF_UNCOMMITTED_MSGS, ofQueue, noUncommitted),
};

// What is shown of a connection; in place of selectors, of which not all of it has one.
enum ConnectionField : MQLONG { Name, ExternalName, InfoType, Program, ProgramType, ProcessId, User };

constexpr Attribute connectionRows[] = {
    text("CONN", Name, ofConnection, hexDigits, objects::Access::Identity),
    text("EXTCONN", ExternalName, ofConnection, hexDigits, objects::Access::Identity),
    text("TYPE", InfoType, ofConnection, MQ_Q_NAME_LENGTH, objects::Access::Identity),
    text("APPLTAG", Program, ofConnection, MQ_APPL_TAG_LENGTH),
    number("APPLTYPE", ProgramType, ofConnection, user),
    number("PID", ProcessId, ofConnection),
    text("USERID", User, ofConnection, MQ_USER_ID_LENGTH),
};

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

std::string hexadecimal(std::string_view bytes)
{
    std::string digits;
    for (const char byte : bytes) {
        std::array<char, 3> pair{};
        std::snprintf(pair.data(), pair.size(), "%02X", static_cast<unsigned char>(byte));
        digits += pair.data();
    }
    return digits;
}

// The file name of the program; empty where the system does not tell.
std::string programOf(std::int32_t pid)
{
    std::array<char, 4096> path{};
    const ssize_t length = readlink(("/proc/" + std::to_string(pid) + "/exe").c_str(), path.data(), path.size());
    if (length <= 0) return {};
    std::string_view name(path.data(), static_cast<std::size_t>(length));
    name.remove_prefix(name.rfind('/') + 1);
    return std::string(name.substr(0, MQ_APPL_TAG_LENGTH));
}

std::string userOf(std::int32_t pid)
{
    struct stat process {};
    if (stat(("/proc/" + std::to_string(pid)).c_str(), &process) != 0) return {};
    std::array<char, 4096> text{};
    passwd entry{};
    passwd *found = nullptr;
    if (getpwuid_r(process.st_uid, &entry, text.data(), text.size(), &found) != 0 || found == nullptr)
        return std::to_string(process.st_uid);
    return std::string(std::string_view(found->pw_name).substr(0, MQ_USER_ID_LENGTH));
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
    return hexadecimal(bytes);
}

AttributeValue valueOf(const store::ConnectionInfo &connection, const std::string &queueManager,
                       const Attribute &attribute)
{
    switch (attribute.selector) {
    case Name:
        return {0, connectionName(connection)};
    case ExternalName:
        return {0, externalName(queueManager)};
    case InfoType:
        return {0, "CONN"};
    case Program:
        return {0, programOf(connection.pid)};
    case ProgramType:
        return {MQAT_USER, {}};
    case ProcessId:
        return {connection.pid, {}};
    default:
        return {0, userOf(connection.pid)};
    }
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
            const objects::KeywordMatch compared =
                objects::findKeyword(rows, objects::kinds(kind), selection.filter->keyword);
            if (!selection.filter->holdsFor(*compared.attribute, value(*compared.attribute))) continue;
        }
        answer.lines.push_back(formatMessage(details, {}));
        showAttributes(answer.lines, rows, kind, selection, value);
    }
    return answer;
}

} // namespace

CommandAnswer displayQueueStatus(const MqscCommand &command)
{
    const ReadName name = readName(command, NameForm::Generic);
    if (!name.ok) return name.answer;
    const Selection selection = readSelection(command, {.rows = queueRows}, name.name.ends_with('*'));
    if (!selection.ok) return selection.answer;
    const InquiredObjects inquired = inquireObjects(command.attachment, name.name, command.kinds);
    if (inquired.outcome.failed()) return {CommandResult::Failed, {formatFailure(inquired.outcome, name.name)}};
    CommandAnswer answer =
        display(inquired.objects, queueRows, command.kind(), Message::QueueStatusDetails, selection,
                [](const InquiredObject &queue, const Attribute &attribute) { return valueOf(queue, attribute); });
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
