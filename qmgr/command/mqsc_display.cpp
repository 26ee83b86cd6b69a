#include <algorithm>
#include <optional>

#include "qmgr/command/mqsc_commands.h"
#include "qmgr/command/mqsc_filter.h"
#include "qmgr/command/mqsc_layout.h"

namespace mqrig::qmgr::command {
namespace {

using objects::Attribute;
using objects::ObjectKind;

// What a DISPLAY command shows of each object.
struct Selection {
    bool ok = true;
    bool all = false;
    objects::ObjectKinds kinds = 0;         // of the objects
    std::vector<std::string_view> keywords; // of the attributes asked for, as the table has them
    std::optional<Filter> filter;
    CommandAnswer answer; // the fault
};

bool takesFilter(objects::ObjectKinds kinds)
{
    return !objects::contains(kinds, ObjectKind::QueueManager);
}

// TYPE(QALIAS) or TYPE(ALL) of the queues; nothing where it is neither.
objects::ObjectKinds typeWord(const MqscParameter &type)
{
    if (type.values.size() != 1) return 0;
    if (type.value() == "ALL") return objects::allQueues;
    const ObjectKind queues[] = {ObjectKind::LocalQueue, ObjectKind::AliasQueue, ObjectKind::RemoteQueue,
                                 ObjectKind::ModelQueue};
    for (const ObjectKind kind : queues)
        if (type.value() == objects::commandWord(kind)) return objects::kinds(kind);
    return 0;
}

Selection readSelection(const MqscCommand &command)
{
    Selection selection;
    selection.kinds = command.kinds;
    const auto fail = [&](std::size_t offset, std::string_view reason) {
        selection.ok = false;
        selection.answer = syntaxFault(command.text, Message::SyntaxError, offset, reason);
        return std::move(selection);
    };
    for (const MqscParameter &parameter : command.parameters()) {
        if (takesFilter(command.kinds) && parameter.keyword == "WHERE") {
            if (selection.filter) return fail(parameter.offset, "WHERE may be given once");
            ReadFilter read = readFilter(parameter, command.kinds);
            if (!read.ok) return fail(read.offset, read.reason);
            selection.keywords.push_back(read.filter.keyword);
            selection.filter = std::move(read.filter);
            continue;
        }
        if (command.kinds == objects::allQueues && parameter.keyword == "TYPE" && parameter.hasValue) {
            selection.kinds = typeWord(parameter);
            if (selection.kinds == 0)
                return fail(parameter.valueOffset(), "TYPE takes QLOCAL, QALIAS, QREMOTE, QMODEL or ALL");
            continue;
        }
        if (parameter.hasValue) return fail(parameter.valueOffset(), "an attribute to be shown has no value");
        if (parameter.keyword == "ALL") {
            selection.all = true;
            continue;
        }
        const Attribute *attribute = objects::findKeyword(command.kinds, parameter.keyword).attribute;
        if (attribute == nullptr) return fail(parameter.offset, "no attribute of " + std::string(command.objectWord));
        selection.keywords.push_back(attribute->keyword);
    }
    return selection;
}

// Name and type stand first, the others follow in the order of their keywords.
void show(std::vector<std::string> &lines, const InquiredObject &object, const Selection &selection)
{
    const ObjectKind kind = object.definition.kind();
    Layout layout(lines);
    const auto add = [&](const Attribute &attribute) {
        layout.add(objects::formatAttribute(attribute, object.value(attribute)));
    };
    const auto &named = selection.keywords;
    const bool everything = selection.all || (named.empty() && kind == ObjectKind::QueueManager);
    for (const Attribute &attribute : objects::attributes())
        if (objects::contains(attribute.kinds, kind) && attribute.access == objects::Access::Identity) add(attribute);
    for (const Attribute &attribute : objects::attributes()) {
        if (!objects::contains(attribute.kinds, kind) || attribute.access == objects::Access::Identity) continue;
        if (everything || std::find(named.begin(), named.end(), attribute.keyword) != named.end()) add(attribute);
    }
}

} // namespace

CommandAnswer displayObjects(const MqscCommand &command)
{
    const ReadName name = readName(command, NameForm::Generic);
    if (!name.ok) return name.answer;
    const Selection selection = readSelection(command);
    if (!selection.ok) return selection.answer;

    const InquiredObjects inquired = inquireObjects(command.attachment, name.name, selection.kinds);
    CommandAnswer answer;
    if (!inquired.outcome.ok()) {
        answer.result = CommandResult::Failed;
        answer.lines.push_back(formatFailure(inquired.outcome, name.name));
    }
    if (inquired.outcome.failed()) return answer;
    bool shown = false;
    for (const InquiredObject &object : inquired.objects) {
        if (selection.filter && !selection.filter->passes(object)) continue;
        shown = true;
        answer.lines.push_back(formatMessage(messagesOf(object.definition.kind()).details, {}));
        show(answer.lines, object, selection);
    }
    if (shown || !inquired.outcome.ok()) return answer;
    return {CommandResult::Failed, {formatFailure(failure(MQRC_UNKNOWN_OBJECT_NAME), name.name)}};
}

CommandAnswer displayQmgr(const MqscCommand &command)
{
    if (command.object().hasValue)
        return syntaxFault(command.text, Message::SyntaxError, command.object().valueOffset(), "QMGR takes no name");
    const Selection selection = readSelection(command);
    if (!selection.ok) return selection.answer;
    const InquiredQueueManager inquired = inquireQueueManager(command.attachment);
    if (inquired.outcome.failed())
        return {CommandResult::Failed, {formatFailure(inquired.outcome, command.attachment.queueManagerName())}};
    CommandAnswer answer{CommandResult::Done, {formatMessage(Message::QueueManagerDetails, {})}};
    show(answer.lines, inquired.queueManager, selection);
    return answer;
}

} // namespace mqrig::qmgr::command
