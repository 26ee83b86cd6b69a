// The MQ headers in front of a message's application data.
#pragma once

#include <cstddef>
#include <span>

#include "cmqc.h"

namespace mqrig::qmgr::core {

// How many bytes of the body are headers: the chain that begins with MQMD.Format, as far as its headers are whole.
std::size_t lengthOfHeaders(const MQMD &md, std::span<const std::byte> body);

} // namespace mqrig::qmgr::core
