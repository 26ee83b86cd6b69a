// Properties in MQRFH2 headers at the front of a message.
//
// A header is written in the encoding and character set of the message that it stands in front of, whatever those are;
// its folders are text of their own (NameValueCCSID). Headers come from programs: none of their lengths is believed,
// and what cannot be read stays in the message as it is.
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <vector>

#include "cmqc.h"
#include "qmgr/properties/property.h"

namespace mqrig::qmgr::properties {

// What a message descriptor, or the header in front, says about data.
struct DataForm {
    MQLONG encoding = MQENC_NATIVE;
    MQLONG ccsid = 0;
    std::array<char, MQ_FORMAT_LENGTH> format{}; // in ASCII

    bool operator==(const DataForm &) const = default;
    bool isRfh2() const;
};

DataForm formOf(const MQMD &md);
void setForm(MQMD &md, const DataForm &form);

// A message whose properties have been taken out of its headers.
struct Split {
    std::vector<std::byte> headers; // what is left of the headers, in front of the rest
    std::size_t restAt = 0;         // where the rest begins in the body that was given
    DataForm form;                  // of headers and rest together
    MQLONG reason = MQRC_NONE;      // the first fault: MQRC_RFH_ERROR, MQRC_RFH_FORMAT_ERROR

    bool changed() const { return restAt != 0; }
    std::size_t length(std::size_t bodyLength) const { return headers.size() + bodyLength - restAt; }
};

// Takes the properties out of the headers that the body begins with, appending them to `properties`. Folders that are
// for somebody else or malformed stay. An unchanged body stands as it is: nothing in `headers`, restAt 0.
Split splitProperties(std::span<const std::byte> body, const DataForm &form, std::vector<Property> &properties);

// One header with all of these properties, in front of data of this form; nothing for no properties. Folders stand in
// the order in which their first properties do.
std::vector<std::byte> makeHeader(std::span<const Property *const> properties, const DataForm &data);
// What a message is that begins with such a header.
DataForm withHeader(const DataForm &data);

// Whether any of them is in one of the folders that programs of JMS read.
bool anyForJms(std::span<const Property *const> properties);

} // namespace mqrig::qmgr::properties
