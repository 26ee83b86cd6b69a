#include "qmgr/objects/object_definition.h"

#include <algorithm>
#include <cstdint>
#include <ctime>

namespace mqrig::qmgr::objects {
namespace {

constexpr char formatMark = 'O';
constexpr char formatNumber = 1;
constexpr char integerRecord = 0;
constexpr char textRecord = 1;
constexpr std::size_t recordHeader = 9;

template <typename Pairs>
auto place(Pairs &pairs, MQLONG selector)
{
    return std::lower_bound(pairs.begin(), pairs.end(), selector,
                            [](const auto &pair, MQLONG wanted) { return pair.first < wanted; });
}

template <typename Pairs, typename Value>
void store(Pairs &pairs, MQLONG selector, Value &&value)
{
    const auto at = place(pairs, selector);
    if (at != pairs.end() && at->first == selector)
        at->second = std::forward<Value>(value);
    else
        pairs.emplace(at, selector, std::forward<Value>(value));
}

void append32(std::string &bytes, std::uint32_t value)
{
    for (int shift = 0; shift < 32; shift += 8)
        bytes += static_cast<char>((value >> shift) & 0xFF);
}

std::uint32_t read32(std::string_view bytes)
{
    std::uint32_t value = 0;
    for (std::size_t i = 4; i > 0; --i)
        value = (value << 8) | static_cast<unsigned char>(bytes[i - 1]);
    return value;
}

void appendRecord(std::string &bytes, MQLONG selector, char type, std::uint32_t length)
{
    append32(bytes, static_cast<std::uint32_t>(selector));
    bytes += type;
    append32(bytes, length);
}

struct DateAndTime {
    char date[16];
    char time[16];
};

DateAndTime localNow()
{
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    localtime_r(&now, &parts);
    DateAndTime texts{};
    std::strftime(texts.date, sizeof texts.date, "%Y-%m-%d", &parts);
    std::strftime(texts.time, sizeof texts.time, "%H.%M.%S", &parts);
    return texts;
}

} // namespace

ObjectDefinition::ObjectDefinition(ObjectKind kind, std::string_view name) : kind_(kind), name_(name)
{
    for (const Attribute &attribute : attributes()) {
        if (!contains(attribute.kinds, kind)) continue;
        if (!isStored(attribute.access)) continue;
        if (attribute.isText())
            set(attribute.selector, attribute.defaultText);
        else
            set(attribute.selector, attribute.defaultNumber);
    }
}

MQLONG ObjectDefinition::number(MQLONG selector) const
{
    if (selector == MQIA_Q_TYPE) return queueType(kind_);
    if (selector == MQIA_NAME_COUNT) return static_cast<MQLONG>(splitNames(text(MQCA_NAMES)).size());
    const auto at = place(numbers_, selector);
    if (at != numbers_.end() && at->first == selector) return at->second;
    const Attribute *attribute = findSelector(kind_, selector);
    return attribute != nullptr ? attribute->defaultNumber : 0;
}

std::string_view ObjectDefinition::text(MQLONG selector) const
{
    const auto at = place(texts_, selector);
    if (at != texts_.end() && at->first == selector) return at->second;
    const Attribute *attribute = findSelector(kind_, selector);
    if (attribute == nullptr) return {};
    return attribute->access == Access::Identity ? std::string_view(name_) : attribute->defaultText;
}

AttributeValue ObjectDefinition::value(const Attribute &attribute) const
{
    if (attribute.isText()) return {0, std::string(text(attribute.selector))};
    return {number(attribute.selector), {}};
}

void ObjectDefinition::set(MQLONG selector, MQLONG number)
{
    store(numbers_, selector, number);
}

void ObjectDefinition::set(MQLONG selector, std::string_view text)
{
    while (!text.empty() && text.back() == ' ')
        text.remove_suffix(1);
    store(texts_, selector, std::string(text));
}

void ObjectDefinition::set(const Attribute &attribute, const AttributeValue &value)
{
    if (attribute.isText())
        set(attribute.selector, std::string_view(value.text));
    else
        set(attribute.selector, value.number);
}

void ObjectDefinition::stampCreated()
{
    const DateAndTime now = localNow();
    set(MQCA_CREATION_DATE, std::string_view(now.date));
    set(MQCA_CREATION_TIME, std::string_view(now.time));
    set(MQCA_ALTERATION_DATE, std::string_view(now.date));
    set(MQCA_ALTERATION_TIME, std::string_view(now.time));
}

void ObjectDefinition::stampAltered()
{
    const DateAndTime now = localNow();
    set(MQCA_ALTERATION_DATE, std::string_view(now.date));
    set(MQCA_ALTERATION_TIME, std::string_view(now.time));
}

std::string ObjectDefinition::encode() const
{
    std::string bytes;
    bytes += formatMark;
    bytes += formatNumber;
    bytes += static_cast<char>(kind_);
    bytes += static_cast<char>(name_.size());
    bytes += name_;
    for (const auto &[selector, number] : numbers_) {
        appendRecord(bytes, selector, integerRecord, 4);
        append32(bytes, static_cast<std::uint32_t>(number));
    }
    for (const auto &[selector, text] : texts_) {
        appendRecord(bytes, selector, textRecord, static_cast<std::uint32_t>(text.size()));
        bytes += text;
    }
    bytes += carried_;
    return bytes;
}

std::optional<ObjectDefinition> ObjectDefinition::decode(std::string_view bytes)
{
    if (bytes.size() < 4 || bytes[0] != formatMark || bytes[1] != formatNumber) return std::nullopt;
    const auto kind = static_cast<unsigned char>(bytes[2]);
    const auto nameLength = static_cast<unsigned char>(bytes[3]);
    bytes.remove_prefix(4);
    if (kind > static_cast<unsigned char>(ObjectKind::Topic) || bytes.size() < nameLength) return std::nullopt;

    ObjectDefinition object;
    object.kind_ = static_cast<ObjectKind>(kind);
    object.name_ = bytes.substr(0, nameLength);
    bytes.remove_prefix(nameLength);

    while (!bytes.empty()) {
        if (bytes.size() < recordHeader) return std::nullopt;
        const auto selector = static_cast<MQLONG>(read32(bytes));
        const char type = bytes[4];
        const std::size_t length = read32(bytes.substr(5));
        if (bytes.size() - recordHeader < length) return std::nullopt;
        const std::string_view value = bytes.substr(recordHeader, length);
        if (type == integerRecord && length == 4)
            object.set(selector, static_cast<MQLONG>(read32(value)));
        else if (type == textRecord)
            object.set(selector, value);
        else
            object.carried_ += bytes.substr(0, recordHeader + length);
        bytes.remove_prefix(recordHeader + length);
    }
    return object;
}

} // namespace mqrig::qmgr::objects
