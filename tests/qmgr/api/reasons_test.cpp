// Reasons that many calls have in common, each of them provoked on every call that answers it.
#include <sqlite3.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "every_call.h"
#include "qmgr/store/attachment.h"

namespace mqrig::qmgr::testing {
namespace {

class EveryCall : public OpenQueueTest {
public:
    // What is stored about the queue becomes something that nobody can read.
    void damageDefinition(const std::string &name) const
    {
        const store::Attached attached = store::attach(storeFolder(), "QM1");
        auto definition = attached.attachment->findDefinition(MQOT_Q, name);
        ASSERT_TRUE(definition);
        definition->bytes = "?";
        ASSERT_EQ(attached.attachment->alter(*definition), success());
    }
};

TEST_F(EveryCall, WantsAConnectionHandle)
{
    MQHCONN ended = connect();
    const MQHCONN number = ended;
    disconnect(ended);
    for (const CallOnConnection &call : callsOnConnections)
        for (const MQHCONN wrong : {MQHC_UNUSABLE_HCONN, MQHC_DEF_HCONN, -7, number})
            EXPECT_EQ(call.make(wrong), failed(MQRC_HCONN_ERROR)) << call.name << ' ' << wrong;
}

TEST_F(EveryCall, TellsOnceThatTheQueueManagerIsEnding)
{
    std::vector<MQHCONN> connections;
    for (std::size_t i = 0; i < callsOnConnections.size(); ++i)
        connections.push_back(connect());
    endImmediate();
    for (std::size_t i = 0; i < callsOnConnections.size(); ++i)
        EXPECT_EQ(callsOnConnections[i].make(connections[i]), failed(MQRC_Q_MGR_STOPPING))
            << callsOnConnections[i].name;
    for (std::size_t i = 0; i + 1 < callsOnConnections.size(); ++i) // MQDISC has taken its connection away
        EXPECT_EQ(callsOnConnections[i].make(connections[i]), failed(MQRC_CONNECTION_BROKEN))
            << callsOnConnections[i].name;
}

TEST_F(EveryCall, MayComeBeforeMQDISCWhichIs2009Then)
{
    endImmediate();
    EXPECT_EQ(commit(hconn), failed(MQRC_Q_MGR_STOPPING));
    EXPECT_EQ(disconnect(hconn), failed(MQRC_CONNECTION_BROKEN));
}

TEST_F(EveryCall, WithAnObjectWantsItsHandle)
{
    MQHOBJ never = 0x7FFF;
    MQMD md = {MQMD_DEFAULT};
    MQGMO gmo = {MQGMO_DEFAULT};
    MQPMO pmo = {MQPMO_DEFAULT};
    MQLONG length = 0;
    MQLONG selector = MQIA_CURRENT_Q_DEPTH;
    MQLONG value = 0;
    for (const MQHOBJ wrong : {MQHO_UNUSABLE_HOBJ, MQHO_NONE, never}) {
        MQHOBJ hobj = wrong;
        EXPECT_EQ(answerOf(MQCLOSE, hconn, &hobj, MQCO_NONE), failed(MQRC_HOBJ_ERROR));
        EXPECT_EQ(answerOf(MQPUT, hconn, wrong, &md, &pmo, 0, nullptr), failed(MQRC_HOBJ_ERROR));
        EXPECT_EQ(answerOf(MQGET, hconn, wrong, &md, &gmo, 0, nullptr, &length), failed(MQRC_HOBJ_ERROR));
        EXPECT_EQ(answerOf(MQINQ, hconn, wrong, 1, &selector, 1, &value, 0, nullptr), failed(MQRC_HOBJ_ERROR));
        EXPECT_EQ(answerOf(MQSET, hconn, wrong, 1, &selector, 1, &value, 0, nullptr), failed(MQRC_HOBJ_ERROR));
    }
}

TEST_F(EveryCall, OnAQueueWhoseDefinitionIsDamagedIs2101)
{
    MQHOBJ forSetting = open(hconn, "Q1", MQOO_SET);
    damageDefinition("Q1");
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT);
    MQLONG inhibit = MQIA_INHIBIT_GET;
    MQLONG depthOf = MQIA_MAX_Q_DEPTH;
    MQLONG value = 0;
    constexpr Codes damaged = failed(MQRC_OBJECT_DAMAGED);
    EXPECT_EQ(openCodes(hconn, "Q1", MQOO_OUTPUT), damaged);
    EXPECT_EQ(put1(hconn, "Q1", "x", md, pmo), damaged);
    EXPECT_EQ(put(hconn, q1, "x"), damaged);
    EXPECT_EQ(get(hconn, q1).codes, damaged);
    EXPECT_EQ(answerOf(MQINQ, hconn, q1, 1, &depthOf, 1, &value, 0, nullptr), damaged);
    EXPECT_EQ(answerOf(MQSET, hconn, forSetting, 1, &inhibit, 1, &value, 0, nullptr), damaged);
}

TEST_F(EveryCall, ThroughAnAliasThatLeadsElsewhereNowIs2041)
{
    defineQueue("Q2");
    defineAlias("A", "Q1");
    const MQHOBJ alias = open(hconn, "A", MQOO_INPUT_SHARED | MQOO_OUTPUT);
    alterText(MQOT_Q, "A", MQCA_BASE_Q_NAME, "Q2");
    EXPECT_EQ(put(hconn, alias, "x"), failed(MQRC_OBJECT_CHANGED));
    EXPECT_EQ(get(hconn, alias).codes, failed(MQRC_OBJECT_CHANGED));
}

TEST_F(EveryCall, ThatAsksAProcessThatIsGoneIs2041)
{
    defineProcess("P");
    MQOD od = {MQOD_DEFAULT};
    od.ObjectType = MQOT_PROCESS;
    setText(od.ObjectName, "P");
    MQHOBJ process = MQHO_NONE;
    ASSERT_EQ(tryOpen(hconn, od, MQOO_INQUIRE, process), ok);
    {
        const store::Attached attached = store::attach(storeFolder(), "QM1");
        ASSERT_EQ(attached.attachment->remove(MQOT_PROCESS, "P", nullptr), success());
    }
    MQLONG selector = MQIA_APPL_TYPE;
    MQLONG value = 0;
    EXPECT_EQ(answerOf(MQINQ, hconn, process, 1, &selector, 1, &value, 0, nullptr), failed(MQRC_OBJECT_CHANGED));
}

class Connecting : public QueueManagerTest {
public:
    // Both ways to connect.
    static void expect(const Codes &codes, const char *name = "QM1")
    {
        MQHCONN hconn = MQHC_UNUSABLE_HCONN;
        MQCNO cno = {MQCNO_DEFAULT};
        EXPECT_EQ(tryConnect(name, hconn), codes);
        EXPECT_EQ(hconn, MQHC_UNUSABLE_HCONN);
        EXPECT_EQ(tryConnectX(name, cno, hconn), codes);
        EXPECT_EQ(hconn, MQHC_UNUSABLE_HCONN);
    }
    void loseLiveState() const { std::filesystem::remove_all(storeFolder() / "QM1" / "live"); }
    std::filesystem::path log() const { return storeFolder() / "QM1" / "log.db"; }
};

TEST_F(Connecting, WithoutAPlaceForTheHandleIs2018)
{
    MQCHAR48 name = "QM1";
    MQCNO cno = {MQCNO_DEFAULT};
    EXPECT_EQ(answerOf(MQCONN, name, nullptr), failed(MQRC_HCONN_ERROR));
    EXPECT_EQ(answerOf(MQCONNX, name, &cno, nullptr), failed(MQRC_HCONN_ERROR));
}

TEST_F(Connecting, WithoutANameIs2058)
{
    MQCNO cno = {MQCNO_DEFAULT};
    MQHCONN hconn = MQHC_UNUSABLE_HCONN;
    EXPECT_EQ(answerOf(MQCONN, nullptr, &hconn), failed(MQRC_Q_MGR_NAME_ERROR));
    EXPECT_EQ(answerOf(MQCONNX, nullptr, &cno, &hconn), failed(MQRC_Q_MGR_NAME_ERROR));
}

TEST_F(Connecting, ToAQueueManagerThatIsNotThereIs2058)
{
    expect(failed(MQRC_Q_MGR_NAME_ERROR), "NONE");
}

TEST_F(Connecting, ToAnEndedQueueManagerIs2059)
{
    endImmediate();
    expect(failed(MQRC_Q_MGR_NOT_AVAILABLE));
}

TEST_F(Connecting, ToAnEndingQueueManagerIs2161)
{
    MQHCONN other = connect();
    endQuiesce();
    expect(failed(MQRC_Q_MGR_QUIESCING));
    disconnect(other);
}

// After the machine's own end the log is all that there is.
TEST_F(Connecting, ToALogThatIsNoneIs2195)
{
    loseLiveState();
    std::filesystem::remove(log().string() + "-wal");
    std::ofstream(log(), std::ios::trunc) << std::string(10000, '?');
    expect(failed(MQRC_UNEXPECTED_ERROR));
}

TEST_F(Connecting, ToALogOfANewerFormatIs2012)
{
    loseLiveState();
    sqlite3 *database = nullptr;
    ASSERT_EQ(sqlite3_open(log().c_str(), &database), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(database, "PRAGMA user_version = 1000000", nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(database);
    expect(failed(MQRC_ENVIRONMENT_ERROR));
}

TEST_F(Connecting, ToAQueueManagerWhoseDefinitionIsDamagedIs2101)
{
    {
        const store::Attached attached = store::attach(storeFolder(), "QM1");
        auto definition = attached.attachment->findDefinition(MQOT_Q_MGR, "QM1");
        ASSERT_TRUE(definition);
        definition->bytes = "?";
        ASSERT_EQ(attached.attachment->alter(*definition), success());
    }
    expect(failed(MQRC_OBJECT_DAMAGED));
}

TEST_F(Connecting, BeyondTheSlotsIs2025)
{
    std::vector<MQHCONN> connections;
    Codes codes;
    for (MQHCONN hconn = MQHC_UNUSABLE_HCONN; (codes = tryConnect("QM1", hconn)) == ok;)
        connections.push_back(hconn);
    EXPECT_EQ(codes, failed(MQRC_MAX_CONNS_LIMIT_REACHED));
    MQHCONN one = MQHC_UNUSABLE_HCONN;
    MQCNO cno = {MQCNO_DEFAULT};
    EXPECT_EQ(tryConnectX("QM1", cno, one), failed(MQRC_MAX_CONNS_LIMIT_REACHED));
    disconnect(connections.front());
    EXPECT_EQ(tryConnect("QM1", one), ok);
}

} // namespace
} // namespace mqrig::qmgr::testing
