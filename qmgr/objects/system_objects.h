// The objects that a new queue manager begins with.
#pragma once

#include <string_view>
#include <vector>

#include "qmgr/objects/object_kind.h"
#include "qmgr/store/attachment.h"

namespace mqrig::qmgr::objects {

// Names that commands and calls refer to.
inline constexpr std::string_view defaultLocalQueue = "SYSTEM.DEFAULT.LOCAL.QUEUE";
inline constexpr std::string_view defaultAliasQueue = "SYSTEM.DEFAULT.ALIAS.QUEUE";
inline constexpr std::string_view defaultRemoteQueue = "SYSTEM.DEFAULT.REMOTE.QUEUE";
inline constexpr std::string_view defaultModelQueue = "SYSTEM.DEFAULT.MODEL.QUEUE";
inline constexpr std::string_view defaultNamelist = "SYSTEM.DEFAULT.NAMELIST";
inline constexpr std::string_view defaultProcess = "SYSTEM.DEFAULT.PROCESS";
inline constexpr std::string_view commandQueue = "SYSTEM.ADMIN.COMMAND.QUEUE";
inline constexpr std::string_view deadLetterQueue = "SYSTEM.DEAD.LETTER.QUEUE";

// The object whose attributes a new object of that kind takes over; empty for the queue manager.
std::string_view defaultObject(ObjectKind kind);

// The queue manager's own definition, with a QMID of its own (name, date and time of the creation), and its SYSTEM.
// objects of all kinds that exist, created now, ready for store::createQueueManager.
std::vector<store::Definition> systemObjects(std::string_view queueManagerName);

} // namespace mqrig::qmgr::objects
