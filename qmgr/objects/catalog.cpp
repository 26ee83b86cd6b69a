#include "qmgr/objects/catalog.h"

#include <optional>
#include <utility>

#include "qmgr/objects/object_name.h"

namespace mqrig::qmgr::objects {
namespace {

// From this many on, what is out of date is dropped before more is kept: a program that answers on ever new dynamic
// queues must not remember them all.
constexpr std::size_t manyQueues = 256;

// What a handle's user is told when the names that led to its queue do not lead to one any more.
Outcome lost(MQLONG reason)
{
    switch (reason) {
    case MQRC_UNKNOWN_OBJECT_NAME:
    case MQRC_UNKNOWN_ALIAS_BASE_Q:
    case MQRC_UNKNOWN_XMIT_Q:
    case MQRC_UNKNOWN_DEF_XMIT_Q:
    case MQRC_UNKNOWN_REMOTE_Q_MGR:
        return failure(MQRC_Q_DELETED);
    case MQRC_OBJECT_DAMAGED:
        return failure(MQRC_OBJECT_DAMAGED);
    default:
        return failure(MQRC_OBJECT_CHANGED);
    }
}

bool leadsToTheSame(const QueueDefinition &before, const QueueDefinition &now)
{
    return before.id == now.id && before.remote == now.remote && before.remoteQueue == now.remoteQueue &&
           before.remoteQueueManager == now.remoteQueueManager;
}

} // namespace

const std::shared_ptr<const QueueManagerDefinition> &Catalog::queueManager()
{
    const std::uint64_t version = attachment_->definitionVersion();
    if (queueManager_ != nullptr && queueManagerVersion_ == version) return queueManager_;

    const std::string &name = attachment_->queueManagerName();
    if (const auto stored = attachment_->findDefinition(MQOT_Q_MGR, name)) {
        if (auto object = ObjectDefinition::decode(stored->bytes)) {
            queueManager_ =
                std::make_shared<const QueueManagerDefinition>(QueueManagerDefinition::from(std::move(*object)));
            // The version was read first: a change made meanwhile is seen at the next call.
            queueManagerVersion_ = version;
        }
    }
    return queueManager_;
}

FoundQueue Catalog::queue(std::string_view name, std::string_view queueManager)
{
    if (!isHere(queueManager)) return resolve(name, queueManager);
    FoundQueue found = definition(name);
    if (found.outcome.failed() || found.hold.queue->type == MQQT_LOCAL) return found;

    const std::uint64_t version = found.hold.version;
    const auto known = reached_.find(name);
    if (known != reached_.end() && known->second.version == version) return {success(), known->second};
    found = resolve(name, {});
    if (found.outcome.failed()) return found;
    // The way was looked at after this version was read: a change made meanwhile is seen at the next call.
    return keep(reached_, name, {found.hold.queue, version});
}

FoundQueue Catalog::definition(std::string_view name)
{
    const std::uint64_t version = attachment_->definitionVersion();
    const auto known = queues_.find(name);
    if (known != queues_.end() && known->second.version == version) return {success(), known->second};

    const auto forget = [&](MQLONG reason) {
        if (known != queues_.end()) queues_.erase(known);
        return FoundQueue{failure(reason), {}};
    };
    if (!checkObjectName(name)) return forget(MQRC_UNKNOWN_OBJECT_NAME);
    const auto stored = attachment_->findDefinition(MQOT_Q, name);
    if (!stored) return forget(MQRC_UNKNOWN_OBJECT_NAME);

    auto object = ObjectDefinition::decode(stored->bytes);
    if (!object) return forget(MQRC_OBJECT_DAMAGED);
    // What has not changed keeps its place in memory: holders of the old version go on sharing it.
    if (known != queues_.end() && known->second.queue->id == stored->queue && known->second.queue->object == *object) {
        known->second.version = version;
        return {success(), known->second};
    }
    auto queue = std::make_shared<const QueueDefinition>(QueueDefinition::from(std::move(*object), stored->queue));
    return keep(queues_, name, {std::move(queue), version});
}

FoundObject Catalog::object(MQLONG type, std::string_view name)
{
    if (!checkObjectName(name)) return {failure(MQRC_UNKNOWN_OBJECT_NAME), {}};
    const auto stored = attachment_->findDefinition(type, name);
    if (!stored) return {failure(MQRC_UNKNOWN_OBJECT_NAME), {}};
    auto object = ObjectDefinition::decode(stored->bytes);
    return {object ? success() : failure(MQRC_OBJECT_DAMAGED), std::move(object)};
}

FoundQueue Catalog::keep(Known &known, std::string_view name, QueueHold hold)
{
    if (known.size() >= manyQueues)
        std::erase_if(known, [&](const auto &entry) { return entry.second.version != hold.version; });
    known.insert_or_assign(std::string(name), hold);
    return {success(), std::move(hold)};
}

const std::shared_ptr<const TopicTree> &Catalog::topics()
{
    const std::uint64_t version = attachment_->definitionVersion();
    if (topics_ == nullptr || topicsVersion_ != version) {
        topics_ = std::make_shared<const TopicTree>(attachment_->definitions(MQOT_TOPIC));
        topicsVersion_ = version;
    }
    return topics_;
}

std::shared_ptr<const ObjectDefinition> Catalog::process(std::string_view name)
{
    const std::uint64_t version = attachment_->definitionVersion();
    if (processesVersion_ != version) processes_.clear();
    processesVersion_ = version;
    if (const auto known = processes_.find(name); known != processes_.end()) return known->second;

    std::shared_ptr<const ObjectDefinition> found;
    if (const auto stored = attachment_->findDefinition(MQOT_PROCESS, name))
        if (auto object = ObjectDefinition::decode(stored->bytes))
            found = std::make_shared<const ObjectDefinition>(std::move(*object));
    processes_.emplace(name, found);
    return found;
}

std::vector<std::string> Catalog::triggeredBy(std::string_view initiationQueue)
{
    const std::uint64_t version = attachment_->definitionVersion();
    if (triggeredByVersion_ != version) {
        triggeredBy_.clear();
        for (const store::Definition &stored : attachment_->definitions(MQOT_Q)) {
            const auto object = ObjectDefinition::decode(stored.bytes);
            if (!object || object->kind() != ObjectKind::LocalQueue) continue;
            if (object->number(MQIA_TRIGGER_CONTROL) == MQTC_ON)
                triggeredBy_.emplace(object->text(MQCA_INITIATION_Q_NAME), stored.name);
        }
        triggeredByVersion_ = version;
    }
    std::vector<std::string> names;
    const auto [first, last] = triggeredBy_.equal_range(initiationQueue);
    for (auto each = first; each != last; ++each)
        names.push_back(each->second);
    return names;
}

Outcome Catalog::reload(QueueHold &hold)
{
    const QueueDefinition &before = *hold.queue;
    const bool reached = before.id != before.objectId || before.remote;
    FoundQueue now;
    if (!reached)
        now = definition(before.object.name());
    else if (before.askedQueueManager.empty())
        now = queue(before.object.name());
    else
        now = queue(fieldText(before.remoteQueue), before.askedQueueManager);
    if (now.outcome.failed()) return lost(now.outcome.Reason);
    if (now.hold.queue->objectId != before.objectId) return failure(MQRC_Q_DELETED);
    if (!leadsToTheSame(before, *now.hold.queue)) return failure(MQRC_OBJECT_CHANGED);
    hold = std::move(now.hold);
    return success();
}

} // namespace mqrig::qmgr::objects
