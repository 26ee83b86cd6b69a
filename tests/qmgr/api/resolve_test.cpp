// From the names in an MQOD to a queue.
#include "fixture.h"

namespace mqrig::qmgr::testing {
namespace {

MQOD odOf(std::string_view queue, std::string_view queueManager = "")
{
    MQOD od = {MQOD_DEFAULT};
    od.Version = MQOD_VERSION_4;
    setText(od.ObjectName, queue);
    setText(od.ObjectQMgrName, queueManager);
    return od;
}

class Resolve : public QueueManagerTest {
public:
    Resolve() : hconn(connect()) {}

    Codes codesOf(std::string_view queue, std::string_view queueManager, MQLONG options = MQOO_OUTPUT)
    {
        MQOD od = odOf(queue, queueManager);
        MQHOBJ hobj = MQHO_UNUSABLE_HOBJ;
        return tryOpen(hconn, od, options, hobj);
    }
    Codes put1To(std::string_view queue, std::string_view queueManager = "")
    {
        MQOD od = odOf(queue, queueManager);
        MQMD md = {MQMD_DEFAULT};
        MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT);
        Codes codes;
        MQPUT1(hconn, &od, &md, &pmo, 0, nullptr, &codes.CompCode, &codes.Reason);
        return codes;
    }
    // MQOPEN and MQPUT1 agree.
    void expectReason(std::string_view queue, std::string_view queueManager, MQLONG reason)
    {
        EXPECT_EQ(codesOf(queue, queueManager), failed(reason)) << queue << " at " << queueManager;
        EXPECT_EQ(put1To(queue, queueManager), failed(reason)) << queue << " at " << queueManager;
    }

    MQHCONN hconn;
};

// ---- Alias queues ----

TEST_F(Resolve, AliasLeadsToItsBase)
{
    defineAlias("A1", "Q1");
    const MQHOBJ alias = open(hconn, "A1", MQOO_OUTPUT | MQOO_INPUT_SHARED);
    ASSERT_EQ(put(hconn, alias, "by alias"), ok);
    const MQHOBJ q1 = open(hconn, "Q1", MQOO_BROWSE);
    EXPECT_EQ(get(hconn, q1, MQGMO_BROWSE_FIRST).body, "by alias");
    const Got got = get(hconn, alias);
    EXPECT_EQ(got.body, "by alias");
    EXPECT_EQ(text(got.gmo.ResolvedQName), "Q1");
}

TEST_F(Resolve, OpenAndPutTellTheBaseOfAnAlias)
{
    defineAlias("A1", "Q1");
    MQOD od = odOf("A1");
    MQHOBJ hobj = MQHO_UNUSABLE_HOBJ;
    ASSERT_EQ(tryOpen(hconn, od, MQOO_OUTPUT, hobj), ok);
    EXPECT_EQ(text(od.ObjectName), "A1");
    EXPECT_EQ(text(od.ResolvedQName), "Q1");
    EXPECT_EQ(text(od.ResolvedQMgrName), "QM1");
    EXPECT_EQ(od.KnownDestCount, 1);
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT);
    ASSERT_EQ(putInOut(hconn, hobj, "x", md, pmo), ok);
    EXPECT_EQ(text(pmo.ResolvedQName), "Q1");
    EXPECT_EQ(text(pmo.ResolvedQMgrName), "QM1");
    EXPECT_EQ(pmo.KnownDestCount, 1);
}

TEST_F(Resolve, AliasSharesTheOpenCountsOfItsBase)
{
    defineAlias("A1", "Q1");
    open(hconn, "A1", MQOO_INPUT_EXCLUSIVE);
    EXPECT_EQ(openCodes(hconn, "Q1", MQOO_INPUT_SHARED), failed(MQRC_OBJECT_IN_USE));
}

