// The fields of a message descriptor as properties: "Root.MQMD.Priority".
#pragma once

#include <cstddef>
#include <string_view>

#include "cmqc.h"
#include "qmgr/properties/property.h"

namespace mqrig::qmgr::properties {

struct DescriptorField {
    std::string_view name;
    MQLONG type; // MQTYPE_INT32, MQTYPE_STRING or MQTYPE_BYTE_STRING
    std::size_t offset;
    std::size_t size;
};

// Null for a name that is none.
const DescriptorField *findDescriptorField(std::string_view name);
// By number, from 0.
inline constexpr std::size_t descriptorFields = 27;
std::size_t indexOf(const DescriptorField &field);
const DescriptorField &descriptorFieldAt(std::size_t index);

// The field's value: text without its padding.
Property fieldOf(const MQMD &md, const DescriptorField &field);
// MQRC_NONE, MQRC_PROPERTY_TYPE_ERROR, MQRC_BUFFER_LENGTH_ERROR for a value that is too long.
MQLONG setField(MQMD &md, const DescriptorField &field, const Property &property);
void copyField(const MQMD &from, const DescriptorField &field, MQMD &to);

} // namespace mqrig::qmgr::properties
