#include "qmgr/api/object_descriptor.h"

#include "qmgr/objects/object_name.h"

namespace mqrig::qmgr::api {

MQLONG checkObject(const MQOD &od, Selects selects)
{
    if (od.RecsPresent < 0) return MQRC_RECS_PRESENT_ERROR;
    if (od.RecsPresent > 0) return MQRC_FUNCTION_NOT_SUPPORTED;
    const MQCHARV &selection = od.SelectionString;
    const bool given = selection.VSLength != 0 && (selection.VSPtr != nullptr || selection.VSOffset != 0);
    return selects == Selects::Yes && given ? MQRC_FUNCTION_NOT_SUPPORTED : MQRC_NONE;
}

core::ObjectName objectName(const MQOD &od)
{
    return {od.ObjectType, objects::fieldText(od.ObjectName), objects::fieldText(od.ObjectQMgrName)};
}

} // namespace mqrig::qmgr::api
