// What the queue manager does with the values of the parameters and fields that take one of a few: the one table of
// them.
//
// A test gives every value to the queue manager and holds the table to its answer, and to the headers.
#pragma once

#include <span>
#include <string_view>

#include "cmqc.h"
#include "qmgr/api/option_table.h"

namespace mqrig::conformance {

using qmgr::api::Treatment;

struct ValueRow {
    std::string_view field;
    std::string_view name;
    MQLONG value = 0;
    Treatment treatment = Treatment::Done;
    std::string_view why{}; // without effect or refused: because ...
};

struct ValueField {
    std::string_view name;
    MQLONG refusal = MQRC_NONE; // the answer to a value that is refused; MQRC_NONE: any is taken
    std::string_view prefix;    // of its constants
};

std::span<const ValueRow> valueRows();
std::span<const ValueField> valueFields();

} // namespace mqrig::conformance
