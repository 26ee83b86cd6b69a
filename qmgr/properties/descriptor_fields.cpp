#include "qmgr/properties/descriptor_fields.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>

#include "qmgr/properties/property_value.h"

namespace mqrig::qmgr::properties {
namespace {

constexpr DescriptorField number(std::string_view name, std::size_t offset)
{
    return {name, MQTYPE_INT32, offset, sizeof(MQLONG)};
}
constexpr DescriptorField text(std::string_view name, std::size_t offset, std::size_t size)
{
    return {name, MQTYPE_STRING, offset, size};
}
constexpr DescriptorField bytes(std::string_view name, std::size_t offset, std::size_t size)
{
    return {name, MQTYPE_BYTE_STRING, offset, size};
}

constexpr DescriptorField fields[] = {
    number("Report", offsetof(MQMD, Report)),
    number("MsgType", offsetof(MQMD, MsgType)),
    number("Expiry", offsetof(MQMD, Expiry)),
    number("Feedback", offsetof(MQMD, Feedback)),
    number("Encoding", offsetof(MQMD, Encoding)),
    number("CodedCharSetId", offsetof(MQMD, CodedCharSetId)),
    text("Format", offsetof(MQMD, Format), sizeof(MQCHAR8)),
    number("Priority", offsetof(MQMD, Priority)),
    number("Persistence", offsetof(MQMD, Persistence)),
    bytes("MsgId", offsetof(MQMD, MsgId), sizeof(MQBYTE24)),
    bytes("CorrelId", offsetof(MQMD, CorrelId), sizeof(MQBYTE24)),
    number("BackoutCount", offsetof(MQMD, BackoutCount)),
    text("ReplyToQ", offsetof(MQMD, ReplyToQ), sizeof(MQCHAR48)),
    text("ReplyToQMgr", offsetof(MQMD, ReplyToQMgr), sizeof(MQCHAR48)),
    text("UserIdentifier", offsetof(MQMD, UserIdentifier), sizeof(MQCHAR12)),
    bytes("AccountingToken", offsetof(MQMD, AccountingToken), sizeof(MQBYTE32)),
    text("ApplIdentityData", offsetof(MQMD, ApplIdentityData), sizeof(MQCHAR32)),
    number("PutApplType", offsetof(MQMD, PutApplType)),
    text("PutApplName", offsetof(MQMD, PutApplName), sizeof(MQCHAR28)),
    text("PutDate", offsetof(MQMD, PutDate), sizeof(MQCHAR8)),
    text("PutTime", offsetof(MQMD, PutTime), sizeof(MQCHAR8)),
    text("ApplOriginData", offsetof(MQMD, ApplOriginData), sizeof(MQCHAR4)),
    bytes("GroupId", offsetof(MQMD, GroupId), sizeof(MQBYTE24)),
    number("MsgSeqNumber", offsetof(MQMD, MsgSeqNumber)),
    number("Offset", offsetof(MQMD, Offset)),
    number("MsgFlags", offsetof(MQMD, MsgFlags)),
    number("OriginalLength", offsetof(MQMD, OriginalLength)),
};
static_assert(std::size(fields) == descriptorFields);

} // namespace

const DescriptorField *findDescriptorField(std::string_view name)
{
    const auto *found = std::find_if(std::begin(fields), std::end(fields),
                                     [=](const DescriptorField &field) { return field.name == name; });
    return found == std::end(fields) ? nullptr : found;
}

std::size_t indexOf(const DescriptorField &field)
{
    return static_cast<std::size_t>(&field - std::begin(fields));
}

Property fieldOf(const MQMD &md, const DescriptorField &field)
{
    Property property;
    property.name = "Root.MQMD." + std::string(field.name);
    property.type = field.type;
    property.descriptor.copyOptions = MQCOPY_NONE;
    property.value.assign(reinterpret_cast<const char *>(&md) + field.offset, field.size);
    if (field.type == MQTYPE_STRING)
        property.value.resize(property.value.find_last_not_of(std::string_view(" \0", 2)) + 1);
    return property;
}

MQLONG setField(MQMD &md, const DescriptorField &field, const Property &property)
{
    Property value;
    if (convertType(property, field.type, value) != MQRC_NONE) return MQRC_PROPERTY_TYPE_ERROR;
    if (field.type == MQTYPE_STRING && !convertValue({}, value)) return MQRC_SOURCE_CCSID_ERROR;
    if (value.value.size() > field.size) return MQRC_BUFFER_LENGTH_ERROR;
    char *to = reinterpret_cast<char *>(&md) + field.offset;
    std::memset(to, field.type == MQTYPE_STRING ? ' ' : 0, field.size);
    std::memcpy(to, value.value.data(), value.value.size());
    return MQRC_NONE;
}

void copyField(const MQMD &from, const DescriptorField &field, MQMD &to)
{
    std::memcpy(reinterpret_cast<char *>(&to) + field.offset, reinterpret_cast<const char *>(&from) + field.offset,
                field.size);
}

const DescriptorField &descriptorFieldAt(std::size_t index)
{
    return fields[index];
}

} // namespace mqrig::qmgr::properties
