// Report messages, seen by the program that asked for them.

#include <cerrno>
#include <cstring>
#include <string>

#include "fixture.h"
#include "qmgr/store/seams.h"

#include <sys/wait.h>
#include <unistd.h>

namespace mqrig::qmgr::testing {
namespace {

// The queue manager's clock, moved on by hand.
class Clock {
public:
    Clock() { store::seams.now = reading; }
    ~Clock() { store::seams.now = wallClock(); }
    static void pass(std::int64_t seconds) { offset += seconds * 1'000'000; }

private:
    static std::int64_t (*wallClock())() { return original; }
    static std::int64_t reading() { return original() + offset; }
    static inline std::int64_t (*const original)() = store::seams.now;
    static inline std::int64_t offset = 0;
};

class Reports : public OpenQueueTest {
public:
    Reports()
    {
        defineQueue("REPORTS");
        reports = open(hconn, "REPORTS", MQOO_INPUT_SHARED);
    }

    static MQMD asking(MQLONG report)
    {
        MQMD md = version2Md();
        md.Report = report;
        setText(md.ReplyToQ, "REPORTS");
        setText(md.Format, "MYFORMAT");
        return md;
    }
    Got report() { return get(hconn, reports); }
    void expectNoReport() { EXPECT_EQ(report().codes, failed(MQRC_NO_MSG_AVAILABLE)); }

    MQHOBJ reports;
};

std::string letters(std::size_t count)
{
    std::string body(count, 'x');
    for (std::size_t i = 0; i < count; ++i)
        body[i] = static_cast<char>('a' + i % 26);
    return body;
}

// ---- Confirmation of arrival ----

TEST_F(Reports, ArrivalIsReportedAtThePut)
{
    MQMD md = asking(MQRO_COA);
    md.Priority = 3;
    md.Persistence = MQPER_PERSISTENT;
    MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT);
    ASSERT_EQ(putInOut(hconn, q1, "body", md, pmo), ok);

    const Got got = report();
    ASSERT_EQ(got.codes, ok);
    EXPECT_EQ(got.md.MsgType, MQMT_REPORT);
    EXPECT_EQ(got.md.Feedback, MQFB_COA);
    EXPECT_EQ(got.dataLength, 0);
    EXPECT_EQ(got.md.Report, MQRO_NONE);
    EXPECT_EQ(got.md.Expiry, MQEI_UNLIMITED);
    EXPECT_EQ(text(got.md.Format), "MYFORMAT");
    EXPECT_EQ(got.md.Priority, 3);
    EXPECT_EQ(got.md.Persistence, MQPER_PERSISTENT);
    EXPECT_NE(bytes(got.md.MsgId), bytes(md.MsgId));
    EXPECT_EQ(bytes(got.md.CorrelId), bytes(md.MsgId));
    EXPECT_EQ(text(got.md.ReplyToQ), "");
    EXPECT_EQ(text(got.md.ReplyToQMgr), "QM1");
    EXPECT_EQ(got.md.OriginalLength, MQOL_UNDEFINED);
    EXPECT_EQ(get(hconn, q1).body, "body");
    expectNoReport();
}

TEST_F(Reports, AReportHasTheSendersIdentityAndTheQueueManagersOrigin)
{
    MQMD md = asking(MQRO_COA);
    MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT);
    ASSERT_EQ(putInOut(hconn, q1, "body", md, pmo), ok);
    const Got got = report();
    EXPECT_EQ(text(got.md.UserIdentifier), text(md.UserIdentifier));
    EXPECT_EQ(bytes(got.md.AccountingToken), bytes(md.AccountingToken));
    EXPECT_EQ(got.md.PutApplType, MQAT_QMGR);
    EXPECT_EQ(text(got.md.PutApplName), "QM1");
    EXPECT_EQ(text(got.md.PutDate).size(), 8U);
}

