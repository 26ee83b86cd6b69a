// Reasons of putting, each provoked with MQPUT and with MQPUT1.
#include <cstring>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "every_call.h"
#include "property_calls.h"

namespace mqrig::qmgr::testing {
namespace {

// The arguments of a put that succeeds.
struct Put {
    std::string queue = "Q1";
    MQMD md = version2Md();
    MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT);
    std::string body = "hello";
    void *pMd = &md;
    void *pPmo = &pmo;
    std::optional<MQLONG> length;
    bool withoutBuffer = false;
};

struct PutCase {
    Codes answer;
    std::function<void(Put &)> spoil;
};

class Putting : public PropertyTest {
public:
    Codes put1(Put &put) const
    {
        MQOD od = {MQOD_DEFAULT};
        setText(od.ObjectName, put.queue);
        return answerOf(MQPUT1, hconn, &od, put.pMd, put.pPmo, length(put), buffer(put));
    }
    Codes putOpen(Put &put) const
    {
        const MQHOBJ hobj = open(hconn, put.queue, MQOO_OUTPUT | MQOO_SET_ALL_CONTEXT);
        const Codes codes = answerOf(MQPUT, hconn, hobj, put.pMd, put.pPmo, length(put), buffer(put));
        MQHOBJ closed = hobj;
        close(hconn, closed);
        return codes;
    }
    void expect(const std::vector<PutCase> &cases) const
    {
        for (const PutCase &each : cases) {
            Put put;
            each.spoil(put);
            EXPECT_EQ(putOpen(put), each.answer) << "MQPUT";
            Put again;
            each.spoil(again);
            EXPECT_EQ(put1(again), each.answer) << "MQPUT1";
        }
    }

private:
    static MQLONG length(const Put &put) { return put.length.value_or(static_cast<MQLONG>(put.body.size())); }
    static void *buffer(Put &put) { return put.withoutBuffer ? nullptr : put.body.data(); }
};

TEST_F(Putting, WithWrongArguments)
{
    expect({
        {ok, [](Put &) {}},
        {failed(MQRC_MD_ERROR), [](Put &put) { put.pMd = nullptr; }},
        {failed(MQRC_MD_ERROR), [](Put &put) { put.md.StrucId[0] = 'X'; }},
        {failed(MQRC_MD_ERROR), [](Put &put) { put.md.Version = 3; }},
        {failed(MQRC_PMO_ERROR), [](Put &put) { put.pPmo = nullptr; }},
        {failed(MQRC_PMO_ERROR), [](Put &put) { put.pmo.StrucId[0] = 'X'; }},
        {failed(MQRC_PMO_ERROR), [](Put &put) { put.pmo.Version = 4; }},
        {failed(MQRC_BUFFER_LENGTH_ERROR), [](Put &put) { put.length = -1; }},
        {failed(MQRC_BUFFER_ERROR), [](Put &put) { put.withoutBuffer = true; }},
        {failed(MQRC_OPTIONS_ERROR), [](Put &put) { put.pmo.Options |= MQPMO_SYNCPOINT; }},
        {failed(MQRC_RECS_PRESENT_ERROR),
         [](Put &put) {
             put.pmo.Version = MQPMO_VERSION_2;
             put.pmo.RecsPresent = -1;
         }},
        {failed(MQRC_RECS_PRESENT_ERROR),
         [](Put &put) {
             put.pmo.Version = MQPMO_VERSION_2;
             put.pmo.RecsPresent = 1;
         }},
    });
}

TEST_F(Putting, WithWrongFields)
{
    expect({
        {failed(MQRC_MSG_TYPE_ERROR), [](Put &put) { put.md.MsgType = 0; }},
        {failed(MQRC_EXPIRY_ERROR), [](Put &put) { put.md.Expiry = 0; }},
        {failed(MQRC_FEEDBACK_ERROR), [](Put &put) { put.md.Feedback = -1; }},
        {failed(MQRC_PRIORITY_ERROR), [](Put &put) { put.md.Priority = -2; }},
        {warned(MQRC_PRIORITY_EXCEEDS_MAXIMUM), [](Put &put) { put.md.Priority = 10; }},
        {failed(MQRC_PERSISTENCE_ERROR), [](Put &put) { put.md.Persistence = 3; }},
        {failed(MQRC_REPORT_OPTIONS_ERROR), [](Put &put) { put.md.Report = 0x10000000; }},
        {failed(MQRC_MISSING_REPLY_TO_Q), [](Put &put) { put.md.MsgType = MQMT_REQUEST; }},
        {failed(MQRC_MSG_FLAGS_ERROR), [](Put &put) { put.md.MsgFlags = 0x20; }},
        {failed(MQRC_MSG_SEQ_NUMBER_ERROR),
         [](Put &put) {
             put.md.MsgFlags = MQMF_MSG_IN_GROUP;
             put.md.MsgSeqNumber = 0;
         }},
        {failed(MQRC_OFFSET_ERROR),
         [](Put &put) {
             put.md.MsgFlags = MQMF_SEGMENT;
             put.md.Offset = -1;
         }},
        {failed(MQRC_SEGMENT_LENGTH_ZERO),
         [](Put &put) {
             put.md.MsgFlags = MQMF_SEGMENT;
             put.body.clear();
         }},
        {failed(MQRC_ORIGINAL_LENGTH_ERROR),
         [](Put &put) {
             put.md.MsgType = MQMT_REPORT;
             put.md.MsgFlags = MQMF_SEGMENT;
             put.md.OriginalLength = -2;
         }},
        {failed(MQRC_MDE_ERROR),
         [](Put &put) {
             put.md = {MQMD_DEFAULT};
             std::memcpy(put.md.Format, MQFMT_MD_EXTENSION, sizeof put.md.Format);
         }},
        {failed(MQRC_CONTEXT_HANDLE_ERROR), [](Put &put) { put.pmo.Options |= MQPMO_PASS_IDENTITY_CONTEXT; }},
    });
}

TEST_F(Putting, OnQueuesThatDoNotTakeIt)
{
    defineQueue("FULL", {{MQIA_MAX_Q_DEPTH, 0}});
    defineQueue("INHIBITED", {{MQIA_INHIBIT_PUT, MQQA_PUT_INHIBITED}});
    defineQueue("SHORT", {{MQIA_MAX_MSG_LENGTH, 4}});
    defineTransmissionQueue("TRANSMISSION");
    alterQueueManager({{MQIA_MAX_MSG_LENGTH, 40000}});
    expect({
        {failed(MQRC_Q_FULL), [](Put &put) { put.queue = "FULL"; }},
        {failed(MQRC_PUT_INHIBITED), [](Put &put) { put.queue = "INHIBITED"; }},
        {failed(MQRC_MSG_TOO_BIG_FOR_Q), [](Put &put) { put.queue = "SHORT"; }},
        {failed(MQRC_MSG_TOO_BIG_FOR_Q_MGR), [](Put &put) { put.body.assign(40001, 'x'); }},
        {failed(MQRC_XQH_ERROR),
         [](Put &put) {
             put.queue = "TRANSMISSION";
             std::memcpy(put.md.Format, MQFMT_XMIT_Q_HEADER, sizeof put.md.Format);
         }},
    });
}

TEST_F(Putting, OfPersistentMessagesOnATemporaryQueueIs2048)
{
    MQOD od = {MQOD_DEFAULT};
    setText(od.ObjectName, "SYSTEM.DEFAULT.MODEL.QUEUE");
    MQHOBJ hobj = MQHO_UNUSABLE_HOBJ;
    ASSERT_EQ(tryOpen(hconn, od, MQOO_OUTPUT, hobj), ok);
    Put put;
    put.queue = text(od.ObjectName);
    put.md.Persistence = MQPER_PERSISTENT;
    EXPECT_EQ(put1(put), failed(MQRC_PERSISTENT_NOT_ALLOWED));
    EXPECT_EQ(putOpen(put), failed(MQRC_PERSISTENT_NOT_ALLOWED));
}

TEST_F(Putting, MoreThanAUnitOfWorkTakesIs2024)
{
    alterQueueManager({{MQIA_MAX_UNCOMMITTED_MSGS, 1}});
    ASSERT_EQ(put(hconn, q1, "x", {MQMD_DEFAULT}, pmoWith(MQPMO_SYNCPOINT)), ok);
    expect({{failed(MQRC_SYNCPOINT_LIMIT_REACHED), [](Put &put) { put.pmo.Options = MQPMO_SYNCPOINT; }}});
}

TEST_F(Putting, SegmentsOfAPersistentMessageBesideAUnitOfWorkIs2255)
{
    defineQueue("NARROW", {{MQIA_MAX_MSG_LENGTH, 16}});
    ASSERT_EQ(put(hconn, q1, "pending", {MQMD_DEFAULT}, pmoWith(MQPMO_SYNCPOINT)), ok);
    expect({{failed(MQRC_UOW_NOT_AVAILABLE), [](Put &put) {
                 put.queue = "NARROW";
                 put.body.assign(40, 'x');
                 put.md.MsgFlags = MQMF_SEGMENTATION_ALLOWED;
                 put.md.Persistence = MQPER_PERSISTENT;
             }}});
}

TEST_F(Putting, WhileTheQueueManagerEndsIs2161WhereAsked)
{
    endQuiesce();
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT | MQPMO_FAIL_IF_QUIESCING);
    EXPECT_EQ(QueueManagerTest::put1(hconn, "Q1", "x", md, pmo), failed(MQRC_Q_MGR_QUIESCING));
    EXPECT_EQ(put(hconn, q1, "x", md, pmo), failed(MQRC_Q_MGR_QUIESCING));
}

