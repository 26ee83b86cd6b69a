#include "fixture.h"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <ctime>
#include <set>

#include "qmgr/store/seams.h"

namespace mqrig::qmgr::testing {
namespace {

class Put : public OpenQueueTest {
public:
    // Puts with this descriptor and answers what a get then returns.
    Got roundTrip(MQMD md, MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT))
    {
        EXPECT_EQ(put(hconn, q1, "hello", md, pmo).CompCode, MQCC_OK);
        return get(hconn, q1);
    }
    Codes codesFor(MQMD md) { return put(hconn, q1, "hello", md); }
    Codes codesFor(MQPMO pmo) { return put(hconn, q1, "hello", {MQMD_DEFAULT}, pmo); }
};

TEST_F(Put, MessageComesBackWhole)
{
    std::string body("all\0bytes\xff", 10);
    ASSERT_EQ(put(hconn, q1, body), ok);
    const Got got = get(hconn, q1);
    EXPECT_EQ(got.codes, ok);
    EXPECT_EQ(got.body, body);
    EXPECT_EQ(got.dataLength, 10);
}

TEST_F(Put, EmptyMessageIsAMessage)
{
    ASSERT_EQ(put(hconn, q1, ""), ok);
    const Got got = get(hconn, q1);
    EXPECT_EQ(got.codes, ok);
    EXPECT_EQ(got.dataLength, 0);
}

TEST_F(Put, EmptyMessageNeedsNoBuffer)
{
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = {MQPMO_DEFAULT};
    Codes codes;
    MQPUT(hconn, q1, &md, &pmo, 0, nullptr, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, ok);
}

TEST_F(Put, EmptyMessagesLeaveTheSpaceThatGetsNeed)
{
    alterQueue("Q1", {{MQIA_MAX_Q_DEPTH, 1000000}});
    store::seams.storageError = [](store::StorageCall call) {
        return call == store::StorageCall::Reserve ? ENOSPC : 0;
    };
    int stored = 0;
    Codes last = ok;
    while (stored < 1000000 && (last = put(hconn, q1, "")) == ok)
        ++stored;
    EXPECT_EQ(last, failed(MQRC_STORAGE_NOT_AVAILABLE));
    EXPECT_GT(stored, 2000);
    // A unit of work writes down what it holds.
    int got = 0;
    while (got < 2000 && get(hconn, q1, MQGMO_SYNCPOINT).codes == ok)
        ++got;
    EXPECT_EQ(got, 2000);
    EXPECT_EQ(commit(hconn), ok);
    store::seams.storageError = nullptr;
    EXPECT_EQ(depth("Q1"), stored - 2000);
}

TEST_F(Put, LargeMessageComesBackWhole)
{
    std::string body(4194304, 'x');
    for (std::size_t i = 0; i < body.size(); ++i)
        body[i] = static_cast<char>(i * 7 + i / 4096);
    ASSERT_EQ(put(hconn, q1, body), ok);
    const Got got = get(hconn, q1, version2Md(), gmoWith(MQGMO_NO_SYNCPOINT), body.size());
    EXPECT_EQ(got.codes, ok);
    EXPECT_TRUE(got.body == body);
}

// ---- Descriptor in ----

TEST_F(Put, DescriptorErrorsAre2026)
{
    MQMD md = {MQMD_DEFAULT};
    md.Version = 3;
    EXPECT_EQ(codesFor(md), failed(MQRC_MD_ERROR));
    md.Version = 0;
    EXPECT_EQ(codesFor(md), failed(MQRC_MD_ERROR));
    md = {MQMD_DEFAULT};
    md.StrucId[0] = 'X';
    EXPECT_EQ(codesFor(md), failed(MQRC_MD_ERROR));
    MQPMO pmo = {MQPMO_DEFAULT};
    Codes codes;
    MQPUT(hconn, q1, nullptr, &pmo, 0, nullptr, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, failed(MQRC_MD_ERROR));
}

TEST_F(Put, OptionsStructureErrorsAre2173)
{
    MQPMO pmo = {MQPMO_DEFAULT};
    pmo.Version = MQPMO_CURRENT_VERSION + 1;
    EXPECT_EQ(codesFor(pmo), failed(MQRC_PMO_ERROR));
    pmo = {MQPMO_DEFAULT};
    pmo.StrucId[0] = 'X';
    EXPECT_EQ(codesFor(pmo), failed(MQRC_PMO_ERROR));
    MQMD md = {MQMD_DEFAULT};
    Codes codes;
    MQPUT(hconn, q1, &md, nullptr, 0, nullptr, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, failed(MQRC_PMO_ERROR));
}

TEST_F(Put, BufferErrors)
{
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = {MQPMO_DEFAULT};
    char byte = 0;
    Codes codes;
    MQPUT(hconn, q1, &md, &pmo, -1, &byte, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, failed(MQRC_BUFFER_LENGTH_ERROR));
    MQPUT(hconn, q1, &md, &pmo, 1, nullptr, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, failed(MQRC_BUFFER_ERROR));
}

TEST_F(Put, HandleErrors)
{
    EXPECT_EQ(put(hconn + 1, q1, "x"), failed(MQRC_HCONN_ERROR));
    EXPECT_EQ(put(hconn, q1 + 1, "x"), failed(MQRC_HOBJ_ERROR));
    EXPECT_EQ(put(hconn, open(hconn, "Q1", MQOO_BROWSE), "x"), failed(MQRC_NOT_OPEN_FOR_OUTPUT));
}

TEST_F(Put, MessageTypes)
{
    for (const MQLONG type : {MQMT_REPLY, MQMT_REPORT, MQMT_DATAGRAM, MQMT_APPL_FIRST, MQMT_APPL_LAST}) {
        MQMD md = {MQMD_DEFAULT};
        md.MsgType = type;
        EXPECT_EQ(roundTrip(md).md.MsgType, type);
    }
    for (const MQLONG type : {0, -1, 3, MQMT_SYSTEM_LAST, MQMT_APPL_LAST + 1}) {
        MQMD md = {MQMD_DEFAULT};
        md.MsgType = type;
        EXPECT_EQ(codesFor(md), failed(MQRC_MSG_TYPE_ERROR)) << type;
    }
}

TEST_F(Put, RequestNeedsAReplyQueue)
{
    MQMD md = {MQMD_DEFAULT};
    md.MsgType = MQMT_REQUEST;
    EXPECT_EQ(codesFor(md), failed(MQRC_MISSING_REPLY_TO_Q));
    setText(md.ReplyToQ, "");
    EXPECT_EQ(codesFor(md), failed(MQRC_MISSING_REPLY_TO_Q));
    setText(md.ReplyToQ, "ANSWERS");
    EXPECT_EQ(codesFor(md), ok);
}

TEST_F(Put, RequestedReportsNeedAReplyQueue)
{
    for (const MQLONG report : {MQRO_EXCEPTION, MQRO_EXCEPTION_WITH_FULL_DATA, MQRO_EXPIRATION, MQRO_COA_WITH_DATA,
                                MQRO_COD, MQRO_PAN, MQRO_NAN, MQRO_ACTIVITY}) {
        MQMD md = {MQMD_DEFAULT};
        md.Report = report;
        EXPECT_EQ(codesFor(md), failed(MQRC_MISSING_REPLY_TO_Q)) << std::hex << report;
        setText(md.ReplyToQ, "ANSWERS");
        EXPECT_EQ(codesFor(md), ok) << std::hex << report;
    }
    MQMD md = {MQMD_DEFAULT};
    md.Report = MQRO_PASS_MSG_ID | MQRO_PASS_CORREL_ID | MQRO_DISCARD_MSG | MQRO_PASS_DISCARD_AND_EXPIRY;
    EXPECT_EQ(codesFor(md), ok);
}

TEST_F(Put, ReplyQueueIsOfThisQueueManagerUnlessNamed)
{
    MQMD md = {MQMD_DEFAULT};
    std::strcpy(md.ReplyToQ, "ANSWERS");
    EXPECT_EQ(text(roundTrip(md).md.ReplyToQMgr), "QM1");
    std::strcpy(md.ReplyToQMgr, "QM9");
    EXPECT_EQ(text(roundTrip(md).md.ReplyToQMgr), "QM9");
}

TEST_F(Put, WithoutReplyQueueTheReplyQueueManagerStaysBlank)
{
    EXPECT_EQ(text(roundTrip({MQMD_DEFAULT}).md.ReplyToQMgr), "");
}

TEST_F(Put, TextFieldsComeBackBlankPadded)
{
    MQMD md = {MQMD_DEFAULT};
    std::memset(md.Format, 0, sizeof md.Format);
    std::strcpy(md.ReplyToQ, "ANSWERS");
    const Got got = roundTrip(md);
    EXPECT_EQ(std::string(got.md.Format, 8), "        ");
    EXPECT_EQ(std::string(got.md.ReplyToQ, 48), "ANSWERS" + std::string(41, ' '));
}

TEST_F(Put, ExpiryHasToBePositiveOrUnlimited)
{
    for (const MQLONG expiry : {0, -2})
        EXPECT_EQ(codesFor(withExpiry(expiry)), failed(MQRC_EXPIRY_ERROR));
    EXPECT_EQ(codesFor(withExpiry(1)), ok);
    EXPECT_EQ(codesFor(withExpiry(MQEI_UNLIMITED)), ok);
}

TEST_F(Put, FeedbackIsInItsRange)
{
    MQMD md = {MQMD_DEFAULT};
    md.Feedback = -1;
    EXPECT_EQ(codesFor(md), failed(MQRC_FEEDBACK_ERROR));
    md.Feedback = MQFB_APPL_LAST + 1;
    EXPECT_EQ(codesFor(md), failed(MQRC_FEEDBACK_ERROR));
    md.Feedback = MQFB_QUIT;
    EXPECT_EQ(roundTrip(md).md.Feedback, MQFB_QUIT);
}

TEST_F(Put, PriorityIsTheQueuesUnlessGiven)
{
    defineQueue("QP", {{MQIA_DEF_PRIORITY, 6}});
    const MQHOBJ qp = open(hconn, "QP", everything);
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = {MQPMO_DEFAULT};
    ASSERT_EQ(putInOut(hconn, qp, "x", md, pmo), ok);
    EXPECT_EQ(md.Priority, 6);
    EXPECT_EQ(get(hconn, qp).md.Priority, 6);
    EXPECT_EQ(roundTrip(withPriority(3)).md.Priority, 3);
}

TEST_F(Put, PriorityBelowAsQueueDefIs2050)
{
    EXPECT_EQ(codesFor(withPriority(-2)), failed(MQRC_PRIORITY_ERROR));
}

TEST_F(Put, PriorityAboveTheMaximumIsPutWithWarning2049)
{
    put(hconn, q1, "nine", withPriority(9));
    EXPECT_EQ(put(hconn, q1, "twelve", withPriority(12)), warned(MQRC_PRIORITY_EXCEEDS_MAXIMUM));
    EXPECT_EQ(get(hconn, q1).body, "nine");
    EXPECT_EQ(get(hconn, q1).md.Priority, 12);
}

TEST_F(Put, PersistenceIsTheQueuesUnlessGiven)
{
    defineQueue("QP", {{MQIA_DEF_PERSISTENCE, MQPER_PERSISTENT}});
    const MQHOBJ qp = open(hconn, "QP", everything);
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = {MQPMO_DEFAULT};
    ASSERT_EQ(putInOut(hconn, qp, "x", md, pmo), ok);
    EXPECT_EQ(md.Persistence, MQPER_PERSISTENT);
    EXPECT_EQ(get(hconn, qp).md.Persistence, MQPER_PERSISTENT);
    EXPECT_EQ(roundTrip({MQMD_DEFAULT}).md.Persistence, MQPER_NOT_PERSISTENT);
}

TEST_F(Put, UnknownPersistenceIs2047)
{
    MQMD md = {MQMD_DEFAULT};
    md.Persistence = 3;
    EXPECT_EQ(codesFor(md), failed(MQRC_PERSISTENCE_ERROR));
    md.Persistence = -1;
    EXPECT_EQ(codesFor(md), failed(MQRC_PERSISTENCE_ERROR));
}

TEST_F(Put, CharacterSetOfTheQueueManagerIsWrittenOut)
{
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = {MQPMO_DEFAULT};
    ASSERT_EQ(putInOut(hconn, q1, "x", md, pmo), ok);
    EXPECT_EQ(md.CodedCharSetId, 1208);
    EXPECT_EQ(get(hconn, q1).md.CodedCharSetId, 1208);
    md = {MQMD_DEFAULT};
    md.CodedCharSetId = 819;
    EXPECT_EQ(roundTrip(md).md.CodedCharSetId, 819);
}

TEST_F(Put, EncodingAndFormatTravelUnchanged)
{
    MQMD md = {MQMD_DEFAULT};
    md.Encoding = MQENC_NORMAL;
    std::memcpy(md.Format, MQFMT_STRING, 8);
    const Got got = roundTrip(md);
    EXPECT_EQ(got.md.Encoding, MQENC_NORMAL);
    EXPECT_EQ(std::string(got.md.Format, 8), MQFMT_STRING);
}

// ---- Report options and flags ----

TEST_F(Put, ReportOptionsThatAreNoneAre2061)
{
    // A reserved bit, data without the report, two amounts of data added up.
    for (const MQLONG report : {0x00100000, 0x00000200, MQRO_COA + MQRO_COA_WITH_DATA, MQRO_EXPIRATION | 0x00800000}) {
        MQMD md = {MQMD_DEFAULT};
        md.Report = report;
        setText(md.ReplyToQ, "ANSWERS");
        EXPECT_EQ(codesFor(md), failed(MQRC_REPORT_OPTIONS_ERROR)) << std::hex << report;
    }
}

TEST_F(Put, ReportOptionsForTheReceiverTravel)
{
    constexpr MQLONG report = MQRO_PASS_MSG_ID | MQRO_PASS_CORREL_ID | MQRO_PAN | MQRO_NAN | MQRO_DISCARD_MSG;
    MQMD md = {MQMD_DEFAULT};
    md.Report = report;
    setText(md.ReplyToQ, "ANSWERS");
    EXPECT_EQ(roundTrip(md).md.Report, report);
}

TEST_F(Put, UnknownMessageFlagsAre2249)
{
    MQMD md = version2Md();
    md.MsgFlags = 0x800;
    EXPECT_EQ(codesFor(md), failed(MQRC_MSG_FLAGS_ERROR));
}

TEST_F(Put, SingleMessageCarriesTheValuesOfNoGroup)
{
    MQMD md = version2Md();
    setBytes(md.GroupId, "leftover");
    md.MsgSeqNumber = 5;
    md.Offset = 7;
    md.OriginalLength = 9;
    MQPMO pmo = {MQPMO_DEFAULT};
    ASSERT_EQ(putInOut(hconn, q1, "x", md, pmo), ok);
    for (const MQMD &seen : {md, get(hconn, q1).md}) {
        EXPECT_EQ(bytes(seen.GroupId), std::string(24, '\0'));
        EXPECT_EQ(seen.MsgSeqNumber, 1);
        EXPECT_EQ(seen.Offset, 0);
        EXPECT_EQ(seen.OriginalLength, MQOL_UNDEFINED);
    }
}

// ---- Options ----

TEST_F(Put, OptionsThatExcludeEachOtherAre2046)
{
    for (const MQLONG options :
         {MQPMO_SYNCPOINT | MQPMO_NO_SYNCPOINT, MQPMO_NO_CONTEXT | MQPMO_DEFAULT_CONTEXT,
          MQPMO_SET_ALL_CONTEXT | MQPMO_SET_IDENTITY_CONTEXT, MQPMO_PASS_ALL_CONTEXT | MQPMO_PASS_IDENTITY_CONTEXT,
          MQPMO_NO_CONTEXT | MQPMO_SET_ALL_CONTEXT, MQPMO_ASYNC_RESPONSE | MQPMO_SYNC_RESPONSE})
        EXPECT_EQ(codesFor(pmoWith(options)), failed(MQRC_OPTIONS_ERROR)) << std::hex << options;
}

TEST_F(Put, TopicAndUnknownOptionsAre2046)
{
    for (const MQLONG options : {MQPMO_RETAIN, MQPMO_SCOPE_QMGR, MQPMO_SUPPRESS_REPLYTO, MQPMO_NOT_OWN_SUBS,
                                 MQPMO_WARN_IF_NO_SUBS_MATCHED, 1, 0x40000000, MQPMO_ALTERNATE_USER_AUTHORITY})
        EXPECT_EQ(codesFor(pmoWith(options)), failed(MQRC_OPTIONS_ERROR)) << std::hex << options;
}

TEST_F(Put, OutputOnlyDescriptorNeedsAHandle)
{
    MQMD md = withPriority(5);
    MQPMO pmo = pmoWith(MQPMO_MD_FOR_OUTPUT_ONLY);
    EXPECT_EQ(putInOut(hconn, q1, "hello", md, pmo), failed(MQRC_MD_ERROR));
    EXPECT_EQ(put1(hconn, "Q1", "hello", md, pmo), failed(MQRC_MD_ERROR));
    EXPECT_EQ(depth("Q1"), 0);
}

TEST_F(Put, OptionsWithoutEffectAreAccepted)
{
    EXPECT_EQ(codesFor(pmoWith(MQPMO_ASYNC_RESPONSE)), ok);
    EXPECT_EQ(codesFor(pmoWith(MQPMO_SYNC_RESPONSE | MQPMO_RESOLVE_LOCAL_Q | MQPMO_DEFAULT_CONTEXT)), ok);
}

TEST_F(Put, RecordsAndMessageHandlesThatAreNoneAreRefused)
{
    MQPMO pmo = {MQPMO_DEFAULT};
    pmo.Version = MQPMO_VERSION_3;
    pmo.RecsPresent = 1;
    EXPECT_EQ(codesFor(pmo), failed(MQRC_RECS_PRESENT_ERROR));
    pmo.RecsPresent = 0;
    pmo.OriginalMsgHandle = 12;
    EXPECT_EQ(codesFor(pmo), failed(MQRC_HMSG_ERROR));
    pmo.OriginalMsgHandle = MQHM_NONE;
    pmo.NewMsgHandle = 12;
    EXPECT_EQ(codesFor(pmo), failed(MQRC_HMSG_ERROR));
    pmo.NewMsgHandle = MQHM_NONE;
    pmo.Action = MQACTP_REPLY;
    EXPECT_EQ(codesFor(pmo), failed(MQRC_HMSG_ERROR)) << "a reply to nothing";
    pmo.Action = 77;
    EXPECT_EQ(codesFor(pmo), failed(MQRC_ACTION_ERROR));
}

// ---- Identifiers ----

TEST_F(Put, MessageIdIsMadeWhereNoneIsGiven)
{
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = {MQPMO_DEFAULT};
    ASSERT_EQ(putInOut(hconn, q1, "x", md, pmo), ok);
    EXPECT_EQ(bytes(md.MsgId).substr(0, 16), "AMQ QM1         ");
    EXPECT_EQ(bytes(md.CorrelId), std::string(24, '\0'));
    const Got got = get(hconn, q1);
    EXPECT_EQ(bytes(got.md.MsgId), bytes(md.MsgId));
}

TEST_F(Put, GivenIdentifiersAreKept)
{
    MQMD md = {MQMD_DEFAULT};
    setBytes(md.MsgId, "my message");
    setBytes(md.CorrelId, "my correlation");
    const Got got = roundTrip(md);
    EXPECT_EQ(bytes(got.md.MsgId), bytes(md.MsgId));
    EXPECT_EQ(bytes(got.md.CorrelId), bytes(md.CorrelId));
}

TEST_F(Put, NewIdentifiersReplaceGivenOnes)
{
    MQMD md = {MQMD_DEFAULT};
    setBytes(md.MsgId, "mine");
    setBytes(md.CorrelId, "mine");
    MQPMO pmo = pmoWith(MQPMO_NEW_MSG_ID | MQPMO_NEW_CORREL_ID);
    ASSERT_EQ(putInOut(hconn, q1, "x", md, pmo), ok);
    EXPECT_EQ(bytes(md.MsgId).substr(0, 4), "AMQ ");
    EXPECT_EQ(bytes(md.CorrelId).substr(0, 4), "AMQ ");
    EXPECT_NE(bytes(md.MsgId), bytes(md.CorrelId));
}

TEST_F(Put, IdentifiersNeverRepeatNotEvenOverARestart)
{
    std::set<std::string> seen;
    for (int life = 0; life < 2; ++life) {
        const MQHCONN connected = connect();
        const MQHOBJ queue = open(connected, "Q1", MQOO_OUTPUT);
        for (int i = 0; i < 500; ++i) {
            MQMD md = {MQMD_DEFAULT};
            MQPMO pmo = {MQPMO_DEFAULT};
            ASSERT_EQ(putInOut(connected, queue, "x", md, pmo), ok);
            EXPECT_TRUE(seen.insert(bytes(md.MsgId)).second);
        }
        restart();
    }
}

// ---- Limits ----

TEST_F(Put, InhibitedIs2051)
{
    alterQueue("Q1", {{MQIA_INHIBIT_PUT, MQQA_PUT_INHIBITED}});
    EXPECT_EQ(put(hconn, q1, "x"), failed(MQRC_PUT_INHIBITED));
    alterQueue("Q1", {{MQIA_INHIBIT_PUT, MQQA_PUT_ALLOWED}});
    EXPECT_EQ(put(hconn, q1, "x"), ok);
}

TEST_F(Put, FullQueueIs2053)
{
    alterQueue("Q1", {{MQIA_MAX_Q_DEPTH, 2}});
    EXPECT_EQ(put(hconn, q1, "1"), ok);
    EXPECT_EQ(put(hconn, q1, "2"), ok);
    EXPECT_EQ(put(hconn, q1, "3"), failed(MQRC_Q_FULL));
    get(hconn, q1);
    EXPECT_EQ(put(hconn, q1, "3"), ok);
}

TEST_F(Put, LongerThanTheQueuesMAXMSGLIs2030)
{
    alterQueue("Q1", {{MQIA_MAX_MSG_LENGTH, 5}});
    EXPECT_EQ(put(hconn, q1, "12345"), ok);
    EXPECT_EQ(put(hconn, q1, "123456"), failed(MQRC_MSG_TOO_BIG_FOR_Q));
}

TEST_F(Put, LongerThanTheQueueManagersMAXMSGLIs2031)
{
    alterQueueManager({{MQIA_MAX_MSG_LENGTH, 32768}});
    EXPECT_EQ(put(hconn, q1, std::string(32768, 'x')), ok);
    EXPECT_EQ(put(hconn, q1, std::string(32769, 'x')), failed(MQRC_MSG_TOO_BIG_FOR_Q_MGR));
}

TEST_F(Put, DeletedQueueIs2052)
{
    deleteQueue("Q1");
    EXPECT_EQ(put(hconn, q1, "x"), failed(MQRC_Q_DELETED));
    defineQueue("Q1");
    EXPECT_EQ(put(hconn, q1, "x"), failed(MQRC_Q_DELETED));
}

TEST_F(Put, FailIfQuiescingIs2161)
{
    endQuiesce();
    EXPECT_EQ(put(hconn, q1, "x", {MQMD_DEFAULT}, pmoWith(MQPMO_FAIL_IF_QUIESCING)), failed(MQRC_Q_MGR_QUIESCING));
    EXPECT_EQ(put(hconn, q1, "x"), ok);
}

TEST_F(Put, FailedPutChangesNothingOfTheProgramsStructures)
{
    alterQueue("Q1", {{MQIA_MAX_Q_DEPTH, 0}});
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = {MQPMO_DEFAULT};
    const MQMD mdBefore = md;
    const MQPMO pmoBefore = pmo;
    EXPECT_EQ(putInOut(hconn, q1, "x", md, pmo), failed(MQRC_Q_FULL));
    EXPECT_EQ(std::memcmp(&md, &mdBefore, sizeof md), 0);
    EXPECT_EQ(std::memcmp(&pmo, &pmoBefore, sizeof pmo), 0);
}

// ---- What comes back ----

TEST_F(Put, OptionsAreToldWhereTheMessageWent)
{
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = {MQPMO_DEFAULT};
    pmo.KnownDestCount = pmo.UnknownDestCount = pmo.InvalidDestCount = 77;
    ASSERT_EQ(putInOut(hconn, q1, "x", md, pmo), ok);
    EXPECT_EQ(std::string(pmo.ResolvedQName, 48), "Q1" + std::string(46, ' '));
    EXPECT_EQ(std::string(pmo.ResolvedQMgrName, 48), "QM1" + std::string(45, ' '));
    EXPECT_EQ(pmo.KnownDestCount, 1);
    EXPECT_EQ(pmo.UnknownDestCount, 0);
    EXPECT_EQ(pmo.InvalidDestCount, 0);
}

TEST_F(Put, PutTimeIsNowInUtc)
{
    // time() is the clock of the last tick and would lag behind.
    const auto now = [] { return std::chrono::system_clock::to_time_t(std::chrono::system_clock::now()); };
    const std::time_t before = now();
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = {MQPMO_DEFAULT};
    ASSERT_EQ(putInOut(hconn, q1, "x", md, pmo), ok);
    const std::time_t after = now();
    std::tm parts{};
    ASSERT_NE(strptime((text(md.PutDate) + text(md.PutTime).substr(0, 6)).c_str(), "%Y%m%d%H%M%S", &parts), nullptr);
    const std::time_t put = timegm(&parts);
    EXPECT_GE(put, before);
    EXPECT_LE(put, after);
    EXPECT_EQ(text(md.PutTime).size(), 8U);
}

// ---- MQPUT1 ----

TEST_F(Put, Put1PutsOneMessage)
{
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = {MQPMO_DEFAULT};
    EXPECT_EQ(put1(hconn, "Q1", "single", md, pmo), ok);
    EXPECT_EQ(text(pmo.ResolvedQName), "Q1");
    EXPECT_EQ(bytes(md.MsgId).substr(0, 4), "AMQ ");
    EXPECT_EQ(get(hconn, q1).body, "single");
}

TEST_F(Put, Put1AnswersTheReasonsOfOpening)
{
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = {MQPMO_DEFAULT};
    EXPECT_EQ(put1(hconn, "NOSUCH", "x", md, pmo), failed(MQRC_UNKNOWN_OBJECT_NAME));
    EXPECT_EQ(put1(hconn + 1, "Q1", "x", md, pmo), failed(MQRC_HCONN_ERROR));
    MQOD od = {MQOD_DEFAULT};
    char byte = 'x';
    Codes codes;
    const auto codesOf = [&](MQOD *descriptor) {
        MQPUT1(hconn, descriptor, &md, &pmo, 1, &byte, &codes.CompCode, &codes.Reason);
        return codes;
    };
    EXPECT_EQ(codesOf(nullptr), failed(MQRC_OD_ERROR));
    od.ObjectType = MQOT_Q_MGR;
    EXPECT_EQ(codesOf(&od), failed(MQRC_OBJECT_TYPE_ERROR));
    od.ObjectType = MQOT_TOPIC;
    EXPECT_EQ(codesOf(&od), failed(MQRC_UNKNOWN_OBJECT_NAME));
    od = {MQOD_DEFAULT};
    std::strcpy(od.ObjectName, "Q1");
    std::strcpy(od.ObjectQMgrName, "QM7");
    EXPECT_EQ(codesOf(&od), failed(MQRC_UNKNOWN_REMOTE_Q_MGR));
}

TEST_F(Put, Put1TellsTheDescriptorWhatWasOpened)
{
    MQOD od = {MQOD_DEFAULT};
    od.Version = MQOD_VERSION_4;
    std::strcpy(od.ObjectName, "Q1");
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = pmoWith(MQPMO_ALTERNATE_USER_AUTHORITY);
    char byte = 'x';
    Codes codes;
    MQPUT1(hconn, &od, &md, &pmo, 1, &byte, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, ok);
    EXPECT_EQ(text(od.ResolvedQName), "Q1");
    EXPECT_EQ(text(od.ResolvedQMgrName), "QM1");
    EXPECT_EQ(od.ResolvedType, MQOT_Q);
}

TEST_F(Put, Put1DoesNotDisturbExclusiveUse)
{
    const MQHCONN other = connect();
    MQHOBJ closing = q1;
    close(hconn, closing);
    open(other, "Q1", MQOO_INPUT_EXCLUSIVE);
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = {MQPMO_DEFAULT};
    EXPECT_EQ(put1(hconn, "Q1", "x", md, pmo), ok);
}

} // namespace
} // namespace mqrig::qmgr::testing
