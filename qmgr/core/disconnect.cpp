#include "qmgr/core/disconnect.h"

#include <memory>

namespace mqrig::qmgr::core {

Outcome disconnect(ConnectionUse &use)
{
    const std::unique_ptr<Connection> connection = use.remove();
    if (use.outcome().failed()) return use.outcome();
    // Open handles and the slot go with the attachment.
    return commit(*connection);
}

} // namespace mqrig::qmgr::core
