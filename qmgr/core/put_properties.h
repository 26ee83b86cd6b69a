// The properties of a message that is put: those of the message handles in MQPMO, as MQPMO.Action combines them, and
// those of a context that is passed on.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "cmqc.h"
#include "qmgr/core/connection.h"
#include "qmgr/core/destination.h"
#include "qmgr/core/message_handles.h"
#include "qmgr/objects/queue_definition.h"
#include "qmgr/store/message.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::core {

// Either handle may be missing.
struct PutHandles {
    MQLONG action = MQACTP_NEW;
    MessageHandle *original = nullptr;
    MessageHandle *created = nullptr;
    std::span<const std::byte> userContext{}; // SavedContext::properties of the handle whose context is passed on
};

// Where a message goes: to at least one queue here, or to other queue managers only. Properties may ask to be
// understood here.
enum class Reach { Here, Elsewhere };
inline Reach reachOf(const objects::QueueDefinition &queue)
{
    return queue.remote ? Reach::Elsewhere : Reach::Here;
}
Reach reachOf(const DistributionList &list);

// The descriptor that the handles make, for a put without one of its own. Version 2.
MQMD descriptorFromHandles(const PutHandles &handles);

// Puts the properties in front of the message's body: `stored` holds both then, and must live until the message is put.
// MQRC_PROPERTIES_TOO_BIG, MQRC_UNSUPPORTED_PROPERTY.
Outcome attachProperties(Connection &connection, const PutHandles &handles, Reach reach, store::NewMessage &message,
                         std::vector<std::byte> &stored);

// After the put: the new handle is that of the message which was put. `record`: its properties as they are stored.
// For want of memory the handle keeps what it had: a put that is done is not told to have failed, or it is done again.
void rememberPut(const PutHandles &handles, const MQMD &md, std::span<const std::byte> record) noexcept;

// Those of a stored message's properties that are copied into another one. `relation`: MQCOPY_REPORT and its like.
std::vector<std::byte> copiedProperties(std::span<const std::byte> stored, MQLONG relation);

// Of a message that is to be put.
inline std::size_t bodyLengthOf(const store::NewMessage &message)
{
    return message.body.size() - message.header.coreLength;
}

} // namespace mqrig::qmgr::core
