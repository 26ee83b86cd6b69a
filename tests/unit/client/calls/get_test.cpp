// Getting and browsing: the loop, its displays, and the MQGET wrapper.
#include "calls_test.h"

#include "common.h"
#include "receive.h"

#include <cstring>

namespace {

using Calls = std::vector<std::string>;

class GetTest : public CallsTest {
protected:
    void queue(const std::string &body, const char *format = "        ")
    {
        FakeMessage message;
        message.body = body;
        std::memcpy(message.md.Format, format, sizeof message.md.Format);
        fakeMqi.messages.push_back(message);
    }
    Written get(MQLONG messageNumber = 0)
    {
        return written([&, messageNumber] { return GetMQMessage2(&params, hconn, messageNumber); });
    }
};

constexpr char NoMessage[] = "no message available : Q1 CompCd=02 ReasonCd=2033\n";

// ---- The loop ----

TEST_F(GetTest, OpensGetsAndCloses)
{
    queue("hello");
    const Written written = this->written([&] { return GetMQMessage(&params, hconn); });
    EXPECT_EQ(written.status, 0);
    EXPECT_EQ(written.out, "[now] 1: message length: 5 get message : hello\n");
    EXPECT_EQ(written.err, "");
    EXPECT_EQ(fakeMqi.calls, (Calls{"MQOPEN", "MQGET", "MQCLOSE"}));
}

TEST_F(GetTest, QueueThatIsOpenIsUsedAndNotClosed)
{
    queue("hello");
    params.InputHobj = 42;
    get();
    EXPECT_EQ(fakeMqi.calls, Calls{"MQGET"});
    EXPECT_EQ(fakeMqi.hobj, 42);
}

TEST_F(GetTest, FailedOpenIsALocalFailure)
{
    fakeMqi.answers["MQOPEN"].push_back({MQCC_FAILED, MQRC_UNKNOWN_OBJECT_NAME});
    EXPECT_EQ(get().status, 1);
    EXPECT_EQ(fakeMqi.calls, Calls{"MQOPEN"});
}

TEST_F(GetTest, FailedCloseIsALocalFailure)
{
    queue("hello");
    fakeMqi.answers["MQCLOSE"].push_back({MQCC_FAILED, MQRC_HOBJ_ERROR});
    EXPECT_EQ(get().status, 1);
}

TEST_F(GetTest, OneMessageIsGotWithoutACount)
{
    queue("a");
    queue("b");
    EXPECT_EQ(get().status, 0);
    EXPECT_EQ(fakeMqi.count("MQGET"), 1);
}

TEST_F(GetTest, NegativeCountGetsOneMessage)
{
    queue("a");
    queue("b");
    params.MsgCount = -3;
    EXPECT_EQ(get().status, 0);
    EXPECT_EQ(fakeMqi.count("MQGET"), 1);
}

TEST_F(GetTest, CountOf3OnAQueueOf5GetsThreeAndCommits)
{
    for (const char *body : {"a", "b", "c", "d", "e"})
        queue(body);
    params.MsgCount = 3;
    params.SyncpointFlag = 1;
    const Written written = get();
    EXPECT_EQ(written.status, 0);
    EXPECT_EQ(written.out, "[now] 1: message length: 1 get message : a\n"
                           "[now] 2: message length: 1 get message : b\n"
                           "[now] 3: message length: 1 get message : c\n"
                           "MQCMIT success : CompCd=00 ReasonCd=00\n");
    EXPECT_EQ(fakeMqi.messages.size(), 2U);
}

TEST_F(GetTest, CountOf3OnAQueueOf1EndsWithNoMessageAvailable)
{
    queue("a");
    params.MsgCount = 3;
    const Written written = get();
    EXPECT_EQ(written.status, 2);
    EXPECT_EQ(written.err, NoMessage);
}

TEST_F(GetTest, NoMessageAvailableIsCommittedLikeASuccess)
{
    params.SyncpointFlag = 1;
    EXPECT_EQ(get().status, 2);
    EXPECT_EQ(fakeMqi.calls, (Calls{"MQOPEN", "MQGET", "MQCMIT", "MQCLOSE"}));
}

TEST_F(GetTest, RepeatedGetEndsWhenTheQueueIsEmpty)
{
    for (const char *body : {"a", "b", "c"})
        queue(body);
    params.GetRepeatedly = 1;
    const Written written = get();
    EXPECT_EQ(written.status, 2);
    EXPECT_EQ(fakeMqi.count("MQGET"), 4);
    EXPECT_EQ(written.err, NoMessage);
}

TEST_F(GetTest, FailedGetEndsTheLoopAndBacksOut)
{
    params.SyncpointFlag = 1;
    fakeMqi.answers["MQGET"].push_back({MQCC_FAILED, MQRC_GET_INHIBITED});
    const Written written = get();
    EXPECT_EQ(written.status, 3);
    EXPECT_EQ(written.err, "MQGET fail : Q1 CompCd=02 ReasonCd=2016\n");
    EXPECT_EQ(fakeMqi.calls, (Calls{"MQOPEN", "MQGET", "MQBACK", "MQCLOSE"}));
}

TEST_F(GetTest, ForcedBackoutBacksOutWhatWasGot)
{
    queue("a");
    params.SyncpointFlag = 1;
    params.ForceBackout = 1;
    EXPECT_EQ(get().status, 0);
    EXPECT_EQ(fakeMqi.count("MQBACK"), 1);
}

TEST_F(GetTest, ThreadsThatShareAConnectionEndNoUnitOfWork)
{
    queue("a");
    params.SyncpointFlag = 1;
    params.ThreadCount = 2;
    get();
    EXPECT_EQ(fakeMqi.calls, (Calls{"MQOPEN", "MQGET", "MQCLOSE"}));
}

TEST_F(GetTest, MatchFieldsApplyToEveryGet)
{
    queue("a");
    queue("b");
    params.MsgCount = 2;
    std::memset(params.Md.CorrelId, 0x5A, sizeof params.Md.CorrelId);
    get();
    ASSERT_EQ(fakeMqi.mds.size(), 2U);
    EXPECT_EQ(fakeMqi.mds[1].CorrelId[23], 0x5A);
}

TEST_F(GetTest, NumberOfTheCallerReplacesTheLineNumber)
{
    queue("a");
    EXPECT_EQ(get(5).out, "[now] 5: message length: 1 get message : a\n");
}

TEST_F(GetTest, BufferLengthIsTheMaximumGiven)
{
    queue("a");
    params.MaxMsgSize = 100;
    get();
    EXPECT_EQ(fakeMqi.bufferLength, 100);
}

TEST_F(GetTest, BufferOfNoBytesGetsAnEmptyMessage)
{
    queue("");
    params.MaxMsgSize = 0;
    EXPECT_EQ(get().out, "[now] 1: message length: 0 get message : \n");
}

TEST_F(GetTest, BrowsingAddsTheBrowseOptions)
{
    queue("a");
    params.BrowseMode = 1;
    get();
    EXPECT_EQ(fakeMqi.openOptions, MQOO_BROWSE);
    EXPECT_NE(fakeMqi.gmo.Options & MQGMO_BROWSE_NEXT, 0);
}

TEST_F(GetTest, LinesOfThreadsShowTheirId)
{
    queue("a");
    params.InnerConnThreadCount = 1;
    params.ThreadId = 4711;
    EXPECT_EQ(get().out, "[now tid=4711] 1: message length: 1 get message : a\n");
}

// ---- Pauses ----

class GetPauseTest : public GetTest {
protected:
    /// The sleeps of getting three messages.
    std::vector<Intercepted::Sleep> sleeps()
    {
        for (int i = 0; i < 3; ++i)
            queue("a");
        params.InputHobj = FakeHobj;
        params.MsgCount = 3;
        params.IntervalMs = 1000;
        get();
        EXPECT_EQ(fakeMqi.count("MQGET"), 3);
        return intercepted.sleeps;
    }
    const std::vector<Intercepted::Sleep> none;
};

TEST_F(GetPauseTest, NumberedLinesPauseBetweenGets)
{
    EXPECT_EQ(sleeps(), (std::vector<Intercepted::Sleep>{{1, 1000}, {2, 1000}}));
}

TEST_F(GetPauseTest, HexadecimalLinesPauseToo)
{
    params.OutputForm = OutputFormHex;
    EXPECT_EQ(sleeps().size(), 2U);
}

TEST_F(GetPauseTest, RawGetsWithoutPausing)
{
    params.OutputForm = OutputFormRaw;
    EXPECT_EQ(sleeps(), none);
}

TEST_F(GetPauseTest, DumpGetsWithoutPausing)
{
    params.DumpMode = 1;
    EXPECT_EQ(sleeps(), none);
}

TEST_F(GetPauseTest, BrowseGetsWithoutPausing)
{
    params.BrowseMode = 2;
    EXPECT_EQ(sleeps(), none);
}

// ---- One-line displays ----

TEST_F(GetTest, DisplaySizeCutsTheLine)
{
    queue("abcdefghij");
    params.DisplaySize = 4;
    EXPECT_EQ(get().out, "[now] 1: message length: 10 get message : abcd\n");
}

TEST_F(GetTest, HexadecimalFormShowsDigits)
{
    queue("abc");
    params.OutputForm = OutputFormHex;
    EXPECT_EQ(get().out, "[now] 1: message length: 3 get message : 0x616263\n");
}

TEST_F(GetTest, TextFormShowsDotsAndKeepsLineBreaks)
{
    queue("a\x01\nb");
    EXPECT_EQ(get().out, "[now] 1: message length: 4 get message : a.\nb\n");
}

TEST_F(GetTest, RawFormWritesTheBareBytes)
{
    queue(std::string("a\0b\x01", 4));
    params.OutputForm = OutputFormRaw;
    params.DisplaySize = 2;
    EXPECT_EQ(get().out, std::string("a\0b\x01", 4));
}

TEST_F(GetTest, LineIsHandedOnBeforeTheNextGet)
{
    queue("a");
    queue("b");
    params.MsgCount = 2;
    const OutputFile output;
    std::string seen;
    fakeMqi.during["MQGET"] = [&] { seen = output.handed_on(); };
    GetMQMessage2(&params, hconn, 0);
    EXPECT_EQ(seen, "[now] 1: message length: 1 get message : a\n");
}

TEST_F(GetTest, TraceIsHandedOnBeforeAGetThatWaits)
{
    queue("a");
    params.InputHobj = 42;
    params.ApiTrace = 1;
    params.Gmo.Options = MQGMO_WAIT;
    const OutputFile output;
    std::string seen;
    fakeMqi.during["MQGET"] = [&] { seen = output.handed_on(); };
    GetMQMessage2(&params, hconn, 0);
    EXPECT_EQ(seen, "[now] MQGET start hcon:7 hobj:42 Options:0x00000001\n");
}

// ---- Detailed displays ----

TEST_F(GetTest, DumpShowsNumberDescriptorAndBody)
{
    queue("ABCDEFGHIJKLMNOPQRST", "MQSTR   ");
    params.DumpMode = 1;
    const Written written = get();
    EXPECT_EQ(written.status, 0);
    EXPECT_EQ(written.out.rfind("message number: 1\n*StrucId[MD  ] Version[1] ", 0), 0U);
    EXPECT_NE(written.out.find("OriginalLength[-1]\n\n"
                               "data length: 20\n"
                               "00000000:  4142 4344 4546 4748 494A 4B4C 4D4E 4F50 'ABCDEFGHIJKLMNOP'\n"
                               "00000010:  5152 5354                               'QRST            '\n"
                               "\n"),
              std::string::npos)
        << written.out;
}

TEST_F(GetTest, WalkWithoutHeadersShowsDescriptorAndDump)
{
    queue("ABCD", "MQSTR   ");
    params.BrowseMode = 2;
    EXPECT_NE(get().out.find("OriginalLength[-1]\n\n"
                             "data length: 4\n"
                             "00000000:  4142 4344                               'ABCD            '\n"
                             "\n"),
              std::string::npos);
}

TEST_F(GetTest, DetailedDisplaysAreNumberedByMessagesGot)
{
    queue("A");
    queue("B");
    params.DumpMode = 1;
    params.MsgCount = 2;
    EXPECT_NE(get(9).out.find("message number: 2\n"), std::string::npos);
}

TEST_F(GetTest, BrowseLevelWinsOverDumpLevel)
{
    queue("A", "MQDEAD  ");
    params.BrowseMode = 1;
    params.DumpMode = 2;
    EXPECT_NE(get().out.find("data length: 1\n"), std::string::npos);
}

TEST_F(GetTest, DetailedDisplayOfAThreadBeginsWithItsId)
{
    queue("A");
    params.DumpMode = 1;
    params.ThreadCount = 1;
    params.ThreadId = 4711;
    EXPECT_EQ(get().out.rfind("tid=4711 message number: 1\n", 0), 0U);
}

TEST_F(GetTest, DumpOfATruncatedMessageShowsWhatTheBufferHolds)
{
    FakeMessage message;
    message.body = "ABCDEFGH";
    message.codes = {MQCC_WARNING, MQRC_TRUNCATED_MSG_ACCEPTED};
    fakeMqi.messages.push_back(message);
    params.MaxMsgSize = 4;
    params.DumpMode = 1;
    EXPECT_NE(get().out.find("data length: 8\n"
                             "00000000:  4142 4344                               'ABCD            '\n"),
              std::string::npos);
}

TEST_F(GetTest, DisplayThatCannotHaveTheLockIsALocalFailure)
{
    queue("a");
    const UnavailableLock lock(params);
    const Written written = get();
    EXPECT_EQ(written.status, 1);
    EXPECT_EQ(written.out, "");
    EXPECT_EQ(fakeMqi.calls, (Calls{"MQOPEN", "MQGET", "MQCLOSE"}));
}

// ---- Message handle ----

TEST_F(GetTest, PropertiesInHandleMakeAndDeleteAMessageHandle)
{
    queue("a");
    params.Gmo.Options = MQGMO_PROPERTIES_IN_HANDLE;
    EXPECT_EQ(get().status, 0);
    EXPECT_EQ(fakeMqi.calls, (Calls{"MQOPEN", "MQCRTMH", "MQGET", "MQDLTMH", "MQCLOSE"}));
    EXPECT_EQ(fakeMqi.gmo.MsgHandle, FakeHmsg);
}

TEST_F(GetTest, MessageHandleThatCannotBeMadeIsNotDeleted)
{
    params.Gmo.Options = MQGMO_PROPERTIES_IN_HANDLE;
    fakeMqi.answers["MQCRTMH"].push_back({MQCC_FAILED, MQRC_CMHO_ERROR});
    EXPECT_EQ(get().status, 1);
    EXPECT_EQ(fakeMqi.calls, (Calls{"MQOPEN", "MQCRTMH", "MQCLOSE"}));
}

TEST_F(GetTest, MessageHandleThatCannotBeDeletedIsALocalFailure)
{
    queue("a");
    params.Gmo.Options = MQGMO_PROPERTIES_IN_HANDLE;
    fakeMqi.answers["MQDLTMH"].push_back({MQCC_FAILED, MQRC_HMSG_ERROR});
    EXPECT_EQ(get().status, 1);
}

// ---- Memory ----

TEST_F(GetTest, MessageBufferThatCannotBeHadIsReported)
{
    params.MaxMsgSize = 777;
    const Written written = this->written([&] {
        fail_malloc_of(778);
        return GetMQMessage2(&params, hconn, 0);
    });
    EXPECT_EQ(written.status, 1);
    EXPECT_EQ(written.err, "malloc(): Cannot allocate memory\nGetMQMessage,#,12: malloc() failed. size=778\n");
    EXPECT_EQ(fakeMqi.count("MQGET"), 0);
}

TEST_F(GetTest, DisplayBufferThatCannotBeHadIsReported)
{
    params.MaxMsgSize = 777;
    const Written written = this->written([&] {
        fail_malloc_of(778 * 2 + 1);
        return GetMQMessage2(&params, hconn, 0);
    });
    EXPECT_EQ(written.status, 1);
    EXPECT_EQ(written.err, "malloc(): Cannot allocate memory\nGetMQMessage,#,12: malloc() failed. size=1557\n");
}

// ---- The MQGET wrapper ----

class ReceiveTest : public GetTest {
protected:
    Written receive(MQLONG bufferLength = 1000)
    {
        buffer.assign(static_cast<std::size_t>(bufferLength) + 1, '#');
        return written([&, bufferLength] {
            return MQSeriesReceive(hconn, FakeHobj, &params, buffer.data(), bufferLength, &length);
        });
    }
    /// The body left, as the terminator ends it.
    std::string body() const { return {buffer.data(), std::strlen(buffer.data())}; }

