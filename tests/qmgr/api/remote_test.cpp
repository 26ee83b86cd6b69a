// Messages for queues of other queue managers, as they lie on a transmission queue.
#include "fixture.h"

#include <cstring>

namespace mqrig::qmgr::testing {
namespace {

class Remote : public QueueManagerTest {
public:
    Remote()
    {
        defineTransmissionQueue("X1");
        defineRemote("R1", "THERE", "QM2", "X1", {{MQIA_DEF_PRIORITY, 4}});
        hconn = connect();
        r1 = open(hconn, "R1", MQOO_OUTPUT | MQOO_SET_ALL_CONTEXT);
        x1 = open(hconn, "X1", MQOO_INPUT_SHARED | MQOO_OUTPUT);
    }

    static MQXQH headerOf(const Got &got)
    {
        MQXQH header = {};
        EXPECT_GE(got.body.size(), sizeof header);
        std::memcpy(&header, got.body.data(), std::min(sizeof header, got.body.size()));
        return header;
    }
    static std::string dataOf(const Got &got) { return got.body.substr(sizeof(MQXQH)); }

    MQHCONN hconn;
    MQHOBJ r1;
    MQHOBJ x1;
};

TEST_F(Remote, MessageLiesBehindAHeaderThatSaysWhereItGoes)
{
    ASSERT_EQ(put(hconn, r1, "body"), ok);
    const Got got = get(hconn, x1);
    ASSERT_EQ(got.codes, ok);
    const MQXQH header = headerOf(got);
    EXPECT_EQ(std::string(header.StrucId, 4), "XQH ");
    EXPECT_EQ(header.Version, MQXQH_VERSION_1);
    EXPECT_EQ(text(header.RemoteQName), "THERE");
    EXPECT_EQ(text(header.RemoteQMgrName), "QM2");
    EXPECT_EQ(dataOf(got), "body");
}

TEST_F(Remote, EmbeddedDescriptorIsTheProgramsInVersion1)
{
    MQMD md = version2Md();
    md.MsgType = MQMT_REQUEST;
    setText(md.Format, "MQSTR");
    setText(md.ReplyToQ, "Q1");
    setBytes(md.CorrelId, "correl");
    MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT);
    ASSERT_EQ(putInOut(hconn, r1, "body", md, pmo), ok);
    const MQMD1 embedded = headerOf(get(hconn, x1)).MsgDesc;
    EXPECT_EQ(std::string(embedded.StrucId, 4), "MD  ");
    EXPECT_EQ(embedded.Version, MQMD_VERSION_1);
    EXPECT_EQ(embedded.MsgType, MQMT_REQUEST);
    EXPECT_EQ(text(embedded.Format), "MQSTR");
    EXPECT_EQ(embedded.Priority, 4);
    EXPECT_EQ(embedded.Persistence, MQPER_NOT_PERSISTENT);
    EXPECT_EQ(bytes(embedded.MsgId), bytes(md.MsgId));
    EXPECT_EQ(bytes(embedded.CorrelId), bytes(md.CorrelId));
    EXPECT_EQ(text(embedded.ReplyToQ), "Q1");
    EXPECT_EQ(text(embedded.ReplyToQMgr), "QM1");
    EXPECT_EQ(embedded.PutApplType, MQAT_UNIX);
    EXPECT_EQ(text(embedded.PutDate), text(md.PutDate));
}

TEST_F(Remote, SeparateDescriptorIsTheQueueManagers)
{
    MQMD md = version2Md();
    md.Expiry = 36000;
    setText(md.Format, "MQSTR");
    setText(md.ReplyToQ, "Q1");
    setBytes(md.CorrelId, "correl");
    MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT);
    ASSERT_EQ(putInOut(hconn, r1, "body", md, pmo), ok);
    const Got got = get(hconn, x1);
    EXPECT_EQ(text(got.md.Format), "MQXMIT");
    EXPECT_EQ(got.md.Encoding, MQENC_NATIVE);
    EXPECT_EQ(got.md.CodedCharSetId, 1208);
    EXPECT_EQ(got.md.Priority, 4);
    EXPECT_NE(bytes(got.md.MsgId), bytes(md.MsgId));
    EXPECT_EQ(bytes(got.md.CorrelId), bytes(md.MsgId));
    EXPECT_EQ(text(got.md.ReplyToQ), "Q1");
    EXPECT_EQ(text(got.md.ReplyToQMgr), "QM1");
    EXPECT_LE(got.md.Expiry, 36000);
    EXPECT_GT(got.md.Expiry, 0);
    EXPECT_EQ(text(got.md.UserIdentifier), text(md.UserIdentifier));
    EXPECT_EQ(got.md.PutApplType, MQAT_QMGR);
    EXPECT_EQ(text(got.md.PutApplName), "QM1");
    EXPECT_EQ(text(got.md.ApplOriginData), "");
    EXPECT_EQ(got.md.MsgSeqNumber, 1);
}

