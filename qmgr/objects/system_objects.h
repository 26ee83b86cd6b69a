// The objects that a new queue manager begins with.
#pragma once

#include <optional>
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
inline constexpr std::string_view defaultTopic = "SYSTEM.DEFAULT.TOPIC";
inline constexpr std::string_view baseTopic = "SYSTEM.BASE.TOPIC"; // the attributes of the root of the topic tree
inline constexpr std::string_view durableModelQueue = "SYSTEM.DURABLE.MODEL.QUEUE";
inline constexpr std::string_view nonDurableModelQueue = "SYSTEM.NDURABLE.MODEL.QUEUE";
inline constexpr std::string_view retainedQueue = "SYSTEM.RETAINED.PUB.QUEUE";
inline constexpr std::string_view defaultProcess = "SYSTEM.DEFAULT.PROCESS";
inline constexpr std::string_view commandQueue = "SYSTEM.ADMIN.COMMAND.QUEUE";
inline constexpr std::string_view deadLetterQueue = "SYSTEM.DEAD.LETTER.QUEUE";

// The object whose attributes a new object of that kind takes over; empty for the queue manager.
std::string_view defaultObject(ObjectKind kind);

// The queue manager's own definition, with a QMID of its own (name, date and time of the creation), and its SYSTEM.
// objects of all kinds that exist, created now, ready for store::createQueueManager.
std::vector<store::Definition> systemObjects(std::string_view queueManagerName);

// The system object of that type (MQOT_) and name as a new queue manager would have it, if it has one: for queue
// managers that are older than the object.
std::optional<store::Definition> systemObject(MQLONG type, std::string_view name);

} // namespace mqrig::qmgr::objects