TEST_F(Resolve, AliasOfNothingIs2082)
{
    defineAlias("A1", "NOSUCH");
    expectReason("A1", "", MQRC_UNKNOWN_ALIAS_BASE_Q);
    defineAlias("A2", "");
    expectReason("A2", "", MQRC_UNKNOWN_ALIAS_BASE_Q);
}

TEST_F(Resolve, AliasOfAnAliasOrAModelIs2001)
{
    defineAlias("A1", "Q1");
    defineAlias("A2", "A1");
    expectReason("A2", "", MQRC_ALIAS_BASE_Q_TYPE_ERROR);
    define(objects::ObjectKind::ModelQueue, "M1", {});
    defineAlias("A3", "M1");
    expectReason("A3", "", MQRC_ALIAS_BASE_Q_TYPE_ERROR);
}

TEST_F(Resolve, AliasOfNothingCanBeInquired)
{
    defineAlias("A1", "NOSUCH");
    const MQHOBJ alias = open(hconn, "A1", MQOO_INQUIRE);
    MQLONG selectors[] = {MQIA_Q_TYPE, MQCA_BASE_Q_NAME};
    MQLONG type = 0;
    MQCHAR48 base;
    Codes codes;
    MQINQ(hconn, alias, 2, selectors, 1, &type, sizeof base, base, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, ok);
    EXPECT_EQ(type, MQQT_ALIAS);
    EXPECT_EQ(text(base), "NOSUCH");
}

TEST_F(Resolve, InhibitionOfAliasAndOfBaseBothCount)
{
    defineAlias("A1", "Q1");
    const MQHOBJ alias = open(hconn, "A1", MQOO_OUTPUT | MQOO_INPUT_SHARED);
    alterQueue("A1", {{MQIA_INHIBIT_PUT, MQQA_PUT_INHIBITED}});
    EXPECT_EQ(put(hconn, alias, "x"), failed(MQRC_PUT_INHIBITED));
    alterQueue("A1", {{MQIA_INHIBIT_PUT, MQQA_PUT_ALLOWED}, {MQIA_INHIBIT_GET, MQQA_GET_INHIBITED}});
    EXPECT_EQ(put(hconn, alias, "x"), ok);
    EXPECT_EQ(get(hconn, alias).codes, failed(MQRC_GET_INHIBITED));
    alterQueue("A1", {{MQIA_INHIBIT_GET, MQQA_GET_ALLOWED}});
    alterQueue("Q1", {{MQIA_INHIBIT_PUT, MQQA_PUT_INHIBITED}, {MQIA_INHIBIT_GET, MQQA_GET_INHIBITED}});
    EXPECT_EQ(put(hconn, alias, "x"), failed(MQRC_PUT_INHIBITED));
    EXPECT_EQ(get(hconn, alias).codes, failed(MQRC_GET_INHIBITED));
    EXPECT_EQ(put1To("A1"), failed(MQRC_PUT_INHIBITED));
}

TEST_F(Resolve, DefaultsOfMessagesAreTheAliass)
{
    alterQueue("Q1", {{MQIA_DEF_PRIORITY, 2}, {MQIA_DEF_PERSISTENCE, MQPER_NOT_PERSISTENT}});
    defineAlias("A1", "Q1", {{MQIA_DEF_PRIORITY, 7}, {MQIA_DEF_PERSISTENCE, MQPER_PERSISTENT}});
    const MQHOBJ alias = open(hconn, "A1", MQOO_OUTPUT | MQOO_INPUT_SHARED);
    ASSERT_EQ(put(hconn, alias, "x"), ok);
    const Got got = get(hconn, alias);
    EXPECT_EQ(got.md.Priority, 7);
    EXPECT_EQ(got.md.Persistence, MQPER_PERSISTENT);
}

