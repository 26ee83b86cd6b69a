// Event messages, read from the event queues.

#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "cmqcfc.h"
#include "fixture.h"

namespace mqrig::qmgr::testing {
namespace {

struct Event {
    MQCFH header{};
    std::map<MQLONG, MQLONG> numbers;
    std::map<MQLONG, std::string> texts;
    std::vector<MQLONG> parameters; // in their order
};

Event eventIn(const std::string &body)
{
    Event event;
    if (body.size() < sizeof event.header) return event;
    std::memcpy(&event.header, body.data(), sizeof event.header);
    std::size_t at = sizeof event.header;
    for (MQLONG i = 0; i < event.header.ParameterCount && at + sizeof(MQCFIN) <= body.size(); ++i) {
        MQCFIN number;
        std::memcpy(&number, body.data() + at, sizeof number);
        event.parameters.push_back(number.Parameter);
        if (number.Type == MQCFT_INTEGER) event.numbers[number.Parameter] = number.Value;
        if (number.Type == MQCFT_STRING) {
            MQLONG length = 0;
            std::memcpy(&length, body.data() + at + offsetof(MQCFST, StringLength), sizeof length);
            std::string value = body.substr(at + MQCFST_STRUC_LENGTH_FIXED, static_cast<std::size_t>(length));
            value.erase(value.find_last_not_of(' ') + 1);
            event.texts[number.Parameter] = value;
        }
        at += static_cast<std::size_t>(number.StrucLength);
    }
    EXPECT_EQ(at, body.size());
    return event;
}

class Events : public OpenQueueTest {
public:
    Events()
    {
        alterQueueManager({{MQIA_PERFORMANCE_EVENT, MQEVR_ENABLED},
                           {MQIA_INHIBIT_EVENT, MQEVR_ENABLED},
                           {MQIA_LOCAL_EVENT, MQEVR_ENABLED},
                           {MQIA_REMOTE_EVENT, MQEVR_ENABLED}});
        ofQueueManager = open(hconn, "SYSTEM.ADMIN.QMGR.EVENT", MQOO_INPUT_SHARED);
        ofPerformance = open(hconn, "SYSTEM.ADMIN.PERFM.EVENT", MQOO_INPUT_SHARED);
        drain(hconn, ofQueueManager); // the start
    }

    Event next(MQHOBJ queue)
    {
        const Got got = get(hconn, queue);
        EXPECT_EQ(got.codes, ok);
        EXPECT_EQ(text(got.md.Format), "MQEVENT");
        EXPECT_EQ(got.md.MsgType, MQMT_DATAGRAM);
        EXPECT_EQ(got.md.PutApplType, MQAT_QMGR);
        EXPECT_EQ(text(got.md.PutApplName), "QM1");
        EXPECT_EQ(text(got.md.UserIdentifier), "");
        EXPECT_EQ(text(got.md.ReplyToQMgr), "QM1");
        return eventIn(got.body);
    }
    void expectNone()
    {
        EXPECT_EQ(get(hconn, ofPerformance).codes, failed(MQRC_NO_MSG_AVAILABLE));
        EXPECT_EQ(get(hconn, ofQueueManager).codes, failed(MQRC_NO_MSG_AVAILABLE));
    }
    MQLONG attribute(MQLONG selector)
    {
        MQLONG value = -1;
        Codes codes;
        MQINQ(hconn, q1, 1, &selector, 1, &value, 0, nullptr, &codes.CompCode, &codes.Reason);
        EXPECT_EQ(codes, ok);
        return value;
    }
    void expectSwitches(MQLONG high, MQLONG low, MQLONG full)
    {
        EXPECT_EQ(attribute(MQIA_Q_DEPTH_HIGH_EVENT), high);
        EXPECT_EQ(attribute(MQIA_Q_DEPTH_LOW_EVENT), low);
        EXPECT_EQ(attribute(MQIA_Q_DEPTH_MAX_EVENT), full);
    }
    void fill(int messages)
    {
        for (int i = 0; i < messages; ++i)
            ASSERT_EQ(put(hconn, q1, "x"), ok);
    }

