#include "qmgr/core/inquire.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <vector>

#include "qmgr/objects/attribute.h"
#include "qmgr/objects/attribute_value.h"
#include "qmgr/objects/object_name.h"
#include "qmgr/objects/queue_counters.h"

namespace mqrig::qmgr::core {
namespace {

using objects::Attribute;
using objects::ObjectDefinition;
using objects::ObjectKind;

bool isCharacterSelector(MQLONG selector)
{
    return selector >= MQCA_FIRST && selector <= MQCA_LAST;
}

// Fills the caller's two arrays in the order of the selectors and remembers what did not go as asked.
class Answer {
public:
    Answer(const ObjectDefinition &object, const store::QueueStatus &status, const InquireRequest &request)
        : object_(object), status_(status), intAttrs_(request.intAttrs), charAttrs_(request.charAttrs)
    {
    }

    void add(MQLONG selector)
    {
        const Attribute *attribute = objects::findSelector(object_.kind(), selector);
        if (attribute == nullptr) notForType_ = true;
        if (isCharacterSelector(selector))
            addText(attribute, selector);
        else
            addNumber(attribute, selector);
    }

    Outcome outcome() const
    {
        if (notForType_) return warning(MQRC_SELECTOR_NOT_FOR_TYPE);
        if (tooFewIntegers_) return warning(MQRC_INT_ATTR_COUNT_TOO_SMALL);
        if (tooFewCharacters_) return warning(MQRC_CHAR_ATTRS_TOO_SHORT);
        return success();
    }

private:
    void addNumber(const Attribute *attribute, MQLONG selector)
    {
        if (intAttrs_.empty()) {
            tooFewIntegers_ = true;
            return;
        }
        MQLONG value = MQIAV_NOT_APPLICABLE;
        if (attribute != nullptr)
            value = attribute->access == objects::Access::Dynamic ? objects::countedValue(status_, selector)
                                                                  : object_.number(selector);
        intAttrs_.front() = value;
        intAttrs_ = intAttrs_.subspan(1);
    }

    // Attributes are there whole or not at all: from the first that does not fit, none is.
    void addText(const Attribute *attribute, MQLONG selector)
    {
        const auto fieldLength = static_cast<std::size_t>(objects::textLengthOf(selector));
        const bool isList = attribute != nullptr && attribute->value == objects::ValueKind::NameList;
        std::vector<std::string_view> texts{object_.text(selector)};
        if (isList) texts = objects::splitNames(texts.front());
        if (fieldLength * texts.size() > charAttrs_.size()) tooFewCharacters_ = true;
        if (tooFewCharacters_) return;
        for (const std::string_view text : texts) {
            const std::span<MQCHAR> field = charAttrs_.first(fieldLength);
            if (attribute == nullptr)
                std::ranges::fill(field, '*');
            else
                objects::fillField(field.data(), field.size(), text);
            charAttrs_ = charAttrs_.subspan(fieldLength);
        }
    }

    const ObjectDefinition &object_;
    const store::QueueStatus &status_;
    std::span<MQLONG> intAttrs_;
    std::span<MQCHAR> charAttrs_;
    bool notForType_ = false;
    bool tooFewIntegers_ = false;
    bool tooFewCharacters_ = false;
};

bool asksForCounters(ObjectKind kind, const InquireRequest &request)
{
    return std::ranges::any_of(request.selectors, [kind](MQLONG selector) {
        const Attribute *attribute = objects::findSelector(kind, selector);
        return attribute != nullptr && attribute->access == objects::Access::Dynamic;
    });
}

Outcome answer(Connection &connection, const ObjectDefinition &object, store::QueueId queue,
               const InquireRequest &request)
{
    for (const MQLONG selector : request.selectors)
        if (objects::standing(object.kind(), selector) == objects::SelectorStanding::Unknown)
            return failure(MQRC_SELECTOR_ERROR);

    store::QueueStatus status;
    if (asksForCounters(object.kind(), request)) {
        const Outcome counted = connection.store->read([&](store::ReadTransaction &transaction) {
            status = transaction.queue(queue);
            return success();
        });
        if (counted.failed()) return counted;
    }
    Answer answer(object, status, request);
    for (const MQLONG selector : request.selectors)
        answer.add(selector);
    return answer.outcome();
}

} // namespace

Outcome inquire(Connection &connection, OpenObject &object, const InquireRequest &request)
{
    if (!object.allows(MQOO_INQUIRE)) return failure(MQRC_NOT_OPEN_FOR_INQUIRE);
    if (object.type == MQOT_Q_MGR) return answer(connection, connection.queueManager().object, 0, request);
    if (object.type != MQOT_Q) {
        const objects::FoundObject found = connection.catalog.object(object.type, object.name);
        if (found.outcome.Reason == MQRC_UNKNOWN_OBJECT_NAME) return failure(MQRC_OBJECT_CHANGED);
        return found.outcome.failed() ? found.outcome : answer(connection, *found.object, 0, request);
    }
    if (const Outcome there = connection.catalog.refresh(object.hold); there.failed()) return there;
    return answer(connection, object.hold.queue->object, object.hold.queue->id, request);
}

} // namespace mqrig::qmgr::core
