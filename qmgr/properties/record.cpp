#include "qmgr/properties/record.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <utility>

namespace mqrig::qmgr::properties {
namespace {

struct Head {
    std::uint32_t nameLength;
    std::uint32_t typeNameLength;
    std::uint32_t valueLength;
    MQLONG type;
    MQLONG ccsid;
    MQLONG encoding;
    MQLONG support;
    MQLONG context;
    MQLONG copyOptions;
};

void append(std::vector<std::byte> &record, const void *data, std::size_t size)
{
    const auto *first = static_cast<const std::byte *>(data);
    record.insert(record.end(), first, first + size);
}

} // namespace

void appendRecord(const Property &property, std::vector<std::byte> &record)
{
    const Head head{static_cast<std::uint32_t>(property.name.size()),
                    static_cast<std::uint32_t>(property.typeName.size()),
                    static_cast<std::uint32_t>(property.value.size()),
                    property.type,
                    property.form.ccsid,
                    property.form.encoding,
                    property.descriptor.support,
                    property.descriptor.context,
                    property.descriptor.copyOptions};
    append(record, &head, sizeof head);
    append(record, property.name.data(), property.name.size());
    append(record, property.typeName.data(), property.typeName.size());
    append(record, property.value.data(), property.value.size());
}

bool readRecord(std::span<const std::byte> record, std::vector<Property> &properties)
{
    while (!record.empty()) {
        Head head;
        if (record.size() < sizeof head) return false;
        std::memcpy(&head, record.data(), sizeof head);
        record = record.subspan(sizeof head);
        if (!isType(head.type)) return false;
        const auto take = [&](std::size_t length, std::string &text) {
            if (length > record.size()) return false;
            text.assign(reinterpret_cast<const char *>(record.data()), length);
            record = record.subspan(length);
            return true;
        };
        Property property;
        if (!take(head.nameLength, property.name) || !take(head.typeNameLength, property.typeName) ||
            !take(head.valueLength, property.value))
            return false;
        const auto fixed = fixedSize(head.type);
        if (property.name.empty() || (fixed && *fixed != property.value.size())) return false;
        property.type = head.type;
        property.form = {head.ccsid, head.encoding};
        property.descriptor = {head.support, head.context, head.copyOptions};
        properties.push_back(std::move(property));
    }
    return true;
}

std::string textIn(std::span<const std::byte> record, std::string_view name)
{
    std::vector<Property> properties;
    static_cast<void>(readRecord(record, properties));
    for (const Property &property : properties)
        if (property.name == name) return property.value;
    return {};
}

} // namespace mqrig::qmgr::properties
