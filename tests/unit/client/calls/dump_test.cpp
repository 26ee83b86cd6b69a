// Dumps, and the walk over the headers of a body.
#include "calls_test.h"

#include "common.h"
#include "display.h"

#include <climits>
#include <cmqcfc.h>

#include <clocale>
#include <cstring>

namespace {

class DumpTest : public CallsTest {
protected:
    std::string dumped(const std::string &body) const
    {
        return written_by([&] { dumpmsg(body.data(), static_cast<MQLONG>(body.size())); }).out;
    }
};

TEST_F(DumpTest, TwentyBytes)
{
    EXPECT_EQ(dumped("ABCDEFGHIJKLMNOPQRST"),
              "\n00000000:  4142 4344 4546 4748 494A 4B4C 4D4E 4F50 'ABCDEFGHIJKLMNOP'"
              "\n00000010:  5152 5354                               'QRST            '\n");
}

TEST_F(DumpTest, EmptyBodyIsOneLineOfBlanks)
{
    EXPECT_EQ(dumped(""), "\n00000000: " + std::string(40, ' ') + " '" + std::string(16, ' ') + "'\n");
}

TEST_F(DumpTest, NegativeLengthIsOneLineOfBlanks)
{
    EXPECT_EQ(written_by([] { dumpmsg("abc", -5); }).out,
              "\n00000000: " + std::string(40, ' ') + " '" + std::string(16, ' ') + "'\n");
}

TEST_F(DumpTest, SeventeenBytesGiveASecondLineOfOneByte)
{
    const std::string out = dumped(std::string(17, 'a'));
    EXPECT_NE(out.find("\n00000010:  61" + std::string(37, ' ') + " 'a" + std::string(15, ' ') + "'\n"),
              std::string::npos)
        << out;
}

TEST_F(DumpTest, UnprintableBytesAreDots)
{
    EXPECT_NE(dumped(std::string("\0\x01\nA", 4)).find("0001 0A41"), std::string::npos);
    EXPECT_NE(dumped(std::string("\0\x01\nA", 4)).find("'...A"), std::string::npos);
}

TEST_F(DumpTest, BlankLineAfter60Lines)
{
    const std::string out = dumped(std::string(961, 'a'));
    EXPECT_NE(out.find("'aaaaaaaaaaaaaaaa'\n \n000003C0:  61"), std::string::npos);
}

TEST_F(DumpTest, NoBlankLineWithin60Lines)
{
    const std::string out = dumped(std::string(944, 'a'));
    EXPECT_EQ(out.find("\n \n"), std::string::npos);
}

class Utf8DumpTest : public DumpTest {
protected:
    Utf8DumpTest() { available = std::setlocale(LC_CTYPE, "C.UTF-8") != nullptr; }
    ~Utf8DumpTest() override { std::setlocale(LC_CTYPE, "C"); }
    /// Blanks behind the hexadecimal area when the line carries `carried` columns over.
    static std::string fill(std::size_t carried) { return std::string((MB_CUR_MAX - 1 - carried) * 2, ' '); }
    bool available = false;
};

TEST_F(Utf8DumpTest, CharacterThatBeginsInTheLastColumnIsWholeAndTheNextLineSkipsItsColumns)
{
    ASSERT_TRUE(available);
    EXPECT_EQ(dumped(std::string(15, 'a') + "\xE3\x81\x82" + "bc"),
              "\n00000000:  6161 6161 6161 6161 6161 6161 6161 61E38182" + fill(2) + " 'aaaaaaaaaaaaaaa\xE3\x81\x82'" +
                  "\n00000012:       6263" + std::string(30, ' ') + fill(0) + " '  bc            '\n");
}

TEST_F(Utf8DumpTest, OneCarriedColumnIsHalfAGroup)
{
    ASSERT_TRUE(available);
    EXPECT_EQ(dumped(std::string(15, 'a') + "\xC3\xA9" + "b"),
              "\n00000000:  6161 6161 6161 6161 6161 6161 6161 61C3A9" + fill(1) + " 'aaaaaaaaaaaaaaa\xC3\xA9'" +
                  "\n00000011:    62" + std::string(35, ' ') + fill(0) + " ' b              '\n");
}

TEST_F(Utf8DumpTest, CharactersWithinALineStandInTheirPlaces)
{
    ASSERT_TRUE(available);
    EXPECT_EQ(dumped("a\xC3\xA9"
                     "b\xE3\x81\x82"
                     "cdefghijk"
                     "l"),
              "\n00000000:  61C3 A962 E381 8263 6465 6667 6869 6A6B" + fill(0) +
                  " 'a\xC3\xA9"
                  "b\xE3\x81\x82"
                  "cdefghijk'\n00000010:  6C" +
                  std::string(37, ' ') + fill(0) + " 'l               '\n");
}

TEST_F(Utf8DumpTest, BrokenCharactersWithinALineAreADotForEachByte)
{
    ASSERT_TRUE(available);
    EXPECT_NE(dumped("a\xE3\x81"
                     "bcdefghijklmno")
                  .find(" 'a..bcdefghijklmn'"),
              std::string::npos);
}

TEST_F(Utf8DumpTest, CharacterThatTheEndDividesIsShownByteByByte)
{
    ASSERT_TRUE(available);
    EXPECT_NE(dumped("a\xE3\x81").find("'a..  "), std::string::npos);
}

// ---- The walk ----

class WalkTest : public CallsTest {
protected:
    std::string walk(const std::string &body, MQLONG level = 2)
    {
        const MQLONG length = static_cast<MQLONG>(body.size());
        // An exact copy on the heap, so that a sanitizer sees every byte read behind it.
        const std::vector<char> exact(body.begin(), body.end());
        return written_by([&, length, level] {
                   startPrintRecursive(exact.data(), length, length, level, params.OutputForm, &params);
               })
            .out;
    }
    void begin_with(const char *format) { std::memcpy(params.DataFormat, format, sizeof params.DataFormat); }

