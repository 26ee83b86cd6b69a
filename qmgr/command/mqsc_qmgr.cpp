#include "qmgr/command/mqsc_commands.h"

namespace mqrig::qmgr::command {

CommandAnswer alterQmgr(const MqscCommand &command)
{
    if (command.object().hasValue)
        return syntaxFault(command.text, Message::SyntaxError, command.object().valueOffset(), "QMGR takes no name");
    const ReadDefinition read = readDefinition(command, objects::ObjectKind::QueueManager, Options::AlterQmgr);
    if (!read.ok) return read.answer;
    const Outcome outcome = alterQueueManager(command.attachment, read.definition.attributes);
    return answerOf(outcome, Message::QueueManagerChanged, command.attachment.queueManagerName());
}

CommandAnswer pingQmgr(const MqscCommand &command)
{
    if (command.object().hasValue || !command.parameters().empty())
        return syntaxFault(command.text, Message::SyntaxError, command.object().offset,
                           "PING QMGR takes no name and no parameters");
    return answerOf(command.attachment.check(), Message::QueueManagerResponds, command.attachment.queueManagerName());
}

} // namespace mqrig::qmgr::command
