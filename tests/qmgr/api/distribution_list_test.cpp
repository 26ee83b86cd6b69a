// Several queues opened and put to with one call.
#include "fixture.h"

#include <cstring>
#include <set>

namespace mqrig::qmgr::testing {
namespace {

// An MQRR that can be compared.
struct Response {
    MQLONG CompCode;
    MQLONG Reason;

    bool operator==(const Response &) const = default;
};
static_assert(sizeof(Response) == sizeof(MQRR));
std::ostream &operator<<(std::ostream &out, const Response &response)
{
    return out << response.CompCode << '/' << response.Reason;
}

constexpr Response untouched{77, 77};
constexpr Response fine{MQCC_OK, MQRC_NONE};
constexpr Response failedFor(MQLONG reason)
{
    return {MQCC_FAILED, reason};
}

class DistributionListTest : public QueueManagerTest {
public:
    DistributionListTest()
    {
        for (const char *name : {"L1", "L2", "L3"})
            defineQueue(name);
        hconn = connect();
    }

    // What a program keeps for its list.
    void destinations(std::initializer_list<std::string_view> names)
    {
        objectRecords.clear();
        for (const std::string_view name : names) {
            MQOR record = {MQOR_DEFAULT};
            const std::size_t colon = name.find(':');
            setText(record.ObjectName, name.substr(0, colon));
            if (colon != std::string_view::npos) setText(record.ObjectQMgrName, name.substr(colon + 1));
            objectRecords.push_back(record);
        }
        responses.assign(names.size(), untouched);
        od = {MQOD_DEFAULT};
        od.Version = MQOD_VERSION_4;
        od.RecsPresent = static_cast<MQLONG>(names.size());
        od.ObjectRecPtr = objectRecords.data();
        od.ResponseRecPtr = responses.data();
    }
    Codes openList(MQLONG options = MQOO_OUTPUT) { return tryOpen(hconn, od, options, list); }
    MQPMO listPmo(MQLONG options = MQPMO_NO_SYNCPOINT)
    {
        MQPMO pmo = pmoWith(options);
        pmo.Version = MQPMO_VERSION_2;
        pmo.RecsPresent = static_cast<MQLONG>(responses.size());
        pmo.ResponseRecPtr = responses.data();
        responses.assign(responses.size(), untouched);
        return pmo;
    }
    Codes putToList(std::string_view body, MQMD md = {MQMD_DEFAULT}) { return put(hconn, list, body, md, listPmo()); }
    Got take(std::string_view queue)
    {
        MQHOBJ hobj = open(hconn, queue, MQOO_INPUT_SHARED);
        Got got = get(hconn, hobj);
        close(hconn, hobj);
        return got;
    }

