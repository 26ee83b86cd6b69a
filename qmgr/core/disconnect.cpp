#include "qmgr/core/disconnect.h"

#include <memory>
#include <new>
#include <string_view>

#include "qmgr/core/callbacks.h"
#include "qmgr/core/command_server.h"
#include "qmgr/core/open.h"
#include "qmgr/objects/object_name.h"

namespace mqrig::qmgr::core {

namespace {

// The close of the last input of a queue may trigger, so that of such queues is made as the program's own would be.
void closeTriggered(Connection &connection)
{
    for (const MQHOBJ hobj : connection.handles.all()) {
        const OpenObject &object = *connection.handles.find(hobj);
        if (object.opens.input == 0) continue;
        const std::string_view name = objects::fieldText(object.hold.queue->name);
        const objects::FoundQueue found = connection.catalog.definition(name);
        if (!found.outcome.failed() && found.hold.queue->watchesPuts) (void)closeObject(connection, hobj, MQCO_NONE);
    }
}

// The handle is gone, so the unit of work ends now: what cannot be committed is backed out with the connection.
Outcome commitLast(Connection &connection)
{
    try {
        const Outcome outcome = commit(connection);
        return connection.unit.empty() ? outcome : warning(MQRC_BACKED_OUT);
    } catch (const std::bad_alloc &) {
        return connection.unit.empty() ? success() : warning(MQRC_BACKED_OUT);
    }
}

} // namespace

Outcome disconnect(ConnectionUse &use)
{
    const std::unique_ptr<Connection> connection = use.remove();
    if (connection->callbacks != nullptr) connection->callbacks->stop();
    if (use.outcome().failed()) return use.outcome();
    const Outcome outcome = commitLast(*connection);
    if (connection->store->requestsWaiting()) serveRequests(*connection);
    try {
        closeTriggered(*connection);
    } catch (
        const std::bad_alloc &) { // NOLINT(bugprone-empty-catch): a trigger message that cannot be made is not made
    }
    // The other open handles and the slot go with the attachment.
    return outcome;
}

} // namespace mqrig::qmgr::core
