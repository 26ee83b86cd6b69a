#include "cmqcfc.h"
#include "qmgr/command/mqsc_commands.h"

namespace mqrig::qmgr::command {

CommandAnswer defineObject(const MqscCommand &command)
{
    ReadName name = readName(command, NameForm::Whole);
    if (!name.ok) return name.answer;
    ReadDefinition read = readDefinition(command, command.kind(), Options::Define);
    if (!read.ok) return read.answer;
    read.definition.name = name.name;

    const Message created = messagesOf(command.kind()).created;
    const Outcome outcome = defineObject(command.attachment, read.definition);
    const bool ofPattern =
        outcome.Reason == MQRC_UNKNOWN_OBJECT_NAME || outcome.Reason == MQRCCF_LIKE_OBJECT_WRONG_TYPE;
    return answerOf(outcome, created, ofPattern ? read.definition.like : name.name);
}

CommandAnswer alterObject(const MqscCommand &command)
{
    ReadName name = readName(command, NameForm::Whole);
    if (!name.ok) return name.answer;
    ReadDefinition read = readDefinition(command, command.kind(), Options::Alter);
    if (!read.ok) return read.answer;
    read.definition.name = name.name;
    return answerOf(alterObject(command.attachment, read.definition), messagesOf(command.kind()).changed, name.name);
}

} // namespace mqrig::qmgr::command