TEST_F(Reports, DataIsNoneOrAHundredBytesOrAll)
{
    const std::string body = letters(250);
    ASSERT_EQ(put(hconn, q1, body, asking(MQRO_COA | MQRO_COD)), ok);
    EXPECT_EQ(report().body, "");
    ASSERT_EQ(get(hconn, q1).codes, ok);
    EXPECT_EQ(report().body, "");
    ASSERT_EQ(put(hconn, q1, body, asking(MQRO_COA_WITH_DATA | MQRO_COD_WITH_DATA)), ok);
    EXPECT_EQ(report().body, body.substr(0, 100));
    ASSERT_EQ(get(hconn, q1).codes, ok);
    EXPECT_EQ(report().body, body.substr(0, 100));
    ASSERT_EQ(put(hconn, q1, body, asking(MQRO_COA_WITH_FULL_DATA | MQRO_COD_WITH_FULL_DATA)), ok);
    EXPECT_EQ(report().body, body);
    ASSERT_EQ(get(hconn, q1).codes, ok);
    EXPECT_EQ(report().body, body);
    ASSERT_EQ(put(hconn, q1, "short", asking(MQRO_COA_WITH_DATA)), ok);
    EXPECT_EQ(report().body, "short");
}

TEST_F(Reports, TheHundredBytesBeginBehindTheHeaders)
{
    MQDLH dead = {MQDLH_DEFAULT};
    dead.Encoding = MQENC_NATIVE;
    std::memcpy(dead.Format, MQFMT_RF_HEADER_2, 8);
    MQRFH2 rules = {MQRFH2_DEFAULT};
    std::memcpy(rules.Format, MQFMT_STRING, 8);
    const std::string body = std::string(reinterpret_cast<const char *>(&dead), sizeof dead) +
                             std::string(reinterpret_cast<const char *>(&rules), sizeof rules) + letters(300);
    MQMD md = asking(MQRO_COA_WITH_DATA);
    setText(md.Format, MQFMT_DEAD_LETTER_HEADER);
    ASSERT_EQ(put(hconn, q1, body, md), ok);
    EXPECT_EQ(report().body, body.substr(0, sizeof dead + sizeof rules + 100));

    // A header that is cut, or that lies about its length, is data.
    dead.Format[0] = '?';
    const std::string lies = std::string(reinterpret_cast<const char *>(&dead), sizeof dead) + letters(300);
    ASSERT_EQ(put(hconn, q1, lies, md), ok);
    EXPECT_EQ(report().body, lies.substr(0, sizeof dead + 100));
    ASSERT_EQ(put(hconn, q1, body.substr(0, 120), md), ok);
    EXPECT_EQ(report().body, body.substr(0, 100));
}

TEST_F(Reports, IdentifiersFollowTheReportOptions)
{
    MQMD md = asking(MQRO_COA | MQRO_PASS_MSG_ID | MQRO_PASS_CORREL_ID);
    setBytes(md.CorrelId, "correlation");
    MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT);
    ASSERT_EQ(putInOut(hconn, q1, "body", md, pmo), ok);
    const Got passed = report();
    EXPECT_EQ(bytes(passed.md.MsgId), bytes(md.MsgId));
    EXPECT_EQ(bytes(passed.md.CorrelId), bytes(md.CorrelId));
}

TEST_F(Reports, DiscardAndExpiryArePassedWhenAsked)
{
    MQMD md = asking(MQRO_COA | MQRO_PASS_DISCARD_AND_EXPIRY | MQRO_DISCARD_MSG);
    md.Expiry = 6000;
    ASSERT_EQ(put(hconn, q1, "body", md), ok);
    const Got passed = report();
    EXPECT_EQ(passed.md.Report, MQRO_DISCARD_MSG);
    EXPECT_GT(passed.md.Expiry, 5000);
    EXPECT_LE(passed.md.Expiry, 6000);

    md.Report = MQRO_COA | MQRO_DISCARD_MSG;
    ASSERT_EQ(put(hconn, q1, "body", md), ok);
    const Got kept = report();
    EXPECT_EQ(kept.md.Report, MQRO_NONE);
    EXPECT_EQ(kept.md.Expiry, MQEI_UNLIMITED);
}

TEST_F(Reports, ArrivalUnderSyncpointIsReportedWithTheCommit)
{
    const MQPMO syncpoint = pmoWith(MQPMO_SYNCPOINT);
    ASSERT_EQ(put(hconn, q1, "one", asking(MQRO_COA), syncpoint), ok);
    expectNoReport();
    ASSERT_EQ(backOut(hconn), ok);
    expectNoReport();
    EXPECT_EQ(depth("REPORTS"), 0);

    ASSERT_EQ(put(hconn, q1, "two", asking(MQRO_COA_WITH_FULL_DATA), syncpoint), ok);
    EXPECT_EQ(depth("REPORTS"), 1);
    ASSERT_EQ(commit(hconn), ok);
    EXPECT_EQ(report().body, "two");
    expectNoReport();
}

