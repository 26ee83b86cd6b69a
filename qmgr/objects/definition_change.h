// A change of a stored object, made so that no change of another connection is lost.
#pragma once

#include <functional>
#include <string_view>

#include "qmgr/objects/object_definition.h"
#include "qmgr/store/attachment.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::objects {

// Changes the object in place; `queue` is the number of its messages in the store. A failure leaves what is stored.
using DefinitionChange = std::function<Outcome(ObjectDefinition &object, store::QueueId queue)>;

// Reads the object (MQOT_ and name), lets it be changed and stores it; made again from what is stored then, for as long
// as other connections change the object meanwhile. Nothing is written where nothing has changed. Beside the reasons of
// the change: MQRC_UNKNOWN_OBJECT_NAME, MQRC_OBJECT_DAMAGED and those of the store.
Outcome changeDefinition(store::Attachment &attachment, MQLONG type, std::string_view name,
                         const DefinitionChange &change);

} // namespace mqrig::qmgr::objects
