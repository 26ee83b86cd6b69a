#include "qmgr/properties/record.h"

#include <gtest/gtest.h>

#include <cstring>

namespace mqrig::qmgr::properties {
namespace {

std::vector<Property> some()
{
    Property word;
    word.name = "color";
    word.type = MQTYPE_STRING;
    word.value = std::string("r\0d", 3);
    word.form = {819, MQENC_NORMAL};
    word.descriptor = {MQPD_SUPPORT_OPTIONAL, MQPD_USER_CONTEXT, MQCOPY_REPLY};
    Property number;
    number.name = "a.b";
    number.type = MQTYPE_INT16;
    number.value = "\1\2";
    Property nothing;
    nothing.name = "gone";
    Property strange;
    strange.name = "when";
    strange.type = MQTYPE_STRING;
    strange.typeName = "date";
    return {word, number, nothing, strange};
}

std::vector<std::byte> recorded(const std::vector<Property> &properties)
{
    std::vector<std::byte> record;
    for (const Property &property : properties)
        appendRecord(property, record);
    return record;
}

TEST(Record, KeepsEverything)
{
    std::vector<Property> read;
    EXPECT_TRUE(readRecord(recorded(some()), read));
    EXPECT_EQ(read, some());
}

TEST(Record, TextIsFoundByItsName)
{
    EXPECT_EQ(textIn(recorded(some()), "color"), std::string("r\0d", 3));
    EXPECT_EQ(textIn(recorded(some()), "colour"), "");
    EXPECT_EQ(textIn({}, "color"), "");
}

TEST(Record, CutAnywhereIsDamaged)
{
    const std::vector<std::byte> record = recorded(some());
    std::size_t whole = 0;
    for (std::size_t length = 0; length < record.size(); ++length) {
        std::vector<Property> read;
        whole += readRecord(std::span(record).first(length), read) ? 1 : 0;
        EXPECT_LT(read.size(), some().size());
    }
    EXPECT_EQ(whole, some().size()) << "between two properties nothing is missing";
}

TEST(Record, EveryByteChangedIsSurvived)
{
    const std::vector<std::byte> record = recorded(some());
    for (std::size_t at = 0; at < record.size(); ++at)
        for (const int value : {0, 1, 0x7F, 0xFF}) {
            std::vector<std::byte> changed = record;
            changed[at] = static_cast<std::byte>(value);
            std::vector<Property> read;
            (void)readRecord(changed, read);
            for (const Property &property : read)
                EXPECT_LE(property.value.size(), record.size());
        }
}

} // namespace
} // namespace mqrig::qmgr::properties
