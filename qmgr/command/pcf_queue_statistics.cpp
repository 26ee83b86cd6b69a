#include "qmgr/command/pcf_commands.h"
#include "qmgr/store/seams.h"

namespace mqrig::qmgr::command {

// One reply for each local queue: what was counted since the last reset. The counting begins anew when the counts are
// read, before the replies are anywhere; should the server be killed between, the next one is told them again.
void resetQueueStatistics(const PcfCommand &command, PcfReplies &replies)
{
    const std::string name = command.text(MQCA_Q_NAME);
    const InquiredObjects inquired = inquireObjects(command.attachment, name, command.family.kinds);
    if (!inquired.outcome.ok()) return replies.judge(inquired.outcome, MQCA_Q_NAME);

    const bool generic = name.ends_with('*');
    const std::int64_t now = store::currentTime();
    for (const InquiredObject &queue : inquired.objects) {
        if (queue.definition.kind() != objects::ObjectKind::LocalQueue) {
            if (!generic) replies.fail(faultOf(MQRCCF_Q_WRONG_TYPE, MQCA_Q_NAME));
            continue;
        }
        const auto stored = command.attachment.findDefinition(MQOT_Q, queue.definition.name());
        if (!stored) continue; // deleted meanwhile
        store::QueueStatus counted;
        const Outcome reset = command.attachment.update(0, [&](store::WriteTransaction &transaction) {
            counted = transaction.resetStatisticsFor(stored->queue, command.putTime, command.repeated);
            return success();
        });
        if (reset.failed()) return replies.judge(reset, MQCA_Q_NAME);
        PcfWriter &reply = replies.add();
        reply.text(MQCA_Q_NAME, queue.definition.name(), MQ_Q_NAME_LENGTH);
        reply.integer(MQIA_HIGH_Q_DEPTH, static_cast<MQLONG>(counted.highDepth));
        reply.integer(MQIA_MSG_ENQ_COUNT, static_cast<MQLONG>(counted.enqueued));
        reply.integer(MQIA_MSG_DEQ_COUNT, static_cast<MQLONG>(counted.dequeued));
        reply.integer(MQIA_TIME_SINCE_RESET, static_cast<MQLONG>((now - counted.resetTime) / 1000000));
    }
    if (inquired.objects.empty() || (generic && replies.empty()))
        replies.fail(faultOf(MQRC_UNKNOWN_OBJECT_NAME, MQCA_Q_NAME));
}

} // namespace mqrig::qmgr::command