TEST_F(Remote, ProgramsDescriptorIsToldWhatIsEmbedded)
{
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT);
    ASSERT_EQ(putInOut(hconn, r1, "body", md, pmo), ok);
    EXPECT_EQ(text(md.Format), "");
    EXPECT_EQ(md.Priority, 4);
    EXPECT_EQ(md.PutApplType, MQAT_UNIX);
    EXPECT_EQ(bytes(headerOf(get(hconn, x1)).MsgDesc.MsgId), bytes(md.MsgId));
}

TEST_F(Remote, FieldsOfVersion2TravelInAnExtension)
{
    MQMD md = version2Md();
    setText(md.Format, "MQSTR");
    setBytes(md.GroupId, "group");
    md.MsgSeqNumber = 3;
    md.MsgFlags = MQMF_MSG_IN_GROUP;
    ASSERT_EQ(put(hconn, r1, "body", md), ok);
    const Got got = get(hconn, x1);
    EXPECT_EQ(text(headerOf(got).MsgDesc.Format), "MQHMDE");
    EXPECT_EQ(headerOf(got).MsgDesc.Encoding, MQENC_NATIVE);
    MQMDE extension = {};
    ASSERT_EQ(dataOf(got).size(), sizeof extension + 4);
    std::memcpy(&extension, dataOf(got).data(), sizeof extension);
    EXPECT_EQ(std::string(extension.StrucId, 4), "MDE ");
    EXPECT_EQ(extension.StrucLength, MQMDE_LENGTH_2);
    EXPECT_EQ(text(extension.Format), "MQSTR");
    EXPECT_EQ(bytes(extension.GroupId), bytes(md.GroupId));
    EXPECT_EQ(extension.MsgSeqNumber, 3);
    EXPECT_EQ(extension.MsgFlags, MQMF_MSG_IN_GROUP);
    EXPECT_EQ(dataOf(got).substr(sizeof extension), "body");
    EXPECT_EQ(got.md.MsgFlags, MQMF_NONE);
    EXPECT_EQ(bytes(got.md.GroupId), std::string(24, '\0'));
}

TEST_F(Remote, PersistenceSurvivesARestart)
{
    ASSERT_EQ(put(hconn, r1, "keep", persistentMd()), ok);
    ASSERT_EQ(put(hconn, r1, "lose"), ok);
    restart();
    hconn = connect();
    x1 = open(hconn, "X1", MQOO_INPUT_SHARED);
    EXPECT_EQ(dataOf(get(hconn, x1)), "keep");
    EXPECT_EQ(get(hconn, x1).codes, failed(MQRC_NO_MSG_AVAILABLE));
}

TEST_F(Remote, PutUnderSyncpointWaitsForTheCommit)
{
    ASSERT_EQ(put(hconn, r1, "gone", {MQMD_DEFAULT}, pmoWith(MQPMO_SYNCPOINT)), ok);
    EXPECT_EQ(get(hconn, x1).codes, failed(MQRC_NO_MSG_AVAILABLE));
    ASSERT_EQ(backOut(hconn), ok);
    EXPECT_EQ(depth("X1"), 0);
    ASSERT_EQ(put(hconn, r1, "there", {MQMD_DEFAULT}, pmoWith(MQPMO_SYNCPOINT)), ok);
    ASSERT_EQ(commit(hconn), ok);
    EXPECT_EQ(dataOf(get(hconn, x1)), "there");
}

TEST_F(Remote, LengthLimitsCountTheHeader)
{
    alterQueue("X1", {{MQIA_MAX_MSG_LENGTH, static_cast<MQLONG>(sizeof(MQXQH)) + 10}});
    EXPECT_EQ(put(hconn, r1, std::string(10, 'x')), ok);
    EXPECT_EQ(put(hconn, r1, std::string(11, 'x')), failed(MQRC_MSG_TOO_BIG_FOR_Q));
}

TEST_F(Remote, FullTransmissionQueueIs2053)
{
    alterQueue("X1", {{MQIA_MAX_Q_DEPTH, 1}});
    EXPECT_EQ(put(hconn, r1, "first"), ok);
    EXPECT_EQ(put(hconn, r1, "second"), failed(MQRC_Q_FULL));
}

