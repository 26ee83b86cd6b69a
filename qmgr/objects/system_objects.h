// The objects that a new queue manager begins with.
#pragma once

#include <string_view>
#include <vector>

#include "qmgr/store/attachment.h"

namespace mqrig::qmgr::objects {

// Names that commands and calls refer to.
inline constexpr std::string_view defaultLocalQueue = "SYSTEM.DEFAULT.LOCAL.QUEUE";
inline constexpr std::string_view commandQueue = "SYSTEM.ADMIN.COMMAND.QUEUE";
inline constexpr std::string_view deadLetterQueue = "SYSTEM.DEAD.LETTER.QUEUE";

// The queue manager's own definition, with a QMID of its own (name, date and time of the creation), and its SYSTEM.
// objects of all kinds that exist, created now, ready for store::createQueueManager.
std::vector<store::Definition> systemObjects(std::string_view queueManagerName);

} // namespace mqrig::qmgr::objects
