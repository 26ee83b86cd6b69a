#include "qmgr/core/disconnect.h"

#include <memory>
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

} // namespace

Outcome disconnect(ConnectionUse &use)
{
    const std::unique_ptr<Connection> connection = use.remove();
    if (connection->callbacks != nullptr) connection->callbacks->stop();
    if (use.outcome().failed()) return use.outcome();
    const Outcome outcome = commit(*connection);
    if (connection->store->requestsWaiting()) serveRequests(*connection);
    closeTriggered(*connection);
    // The other open handles and the slot go with the attachment.
    return outcome;
}

} // namespace mqrig::qmgr::core
