#include "fixture.h"

#include <atomic>
#include <chrono>
#include <cstring>
#include <thread>

#include "qmgr/store/seams.h"

namespace mqrig::qmgr::testing {
namespace {

using Bodies = std::vector<std::string>;

class Get : public OpenQueueTest {
public:
    Codes codesFor(MQLONG options) { return get(hconn, q1, options).codes; }
    Codes codesFor(MQGMO gmo) { return get(hconn, q1, version2Md(), gmo).codes; }
};

// ---- Order ----

TEST_F(Get, EmptyQueueIs2033)
{
    EXPECT_EQ(codesFor(MQGMO_NO_SYNCPOINT), failed(MQRC_NO_MSG_AVAILABLE));
}

TEST_F(Get, MessagesOfOnePriorityComeInTheOrderTheyWerePut)
{
    for (const char *body : {"1", "2", "3"})
        put(hconn, q1, body);
    EXPECT_EQ(drain(hconn, q1), (Bodies{"1", "2", "3"}));
}

TEST_F(Get, HigherPriorityComesFirst)
{
    put(hconn, q1, "low", withPriority(0));
    put(hconn, q1, "high", withPriority(9));
    put(hconn, q1, "middle", withPriority(4));
    put(hconn, q1, "high again", withPriority(9));
    EXPECT_EQ(drain(hconn, q1), (Bodies{"high", "high again", "middle", "low"}));
}

TEST_F(Get, FirstInFirstOutIgnoresPriority)
{
    defineQueue("QF", {{MQIA_MSG_DELIVERY_SEQUENCE, MQMDS_FIFO}});
    const MQHOBJ qf = open(hconn, "QF", everything);
    put(hconn, qf, "low", withPriority(0));
    put(hconn, qf, "high", withPriority(9));
    EXPECT_EQ(drain(hconn, qf), (Bodies{"low", "high"}));
}

TEST_F(Get, MessagesPutBeforeASwitchToFirstInFirstOutAreNotOvertaken)
{
    put(hconn, q1, "old", withPriority(0));
    alterQueue("Q1", {{MQIA_MSG_DELIVERY_SEQUENCE, MQMDS_FIFO}});
    put(hconn, q1, "new", withPriority(9));
    EXPECT_EQ(drain(hconn, q1), (Bodies{"old", "new"}));
}

// ---- Checks ----

TEST_F(Get, HandleErrors)
{
    EXPECT_EQ(get(hconn + 1, q1).codes, failed(MQRC_HCONN_ERROR));
    EXPECT_EQ(get(hconn, q1 + 1).codes, failed(MQRC_HOBJ_ERROR));
    EXPECT_EQ(get(hconn, open(hconn, "Q1", MQOO_OUTPUT)).codes, failed(MQRC_NOT_OPEN_FOR_INPUT));
    EXPECT_EQ(get(hconn, open(hconn, "Q1", MQOO_BROWSE)).codes, failed(MQRC_NOT_OPEN_FOR_INPUT));
    const MQHOBJ input = open(hconn, "Q1", MQOO_INPUT_SHARED);
    for (const MQLONG options :
         {MQGMO_BROWSE_FIRST, MQGMO_BROWSE_NEXT, MQGMO_BROWSE_MSG_UNDER_CURSOR, MQGMO_MSG_UNDER_CURSOR})
        EXPECT_EQ(get(hconn, input, options).codes, failed(MQRC_NOT_OPEN_FOR_BROWSE));
}

TEST_F(Get, QueueManagerObjectHasNoMessages)
{
    MQOD od = {MQOD_DEFAULT};
    od.ObjectType = MQOT_Q_MGR;
    MQHOBJ hobj = 7;
    ASSERT_EQ(tryOpen(hconn, od, MQOO_INQUIRE, hobj), ok);
    EXPECT_EQ(get(hconn, hobj).codes, failed(MQRC_NOT_OPEN_FOR_INPUT));
    EXPECT_EQ(put(hconn, hobj, "x"), failed(MQRC_NOT_OPEN_FOR_OUTPUT));
}

TEST_F(Get, PointerAndStructureErrors)
{
    MQMD md = {MQMD_DEFAULT};
    MQGMO gmo = {MQGMO_DEFAULT};
    char buffer[16];
    MQLONG length = 0;
    Codes codes;
    const auto codesOf = [&](MQMD *m, MQGMO *g, MQLONG bufferLength, char *b, MQLONG *l) {
        MQGET(hconn, q1, m, g, bufferLength, b, l, &codes.CompCode, &codes.Reason);
        return codes;
    };
    EXPECT_EQ(codesOf(nullptr, &gmo, 16, buffer, &length), failed(MQRC_MD_ERROR));
    EXPECT_EQ(codesOf(&md, nullptr, 16, buffer, &length), failed(MQRC_GMO_ERROR));
    EXPECT_EQ(codesOf(&md, &gmo, -1, buffer, &length), failed(MQRC_BUFFER_LENGTH_ERROR));
    EXPECT_EQ(codesOf(&md, &gmo, 16, nullptr, &length), failed(MQRC_BUFFER_ERROR));
    EXPECT_EQ(codesOf(&md, &gmo, 16, buffer, nullptr), failed(MQRC_DATA_LENGTH_ERROR));
    md.Version = 3;
    EXPECT_EQ(codesOf(&md, &gmo, 16, buffer, &length), failed(MQRC_MD_ERROR));
    md.Version = 1;
    gmo.Version = MQGMO_CURRENT_VERSION + 1;
    EXPECT_EQ(codesOf(&md, &gmo, 16, buffer, &length), failed(MQRC_GMO_ERROR));
    gmo.Version = 1;
    gmo.StrucId[0] = 'X';
    EXPECT_EQ(codesOf(&md, &gmo, 16, buffer, &length), failed(MQRC_GMO_ERROR));
}

TEST_F(Get, OptionsThatExcludeEachOtherAre2046)
{
    for (const MQLONG options :
         {MQGMO_SYNCPOINT | MQGMO_NO_SYNCPOINT, MQGMO_SYNCPOINT | MQGMO_SYNCPOINT_IF_PERSISTENT,
          MQGMO_BROWSE_FIRST | MQGMO_BROWSE_NEXT, MQGMO_BROWSE_NEXT | MQGMO_MSG_UNDER_CURSOR,
          MQGMO_BROWSE_FIRST | MQGMO_BROWSE_MSG_UNDER_CURSOR, MQGMO_BROWSE_FIRST | MQGMO_SYNCPOINT,
          MQGMO_BROWSE_NEXT | MQGMO_SYNCPOINT_IF_PERSISTENT,
          MQGMO_PROPERTIES_FORCE_MQRFH2 | MQGMO_PROPERTIES_COMPATIBILITY})
        EXPECT_EQ(codesFor(options), failed(MQRC_OPTIONS_ERROR)) << std::hex << options;
}

TEST_F(Get, OptionsOfOtherPlatformsAndUnknownOnesAre2046)
{
    for (const MQLONG options : {MQGMO_SET_SIGNAL, MQGMO_MARK_SKIP_BACKOUT, 0x20000000})
        EXPECT_EQ(codesFor(options), failed(MQRC_OPTIONS_ERROR)) << std::hex << options;
}

TEST_F(Get, MessageHandleThatIsNoneIs2460)
{
    MQGMO gmo = gmoWith(MQGMO_NO_SYNCPOINT, MQGMO_VERSION_4);
    gmo.MsgHandle = 5;
    EXPECT_EQ(codesFor(gmo), failed(MQRC_HMSG_ERROR));
}

TEST_F(Get, WaitIntervalBelowUnlimitedIs2090)
{
    MQGMO gmo = gmoWith(MQGMO_WAIT);
    gmo.WaitInterval = -2;
    EXPECT_EQ(codesFor(gmo), failed(MQRC_WAIT_INTERVAL_ERROR));
    gmo.Options = MQGMO_NO_WAIT;
    EXPECT_EQ(codesFor(gmo), failed(MQRC_NO_MSG_AVAILABLE));
}

TEST_F(Get, InhibitedIs2016)
{
    put(hconn, q1, "x");
    alterQueue("Q1", {{MQIA_INHIBIT_GET, MQQA_GET_INHIBITED}});
    EXPECT_EQ(codesFor(MQGMO_NO_SYNCPOINT), failed(MQRC_GET_INHIBITED));
    EXPECT_EQ(codesFor(MQGMO_BROWSE_FIRST), failed(MQRC_GET_INHIBITED));
    alterQueue("Q1", {{MQIA_INHIBIT_GET, MQQA_GET_ALLOWED}});
    EXPECT_EQ(codesFor(MQGMO_NO_SYNCPOINT), ok);
}

TEST_F(Get, DeletedQueueIs2052)
{
    deleteQueue("Q1");
    EXPECT_EQ(codesFor(MQGMO_NO_SYNCPOINT), failed(MQRC_Q_DELETED));
}

TEST_F(Get, FailIfQuiescingIs2161)
{
    put(hconn, q1, "x");
    endQuiesce();
    EXPECT_EQ(codesFor(MQGMO_FAIL_IF_QUIESCING), failed(MQRC_Q_MGR_QUIESCING));
    EXPECT_EQ(codesFor(MQGMO_NO_SYNCPOINT), ok);
}

// ---- Truncation ----

TEST_F(Get, TruncationFailedLeavesTheMessage)
{
    put(hconn, q1, "hello");
    const Got got = get(hconn, q1, version2Md(), gmoWith(MQGMO_NO_SYNCPOINT, MQGMO_VERSION_3), 3);
    EXPECT_EQ(got.codes, warned(MQRC_TRUNCATED_MSG_FAILED));
    EXPECT_EQ(got.body, "hel");
    EXPECT_EQ(got.dataLength, 5);
    EXPECT_EQ(got.gmo.ReturnedLength, 3);
    EXPECT_EQ(bytes(got.md.MsgId).substr(0, 4), "AMQ ");
    EXPECT_EQ(get(hconn, q1).body, "hello");
}

TEST_F(Get, TruncationAcceptedRemovesTheMessage)
{
    put(hconn, q1, "hello");
    const Got got = get(hconn, q1, version2Md(), gmoWith(MQGMO_ACCEPT_TRUNCATED_MSG, MQGMO_VERSION_3), 2);
    EXPECT_EQ(got.codes, warned(MQRC_TRUNCATED_MSG_ACCEPTED));
    EXPECT_EQ(got.body, "he");
    EXPECT_EQ(got.dataLength, 5);
    EXPECT_EQ(got.gmo.ReturnedLength, 2);
    EXPECT_EQ(codesFor(MQGMO_NO_SYNCPOINT), failed(MQRC_NO_MSG_AVAILABLE));
}

TEST_F(Get, LargeMessagesAreTruncatedAlike)
{
    put(hconn, q1, std::string(200000, 'a'));
    Got got = get(hconn, q1, version2Md(), gmoWith(MQGMO_NO_SYNCPOINT), 100000);
    EXPECT_EQ(got.codes, warned(MQRC_TRUNCATED_MSG_FAILED));
    got = get(hconn, q1, version2Md(), gmoWith(MQGMO_ACCEPT_TRUNCATED_MSG), 100000);
    EXPECT_EQ(got.codes, warned(MQRC_TRUNCATED_MSG_ACCEPTED));
    EXPECT_EQ(got.body, std::string(100000, 'a'));
    EXPECT_EQ(got.dataLength, 200000);
    EXPECT_EQ(codesFor(MQGMO_NO_SYNCPOINT), failed(MQRC_NO_MSG_AVAILABLE));
}

TEST_F(Get, NoBufferAtAllTellsTheLength)
{
    put(hconn, q1, "hello");
    MQMD md = {MQMD_DEFAULT};
    MQGMO gmo = {MQGMO_DEFAULT};
    MQLONG length = -1;
    Codes codes;
    MQGET(hconn, q1, &md, &gmo, 0, nullptr, &length, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, warned(MQRC_TRUNCATED_MSG_FAILED));
    EXPECT_EQ(length, 5);
}

TEST_F(Get, NothingBehindTheMessageIsWritten)
{
    put(hconn, q1, "hello");
    MQMD md = {MQMD_DEFAULT};
    MQGMO gmo = {MQGMO_DEFAULT};
    char buffer[8];
    std::memset(buffer, '#', sizeof buffer);
    MQLONG length = -1;
    Codes codes;
    MQGET(hconn, q1, &md, &gmo, 8, buffer, &length, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, ok);
    EXPECT_EQ(std::string(buffer, 8), "hello###");
}

// ---- What comes back ----

TEST_F(Get, OptionsOfVersion3AreFilled)
{
    put(hconn, q1, "hello");
    MQGMO gmo = gmoWith(MQGMO_NO_SYNCPOINT, MQGMO_VERSION_3);
    gmo.GroupStatus = gmo.SegmentStatus = gmo.Segmentation = '#';
    const Got got = get(hconn, q1, version2Md(), gmo);
    EXPECT_EQ(std::string(got.gmo.ResolvedQName, 48), "Q1" + std::string(46, ' '));
    EXPECT_EQ(got.gmo.GroupStatus, MQGS_NOT_IN_GROUP);
    EXPECT_EQ(got.gmo.SegmentStatus, MQSS_NOT_A_SEGMENT);
    EXPECT_EQ(got.gmo.Segmentation, MQSEG_INHIBITED);
    EXPECT_EQ(got.gmo.ReturnedLength, 5);
    EXPECT_NE(bytes(got.gmo.MsgToken), std::string(16, '\0'));
}

TEST_F(Get, SignalFieldsAreLeftAlone)
{
    put(hconn, q1, "hello");
    MQGMO gmo = gmoWith(MQGMO_NO_SYNCPOINT);
    gmo.Signal1 = 11;
    gmo.Signal2 = 22;
    const Got got = get(hconn, q1, version2Md(), gmo);
    EXPECT_EQ(got.gmo.Signal1, 11);
    EXPECT_EQ(got.gmo.Signal2, 22);
}

TEST_F(Get, FailedGetChangesNothingOfTheProgramsStructures)
{
    MQMD md = version2Md();
    MQGMO gmo = gmoWith(MQGMO_NO_SYNCPOINT, MQGMO_VERSION_4);
    const Got got = get(hconn, q1, md, gmo);
    EXPECT_EQ(got.codes, failed(MQRC_NO_MSG_AVAILABLE));
    EXPECT_EQ(std::memcmp(&got.md, &md, sizeof md), 0);
    EXPECT_EQ(std::memcmp(&got.gmo, &gmo, sizeof gmo), 0);
    EXPECT_EQ(got.dataLength, -1);
}

TEST_F(Get, BackoutCountIsZeroForAMessageNeverBackedOut)
{
    MQMD md = {MQMD_DEFAULT};
    md.BackoutCount = 9;
    put(hconn, q1, "x", md);
    EXPECT_EQ(get(hconn, q1).md.BackoutCount, 0);
}

// ---- Expiry ----

TEST_F(Get, ExpiryCountsDown)
{
    put(hconn, q1, "x", withExpiry(3000));
    std::this_thread::sleep_for(std::chrono::milliseconds(250));
    const MQLONG left = get(hconn, q1).md.Expiry;
    EXPECT_LE(left, 2998);
    EXPECT_GT(left, 0);
}

TEST_F(Get, UnlimitedExpiryStays)
{
    put(hconn, q1, "x");
    EXPECT_EQ(get(hconn, q1).md.Expiry, MQEI_UNLIMITED);
}

TEST_F(Get, ExpiredMessagesAreNeverReturned)
{
    put(hconn, q1, "short-lived", withExpiry(1));
    put(hconn, q1, "stays");
    std::this_thread::sleep_for(std::chrono::milliseconds(150));
    EXPECT_EQ(drain(hconn, q1), (Bodies{"stays"}));
    EXPECT_EQ(depth("Q1"), 0);
}

TEST_F(Get, ExpiredMessagesAreNotBrowsedAndLeaveTheQueue)
{
    put(hconn, q1, "short-lived", withExpiry(1));
    std::this_thread::sleep_for(std::chrono::milliseconds(150));
    EXPECT_EQ(depth("Q1"), 1);
    EXPECT_EQ(codesFor(MQGMO_BROWSE_FIRST), failed(MQRC_NO_MSG_AVAILABLE));
    EXPECT_EQ(depth("Q1"), 0);
}

TEST_F(Get, ManyExpiredMessagesStandInNobodysWay)
{
    for (int i = 0; i < 200; ++i)
        put(hconn, q1, "short-lived", withExpiry(1));
    put(hconn, q1, "stays");
    std::this_thread::sleep_for(std::chrono::milliseconds(150));
    EXPECT_EQ(drain(hconn, q1), (Bodies{"stays"}));
    EXPECT_EQ(depth("Q1"), 0);
}

TEST_F(Get, MessageThatExpiresUnderTheCursorIs2034)
{
    put(hconn, q1, "short-lived", withExpiry(3));
    ASSERT_EQ(codesFor(MQGMO_BROWSE_FIRST), ok);
    std::this_thread::sleep_for(std::chrono::milliseconds(350));
    EXPECT_EQ(codesFor(MQGMO_BROWSE_MSG_UNDER_CURSOR), failed(MQRC_NO_MSG_UNDER_CURSOR));
    EXPECT_EQ(codesFor(MQGMO_MSG_UNDER_CURSOR), failed(MQRC_NO_MSG_UNDER_CURSOR));
}

// ---- Conversion ----

Got converted(const Get &test, MQLONG wantedCcsid, MQLONG wantedEncoding)
{
    MQMD md = version2Md();
    md.CodedCharSetId = wantedCcsid;
    md.Encoding = wantedEncoding;
    return QueueManagerTest::get(test.hconn, test.q1, md, gmoWith(MQGMO_CONVERT));
}

MQMD stringMd()
{
    MQMD md = {MQMD_DEFAULT};
    std::memcpy(md.Format, MQFMT_STRING, 8);
    return md;
}

TEST_F(Get, ConversionThatIsNotNeededIsDone)
{
    put(hconn, q1, "text", stringMd());
    EXPECT_EQ(converted(*this, MQCCSI_Q_MGR, MQENC_NATIVE).codes, ok);
    put(hconn, q1, "text", stringMd());
    EXPECT_EQ(converted(*this, 1208, MQENC_NORMAL).codes, ok);
}

TEST_F(Get, ConversionOfDataWithoutFormatIs2110)
{
    put(hconn, q1, "bytes");
    EXPECT_EQ(converted(*this, 500, MQENC_NATIVE).codes, warned(MQRC_FORMAT_ERROR));
}

// ---- Matching ----

class Match : public OpenQueueTest {
public:
    Match()
    {
        putWith("a", "ID1", "CORR1");
        putWith("b", "ID2", "CORR1");
        putWith("c", "ID3", "CORR2");
        putWith("d", "ID3", "CORR1");
    }
    void putWith(std::string_view body, std::string_view msgId, std::string_view correlId)
    {
        MQMD md = {MQMD_DEFAULT};
        setBytes(md.MsgId, msgId);
        setBytes(md.CorrelId, correlId);
        ASSERT_EQ(put(hconn, q1, body, md), ok);
    }
    Got match(MQLONG options, std::string_view msgId, std::string_view correlId, MQLONG getOptions = 0)
    {
        MQMD md = version2Md();
        setBytes(md.MsgId, msgId);
        setBytes(md.CorrelId, correlId);
        MQGMO gmo = gmoWith(getOptions, MQGMO_VERSION_2);
        gmo.MatchOptions = options;
        return get(hconn, q1, md, gmo);
    }
};

TEST_F(Match, ByMessageId)
{
    EXPECT_EQ(match(MQMO_MATCH_MSG_ID, "ID2", "").body, "b");
    EXPECT_EQ(match(MQMO_MATCH_MSG_ID, "ID2", "").codes, failed(MQRC_NO_MSG_AVAILABLE));
}

TEST_F(Match, ByCorrelationId)
{
    EXPECT_EQ(match(MQMO_MATCH_CORREL_ID, "", "CORR2").body, "c");
    EXPECT_EQ(match(MQMO_MATCH_CORREL_ID, "", "CORR1").body, "a");
    EXPECT_EQ(match(MQMO_MATCH_CORREL_ID, "", "CORR1").body, "b");
}

TEST_F(Match, ByBoth)
{
    EXPECT_EQ(match(MQMO_MATCH_MSG_ID | MQMO_MATCH_CORREL_ID, "ID3", "CORR1").body, "d");
    EXPECT_EQ(match(MQMO_MATCH_MSG_ID | MQMO_MATCH_CORREL_ID, "ID1", "CORR2").codes, failed(MQRC_NO_MSG_AVAILABLE));
}

TEST_F(Match, WithoutOptionsTheIdentifiersDoNotCount)
{
    EXPECT_EQ(match(MQMO_NONE, "ID3", "CORR2").body, "a");
}

TEST_F(Match, NoneMatchesAnything)
{
    EXPECT_EQ(match(MQMO_MATCH_MSG_ID | MQMO_MATCH_CORREL_ID | MQMO_MATCH_GROUP_ID, "", "").body, "a");
}

TEST_F(Match, Version1OptionsMatchMessageAndCorrelationId)
{
    MQMD md = {MQMD_DEFAULT};
    setBytes(md.MsgId, "ID3");
    setBytes(md.CorrelId, "CORR1");
    EXPECT_EQ(get(hconn, q1, md, gmoWith(MQGMO_NO_SYNCPOINT, MQGMO_VERSION_1)).body, "d");
}

TEST_F(Match, ByGroupIdSequenceNumberAndOffset)
{
    MQMD md = version2Md();
    MQGMO gmo = gmoWith(MQGMO_NO_SYNCPOINT, MQGMO_VERSION_2);
    gmo.MatchOptions = MQMO_MATCH_GROUP_ID;
    setBytes(md.GroupId, "GROUP");
    EXPECT_EQ(get(hconn, q1, md, gmo).codes, failed(MQRC_NO_MSG_AVAILABLE));
    gmo.MatchOptions = MQMO_MATCH_MSG_SEQ_NUMBER;
    md.MsgSeqNumber = 2;
    EXPECT_EQ(get(hconn, q1, md, gmo).codes, failed(MQRC_NO_MSG_AVAILABLE));
    gmo.MatchOptions = MQMO_MATCH_OFFSET;
    md.Offset = 100;
    EXPECT_EQ(get(hconn, q1, md, gmo).codes, failed(MQRC_NO_MSG_AVAILABLE));
    gmo.MatchOptions = MQMO_MATCH_MSG_SEQ_NUMBER | MQMO_MATCH_OFFSET;
    md.MsgSeqNumber = 1;
    md.Offset = 0;
    EXPECT_EQ(get(hconn, q1, md, gmo).body, "a");
}

TEST_F(Match, Version2FieldsNeedAVersion2Descriptor)
{
    for (const MQLONG options : {MQMO_MATCH_GROUP_ID, MQMO_MATCH_MSG_SEQ_NUMBER, MQMO_MATCH_OFFSET}) {
        MQGMO gmo = gmoWith(MQGMO_NO_SYNCPOINT, MQGMO_VERSION_2);
        gmo.MatchOptions = options;
        EXPECT_EQ(get(hconn, q1, {MQMD_DEFAULT}, gmo).codes, failed(MQRC_WRONG_MD_VERSION));
    }
}

TEST_F(Match, UnknownMatchOptionIs2247)
{
    EXPECT_EQ(match(0x40, "", "").codes, failed(MQRC_MATCH_OPTIONS_ERROR));
}

TEST_F(Match, ByToken)
{
    match(MQMO_NONE, "", "", MQGMO_BROWSE_FIRST);
    MQGMO gmo = gmoWith(MQGMO_BROWSE_NEXT, MQGMO_VERSION_3);
    gmo.MatchOptions = MQMO_NONE;
    const Got second = get(hconn, q1, version2Md(), gmo);
    ASSERT_EQ(second.body, "b");
    gmo = gmoWith(MQGMO_NO_SYNCPOINT, MQGMO_VERSION_3);
    gmo.MatchOptions = MQMO_MATCH_MSG_TOKEN;
    std::memcpy(gmo.MsgToken, second.gmo.MsgToken, sizeof gmo.MsgToken);
    EXPECT_EQ(get(hconn, q1, version2Md(), gmo).body, "b");
    EXPECT_EQ(get(hconn, q1, version2Md(), gmo).codes, failed(MQRC_NO_MSG_AVAILABLE));
}

TEST_F(Match, TokenOfNoMessageFindsNone)
{
    MQGMO gmo = gmoWith(MQGMO_NO_SYNCPOINT, MQGMO_VERSION_3);
    gmo.MatchOptions = MQMO_MATCH_MSG_TOKEN;
    setBytes(gmo.MsgToken, "nonsense");
    EXPECT_EQ(get(hconn, q1, version2Md(), gmo).codes, failed(MQRC_NO_MSG_AVAILABLE));
}

TEST_F(Match, TokenOfAnotherQueueFindsNone)
{
    const Got first = get(hconn, q1, MQGMO_BROWSE_FIRST);
    defineQueue("Q2");
    const MQHOBJ q2 = open(hconn, "Q2", everything);
    put(hconn, q2, "x");
    MQGMO gmo = gmoWith(MQGMO_NO_SYNCPOINT, MQGMO_VERSION_3);
    gmo.MatchOptions = MQMO_MATCH_MSG_TOKEN;
    std::memcpy(gmo.MsgToken, first.gmo.MsgToken, sizeof gmo.MsgToken);
    EXPECT_EQ(get(hconn, q2, version2Md(), gmo).codes, failed(MQRC_NO_MSG_AVAILABLE));
}

TEST_F(Match, EmptyTokenMatchesAnything)
{
    MQGMO gmo = gmoWith(MQGMO_NO_SYNCPOINT, MQGMO_VERSION_3);
    gmo.MatchOptions = MQMO_MATCH_MSG_TOKEN;
    EXPECT_EQ(get(hconn, q1, version2Md(), gmo).body, "a");
}

TEST_F(Match, TokenNeedsVersion3OptionsAndNoWait)
{
    MQGMO gmo = gmoWith(MQGMO_NO_SYNCPOINT, MQGMO_VERSION_2);
    gmo.MatchOptions = MQMO_MATCH_MSG_TOKEN;
    EXPECT_EQ(get(hconn, q1, version2Md(), gmo).codes, failed(MQRC_WRONG_GMO_VERSION));
    gmo.Version = MQGMO_VERSION_3;
    gmo.Options = MQGMO_WAIT;
    EXPECT_EQ(get(hconn, q1, version2Md(), gmo).codes, failed(MQRC_OPTIONS_ERROR));
}

TEST_F(Match, DeepInTheQueueBehindManyOthers)
{
    drain(hconn, q1);
    for (int i = 0; i < 500; ++i) {
        MQMD md = {MQMD_DEFAULT};
        setBytes(md.CorrelId, "SAME");
        setBytes(md.MsgId, "M" + std::to_string(i));
        ASSERT_EQ(put(hconn, q1, std::to_string(i), md), ok);
    }
    // The message id is not indexed together with the correlation id of the others.
    EXPECT_EQ(match(MQMO_MATCH_MSG_ID | MQMO_MATCH_CORREL_ID, "M400", "SAME").body, "400");
    MQMD md = version2Md();
    MQGMO gmo = gmoWith(MQGMO_NO_SYNCPOINT, MQGMO_VERSION_2);
    gmo.MatchOptions = MQMO_MATCH_MSG_SEQ_NUMBER;
    md.MsgSeqNumber = 7;
    EXPECT_EQ(get(hconn, q1, md, gmo).codes, failed(MQRC_NO_MSG_AVAILABLE));
    EXPECT_EQ(depth("Q1"), 499);
}

TEST_F(Match, MessagesThatWereLookedAtOnceAreNotLookedAtAgain)
{
    drain(hconn, q1);
    constexpr int many = 5000;
    for (int i = 0; i < many; ++i)
        putWith("x", "SAME", "C" + std::to_string(i));
    static std::atomic<int> transactions;
    transactions = 0;
    store::seams.storageError = [](store::StorageCall call) {
        if (call == store::StorageCall::LiveBegin) ++transactions;
        return 0;
    };
    const Got got = match(MQMO_MATCH_MSG_ID | MQMO_MATCH_CORREL_ID, "SAME", "C" + std::to_string(many - 1));
    store::seams.storageError = nullptr;
    EXPECT_EQ(got.codes, ok);
    // One that looks at the first few, one that takes what was found behind them.
    EXPECT_EQ(transactions, 2);
}

} // namespace
} // namespace mqrig::qmgr::testing