TEST_F(Remote, BitsReservedForElsewhereAreRefusedHere)
{
    const MQHOBJ q1 = open(hconn, "Q1", MQOO_OUTPUT);
    EXPECT_EQ(MQRO_ACCEPT_UNSUP_IF_XMIT_MASK & 0x00038000, 0x00038000);
    EXPECT_EQ(MQMF_ACCEPT_UNSUP_IF_XMIT_MASK & 0x00080000, 0x00080000);
    for (const MQLONG bit : {0x00008000, 0x00010000, 0x00020000}) {
        MQMD md = {MQMD_DEFAULT};
        md.Report = bit;
        EXPECT_EQ(put(hconn, r1, "x", md), ok) << std::hex << bit;
        EXPECT_EQ(put(hconn, q1, "x", md), failed(MQRC_REPORT_OPTIONS_ERROR)) << std::hex << bit;
        EXPECT_EQ(put(hconn, x1, "x", md), failed(MQRC_REPORT_OPTIONS_ERROR)) << std::hex << bit;
    }
    MQMD md = version2Md();
    md.MsgFlags = 0x00080000;
    EXPECT_EQ(put(hconn, r1, "x", md), ok);
    EXPECT_EQ(put(hconn, q1, "x", md), failed(MQRC_MSG_FLAGS_ERROR));
}

TEST_F(Remote, NoReportIsAskedForOnTheTransmissionQueue)
{
    MQMD md = {MQMD_DEFAULT};
    md.Report = 0x00010000 | MQRO_PASS_CORREL_ID;
    ASSERT_EQ(put(hconn, r1, "x", md), ok);
    const Got got = get(hconn, x1);
    EXPECT_EQ(got.md.Report, MQRO_PASS_CORREL_ID);
    EXPECT_EQ(headerOf(got).MsgDesc.Report, 0x00010000 | MQRO_PASS_CORREL_ID);
}

TEST_F(Remote, AliasOfARemoteQueueGoesThereWithItsOwnDefaults)
{
    defineAlias("A1", "R1", {{MQIA_DEF_PRIORITY, 6}});
    const MQHOBJ a1 = open(hconn, "A1", MQOO_OUTPUT);
    ASSERT_EQ(put(hconn, a1, "body"), ok);
    const Got got = get(hconn, x1);
    EXPECT_EQ(text(headerOf(got).RemoteQName), "THERE");
    EXPECT_EQ(got.md.Priority, 6);
}

TEST_F(Remote, ReplyToQueueAliasSaysWhereAnswersGo)
{
    defineRemote("ANSWERS", "REPLY.HERE", "QM7", "X1");
    const MQHOBJ q1 = open(hconn, "Q1", MQOO_OUTPUT | MQOO_INPUT_SHARED);
    MQMD md = {MQMD_DEFAULT};
    setText(md.ReplyToQ, "ANSWERS");
    ASSERT_EQ(put(hconn, q1, "x", md), ok);
    const Got got = get(hconn, q1);
    EXPECT_EQ(text(got.md.ReplyToQ), "REPLY.HERE");
    EXPECT_EQ(text(got.md.ReplyToQMgr), "QM7");
    setText(md.ReplyToQMgr, "QM1");
    ASSERT_EQ(put(hconn, q1, "x", md), ok);
    EXPECT_EQ(text(get(hconn, q1).md.ReplyToQ), "ANSWERS");
}

TEST_F(Remote, ProgramsOwnHeaderIsChecked)
{
    MQXQH header = {MQXQH_DEFAULT};
    MQMD md = {MQMD_DEFAULT};
    setText(md.Format, "MQXMIT");
    const auto bytesOf = [&header] { return std::string(reinterpret_cast<const char *>(&header), sizeof header); };
    EXPECT_EQ(put(hconn, x1, bytesOf(), md), ok);
    EXPECT_EQ(put(hconn, x1, bytesOf().substr(1), md), failed(MQRC_XQH_ERROR));
    EXPECT_EQ(put(hconn, x1, "", md), failed(MQRC_XQH_ERROR));
    header.Version = 2;
    EXPECT_EQ(put(hconn, x1, bytesOf(), md), failed(MQRC_XQH_ERROR));
    header.Version = MQXQH_VERSION_1;
    header.StrucId[0] = 'x';
    EXPECT_EQ(put(hconn, x1, bytesOf(), md), failed(MQRC_XQH_ERROR));
}

} // namespace
} // namespace mqrig::qmgr::testing
