#include "cmqcfc.h"
#include "qmgr/command/mqsc_commands.h"

namespace mqrig::qmgr::command {
namespace {

CommandAnswer answerOfDefinition(const Outcome &outcome, Message success, std::string_view objectName,
                                 const Definition &definition)
{
    CommandAnswer answer = answerOf(outcome, success, objectName);
    if (outcome.ok()) answer.triggering = touchedTriggering(definition);
    return answer;
}

} // namespace

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
    return answerOfDefinition(outcome, created, ofPattern ? read.definition.like : name.name, read.definition);
}

CommandAnswer alterObject(const MqscCommand &command)
{
    ReadName name = readName(command, NameForm::Whole);
    if (!name.ok) return name.answer;
    ReadDefinition read = readDefinition(command, command.kind(), Options::Alter);
    if (!read.ok) return read.answer;
    read.definition.name = name.name;
    return answerOfDefinition(alterObject(command.attachment, read.definition), messagesOf(command.kind()).changed,
                              name.name, read.definition);
}

} // namespace mqrig::qmgr::command
