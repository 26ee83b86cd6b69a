#include "qmgr/command/pcf_commands.h"

namespace mqrig::qmgr::command {

void clearQueue(const PcfCommand &command, PcfReplies &replies)
{
    replies.judge(clearQueue(command.attachment, command.text(MQCA_Q_NAME)), MQCA_Q_NAME);
}

} // namespace mqrig::qmgr::command