TEST_F(Reports, OnATransmissionQueueNothingHasArrived)
{
    alterQueue("Q1", {{MQIA_USAGE, MQUS_TRANSMISSION}});
    ASSERT_EQ(put(hconn, q1, "body", asking(MQRO_COA)), ok);
    expectNoReport();
}

TEST_F(Reports, ARefusedPutIsNotReported)
{
    alterQueue("Q1", {{MQIA_MAX_Q_DEPTH, 1}});
    ASSERT_EQ(put(hconn, q1, "body", asking(MQRO_COA)), ok);
    ASSERT_EQ(report().codes, ok);
    EXPECT_EQ(put(hconn, q1, "body", asking(MQRO_COA | MQRO_EXCEPTION)), failed(MQRC_Q_FULL));
    EXPECT_EQ(put(hconn, q1, "body", asking(MQRO_COA), pmoWith(MQPMO_SYNCPOINT)), failed(MQRC_Q_FULL));
    ASSERT_EQ(commit(hconn), ok);
    expectNoReport();
}

// ---- Confirmation of delivery ----

TEST_F(Reports, DeliveryIsReportedByTheGetThatRemoves)
{
    MQMD md = asking(MQRO_COD);
    MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT);
    ASSERT_EQ(putInOut(hconn, q1, "body", md, pmo), ok);
    ASSERT_EQ(get(hconn, q1, MQGMO_BROWSE_FIRST).body, "body");
    expectNoReport();
    ASSERT_EQ(get(hconn, q1).body, "body");
    const Got got = report();
    ASSERT_EQ(got.codes, ok);
    EXPECT_EQ(got.md.Feedback, MQFB_COD);
    EXPECT_EQ(bytes(got.md.CorrelId), bytes(md.MsgId));
    EXPECT_EQ(depth("Q1"), 0);
    expectNoReport();
}

TEST_F(Reports, DeliveryUnderSyncpointIsReportedWithTheCommit)
{
    ASSERT_EQ(put(hconn, q1, "body", asking(MQRO_COD)), ok);
    ASSERT_EQ(get(hconn, q1, MQGMO_SYNCPOINT).body, "body");
    expectNoReport();
    ASSERT_EQ(backOut(hconn), ok);
    expectNoReport();
    const Got again = get(hconn, q1, MQGMO_SYNCPOINT);
    EXPECT_EQ(again.body, "body");
    EXPECT_EQ(again.md.BackoutCount, 1);
    ASSERT_EQ(commit(hconn), ok);
    EXPECT_EQ(report().md.Feedback, MQFB_COD);
    expectNoReport();
}

TEST_F(Reports, ALargeBodyIsDeliveredAndReportedWhole)
{
    const std::string body = letters(300'000);
    ASSERT_EQ(put(hconn, q1, body, asking(MQRO_COD_WITH_FULL_DATA)), ok);
    ASSERT_EQ(get(hconn, q1, version2Md(), gmoWith(MQGMO_NO_SYNCPOINT), body.size()).body, body);
    EXPECT_EQ(get(hconn, reports, version2Md(), gmoWith(MQGMO_NO_SYNCPOINT), body.size()).body, body);
}

TEST_F(Reports, ATruncatedMessageIsDeliveredWhenItIsAccepted)
{
    ASSERT_EQ(put(hconn, q1, "0123456789", asking(MQRO_COD_WITH_FULL_DATA)), ok);
    EXPECT_EQ(get(hconn, q1, version2Md(), gmoWith(MQGMO_NO_SYNCPOINT), 4).codes, warned(MQRC_TRUNCATED_MSG_FAILED));
    expectNoReport();
    EXPECT_EQ(get(hconn, q1, version2Md(), gmoWith(MQGMO_NO_SYNCPOINT | MQGMO_ACCEPT_TRUNCATED_MSG), 4).codes,
              warned(MQRC_TRUNCATED_MSG_ACCEPTED));
    EXPECT_EQ(report().body, "0123456789");
}

// ---- Expiration ----

TEST_F(Reports, ExpirationIsReportedByWhoeverMeetsTheMessage)
{
    const Clock clock;
    for (const MQLONG options : {MQGMO_NO_SYNCPOINT, MQGMO_SYNCPOINT, MQGMO_BROWSE_FIRST}) {
        MQMD md = asking(MQRO_EXPIRATION_WITH_FULL_DATA);
        md.Expiry = 10;
        MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT);
        ASSERT_EQ(putInOut(hconn, q1, "late", md, pmo), ok);
        expectNoReport();
        Clock::pass(2);
        EXPECT_EQ(get(hconn, q1, options).codes, failed(MQRC_NO_MSG_AVAILABLE));
        const Got got = report();
        ASSERT_EQ(got.codes, ok) << options;
        EXPECT_EQ(got.md.Feedback, MQFB_EXPIRATION);
        EXPECT_EQ(got.body, "late");
        EXPECT_EQ(bytes(got.md.CorrelId), bytes(md.MsgId));
        EXPECT_EQ(depth("Q1"), 0);
        EXPECT_EQ(get(hconn, q1, options).codes, failed(MQRC_NO_MSG_AVAILABLE));
        expectNoReport();
    }
}

