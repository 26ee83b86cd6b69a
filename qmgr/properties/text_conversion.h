// Text in and out of UTF-8.
#pragma once

#include <string>
#include <string_view>

#include "qmgr/properties/property.h"

namespace mqrig::qmgr::properties {

// False, with `to` as it was, if the text is none of its character set, or that set is not known, or the wanted set
// has not all of its characters.
bool convertText(std::string_view text, const TextForm &from, const TextForm &wanted, std::string &to);

// Whether text can be written in this character set at all.
bool isKnownCharacterSet(MQLONG ccsid);

// Bytes of the zero character that ends text of this form.
std::size_t terminatorSize(const TextForm &form);

} // namespace mqrig::qmgr::properties
