#include "qmgr/core/system_object.h"

#include <optional>

#include "qmgr/objects/system_objects.h"

namespace mqrig::qmgr::core {

objects::FoundQueue findSystemQueue(Connection &connection, std::string_view name)
{
    objects::FoundQueue found = connection.catalog.definition(name);
    if (found.outcome.Reason != MQRC_UNKNOWN_OBJECT_NAME) return found;
    std::optional<store::Definition> missing = objects::systemObject(MQOT_Q, name);
    if (!missing) return found;
    const Outcome defined = connection.store->define(*missing);
    if (defined.failed() && defined.Reason != MQRC_OBJECT_ALREADY_EXISTS) return {defined, {}};
    return connection.catalog.definition(name);
}

} // namespace mqrig::qmgr::core