TEST_F(Putting, PassingContextThatIsNotThereIs2098)
{
    const MQHOBJ saves = open(hconn, "Q1", MQOO_INPUT_SHARED | MQOO_SAVE_ALL_CONTEXT);
    expect({{failed(MQRC_CONTEXT_NOT_AVAILABLE), [saves](Put &put) {
                 put.pmo.Options |= MQPMO_PASS_ALL_CONTEXT;
                 put.pmo.Context = saves;
             }}});
}

TEST_F(Putting, WithWrongMessageHandles)
{
    const MQHMSG hmsg = create(hconn);
    const MQHMSG large = create(hconn);
    set(large, "large", std::string(4000, 'x'));
    alterQueueManager({{MQIA_MAX_PROPERTIES_LENGTH, 100}});
    const auto with = [](MQHMSG original, MQLONG action, MQHMSG created = MQHM_NONE) {
        return [=](Put &put) {
            put.pmo.Version = MQPMO_VERSION_3;
            put.pmo.OriginalMsgHandle = original;
            put.pmo.NewMsgHandle = created;
            put.pmo.Action = action;
        };
    };
    expect({
        {failed(MQRC_HMSG_ERROR), with(4711, MQACTP_NEW)},
        {failed(MQRC_HMSG_ERROR), with(MQHM_NONE, MQACTP_REPLY, hmsg)},
        {failed(MQRC_ACTION_ERROR), with(hmsg, 4)},
        {failed(MQRC_PROPERTIES_TOO_BIG), with(large, MQACTP_NEW)},
    });
}

