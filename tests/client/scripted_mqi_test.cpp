// The scripted library itself: what it refuses, what it fills, what it records. Every test has a process of its own,
// because the library reads its script once.
#include <cmqc.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <unistd.h>

namespace {

using ::testing::HasSubstr;
using ::testing::Not;

struct Codes {
    MQLONG CompCode = -1;
    MQLONG Reason = -1;
};

class ScriptedMqi : public ::testing::Test {
protected:
    void SetUp() override
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "scripted-mqi-XXXXXX").string();
        ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
        folder_ = pattern;
    }
    void TearDown() override { std::filesystem::remove_all(folder_); }

    void script(const std::string &rules)
    {
        std::ofstream(folder_ / "script") << rules;
        ::setenv("MQRIG_SCRIPT", (folder_ / "script").c_str(), 1);
        ::setenv("MQRIG_RECORD", (folder_ / "record").c_str(), 1);
    }

    std::string record() const
    {
        std::ifstream file(folder_ / "record");
        return {std::istreambuf_iterator<char>(file), {}};
    }

    void connect()
    {
        char name[MQ_Q_MGR_NAME_LENGTH] = "QM1";
        MQCONN(name, &hconn_, &codes_.CompCode, &codes_.Reason);
    }

    void open(MQLONG options = MQOO_OUTPUT)
    {
        MQOD od = {MQOD_DEFAULT};
        std::strcpy(od.ObjectName, "Q1");
        MQOPEN(hconn_, &od, options, &hobj_, &codes_.CompCode, &codes_.Reason);
    }

    void put(MQMD &md, MQPMO &pmo, const char *text = "hello")
    {
        std::string body = text;
        MQPUT(hconn_, hobj_, &md, &pmo, static_cast<MQLONG>(body.size()), body.data(), &codes_.CompCode, &codes_.Reason);
    }

    void get(MQGMO &gmo, MQLONG bufferLength = 100)
    {
        MQGET(hconn_, hobj_, &md_, &gmo, bufferLength, buffer_.data(), &dataLength_, &codes_.CompCode, &codes_.Reason);
    }

    void expect(MQLONG CompCode, MQLONG Reason) const
    {
        EXPECT_EQ(codes_.CompCode, CompCode);
        EXPECT_EQ(codes_.Reason, Reason);
    }

    std::filesystem::path folder_;
    MQHCONN hconn_ = 77;
    MQHOBJ hobj_ = 77;
    MQMD md_ = {MQMD_DEFAULT};
    MQPMO pmo_ = {MQPMO_DEFAULT};
    std::array<char, 100> buffer_{};
    MQLONG dataLength_ = -1;
    Codes codes_;
};

TEST_F(ScriptedMqi, WithoutAScriptEverythingSucceeds)
{
    ::unsetenv("MQRIG_SCRIPT");
    put(md_, pmo_);
    expect(MQCC_OK, MQRC_NONE);
    MQGMO gmo = {MQGMO_DEFAULT};
    get(gmo);
    expect(MQCC_OK, MQRC_NONE);
    EXPECT_EQ(dataLength_, 0);
}

TEST_F(ScriptedMqi, RefusesAnUnknownConnection)
{
    script("");
    open();
    expect(MQCC_FAILED, MQRC_HCONN_ERROR);
    EXPECT_THAT(record(), HasSubstr("MQOPEN Hconn=77 Options=0x00000010 CompCode=2 Reason=2018 refused"));
}

TEST_F(ScriptedMqi, RefusesAConnectionThatWasEnded)
{
    script("");
    connect();
    MQHCONN copy = hconn_;
    MQDISC(&hconn_, &codes_.CompCode, &codes_.Reason);
    EXPECT_EQ(hconn_, MQHC_UNUSABLE_HCONN);
    MQCMIT(copy, &codes_.CompCode, &codes_.Reason);
    expect(MQCC_FAILED, MQRC_HCONN_ERROR);
}

