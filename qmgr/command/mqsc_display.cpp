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
    std::vector<const Attribute *> attributes; // named ones, in the table's order, each once
    std::optional<Filter> filter;
    CommandAnswer answer; // the fault
};

Selection readSelection(const MqscCommand &command, ObjectKind kind, bool takesFilter)
{
    Selection selection;
    const auto fail = [&](std::size_t offset, std::string_view reason) {
        selection.ok = false;
        selection.answer = syntaxFault(command.text, Message::SyntaxError, offset, reason);
        return std::move(selection);
    };
    for (const MqscParameter &parameter : command.parameters()) {
        if (takesFilter && parameter.keyword == "WHERE") {
            if (selection.filter) return fail(parameter.offset, "WHERE may be given once");
            ReadFilter read = readFilter(parameter, kind);
            if (!read.ok) return fail(read.offset, read.reason);
            selection.attributes.push_back(read.filter.attribute);
            selection.filter = std::move(read.filter);
            continue;
        }
        if (takesFilter && parameter.keyword == "TYPE" && parameter.hasValue) {
            // The kind of queue is asked for; all that exist are local queues.
            if (parameter.values.size() != 1 || (parameter.value() != "QLOCAL" && parameter.value() != "ALL"))
                return fail(parameter.valueOffset(), "TYPE takes QLOCAL or ALL");
            continue;
        }
        if (parameter.hasValue) return fail(parameter.valueOffset(), "an attribute to be shown has no value");
        if (parameter.keyword == "ALL") {
            selection.all = true;
            continue;
        }
        const objects::KeywordMatch match = objects::findKeyword(kind, parameter.keyword);
        if (match.attribute == nullptr)
            return fail(parameter.offset, "no attribute of " + std::string(objects::commandWord(kind)));
        selection.attributes.push_back(match.attribute);
    }
    std::sort(selection.attributes.begin(), selection.attributes.end());
    selection.attributes.erase(std::unique(selection.attributes.begin(), selection.attributes.end()),
                               selection.attributes.end());
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
    const bool everything = selection.all || (selection.attributes.empty() && kind == ObjectKind::QueueManager);
    for (const Attribute &attribute : objects::attributes())
        if (objects::contains(attribute.kinds, kind) && attribute.access == objects::Access::Identity) add(attribute);
    for (const Attribute &attribute : objects::attributes()) {
        if (!objects::contains(attribute.kinds, kind) || attribute.access == objects::Access::Identity) continue;
        const auto &named = selection.attributes;
        if (everything || std::find(named.begin(), named.end(), &attribute) != named.end()) add(attribute);
    }
}

CommandAnswer display(const MqscCommand &command, objects::ObjectKinds kinds)
{
    const ReadName name = readName(command, NameForm::Generic);
    if (!name.ok) return name.answer;
    const Selection selection = readSelection(command, ObjectKind::LocalQueue, true);
    if (!selection.ok) return selection.answer;

    const InquiredQueues inquired = inquireQueues(command.attachment, name.name, kinds);
    CommandAnswer answer;
    if (!inquired.outcome.ok()) {
        answer.result = CommandResult::Failed;
        answer.lines.push_back(formatFailure(inquired.outcome, name.name));
    }
    if (inquired.outcome.failed()) return answer;
    bool shown = false;
    for (const InquiredObject &queue : inquired.queues) {
        if (selection.filter && !selection.filter->passes(queue)) continue;
        shown = true;
        answer.lines.push_back(formatMessage(Message::QueueDetails, {}));
        show(answer.lines, queue, selection);
    }
    if (shown || !inquired.outcome.ok()) return answer;
    return {CommandResult::Failed, {formatFailure(failure(MQRC_UNKNOWN_OBJECT_NAME), name.name)}};
}

} // namespace

CommandAnswer displayLocalQueues(const MqscCommand &command)
{
    return display(command, objects::kinds(ObjectKind::LocalQueue));
}

CommandAnswer displayQueues(const MqscCommand &command)
{
    return display(command, objects::allQueues);
}

CommandAnswer displayQmgr(const MqscCommand &command)
{
    if (command.object().hasValue)
        return syntaxFault(command.text, Message::SyntaxError, command.object().valueOffset(), "QMGR takes no name");
    const Selection selection = readSelection(command, ObjectKind::QueueManager, false);
    if (!selection.ok) return selection.answer;
    const InquiredQueueManager inquired = inquireQueueManager(command.attachment);
    if (inquired.outcome.failed())
        return {CommandResult::Failed, {formatFailure(inquired.outcome, command.attachment.queueManagerName())}};
    CommandAnswer answer{CommandResult::Done, {formatMessage(Message::QueueManagerDetails, {})}};
    show(answer.lines, inquired.queueManager, selection);
    return answer;
}

} // namespace mqrig::qmgr::command