    std::vector<MQOR> objectRecords;
    std::vector<Response> responses;
    MQOD od = {MQOD_DEFAULT};
    MQHCONN hconn;
    MQHOBJ list = MQHO_UNUSABLE_HOBJ;
};

TEST_F(DistributionListTest, OnePutReachesEveryQueue)
{
    destinations({"L1", "L2", "L3"});
    ASSERT_EQ(openList(), ok);
    EXPECT_EQ(od.KnownDestCount, 3);
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = listPmo();
    ASSERT_EQ(putInOut(hconn, list, "to all", md, pmo), ok);
    EXPECT_EQ(pmo.KnownDestCount, 3);
    EXPECT_EQ(pmo.UnknownDestCount, 0);
    EXPECT_EQ(pmo.InvalidDestCount, 0);
    EXPECT_EQ(responses, (std::vector<Response>{untouched, untouched, untouched})) << "all outcomes are the call's";
    std::set<std::string> ids;
    for (const char *name : {"L1", "L2", "L3"}) {
        const Got got = take(name);
        EXPECT_EQ(got.body, "to all");
        ids.insert(bytes(got.md.MsgId));
    }
    EXPECT_EQ(ids.size(), 3U) << "an identifier for each";
    EXPECT_EQ(bytes(md.MsgId), std::string(24, '\0')) << "the program's descriptor keeps its own";
    EXPECT_EQ(md.PutApplType, MQAT_UNIX);
    EXPECT_EQ(close(hconn, list), ok);
}

TEST_F(DistributionListTest, MixedOutcomesAreToldOneByOne)
{
    defineQueue("FULL", {{MQIA_MAX_Q_DEPTH, 0}});
    defineQueue("SHUT", {{MQIA_INHIBIT_PUT, MQQA_PUT_INHIBITED}});
    destinations({"L1", "NOSUCH", "FULL", "SHUT", "L2"});
    EXPECT_EQ(openList(), warned(MQRC_MULTIPLE_REASONS));
    EXPECT_EQ(responses, (std::vector<Response>{fine, failedFor(MQRC_UNKNOWN_OBJECT_NAME), fine, fine, fine}));
    EXPECT_EQ(od.KnownDestCount, 4);
    EXPECT_EQ(od.InvalidDestCount, 1);
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = listPmo();
    EXPECT_EQ(putInOut(hconn, list, "x", md, pmo), warned(MQRC_MULTIPLE_REASONS));
    EXPECT_EQ(responses, (std::vector<Response>{fine, failedFor(MQRC_OPEN_FAILED), failedFor(MQRC_Q_FULL),
                                                failedFor(MQRC_PUT_INHIBITED), fine}));
    EXPECT_EQ(pmo.KnownDestCount, 2);
    EXPECT_EQ(pmo.InvalidDestCount, 3);
    EXPECT_EQ(depth("L1"), 1);
    EXPECT_EQ(depth("L2"), 1);
}

TEST_F(DistributionListTest, FailureOfAllIsTheCallsFailure)
{
    destinations({"NOSUCH", "NEITHER"});
    EXPECT_EQ(openList(), failed(MQRC_UNKNOWN_OBJECT_NAME));
    EXPECT_EQ(list, MQHO_UNUSABLE_HOBJ);
    EXPECT_EQ(responses, (std::vector<Response>{untouched, untouched}));
    define(objects::ObjectKind::ModelQueue, "M1", {});
    destinations({"NOSUCH", "M1"});
    EXPECT_EQ(openList(), failed(MQRC_MULTIPLE_REASONS));
    EXPECT_EQ(responses, (std::vector<Response>{failedFor(MQRC_UNKNOWN_OBJECT_NAME), failedFor(MQRC_Q_TYPE_ERROR)}));
    EXPECT_EQ(od.InvalidDestCount, 2);
}

TEST_F(DistributionListTest, PutThatFailsEverywhereFails)
{
    destinations({"L1", "L2"});
    ASSERT_EQ(openList(), ok);
    for (const char *name : {"L1", "L2"})
        alterQueue(name, {{MQIA_INHIBIT_PUT, MQQA_PUT_INHIBITED}});
    EXPECT_EQ(putToList("x"), failed(MQRC_PUT_INHIBITED));
    alterQueue("L2", {{MQIA_INHIBIT_PUT, MQQA_PUT_ALLOWED}, {MQIA_MAX_Q_DEPTH, 0}});
    EXPECT_EQ(putToList("x"), failed(MQRC_MULTIPLE_REASONS));
    EXPECT_EQ(responses, (std::vector<Response>{failedFor(MQRC_PUT_INHIBITED), failedFor(MQRC_Q_FULL)}));
}

TEST_F(DistributionListTest, UnderSyncpointAllOrNobodyHasIt)
{
    destinations({"L1", "L2"});
    ASSERT_EQ(openList(), ok);
    ASSERT_EQ(put(hconn, list, "x", {MQMD_DEFAULT}, listPmo(MQPMO_SYNCPOINT)), ok);
    ASSERT_EQ(backOut(hconn), ok);
    EXPECT_EQ(depth("L1") + depth("L2"), 0);
    ASSERT_EQ(put(hconn, list, "x", persistentMd(), listPmo(MQPMO_SYNCPOINT)), ok);
    ASSERT_EQ(commit(hconn), ok);
    EXPECT_EQ(depth("L1") + depth("L2"), 2);
}

TEST_F(DistributionListTest, PutMessageRecordsSayWhatDiffers)
{
    struct Record {
        MQBYTE24 MsgId;
        MQBYTE24 CorrelId;
        MQLONG Feedback;
    } records[2] = {};
    setBytes(records[0].MsgId, "first");
    setBytes(records[0].CorrelId, "one");
    records[0].Feedback = MQFB_COA;
    setBytes(records[1].CorrelId, "two");
    destinations({"L1", "L2", "L3"});
    ASSERT_EQ(openList(), ok);
    MQMD md = {MQMD_DEFAULT};
    setBytes(md.MsgId, "of the descriptor");
    MQPMO pmo = listPmo();
    pmo.RecsPresent = 2;
    pmo.PutMsgRecFields = MQPMRF_MSG_ID | MQPMRF_CORREL_ID | MQPMRF_FEEDBACK;
    pmo.PutMsgRecPtr = records;
    ASSERT_EQ(putInOut(hconn, list, "x", md, pmo), ok);
    const Got first = take("L1");
    EXPECT_EQ(bytes(first.md.MsgId), bytes(records[0].MsgId));
    EXPECT_EQ(bytes(first.md.CorrelId), bytes(records[0].CorrelId));
    EXPECT_EQ(first.md.Feedback, MQFB_COA);
    const Got second = take("L2");
    EXPECT_NE(bytes(records[1].MsgId), std::string(24, '\0')) << "an identifier that was made comes back";
    EXPECT_EQ(bytes(second.md.MsgId), bytes(records[1].MsgId));
    EXPECT_EQ(bytes(second.md.CorrelId), bytes(records[1].CorrelId));
    EXPECT_EQ(bytes(take("L3").md.MsgId), bytes(md.MsgId)) << "no record: the descriptor's";
}

TEST_F(DistributionListTest, OneNewCorrelIdIsForAllDestinations)
{
    defineTransmissionQueue("QM2", MQDL_SUPPORTED);
    MQBYTE24 records[2] = {};
    setBytes(records[0], "one");
    setBytes(records[1], "two");
    destinations({"L1", "L2", "L3", "A:QM2", "B:QM2"});
    ASSERT_EQ(openList(), ok);
    MQMD md = {MQMD_DEFAULT};
    setBytes(md.CorrelId, "of the descriptor");
    MQPMO pmo = listPmo(MQPMO_NO_SYNCPOINT | MQPMO_NEW_CORREL_ID);
    pmo.RecsPresent = 2;
    pmo.PutMsgRecFields = MQPMRF_CORREL_ID;
    pmo.PutMsgRecPtr = records;
    ASSERT_EQ(putInOut(hconn, list, "x", md, pmo), ok);
    const std::string made = bytes(md.CorrelId);
    EXPECT_EQ(made.substr(0, 4), "AMQ ");
    EXPECT_EQ(bytes(records[0]), made);
    EXPECT_EQ(bytes(records[1]), made);
    for (const char *queue : {"L1", "L2", "L3"})
        EXPECT_EQ(bytes(take(queue).md.CorrelId), made) << queue;
    MQXQH header;
    std::memcpy(&header, take("QM2").body.data(), sizeof header);
    EXPECT_EQ(bytes(header.MsgDesc.CorrelId), made) << "they share a message";
}

TEST_F(DistributionListTest, AccountingTokensNeedTheContextOption)
{
    MQBYTE32 tokens[2] = {};
    setBytes(tokens[0], "token");
    destinations({"L1", "L2"});
    ASSERT_EQ(openList(MQOO_OUTPUT | MQOO_SET_IDENTITY_CONTEXT), ok);
    MQPMO pmo = listPmo();
    pmo.PutMsgRecFields = MQPMRF_ACCOUNTING_TOKEN;
    pmo.PutMsgRecPtr = tokens;
    EXPECT_EQ(put(hconn, list, "x", {MQMD_DEFAULT}, pmo), failed(MQRC_PMO_RECORD_FLAGS_ERROR));
    pmo.Options |= MQPMO_SET_IDENTITY_CONTEXT;
    ASSERT_EQ(put(hconn, list, "x", {MQMD_DEFAULT}, pmo), ok);
    EXPECT_EQ(bytes(take("L1").md.AccountingToken), bytes(tokens[0]));
}

TEST_F(DistributionListTest, RecordsMayStandAtAnOffset)
{
    struct {
        MQOD od = {MQOD_DEFAULT};
        MQOR names[2] = {{MQOR_DEFAULT}, {MQOR_DEFAULT}};
        Response responses[2] = {untouched, untouched};
    } open;
    open.od.Version = MQOD_VERSION_2;
    open.od.RecsPresent = 2;
    open.od.ObjectRecOffset = static_cast<MQLONG>(offsetof(decltype(open), names));
    open.od.ResponseRecOffset = static_cast<MQLONG>(offsetof(decltype(open), responses));
    setText(open.names[0].ObjectName, "L1");
    setText(open.names[1].ObjectName, "NOSUCH");
    EXPECT_EQ(tryOpen(hconn, open.od, MQOO_OUTPUT, list), warned(MQRC_MULTIPLE_REASONS));
    EXPECT_EQ(open.responses[0], fine);
    EXPECT_EQ(open.responses[1], failedFor(MQRC_UNKNOWN_OBJECT_NAME));

    struct {
        MQPMO pmo = {MQPMO_DEFAULT};
        MQBYTE24 ids[2] = {};
        Response responses[2] = {untouched, untouched};
    } put;
    put.pmo.Version = MQPMO_VERSION_2;
    put.pmo.Options = MQPMO_NO_SYNCPOINT;
    put.pmo.RecsPresent = 2;
    put.pmo.PutMsgRecFields = MQPMRF_MSG_ID;
    put.pmo.PutMsgRecOffset = static_cast<MQLONG>(offsetof(decltype(put), ids));
    put.pmo.ResponseRecOffset = static_cast<MQLONG>(offsetof(decltype(put), responses));
    setBytes(put.ids[0], "mine");
    MQMD md = {MQMD_DEFAULT};
    EXPECT_EQ(putInOut(hconn, list, "x", md, put.pmo), warned(MQRC_MULTIPLE_REASONS));
    EXPECT_EQ(put.responses[1], failedFor(MQRC_OPEN_FAILED));
    EXPECT_EQ(bytes(take("L1").md.MsgId), bytes(put.ids[0]));
}

TEST_F(DistributionListTest, FaultyRecordsHaveReasonsOfTheirOwn)
{
    destinations({"L1", "L2"});
    const MQOD good = od;
    const auto expectOpen = [&](MQLONG reason) {
        EXPECT_EQ(openList(), failed(reason));
        od = good;
    };
    od.RecsPresent = -1;
    expectOpen(MQRC_RECS_PRESENT_ERROR);
    od.ObjectType = MQOT_PROCESS;
    expectOpen(MQRC_RECS_PRESENT_ERROR);
    od.ObjectRecPtr = nullptr;
    expectOpen(MQRC_OBJECT_RECORDS_ERROR);
    od.ObjectRecOffset = 400;
    expectOpen(MQRC_OBJECT_RECORDS_ERROR);
    od.ResponseRecOffset = 400;
    expectOpen(MQRC_RESPONSE_RECORDS_ERROR);
    setText(od.ObjectName, "Q1");
    expectOpen(MQRC_OBJECT_NAME_ERROR);
    setText(od.ObjectQMgrName, "QM1");
    expectOpen(MQRC_OBJECT_Q_MGR_NAME_ERROR);
    ASSERT_EQ(openList(), ok);

    MQBYTE24 ids[2] = {};
    const auto expectPut = [&](const MQPMO &pmo, MQLONG reason) {
        EXPECT_EQ(put(hconn, list, "x", {MQMD_DEFAULT}, pmo), failed(reason));
    };
    MQPMO pmo = listPmo();
    pmo.RecsPresent = -1;
    expectPut(pmo, MQRC_RECS_PRESENT_ERROR);
    pmo = listPmo();
    pmo.ResponseRecOffset = 200;
    expectPut(pmo, MQRC_RESPONSE_RECORDS_ERROR);
    pmo = listPmo();
    pmo.PutMsgRecPtr = ids;
    expectPut(pmo, MQRC_PMO_RECORD_FLAGS_ERROR);
    pmo.PutMsgRecFields = 0x40;
    expectPut(pmo, MQRC_PMO_RECORD_FLAGS_ERROR);
    pmo.PutMsgRecFields = MQPMRF_MSG_ID;
    pmo.PutMsgRecOffset = 200;
    expectPut(pmo, MQRC_PUT_MSG_RECORDS_ERROR);
    EXPECT_EQ(depth("L1"), 0);
}

TEST_F(DistributionListTest, OneGroupForAllDestinationsIs2258)
{
    destinations({"L1", "L2"});
    ASSERT_EQ(openList(), ok);
    MQMD md = version2Md();
    md.MsgFlags = MQMF_MSG_IN_GROUP;
    setBytes(md.GroupId, "group");
    EXPECT_EQ(putToList("x", md), failed(MQRC_GROUP_ID_ERROR));
    setBytes(md.GroupId, "");
    EXPECT_EQ(putToList("x", md), ok);
    EXPECT_NE(bytes(take("L1").md.GroupId), bytes(take("L2").md.GroupId));
}

TEST_F(DistributionListTest, OneGroupForAllDestinationsIsAnsweredAtOnceToAnAsynchronousPutToo)
{
    destinations({"L1", "L2"});
    ASSERT_EQ(openList(), ok);
    MQMD md = version2Md();
    md.MsgFlags = MQMF_MSG_IN_GROUP;
    setBytes(md.GroupId, "group");
    MQPMO pmo = listPmo(MQPMO_SYNCPOINT | MQPMO_ASYNC_RESPONSE);
    EXPECT_EQ(put(hconn, list, "x", md, pmo), failed(MQRC_GROUP_ID_ERROR));
    Codes codes;
    MQPUT1(hconn, &od, &md, &pmo, 0, nullptr, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, failed(MQRC_GROUP_ID_ERROR));
    MQSTS sts = {MQSTS_DEFAULT};
    MQSTAT(hconn, MQSTAT_TYPE_ASYNC_ERROR, &sts, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, ok);
    EXPECT_EQ(sts.PutSuccessCount, 0);
    EXPECT_EQ(sts.PutFailureCount, 0);
    EXPECT_EQ(commit(hconn), ok);
    EXPECT_EQ(depth("L1") + depth("L2"), 0);
}

TEST_F(DistributionListTest, ListTakesOutputOnly)
{
    destinations({"L1"});
    for (const MQLONG options : {MQOO_INPUT_SHARED | MQOO_OUTPUT, MQOO_BROWSE, MQOO_INQUIRE | MQOO_OUTPUT, MQOO_SET})
        EXPECT_EQ(openList(options), failed(MQRC_OPTION_NOT_VALID_FOR_TYPE)) << options;
    ASSERT_EQ(openList(), ok);
    EXPECT_EQ(get(hconn, list).codes, failed(MQRC_NOT_OPEN_FOR_INPUT));
    MQLONG selector = MQIA_CURRENT_Q_DEPTH;
    MQLONG value = 0;
    Codes codes;
    MQINQ(hconn, list, 1, &selector, 1, &value, 0, nullptr, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, failed(MQRC_NOT_OPEN_FOR_INQUIRE));
    EXPECT_EQ(close(hconn, list, MQCO_DELETE), failed(MQRC_OPTION_NOT_VALID_FOR_TYPE));
    EXPECT_EQ(close(hconn, list), ok);
}

TEST_F(DistributionListTest, CloseLetsGoOfEveryQueue)
{
    destinations({"L1", "L2"});
    ASSERT_EQ(openList(), ok);
    ASSERT_EQ(close(hconn, list), ok);
    EXPECT_EQ(put(hconn, list, "x"), failed(MQRC_HOBJ_ERROR));
    const MQHOBJ l1 = open(hconn, "L1", MQOO_INQUIRE);
    MQLONG selector = MQIA_OPEN_OUTPUT_COUNT;
    MQLONG count = -1;
    Codes codes;
    MQINQ(hconn, l1, 1, &selector, 1, &count, 0, nullptr, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, ok);
    EXPECT_EQ(count, 0);
}

TEST_F(DistributionListTest, MQPUT1TakesAListToo)
{
    destinations({"L1", "NOSUCH"});
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT);
    char body[] = "x";
    Codes codes;
    MQPUT1(hconn, &od, &md, &pmo, 1, body, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, warned(MQRC_MULTIPLE_REASONS));
    EXPECT_EQ(responses, (std::vector<Response>{fine, failedFor(MQRC_UNKNOWN_OBJECT_NAME)}));
    EXPECT_EQ(od.KnownDestCount, 1);
    EXPECT_EQ(od.InvalidDestCount, 1);
    EXPECT_EQ(take("L1").body, "x");
}

TEST_F(DistributionListTest, MQPUT1ToAListMayBeAsynchronous)
{
    destinations({"L1", "L2"});
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = pmoWith(MQPMO_SYNCPOINT | MQPMO_ASYNC_RESPONSE);
    char body[] = "x";
    Codes codes;
    MQPUT1(hconn, &od, &md, &pmo, 1, body, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, ok);
    EXPECT_EQ(responses, (std::vector<Response>{untouched, untouched})); // nobody knows yet
    ASSERT_EQ(commit(hconn), ok);
    EXPECT_EQ(take("L1").body, "x");
    EXPECT_EQ(take("L2").body, "x");
    MQSTS sts = {MQSTS_DEFAULT};
    MQSTAT(hconn, MQSTAT_TYPE_ASYNC_ERROR, &sts, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, ok);
    EXPECT_EQ(sts.PutSuccessCount, 2);
    EXPECT_EQ(sts.PutFailureCount, 0);
}

// ---- Elsewhere ----

TEST_F(DistributionListTest, DestinationsElsewhereGetAMessageEach)
{
    defineTransmissionQueue("QM2");
    destinations({"L1", "A:QM2", "B:QM2"});
    ASSERT_EQ(openList(), ok);
    EXPECT_EQ(od.KnownDestCount, 1);
    EXPECT_EQ(od.UnknownDestCount, 2);
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = listPmo();
    ASSERT_EQ(putInOut(hconn, list, "x", md, pmo), ok);
    EXPECT_EQ(pmo.UnknownDestCount, 2);
    EXPECT_EQ(depth("QM2"), 2);
    MQXQH header;
    std::memcpy(&header, take("QM2").body.data(), sizeof header);
    EXPECT_EQ(text(header.RemoteQName), "A");
}

TEST_F(DistributionListTest, OneMessageForAllWhereTheTransmissionQueueTakesLists)
{
    defineTransmissionQueue("QM2", MQDL_SUPPORTED);
    destinations({"A:QM2", "L1", "B:QM2"});
    ASSERT_EQ(openList(), ok);
    MQBYTE24 correlIds[3] = {};
    setBytes(correlIds[0], "one");
    setBytes(correlIds[2], "three");
    MQMD md = {MQMD_DEFAULT};
    setText(md.Format, "MQSTR");
    MQPMO pmo = listPmo();
    pmo.PutMsgRecFields = MQPMRF_CORREL_ID;
    pmo.PutMsgRecPtr = correlIds;
    ASSERT_EQ(putInOut(hconn, list, "body", md, pmo), ok);
    EXPECT_EQ(pmo.KnownDestCount, 1);
    EXPECT_EQ(pmo.UnknownDestCount, 2);
    EXPECT_EQ(depth("QM2"), 1);
    const Got got = take("QM2");
    MQXQH header;
    MQDH list2;
    ASSERT_GE(got.body.size(), sizeof header + sizeof list2);
    std::memcpy(&header, got.body.data(), sizeof header);
    EXPECT_EQ(text(header.RemoteQName), "");
    EXPECT_EQ(text(header.RemoteQMgrName), "");
    EXPECT_EQ(text(header.MsgDesc.Format), "MQHDIST");
    const char *at = got.body.data() + sizeof header;
    std::memcpy(&list2, at, sizeof list2);
    EXPECT_EQ(std::string(list2.StrucId, 4), "DH  ");
    EXPECT_EQ(text(list2.Format), "MQSTR");
    EXPECT_EQ(list2.Flags, MQDHF_NONE);
    EXPECT_EQ(list2.RecsPresent, 2);
    EXPECT_EQ(list2.PutMsgRecFields, MQPMRF_MSG_ID | MQPMRF_CORREL_ID);
    EXPECT_EQ(list2.StrucLength, static_cast<MQLONG>(sizeof list2 + 2 * sizeof(MQOR) + 2 * 48));
    MQOR names[2];
    std::memcpy(names, at + list2.ObjectRecOffset, sizeof names);
    EXPECT_EQ(text(names[0].ObjectName), "A");
    EXPECT_EQ(text(names[1].ObjectName), "B");
    EXPECT_EQ(text(names[1].ObjectQMgrName), "QM2");
    const char *records = at + list2.PutMsgRecOffset;
    EXPECT_NE(std::string(records, 24), std::string(records + 48, 24)) << "an identifier for each";
    EXPECT_EQ(std::string(records + 24, 24), bytes(correlIds[0]));
    EXPECT_EQ(std::string(records + 72, 24), bytes(correlIds[2]));
    EXPECT_EQ(got.body.substr(sizeof header + static_cast<std::size_t>(list2.StrucLength)), "body");
}

} // namespace
} // namespace mqrig::qmgr::testing
