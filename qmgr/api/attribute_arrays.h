// The arrays that MQINQ fills and MQSET reads.
#pragma once

#include <cstddef>
#include <span>

#include "cmqc.h"

namespace mqrig::qmgr::api {

struct AttributeArrays {
    MQLONG selectorCount;
    PMQLONG selectors;
    MQLONG intAttrCount;
    PMQLONG intAttrs;
    MQLONG charAttrLength;
    PMQCHAR charAttrs;
};

// MQRC_NONE, or what is wrong with counts and pointers: MQRC_SELECTOR_COUNT_ERROR, MQRC_SELECTOR_LIMIT_EXCEEDED,
// MQRC_SELECTOR_ERROR, MQRC_INT_ATTR_COUNT_ERROR, MQRC_INT_ATTRS_ARRAY_ERROR, MQRC_CHAR_ATTR_LENGTH_ERROR,
// MQRC_CHAR_ATTRS_ERROR.
MQLONG checkArrays(const AttributeArrays &arrays);

// The arrays as the core takes them; they have been checked.
template <class Request>
Request attributeRequest(const AttributeArrays &arrays)
{
    const auto spanOf = [](auto *first, MQLONG count) { return std::span(first, static_cast<std::size_t>(count)); };
    return {spanOf(arrays.selectors, arrays.selectorCount), spanOf(arrays.intAttrs, arrays.intAttrCount),
            spanOf(arrays.charAttrs, arrays.charAttrLength)};
}

} // namespace mqrig::qmgr::api
