#include "qmgr/command/mqsc_selection.h"

namespace mqrig::qmgr::command {
namespace {

void show(std::vector<std::string> &lines, const InquiredObject &object, const Selection &selection)
{
    showAttributes(lines, objects::attributes(), object.definition.kind(), selection,
                   [&](const objects::Attribute &attribute) { return object.value(attribute); });
}

constexpr std::string_view queueTypes[] = {"QLOCAL", "QALIAS", "QREMOTE", "QMODEL", "ALL"};

// The kinds of object to be shown: those of the object word, or of DISPLAY QUEUE that of TYPE.
objects::ObjectKinds kindsOf(const MqscCommand &command, const Selection &selection)
{
    for (const objects::ObjectKind kind : {objects::ObjectKind::LocalQueue, objects::ObjectKind::AliasQueue,
                                           objects::ObjectKind::RemoteQueue, objects::ObjectKind::ModelQueue})
        if (selection.type == objects::commandWord(kind)) return objects::kinds(kind);
    return command.kinds;
}

} // namespace

CommandAnswer displayObjects(const MqscCommand &command)
{
    const ReadName name = readName(command, NameForm::Generic);
    if (!name.ok) return name.answer;
    Vocabulary vocabulary;
    if (command.objectWord == "QUEUE") vocabulary.types = queueTypes;
    const Selection selection = readSelection(command, vocabulary, name.name.ends_with('*'));
    if (!selection.ok) return selection.answer;

    const InquiredObjects inquired = inquireObjects(command.attachment, name.name, kindsOf(command, selection));
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
    const Selection selection = readSelection(command, {.filters = false}, false);
    if (!selection.ok) return selection.answer;
    const InquiredQueueManager inquired = inquireQueueManager(command.attachment);
    if (inquired.outcome.failed())
        return {CommandResult::Failed, {formatFailure(inquired.outcome, command.attachment.queueManagerName())}};
    CommandAnswer answer{CommandResult::Done, {formatMessage(Message::QueueManagerDetails, {})}};
    show(answer.lines, inquired.queueManager, selection);
    return answer;
}

} // namespace mqrig::qmgr::command
