#include "qmgr/core/message_selector.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <deque>
#include <iterator>
#include <optional>
#include <utility>

#include "qmgr/core/delivery.h"
#include "qmgr/objects/object_name.h"
#include "qmgr/properties/property_name.h"
#include "qmgr/properties/property_value.h"
#include "qmgr/properties/record.h"

namespace mqrig::qmgr::core {
namespace {

using properties::Property;
using properties::SelectorValue;

template <class Number>
Number numberIn(const Property &property)
{
    Number number{};
    std::memcpy(&number, property.value.data(), std::min(sizeof number, property.value.size()));
    return number;
}

// The text of the value stays that of the property.
SelectorValue valueOf(const Property &property)
{
    switch (property.type) {
    case MQTYPE_BOOLEAN:
        return SelectorValue::of(numberIn<MQLONG>(property) != 0);
    case MQTYPE_INT8:
        return SelectorValue::of(std::int64_t{numberIn<MQINT8>(property)});
    case MQTYPE_INT16:
        return SelectorValue::of(std::int64_t{numberIn<MQINT16>(property)});
    case MQTYPE_INT32:
        return SelectorValue::of(std::int64_t{numberIn<MQLONG>(property)});
    case MQTYPE_INT64:
        return SelectorValue::of(std::int64_t{numberIn<MQINT64>(property)});
    case MQTYPE_FLOAT32:
        return SelectorValue::of(static_cast<double>(numberIn<MQFLOAT32>(property)));
    case MQTYPE_FLOAT64:
        return SelectorValue::of(numberIn<MQFLOAT64>(property));
    case MQTYPE_STRING:
        return SelectorValue::ofText(property.value);
    case MQTYPE_BYTE_STRING:
        return SelectorValue::ofBytes(property.value);
    default:
        return {};
    }
}

bool isNone(const MQBYTE24 &id)
{
    return std::all_of(std::begin(id), std::end(id), [](MQBYTE byte) { return byte == 0; });
}

// As JMS writes identifiers of messages.
std::string identifierText(const MQBYTE24 &id)
{
    constexpr char digits[] = "0123456789abcdef";
    std::string text = "ID:";
    for (const MQBYTE byte : id) {
        text.push_back(digits[byte >> 4]);
        text.push_back(digits[byte & 0xF]);
    }
    return text;
}

} // namespace

// The values of a message for the names of a selector, and the memory that their texts stand in.
class MessageSelector::Values {
public:
    Values(const MessageSelector &selector, const store::MessageHeader &header) : selector_(selector), header_(header)
    {
        values_.resize(selector.meanings_.size());
    }

    void readProperties(std::span<const std::byte> stored)
    {
        (void)properties::readRecord(propertiesOf(header_, stored), properties_);
        const properties::DataForm form = properties::formOf(header_.md);
        if (form.isRfh2()) (void)properties::splitProperties(bodyOf(header_, stored), form, properties_);
        for (Property &property : properties_) {
            std::optional<SelectorValue> value; // made once: several names may stand for one property
            for (std::size_t i = 0; i < values_.size(); ++i) {
                if (!values_[i].isUnknown() || selector_.meanings_[i].property != property.name) continue;
                if (!value) value = take(property);
                values_[i] = *value;
            }
        }
    }

    void readHeader()
    {
        for (std::size_t i = 0; i < values_.size(); ++i)
            if (values_[i].isUnknown()) values_[i] = headerValue(selector_.meanings_[i]);
    }

    std::span<const SelectorValue> all() const { return values_; }

private:
    // Text that cannot be written in UTF-8 stays unknown.
    static SelectorValue take(Property &property)
    {
        if (property.type == MQTYPE_STRING && !properties::convertValue({}, property)) return {};
        return valueOf(property);
    }

    SelectorValue keep(std::string text) { return SelectorValue::ofText(texts_.emplace_back(std::move(text))); }

    SelectorValue identifier(const MQBYTE24 &id) { return isNone(id) ? SelectorValue() : keep(identifierText(id)); }

    SelectorValue replyTo()
    {
        const std::string_view queue = objects::fieldText(header_.md.ReplyToQ);
        if (queue.empty()) return {};
        return keep("queue://" + std::string(objects::fieldText(header_.md.ReplyToQMgr)) + "/" + std::string(queue));
    }

