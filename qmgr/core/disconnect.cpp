#include "qmgr/core/disconnect.h"

#include <memory>

#include "qmgr/core/callbacks.h"
#include "qmgr/core/command_server.h"

namespace mqrig::qmgr::core {

Outcome disconnect(ConnectionUse &use)
{
    const std::unique_ptr<Connection> connection = use.remove();
    if (connection->callbacks != nullptr) connection->callbacks->stop();
    if (use.outcome().failed()) return use.outcome();
    const Outcome outcome = commit(*connection);
    if (connection->store->requestsWaiting()) serveRequests(*connection);
    // Open handles and the slot go with the attachment.
    return outcome;
}

} // namespace mqrig::qmgr::core
