// Values of properties: as programs give and want them, as other types, as text.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "cmqc.h"
#include "qmgr/properties/property.h"

namespace mqrig::qmgr::properties {

// A value as MQSETMP has it: `length` may be MQVL_NULL_TERMINATED for strings.
struct GivenValue {
    MQLONG type = MQTYPE_NULL;
    MQLONG length = 0;
    const void *bytes = nullptr;
    TextForm form;
};
// Takes type, value and form into the property. MQRC_NONE, MQRC_PROPERTY_TYPE_ERROR, MQRC_BUFFER_LENGTH_ERROR,
// MQRC_BUFFER_ERROR, MQRC_SOURCE_CCSID_ERROR, MQRC_SOURCE_INTEGER_ENC_ERROR, MQRC_SOURCE_FLOAT_ENC_ERROR.
MQLONG takeValue(const GivenValue &given, Property &property);

// The value as another type: MQRC_NONE, MQRC_PROP_CONV_NOT_SUPPORTED, MQRC_PROP_NUMBER_FORMAT_ERROR.
MQLONG convertType(const Property &property, MQLONG type, Property &converted);

// Numbers in the byte order of the encoding, text in its character set. False: it stays as it is.
bool convertValue(const TextForm &wanted, Property &property);

// Bytes of a number in the order of this encoding for its type: in place; the same both ways. False for an encoding
// that is not known (floating point of other machines).
bool swapNumber(MQLONG type, MQLONG encoding, std::span<char> bytes);

// The value as text in UTF-8: what folders hold.
std::string valueText(const Property &property);
// The text as a value of the type; false when it is none.
bool readValueText(std::string_view text, MQLONG type, Property &property);

} // namespace mqrig::qmgr::properties