// The list of two names stands for one of MQPUT or of MQPUT1.
TEST_F(Putting, OnADistributionList)
{
    MQOR names[2] = {{MQOR_DEFAULT}, {MQOR_DEFAULT}};
    MQRR responses[2] = {{MQRR_DEFAULT}, {MQRR_DEFAULT}};
    setText(names[0].ObjectName, "Q1");
    setText(names[1].ObjectName, "Q1");
    MQOD list = {MQOD_DEFAULT};
    list.Version = MQOD_VERSION_2;
    list.RecsPresent = 2;
    list.ObjectRecPtr = names;
    MQOD opened = list;
    MQHOBJ hobj = MQHO_UNUSABLE_HOBJ;
    ASSERT_EQ(tryOpen(hconn, opened, MQOO_OUTPUT, hobj), ok);
    MQMD md = version2Md();
    const auto expectBoth = [&](const Codes &codes, const std::function<void(MQPMO &)> &spoil) {
        MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT);
        pmo.Version = MQPMO_VERSION_2;
        pmo.RecsPresent = 2;
        spoil(pmo);
        MQPMO again = pmo;
        MQOD od = list;
        EXPECT_EQ(answerOf(MQPUT, hconn, hobj, &md, &pmo, 0, nullptr), codes);
        EXPECT_EQ(answerOf(MQPUT1, hconn, &od, &md, &again, 0, nullptr), codes);
    };
    expectBoth(ok, [](MQPMO &) {});
    expectBoth(failed(MQRC_PMO_RECORD_FLAGS_ERROR), [&](MQPMO &pmo) {
        pmo.PutMsgRecPtr = names;
        pmo.PutMsgRecFields = 0x100;
    });
    expectBoth(failed(MQRC_PUT_MSG_RECORDS_ERROR), [&](MQPMO &pmo) {
        pmo.PutMsgRecFields = MQPMRF_MSG_ID;
        pmo.PutMsgRecPtr = names;
        pmo.PutMsgRecOffset = 8;
    });
    expectBoth(failed(MQRC_RESPONSE_RECORDS_ERROR), [&](MQPMO &pmo) {
        pmo.ResponseRecPtr = responses;
        pmo.ResponseRecOffset = 8;
    });
    md.MsgFlags = MQMF_MSG_IN_GROUP;
    setBytes(md.GroupId, "group");
    expectBoth(failed(MQRC_GROUP_ID_ERROR), [](MQPMO &) {});
}

