// What the queue manager does with its own messages that their queue does not take.

#include <cstring>
#include <string>

#include "fixture.h"

namespace mqrig::qmgr::testing {
namespace {

class DeadLetter : public OpenQueueTest {
public:
    DeadLetter()
    {
        defineQueue("DLQ");
        dlq = open(hconn, "DLQ", MQOO_INPUT_SHARED);
        setDeadLetterQueue("DLQ");
    }

    static MQMD asking(MQLONG report, std::string_view replyTo, std::string_view replyToQMgr = "")
    {
        MQMD md = version2Md();
        md.Report = report;
        setText(md.ReplyToQ, replyTo);
        setText(md.ReplyToQMgr, replyToQMgr);
        setText(md.Format, "MYFORMAT");
        md.CodedCharSetId = 850;
        md.Encoding = MQENC_INTEGER_NORMAL | MQENC_DECIMAL_NORMAL | MQENC_FLOAT_IEEE_NORMAL;
        return md;
    }
    Got dead() { return get(hconn, dlq); }

    MQHOBJ dlq;
};

MQDLH headerOf(const Got &got)
{
    MQDLH header{};
    EXPECT_GE(got.body.size(), sizeof header);
    if (got.body.size() >= sizeof header) std::memcpy(&header, got.body.data(), sizeof header);
    return header;
}

TEST_F(DeadLetter, AReportWithoutAQueueGoesThereBehindAHeader)
{
    ASSERT_EQ(put(hconn, q1, "the body", asking(MQRO_COA_WITH_FULL_DATA, "NOWHERE")), ok);
    const Got got = dead();
    ASSERT_EQ(got.codes, ok);
    EXPECT_EQ(got.md.MsgType, MQMT_REPORT);
    EXPECT_EQ(got.md.Feedback, MQFB_COA);
    EXPECT_EQ(text(got.md.Format), text(MQFMT_DEAD_LETTER_HEADER));
    EXPECT_EQ(got.md.Encoding, MQENC_NATIVE);
    EXPECT_EQ(got.md.CodedCharSetId, 1208);
    EXPECT_EQ(got.body.substr(sizeof(MQDLH)), "the body");

    const MQDLH header = headerOf(got);
    EXPECT_EQ(std::string(header.StrucId, 4), MQDLH_STRUC_ID);
    EXPECT_EQ(header.Version, MQDLH_VERSION_1);
    EXPECT_EQ(header.Reason, MQRC_UNKNOWN_OBJECT_NAME);
    EXPECT_EQ(text(header.DestQName), "NOWHERE");
    EXPECT_EQ(text(header.DestQMgrName), "QM1");
    EXPECT_EQ(header.Encoding, MQENC_INTEGER_NORMAL | MQENC_DECIMAL_NORMAL | MQENC_FLOAT_IEEE_NORMAL);
    EXPECT_EQ(header.CodedCharSetId, 850);
    EXPECT_EQ(text(header.Format), "MYFORMAT");
    EXPECT_EQ(header.PutApplType, MQAT_QMGR);
    EXPECT_EQ(text(header.PutApplName), "QM1");
    EXPECT_EQ(std::string(header.PutDate, 8), std::string(got.md.PutDate, 8));
    EXPECT_EQ(text(header.PutTime).size(), 8U);
}

TEST_F(DeadLetter, TheReasonIsThatOfTheReplyQueue)
{
    defineQueue("INHIBITED", {{MQIA_INHIBIT_PUT, MQQA_PUT_INHIBITED}});
    defineQueue("FULL", {{MQIA_MAX_Q_DEPTH, 0}});
    defineQueue("NARROW", {{MQIA_MAX_MSG_LENGTH, 3}});
    const struct {
        const char *queue;
        const char *queueManager;
        MQLONG reason;
    } rows[] = {
        {"INHIBITED", "", MQRC_PUT_INHIBITED},
        {"FULL", "", MQRC_Q_FULL},
        {"NARROW", "", MQRC_MSG_TOO_BIG_FOR_Q},
        {"Q1", "ELSEWHERE", MQRC_UNKNOWN_REMOTE_Q_MGR},
    };
    for (const auto &row : rows) {
        ASSERT_EQ(put(hconn, q1, "body", asking(MQRO_COA_WITH_FULL_DATA, row.queue, row.queueManager)), ok);
        const MQDLH header = headerOf(dead());
        EXPECT_EQ(header.Reason, row.reason) << row.queue;
        EXPECT_EQ(text(header.DestQName), row.queue);
        EXPECT_EQ(text(header.DestQMgrName), row.queueManager[0] == '\0' ? "QM1" : row.queueManager);
    }
}

TEST_F(DeadLetter, ItStandsInTheUnitOfWorkOfThePut)
{
    ASSERT_EQ(put(hconn, q1, "body", asking(MQRO_COA, "NOWHERE"), pmoWith(MQPMO_SYNCPOINT)), ok);
    EXPECT_EQ(dead().codes, failed(MQRC_NO_MSG_AVAILABLE));
    ASSERT_EQ(backOut(hconn), ok);
    EXPECT_EQ(depth("DLQ"), 0);
    ASSERT_EQ(put(hconn, q1, "body", asking(MQRO_COA, "NOWHERE"), pmoWith(MQPMO_SYNCPOINT)), ok);
    ASSERT_EQ(commit(hconn), ok);
    EXPECT_EQ(dead().codes, ok);
}

TEST_F(DeadLetter, AReportThatMayBeDiscardedDoesNotGoThere)
{
    MQMD md = asking(MQRO_COA | MQRO_DISCARD_MSG | MQRO_PASS_DISCARD_AND_EXPIRY, "NOWHERE");
    ASSERT_EQ(put(hconn, q1, "body", md), ok);
    EXPECT_EQ(dead().codes, failed(MQRC_NO_MSG_AVAILABLE));
    EXPECT_EQ(get(hconn, q1).body, "body");
}

TEST_F(DeadLetter, WhereItTakesNothingTheReportIsDroppedAndTheCallGoesOn)
{
    const auto putAndGet = [&] {
        EXPECT_EQ(put(hconn, q1, "body", asking(MQRO_COA | MQRO_COD, "NOWHERE")), ok);
        EXPECT_EQ(get(hconn, q1).body, "body");
        EXPECT_EQ(put(hconn, q1, "body", asking(MQRO_COA | MQRO_COD, "NOWHERE"), pmoWith(MQPMO_SYNCPOINT)), ok);
        EXPECT_EQ(commit(hconn), ok);
        EXPECT_EQ(get(hconn, q1).body, "body");
    };
    alterQueue("DLQ", {{MQIA_INHIBIT_PUT, MQQA_PUT_INHIBITED}});
    putAndGet();
    alterQueue("DLQ", {{MQIA_INHIBIT_PUT, MQQA_PUT_ALLOWED}, {MQIA_MAX_Q_DEPTH, 0}});
    putAndGet();
    setDeadLetterQueue("GONE");
    putAndGet();
    setDeadLetterQueue("");
    putAndGet();
    EXPECT_EQ(depth("DLQ"), 0);
    EXPECT_EQ(depth("Q1"), 0);
}

} // namespace
} // namespace mqrig::qmgr::testing