    SelectorValue headerValue(const Meaning &meaning)
    {
        const MQMD &md = header_.md;
        switch (meaning.header) {
        case Header::None:
            return {};
        case Header::Field:
            return valueOf(fields_.emplace_back(properties::fieldOf(md, *meaning.field)));
        case Header::MessageId:
            return identifier(md.MsgId);
        case Header::CorrelationId:
            return identifier(md.CorrelId);
        case Header::GroupId:
            return identifier(md.GroupId);
        case Header::GroupSequence:
            return isNone(md.GroupId) ? SelectorValue() : SelectorValue::of(std::int64_t{md.MsgSeqNumber});
        case Header::DeliveryMode:
            return SelectorValue::ofText(store::isPersistent(header_) ? "PERSISTENT" : "NON_PERSISTENT");
        case Header::Redelivered:
            return SelectorValue::of(md.BackoutCount > 0);
        case Header::ReplyTo:
            return replyTo();
        case Header::Timestamp:
            return SelectorValue::of(header_.putTime / 1000);
        }
        return {};
    }

    const MessageSelector &selector_;
    const store::MessageHeader &header_;
    std::vector<SelectorValue> values_;
    std::vector<Property> properties_;
    std::deque<Property> fields_; // neither moves what it has
    std::deque<std::string> texts_;
};

bool MessageSelector::findMeaning(const std::string &name, Meaning &meaning)
{
    struct JmsName {
        std::string_view name;
        Header header;
        std::string_view field;
    };
    // Those that also have a property of their own are known to canonicalName or NamePattern under its name.
    static constexpr JmsName jmsNames[] = {
        {"JMSMessageID", Header::MessageId, {}},
        {"JMSCorrelationID", Header::CorrelationId, {}},
        {"JMSDeliveryMode", Header::DeliveryMode, {}},
        {"JMSPriority", Header::Field, "Priority"},
        {"JMSRedelivered", Header::Redelivered, {}},
        {"JMSReplyTo", Header::ReplyTo, {}},
        {"JMSTimestamp", Header::Timestamp, {}},
        {"JMSXAppID", Header::Field, "PutApplName"},
        {"JMSXDeliveryCount", Header::Field, "BackoutCount"},
        {"JMSXGroupID", Header::GroupId, {}},
        {"JMSXGroupSeq", Header::GroupSequence, {}},
        {"JMSXUserID", Header::Field, "UserIdentifier"},
    };
    if (const std::string_view field = properties::descriptorField(name); !field.empty()) {
        meaning.header = Header::Field;
        meaning.field = properties::findDescriptorField(field);
        return meaning.field != nullptr;
    }
    // The body and what else stands at the root: nothing that could be looked at.
    const std::string_view root = std::string_view(name).substr(0, name.find('.'));
    if (root == "Root" || root == "Body") return false;

    properties::NamePattern pattern;
    if (properties::NamePattern::parse(name, pattern) != MQRC_NONE) return false;
    meaning.property = pattern.name();
    for (const JmsName &jms : jmsNames)
        if (jms.name == name) {
            meaning.header = jms.header;
            if (!jms.field.empty()) meaning.field = properties::findDescriptorField(jms.field);
        }
    // The descriptor says it for all messages, whoever put them.
    const bool always = meaning.header == Header::DeliveryMode || meaning.header == Header::Field ||
                        meaning.header == Header::MessageId || meaning.header == Header::Redelivered ||
                        meaning.header == Header::Timestamp;
    if (always) meaning.property.clear();
    return true;
}

MQLONG MessageSelector::compile(std::string_view text, std::shared_ptr<const MessageSelector> &selector)
{
    auto made = std::make_shared<MessageSelector>();
    if (const MQLONG reason = properties::Selector::compile(text, made->selector_)) return reason;
    for (const std::string &name : made->selector_.names()) {
        if (!findMeaning(name, made->meanings_.emplace_back())) return MQRC_SELECTOR_SYNTAX_ERROR;
        made->asksForProperties_ = made->asksForProperties_ || !made->meanings_.back().property.empty();
    }
    made->text_ = text;
    selector = std::move(made);
    return MQRC_NONE;
}

bool MessageSelector::matches(const store::MessageHeader &header, std::span<const std::byte> stored) const
{
    Values values(*this, header);
    if (asksForProperties_) values.readProperties(stored);
    values.readHeader();
    return selector_.holds(values.all());
}

} // namespace mqrig::qmgr::core
