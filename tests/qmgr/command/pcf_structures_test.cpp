// The parameter structures as a program lays them field by field, and as it finds them in what the queue manager
// writes.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>
#include <string_view>

#include "pcf_fixture.h"

namespace mqrig::qmgr::command {
namespace {

// The structure without its one-element tail, and what stands there.
template <class Structure>
std::string laid(Structure structure, std::size_t fixedLength, std::string tail)
{
    tail.resize((tail.size() + 3) / 4 * 4);
    structure.StrucLength = static_cast<MQLONG>(fixedLength + tail.size());
    return std::string(reinterpret_cast<const char *>(&structure), fixedLength) + tail;
}

template <class Structure>
std::string laid(const Structure &structure)
{
    return {reinterpret_cast<const char *>(&structure), sizeof structure};
}

template <class Number>
std::string numbers(std::initializer_list<Number> values)
{
    return {reinterpret_cast<const char *>(values.begin()), values.size() * sizeof(Number)};
}

// The first parameter of the message with these structures.
PcfParameter readFirst(const std::string &structures, MQLONG count = 1)
{
    MQCFH header = commandHeader(MQCMD_INQUIRE_Q);
    header.ParameterCount = count;
    const std::string message = laid(header) + structures;
    ReadPcf read = readPcf(bytesOf(message), MQENC_NATIVE);
    EXPECT_EQ(read.fault, PcfFault{});
    return read.parameters.empty() ? PcfParameter{} : read.parameters.front();
}

using Numbers = std::vector<MQINT64>;
using Texts = std::vector<std::string>;

TEST(PcfStructures, NumbersAreReadAsProgramsLayThem)
{
    MQCFIN number = {MQCFIN_DEFAULT};
    number.Parameter = MQIA_Q_TYPE;
    number.Value = MQQT_LOCAL;
    EXPECT_EQ(readFirst(laid(number)), (PcfParameter{MQCFT_INTEGER, MQIA_Q_TYPE, 0, Numbers{MQQT_LOCAL}, {}}));

    MQCFIN64 wide = {MQCFIN64_DEFAULT};
    wide.Parameter = MQIA_Q_TYPE;
    wide.Value = 0x123456789AB;
    EXPECT_EQ(readFirst(laid(wide)).numbers, Numbers{0x123456789AB});

    MQCFIL list = {MQCFIL_DEFAULT};
    list.Parameter = MQIACF_Q_ATTRS;
    list.Count = 2;
    const std::string two = laid(list, offsetof(MQCFIL, Values), numbers<MQLONG>({MQIA_Q_TYPE, MQIA_USAGE}));
    EXPECT_EQ(readFirst(two).numbers, (Numbers{MQIA_Q_TYPE, MQIA_USAGE}));

    MQCFIL64 wideList = {MQCFIL64_DEFAULT};
    wideList.Parameter = MQIACF_Q_ATTRS;
    wideList.Count = 2;
    const std::string wideTwo = laid(wideList, offsetof(MQCFIL64, Values), numbers<MQINT64>({1, 0x123456789AB}));
    EXPECT_EQ(readFirst(wideTwo).numbers, (Numbers{1, 0x123456789AB}));
}

TEST(PcfStructures, TextsAreReadAsProgramsLayThem)
{
    MQCFST text = {MQCFST_DEFAULT};
    text.Parameter = MQCA_Q_NAME;
    text.CodedCharSetId = 1208;
    text.StringLength = 5;
    EXPECT_EQ(readFirst(laid(text, offsetof(MQCFST, String), "ORDER")).texts, Texts{"ORDER"});

    MQCFSL texts = {MQCFSL_DEFAULT};
    texts.Parameter = MQCA_NAMES;
    texts.CodedCharSetId = 1208;
    texts.Count = 2;
    texts.StringLength = 3;
    EXPECT_EQ(readFirst(laid(texts, offsetof(MQCFSL, Strings), "ONETWO")).texts, (Texts{"ONE", "TWO"}));

    MQCFBS bytes = {MQCFBS_DEFAULT};
    bytes.Parameter = MQBACF_CONNECTION_ID;
    bytes.StringLength = 3;
    EXPECT_EQ(readFirst(laid(bytes, offsetof(MQCFBS, String), {"\0\1\2", 3})).texts, (Texts{{"\0\1\2", 3}}));
}

TEST(PcfStructures, FiltersAndGroupsAreReadAsProgramsLayThem)
{
    MQCFIF number = {MQCFIF_DEFAULT};
    number.Parameter = MQIA_CURRENT_Q_DEPTH;
    number.Operator = MQCFOP_GREATER;
    number.FilterValue = 7;
    EXPECT_EQ(readFirst(laid(number)),
              (PcfParameter{MQCFT_INTEGER_FILTER, MQIA_CURRENT_Q_DEPTH, MQCFOP_GREATER, Numbers{7}, {}}));

    MQCFSF text = {MQCFSF_DEFAULT};
    text.Parameter = MQCA_Q_DESC;
    text.Operator = MQCFOP_LIKE;
    text.CodedCharSetId = 1208;
    text.FilterValueLength = 4;
    const PcfParameter like = readFirst(laid(text, offsetof(MQCFSF, FilterValue), "the*"));
    EXPECT_EQ(like.operation, MQCFOP_LIKE);
    EXPECT_EQ(like.texts, Texts{"the*"});

    MQCFBF bytes = {MQCFBF_DEFAULT};
    bytes.Parameter = MQBACF_CONN_TAG;
    bytes.Operator = MQCFOP_EQUAL;
    bytes.FilterValueLength = 2;
    const PcfParameter equal = readFirst(laid(bytes, offsetof(MQCFBF, FilterValue), "\1\2"));
    EXPECT_EQ(equal.operation, MQCFOP_EQUAL);
    EXPECT_EQ(equal.texts, Texts{"\1\2"});

    MQCFGR group = {MQCFGR_DEFAULT};
    group.Parameter = MQGACF_COMMAND_DATA;
    group.ParameterCount = 1;
    MQCFIN member = {MQCFIN_DEFAULT};
    EXPECT_EQ(readFirst(laid(group) + laid(member)).numbers, Numbers{1});
}

// The structure behind the header of the message that `write` has made.
template <class Structure, class Write>
Structure written(Write &&write)
{
    PcfWriter writer(commandHeader(MQCMD_INQUIRE_Q));
    write(writer);
    const std::string message = writer.message();
    Structure structure{};
    const std::size_t rest = message.size() - sizeof(MQCFH);
    EXPECT_EQ(rest % 4, 0U);
    std::memcpy(static_cast<void *>(&structure), message.data() + sizeof(MQCFH), std::min(rest, sizeof structure));
    EXPECT_EQ(static_cast<std::size_t>(structure.StrucLength), rest);
    return structure;
}

TEST(PcfStructures, AreWrittenAsProgramsReadThem)
{
    const auto list = written<MQCFIL>([](PcfWriter &writer) { writer.integers(MQIACF_Q_ATTRS, std::array{3, 4}); });
    EXPECT_EQ(list.Type, MQCFT_INTEGER_LIST);
    EXPECT_EQ(list.Parameter, MQIACF_Q_ATTRS);
    EXPECT_EQ(list.Count, 2);
    EXPECT_EQ(list.Values[0], 3);

    const auto text = written<MQCFST>([](PcfWriter &writer) { writer.text(MQCA_Q_NAME, "ORDER", 8); });
    EXPECT_EQ(text.Type, MQCFT_STRING);
    EXPECT_EQ(text.StringLength, 8);
    EXPECT_EQ(text.String[0], 'O');

    const Texts names{"ONE", "TWO"};
    const auto texts = written<MQCFSL>([&](PcfWriter &writer) { writer.texts(MQCA_NAMES, names, 48); });
    EXPECT_EQ(texts.Type, MQCFT_STRING_LIST);
    EXPECT_EQ(texts.Count, 2);
    EXPECT_EQ(texts.StringLength, 48);
    EXPECT_EQ(texts.Strings[0], 'O');

    const std::array<MQBYTE, 3> tag{7, 8, 9};
    const auto bytes = written<MQCFBS>([&](PcfWriter &writer) { writer.bytes(MQBACF_CONN_TAG, tag); });
    EXPECT_EQ(bytes.Type, MQCFT_BYTE_STRING);
    EXPECT_EQ(bytes.StringLength, 3);
    EXPECT_EQ(bytes.String[0], 7);
}

} // namespace
} // namespace mqrig::qmgr::command
