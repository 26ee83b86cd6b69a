#include "qmgr/command/pcf_reader.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qmgr/command/pcf_writer.h"

namespace mqrig::qmgr::command {
namespace {

// A message out of integers and texts, big-endian.
class Message {
public:
    Message(std::initializer_list<MQLONG> numbers) { add(numbers); }
    Message &add(std::initializer_list<MQLONG> numbers)
    {
        for (const MQLONG number : numbers)
            for (int shift = 24; shift >= 0; shift -= 8)
                bytes_ += static_cast<char>((number >> shift) & 0xFF);
        return *this;
    }
    Message &add(std::string_view text)
    {
        bytes_ += text;
        return *this;
    }
    ReadPcf read(MQLONG encoding = MQENC_INTEGER_NORMAL) const
    {
        return readPcf({reinterpret_cast<const std::byte *>(bytes_.data()), bytes_.size()}, encoding);
    }
    const std::string &bytes() const { return bytes_; }

private:
    std::string bytes_;
};

Message withParameters(MQLONG count)
{
    return Message{MQCFT_COMMAND, 36, 1, MQCMD_INQUIRE_Q, 1, MQCFC_LAST, 0, 0, count};
}

// The fault of a message with one parameter, which these numbers and this text make up.
PcfFault faultWith(std::initializer_list<MQLONG> numbers, std::string_view text = {})
{
    return withParameters(1).add(numbers).add(text).read().fault;
}

constexpr MQLONG id = 2016;

TEST(PcfReader, HeaderAloneIsAMessage)
{
    const ReadPcf read = withParameters(0).read();
    EXPECT_FALSE(read.fault);
    EXPECT_EQ(read.header.Command, MQCMD_INQUIRE_Q);
    EXPECT_TRUE(read.parameters.empty());
}

TEST(PcfReader, EncodingMustNameAByteOrder)
{
    EXPECT_EQ(withParameters(0).read(MQENC_INTEGER_UNDEFINED).fault.reason, MQRCCF_ENCODING_ERROR);
    EXPECT_EQ(withParameters(0).read(7).fault.reason, MQRCCF_ENCODING_ERROR);
}

TEST(PcfReader, WrongByteOrderIsAHeaderOfWrongLength)
{
    EXPECT_EQ(withParameters(0).read(MQENC_INTEGER_REVERSED).fault.reason, MQRCCF_CFH_LENGTH_ERROR);
}

TEST(PcfReader, MessageShorterThanItsHeaderIsRefused)
{
    EXPECT_EQ((Message{}).read().fault.reason, MQRCCF_MSG_LENGTH_ERROR);
    EXPECT_EQ((Message{MQCFT_COMMAND, 36, 1}).read().fault.reason, MQRCCF_MSG_LENGTH_ERROR);
}

TEST(PcfReader, HeaderLengthAndCountAreChecked)
{
    EXPECT_EQ((Message{MQCFT_COMMAND, 40, 1, 13, 1, 1, 0, 0, 0}).read().fault.reason, MQRCCF_CFH_LENGTH_ERROR);
    EXPECT_EQ(withParameters(-1).read().fault.reason, MQRCCF_CFH_PARM_COUNT_ERROR);
}

TEST(PcfReader, CountThatPromisesMoreThanThereIsIsRefused)
{
    EXPECT_EQ(withParameters(1).read().fault.reason, MQRCCF_MSG_LENGTH_ERROR);
    EXPECT_EQ(withParameters(2147483647).read().fault.reason, MQRCCF_MSG_LENGTH_ERROR);
}

TEST(PcfReader, BytesBehindTheLastParameterAreRefused)
{
    EXPECT_EQ(withParameters(0).add("more").read().fault.reason, MQRCCF_MSG_LENGTH_ERROR);
}

TEST(PcfReader, UnknownStructureTypeNamesItsParameter)
{
    for (const MQLONG type : {0, 1, 2, 7, 11, 24, 27, -1, 2147483647})
        EXPECT_EQ(faultWith({type, 16, id, 0}), faultOf(MQRCCF_STRUCTURE_TYPE_ERROR, id)) << type;
}

TEST(PcfReader, StructureThatRunsPastTheEndIsRefused)
{
    EXPECT_EQ(faultWith({MQCFT_INTEGER, 20, id, 0}).reason, MQRCCF_MSG_LENGTH_ERROR);
    EXPECT_EQ(faultWith({MQCFT_STRING, 2147483647, id, 0, 0}).reason, MQRCCF_MSG_LENGTH_ERROR);
}

TEST(PcfReader, LengthTooSmallForAnyStructureIsTheLengthErrorOfItsType)
{
    for (const MQLONG length : {0, -1, 11, -2147483647 - 1}) {
        EXPECT_EQ(faultWith({MQCFT_INTEGER, length, id, 0}), faultOf(MQRCCF_CFIN_LENGTH_ERROR, id));
        EXPECT_EQ(faultWith({MQCFT_STRING, length, id, 0, 0}), faultOf(MQRCCF_CFST_LENGTH_ERROR, id));
    }
}

struct Bad {
    const char *what;
    std::vector<MQLONG> numbers;
    MQLONG reason;
};

TEST(PcfReader, EachStructureHasItsOwnErrors)
{
    const Bad bad[] = {
        {"integer too short", {MQCFT_INTEGER, 12, id}, MQRCCF_CFIN_LENGTH_ERROR},
        {"integer too long", {MQCFT_INTEGER, 20, id, 0, 0}, MQRCCF_CFIN_LENGTH_ERROR},
        {"64-bit integer too short", {MQCFT_INTEGER64, 16, id, 0}, MQRCCF_CFIN_LENGTH_ERROR},
        {"string without its length", {MQCFT_STRING, 16, id, 0}, MQRCCF_CFST_LENGTH_ERROR},
        {"string of negative length", {MQCFT_STRING, 20, id, 0, -1}, MQRCCF_CFST_STRING_LENGTH_ERR},
        {"string longer than its structure", {MQCFT_STRING, 24, id, 0, 5, 0}, MQRCCF_CFST_LENGTH_ERROR},
        {"string of the greatest length", {MQCFT_STRING, 20, id, 0, 2147483647}, MQRCCF_CFST_LENGTH_ERROR},
        {"list without its count", {MQCFT_INTEGER_LIST, 12, id}, MQRCCF_CFIL_LENGTH_ERROR},
        {"list of negative count", {MQCFT_INTEGER_LIST, 16, id, -1}, MQRCCF_CFIL_COUNT_ERROR},
        {"list longer than its structure", {MQCFT_INTEGER_LIST, 20, id, 2, 0}, MQRCCF_CFIL_LENGTH_ERROR},
        {"list shorter than its structure", {MQCFT_INTEGER_LIST, 20, id, 0, 0}, MQRCCF_CFIL_LENGTH_ERROR},
        {"list of the greatest count", {MQCFT_INTEGER_LIST, 16, id, 2147483647}, MQRCCF_CFIL_LENGTH_ERROR},
        {"list whose bytes overflow", {MQCFT_INTEGER_LIST, 16, id, 1073741824}, MQRCCF_CFIL_LENGTH_ERROR},
        {"64-bit list", {MQCFT_INTEGER64_LIST, 20, id, 1, 0}, MQRCCF_CFIL_LENGTH_ERROR},
        {"strings without count", {MQCFT_STRING_LIST, 20, id, 0, 1}, MQRCCF_CFSL_LENGTH_ERROR},
        {"strings of negative count", {MQCFT_STRING_LIST, 24, id, 0, -1, 4}, MQRCCF_CFSL_COUNT_ERROR},
        {"strings of negative length", {MQCFT_STRING_LIST, 24, id, 0, 1, -4}, MQRCCF_CFSL_STRING_LENGTH_ERR},
        {"strings past their structure", {MQCFT_STRING_LIST, 28, id, 0, 2, 4, 0}, MQRCCF_CFSL_LENGTH_ERROR},
        {"strings whose product overflows", {MQCFT_STRING_LIST, 28, id, 0, 65536, 65536, 0}, MQRCCF_CFSL_LENGTH_ERROR},
        {"many strings of no length", {MQCFT_STRING_LIST, 24, id, 0, 2147483647, 0}, MQRCCF_CFSL_COUNT_ERROR},
        {"byte string of negative length", {MQCFT_BYTE_STRING, 16, id, -1}, MQRCCF_CFBS_STRING_LENGTH_ERR},
        {"byte string past its structure", {MQCFT_BYTE_STRING, 16, id, 1}, MQRCCF_CFBS_LENGTH_ERROR},
        {"integer filter too short", {MQCFT_INTEGER_FILTER, 16, id, MQCFOP_LESS}, MQRCCF_CFIF_LENGTH_ERROR},
        {"integer filter's operator", {MQCFT_INTEGER_FILTER, 20, id, 7, 0}, MQRCCF_CFIF_OPERATOR_ERROR},
        {"string filter too short", {MQCFT_STRING_FILTER, 20, id, MQCFOP_LESS, 0}, MQRCCF_CFSF_LENGTH_ERROR},
        {"string filter's operator", {MQCFT_STRING_FILTER, 24, id, 0, 0, 0}, MQRCCF_CFSF_OPERATOR_ERROR},
        {"string filter's value", {MQCFT_STRING_FILTER, 24, id, MQCFOP_LESS, 0, -1}, MQRCCF_CFSF_FILTER_VAL_LEN_ERR},
        {"string filter past its structure",
         {MQCFT_STRING_FILTER, 24, id, MQCFOP_LESS, 0, 4},
         MQRCCF_CFSF_LENGTH_ERROR},
        {"byte filter's operator", {MQCFT_BYTE_STRING_FILTER, 20, id, 99, 0}, MQRCCF_CFBF_OPERATOR_ERROR},
        {"byte filter's value", {MQCFT_BYTE_STRING_FILTER, 20, id, MQCFOP_LESS, -1}, MQRCCF_CFBF_FILTER_VAL_LEN_ERR},
        {"byte filter too short", {MQCFT_BYTE_STRING_FILTER, 16, id, MQCFOP_LESS}, MQRCCF_CFBF_LENGTH_ERROR},
        {"group too long", {MQCFT_GROUP, 20, id, 0, 0}, MQRCCF_CFGR_LENGTH_ERROR},
        {"group of negative count", {MQCFT_GROUP, 16, id, -1}, MQRCCF_CFGR_PARM_COUNT_ERROR},
        {"group of the greatest count", {MQCFT_GROUP, 16, id, 2147483647}, MQRCCF_MSG_LENGTH_ERROR},
    };
    for (const Bad &row : bad) {
        Message message = withParameters(1);
        for (const MQLONG number : row.numbers)
            message.add({number});
        EXPECT_EQ(message.read().fault.reason, row.reason) << row.what;
    }
}

TEST(PcfReader, StringStructureIsAMultipleOfFourBytes)
{
    EXPECT_EQ(faultWith({MQCFT_STRING, 21, id, 0, 1}, "*"), faultOf(MQRCCF_CFST_LENGTH_ERROR, id));
    EXPECT_FALSE(faultWith({MQCFT_STRING, 24, id, 0, 1}, std::string_view("*\0\0\0", 4)));
    EXPECT_FALSE(faultWith({MQCFT_STRING, 28, id, 0, 1}, std::string_view("*\0\0\0\0\0\0\0", 8)))
        << "longer than needed";
}

TEST(PcfReader, EveryCutOfAMessageIsRefusedWithoutReadingBehindIt)
{
    PcfWriter writer({MQCFH_DEFAULT}, MQENC_INTEGER_NORMAL);
    const MQLONG list[] = {1, 2, 3};
    writer.text(id, "SOME.QUEUE", 48);
    writer.integers(1002, list);
    writer.texts(MQCA_NAMES, std::vector<std::string>{"A", "B"}, 48);
    writer.textFilter(id, MQCFOP_LIKE, "X*");
    const std::string whole = writer.message();
    for (std::size_t length = 0; length < whole.size(); ++length) {
        // A copy of exactly that length, so that a sanitizer sees a read behind it.
        const std::vector<std::byte> cut(reinterpret_cast<const std::byte *>(whole.data()),
                                         reinterpret_cast<const std::byte *>(whole.data()) + length);
        EXPECT_EQ(readPcf(cut, MQENC_INTEGER_NORMAL).fault.reason, MQRCCF_MSG_LENGTH_ERROR) << length;
    }
}

TEST(PcfReader, TextEndsAtTheFirstZeroWithoutTrailingBlanks)
{
    EXPECT_EQ(textOf("Q1      "), "Q1");
    EXPECT_EQ(textOf(std::string("Q1\0xyz", 6)), "Q1");
    EXPECT_EQ(textOf("  Q1"), "  Q1");
    EXPECT_EQ(textOf("    "), "");
    EXPECT_EQ(textOf(""), "");
}

} // namespace
} // namespace mqrig::qmgr::command
