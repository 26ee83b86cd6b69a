#include "qmgr/objects/catalog.h"

#include <optional>
#include <utility>

#include "qmgr/objects/object_name.h"

namespace mqrig::qmgr::objects {

const std::shared_ptr<const QueueManagerDefinition> &Catalog::queueManager()
{
    const std::uint64_t version = attachment_.definitionVersion();
    if (queueManager_ != nullptr && queueManagerVersion_ == version) return queueManager_;

    const std::string &name = attachment_.queueManagerName();
    if (const auto stored = attachment_.findDefinition(MQOT_Q_MGR, name)) {
        if (auto object = ObjectDefinition::decode(stored->bytes)) {
            queueManager_ =
                std::make_shared<const QueueManagerDefinition>(QueueManagerDefinition::from(std::move(*object)));
            // The version was read first: a change made meanwhile is seen at the next call.
            queueManagerVersion_ = version;
        }
    }
    return queueManager_;
}

FoundQueue Catalog::queue(std::string_view name)
{
    const std::uint64_t version = attachment_.definitionVersion();
    const auto known = queues_.find(name);
    if (known != queues_.end() && known->second.version == version) return {success(), known->second};

    const auto forget = [&](MQLONG reason) {
        if (known != queues_.end()) queues_.erase(known);
        return FoundQueue{failure(reason), {}};
    };
    if (!checkObjectName(name)) return forget(MQRC_UNKNOWN_OBJECT_NAME);
    const auto stored = attachment_.findDefinition(MQOT_Q, name);
    if (!stored) return forget(MQRC_UNKNOWN_OBJECT_NAME);

    // What has not changed keeps its place in memory: holders of the old version go on sharing it.
    auto object = ObjectDefinition::decode(stored->bytes);
    if (!object) return forget(MQRC_OBJECT_DAMAGED);
    QueueHold hold;
    if (known != queues_.end() && known->second.queue->id == stored->queue && known->second.queue->object == *object)
        hold.queue = known->second.queue;
    else
        hold.queue = std::make_shared<const QueueDefinition>(QueueDefinition::from(std::move(*object), stored->queue));
    hold.version = version;
    queues_.insert_or_assign(std::string(name), hold);
    return {success(), std::move(hold)};
}

Outcome Catalog::reload(QueueHold &hold)
{
    FoundQueue now = queue(hold.queue->object.name());
    if (now.outcome.failed())
        return now.outcome.Reason == MQRC_UNKNOWN_OBJECT_NAME ? failure(MQRC_Q_DELETED) : now.outcome;
    if (now.hold.queue->id != hold.queue->id) return failure(MQRC_Q_DELETED);
    hold = std::move(now.hold);
    return success();
}

} // namespace mqrig::qmgr::objects
