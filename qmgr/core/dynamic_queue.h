// Dynamic queues: made by MQOPEN of a model queue, removed by MQCLOSE.
//
//   temporary  goes with the handle that made it, whatever is on it; also with its connection and its process
//   permanent  as a queue that was defined; MQCLOSE removes it when told to
#pragma once

#include <string_view>

#include "cmqc.h"
#include "qmgr/core/connection.h"
#include "qmgr/objects/catalog.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::core {

// Makes a local queue with the model's attributes. A name that ends in '*' is made unique behind what stands before it.
// MQRC_DYNAMIC_Q_NAME_ERROR, MQRC_OBJECT_ALREADY_EXISTS.
objects::FoundQueue makeDynamicQueue(Connection &connection, const objects::ObjectDefinition &model,
                                     std::string_view name);

// Removes a temporary queue that this connection made, or a queue that MQOPEN failed to open after making it.
Outcome removeDynamicQueue(Connection &connection, const objects::QueueDefinition &queue);

// MQCLOSE with MQCO_DELETE or MQCO_DELETE_PURGE, before the handle goes. MQRC_OPTION_NOT_VALID_FOR_TYPE for any queue
// that the handle may not delete. MQRC_Q_NOT_EMPTY: messages and no purge, or uncommitted ones.
Outcome deleteByClose(Connection &connection, const OpenObject &object, MQLONG closeOptions);

} // namespace mqrig::qmgr::core
