#include "qmgr/objects/definition_change.h"

#include <optional>
#include <string>
#include <utility>

namespace mqrig::qmgr::objects {
namespace {

Outcome tryChange(store::Attachment &attachment, MQLONG type, std::string_view name, const DefinitionChange &change)
{
    std::optional<store::Definition> stored = attachment.findDefinition(type, name);
    if (!stored) return failure(MQRC_UNKNOWN_OBJECT_NAME);
    std::optional<ObjectDefinition> object = ObjectDefinition::decode(stored->bytes);
    if (!object) return failure(MQRC_OBJECT_DAMAGED);
    if (const Outcome changed = change(*object, stored->queue); changed.failed()) return changed;
    const std::string seen = std::exchange(stored->bytes, object->encode());
    if (stored->bytes == seen) return success();
    return attachment.alter(*stored, seen);
}

} // namespace

Outcome changeDefinition(store::Attachment &attachment, MQLONG type, std::string_view name,
                         const DefinitionChange &change)
{
    for (;;) {
        const Outcome outcome = tryChange(attachment, type, name, change);
        if (outcome.Reason != MQRC_OBJECT_CHANGED) return outcome;
    }
}

} // namespace mqrig::qmgr::objects
