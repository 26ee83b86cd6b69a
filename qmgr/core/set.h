// MQSET.
#pragma once

#include <span>

#include "cmqc.h"
#include "qmgr/core/connection.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::core {

struct SetRequest {
    std::span<const MQLONG> selectors;
    std::span<const MQLONG> intAttrs;  // the values of the integer selectors, in their order
    std::span<const MQCHAR> charAttrs; // those of the character selectors, one behind the other
};

// Sets all or nothing; of a selector given twice the last value holds. Every call of every process that begins after
// it is back sees the new values. The date of the last alteration stays as it was.
// MQRC_NOT_OPEN_FOR_SET, MQRC_Q_DELETED, MQRC_SELECTOR_ERROR: not an attribute of this type of queue, or not one that
// can be set. MQRC_INT_ATTR_COUNT_ERROR, MQRC_CHAR_ATTR_LENGTH_ERROR: fewer values than selectors.
// MQRC_INHIBIT_VALUE_ERROR, MQRC_TRIGGER_CONTROL_ERROR, MQRC_TRIGGER_TYPE_ERROR, MQRC_TRIGGER_DEPTH_ERROR,
// MQRC_TRIGGER_MSG_PRIORITY_ERR, MQRC_INT_ATTRS_ARRAY_ERROR, MQRC_CHAR_ATTRS_ERROR: a value is wrong.
Outcome set(Connection &connection, OpenObject &object, const SetRequest &request);

} // namespace mqrig::qmgr::core