    MQHOBJ ofQueueManager;
    MQHOBJ ofPerformance;
};

constexpr MQLONG on = MQEVR_ENABLED;
constexpr MQLONG off = MQEVR_DISABLED;

TEST_F(Events, AQueueThatFillsToItsHighLimitIsReportedOnce)
{
    alterQueue("Q1", {{MQIA_MAX_Q_DEPTH, 10}, {MQIA_Q_DEPTH_HIGH_EVENT, on}, {MQIA_Q_DEPTH_MAX_EVENT, off}});
    fill(7);
    expectNone();
    fill(1);
    const Event event = next(ofPerformance);
    EXPECT_EQ(event.header.Type, MQCFT_EVENT);
    EXPECT_EQ(event.header.StrucLength, MQCFH_STRUC_LENGTH);
    EXPECT_EQ(event.header.Command, MQCMD_PERFM_EVENT);
    EXPECT_EQ(event.header.CompCode, MQCC_WARNING);
    EXPECT_EQ(event.header.Reason, MQRC_Q_DEPTH_HIGH);
    EXPECT_EQ(event.header.Control, MQCFC_LAST);
    EXPECT_EQ(event.parameters, (std::vector<MQLONG>{MQCA_Q_MGR_NAME, MQCA_BASE_Q_NAME, MQIA_TIME_SINCE_RESET,
                                                     MQIA_HIGH_Q_DEPTH, MQIA_MSG_ENQ_COUNT, MQIA_MSG_DEQ_COUNT}));
    EXPECT_EQ(event.texts.at(MQCA_Q_MGR_NAME), "QM1");
    EXPECT_EQ(event.texts.at(MQCA_BASE_Q_NAME), "Q1");
    EXPECT_EQ(event.numbers.at(MQIA_HIGH_Q_DEPTH), 8);
    EXPECT_EQ(event.numbers.at(MQIA_MSG_ENQ_COUNT), 8);
    EXPECT_EQ(event.numbers.at(MQIA_MSG_DEQ_COUNT), 0);
    expectSwitches(off, on, on);
    fill(1);
    expectNone();
}

TEST_F(Events, HighFullAndLowTakeTurns)
{
    alterQueue("Q1", {{MQIA_MAX_Q_DEPTH, 10}, {MQIA_Q_DEPTH_HIGH_EVENT, on}, {MQIA_Q_DEPTH_MAX_EVENT, off}});
    fill(10);
    EXPECT_EQ(next(ofPerformance).header.Reason, MQRC_Q_DEPTH_HIGH);

    EXPECT_EQ(put(hconn, q1, "x"), failed(MQRC_Q_FULL));
    EXPECT_EQ(put(hconn, q1, "x", {MQMD_DEFAULT}, pmoWith(MQPMO_SYNCPOINT)), failed(MQRC_Q_FULL));
    const Event full = next(ofPerformance);
    EXPECT_EQ(full.header.Reason, MQRC_Q_FULL);
    EXPECT_EQ(full.numbers.at(MQIA_MSG_ENQ_COUNT), 2);
    EXPECT_EQ(full.numbers.at(MQIA_HIGH_Q_DEPTH), 10);
    expectSwitches(off, on, off);

    for (int depthNow = 9; depthNow > 2; --depthNow)
        ASSERT_EQ(get(hconn, q1).codes, ok);
    expectNone();
    ASSERT_EQ(get(hconn, q1, MQGMO_SYNCPOINT).codes, ok);
    const Event low = next(ofPerformance);
    EXPECT_EQ(low.header.Reason, MQRC_Q_DEPTH_LOW);
    EXPECT_EQ(low.numbers.at(MQIA_MSG_DEQ_COUNT), 8);
    expectSwitches(on, off, on);
    ASSERT_EQ(commit(hconn), ok);
    ASSERT_EQ(get(hconn, q1).codes, ok);
    expectNone();

    fill(7);
    EXPECT_EQ(next(ofPerformance).header.Reason, MQRC_Q_DEPTH_HIGH);
}

TEST_F(Events, AnEventStaysWhenItsCauseIsBackedOut)
{
    alterQueue("Q1", {{MQIA_MAX_Q_DEPTH, 1}, {MQIA_Q_DEPTH_HIGH_EVENT, on}});
    ASSERT_EQ(put(hconn, q1, "x", {MQMD_DEFAULT}, pmoWith(MQPMO_SYNCPOINT)), ok);
    EXPECT_EQ(next(ofPerformance).header.Reason, MQRC_Q_DEPTH_HIGH);
    ASSERT_EQ(backOut(hconn), ok);
}

TEST_F(Events, WithoutItsSwitchThereIsNone)
{
    alterQueueManager({{MQIA_PERFORMANCE_EVENT, off}, {MQIA_INHIBIT_EVENT, off}, {MQIA_LOCAL_EVENT, off}});
    alterQueue("Q1", {{MQIA_MAX_Q_DEPTH, 1}, {MQIA_Q_DEPTH_HIGH_EVENT, on}, {MQIA_Q_DEPTH_LOW_EVENT, on}});
    fill(1);
    EXPECT_EQ(put(hconn, q1, "x"), failed(MQRC_Q_FULL));
    ASSERT_EQ(get(hconn, q1).codes, ok);
    EXPECT_EQ(openCodes(hconn, "NOWHERE", MQOO_OUTPUT), failed(MQRC_UNKNOWN_OBJECT_NAME));
    alterQueue("Q1", {{MQIA_INHIBIT_PUT, MQQA_PUT_INHIBITED}, {MQIA_INHIBIT_GET, MQQA_GET_INHIBITED}});
    EXPECT_EQ(put(hconn, q1, "x"), failed(MQRC_PUT_INHIBITED));
    EXPECT_EQ(get(hconn, q1).codes, failed(MQRC_GET_INHIBITED));
    expectNone();
    expectSwitches(on, on, on);
}

TEST_F(Events, InhibitedPutsAndGetsAreReported)
{
    alterQueue("Q1", {{MQIA_INHIBIT_PUT, MQQA_PUT_INHIBITED}, {MQIA_INHIBIT_GET, MQQA_GET_INHIBITED}});
    EXPECT_EQ(put(hconn, q1, "x"), failed(MQRC_PUT_INHIBITED));
    const Event put1 = next(ofQueueManager);
    EXPECT_EQ(put1.header.Command, MQCMD_Q_MGR_EVENT);
    EXPECT_EQ(put1.header.Reason, MQRC_PUT_INHIBITED);
    EXPECT_EQ(put1.parameters, (std::vector<MQLONG>{MQCA_Q_MGR_NAME, MQCA_Q_NAME, MQIA_APPL_TYPE, MQCACF_APPL_NAME}));
    EXPECT_EQ(put1.texts.at(MQCA_Q_NAME), "Q1");
    EXPECT_EQ(put1.numbers.at(MQIA_APPL_TYPE), MQAT_UNIX);
    EXPECT_EQ(put1.texts.at(MQCACF_APPL_NAME), "qmgr_api_tests");
    EXPECT_EQ(get(hconn, q1).codes, failed(MQRC_GET_INHIBITED));
    EXPECT_EQ(next(ofQueueManager).header.Reason, MQRC_GET_INHIBITED);
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = {MQPMO_DEFAULT};
    EXPECT_EQ(QueueManagerTest::put1(hconn, "Q1", "x", md, pmo), failed(MQRC_PUT_INHIBITED));
    EXPECT_EQ(next(ofQueueManager).header.Reason, MQRC_PUT_INHIBITED);
    expectNone();
}

TEST_F(Events, UnknownNamesAreReported)
{
    EXPECT_EQ(openCodes(hconn, "NOWHERE", MQOO_OUTPUT), failed(MQRC_UNKNOWN_OBJECT_NAME));
    const Event event = next(ofQueueManager);
    EXPECT_EQ(event.header.Reason, MQRC_UNKNOWN_OBJECT_NAME);
    EXPECT_EQ(event.texts.at(MQCA_Q_NAME), "NOWHERE");
    EXPECT_FALSE(event.texts.contains(MQCACF_OBJECT_Q_MGR_NAME));

    MQOD od = {MQOD_DEFAULT};
    od.ObjectType = MQOT_PROCESS;
    std::strcpy(od.ObjectName, "NO.PROCESS");
    MQHOBJ hobj = MQHO_NONE;
    EXPECT_EQ(tryOpen(hconn, od, MQOO_INQUIRE, hobj), failed(MQRC_UNKNOWN_OBJECT_NAME));
    EXPECT_EQ(next(ofQueueManager).texts.at(MQCA_PROCESS_NAME), "NO.PROCESS");

    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = {MQPMO_DEFAULT};
    EXPECT_EQ(put1(hconn, "NOWHERE.ELSE", "x", md, pmo), failed(MQRC_UNKNOWN_OBJECT_NAME));
    EXPECT_EQ(next(ofQueueManager).texts.at(MQCA_Q_NAME), "NOWHERE.ELSE");
}

TEST_F(Events, OtherQueueManagersAreReportedWithTheirNames)
{
    MQOD od = {MQOD_DEFAULT};
    std::strcpy(od.ObjectName, "Q1");
    std::strcpy(od.ObjectQMgrName, "QM9");
    MQHOBJ hobj = MQHO_NONE;
    EXPECT_EQ(tryOpen(hconn, od, MQOO_OUTPUT, hobj), failed(MQRC_UNKNOWN_REMOTE_Q_MGR));
    const Event event = next(ofQueueManager);
    EXPECT_EQ(event.header.Reason, MQRC_UNKNOWN_REMOTE_Q_MGR);
    EXPECT_EQ(event.texts.at(MQCACF_OBJECT_Q_MGR_NAME), "QM9");
}

TEST_F(Events, AnAliasIsReportedWithWhatItStandsFor)
{
    defineAlias("A1", "NOWHERE");
    EXPECT_EQ(openCodes(hconn, "A1", MQOO_OUTPUT), failed(MQRC_UNKNOWN_ALIAS_BASE_Q));
    const Event unknown = next(ofQueueManager);
    EXPECT_EQ(unknown.header.Reason, MQRC_UNKNOWN_ALIAS_BASE_Q);
    EXPECT_EQ(unknown.texts.at(MQCA_Q_NAME), "A1");
    EXPECT_EQ(unknown.texts.at(MQCA_BASE_OBJECT_NAME), "NOWHERE");
    EXPECT_FALSE(unknown.numbers.contains(MQIA_Q_TYPE));

    defineAlias("A2", "A1");
    EXPECT_EQ(openCodes(hconn, "A2", MQOO_OUTPUT), failed(MQRC_ALIAS_BASE_Q_TYPE_ERROR));
    const Event wrong = next(ofQueueManager);
    EXPECT_EQ(wrong.header.Reason, MQRC_ALIAS_BASE_Q_TYPE_ERROR);
    EXPECT_EQ(wrong.texts.at(MQCA_BASE_OBJECT_NAME), "A1");
    EXPECT_EQ(wrong.numbers.at(MQIA_Q_TYPE), MQQT_ALIAS);
}

TEST_F(Events, TransmissionQueuesThatCannotBeAreReportedByName)
{
    const auto expectQueue = [&](const char *name, MQLONG reason, const char *transmissionQueue) {
        EXPECT_EQ(openCodes(hconn, name, MQOO_OUTPUT), failed(reason)) << name;
        const Event event = next(ofQueueManager);
        EXPECT_EQ(event.header.Reason, reason) << name;
        EXPECT_EQ(event.texts.at(MQCA_Q_NAME), name);
        EXPECT_EQ(event.texts.at(MQCA_XMIT_Q_NAME), transmissionQueue) << name;
    };
    defineAlias("A1", "Q1");
    defineRemote("R1", "THERE", "QM2", "NOSUCH");
    expectQueue("R1", MQRC_UNKNOWN_XMIT_Q, "NOSUCH");
    defineRemote("R2", "THERE", "QM2", "A1");
    expectQueue("R2", MQRC_XMIT_Q_TYPE_ERROR, "A1");
    defineRemote("R3", "THERE", "Q1", "");
    expectQueue("R3", MQRC_XMIT_Q_USAGE_ERROR, "Q1");

    defineRemote("R4", "THERE", "QM2", "");
    alterQueueManager({}, {{MQCA_DEF_XMIT_Q_NAME, "NOSUCH"}});
    expectQueue("R4", MQRC_UNKNOWN_DEF_XMIT_Q, "NOSUCH");
    alterQueueManager({}, {{MQCA_DEF_XMIT_Q_NAME, "A1"}});
    expectQueue("R4", MQRC_DEF_XMIT_Q_TYPE_ERROR, "A1");
    alterQueueManager({}, {{MQCA_DEF_XMIT_Q_NAME, "Q1"}});
    expectQueue("R4", MQRC_DEF_XMIT_Q_USAGE_ERROR, "Q1");
}

TEST_F(Events, UnknownNamelistsAreReported)
{
    MQOD od = {MQOD_DEFAULT};
    od.ObjectType = MQOT_NAMELIST;
    std::strcpy(od.ObjectName, "NO.LIST");
    MQHOBJ hobj = MQHO_NONE;
    EXPECT_EQ(tryOpen(hconn, od, MQOO_INQUIRE, hobj), failed(MQRC_UNKNOWN_OBJECT_NAME));
    EXPECT_EQ(next(ofQueueManager).texts.at(MQCA_NAMELIST_NAME), "NO.LIST");
}

TEST_F(Events, StartIsReportedOncePerLife)
{
    disconnect(hconn);
    restart();
    hconn = connect();
    MQHCONN second = connect();
    const MQHOBJ events = open(hconn, "SYSTEM.ADMIN.QMGR.EVENT", MQOO_INPUT_SHARED);
    const Event event = next(events);
    EXPECT_EQ(event.header.Reason, MQRC_Q_MGR_ACTIVE);
    EXPECT_EQ(event.texts.at(MQCA_Q_MGR_NAME), "QM1");
    EXPECT_EQ(get(hconn, events).codes, failed(MQRC_NO_MSG_AVAILABLE));
    disconnect(second);

    alterQueueManager({{MQIA_START_STOP_EVENT, off}});
    disconnect(hconn);
    restart();
    hconn = connect();
    EXPECT_EQ(depth("SYSTEM.ADMIN.QMGR.EVENT"), 0);
}

TEST_F(Events, AnEventThatFindsNoPlaceIsLostAndTheCallGoesOn)
{
    alterQueue("SYSTEM.ADMIN.PERFM.EVENT", {{MQIA_INHIBIT_PUT, MQQA_PUT_INHIBITED}});
    alterQueue("Q1", {{MQIA_MAX_Q_DEPTH, 1}, {MQIA_Q_DEPTH_HIGH_EVENT, on}});
    fill(1);
    EXPECT_EQ(depth("SYSTEM.ADMIN.PERFM.EVENT"), 0);
    EXPECT_EQ(depth("SYSTEM.DEAD.LETTER.QUEUE"), 0);
}

} // namespace
} // namespace mqrig::qmgr::testing