TEST_F(Resolve, OpenAliasThatLeadsElsewhereNowIs2041)
{
    defineQueue("Q2");
    defineAlias("A1", "Q1");
    const MQHOBJ alias = open(hconn, "A1", MQOO_OUTPUT);
    alterQueue("A1", {}, {{MQCA_BASE_Q_NAME, "Q2"}});
    EXPECT_EQ(put(hconn, alias, "x"), failed(MQRC_OBJECT_CHANGED));
    EXPECT_EQ(depth("Q2"), 0);
}

TEST_F(Resolve, OpenAliasWithoutABaseNowIs2052)
{
    defineAlias("A1", "Q1");
    const MQHOBJ alias = open(hconn, "A1", MQOO_OUTPUT);
    deleteQueue("Q1");
    EXPECT_EQ(put(hconn, alias, "x"), failed(MQRC_Q_DELETED));
}

TEST_F(Resolve, DeletedAliasIs2052ForItsHandles)
{
    defineAlias("A1", "Q1");
    const MQHOBJ alias = open(hconn, "A1", MQOO_OUTPUT);
    deleteQueue("A1");
    EXPECT_EQ(put(hconn, alias, "x"), failed(MQRC_Q_DELETED));
}

// ---- Remote queues ----

TEST_F(Resolve, OpenAndPutTellTheDestinationElsewhere)
{
    defineTransmissionQueue("X1");
    defineRemote("R1", "THERE", "QM2", "X1");
    MQOD od = odOf("R1");
    MQHOBJ hobj = MQHO_UNUSABLE_HOBJ;
    ASSERT_EQ(tryOpen(hconn, od, MQOO_OUTPUT, hobj), ok);
    EXPECT_EQ(text(od.ResolvedQName), "THERE");
    EXPECT_EQ(text(od.ResolvedQMgrName), "QM2");
    EXPECT_EQ(od.ResolvedType, MQOT_Q);
    EXPECT_EQ(od.KnownDestCount, 0);
    EXPECT_EQ(od.UnknownDestCount, 1);
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT);
    ASSERT_EQ(putInOut(hconn, hobj, "x", md, pmo), ok);
    EXPECT_EQ(text(pmo.ResolvedQName), "THERE");
    EXPECT_EQ(text(pmo.ResolvedQMgrName), "QM2");
    EXPECT_EQ(pmo.UnknownDestCount, 1);
    EXPECT_EQ(depth("X1"), 1);
}

TEST_F(Resolve, TheTransmissionQueueIsToldToWhoAsksForTheLocalQueue)
{
    defineTransmissionQueue("X1");
    defineRemote("R1", "THERE", "QM2", "X1");
    MQOD od = odOf("R1");
    MQHOBJ hobj = MQHO_UNUSABLE_HOBJ;
    ASSERT_EQ(tryOpen(hconn, od, MQOO_OUTPUT | MQOO_RESOLVE_LOCAL_Q, hobj), ok);
    EXPECT_EQ(text(od.ResolvedQName), "X1");
    EXPECT_EQ(text(od.ResolvedQMgrName), "QM1");
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT | MQPMO_RESOLVE_LOCAL_Q);
    ASSERT_EQ(putInOut(hconn, hobj, "x", md, pmo), ok);
    EXPECT_EQ(text(pmo.ResolvedQName), "X1");
    EXPECT_EQ(text(pmo.ResolvedQMgrName), "QM1");
}

TEST_F(Resolve, RemoteQueueTakesOutputOnly)
{
    defineTransmissionQueue("X1");
    defineRemote("R1", "THERE", "QM2", "X1");
    defineAlias("A1", "R1");
    for (const char *name : {"R1", "A1"})
        for (const MQLONG options :
             {MQOO_INPUT_SHARED, MQOO_INPUT_AS_Q_DEF, MQOO_INPUT_EXCLUSIVE, MQOO_BROWSE, MQOO_BROWSE | MQOO_OUTPUT})
            EXPECT_EQ(openCodes(hconn, name, options), failed(MQRC_OPTION_NOT_VALID_FOR_TYPE)) << name << options;
    EXPECT_EQ(openCodes(hconn, "R1", MQOO_OUTPUT | MQOO_INQUIRE | MQOO_SET), ok);
}

