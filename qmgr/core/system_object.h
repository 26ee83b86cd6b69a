// Objects that the queue manager needs for itself.
#pragma once

#include <string_view>

#include "qmgr/core/connection.h"
#include "qmgr/objects/catalog.h"

namespace mqrig::qmgr::core {

// A SYSTEM queue or model queue. A queue manager that is older than the object gets it here, so that a store need not
// be made again for publish/subscribe. MQRC_UNKNOWN_OBJECT_NAME for what is no system object.
objects::FoundQueue findSystemQueue(Connection &connection, std::string_view name);

} // namespace mqrig::qmgr::core