// What MQOPEN says of a list, MQPUT1 says too.
TEST_F(Putting, OnAListThatIsGivenWrongly)
{
    MQOR names[1] = {{MQOR_DEFAULT}};
    MQRR responses[1] = {{MQRR_DEFAULT}};
    setText(names[0].ObjectName, "NOT.THERE");
    const auto expectBoth = [&](const Codes &codes, const std::function<void(MQOD &)> &spoil) {
        MQOD od = {MQOD_DEFAULT};
        od.Version = MQOD_VERSION_2;
        od.RecsPresent = 1;
        od.ObjectRecPtr = names;
        spoil(od);
        MQOD again = od;
        MQHOBJ hobj = MQHO_UNUSABLE_HOBJ;
        MQMD md = {MQMD_DEFAULT};
        MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT);
        EXPECT_EQ(tryOpen(hconn, od, MQOO_OUTPUT, hobj), codes);
        EXPECT_EQ(answerOf(MQPUT1, hconn, &again, &md, &pmo, 0, nullptr), codes);
    };
    expectBoth(failed(MQRC_UNKNOWN_OBJECT_NAME), [](MQOD &) {});
    expectBoth(failed(MQRC_OBJECT_NAME_ERROR), [](MQOD &od) { setText(od.ObjectName, "Q1"); });
    expectBoth(failed(MQRC_OBJECT_Q_MGR_NAME_ERROR), [](MQOD &od) { setText(od.ObjectQMgrName, "QM1"); });
    expectBoth(failed(MQRC_OBJECT_RECORDS_ERROR), [](MQOD &od) { od.ObjectRecPtr = nullptr; });
    expectBoth(failed(MQRC_RESPONSE_RECORDS_ERROR), [&](MQOD &od) {
        od.ResponseRecPtr = responses;
        od.ResponseRecOffset = 8;
    });
    expectBoth(failed(MQRC_RECS_PRESENT_ERROR), [](MQOD &od) { od.RecsPresent = -1; });
}

} // namespace
} // namespace mqrig::qmgr::testing
