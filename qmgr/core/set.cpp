#include "qmgr/core/set.h"

#include <algorithm>
#include <vector>

#include "qmgr/core/trigger.h"
#include "qmgr/objects/attribute.h"
#include "qmgr/objects/attribute_value.h"
#include "qmgr/objects/definition_change.h"
#include "qmgr/objects/object_name.h"

namespace mqrig::qmgr::core {
namespace {

using objects::Attribute;
using objects::ObjectDefinition;
using objects::ObjectKind;

struct Assignment {
    const Attribute *attribute;
    objects::AttributeValue value;
};

// What a wrong value answers.
MQLONG valueError(MQLONG selector)
{
    switch (selector) {
    case MQIA_INHIBIT_GET:
    case MQIA_INHIBIT_PUT:
        return MQRC_INHIBIT_VALUE_ERROR;
    case MQIA_TRIGGER_CONTROL:
        return MQRC_TRIGGER_CONTROL_ERROR;
    case MQIA_TRIGGER_TYPE:
        return MQRC_TRIGGER_TYPE_ERROR;
    case MQIA_TRIGGER_DEPTH:
        return MQRC_TRIGGER_DEPTH_ERROR;
    case MQIA_TRIGGER_MSG_PRIORITY:
        return MQRC_TRIGGER_MSG_PRIORITY_ERR;
    case MQCA_TRIGGER_DATA:
        return MQRC_CHAR_ATTRS_ERROR;
    default:
        return MQRC_INT_ATTRS_ARRAY_ERROR;
    }
}

// The selectors of a request with their values, as far as nothing is wrong with them.
class Assignments {
public:
    Assignments(ObjectKind kind, const SetRequest &request) : intAttrs_(request.intAttrs), charAttrs_(request.charAttrs)
    {
        for (const MQLONG selector : request.selectors) {
            const Attribute *attribute = objects::findSelector(kind, selector);
            if (attribute == nullptr || !attribute->settable) {
                outcome_ = failure(MQRC_SELECTOR_ERROR);
                return;
            }
            assignments_.push_back({attribute, {}});
        }
        for (Assignment &assignment : assignments_)
            if (!outcome_.failed()) outcome_ = read(assignment);
    }

    const Outcome &outcome() const { return outcome_; }

    void apply(ObjectDefinition &object) const
    {
        for (const Assignment &assignment : assignments_)
            object.set(*assignment.attribute, assignment.value);
    }

    bool touchesTriggering() const
    {
        return std::ranges::any_of(assignments_, [](const Assignment &each) { return each.attribute->triggering; });
    }

private:
    Outcome read(Assignment &assignment)
    {
        const Attribute &attribute = *assignment.attribute;
        objects::ValueFault fault = objects::ValueFault::None;
        if (attribute.isText()) {
            const auto length = static_cast<std::size_t>(attribute.textLength);
            if (charAttrs_.size() < length) return failure(MQRC_CHAR_ATTR_LENGTH_ERROR);
            assignment.value.text = objects::fieldText(charAttrs_.data(), length);
            charAttrs_ = charAttrs_.subspan(length);
            fault = objects::checkText(attribute, assignment.value.text);
        } else {
            if (intAttrs_.empty()) return failure(MQRC_INT_ATTR_COUNT_ERROR);
            assignment.value.number = intAttrs_.front();
            intAttrs_ = intAttrs_.subspan(1);
            fault = objects::checkNumber(attribute, assignment.value.number);
        }
        return fault == objects::ValueFault::None ? success() : failure(valueError(attribute.selector));
    }

    std::span<const MQLONG> intAttrs_;
    std::span<const MQCHAR> charAttrs_;
    std::vector<Assignment> assignments_;
    Outcome outcome_;
};

} // namespace

Outcome set(Connection &connection, OpenObject &object, const SetRequest &request)
{
    if (!object.allows(MQOO_SET)) return failure(MQRC_NOT_OPEN_FOR_SET);
    if (const Outcome there = connection.catalog.refresh(object.hold); there.failed()) return there;
    const ObjectDefinition &opened = object.hold.queue->object;
    const Assignments assignments(opened.kind(), request);
    if (assignments.outcome().failed()) return assignments.outcome();

    const store::QueueId id = object.hold.queue->objectId;
    const auto change = [&](ObjectDefinition &queue, store::QueueId itsId) {
        if (itsId != id) return failure(MQRC_Q_DELETED);
        assignments.apply(queue);
        return success();
    };
    const Outcome changed = objects::changeDefinition(*connection.store, MQOT_Q, opened.name(), change);
    if (!changed.failed() && assignments.touchesTriggering()) triggerAfterChange(connection, opened.name());
    return changed.Reason == MQRC_UNKNOWN_OBJECT_NAME ? failure(MQRC_Q_DELETED) : changed;
}

} // namespace mqrig::qmgr::core
