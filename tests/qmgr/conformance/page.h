// docs/conformance.md: what of the MQI is there. Made of the table of option bits, of the table of fields and of the
// list of reasons, so that it says what these say.
#pragma once

#include <ostream>
#include <span>

#include "headers.h"
#include "reasons.h"

namespace mqrig::conformance {

void printPage(std::ostream &out, const Headers &headers, std::span<const Provoked> reasons);

} // namespace mqrig::conformance