TEST_F(Reports, ExpirationIsReportedWhenTheMessageIsAskedForByItsToken)
{
    const Clock clock;
    MQMD md = asking(MQRO_EXPIRATION);
    md.Expiry = 10;
    ASSERT_EQ(put(hconn, q1, "late", md), ok);
    MQGMO gmo = gmoWith(MQGMO_BROWSE_FIRST, MQGMO_VERSION_3);
    gmo.MatchOptions = MQMO_NONE;
    const Got browsed = get(hconn, q1, version2Md(), gmo);
    ASSERT_EQ(browsed.body, "late");
    Clock::pass(2);
    gmo = gmoWith(MQGMO_NO_SYNCPOINT, MQGMO_VERSION_3);
    gmo.MatchOptions = MQMO_MATCH_MSG_TOKEN;
    std::memcpy(gmo.MsgToken, browsed.gmo.MsgToken, sizeof gmo.MsgToken);
    EXPECT_EQ(get(hconn, q1, version2Md(), gmo).codes, failed(MQRC_NO_MSG_AVAILABLE));
    EXPECT_EQ(report().md.Feedback, MQFB_EXPIRATION);
    EXPECT_EQ(depth("Q1"), 0);
}

TEST_F(Reports, ExpirationIsReportedWithSomeDataWhereThatIsAskedFor)
{
    const Clock clock;
    const std::string body = letters(250);
    MQMD md = asking(MQRO_EXPIRATION_WITH_DATA);
    md.Expiry = 10;
    ASSERT_EQ(put(hconn, q1, body, md), ok);
    Clock::pass(2);
    EXPECT_EQ(get(hconn, q1).codes, failed(MQRC_NO_MSG_AVAILABLE));
    EXPECT_EQ(report().body, body.substr(0, 100));
}

TEST_F(Reports, ExpiredMessagesInFrontDoNotKeepTheNextOneBack)
{
    const Clock clock;
    MQMD md = asking(MQRO_EXPIRATION);
    md.Expiry = 10;
    md.Persistence = MQPER_PERSISTENT;
    for (int i = 0; i < 100; ++i)
        ASSERT_EQ(put(hconn, q1, "late", i % 2 == 0 ? md : withExpiry(10)), ok);
    ASSERT_EQ(put(hconn, q1, "in time"), ok);
    Clock::pass(2);
    EXPECT_EQ(get(hconn, q1).body, "in time");
    EXPECT_EQ(drain(hconn, reports).size(), 50U);
    EXPECT_EQ(depth("Q1"), 0);
    restart();
    EXPECT_EQ(depth("Q1"), 0);
}

TEST_F(Reports, AnExpirationReportDoesNotExpire)
{
    const Clock clock;
    MQMD md = asking(MQRO_EXPIRATION | MQRO_PASS_DISCARD_AND_EXPIRY);
    md.Expiry = 10;
    ASSERT_EQ(put(hconn, q1, "late", md), ok);
    Clock::pass(2);
    EXPECT_EQ(get(hconn, q1).codes, failed(MQRC_NO_MSG_AVAILABLE));
    Clock::pass(1000);
    EXPECT_EQ(report().md.Expiry, MQEI_UNLIMITED);
}

