#include "qmgr/api/object_descriptor.h"

#include "qmgr/api/charv.h"
#include "qmgr/api/selection_string.h"
#include "qmgr/core/topic.h"
#include "qmgr/objects/object_name.h"

namespace mqrig::qmgr::api {

MQLONG checkObject(const MQOD &od, Selects selects)
{
    if (od.RecsPresent < 0) return MQRC_RECS_PRESENT_ERROR;
    const bool mayBeGiven = selects == Selects::Yes && od.ObjectType == MQOT_Q;
    return !mayBeGiven && isGiven(od.SelectionString) ? MQRC_SELECTOR_INVALID_FOR_TYPE : MQRC_NONE;
}

core::ObjectName objectName(const MQOD &od)
{
    return {od.ObjectType, objects::fieldText(od.ObjectName), objects::fieldText(od.ObjectQMgrName),
            objects::fieldText(od.DynamicQName)};
}

MQLONG loadObjectString(core::Connection &connection, const MQOD &od, const void *descriptor, std::string &string)
{
    const MQLONG ccsid = connection.queueManager().codedCharSetId;
    if (!loadText(od.ObjectString, descriptor, core::longestTopic, ccsid, string)) return MQRC_OBJECT_STRING_ERROR;
    return isWritable(od.ResObjectString) ? MQRC_NONE : MQRC_RES_OBJECT_STRING_ERROR;
}

void storeTopic(core::Connection &connection, const core::OpenTopic &topic, void *descriptor)
{
    storeOd({}, {}, MQOT_TOPIC, descriptor);
    MQOD &od = *static_cast<MQOD *>(descriptor);
    if (od.Version < MQOD_VERSION_4) return;
    storeText(topic.topic, descriptor, connection.queueManager().codedCharSetId, od.ResObjectString);
}

ResolvedNames resolvedNames(const core::Connection &connection, const objects::QueueDefinition &queue, Told told)
{
    if (queue.remote && told == Told::Destination) return {queue.remoteQueue.data(), queue.remoteQueueManager.data()};
    return {queue.name.data(), connection.queueManagerName.data()};
}

DestinationCounts countsOf(const objects::QueueDefinition &queue)
{
    return {queue.remote ? 0 : 1, queue.remote ? 1 : 0, 0};
}

DestinationCounts countsOf(const core::DistributionList &list)
{
    const core::ListCounts counts = core::countsOf(list);
    return {counts.known, counts.unknown, counts.invalid};
}

} // namespace mqrig::qmgr::api
