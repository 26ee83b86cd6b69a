#include "qmgr/api/async_put.h"

#include "qmgr/api/object_descriptor.h"
#include "qmgr/objects/object_name.h"

namespace mqrig::qmgr::api {
namespace {

std::string_view textOf(const char *name)
{
    return name == nullptr ? std::string_view() : objects::fieldText(name, MQ_Q_NAME_LENGTH);
}

} // namespace

Outcome finishAsyncPut(core::Connection &connection, const core::AsyncKind &kind, const Outcome &outcome,
                       const core::ObjectName &name, MQLONG openOptions, const ResolvedNames &found,
                       const PutCall &call, void *msgDesc)
{
    const core::AsyncTarget target{
        name.type,   name.name,        name.queueManager, textOf(found.queue), textOf(found.queueManager),
        openOptions, name.objectString};
    const Outcome answer = core::noteAsyncPut(connection, kind, outcome, target);
    if (!answer.failed() && msgDesc != nullptr) storeAsyncPutMd(call.message.header.md, msgDesc);
    return answer;
}

Outcome finishAsyncPut(core::Connection &connection, const core::AsyncKind &kind, const Outcome &outcome,
                       const core::DistributionList &list, MQLONG openOptions, const PutCall &call, void *msgDesc)
{
    for (const core::Destination &destination : list.destinations) {
        ResolvedNames found;
        if (destination.hold.queue != nullptr)
            found = resolvedNames(connection, *destination.hold.queue, Told::Destination);
        const core::AsyncTarget target{MQOT_Q,
                                       destination.name,
                                       destination.queueManager,
                                       textOf(found.queue),
                                       textOf(found.queueManager),
                                       openOptions,
                                       {}};
        if (const Outcome answer = core::noteAsyncPut(connection, kind, destination.outcome, target); answer.failed())
            return answer;
    }
    if (!outcome.failed() && msgDesc != nullptr) storeAsyncPutMd(call.message.header.md, msgDesc);
    return success();
}

} // namespace mqrig::qmgr::api