    std::string buffer;
    MQLONG length = -1;
};

std::string transmission_header(const char *embeddedFormat)
{
    MQXQH xqh = {MQXQH_DEFAULT};
    std::memcpy(xqh.MsgDesc.Format, embeddedFormat, sizeof xqh.MsgDesc.Format);
    return {reinterpret_cast<const char *>(&xqh), sizeof xqh};
}

std::string dead_letter_header(const char *format)
{
    MQDLH dlh = {MQDLH_DEFAULT};
    std::memcpy(dlh.Format, format, sizeof dlh.Format);
    return {reinterpret_cast<const char *>(&dlh), sizeof dlh};
}

const std::string Extension(72, 'E');

TEST_F(ReceiveTest, TerminatesTheBodyBehindTheData)
{
    queue("hello");
    EXPECT_EQ(receive().status, 0);
    EXPECT_EQ(length, 5);
    EXPECT_EQ(body(), "hello");
}

TEST_F(ReceiveTest, BodyMayFillTheBuffer)
{
    queue("hello");
    receive(5);
    EXPECT_EQ(buffer, std::string("hello\0", 6));
}

TEST_F(ReceiveTest, IsTraced)
{
    queue("hello");
    params.ApiTrace = 1;
    params.Gmo.Options = MQGMO_FAIL_IF_QUIESCING;
    EXPECT_EQ(receive().out, "[now] MQGET start hcon:7 hobj:11 Options:0x00002000\n"
                             "[now] MQGET stop hcon:7 hobj:11 CompCd=00 ReasonCd=00\n");
}

TEST_F(ReceiveTest, EmptyQueueAnswers2)
{
    const Written written = receive();
    EXPECT_EQ(written.status, 2);
    EXPECT_EQ(written.err, NoMessage);
    EXPECT_EQ(written.out, "");
}

TEST_F(ReceiveTest, FailureAnswers3)
{
    fakeMqi.answers["MQGET"].push_back({MQCC_FAILED, MQRC_HOBJ_ERROR});
    const Written written = receive();
    EXPECT_EQ(written.status, 3);
    EXPECT_EQ(written.err, "MQGET fail : Q1 CompCd=02 ReasonCd=2019\n");
}

TEST_F(ReceiveTest, AcceptedTruncationIsAWarningLineAndSuccess)
{
    FakeMessage message;
    message.body = "abcdefghij";
    message.codes = {MQCC_WARNING, MQRC_TRUNCATED_MSG_ACCEPTED};
    fakeMqi.messages.push_back(message);
    const Written written = receive(4);
    EXPECT_EQ(written.status, 0);
    EXPECT_EQ(written.err, "MQGET with warning : Q1 CompCd=01 ReasonCd=2079 len=10\n");
    EXPECT_EQ(length, 10);
    EXPECT_EQ(buffer, std::string("abcd\0", 5));
}

TEST_F(ReceiveTest, AnyOtherWarningAnswers3)
{
    FakeMessage message;
    message.body = "abcdefghij";
    message.codes = {MQCC_WARNING, MQRC_TRUNCATED_MSG_FAILED};
    fakeMqi.messages.push_back(message);
    const Written written = receive(4);
    EXPECT_EQ(written.status, 3);
    EXPECT_EQ(written.err, "MQGET with warning : Q1 CompCd=01 ReasonCd=2080 len=10\n");
}

TEST_F(ReceiveTest, LengthBeyondTheBufferNeverMovesTheTerminatorOutOfIt)
{
    FakeMessage message;
    message.body = "abcd";
    message.reportedLength = 1000000;
    fakeMqi.messages.push_back(message);
    EXPECT_EQ(receive(4).status, 0);
    EXPECT_EQ(length, 4);
    EXPECT_EQ(buffer, std::string("abcd\0", 5));
}

// ---- Transport headers ----

TEST_F(ReceiveTest, ExtensionIsCut)
{
    queue(Extension + "data", "MQHMDE  ");
    const Written written = receive();
    EXPECT_EQ(written.out, "Cut MQMDE Header\n");
    EXPECT_EQ(length, 4);
    EXPECT_EQ(body(), "data");
}

TEST_F(ReceiveTest, ExtensionLongerThanTheBodyLeavesAnEmptyMessage)
{
    queue("short", "MQHMDE  ");
    EXPECT_EQ(receive().status, 0);
    EXPECT_EQ(length, 0);
    EXPECT_EQ(body(), "");
}

TEST_F(ReceiveTest, ExtensionIsCutInSilenceWithRaw)
{
    queue(Extension + "data", "MQHMDE  ");
    params.OutputForm = OutputFormRaw;
    const Written written = receive();
    EXPECT_EQ(written.out + written.err, "");
    EXPECT_EQ(body(), "data");
}

TEST_F(ReceiveTest, TransmissionHeaderIsCut)
{
    queue(transmission_header("MQSTR   ") + "data", "MQXMIT  ");
    EXPECT_EQ(receive().out, "Cut Xmit Queue Header and message body MQMD\n");
    EXPECT_EQ(length, 4);
    EXPECT_EQ(body(), "data");
}

TEST_F(ReceiveTest, ExtensionBehindATransmissionHeaderIsCutToo)
{
    queue(transmission_header("MQHMDE  ") + Extension + "data", "MQXMIT  ");
    EXPECT_EQ(receive().out, "Cut Xmit Queue Header and message body MQMD\nCut MQMDE Header\n");
    EXPECT_EQ(body(), "data");
}

TEST_F(ReceiveTest, BodyShorterThanATransmissionHeaderLeavesAnEmptyMessage)
{
    queue(transmission_header("MQHMDE  ").substr(0, 140), "MQXMIT  ");
    const Written written = receive();
    EXPECT_EQ(written.status, 0);
    EXPECT_EQ(written.out, "Cut Xmit Queue Header and message body MQMD\n");
    EXPECT_EQ(length, 0);
}

TEST_F(ReceiveTest, EmptyBodyOfTransmissionFormatStaysEmpty)
{
    queue("", "MQXMIT  ");
    EXPECT_EQ(receive(0).status, 0);
    EXPECT_EQ(length, 0);
}

TEST_F(ReceiveTest, TransmissionHeaderWithoutItsExtensionLeavesAnEmptyMessage)
{
    queue(transmission_header("MQHMDE  ") + "short", "MQXMIT  ");
    receive();
    EXPECT_EQ(length, 0);
}

TEST_F(ReceiveTest, TransmissionHeaderIsCutInSilenceWithRaw)
{
    queue(transmission_header("MQHMDE  ") + Extension + "data", "MQXMIT  ");
    params.OutputForm = OutputFormRaw;
    const Written written = receive();
    EXPECT_EQ(written.out + written.err, "");
    EXPECT_EQ(body(), "data");
}

TEST_F(ReceiveTest, DeadLetterHeaderIsCut)
{
    queue(dead_letter_header("MQSTR   ") + "data", "MQDEAD  ");
    EXPECT_EQ(receive().out, "Cut Dead Letter Header\n");
    EXPECT_EQ(body(), "data");
}

TEST_F(ReceiveTest, ExtensionBehindADeadLetterHeaderIsCutToo)
{
    queue(dead_letter_header("MQHMDE  ") + Extension + "data", "MQDEAD  ");
    EXPECT_EQ(receive().out, "Cut Dead Letter Header\nCut MQMDE Header\n");
    EXPECT_EQ(body(), "data");
}

TEST_F(ReceiveTest, BodyShorterThanADeadLetterHeaderLeavesAnEmptyMessage)
{
    queue(dead_letter_header("MQHMDE  ").substr(0, 120), "MQDEAD  ");
    EXPECT_EQ(receive().status, 0);
    EXPECT_EQ(length, 0);
}

TEST_F(ReceiveTest, CutOfADeadLetterHeaderIsSaidWithRawToo)
{
    queue(dead_letter_header("MQSTR   ") + "data", "MQDEAD  ");
    params.OutputForm = OutputFormRaw;
    const Written written = receive();
    EXPECT_EQ(written.out, "");
    EXPECT_EQ(written.err, "Cut Dead Letter Header\n");
}

TEST_F(ReceiveTest, BrowsedMessageKeepsItsTransmissionHeader)
{
    const std::string whole = transmission_header("MQSTR   ") + "data";
    queue(whole, "MQXMIT  ");
    params.BrowseMode = 1;
    EXPECT_EQ(receive().out, "");
    EXPECT_EQ(buffer.substr(0, whole.size()), whole);
}

TEST_F(ReceiveTest, DumpedMessageKeepsItsHeaders)
{
    queue(Extension + "data", "MQHMDE  ");
    params.DumpMode = 2;
    receive();
    EXPECT_EQ(length, 76);
}

TEST_F(ReceiveTest, ForwardedMessageKeepsItsHeaders)
{
    queue(Extension + "data", "MQHMDE  ");
    params.KeepHeaders = 1;
    receive();
    EXPECT_EQ(length, 76);
}

TEST_F(ReceiveTest, DescriptorStillNamesTheHeaderThatWasCut)
{
    queue(Extension + "data", "MQHMDE  ");
    receive();
    EXPECT_EQ(std::string(params.Md.Format, 8), "MQHMDE  ");
}

} // namespace
