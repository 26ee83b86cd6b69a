// One property of a message: a name, a typed value, and what MQPD says about it.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "cmqc.h"

namespace mqrig::qmgr::properties {

// The fields of MQPD.
struct Descriptor {
    MQLONG support = MQPD_SUPPORT_OPTIONAL;
    MQLONG context = MQPD_NO_CONTEXT;
    MQLONG copyOptions = MQCOPY_DEFAULT;

    bool operator==(const Descriptor &) const = default;
};

// How text is written, and in which byte order Unicode of two bytes stands.
struct TextForm {
    MQLONG ccsid = 1208;
    MQLONG encoding = MQENC_NATIVE;

    bool operator==(const TextForm &) const = default;
};
inline constexpr MQLONG utf8Ccsid = 1208;

struct Property {
    std::string name;          // UTF-8, canonical (property_name.h)
    MQLONG type = MQTYPE_NULL; // MQTYPE_, never MQTYPE_AS_SET
    std::string value;         // numbers of the type's size in native order, bytes, or text
    TextForm form;             // of MQTYPE_STRING
    Descriptor descriptor;
    std::string typeName; // dt attribute that is no type of ours; the value is its text

    bool operator==(const Property &) const = default;
};

// Bytes of a value of a fixed size; empty for strings, 0 for MQTYPE_NULL and for what is no type.
constexpr std::optional<std::size_t> fixedSize(MQLONG type)
{
    switch (type) {
    case MQTYPE_BYTE_STRING:
    case MQTYPE_STRING:
        return std::nullopt;
    case MQTYPE_INT8:
        return 1;
    case MQTYPE_INT16:
        return 2;
    case MQTYPE_BOOLEAN:
    case MQTYPE_INT32:
    case MQTYPE_FLOAT32:
        return 4;
    case MQTYPE_INT64:
    case MQTYPE_FLOAT64:
        return 8;
    default:
        return 0;
    }
}

constexpr bool isType(MQLONG type)
{
    return type == MQTYPE_NULL || !fixedSize(type) || *fixedSize(type) != 0;
}

} // namespace mqrig::qmgr::properties