// ---- One is never there without the other ----

// The n-th storage call fails, for n = 1, 2, 3 ... until nothing fails any more: message and report are both there or
// both not. (A sync of the log that fails ends the queue manager, and a restart decides: see below.)
int remaining = 0;
int failNext(store::StorageCall call)
{
    if (call == store::StorageCall::LogSync || call == store::StorageCall::LogCommit) return 0;
    return --remaining == 0 ? ENOSPC : 0;
}

TEST_F(Reports, StorageFailuresLeaveBothOrNone)
{
    bool sawFailure = false;
    for (int n = 1;; ++n) {
        ASSERT_LT(n, 500);
        MQMD md = asking(MQRO_COA);
        md.Persistence = MQPER_PERSISTENT;
        remaining = n;
        store::seams.storageError = failNext;
        const Codes codes = put(hconn, q1, "body", md);
        const bool ran = remaining > 0;
        store::seams.storageError = nullptr;
        sawFailure = sawFailure || codes != ok;
        ASSERT_EQ(drain(hconn, q1).size(), codes == ok ? 1U : 0U) << n;
        ASSERT_EQ(drain(hconn, reports).size(), codes == ok ? 1U : 0U) << n;
        ASSERT_EQ(depth("REPORTS"), 0) << n;
        if (ran) break;
    }
    EXPECT_TRUE(sawFailure);
}

// A process that is killed at a step of its put, or of its get, leaves both or none.
store::Step dieAt;
void die(store::Step step)
{
    if (step == dieAt) _exit(0);
}

class ReportsOfKilled : public QueueManagerTest {
public:
    ReportsOfKilled() { defineQueue("REPORTS"); }

    template <class Act>
    void killedAt(store::Step step, Act &&act)
    {
        const pid_t child = fork();
        if (child == 0) {
            MQHCONN hconn = connect();
            const MQHOBJ q1 = open(hconn, "Q1", MQOO_INPUT_SHARED | MQOO_OUTPUT);
            dieAt = step;
            store::seams.reached = die;
            act(hconn, q1);
            _exit(1); // the step was not reached
        }
        int status = -1;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_EQ(status, 0);
    }
};

constexpr store::Step steps[] = {store::Step::UnitPrepared, store::Step::UnitLogged, store::Step::UnitFlipped};

TEST_F(ReportsOfKilled, PutAndArrivalGoTogether)
{
    MQMD md = Reports::asking(MQRO_COA);
    md.Persistence = MQPER_PERSISTENT;
    for (const store::Step step : steps) {
        killedAt(step, [&](MQHCONN hconn, MQHOBJ q1) { put(hconn, q1, "body", md); });
        restart();
        MQHCONN hconn = connect();
        const std::size_t messages = drain(hconn, open(hconn, "Q1", MQOO_INPUT_SHARED)).size();
        EXPECT_EQ(drain(hconn, open(hconn, "REPORTS", MQOO_INPUT_SHARED)).size(), messages);
        disconnect(hconn);
    }
}

TEST_F(ReportsOfKilled, GetAndDeliveryGoTogether)
{
    MQMD md = Reports::asking(MQRO_COD);
    md.Persistence = MQPER_PERSISTENT;
    for (const store::Step step : steps) {
        {
            MQHCONN hconn = connect();
            ASSERT_EQ(put(hconn, open(hconn, "Q1", MQOO_OUTPUT), "body", md), ok);
            disconnect(hconn);
            restart(); // no life of the parent for the child to inherit
        }
        killedAt(step, [&](MQHCONN hconn, MQHOBJ q1) { get(hconn, q1); });
        restart();
        MQHCONN hconn = connect();
        const MQHOBJ reports = open(hconn, "REPORTS", MQOO_INPUT_SHARED);
        const std::size_t reported = drain(hconn, reports).size();
        const std::size_t left = drain(hconn, open(hconn, "Q1", MQOO_INPUT_SHARED)).size();
        EXPECT_EQ(reported + left, 1U);
        drain(hconn, reports);
        disconnect(hconn);
    }
}

} // namespace
} // namespace mqrig::qmgr::testing
