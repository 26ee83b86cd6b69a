// What the queue manager does with every field of every structure of the MQI: the one table of them.
//
// A test holds it to the headers, in which no field may be missing here and none may stand here that they have not, and
// wants a test of the queue manager for the fields that are done.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "qmgr/api/option_table.h"

namespace mqrig::conformance {

using qmgr::api::Treatment;

struct FieldRow {
    std::string_view structure;
    std::string_view fields; // their names, or "*": all that no other row of the structure has
    Treatment treatment = Treatment::Done;
    std::string_view why{}; // without effect or refused: because ...
};

std::span<const FieldRow> fieldRows();

std::vector<std::string> wordsOf(std::string_view text);

} // namespace mqrig::conformance
