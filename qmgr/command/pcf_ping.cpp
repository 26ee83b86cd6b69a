#include "qmgr/command/pcf_commands.h"

namespace mqrig::qmgr::command {

void pingQueueManager(const PcfCommand &command, PcfReplies &replies)
{
    replies.judge(command.attachment.check(), MQCA_Q_MGR_NAME);
}

} // namespace mqrig::qmgr::command
