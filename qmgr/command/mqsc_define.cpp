#include "qmgr/command/mqsc_commands.h"

namespace mqrig::qmgr::command {

CommandAnswer defineLocalQueue(const MqscCommand &command)
{
    ReadName name = readName(command, NameForm::Whole);
    if (!name.ok) return name.answer;
    ReadDefinition read = readDefinition(command, objects::ObjectKind::LocalQueue, Options::Define);
    if (!read.ok) return read.answer;
    read.definition.name = name.name;

    const Outcome outcome = defineQueue(command.attachment, read.definition);
    if (outcome.Reason == MQRC_UNKNOWN_OBJECT_NAME && !read.definition.like.empty())
        return answerOf(outcome, Message::QueueCreated, read.definition.like);
    return answerOf(outcome, Message::QueueCreated, name.name);
}

CommandAnswer alterLocalQueue(const MqscCommand &command)
{
    ReadName name = readName(command, NameForm::Whole);
    if (!name.ok) return name.answer;
    ReadDefinition read = readDefinition(command, objects::ObjectKind::LocalQueue, Options::AlterQueue);
    if (!read.ok) return read.answer;
    read.definition.name = name.name;
    return answerOf(alterQueue(command.attachment, read.definition), Message::QueueChanged, name.name);
}

} // namespace mqrig::qmgr::command
