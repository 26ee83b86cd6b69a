// MQINQ.
#pragma once

#include <span>

#include "cmqc.h"
#include "qmgr/core/connection.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::core {

struct InquireRequest {
    std::span<const MQLONG> selectors;
    std::span<MQLONG> intAttrs;  // the values of the integer selectors, in their order
    std::span<MQCHAR> charAttrs; // those of the character selectors, one behind the other
};

// An alias or a remote queue answers for itself. Failures change nothing: MQRC_NOT_OPEN_FOR_INQUIRE,
// MQRC_SELECTOR_ERROR, MQRC_Q_DELETED, MQRC_OBJECT_CHANGED (a process or namelist is gone). Warnings, the first that
// applies: MQRC_SELECTOR_NOT_FOR_TYPE, MQRC_INT_ATTR_COUNT_TOO_SMALL, MQRC_CHAR_ATTRS_TOO_SHORT.
Outcome inquire(Connection &connection, OpenObject &object, const InquireRequest &request);

} // namespace mqrig::qmgr::core
