// Selection strings as programs give them: MQOD.SelectionString and MQSD.SelectionString.
#pragma once

#include <memory>
#include <string>

#include "cmqc.h"
#include "qmgr/core/connection.h"
#include "qmgr/core/message_selector.h"

namespace mqrig::qmgr::api {

// Whether there is one: a length, and a place.
bool isGiven(const MQCHARV &text);

// The text in UTF-8; empty, or nothing but blanks, for none. `structure`: what VSOffset counts from. MQRC_NONE,
// MQRC_SELECTION_STRING_ERROR, MQRC_SOURCE_CCSID_ERROR.
MQLONG loadSelectionString(core::Connection &connection, const MQCHARV &given, const void *structure,
                           std::string &text);

// Both steps for MQOPEN: no selector for no text.
MQLONG loadSelector(core::Connection &connection, const MQCHARV &given, const void *structure,
                    std::shared_ptr<const core::MessageSelector> &selector);

} // namespace mqrig::qmgr::api
