#include "qmgr/command/pcf_commands.h"

namespace mqrig::qmgr::command {

void inquireQueueManager(const PcfCommand &command, PcfReplies &replies)
{
    const PcfSelection selection = readSelection(command, MQIACF_Q_MGR_ATTRS);
    if (selection.fault) return replies.fail(selection.fault);
    const InquiredQueueManager inquired = inquireQueueManager(command.attachment);
    if (inquired.outcome.failed()) return replies.judge(inquired.outcome, MQCA_Q_MGR_NAME);
    writeObject(replies.add(), command.family, inquired.queueManager, selection);
}

void changeQueueManager(const PcfCommand &command, PcfReplies &replies)
{
    const PcfChoice force = readChoice(command, MQIACF_FORCE, MQRCCF_FORCE_VALUE_ERROR);
    const PcfAssignments read = readAssignments(command, objects::ObjectKind::QueueManager);
    for (const PcfFault &fault : {force.fault, read.fault})
        if (fault) replies.fail(fault);
    if (replies.failed()) return;
    replies.judge(alterQueueManager(command.attachment, read.assignments), MQCA_Q_MGR_NAME);
}

} // namespace mqrig::qmgr::command
