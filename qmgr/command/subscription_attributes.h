// The attributes of subscriptions: rows like those of the attribute table, with the numbers of command messages as
// selectors.
#pragma once

#include <span>

#include "qmgr/objects/attribute.h"
#include "qmgr/objects/attribute_value.h"
#include "qmgr/objects/subscription.h"

namespace mqrig::qmgr::command {

// In the order of the keywords; what is made by the queue manager is Dynamic.
std::span<const objects::Attribute> subscriptionAttributes();

objects::AttributeValue valueOf(const objects::Subscription &subscription, const objects::Attribute &attribute);

// False for a DESTCORL that is no hexadecimal text.
bool setValue(objects::Subscription &subscription, const objects::Attribute &attribute,
              const objects::AttributeValue &value);

} // namespace mqrig::qmgr::command