TEST_F(Resolve, WithoutXMITQTheQueueNamedAsTheQueueManagerIsUsed)
{
    defineTransmissionQueue("QM2");
    defineRemote("R1", "THERE", "QM2", "");
    EXPECT_EQ(put1To("R1"), ok);
    EXPECT_EQ(depth("QM2"), 1);
}

TEST_F(Resolve, ElseTheDefaultTransmissionQueueIsUsed)
{
    defineTransmissionQueue("XD");
    alterQueueManager({}, {{MQCA_DEF_XMIT_Q_NAME, "XD"}});
    defineRemote("R1", "THERE", "QM2", "");
    EXPECT_EQ(put1To("R1"), ok);
    EXPECT_EQ(put1To("ANY", "QM3"), ok);
    EXPECT_EQ(depth("XD"), 2);
}

TEST_F(Resolve, FaultsOfTheTransmissionQueueHaveReasonsOfTheirOwn)
{
    defineAlias("A1", "Q1");
    defineRemote("R1", "THERE", "QM2", "NOSUCH");
    expectReason("R1", "", MQRC_UNKNOWN_XMIT_Q);
    defineRemote("R2", "THERE", "QM2", "A1");
    expectReason("R2", "", MQRC_XMIT_Q_TYPE_ERROR);
    defineRemote("R3", "THERE", "QM2", "Q1");
    expectReason("R3", "", MQRC_XMIT_Q_USAGE_ERROR);
    defineRemote("R4", "THERE", "Q1", "");
    expectReason("R4", "", MQRC_XMIT_Q_USAGE_ERROR);
    defineRemote("R5", "THERE", "A1", "");
    expectReason("R5", "", MQRC_XMIT_Q_TYPE_ERROR);
}

TEST_F(Resolve, FaultsOfTheDefaultTransmissionQueueToo)
{
    defineAlias("A1", "Q1");
    defineRemote("R1", "THERE", "QM2", "");
    expectReason("R1", "", MQRC_UNKNOWN_REMOTE_Q_MGR);
    alterQueueManager({}, {{MQCA_DEF_XMIT_Q_NAME, "NOSUCH"}});
    expectReason("R1", "", MQRC_UNKNOWN_DEF_XMIT_Q);
    alterQueueManager({}, {{MQCA_DEF_XMIT_Q_NAME, "A1"}});
    expectReason("R1", "", MQRC_DEF_XMIT_Q_TYPE_ERROR);
    alterQueueManager({}, {{MQCA_DEF_XMIT_Q_NAME, "Q1"}});
    expectReason("R1", "", MQRC_DEF_XMIT_Q_USAGE_ERROR);
}

TEST_F(Resolve, RemoteQueueOfThisQueueManagerIs2087)
{
    defineTransmissionQueue("X1");
    defineRemote("R1", "THERE", "QM1", "X1");
    expectReason("R1", "", MQRC_UNKNOWN_REMOTE_Q_MGR);
    defineRemote("R2", "THERE", "", "X1");
    expectReason("R2", "", MQRC_UNKNOWN_REMOTE_Q_MGR);
}

TEST_F(Resolve, RemoteQueueWithoutANameThereIs2184)
{
    defineTransmissionQueue("X1");
    defineRemote("R1", "", "QM2", "X1");
    expectReason("R1", "", MQRC_REMOTE_Q_NAME_ERROR);
    defineAlias("A1", "R1");
    expectReason("A1", "", MQRC_REMOTE_Q_NAME_ERROR);
}

TEST_F(Resolve, RemoteQueueThatGoesNowhereCanBeInquired)
{
    defineRemote("R1", "THERE", "QM2", "NOSUCH");
    EXPECT_EQ(openCodes(hconn, "R1", MQOO_INQUIRE), ok);
    EXPECT_EQ(openCodes(hconn, "R1", MQOO_SET), ok);
}

