// The layout of every MQI type, held at compile time for the width that is being built; the tables hold both widths.
// The tests below see to it that the tables themselves leave no field out.
#include "cmqcfc.h"
#include "cmqxc.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string_view>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

namespace {

constexpr std::size_t byWidth(std::size_t on32bit, std::size_t on64bit)
{
    return sizeof(void *) == 4 ? on32bit : on64bit;
}

// Does a structure cut behind a field that ends at `end` have this length? It is padded by less than one pointer.
constexpr bool isLengthOfCut(std::size_t end, std::size_t length)
{
    return end <= length && length - end < sizeof(void *) && length % 4 == 0;
}

static_assert(MQ_BY_WIDTH(4, 8) == sizeof(void *));
static_assert(sizeof(MQBYTE) == 1 && std::is_unsigned_v<MQBYTE>);
static_assert(std::is_same_v<MQCHAR, char>);
static_assert(sizeof(MQINT8) == 1 && std::is_signed_v<MQINT8> && sizeof(MQUINT8) == 1 && std::is_unsigned_v<MQUINT8>);
static_assert(sizeof(MQINT16) == 2 && std::is_signed_v<MQINT16>);
static_assert(sizeof(MQUINT16) == 2 && std::is_unsigned_v<MQUINT16>);
static_assert(sizeof(MQINT32) == 4 && std::is_signed_v<MQINT32>);
static_assert(sizeof(MQUINT32) == 4 && std::is_unsigned_v<MQUINT32>);
static_assert(sizeof(MQLONG) == 4 && std::is_signed_v<MQLONG> && std::is_integral_v<MQLONG>);
static_assert(sizeof(MQULONG) == 4 && std::is_unsigned_v<MQULONG>);
static_assert(sizeof(MQINT64) == 8 && std::is_signed_v<MQINT64>);
static_assert(sizeof(MQUINT64) == 8 && std::is_unsigned_v<MQUINT64>);
static_assert(sizeof(MQFLOAT32) == 4 && std::is_floating_point_v<MQFLOAT32>);
static_assert(sizeof(MQFLOAT64) == 8 && std::is_floating_point_v<MQFLOAT64>);
static_assert(std::is_same_v<MQPTR, void *> && std::is_same_v<PMQVOID, void *>);
static_assert(std::is_same_v<MQHCONN, MQLONG> && std::is_same_v<MQHOBJ, MQLONG> && std::is_same_v<MQHMSG, MQINT64>);
static_assert(std::is_same_v<MQBOOL, MQLONG> && std::is_same_v<MQPID, MQLONG> && std::is_same_v<MQTID, MQLONG>);
static_assert(sizeof(MQCHAR4) == 4 && sizeof(MQCHAR264) == 264 && sizeof(MQBYTE24) == 24 && sizeof(MQBYTE128) == 128);

#define STRUCTURE(name, size32, size64)                                                                                \
    static_assert(sizeof(name) == byWidth(size32, size64), #name);                                                     \
    static_assert(std::is_same_v<name, tag##name>, #name);                                                             \
    static_assert(std::is_same_v<name, std::pointer_traits<P##name>::element_type>, #name);                            \
    static_assert(std::is_same_v<P##name, std::pointer_traits<PP##name>::element_type>, #name);
#define FIELD(structure, field, offset32, length32, offset64, length64)                                                \
    static_assert(offsetof(structure, field) == byWidth(offset32, offset64), #structure "." #field);                   \
    static_assert(sizeof(structure::field) == byWidth(length32, length64), #structure "." #field);
#define VERSION_LENGTH(structure, version, last, length32, length64)                                                   \
    static_assert(structure##_LENGTH_##version == byWidth(length32, length64), #structure " version " #version);       \
    static_assert(isLengthOfCut(offsetof(structure, last) + sizeof(structure::last), structure##_LENGTH_##version),    \
                  #structure " version " #version);
#define CURRENT_LENGTH(structure) static_assert(structure##_CURRENT_LENGTH == sizeof(structure), #structure);
#define LENGTH(constant, value) static_assert((constant) == (value), #constant);
#define FIXED_LENGTH(structure, tail) static_assert(structure##_STRUC_LENGTH_FIXED == offsetof(structure, tail));
#include "layout_cmqc.inc"
#include "layout_cmqcfc.inc"
#include "layout_cmqxc.inc"
#undef STRUCTURE
#undef FIELD
#undef VERSION_LENGTH
#undef CURRENT_LENGTH
#undef LENGTH
#undef FIXED_LENGTH

struct Field {
    std::string_view name;
    std::size_t offset;
    std::size_t length;
    std::size_t alignment;
};

struct Structure {
    std::string_view name;
    std::size_t length;
    std::size_t alignment;
    std::vector<Field> fields;
};

// The tables as data, for this width.
std::vector<Structure> structures()
{
    std::vector<Structure> all;
#define STRUCTURE(name, size32, size64) all.push_back({#name, byWidth(size32, size64), alignof(name), {}});
#define FIELD(structure, field, offset32, length32, offset64, length64)                                                \
    all.back().fields.push_back({#field, byWidth(offset32, offset64), byWidth(length32, length64),                     \
                                 std::min(alignof(decltype(structure::field)), alignof(structure))});
#define VERSION_LENGTH(structure, version, last, length32, length64)
#define CURRENT_LENGTH(structure)
#define LENGTH(constant, value)
#define FIXED_LENGTH(structure, tail)
#include "layout_cmqc.inc"
#include "layout_cmqcfc.inc"
#include "layout_cmqxc.inc"
#undef STRUCTURE
#undef FIELD
#undef VERSION_LENGTH
#undef CURRENT_LENGTH
#undef LENGTH
#undef FIXED_LENGTH
    return all;
}

constexpr std::size_t roundedUp(std::size_t length, std::size_t alignment)
{
    return (length + alignment - 1) / alignment * alignment;
}

TEST(MqiLayout, FieldsFollowEachOtherWithNoMorePaddingThanAlignmentAsks)
{
    for (const Structure &structure : structures()) {
        std::size_t end = 0;
        for (const Field &field : structure.fields) {
            EXPECT_EQ(field.offset, roundedUp(end, field.alignment)) << structure.name << "." << field.name;
            end = field.offset + field.length;
        }
        EXPECT_EQ(structure.length, roundedUp(end, structure.alignment)) << structure.name;
    }
}

TEST(MqiLayout, EveryStructureStandsInTheTablesOnce)
{
    std::vector<std::string_view> names;
    for (const Structure &structure : structures())
        names.push_back(structure.name);
    EXPECT_EQ(names.size(), 50U);
    std::sort(names.begin(), names.end());
    EXPECT_EQ(std::adjacent_find(names.begin(), names.end()), names.end());
}

} // namespace
