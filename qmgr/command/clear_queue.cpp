#include <span>
#include <vector>

#include "cmqcfc.h"
#include "qmgr/command/object_commands.h"
#include "qmgr/objects/object_definition.h"

namespace mqrig::qmgr::command {
namespace {

using store::Attachment;
using store::QueueId;

// Messages of one unit of work: large enough to be quick, small enough for a full disk.
constexpr std::size_t batch = 1000;

// The exclusive use that keeps getters away while the queue is cleared in several units of work.
constexpr store::OpenCounts exclusiveUse{.input = 1, .exclusive = 1, .output = 0, .browse = 0};
constexpr store::OpenCounts endOfUse{.input = -1, .exclusive = -1, .output = 0, .browse = 0};

Outcome takeExclusiveUse(Attachment &attachment, QueueId queue)
{
    return attachment.update(0, [&](store::WriteTransaction &transaction) {
        const store::QueueStatus status = transaction.queue(queue);
        const store::OpenCounts &opens = status.opens;
        if (opens.input > 0 || opens.output > 0 || opens.browse > 0) return failure(MQRC_OBJECT_IN_USE);
        if (status.held > 0 || status.uncommitted > 0) return failure(MQRC_OBJECT_IN_USE);
        transaction.addOpens(queue, exclusiveUse);
        return success();
    });
}

// Removes the first messages of the queue; `removed` is how many.
Outcome removeBatch(Attachment &attachment, QueueId queue, std::size_t &removed)
{
    std::vector<store::TakenMessage> taken;
    const Outcome locked = attachment.update(0, [&](store::WriteTransaction &transaction) {
        taken.clear();
        {
            store::MessageCursor cursor(transaction, queue);
            for (bool found = cursor.first(); found && taken.size() < batch; found = cursor.next())
                taken.push_back({cursor.key(), store::isPersistent(cursor.header())});
        }
        for (const store::TakenMessage &message : taken)
            transaction.lock(message.key);
        return success();
    });
    if (locked.failed()) return locked;
    removed = taken.size();
    if (taken.empty()) return success();
    store::Unit unit;
    unit.gets = taken;
    const Outcome committed = attachment.commit(unit);
    return committed.ok() ? success() : failure(committed.Reason);
}

} // namespace

Outcome clearQueue(Attachment &attachment, const std::string &name)
{
    const auto stored = attachment.findDefinition(MQOT_Q, name);
    if (!stored) return failure(MQRC_UNKNOWN_OBJECT_NAME);
    const auto object = objects::ObjectDefinition::decode(stored->bytes);
    if (!object) return failure(MQRC_OBJECT_DAMAGED);
    if (object->kind() != objects::ObjectKind::LocalQueue) return failure(MQRCCF_OBJECT_WRONG_TYPE);

    Outcome begun = takeExclusiveUse(attachment, stored->queue);
    if (begun.Reason == MQRC_OBJECT_IN_USE && attachment.releaseDead())
        begun = takeExclusiveUse(attachment, stored->queue);
    if (begun.failed()) return begun;

    Outcome outcome;
    std::size_t removed = batch;
    while (outcome.ok() && removed == batch)
        outcome = removeBatch(attachment, stored->queue, removed);

    const Outcome ended = attachment.update(0, [&](store::WriteTransaction &transaction) {
        transaction.addOpens(stored->queue, endOfUse);
        return success();
    });
    return outcome.failed() ? outcome : ended;
}

} // namespace mqrig::qmgr::command
