// MQ's name resolution: from the names in an object descriptor to the local queue where messages go.
//
//   ObjectQMgrName            ObjectName      leads to
//   blank, or this one        local queue     that queue
//                             alias queue     its base, which is a local or a remote queue
//                             remote queue    RNAME at RQMNAME, through the transmission queue XMITQ; where that is
//                                             blank through the queue named as RQMNAME, else through DEFXMITQ
//                             model queue     none: MQOPEN makes one
//   queue manager alias       any             the same name at RQMNAME, which may be this queue manager; the
//   (remote queue without                     transmission queue is found as for a remote queue
//   RNAME)
//   transmission queue        any             that name there, through that queue
//   any other                 any             that name there, through DEFXMITQ
#include "qmgr/objects/catalog.h"

#include <utility>

#include "qmgr/objects/object_name.h"

namespace mqrig::qmgr::objects {
namespace {

FoundQueue failed(MQLONG reason)
{
    return {failure(reason), {}};
}

// `version` was read before anything on the way was.
FoundQueue found(QueueDefinition &&queue, std::uint64_t version)
{
    return {success(), {std::make_shared<const QueueDefinition>(std::move(queue)), version}};
}

MQLONG inhibitedByEither(MQLONG first, MQLONG second)
{
    static_assert(MQQA_PUT_INHIBITED == MQQA_GET_INHIBITED && MQQA_PUT_ALLOWED == MQQA_GET_ALLOWED);
    return first == MQQA_PUT_INHIBITED ? first : second;
}

// The queue that was found on the way, seen under the name of `named`.
QueueDefinition seenAs(const QueueDefinition &named, const QueueDefinition &queue)
{
    QueueDefinition seen = queue;
    seen.type = named.type;
    seen.object = named.object;
    seen.objectId = named.objectId;
    seen.inhibitPut = inhibitedByEither(named.inhibitPut, queue.inhibitPut);
    seen.defPriority = named.defPriority;
    seen.defPersistence = named.defPersistence;
    seen.defPutResponse = named.defPutResponse;
    if (named.type == MQQT_ALIAS) {
        seen.inhibitGet = inhibitedByEither(named.inhibitGet, queue.inhibitGet);
        seen.propertyControl = named.propertyControl;
        seen.defReadAhead = named.defReadAhead;
    }
    return seen;
}

void sendOn(QueueDefinition &transmission, std::string_view queue, std::string_view queueManager)
{
    transmission.remote = true;
    fillField(transmission.remoteQueue, queue);
    fillField(transmission.remoteQueueManager, queueManager);
}

// What is wrong with a queue that shall be a transmission queue.
struct TransmissionReasons {
    MQLONG unknown;
    MQLONG type;
    MQLONG usage;
};

FoundQueue asTransmissionQueue(FoundQueue queue, const TransmissionReasons &reasons)
{
    if (queue.outcome.Reason == MQRC_UNKNOWN_OBJECT_NAME) return failed(reasons.unknown);
    if (queue.outcome.failed()) return queue;
    if (queue.hold.queue->type != MQQT_LOCAL) return failed(reasons.type);
    if (queue.hold.queue->usage != MQUS_TRANSMISSION) return failed(reasons.usage);
    return queue;
}

} // namespace

bool Catalog::isHere(std::string_view queueManager) const
{
    return queueManager.empty() || queueManager == attachment_->queueManagerName();
}

FoundQueue Catalog::resolve(std::string_view name, std::string_view queueManager)
{
    if (!isHere(queueManager)) return resolveElsewhere(name, queueManager);
    FoundQueue named = definition(name);
    if (named.outcome.failed()) return named;
    switch (named.hold.queue->type) {
    case MQQT_LOCAL:
        return named;
    case MQQT_ALIAS:
        return resolveAlias(*named.hold.queue);
    case MQQT_REMOTE:
        return resolveRemote(*named.hold.queue);
    default:
        return failed(MQRC_Q_TYPE_ERROR);
    }
}

FoundQueue Catalog::resolveAlias(const QueueDefinition &alias)
{
    const std::string_view name = alias.object.text(MQCA_BASE_Q_NAME);
    if (alias.object.number(MQIA_BASE_TYPE) == MQOT_TOPIC) return failed(MQRC_ALIAS_BASE_Q_TYPE_ERROR);
    FoundQueue base = definition(name);
    if (base.outcome.Reason == MQRC_UNKNOWN_OBJECT_NAME) return failed(MQRC_UNKNOWN_ALIAS_BASE_Q);
    if (base.outcome.failed()) return base;
    if (base.hold.queue->type == MQQT_REMOTE)
        base = resolveRemote(*base.hold.queue);
    else if (base.hold.queue->type != MQQT_LOCAL)
        return failed(MQRC_ALIAS_BASE_Q_TYPE_ERROR);
    if (base.outcome.failed()) return base;
    return found(seenAs(alias, *base.hold.queue), base.hold.version);
}

FoundQueue Catalog::resolveRemote(const QueueDefinition &remote)
{
    const std::string_view name = remote.object.text(MQCA_REMOTE_Q_NAME);
    const std::string_view queueManager = remote.object.text(MQCA_REMOTE_Q_MGR_NAME);
    if (name.empty()) return failed(MQRC_REMOTE_Q_NAME_ERROR);
    if (isHere(queueManager)) return failed(MQRC_UNKNOWN_REMOTE_Q_MGR);
    FoundQueue transmission = transmissionQueue(remote.object.text(MQCA_XMIT_Q_NAME), queueManager);
    if (transmission.outcome.failed()) return transmission;
    QueueDefinition seen = seenAs(remote, *transmission.hold.queue);
    sendOn(seen, name, queueManager);
    return found(std::move(seen), transmission.hold.version);
}

FoundQueue Catalog::resolveElsewhere(std::string_view name, std::string_view queueManager)
{
    if (name.empty()) return failed(MQRC_REMOTE_Q_NAME_ERROR);
    if (!checkObjectName(queueManager)) return failed(MQRC_UNKNOWN_OBJECT_Q_MGR);

    const std::uint64_t version = attachment_->definitionVersion();
    FoundQueue named = definition(queueManager);
    if (named.outcome.Reason == MQRC_OBJECT_DAMAGED) return named;
    const bool known = !named.outcome.failed();
    const bool isAlias = known && named.hold.queue->type == MQQT_REMOTE;
    std::string_view there = queueManager;
    std::string_view through;
    if (isAlias) {
        const ObjectDefinition &alias = named.hold.queue->object;
        there = alias.text(MQCA_REMOTE_Q_MGR_NAME);
        through = alias.text(MQCA_XMIT_Q_NAME);
        if (!alias.text(MQCA_REMOTE_Q_NAME).empty() || there.empty()) return failed(MQRC_UNKNOWN_REMOTE_Q_MGR);
        if (isHere(there)) return queue(name);
    }
    if (known && named.hold.queue->type == MQQT_MODEL) return failed(MQRC_UNKNOWN_REMOTE_Q_MGR);

    FoundQueue transmission = transmissionQueue(through, there);
    if (transmission.outcome.failed()) return transmission;
    QueueDefinition seen =
        isAlias ? seenAs(*named.hold.queue, *transmission.hold.queue) : QueueDefinition(*transmission.hold.queue);
    sendOn(seen, name, there);
    seen.askedQueueManager = queueManager;
    return found(std::move(seen), version);
}

FoundQueue Catalog::transmissionQueue(std::string_view name, std::string_view there)
{
    constexpr TransmissionReasons own = {MQRC_UNKNOWN_XMIT_Q, MQRC_XMIT_Q_TYPE_ERROR, MQRC_XMIT_Q_USAGE_ERROR};
    if (!name.empty()) return asTransmissionQueue(definition(name), own);
    FoundQueue ofThatName = definition(there);
    if (ofThatName.outcome.Reason != MQRC_UNKNOWN_OBJECT_NAME) return asTransmissionQueue(std::move(ofThatName), own);

    constexpr TransmissionReasons byDefault = {MQRC_UNKNOWN_DEF_XMIT_Q, MQRC_DEF_XMIT_Q_TYPE_ERROR,
                                               MQRC_DEF_XMIT_Q_USAGE_ERROR};
    const std::string_view defaultQueue = fieldText(queueManager()->defaultXmitQueue);
    if (defaultQueue.empty()) return failed(MQRC_UNKNOWN_REMOTE_Q_MGR);
    return asTransmissionQueue(definition(defaultQueue), byDefault);
}

} // namespace mqrig::qmgr::objects
