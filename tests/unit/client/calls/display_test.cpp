// What the console shows of a body: conversion, one-line displays, dumps, the walk over headers.
#include "calls_test.h"

#include "common.h"
#include "display.h"
#include "display/shown_length.h"

#include <climits>
#include <clocale>
#include <cstring>

namespace {

std::string converted(const std::string &body, MQLONG mode)
{
    std::string target(2 * body.size() + 3, '#');
    const std::size_t length = cnvrtmsg(body.data(), target.data(), static_cast<MQLONG>(body.size()), mode);
    EXPECT_EQ(target[length], '\0');
    return target.substr(0, length);
}

/// A UTF-8 locale for the length of a test.
class Utf8 {
public:
    Utf8() : available_(std::setlocale(LC_CTYPE, "C.UTF-8") != nullptr) {}
    ~Utf8() { std::setlocale(LC_CTYPE, "C"); }
    Utf8(const Utf8 &) = delete;
    Utf8 &operator=(const Utf8 &) = delete;
    bool available() const { return available_; }

private:
    bool available_;
};

// ---- cnvrtmsg ----

TEST(ConvertTest, RawKeepsTheBytes)
{
    EXPECT_EQ(converted(std::string("a\0\x01", 3), OutputFormRaw), std::string("a\0\x01", 3));
}

TEST(ConvertTest, HexadecimalHasAPrefixAndUpperCaseDigits)
{
    EXPECT_EQ(converted("\x0A\xFF", OutputFormHex), "0x0AFF");
}

TEST(ConvertTest, EmptyBodyHasNoHexadecimalPrefix)
{
    EXPECT_EQ(converted("", OutputFormHex), "");
}
TEST(ConvertTest, EmptyBodyIsEmptyText)
{
    EXPECT_EQ(converted("", OutputFormText), "");
}

TEST(ConvertTest, TextShowsUnprintableBytesAsDots)
{
    EXPECT_EQ(converted(std::string("a\0\x01\t\x7F~ ", 7), OutputFormText), "a....~ ");
}

TEST(ConvertTest, TextKeepsCarriageReturnAndLineFeed)
{
    EXPECT_EQ(converted("a\r\nb", OutputFormText), "a\r\nb");
}

TEST(ConvertTest, AnyOtherModeIsText)
{
    EXPECT_EQ(converted("a\x01", 17), "a.");
}

TEST(ConvertTest, BytesAbove127AreDotsInASingleByteLocale)
{
    EXPECT_EQ(converted("\xE3\x81\x82", OutputFormText), "...");
}

TEST(ConvertTest, MultiByteCharactersAreKeptWhole)
{
    const Utf8 locale;
    ASSERT_TRUE(locale.available());
    EXPECT_EQ(converted("a\xE3\x81\x82z", OutputFormText), "a\xE3\x81\x82z");
}

TEST(ConvertTest, CharacterThatTheCutDividesCountsItsBytesOneByOne)
{
    const Utf8 locale;
    ASSERT_TRUE(locale.available());
    const char body[] = "ab\xE3\x81\x82";
    char target[32];
    cnvrtmsg(body, target, 4, OutputFormText); // the third byte of the character is there, but behind the cut
    EXPECT_STREQ(target, "ab..");
}

TEST(ConvertTest, InvalidSequenceIsDots)
{
    const Utf8 locale;
    ASSERT_TRUE(locale.available());
    EXPECT_EQ(converted("\xFF\xFE"
                        "a",
                        OutputFormText),
              "..a");
}

TEST(ConvertTest, NegativeLengthGivesAnEmptyString)
{
    char target[3] = "##";
    EXPECT_EQ(cnvrtmsg("abc", target, -1, OutputFormText), 0U);
    EXPECT_STREQ(target, "");
}

// ---- Shown length ----

TEST(ShownLengthTest, DisplaySizeCutsALongerBody)
{
    RunParams params = DEFAULT_RUN_PARAMS;
    params.DisplaySize = 5;
    EXPECT_EQ(shown_length(&params, 8), 5);
    EXPECT_EQ(shown_length(&params, 5), 5);
    EXPECT_EQ(shown_length(&params, 4), 4);
}

TEST(ShownLengthTest, AllShowsTheWholeBody)
{
    RunParams params = DEFAULT_RUN_PARAMS;
    params.DisplaySize = -1;
    EXPECT_EQ(shown_length(&params, INT_MAX), INT_MAX);
}

TEST(ShownLengthTest, RoomOfTheLongestBodyDoesNotOverflow)
{
    EXPECT_GE(converted_size(INT_MAX), static_cast<std::size_t>(INT_MAX) + 1);
}

// ---- dsp_message ----

class DisplayTest : public CallsTest {
protected:
    Written display(int kind, const std::string &body, MQLONG number, MQULONG counter)
    {
        return written([&, kind, number, counter] {
            return dsp_message(&params, body.data(), static_cast<MQLONG>(body.size()), kind, number, counter);
        });
    }
};

TEST_F(DisplayTest, FileLineNamesTheFile)
{
    params.InputFile = "dir/file";
    EXPECT_EQ(display(DisplayPutFile, "", -1, 0).out, "[now] 1: put from: dir/file\n");
}

TEST_F(DisplayTest, FileLineWithoutCounter)
{
    params.InputFile = "dir/file";
    EXPECT_EQ(display(DisplayPutFile, "", -1, NoMessageCounter).out, "[now] put from: dir/file\n");
}

TEST_F(DisplayTest, MessageLine)
{
    EXPECT_EQ(display(DisplayPutMessage, "abc", -1, 6).out, "[now] 7: message length: 3 put message: abc\n");
}

TEST_F(DisplayTest, MessageLineWithoutCounter)
{
    EXPECT_EQ(display(DisplayPutMessage, "abc", -1, NoMessageCounter).out,
              "[now] message length: 3 put message: abc\n");
}

TEST_F(DisplayTest, LogicalMessageLine)
{
    EXPECT_EQ(display(DisplayLogicalMessage, "abc", 2, 0).out,
              "[now] 1: logical message: 2 length: 3 put message: abc\n");
}

TEST_F(DisplayTest, SegmentLine)
{
    EXPECT_EQ(display(DisplaySegment, "abc", 4, NoMessageCounter).out, "[now] segment: 4 length: 3 put message: abc\n");
}

TEST_F(DisplayTest, LineOfAThreadShowsItsId)
{
    params.ThreadCount = 2;
    params.ThreadId = -5;
    EXPECT_EQ(display(DisplayPutMessage, "abc", -1, 0).out, "[now tid=-5] 1: message length: 3 put message: abc\n");
}

TEST_F(DisplayTest, MessageGivenInHexadecimalIsShownInHexadecimal)
{
    params.MsgHex = "0A0B";
    EXPECT_EQ(display(DisplayPutMessage, "\x0A\x0B", -1, 0).out, "[now] 1: message length: 2 put message: 0x0A0B\n");
}

TEST_F(DisplayTest, LineThatIsTooLongForTheUsualBufferIsShownWhole)
{
    const std::string body(5000, 'z');
    params.DisplaySize = -1;
    EXPECT_EQ(display(DisplayPutMessage, body, -1, 0).out, "[now] 1: message length: 5000 put message: " + body + "\n");
}

TEST_F(DisplayTest, LongestUsualLineInHexadecimalIsShownWhole)
{
    for (std::size_t size = 508; size < 514; ++size) {
        const std::string body(size, 'z');
        params.DisplaySize = -1;
        params.MsgHex = "7A";
        std::string digits;
        for (std::size_t i = 0; i < size; ++i)
            digits += "7A";
        EXPECT_EQ(display(DisplayPutMessage, body, -1, 0).out,
                  "[now] 1: message length: " + std::to_string(size) + " put message: 0x" + digits + "\n");
    }
}

TEST_F(DisplayTest, RawBytesAreWrittenUnconverted)
{
    EXPECT_EQ(written_by([] { printRaw("a\0b", 3); }).out, std::string("a\0b", 3));
}

TEST_F(DisplayTest, NoRawBytesForALengthOfZeroOrLess)
{
    EXPECT_EQ(written_by([] {
                  printRaw("abc", 0);
                  printRaw("abc", -1);
              }).out,
              "");
}

TEST_F(DisplayTest, LineThatCannotHaveTheLockIsNotWritten)
{
    const UnavailableLock lock(params);
    const Written message = display(DisplayPutMessage, "abc", -1, 0);
    EXPECT_EQ(message.status, 1);
    EXPECT_EQ(message.out, "");
}

TEST_F(DisplayTest, FileLineThatCannotHaveTheLockIsNotWritten)
{
    const UnavailableLock lock(params);
    params.InputFile = "dir/file";
    const Written file = display(DisplayPutFile, "", -1, 0);
    EXPECT_EQ(file.status, 1);
    EXPECT_EQ(file.out, "");
}

TEST_F(DisplayTest, LongIsEightUpperCaseDigits)
{
    EXPECT_EQ(written_by([&] { printMQLong2Hex(0xABC, &params); }).out, "00000ABC");
}

TEST_F(DisplayTest, LongOfBigEndianDataIsReversed)
{
    params.DataEncoding = MQENC_INTEGER_NORMAL;
    EXPECT_EQ(written_by([&] { printMQLong2Hex(0x01020304, &params); }).out, "04030201");
}

TEST_F(DisplayTest, MessageNumberAlone)
{
    EXPECT_EQ(written_by([&] { printMessageNumber(&params, 3); }).out, "message number: 3\n");
}

TEST_F(DisplayTest, MessageNumberWithToken)
{
    params.Gmo.Version = MQGMO_VERSION_3;
    std::memset(params.Gmo.MsgToken, 0xA1, sizeof params.Gmo.MsgToken);
    EXPECT_EQ(written_by([&] { printMessageNumber(&params, 3); }).out,
              "message number: 3 MsgToken[0xA1A1A1A1A1A1A1A1A1A1A1A1A1A1A1A1]\n");
}

TEST_F(DisplayTest, MessageNumberOfVersion2HasNoToken)
{
    params.Gmo.Version = MQGMO_VERSION_2;
    EXPECT_EQ(written_by([&] { printMessageNumber(&params, 3); }).out, "message number: 3\n");
}

} // namespace