    template <class Structure>
    static std::string bytes(const Structure &structure)
    {
        return {reinterpret_cast<const char *>(&structure), sizeof structure};
    }
};

constexpr char DumpOfX[] = "data length: 1\n00000000:  58                                      'X               '\n";

MQLONG reversed(MQLONG value)
{
    return static_cast<MQLONG>(__builtin_bswap32(static_cast<MQULONG>(value)));
}

std::string pair_of(const std::string &data)
{
    const MQLONG length = static_cast<MQLONG>(data.size());
    return std::string(reinterpret_cast<const char *>(&length), 4) + data;
}

std::string rfh2(MQLONG strucLength, const std::string &pairs)
{
    MQRFH2 header = {MQRFH2_DEFAULT};
    header.StrucLength = strucLength;
    std::memcpy(header.Format, "MQSTR   ", 8);
    return std::string(reinterpret_cast<const char *>(&header), sizeof header) + pairs;
}

TEST_F(WalkTest, BodyWithoutHeadersIsDumped)
{
    begin_with("MQSTR   ");
    EXPECT_EQ(walk("X"), DumpOfX);
}

TEST_F(WalkTest, LevelOneDumpsWhateverTheFormat)
{
    begin_with("MQDEAD  ");
    EXPECT_EQ(walk("X", 1), DumpOfX);
}

TEST_F(WalkTest, FormIsHandedToTheHeaderPrinters)
{
    params.OutputForm = OutputFormHex;
    walk("X");
    EXPECT_EQ(params.DisplayForm, OutputFormHex);
}

TEST_F(WalkTest, ExtensionThenData)
{
    begin_with("MQHMDE  ");
    MQMDE mde = {MQMDE_DEFAULT};
    std::memcpy(mde.Format, "MQSTR   ", 8);
    mde.MsgSeqNumber = 3;
    EXPECT_EQ(walk(bytes(mde) + "X"),
              std::string("*StrucId[MDE ] Version[2] StrucLength[72] Encoding[546] CodedCharSetId[0] Format[MQSTR   ] "
                          "Flags[0] GroupId[0x000000000000000000000000000000000000000000000000] MsgSeqNumber[3] "
                          "Offset[0] MsgFlags[0] OriginalLength[-1]\n\n") +
                  DumpOfX);
}

TEST_F(WalkTest, DeadLetterHeaderOfBigEndianDataIsConverted)
{
    begin_with("MQDEAD  ");
    params.DataEncoding = 273;
    MQDLH dlh = {MQDLH_DEFAULT};
    dlh.Version = reversed(1);
    dlh.Reason = reversed(MQRC_UNKNOWN_OBJECT_NAME);
    dlh.Encoding = reversed(546);
    dlh.CodedCharSetId = reversed(1208);
    dlh.PutApplType = reversed(6);
    std::memset(dlh.DestQName, ' ', sizeof dlh.DestQName);
    std::memcpy(dlh.DestQName, "Q1", 2);
    std::memset(dlh.DestQMgrName, ' ', sizeof dlh.DestQMgrName);
    std::memset(dlh.PutApplName, ' ', sizeof dlh.PutApplName);
    std::memcpy(dlh.PutDate, "20220422", 8);
    std::memcpy(dlh.PutTime, "23301512", 8);
    std::memcpy(dlh.Format, "MQSTR   ", 8);
    EXPECT_EQ(walk(bytes(dlh) + "X"),
              "*StrucId[DLH ] Version[1] Reason[2085] DestQName[Q1" + std::string(46, ' ') + "] DestQMgrName[" +
                  std::string(48, ' ') + "] Encoding[546] CodedCharSetId[1208] Format[MQSTR   ] PutApplType[6] " +
                  "PutApplName[" + std::string(28, ' ') + "] PutDate[20220422] PutTime[23301512] \n\n" + DumpOfX);
    EXPECT_EQ(params.DataEncoding, 546);
}

TEST_F(WalkTest, DeadLetterNamesFollowTheHexadecimalForm)
{
    begin_with("MQDEAD  ");
    params.OutputForm = OutputFormHex;
    MQDLH dlh = {MQDLH_DEFAULT};
    EXPECT_NE(walk(bytes(dlh)).find("*StrucId[0x444C4820] "), std::string::npos);
}

TEST_F(WalkTest, DeadLetterNamesAreBareBytesInRawForm)
{
    begin_with("MQDEAD  ");
    params.OutputForm = OutputFormRaw;
    MQDLH dlh = {MQDLH_DEFAULT};
    std::memset(dlh.DestQName, ' ', sizeof dlh.DestQName);
    EXPECT_NE(walk(bytes(dlh)).find("DestQName[" + std::string(48, ' ') + "]"), std::string::npos);
}

TEST_F(WalkTest, TransmissionHeaderThenItsDescriptorThenItsFormat)
{
    begin_with("MQXMIT  ");
    MQXQH xqh = {MQXQH_DEFAULT};
    std::strcpy(xqh.RemoteQName, "RQ");
    std::strcpy(xqh.RemoteQMgrName, "RQM");
    std::memcpy(xqh.MsgDesc.Format, "MQHMDE  ", 8);
    xqh.MsgDesc.Encoding = 273;
    MQMDE mde = {MQMDE_DEFAULT};
    const std::string out = walk(bytes(xqh) + bytes(mde) + "X");
    EXPECT_EQ(
        out.rfind("*StrucId[XQH ] Version[1] RemoteQName[RQ] RemoteQMgrName[RQM]\n\n*StrucId[MD  ] Version[1] ", 0), 0U)
        << out;
    EXPECT_NE(out.find("ApplOriginData[]\n\n*StrucId[MDE ] "), std::string::npos) << out;
}

TEST_F(WalkTest, Version1DescriptorInATransmissionHeaderHasNoGroupLine)
{
    begin_with("MQXMIT  ");
    MQXQH xqh = {MQXQH_DEFAULT};
    EXPECT_EQ(walk(bytes(xqh) + "X").find("GroupId"), std::string::npos);
}

TEST_F(WalkTest, Version2DescriptorInATransmissionHeaderHasAGroupLine)
{
    begin_with("MQXMIT  ");
    MQXQH xqh = {MQXQH_DEFAULT};
    MQMD md = {MQMD_DEFAULT};
    md.Version = MQMD_VERSION_2;
    std::memcpy(md.Format, "MQSTR   ", 8);
    const std::string out = walk(bytes(xqh).substr(0, 104) + bytes(md) + "X");
    EXPECT_NE(out.find("MsgFlags[0] OriginalLength[-1]\n\n"), std::string::npos);
    EXPECT_NE(out.find(DumpOfX), std::string::npos);
}

TEST_F(WalkTest, Rfh2WithOneFolder)
{
    begin_with("MQHRF2  ");
    EXPECT_EQ(walk(rfh2(72, pair_of("<usr><p1>abc</p1></usr>         ")) + "X"),
              std::string("*StrucId[RFH ] Version[2] StrucLength[72] Encoding[546] CodedCharSetId[-2] "
                          "Format[MQSTR   ] Flags[0] NameValueCCSID[1208]\n"
                          "NameValueLength[32] NameValueData[<usr><p1>abc</p1></usr>         ]\n") +
                  DumpOfX);
}

TEST_F(WalkTest, Rfh2PairLengthOfZeroEndsTheWalk)
{
    begin_with("MQHRF2  ");
    EXPECT_NE(walk(rfh2(40, std::string(4, '\0')) + "X").find("NameValueLength[0] NameValueLenghth invalid.\n"),
              std::string::npos);
    EXPECT_EQ(walk(rfh2(40, std::string(4, '\0')) + "X").find("data length"), std::string::npos);
}

TEST_F(WalkTest, Rfh2PairLengthOf1025EndsTheWalk)
{
    begin_with("MQHRF2  ");
    EXPECT_NE(walk(rfh2(36 + 4 + 1025, pair_of(std::string(1025, 'a'))))
                  .find("NameValueLength[1025] NameValueLenghth invalid.\n"),
              std::string::npos);
}

TEST_F(WalkTest, Rfh2PairOf1024BytesIsShown)
{
    begin_with("MQHRF2  ");
    EXPECT_NE(walk(rfh2(36 + 4 + 1024, pair_of(std::string(1024, 'a'))))
                  .find("NameValueLength[1024] NameValueData[" + std::string(1024, 'a') + "]\n"),
              std::string::npos);
}

TEST_F(WalkTest, Rfh2PairThatIsLongerThanWhatWasReceivedEndsTheWalk)
{
    begin_with("MQHRF2  ");
    const MQLONG length = 100;
    const std::string pair = std::string(reinterpret_cast<const char *>(&length), 4) + "abc";
    EXPECT_NE(walk(rfh2(140, pair)).find("NameValueLength[100] NameValueLenghth invalid.\n"), std::string::npos);
}

TEST_F(WalkTest, Rfh2LongerThanTheBodyShowsItsFieldsAndEnds)
{
    begin_with("MQHRF2  ");
    const std::string out = walk(rfh2(9999, ""));
    EXPECT_NE(out.find("StrucLength[9999]"), std::string::npos);
    EXPECT_NE(out.find("NameValueCCSID[1208]\nMQRFH2 StrucLength invalid. 9999\n"), std::string::npos);
    EXPECT_EQ(out.find("data length"), std::string::npos);
}

TEST_F(WalkTest, Rfh2OfNegativeLengthEnds)
{
    begin_with("MQHRF2  ");
    EXPECT_NE(walk(rfh2(-1, "")).find("MQRFH2 StrucLength invalid. -1\n"), std::string::npos);
}

TEST_F(WalkTest, Rfh2OfTheLowestLengthShowsNoPairs)
{
    begin_with("MQHRF2  ");
    const std::string out = walk(rfh2(INT_MIN, std::string(16, '\1')));
    EXPECT_NE(out.find("NameValueCCSID[1208]\nMQRFH2 StrucLength invalid. -2147483648\n"), std::string::npos);
}

TEST_F(WalkTest, Rfh2OfAHundredMegabytesEndsWithItsFirstImpossiblePair)
{
    constexpr std::size_t size = 100 * 1024 * 1024;
    begin_with("MQHRF2  ");
    std::string body = rfh2(static_cast<MQLONG>(size), pair_of("<a/>"));
    const MQLONG impossible = 1025;
    body.append(reinterpret_cast<const char *>(&impossible), 4);
    body.resize(size, 'x');
    const std::string out = walk(body);
    EXPECT_NE(out.find("NameValueLength[4] NameValueData[<a/>]\nNameValueLength[1025] NameValueLenghth invalid.\n"),
              std::string::npos);
    EXPECT_LT(out.size(), 1000U);
}

TEST_F(WalkTest, Rfh2OfLengthZeroEnds)
{
    begin_with("MQHRF2  ");
    EXPECT_NE(walk(rfh2(0, "")).find("MQRFH2 StrucLength invalid. 0\n"), std::string::npos);
}

TEST_F(WalkTest, Rfh2ShorterThanItsFixedPartIsFollowedByWhatStandsBehindItsLength)
{
    begin_with("MQHRF2  ");
    const std::string out = walk(rfh2(35, "X"));
    EXPECT_NE(out.find("NameValueCCSID[1208]\ndata length: 2\n00000000:  0058 "), std::string::npos) << out;
}

TEST_F(WalkTest, ThousandsOfRfh2HeadersAreWalked)
{
    begin_with("MQHRF2  ");
    MQRFH2 header = {MQRFH2_DEFAULT};
    std::memcpy(header.Format, "MQHRF2  ", 8);
    std::string body;
    for (int i = 0; i < 50000; ++i)
        body += bytes(header);
    EXPECT_NE(walk(body + "X").find(DumpOfX), std::string::npos);
}

/// A header of each fixed size, cut anywhere, ends the walk with the dump of what remains.
class CutHeaderTest : public WalkTest, public testing::WithParamInterface<std::pair<const char *, std::size_t>> {};

TEST_P(CutHeaderTest, IsDumped)
{
    const auto &[format, size] = GetParam();
    for (const std::size_t length : {std::size_t{0}, std::size_t{1}, std::size_t{4}, std::size_t{8}, size - 1}) {
        begin_with(format);
        params.DataEncoding = MQENC_NATIVE;
        const std::string out = walk(std::string(length, 'x'));
        EXPECT_EQ(out.rfind("data length: " + std::to_string(length) + "\n", 0), 0U) << out;
    }
}

INSTANTIATE_TEST_SUITE_P(Each, CutHeaderTest,
                         testing::Values(std::pair{"MQHMDE  ", sizeof(MQMDE)}, std::pair{"MQDEAD  ", sizeof(MQDLH)},
                                         std::pair{"MQXMIT  ", std::size_t{104}}, std::pair{"MQHRF2  ", sizeof(MQRFH2)},
                                         std::pair{"MQADMIN ", sizeof(MQCFH)}, std::pair{"MQPCF   ", sizeof(MQCFH)},
                                         std::pair{"MQEVENT ", sizeof(MQCFH)}, std::pair{"MQHEPCF ", sizeof(MQCFH)}));

TEST_F(WalkTest, DescriptorCutInATransmissionHeaderIsDumped)
{
    MQXQH xqh = {MQXQH_DEFAULT};
    for (const std::size_t length : {std::size_t{105}, std::size_t{108}, std::size_t{112}, std::size_t{427}}) {
        begin_with("MQXMIT  ");
        EXPECT_NE(walk(bytes(xqh).substr(0, length)).find("data length: " + std::to_string(length - 104) + "\n"),
                  std::string::npos);
    }
}

TEST_F(WalkTest, Version2DescriptorThatIsCutIsDumped)
{
    begin_with("MQXMIT  ");
    MQXQH xqh = {MQXQH_DEFAULT};
    xqh.MsgDesc.Version = MQMD_VERSION_2;
    EXPECT_NE(walk(bytes(xqh)).find("data length: 324\n"), std::string::npos);
}

// ---- The descriptor ----

TEST_F(WalkTest, DescriptorShowsEveryField)
{
    MQMD md = {MQMD_DEFAULT};
    md.Version = MQMD_VERSION_2;
    md.Report = MQRO_COA;
    std::memcpy(md.Format, "MQSTR   ", 8);
    std::memset(md.MsgId, 0x01, sizeof md.MsgId);
    std::strcpy(md.ReplyToQ, "REPLY.Q");
    std::strcpy(md.UserIdentifier, "user");
    std::memset(md.ReplyToQMgr, 'M', sizeof md.ReplyToQMgr);
    EXPECT_EQ(written_by([&] { printMessageDescriptorV2(&md, &params); }).out,
              "*StrucId[MD  ] Version[2] Report[256] MsgType[8] Expiry[-1] Feedback[0] Encoding[546] "
              "CodedCharSetId[0] Format[MQSTR   ] Priority[-1] Persistence[2] "
              "MsgId[0x010101010101010101010101010101010101010101010101] "
              "CorrelId[0x000000000000000000000000000000000000000000000000] BackoutCount[0] ReplyToQ[REPLY.Q] "
              "ReplyToQMgr[" +
                  std::string(48, 'M') +
                  "] UserIdentifier[user] "
                  "AccountingToken[0x0000000000000000000000000000000000000000000000000000000000000000] "
                  "ApplIdentityData[] PutApplType[0] PutApplName[] PutDate[] PutTime[] ApplOriginData[]\n\n"
                  "GroupId[0x000000000000000000000000000000000000000000000000] MsgSeqNumber[1] Offset[0] MsgFlags[0] "
                  "OriginalLength[-1]\n\n");
}

TEST_F(WalkTest, HexadecimalFormShowsReportAndMsgFlagsAsDigits)
{
    MQMD md = {MQMD_DEFAULT};
    md.Report = MQRO_COA;
    md.MsgFlags = MQMF_LAST_MSG_IN_GROUP;
    params.DisplayForm = OutputFormHex;
    params.DataEncoding = 273;
    const std::string out = written_by([&] { printMessageDescriptorV2(&md, &params); }).out;
    EXPECT_NE(out.find("Report[0x00000100] "), std::string::npos);
    EXPECT_NE(out.find("MsgFlags[0x00000010] "), std::string::npos);
}

TEST_F(WalkTest, DescriptorNamesAreTheSameInEveryForm)
{
    MQMD md = {MQMD_DEFAULT};
    std::strcpy(md.ReplyToQ, "REPLY.Q");
    for (const MQLONG form : {OutputFormText, OutputFormRaw, OutputFormHex}) {
        params.DisplayForm = form;
        const std::string out = written_by([&] { printMessageDescriptorV2(&md, &params); }).out;
        EXPECT_NE(out.find("ReplyToQ[REPLY.Q] "), std::string::npos) << form;
    }
}

TEST_F(WalkTest, DescriptorIsShownInTheOrderOfTheMachineWhateverCameBefore)
{
    MQMD md = {MQMD_DEFAULT};
    params.DataEncoding = 273;
    const std::string out = written_by([&] { printMessageDescriptorV2(&md, &params); }).out;
    EXPECT_NE(out.find("Version[1] Report[0] MsgType[8] "), std::string::npos);
    EXPECT_EQ(params.DataEncoding, MQENC_NATIVE);
}

TEST_F(WalkTest, FieldThatCannotBeConvertedStaysEmpty)
{
    const Written written = written_by([] {
        fail_malloc_of(101 * 2 + 1);
        printEachMode(std::string(100, 'a').c_str(), 100, OutputFormText);
    });
    EXPECT_EQ(written.out, "");
    EXPECT_EQ(written.err, "malloc(): Cannot allocate memory\nprintEachMode,#,12: malloc() failed. size=203\n");
}

} // namespace
