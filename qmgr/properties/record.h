// The form in which the properties that were set on a message stand in front of its body in the store: exactly as they
// were set, value by value.
//
// Per property: nine integers in native order (lengths of name, type name and value; type; character set and encoding
// of the text; support, context, copy options), then name, type name, value.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "qmgr/properties/property.h"

namespace mqrig::qmgr::properties {

void appendRecord(const Property &property, std::vector<std::byte> &record);

// Appends the properties; false where the record is damaged: those before the damage have been read.
bool readRecord(std::span<const std::byte> record, std::vector<Property> &properties);

// The value of the property of that name, which is a text; empty where there is none.
std::string textIn(std::span<const std::byte> record, std::string_view name);

} // namespace mqrig::qmgr::properties
