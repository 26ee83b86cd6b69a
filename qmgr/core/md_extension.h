// The message descriptor extension: what version 2 of the descriptor has beyond version 1, as a header in front of the
// data. Programs with a version-1 descriptor put and get it; on transmission queues the descriptor is version 1, too.
#pragma once

#include <cstddef>
#include <span>

#include "cmqc.h"

namespace mqrig::qmgr::core {

// Whether version 1 of the descriptor says all that there is to say.
bool fitsVersion1(const MQMD &md);

// Of this descriptor. The data behind the extension is as the descriptor says.
MQMDE extensionOf(const MQMD &md);

// MQPUT: moves an extension in front of the body into the descriptor, which is loaded as version 2 from whatever
// version the program has. An extension in another character set or encoding than the queue manager's, or of a later
// version, or beside values of the descriptor itself, is data of the program. MQRC_NONE, MQRC_MDE_ERROR.
MQLONG takeExtension(MQLONG queueManagerCcsid, MQMD &md, std::span<const std::byte> &body);

} // namespace mqrig::qmgr::core
