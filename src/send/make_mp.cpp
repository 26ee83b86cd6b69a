// The list of -smp: items of "type:name:value", separated by ",". An unknown type name takes the type of the item in
// front of it. A boolean word other than TRUE and FALSE is passed as 0, MQTYPE_AS_SET with length 0.
#include "send.h"

#include "common.h"
#include "mqicalls.h"

#include <cstring>

namespace {

constexpr std::size_t LongestByteString = 127;

/// A property value as MQSETMP takes it: `length` bytes at `data`.
struct PropertyValue {
    MQLONG length = 0;
    void *data = bytes;
    // Room for one byte more than is allowed, which an odd digit behind the last byte begins.
    MQBYTE bytes[LongestByteString + 1] = {};

    template <class Number>
    void set(Number number)
    {
        std::memcpy(bytes, &number, sizeof number);
        length = static_cast<MQLONG>(sizeof number);
    }
};

bool read_byte_string(RunParams *params, const char *text, PropertyValue &value)
{
    const std::size_t length = std::strlen(text) / 2;
    if (length > LongestByteString) {
        printf_te(params, "hexadecimal message too long: %zu\n", length);
        return false;
    }
    if (hexdec2binl(text, value.bytes, sizeof value.bytes) != StatusOk) {
        printf_te(params, "invalid hexadecimal message %s\n", text);
        return false;
    }
    value.length = static_cast<MQLONG>(length);
    return true;
}

/// `text` is null for MQTYPE_NULL alone. False after a report.
bool read_value(RunParams *params, MQLONG type, char *text, PropertyValue &value)
{
    switch (type) {
    case MQTYPE_BOOLEAN: {
        const NamedInteger *word = findByName(MQBOOL_TBL, text);
        value.set<MQBOOL>(word != nullptr ? word->value : 0);
        return true;
    }
    case MQTYPE_BYTE_STRING:
        return read_byte_string(params, text, value);
    case MQTYPE_INT8:
        value.set(static_cast<MQINT8>(lenientNumber(text)));
        return true;
    case MQTYPE_INT16:
        value.set(static_cast<MQINT16>(lenientNumber(text)));
        return true;
    case MQTYPE_INT32:
        value.set(lenientNumber(text));
        return true;
    case MQTYPE_INT64:
        value.set<MQINT64>(std::strtoll(text, nullptr, 10));
        return true;
    case MQTYPE_FLOAT32:
        value.set(static_cast<MQFLOAT32>(std::atof(text)));
        return true;
    case MQTYPE_FLOAT64:
        value.set<MQFLOAT64>(std::atof(text));
        return true;
    case MQTYPE_STRING:
        value.data = text;
        value.length = MQVL_NULL_TERMINATED;
        return true;
    default:
        return true; // MQTYPE_NULL and MQTYPE_AS_SET have no value
    }
}

/// Sets one property, whose item the tokenizer has entered: its type is read, name and value follow.
Status set_property(RunParams *params, MQHCONN hconn, MQLONG type, const char *list, char **position)
{
    char *const name = strtoknn_r(nullptr, ":", position);
    if (name == nullptr) {
        printf_te(params, "invalid MQSETMP parameter %s\n", list);
        return StatusLocalFailure;
    }
    char *const text = strtoknn_r(nullptr, ",", position);
    if (text == nullptr && type != MQTYPE_NULL) {
        printf_te(params, "invalid MQSETMP parameter type=%d string=%s\n", type, list);
        return StatusLocalFailure;
    }
    PropertyValue value;
    if (!read_value(params, type, text, value)) return StatusLocalFailure;

    MQCHARV propertyName = {MQCHARV_DEFAULT};
    propertyName.VSPtr = name;
    propertyName.VSLength = static_cast<MQLONG>(std::strlen(name));
    propertyName.VSCCSID = MQCCSI_APPL;
    const Status set = MQSeriesSetMP(hconn, params, &propertyName, type, value.length, value.data);
    return set == StatusOk ? StatusOk : StatusLocalFailure;
}

} // namespace

Status make_mp(RunParams *params, MQHCONN hconn)
{
    const Buffer<> list = checked_copy(params, params->SetMpList, {"make_mp"});
    if (list == nullptr) return StatusLocalFailure;
    char *position = nullptr;
    const char *typeName = strtoknn_r(list.get(), ":", &position);
    if (typeName == nullptr) {
        printf_te(params, "invalid MQSETMP parameter %s\n", params->SetMpList);
        return StatusLocalFailure;
    }
    MQLONG type = MQTYPE_AS_SET;
    for (; typeName != nullptr; typeName = strtoknn_r(nullptr, ":", &position)) {
        if (const NamedInteger *known = findByName(MQTYPE_TBL, typeName)) type = known->value;
        if (set_property(params, hconn, type, list.get(), &position) != StatusOk) return StatusLocalFailure;
    }
    return StatusOk;
}
