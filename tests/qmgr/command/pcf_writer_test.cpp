#include "qmgr/command/pcf_writer.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "qmgr/command/pcf_reader.h"

namespace mqrig::qmgr::command {
namespace {

MQCFH commandHeader(MQLONG command)
{
    MQCFH header = {MQCFH_DEFAULT};
    header.Command = command;
    return header;
}

std::span<const std::byte> bytesOf(const std::string &text)
{
    return {reinterpret_cast<const std::byte *>(text.data()), text.size()};
}

std::string bigEndian(std::initializer_list<MQLONG> numbers)
{
    std::string bytes;
    for (const MQLONG number : numbers)
        for (int shift = 24; shift >= 0; shift -= 8)
            bytes += static_cast<char>((number >> shift) & 0xFF);
    return bytes;
}

TEST(PcfWriter, HeaderCountsTheParameters)
{
    PcfWriter writer(commandHeader(MQCMD_INQUIRE_Q), MQENC_INTEGER_NORMAL);
    writer.integer(MQIA_Q_TYPE, MQQT_LOCAL);
    EXPECT_EQ(writer.message(), bigEndian({MQCFT_COMMAND, 36, 1, MQCMD_INQUIRE_Q, 1, MQCFC_LAST, 0, 0, 1}) +
                                    bigEndian({MQCFT_INTEGER, 16, MQIA_Q_TYPE, MQQT_LOCAL}));
}

TEST(PcfWriter, NativeEncodingIsThatOfTheMachine)
{
    PcfWriter native(commandHeader(MQCMD_PING_Q_MGR));
    const std::string message = native.message();
    MQCFH header;
    ASSERT_EQ(message.size(), sizeof header);
    std::memcpy(&header, message.data(), sizeof header);
    EXPECT_EQ(header.Type, MQCFT_COMMAND);
    EXPECT_EQ(header.StrucLength, MQCFH_STRUC_LENGTH);
    EXPECT_EQ(header.Command, MQCMD_PING_Q_MGR);
}

TEST(PcfWriter, TextFillsItsFieldWithBlanksAndItsStructureWithZeros)
{
    PcfWriter writer(commandHeader(0), MQENC_INTEGER_NORMAL);
    writer.text(MQCA_Q_NAME, "ABC", 6);
    EXPECT_EQ(writer.message().substr(36),
              bigEndian({MQCFT_STRING, 28, MQCA_Q_NAME, MQCCSI_DEFAULT, 6}) + std::string("ABC   \0\0", 8));
}

TEST(PcfWriter, TextThatIsTooLongForItsFieldIsCut)
{
    PcfWriter writer(commandHeader(0), MQENC_INTEGER_NORMAL);
    writer.text(MQCA_Q_NAME, "ABCDEF", 4);
    EXPECT_EQ(writer.message().substr(36), bigEndian({MQCFT_STRING, 24, MQCA_Q_NAME, MQCCSI_DEFAULT, 4}) + "ABCD");
}

TEST(PcfWriter, ListOfTextsHasOneLengthForAll)
{
    PcfWriter writer(commandHeader(0), MQENC_INTEGER_NORMAL);
    writer.texts(MQCA_NAMES, std::vector<std::string>{"A", "BCD"}, 3);
    EXPECT_EQ(writer.message().substr(36),
              bigEndian({MQCFT_STRING_LIST, 32, MQCA_NAMES, MQCCSI_DEFAULT, 2, 3}) + std::string("A  BCD\0\0", 8));
}

TEST(PcfWriter, GroupCountsItsMembersAndTheHeaderCountsTheGroupOnce)
{
    PcfWriter writer(commandHeader(0), MQENC_INTEGER_NORMAL);
    writer.beginGroup(8001);
    writer.integer(1, 10);
    writer.beginGroup(8002);
    writer.integer(2, 20);
    writer.endGroup();
    writer.endGroup();
    writer.integer(3, 30);
    const std::string message = writer.message();
    EXPECT_EQ(message.substr(32, 4), bigEndian({2}));
    EXPECT_EQ(message.substr(36, 16), bigEndian({MQCFT_GROUP, 16, 8001, 2}));
    EXPECT_EQ(message.substr(68, 16), bigEndian({MQCFT_GROUP, 16, 8002, 1}));
}

// Everything that the writer writes, the reader reads, in both byte orders.
class RoundTrip : public ::testing::TestWithParam<MQLONG> {};

TEST_P(RoundTrip, ReaderReadsWhatTheWriterWrote)
{
    PcfWriter writer(commandHeader(MQCMD_CREATE_Q), GetParam());
    const MQLONG list[] = {1, -2, 2147483647};
    const MQBYTE bytes[] = {0, 255, 10};
    writer.integer(1, -5);
    writer.integer64(2, -5000000000);
    writer.integers(3, list);
    writer.text(4, "text", 7);
    writer.text(5, "");
    writer.texts(6, std::vector<std::string>{"A", "BB"}, 5);
    writer.bytes(7, bytes);
    writer.integerFilter(8, MQCFOP_GREATER, 9);
    writer.textFilter(9, MQCFOP_LIKE, "A*");
    writer.beginGroup(10);
    writer.integer(11, 12);
    writer.endGroup();
    writer.integer(12, 13);

    const std::string message = writer.message();
    const ReadPcf read = readPcf(bytesOf(message), GetParam());
    EXPECT_EQ(read.fault, PcfFault{});
    EXPECT_EQ(read.header.Command, MQCMD_CREATE_Q);
    const std::vector<PcfParameter> expected = {
        {MQCFT_INTEGER, 1, 0, {-5}, {}},
        {MQCFT_INTEGER64, 2, 0, {-5000000000}, {}},
        {MQCFT_INTEGER_LIST, 3, 0, {1, -2, 2147483647}, {}},
        {MQCFT_STRING, 4, 0, {}, {"text   "}},
        {MQCFT_STRING, 5, 0, {}, {""}},
        {MQCFT_STRING_LIST, 6, 0, {}, {"A    ", "BB   "}},
        {MQCFT_BYTE_STRING, 7, 0, {}, {std::string("\0\xff\n", 3)}},
        {MQCFT_INTEGER_FILTER, 8, MQCFOP_GREATER, {9}, {}},
        {MQCFT_STRING_FILTER, 9, MQCFOP_LIKE, {}, {"A*"}},
        {MQCFT_GROUP, 10, 0, {1}, {}},
        {MQCFT_INTEGER, 11, 0, {12}, {}},
        {MQCFT_INTEGER, 12, 0, {13}, {}},
    };
    EXPECT_EQ(read.parameters, expected);
}

INSTANTIATE_TEST_SUITE_P(BothByteOrders, RoundTrip,
                         ::testing::Values(MQENC_INTEGER_NORMAL, MQENC_INTEGER_REVERSED, MQENC_NATIVE));

} // namespace
} // namespace mqrig::qmgr::command
