// DISPLAY QSTATUS and DISPLAY CONN: what is counted and who is connected, as of now.
#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "qmgr/command/mqsc_selection.h"
#include "qmgr/command/status_attributes.h"
#include "qmgr/objects/object_name.h"

namespace mqrig::qmgr::command {
namespace {

using objects::Attribute;

constexpr std::string_view statusTypes[] = {"QUEUE", "HANDLE"};
constexpr std::string_view openTypes[] = {"ALL", "INPUT", "OUTPUT"};

MQLONG openTypeOf(const Selection &selection)
{
    if (selection.openType == "INPUT") return MQQSOT_INPUT;
    return selection.openType == "OUTPUT" ? MQQSOT_OUTPUT : MQQSOT_ALL;
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
    const std::span<const Attribute> rows = handles ? handleAttributes() : queueStatusAttributes();
    const Vocabulary vocabulary{.rows = rows, .types = statusTypes, .openTypes = openTypes};
    const Selection selection = readSelection(command, vocabulary, name.name.ends_with('*'));
    if (!selection.ok) return selection.answer;

    const auto show = [&](const auto &things) {
        return showAll(things, rows, command.kind(), Message::QueueStatusDetails, selection,
                       [](const auto &thing, const Attribute &attribute) { return statusOf(thing, attribute); });
    };
    InquiredObjects inquired = inquireObjects(command.attachment, name.name, command.kinds);
    if (inquired.outcome.failed()) return {CommandResult::Failed, {formatFailure(inquired.outcome, name.name)}};
    const MQLONG openType = openTypeOf(selection);
    CommandAnswer answer;
    if (handles) {
        std::vector<Handle> found = findHandles(command.attachment, name.name);
        std::erase_if(found, [&](const Handle &each) { return !isOpenFor(each.open.opens, openType); });
        answer = show(found);
    } else {
        std::vector<InquiredObject> &queues = inquired.objects;
        std::erase_if(queues, [&](const InquiredObject &each) { return !isOpenFor(each.status.opens, openType); });
        answer = show(queues);
    }
    if (!answer.lines.empty()) return answer;
    return {CommandResult::Failed, {formatMessage(Message::QueueStatusNotFound, name.name)}};
}

CommandAnswer displayConnections(const MqscCommand &command)
{
    const ReadName name = readName(command, NameForm::Generic);
    if (!name.ok) return name.answer;
    const Selection selection = readSelection(command, {.rows = connectionAttributes()}, name.name.ends_with('*'));
    if (!selection.ok) return selection.answer;

    std::vector<store::ConnectionInfo> connections = command.attachment.connections();
    std::erase_if(connections, [&](const store::ConnectionInfo &connection) {
        return !objects::matchesGeneric(name.name, connectionName(connection));
    });
    const std::string &queueManager = command.attachment.queueManagerName();
    CommandAnswer answer = showAll(connections, connectionAttributes(), command.kind(), Message::ConnectionDetails,
                                   selection, [&](const store::ConnectionInfo &connection, const Attribute &attribute) {
                                       return statusOf(connection, queueManager, attribute);
                                   });
    if (!answer.lines.empty()) return answer;
    return {CommandResult::Failed, {formatMessage(Message::ConnectionNotFound, name.name)}};
}

} // namespace mqrig::qmgr::command
