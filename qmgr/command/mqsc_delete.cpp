#include "qmgr/command/mqsc_commands.h"

namespace mqrig::qmgr::command {

CommandAnswer deleteObject(const MqscCommand &command)
{
    const ReadName name = readName(command, NameForm::Whole);
    if (!name.ok) return name.answer;
    Purge purge = Purge::No;
    bool given = false;
    for (const MqscParameter &parameter : command.parameters()) {
        const bool known = parameter.keyword == "PURGE" || parameter.keyword == "NOPURGE";
        if (command.kind() != objects::ObjectKind::LocalQueue)
            return syntaxFault(command.text, Message::SyntaxError, parameter.offset,
                               "DELETE " + std::string(command.objectWord) + " takes only a name");
        if (!known || parameter.hasValue)
            return syntaxFault(command.text, Message::SyntaxError, parameter.offset,
                               "DELETE QLOCAL takes only PURGE or NOPURGE, without a value");
        if (given) return syntaxFault(command.text, Message::DuplicateKeyword, parameter.offset, parameter.keyword);
        given = true;
        if (parameter.keyword == "PURGE") purge = Purge::Yes;
    }
    const Outcome outcome = deleteObject(command.attachment, command.kind(), name.name, purge);
    return answerOf(outcome, messagesOf(command.kind()).deleted, name.name);
}

CommandAnswer clearLocalQueue(const MqscCommand &command)
{
    const ReadName name = readName(command, NameForm::Whole);
    if (!name.ok) return name.answer;
    if (!command.parameters().empty())
        return syntaxFault(command.text, Message::SyntaxError, command.parameters().front().offset,
                           "CLEAR QLOCAL takes only a name");
    return answerOf(clearQueue(command.attachment, name.name), Message::QueueCleared, name.name);
}

} // namespace mqrig::qmgr::command
