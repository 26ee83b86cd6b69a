#include "qmgr/api/object_descriptor.h"

#include "qmgr/objects/object_name.h"

namespace mqrig::qmgr::api {

MQLONG checkObject(const MQOD &od, Selects selects)
{
    if (od.RecsPresent < 0) return MQRC_RECS_PRESENT_ERROR;
    const MQCHARV &selection = od.SelectionString;
    const bool given = selection.VSLength != 0 && (selection.VSPtr != nullptr || selection.VSOffset != 0);
    return selects == Selects::Yes && given ? MQRC_FUNCTION_NOT_SUPPORTED : MQRC_NONE;
}

core::ObjectName objectName(const MQOD &od)
{
    return {od.ObjectType, objects::fieldText(od.ObjectName), objects::fieldText(od.ObjectQMgrName),
            objects::fieldText(od.DynamicQName)};
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