TEST_F(ScriptedMqi, RefusesAnObjectThatWasClosed)
{
    script("");
    connect();
    open();
    const MQHOBJ copy = hobj_;
    MQCLOSE(hconn_, &hobj_, MQCO_NONE, &codes_.CompCode, &codes_.Reason);
    EXPECT_EQ(hobj_, MQHO_UNUSABLE_HOBJ);
    hobj_ = copy;
    put(md_, pmo_);
    expect(MQCC_FAILED, MQRC_HOBJ_ERROR);
}

TEST_F(ScriptedMqi, RefusesAnObjectOfAnotherConnection)
{
    script("");
    connect();
    open();
    connect();
    put(md_, pmo_);
    expect(MQCC_FAILED, MQRC_HOBJ_ERROR);
}

TEST_F(ScriptedMqi, RefusesAWrongStructureId)
{
    script("MQPUT *: ok");
    connect();
    open();
    md_.StrucId[0] = 'X';
    put(md_, pmo_);
    expect(MQCC_FAILED, MQRC_MD_ERROR);
}

TEST_F(ScriptedMqi, RefusesAVersionThatDoesNotExist)
{
    script("");
    connect();
    open();
    pmo_.Version = 4;
    put(md_, pmo_);
    expect(MQCC_FAILED, MQRC_PMO_ERROR);
}

TEST_F(ScriptedMqi, RefusesANegativeLength)
{
    script("");
    connect();
    open();
    MQPUT(hconn_, hobj_, &md_, &pmo_, -1, buffer_.data(), &codes_.CompCode, &codes_.Reason);
    expect(MQCC_FAILED, MQRC_BUFFER_LENGTH_ERROR);
}

TEST_F(ScriptedMqi, RefusesAMissingStructure)
{
    script("");
    connect();
    MQOPEN(hconn_, nullptr, MQOO_OUTPUT, &hobj_, &codes_.CompCode, &codes_.Reason);
    expect(MQCC_FAILED, MQRC_OD_ERROR);
}

TEST_F(ScriptedMqi, RefusesAMessageHandleThatIsNotTheConnections)
{
    script("");
    connect();
    open();
    pmo_.Version = MQPMO_VERSION_3;
    pmo_.OriginalMsgHandle = 5;
    put(md_, pmo_);
    expect(MQCC_FAILED, MQRC_HMSG_ERROR);
}

TEST_F(ScriptedMqi, RefusesResponderCountWithoutRecords)
{
    script("");
    char name[MQ_Q_MGR_NAME_LENGTH] = "";
    MQSCO sco = {MQSCO_DEFAULT};
    sco.AuthInfoRecCount = 1;
    MQCNO cno = {MQCNO_DEFAULT};
    cno.Version = MQCNO_VERSION_4;
    cno.SSLConfigPtr = &sco;
    MQCONNX(name, &cno, &hconn_, &codes_.CompCode, &codes_.Reason);
    expect(MQCC_FAILED, MQRC_AUTH_INFO_REC_ERROR);
}

TEST_F(ScriptedMqi, FieldsBeyondTheVersionAreNeitherRecordedNorWritten)
{
    script("MQPUT 1: ok MQMD.Offset=9 MQMD.Expiry=3");
    connect();
    open();
    md_.MsgSeqNumber = 44;
    md_.Offset = 55;
    put(md_, pmo_);
    EXPECT_EQ(md_.Offset, 55);
    EXPECT_EQ(md_.Expiry, 3);
    EXPECT_THAT(record(), Not(HasSubstr("MsgSeqNumber")));
}

TEST_F(ScriptedMqi, TheFirstRuleThatFitsAnswers)
{
    script("MQPUT 2: fail 2053\nMQPUT 1-2: warn 2104\nMQPUT *: ok\n");
    connect();
    open();
    put(md_, pmo_);
    expect(MQCC_WARNING, 2104);
    put(md_, pmo_);
    expect(MQCC_FAILED, 2053);
    put(md_, pmo_);
    expect(MQCC_OK, MQRC_NONE);
}

