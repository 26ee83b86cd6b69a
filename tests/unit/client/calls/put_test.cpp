// Putting from the command line.
#include "calls_test.h"

#include "common.h"
#include "mqicalls.h"
#include "send.h"

#include <climits>
#include <cstring>

namespace {

using Bodies = std::vector<std::string>;
using Calls = std::vector<std::string>;

class PutTest : public CallsTest {
protected:
    PutTest() { params.MsgText = "hello"; }
    Written put(MQLONG ownUnitOfWork = 1, MQLONG messageNumber = 0)
    {
        return written([&, ownUnitOfWork, messageNumber] {
            return PutFromCmdLine2(&params, hconn, ownUnitOfWork, messageNumber);
        });
    }
    void use_hex(const char *digits)
    {
        params.MsgText = nullptr;
        params.MsgHex = digits;
    }
};

TEST_F(PutTest, OpensPutsAndCloses)
{
    const Written written = this->written([&] { return PutFromCmdLine(&params, hconn); });
    EXPECT_EQ(written.status, 0);
    EXPECT_EQ(written.out, "[now] 1: message length: 5 put message: hello\n");
    EXPECT_EQ(written.err, "");
    EXPECT_EQ(fakeMqi.calls, (Calls{"MQOPEN", "MQPUT", "MQCLOSE"}));
}

TEST_F(PutTest, QueueThatIsOpenIsUsedAndNotClosed)
{
    params.OutputHobj = 42;
    put();
    EXPECT_EQ(fakeMqi.calls, Calls{"MQPUT"});
    EXPECT_EQ(fakeMqi.hobj, 42);
}

TEST_F(PutTest, FailedOpenIsALocalFailure)
{
    fakeMqi.answers["MQOPEN"].push_back({MQCC_FAILED, MQRC_UNKNOWN_OBJECT_NAME});
    EXPECT_EQ(put().status, 1);
    EXPECT_EQ(fakeMqi.calls, Calls{"MQOPEN"});
}

TEST_F(PutTest, FailedCloseIsALocalFailure)
{
    fakeMqi.answers["MQCLOSE"].push_back({MQCC_FAILED, MQRC_HOBJ_ERROR});
    EXPECT_EQ(put().status, 1);
}

TEST_F(PutTest, OneMessageIsPutWithoutACount)
{
    put();
    EXPECT_EQ(fakeMqi.count("MQPUT"), 1);
    EXPECT_EQ(params.MsgCount, 1);
}

TEST_F(PutTest, MessagesAreCountedFromOne)
{
    params.MsgCount = 3;
    EXPECT_EQ(put().out, "[now] 1: message length: 5 put message: hello\n"
                         "[now] 2: message length: 5 put message: hello\n"
                         "[now] 3: message length: 5 put message: hello\n");
    EXPECT_EQ(fakeMqi.bodies, (Bodies{"hello", "hello", "hello"}));
}

TEST_F(PutTest, NegativeCountPutsNothing)
{
    params.MsgCount = -1;
    EXPECT_EQ(put().status, 0);
    EXPECT_EQ(fakeMqi.count("MQPUT"), 0);
}

TEST_F(PutTest, EmptyTextPutsAnEmptyMessage)
{
    params.MsgText = "";
    EXPECT_EQ(put().out, "[now] 1: message length: 0 put message: \n");
    EXPECT_EQ(fakeMqi.bodies, Bodies{""});
}

// ---- -l ----

TEST_F(PutTest, LongerLengthPadsWithZeroBytes)
{
    params.MsgText = "abc";
    params.MsgLength = 6;
    EXPECT_EQ(put().out, "[now] 1: message length: 6 put message: abc...\n");
    EXPECT_EQ(fakeMqi.bodies, Bodies{std::string("abc\0\0\0", 6)});
}

TEST_F(PutTest, ShorterLengthCuts)
{
    params.MsgText = "abc";
    params.MsgLength = 2;
    EXPECT_EQ(put().out, "[now] 1: message length: 2 put message: ab\n");
    EXPECT_EQ(fakeMqi.bodies, Bodies{"ab"});
}

TEST_F(PutTest, LengthZeroPutsAnEmptyMessage)
{
    params.MsgLength = 0;
    EXPECT_EQ(put().out, "[now] 1: message length: 0 put message: \n");
    EXPECT_EQ(fakeMqi.bodies, Bodies{""});
}

TEST_F(PutTest, LengthOfAMegabyteIsPut)
{
    params.MsgLength = 1 << 20;
    put();
    EXPECT_EQ(fakeMqi.bodies.at(0).size(), 1U << 20);
}

// ---- -mx ----

TEST_F(PutTest, HexadecimalDigitsArePutAsBytesAndShownAsDigits)
{
    use_hex("0A0B");
    EXPECT_EQ(put().out, "[now] 1: message length: 2 put message: 0x0A0B\n");
    EXPECT_EQ(fakeMqi.bodies, Bodies{"\x0A\x0B"});
}

TEST_F(PutTest, OddDigitBehindTheLimitIsNotLookedAt)
{
    use_hex("414");
    EXPECT_EQ(put().status, 0);
    EXPECT_EQ(fakeMqi.bodies, Bodies{"A"});
}

TEST_F(PutTest, BadDigitIsReported)
{
    use_hex("41g2");
    const Written written = put();
    EXPECT_EQ(written.status, 1);
    EXPECT_EQ(written.err, "invalid hexadecimal message 41g2\n");
    EXPECT_EQ(fakeMqi.count("MQPUT"), 0);
}

TEST_F(PutTest, SingleDigitIsReported)
{
    use_hex("4");
    const Written written = put();
    EXPECT_EQ(written.status, 1);
    EXPECT_EQ(written.err, "invalid hexadecimal message 4\n");
}

TEST_F(PutTest, BadDigitBehindAShorterLengthIsNotLookedAt)
{
    use_hex("4142zz");
    params.MsgLength = 2;
    EXPECT_EQ(put().status, 0);
    EXPECT_EQ(fakeMqi.bodies, Bodies{"AB"});
}

TEST_F(PutTest, LengthZeroOfHexadecimalDigitsPutsAnEmptyMessage)
{
    use_hex("4142");
    params.MsgLength = 0;
    EXPECT_EQ(put().status, 0);
    EXPECT_EQ(fakeMqi.bodies, Bodies{""});
}

TEST_F(PutTest, NoHexadecimalDigitsPutAnEmptyMessage)
{
    use_hex("");
    EXPECT_EQ(put().out, "[now] 1: message length: 0 put message: \n");
}

TEST_F(PutTest, HexadecimalOutputFormDoesNotChangeThePutDisplay)
{
    params.OutputForm = OutputFormHex;
    EXPECT_EQ(put().out, "[now] 1: message length: 5 put message: hello\n");
}

TEST_F(PutTest, RawOutputFormDoesNotChangeThePutDisplay)
{
    params.OutputForm = OutputFormRaw;
    EXPECT_EQ(put().out, "[now] 1: message length: 5 put message: hello\n");
}

// ---- -ac ----

TEST_F(PutTest, CounterStandsInFrontOfTheText)
{
    params.AppendCounter = 1;
    params.MsgCount = 3;
    EXPECT_EQ(put().out, "[now] 1: message length: 15 put message: 00000001: hello\n"
                         "[now] 2: message length: 15 put message: 00000002: hello\n"
                         "[now] 3: message length: 15 put message: 00000003: hello\n");
    EXPECT_EQ(fakeMqi.bodies, (Bodies{"00000001: hello", "00000002: hello", "00000003: hello"}));
}

TEST_F(PutTest, NumberOfTheCallerReplacesTheCounterAndTheIndex)
{
    params.AppendCounter = 1;
    params.MsgCount = 2;
    EXPECT_EQ(put(1, 5).out, "[now] 5: message length: 15 put message: 00000005: hello\n"
                             "[now] 5: message length: 15 put message: 00000005: hello\n");
    EXPECT_EQ(fakeMqi.bodies, (Bodies{"00000005: hello", "00000005: hello"}));
}

TEST_F(PutTest, CounterOfAMessageShorterThanItIsCut)
{
    params.AppendCounter = 1;
    params.MsgLength = 3;
    EXPECT_EQ(put().out, "[now] 1: message length: 3 put message: 000\n");
    EXPECT_EQ(fakeMqi.bodies, Bodies{"000"});
}

TEST_F(PutTest, CounterOfAnEmptyMessageIsNotPut)
{
    params.AppendCounter = 1;
    params.MsgLength = 0;
    params.DisplaySize = 0;
    EXPECT_EQ(put().out, "[now] 1: message length: 0 put message: \n");
    EXPECT_EQ(fakeMqi.bodies, Bodies{""});
}

TEST_F(PutTest, CounterDoesNotChangeHexadecimalMessages)
{
    use_hex("4142434445464748494A");
    params.AppendCounter = 1;
    put();
    EXPECT_EQ(fakeMqi.bodies, Bodies{"ABCDEFGHIJ"});
}

TEST(AppendCounterTest, WritesEightDigitsWithoutTerminator)
{
    char buffer[] = "________:";
    append_counter(12, buffer, 0);
    EXPECT_STREQ(buffer, "00000012:");
}

TEST(AppendCounterTest, OverrideReplacesTheCounter)
{
    char buffer[] = "________:";
    append_counter(12, buffer, 345);
    EXPECT_STREQ(buffer, "00000345:");
}

TEST(AppendCounterTest, LongerValueIsCutToItsFirstEightDigits)
{
    char buffer[] = "________:";
    append_counter(INT_MAX, buffer, 0);
    EXPECT_STREQ(buffer, "21474836:");
}

// ---- -ds ----

TEST_F(PutTest, DisplaySizeCutsTheLineNotTheMessage)
{
    params.MsgText = "abcdefgh";
    params.DisplaySize = 5;
    EXPECT_EQ(put().out, "[now] 1: message length: 8 put message: abcde\n");
    EXPECT_EQ(fakeMqi.bodies, Bodies{"abcdefgh"});
}

TEST_F(PutTest, DisplaySizeZeroShowsNothing)
{
    params.DisplaySize = 0;
    EXPECT_EQ(put().out, "[now] 1: message length: 5 put message: \n");
}

TEST_F(PutTest, DisplaySizeAllShowsAll)
{
    const std::string text(3000, 'z');
    params.MsgText = text.c_str();
    params.DisplaySize = -1;
    EXPECT_EQ(put().out, "[now] 1: message length: 3000 put message: " + text + "\n");
}

TEST_F(PutTest, DisplayShows128BytesByDefault)
{
    const std::string text(200, 'z');
    params.MsgText = text.c_str();
    EXPECT_EQ(put().out, "[now] 1: message length: 200 put message: " + std::string(128, 'z') + "\n");
}

// ---- The loop ----

TEST_F(PutTest, EveryPutStartsFromTheDescriptorGiven)
{
    params.MsgCount = 2;
    params.Md.Priority = 4;
    put();
    const MQBYTE24 none = {};
    EXPECT_EQ(std::memcmp(fakeMqi.mds.at(1).MsgId, none, sizeof none), 0);
    EXPECT_EQ(fakeMqi.mds.at(1).Priority, 4);
}

TEST_F(PutTest, FailedPutEndsTheLoopWithItsStatus)
{
    params.MsgCount = 3;
    fakeMqi.answers["MQPUT"] = {{}, {MQCC_FAILED, MQRC_Q_FULL}};
    const Written written = put();
    EXPECT_EQ(written.status, 3);
    EXPECT_EQ(fakeMqi.count("MQPUT"), 2);
    EXPECT_EQ(written.err, "MQPUT fail : Q1 CompCd=02 ReasonCd=2053\n");
}

TEST_F(PutTest, PauseComesBeforeTheSecondAndTheThirdPutOnly)
{
    params.OutputHobj = FakeHobj;
    params.MsgCount = 3;
    params.IntervalMs = 500;
    put();
    EXPECT_EQ(intercepted.sleeps, (std::vector<Intercepted::Sleep>{{1, 500}, {2, 500}}));
}

TEST_F(PutTest, LinesAreHandedOnBeforeTheNextPut)
{
    params.MsgCount = 2;
    const OutputFile output;
    std::string seen;
    fakeMqi.during["MQPUT"] = [&] { seen = output.handed_on(); };
    PutFromCmdLine2(&params, hconn, 1, 0);
    EXPECT_EQ(seen, "[now] 1: message length: 5 put message: hello\n");
}

// ---- Unit of work ----

TEST_F(PutTest, SyncpointCommitsAfterTheLastPut)
{
    params.SyncpointFlag = 1;
    params.MsgCount = 2;
    EXPECT_EQ(put().status, 0);
    EXPECT_EQ(fakeMqi.calls, (Calls{"MQOPEN", "MQPUT", "MQPUT", "MQCMIT", "MQCLOSE"}));
}

TEST_F(PutTest, ForcedBackoutBacksOutAfterASuccessfulLoop)
{
    params.SyncpointFlag = 1;
    params.ForceBackout = 1;
    const Written written = put();
    EXPECT_EQ(written.status, 0);
    EXPECT_NE(written.out.find("MQBACK success : CompCd=00 ReasonCd=00\n"), std::string::npos);
    EXPECT_EQ(fakeMqi.count("MQCMIT"), 0);
}

TEST_F(PutTest, FailedPutBacksOut)
{
    params.SyncpointFlag = 1;
    fakeMqi.answers["MQPUT"].push_back({MQCC_FAILED, MQRC_Q_FULL});
    EXPECT_EQ(put().status, 3);
    EXPECT_EQ(fakeMqi.calls, (Calls{"MQOPEN", "MQPUT", "MQBACK", "MQCLOSE"}));
}

TEST_F(PutTest, UnitOfWorkOfTheCallerIsLeftOpen)
{
    params.SyncpointFlag = 1;
    put(0);
    EXPECT_EQ(fakeMqi.calls, (Calls{"MQOPEN", "MQPUT", "MQCLOSE"}));
}

TEST_F(PutTest, FailedCommitIsALocalFailure)
{
    params.SyncpointFlag = 1;
    fakeMqi.answers["MQCMIT"].push_back({MQCC_FAILED, MQRC_CONNECTION_BROKEN});
    EXPECT_EQ(put().status, 1);
}

// ---- Memory ----

class PutMemoryTest : public PutTest {
protected:
    Written put_without(std::size_t size)
    {
        return written([&, size] {
            fail_malloc_of(size);
            return PutFromCmdLine2(&params, hconn, 1, 0);
        });
    }
    static std::string report(std::size_t size)
    {
        return "malloc(): Cannot allocate memory\nPutFromCmdLine,#,12: malloc() failed. size=" + std::to_string(size) +
               "\n";
    }
    const std::string text = std::string(700, 't');
};

TEST_F(PutMemoryTest, TextWithCounterThatCannotBeHadIsReported)
{
    params.MsgText = text.c_str();
    params.AppendCounter = 1;
    const Written written = put_without(711);
    EXPECT_EQ(written.status, 1);
    EXPECT_EQ(written.err, report(711));
}

TEST_F(PutMemoryTest, BodyThatCannotBeHadIsReportedWithItsLength)
{
    params.MsgText = text.c_str();
    const Written written = put_without(701);
    EXPECT_EQ(written.status, 1);
    EXPECT_EQ(written.err, report(700));
}

TEST_F(PutMemoryTest, PutBufferThatCannotBeHadIsReported)
{
    params.MsgText = text.c_str();
    params.MsgLength = 800;
    const Written written = put_without(801);
    EXPECT_EQ(written.status, 1);
    EXPECT_EQ(written.err, report(801));
    EXPECT_EQ(fakeMqi.count("MQPUT"), 0);
}

TEST_F(PutMemoryTest, DisplayBufferThatCannotBeHadIsReported)
{
    params.MsgText = text.c_str();
    params.DisplaySize = 600;
    const Written written = put_without(601);
    EXPECT_EQ(written.status, 1);
    EXPECT_EQ(written.err, report(601));
}

TEST_F(PutMemoryTest, ConvertedTextThatCannotBeHadEndsTheLoop)
{
    params.MsgText = text.c_str();
    params.DisplaySize = -1;
    const Written written = put_without(701 * 2 + 1);
    EXPECT_EQ(written.status, 1);
    EXPECT_EQ(written.err, "malloc(): Cannot allocate memory\ndsp_message,#,12: malloc() failed. size=1403\n");
    EXPECT_EQ(fakeMqi.count("MQPUT"), 0);
}

// ---- Headers, groups and segments ----

/// An MQRFH2 without folders, as it stands in front of a body.
std::string rfh2_of(const std::string &body)
{
    return body.substr(0, MQRFH_STRUC_LENGTH_FIXED_2);
}

TEST_F(PutTest, CounterLandsBehindTheRfh2Header)
{
    params.UseRfh2 = 1;
    params.AppendCounter = 1;
    params.MsgCount = 2;
    EXPECT_EQ(put().out, "[now] 1: message length: 15 put message: 00000001: hello\n"
                         "[now] 2: message length: 15 put message: 00000002: hello\n");
    ASSERT_EQ(fakeMqi.bodies.size(), 2U);
    EXPECT_EQ(rfh2_of(fakeMqi.bodies[1]).substr(0, 4), "RFH ");
    EXPECT_EQ(fakeMqi.bodies[1].substr(MQRFH_STRUC_LENGTH_FIXED_2), "00000002: hello");
}

TEST_F(PutTest, CounterBehindAHeaderFitsIntoAnEmptyMessage)
{
    params.UseRfh2 = 1;
    params.AppendCounter = 1;
    params.MsgLength = 0;
    EXPECT_EQ(put().status, 0);
    EXPECT_EQ(fakeMqi.bodies.at(0).size(), static_cast<std::size_t>(MQRFH_STRUC_LENGTH_FIXED_2));
}

TEST_F(PutTest, Rfh2HeaderIsWrittenInTheEncodingOfTheDescriptor)
{
    params.UseRfh2 = 1;
    params.Md.Encoding = 273;
    put();
    EXPECT_EQ(fakeMqi.bodies.at(0).substr(8, 4), std::string("\0\0\0\x24", 4));
}

TEST_F(PutTest, PaddingStandsBehindHeaderAndBody)
{
    params.UseRfh2 = 1;
    params.MsgLength = 7;
    put();
    EXPECT_EQ(fakeMqi.bodies.at(0).substr(MQRFH_STRUC_LENGTH_FIXED_2), std::string("hello\0\0", 7));
}

TEST_F(PutTest, DelimiterPutsTheBodyAsAGroup)
{
    params.MsgText = "a,b";
    params.LogicalMsgDelimiter = ",";
    EXPECT_EQ(put().status, 0);
    EXPECT_EQ(fakeMqi.bodies, (Bodies{"a", "b"}));
}

TEST_F(PutTest, SegmentSizePutsTheBodyInSegments)
{
    params.SegmentSize = 2;
    EXPECT_EQ(put().status, 0);
    EXPECT_EQ(fakeMqi.bodies, (Bodies{"he", "ll", "o"}));
}

TEST_F(PutTest, SegmentsOfALaterMessageCarryItsCounter)
{
    params.MsgText = "";
    params.AppendCounter = 1;
    params.SegmentSize = 8;
    params.MsgCount = 2;
    put();
    EXPECT_EQ(fakeMqi.bodies, (Bodies{"00000001", ": ", "00000002", ": "}));
}

TEST_F(PutTest, PropertiesThatCannotBeSetEndBeforeAnyPut)
{
    params.SetMpList = "MQTYPE_STRING:a:b";
    fakeMqi.answers["MQCRTMH"].push_back({MQCC_FAILED, MQRC_CMHO_ERROR});
    EXPECT_EQ(put().status, 1);
    EXPECT_EQ(fakeMqi.calls, (Calls{"MQOPEN", "MQCRTMH"}));
}

} // namespace