TEST_F(Resolve, OpenRemoteQueueWithAnotherDestinationNowIs2041)
{
    defineTransmissionQueue("X1");
    defineRemote("R1", "THERE", "QM2", "X1");
    const MQHOBJ remote = open(hconn, "R1", MQOO_OUTPUT);
    alterQueue("R1", {{MQIA_INHIBIT_PUT, MQQA_PUT_INHIBITED}});
    EXPECT_EQ(put(hconn, remote, "x"), failed(MQRC_PUT_INHIBITED));
    alterQueue("R1", {{MQIA_INHIBIT_PUT, MQQA_PUT_ALLOWED}}, {{MQCA_REMOTE_Q_NAME, "ELSEWHERE"}});
    EXPECT_EQ(put(hconn, remote, "x"), failed(MQRC_OBJECT_CHANGED));
}

TEST_F(Resolve, InhibitionOfTheTransmissionQueueCounts)
{
    defineTransmissionQueue("X1");
    defineRemote("R1", "THERE", "QM2", "X1");
    alterQueue("X1", {{MQIA_INHIBIT_PUT, MQQA_PUT_INHIBITED}});
    EXPECT_EQ(put1To("R1"), failed(MQRC_PUT_INHIBITED));
}

// ---- ObjectQMgrName ----

TEST_F(Resolve, NameOfATransmissionQueueMeansThatQueueManager)
{
    defineTransmissionQueue("QM2");
    MQOD od = odOf("THERE", "QM2");
    MQHOBJ hobj = MQHO_UNUSABLE_HOBJ;
    ASSERT_EQ(tryOpen(hconn, od, MQOO_OUTPUT, hobj), ok);
    EXPECT_EQ(text(od.ResolvedQName), "THERE");
    EXPECT_EQ(text(od.ResolvedQMgrName), "QM2");
    EXPECT_EQ(put(hconn, hobj, "x"), ok);
    // Also when definitions have changed meanwhile.
    alterQueue("QM2", {{MQIA_MAX_Q_DEPTH, 100}});
    EXPECT_EQ(put(hconn, hobj, "y"), ok);
    EXPECT_EQ(depth("QM2"), 2);
}

TEST_F(Resolve, QueueManagerAliasChangesTheQueueManager)
{
    defineTransmissionQueue("X1");
    defineRemote("QMA", "", "QM7", "X1");
    MQOD od = odOf("THERE", "QMA");
    MQHOBJ hobj = MQHO_UNUSABLE_HOBJ;
    ASSERT_EQ(tryOpen(hconn, od, MQOO_OUTPUT, hobj), ok);
    EXPECT_EQ(text(od.ResolvedQName), "THERE");
    EXPECT_EQ(text(od.ResolvedQMgrName), "QM7");
    alterQueue("X1", {{MQIA_MAX_Q_DEPTH, 100}});
    EXPECT_EQ(put(hconn, hobj, "x"), ok);
    EXPECT_EQ(depth("X1"), 1);
    alterQueue("QMA", {}, {{MQCA_REMOTE_Q_MGR_NAME, "QM8"}});
    EXPECT_EQ(put(hconn, hobj, "x"), failed(MQRC_OBJECT_CHANGED));
}

TEST_F(Resolve, QueueManagerAliasMayMeanThisQueueManager)
{
    defineRemote("QMA", "", "QM1", "");
    EXPECT_EQ(put1To("Q1", "QMA"), ok);
    EXPECT_EQ(depth("Q1"), 1);
    EXPECT_EQ(codesOf("NOSUCH", "QMA"), failed(MQRC_UNKNOWN_OBJECT_NAME));
    for (const MQLONG options : {MQOO_INPUT_SHARED, MQOO_BROWSE, MQOO_INQUIRE | MQOO_OUTPUT, MQOO_SET})
        EXPECT_EQ(codesOf("Q1", "QMA", options), failed(MQRC_OPTION_NOT_VALID_FOR_TYPE)) << options;
    define(objects::ObjectKind::ModelQueue, "M1", {});
    expectReason("M1", "QMA", MQRC_Q_TYPE_ERROR);
}

