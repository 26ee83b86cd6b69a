// MQOPEN, and the way to a queue that MQPUT1 shares with it.
#pragma once

#include <string_view>

#include "cmqc.h"
#include "qmgr/core/connection.h"
#include "qmgr/objects/catalog.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::core {

// The object that an MQOD names; names without padding.
struct ObjectName {
    MQLONG type = MQOT_Q;
    std::string_view name;
    std::string_view queueManager;
    std::string_view dynamicName{};  // what MQOPEN calls the queue that it makes of a model
    std::string_view objectString{}; // of a topic
};

// The queue that messages for this name are put on. Beside the reasons of name resolution: MQRC_OBJECT_TYPE_ERROR where
// messages cannot be put.
objects::FoundQueue resolveForPut(Connection &connection, const ObjectName &name);

// What every MQOPEN asks first: MQRC_Q_MGR_QUIESCING, MQRC_HANDLE_NOT_AVAILABLE.
Outcome mayOpen(Connection &connection, MQLONG options);

// Opens the object with options (MQOO_, checked) and leaves its handle in `hobj`. Beside the reasons of name
// resolution: MQRC_OBJECT_TYPE_ERROR, MQRC_OPTION_NOT_VALID_FOR_TYPE, MQRC_OBJECT_IN_USE, MQRC_HANDLE_NOT_AVAILABLE,
// MQRC_Q_MGR_QUIESCING, and for a model queue those of makeDynamicQueue.
Outcome openObject(Connection &connection, const ObjectName &name, MQLONG options, MQHOBJ &hobj);

// Opens once more what the object was opened for, in another life of the queue manager; its handle stays.
Outcome reopenObject(Connection &connection, OpenObject &object);

// MQCLOSE with options (MQCO_, checked). MQRC_HOBJ_ERROR. The handle stays where MQCO_DELETE and MQCO_DELETE_PURGE are
// refused (deleteByClose).
Outcome closeObject(Connection &connection, MQHOBJ hobj, MQLONG options);

} // namespace mqrig::qmgr::core