TEST_F(ScriptedMqi, AQueueWithoutRulesIsEmpty)
{
    script("");
    connect();
    open(MQOO_INPUT_AS_Q_DEF);
    MQGMO gmo = {MQGMO_DEFAULT};
    get(gmo);
    expect(MQCC_FAILED, MQRC_NO_MSG_AVAILABLE);
}

TEST_F(ScriptedMqi, AMessageLongerThanTheBufferIsCutAsTheOptionsSay)
{
    script("MQGET *: text \"abcdef\"");
    connect();
    open(MQOO_INPUT_AS_Q_DEF);
    MQGMO gmo = {MQGMO_DEFAULT};
    get(gmo, 4);
    expect(MQCC_WARNING, MQRC_TRUNCATED_MSG_FAILED);
    gmo.Options = MQGMO_ACCEPT_TRUNCATED_MSG;
    get(gmo, 4);
    expect(MQCC_WARNING, MQRC_TRUNCATED_MSG_ACCEPTED);
    EXPECT_EQ(dataLength_, 6);
    EXPECT_EQ(std::string(buffer_.data(), 5), std::string("abcd\0", 5));
}

TEST_F(ScriptedMqi, EveryMessageHasAnIdOfItsOwn)
{
    script("");
    connect();
    open();
    MQMD other = {MQMD_DEFAULT};
    put(md_, pmo_);
    put(other, pmo_);
    EXPECT_NE(std::memcmp(md_.MsgId, other.MsgId, sizeof md_.MsgId), 0);
}

TEST_F(ScriptedMqi, RecordsAnOpenWithItsRecordsAndFillsTheResponses)
{
    script("MQOPEN 1: warn 2136 response 0:0 response 2:2085");
    connect();
    MQOR records[2] = {{MQOR_DEFAULT}, {MQOR_DEFAULT}};
    std::strcpy(records[1].ObjectName, "Q2");
    MQRR responses[2] = {{7, 7}, {7, 7}};
    MQOD od = {MQOD_DEFAULT};
    od.Version = MQOD_VERSION_2;
    od.RecsPresent = 2;
    od.ObjectRecPtr = records;
    od.ResponseRecPtr = responses;
    MQOPEN(hconn_, &od, MQOO_OUTPUT, &hobj_, &codes_.CompCode, &codes_.Reason);
    expect(MQCC_WARNING, MQRC_MULTIPLE_REASONS);
    EXPECT_EQ(responses[0].Reason, 0);
    EXPECT_EQ(responses[1].Reason, 2085);
    EXPECT_THAT(record(), HasSubstr("    MQOR[1].ObjectName=\"Q2\"\n"));
}

MQLONG seenReason = 0;
void onEvent(MQHCONN, PMQVOID, PMQVOID, PMQVOID, MQCBC *context) { seenReason = context->Reason; }

TEST_F(ScriptedMqi, AnEventReachesTheHandlerBeforeTheCallReturns)
{
    script("MQCMIT 1: ok event 2544:1000");
    connect();
    MQCBD cbd = {MQCBD_DEFAULT};
    cbd.CallbackType = MQCBT_EVENT_HANDLER;
    cbd.CallbackFunction = reinterpret_cast<MQPTR>(onEvent);
    MQCB(hconn_, MQOP_REGISTER, &cbd, MQHO_NONE, nullptr, nullptr, &codes_.CompCode, &codes_.Reason);
    MQCMIT(hconn_, &codes_.CompCode, &codes_.Reason);
    EXPECT_EQ(seenReason, 2544);
}

TEST_F(ScriptedMqi, AFaultyScriptEndsTheProcessWithItsLine)
{
    for (const char *rule : {"MQBOGUS 1: ok", "MQPUT x: ok", "MQPUT 1 ok", "MQPUT 1: bogus", "MQPUT 1: fail",
                             "MQGET 1: text hello", "MQGET 1: hex 0", "MQGET 1: MQMD.Bogus=1", "MQGET 1: MQMD.Expiry=x",
                             "MQOPEN 1: response 2"}) {
        script(rule);
        EXPECT_DEATH(connect(), "scripted_mqi: .*script:1: ") << rule;
    }
}

} // namespace