TEST_F(Resolve, QueueThatHasNoNameHereTakesOutputOnly)
{
    defineTransmissionQueue("QM2");
    for (const MQLONG options : {MQOO_INPUT_SHARED, MQOO_BROWSE, MQOO_INQUIRE, MQOO_SET, MQOO_OUTPUT | MQOO_INQUIRE})
        EXPECT_EQ(codesOf("THERE", "QM2", options), failed(MQRC_OPTION_NOT_VALID_FOR_TYPE)) << options;
}

TEST_F(Resolve, OtherMeaningsOfTheQueueManagersNameAreRefused)
{
    expectReason("ANY", "Q1", MQRC_XMIT_Q_USAGE_ERROR);
    defineRemote("R1", "THERE", "QM2", "");
    expectReason("ANY", "R1", MQRC_UNKNOWN_REMOTE_Q_MGR);
    defineRemote("R2", "", "", "");
    expectReason("ANY", "R2", MQRC_UNKNOWN_REMOTE_Q_MGR);
    define(objects::ObjectKind::ModelQueue, "M1", {});
    expectReason("ANY", "M1", MQRC_UNKNOWN_REMOTE_Q_MGR);
    expectReason("ANY", "QM9", MQRC_UNKNOWN_REMOTE_Q_MGR);
    expectReason("ANY", "not a name", MQRC_UNKNOWN_OBJECT_Q_MGR);
    expectReason("", "QM9", MQRC_REMOTE_Q_NAME_ERROR);
}

TEST_F(Resolve, ThisQueueManagersNameMeansHere)
{
    EXPECT_EQ(put1To("Q1", "QM1"), ok);
    EXPECT_EQ(depth("Q1"), 1);
}

// ---- Objects that are no queues ----

TEST_F(Resolve, ProcessAndNamelistAreOpenedForInquiry)
{
    define(objects::ObjectKind::Process, "P1", {{MQCA_APPL_ID, "run me"}});
    define(objects::ObjectKind::Namelist, "N1", {});
    for (const auto &[type, name] : {std::pair{MQOT_PROCESS, "P1"}, std::pair{MQOT_NAMELIST, "N1"}}) {
        MQOD od = odOf(name);
        od.ObjectType = type;
        MQHOBJ hobj = MQHO_UNUSABLE_HOBJ;
        EXPECT_EQ(tryOpen(hconn, od, MQOO_INQUIRE, hobj), ok) << name;
        EXPECT_EQ(close(hconn, hobj), ok);
        setText(od.ObjectQMgrName, "QM2");
        EXPECT_EQ(tryOpen(hconn, od, MQOO_INQUIRE, hobj), failed(MQRC_OPTION_NOT_VALID_FOR_TYPE)) << name;
    }
}

TEST_F(Resolve, ProcessIsInquiredAsItIsNow)
{
    define(objects::ObjectKind::Process, "P1", {{MQCA_APPL_ID, "run me"}});
    MQOD od = odOf("P1");
    od.ObjectType = MQOT_PROCESS;
    MQHOBJ process = MQHO_UNUSABLE_HOBJ;
    ASSERT_EQ(tryOpen(hconn, od, MQOO_INQUIRE, process), ok);
    MQLONG selector = MQCA_APPL_ID;
    MQCHAR applId[MQ_PROCESS_APPL_ID_LENGTH];
    Codes codes;
    MQINQ(hconn, process, 1, &selector, 0, nullptr, sizeof applId, applId, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, ok);
    EXPECT_EQ(text(applId), "run me");
}

} // namespace
} // namespace mqrig::qmgr::testing
