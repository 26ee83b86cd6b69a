#include "fixture.h"

#include <cmqxc.h>

#include <cstring>
#include <string>
#include <vector>

namespace mqrig::qmgr::testing {
namespace {

using Connect = QueueManagerTest;

TEST_F(Connect, ByNameAndDisconnect)
{
    MQHCONN hconn = MQHC_UNUSABLE_HCONN;
    EXPECT_EQ(tryConnect("QM1", hconn), ok);
    EXPECT_GT(hconn, 0);
    EXPECT_EQ(disconnect(hconn), ok);
    EXPECT_EQ(hconn, MQHC_UNUSABLE_HCONN);
}

TEST_F(Connect, EmptyNameIsTheDefaultQueueManager)
{
    MQHCONN hconn = MQHC_UNUSABLE_HCONN;
    EXPECT_EQ(tryConnect("", hconn), ok);
    EXPECT_GT(hconn, 0);
}

TEST_F(Connect, BlankPaddedNameIsFound)
{
    MQHCONN hconn = MQHC_UNUSABLE_HCONN;
    EXPECT_EQ(tryConnect("QM1" + std::string(45, ' '), hconn), ok);
}

TEST_F(Connect, BlankNameIsTheDefaultQueueManager)
{
    MQHCONN hconn = MQHC_UNUSABLE_HCONN;
    EXPECT_EQ(tryConnect(std::string(48, ' '), hconn), ok);
}

TEST_F(Connect, NameOfFullLengthNeedsNoZero)
{
    const std::string name(48, 'Q');
    createQueueManager(name);
    MQHCONN hconn = MQHC_UNUSABLE_HCONN;
    EXPECT_EQ(tryConnect(name, hconn), ok);
}

TEST_F(Connect, UnknownNameIs2058)
{
    MQHCONN hconn = 7;
    EXPECT_EQ(tryConnect("NOSUCH", hconn), failed(MQRC_Q_MGR_NAME_ERROR));
    EXPECT_EQ(hconn, MQHC_UNUSABLE_HCONN);
}

TEST_F(Connect, ImpossibleNameIs2058)
{
    MQHCONN hconn = 7;
    EXPECT_EQ(tryConnect("../QM1", hconn), failed(MQRC_Q_MGR_NAME_ERROR));
    EXPECT_EQ(tryConnect("*QM1", hconn), failed(MQRC_Q_MGR_NAME_ERROR));
}

TEST_F(Connect, EndedQueueManagerIs2059)
{
    endImmediate();
    MQHCONN hconn = 7;
    EXPECT_EQ(tryConnect("QM1", hconn), failed(MQRC_Q_MGR_NOT_AVAILABLE));
}

TEST_F(Connect, QuiescingQueueManagerIs2161)
{
    connect();
    endQuiesce();
    MQHCONN hconn = 7;
    EXPECT_EQ(tryConnect("QM1", hconn), failed(MQRC_Q_MGR_QUIESCING));
}

TEST_F(Connect, StartedAgainItConnectsAgain)
{
    restart();
    MQHCONN hconn = MQHC_UNUSABLE_HCONN;
    EXPECT_EQ(tryConnect("QM1", hconn), ok);
}

TEST_F(Connect, OneThreadMayHoldManyConnectionsToSeveralQueueManagers)
{
    createQueueManager("QM2");
    const MQHCONN first = connect("QM1");
    const MQHCONN second = connect("QM1");
    const MQHCONN third = connect("QM2");
    EXPECT_NE(first, second);
    EXPECT_NE(second, third);
    EXPECT_EQ(commit(first), ok);
    EXPECT_EQ(commit(second), ok);
    EXPECT_EQ(commit(third), ok);
}

TEST_F(Connect, NullPointersAreRefused)
{
    MQHCONN hconn = 7;
    Codes codes;
    MQCONN(nullptr, &hconn, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, failed(MQRC_Q_MGR_NAME_ERROR));
    MQCHAR48 name = "QM1";
    MQCONN(name, nullptr, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, failed(MQRC_HCONN_ERROR));
    MQCONNX(name, nullptr, &hconn, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, failed(MQRC_CNO_ERROR));
    MQDISC(nullptr, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, failed(MQRC_HCONN_ERROR));
}

TEST_F(Connect, CodesMayBeOmitted)
{
    MQHCONN hconn = MQHC_UNUSABLE_HCONN;
    MQCHAR48 name = "QM1";
    MQCONN(name, &hconn, nullptr, nullptr);
    EXPECT_GT(hconn, 0);
}

TEST_F(Connect, UnknownHandlesAre2018)
{
    const MQHCONN connected = connect();
    for (const MQHCONN wrong : {MQHC_DEF_HCONN, MQHC_UNUSABLE_HCONN, MQHC_UNASSOCIATED_HCONN, connected + 1,
                                connected + (1 << 14), 0x7FFFFFFF, static_cast<MQHCONN>(0x80000000)}) {
        MQHCONN hconn = wrong;
        EXPECT_EQ(disconnect(hconn), failed(MQRC_HCONN_ERROR)) << wrong;
        EXPECT_EQ(commit(wrong), failed(MQRC_HCONN_ERROR)) << wrong;
    }
}

TEST_F(Connect, HandleMeansNothingAfterDisconnect)
{
    const MQHCONN hconn = connect();
    MQHCONN copy = hconn;
    disconnect(copy);
    EXPECT_EQ(commit(hconn), failed(MQRC_HCONN_ERROR));
    const MQHCONN next = connect();
    EXPECT_NE(next, hconn);
    EXPECT_EQ(commit(hconn), failed(MQRC_HCONN_ERROR));
}

// ---- MQCONNX ----

MQCNO cnoOfVersion(MQLONG version)
{
    MQCNO cno = {MQCNO_DEFAULT};
    cno.Version = version;
    return cno;
}

TEST_F(Connect, EveryVersionOfTheOptionsConnects)
{
    for (MQLONG version = 1; version <= MQCNO_CURRENT_VERSION; ++version) {
        MQCNO cno = cnoOfVersion(version);
        MQHCONN hconn = MQHC_UNUSABLE_HCONN;
        EXPECT_EQ(tryConnectX("QM1", cno, hconn), ok) << version;
    }
}

TEST_F(Connect, OtherVersionsAre2139)
{
    for (const MQLONG version : {0, -1, MQCNO_CURRENT_VERSION + 1}) {
        MQCNO cno = cnoOfVersion(version);
        MQHCONN hconn = 7;
        EXPECT_EQ(tryConnectX("QM1", cno, hconn), failed(MQRC_CNO_ERROR)) << version;
        EXPECT_EQ(hconn, MQHC_UNUSABLE_HCONN);
    }
}

TEST_F(Connect, WrongStrucIdIs2139)
{
    MQCNO cno = cnoOfVersion(1);
    std::memcpy(cno.StrucId, "XXXX", 4);
    MQHCONN hconn = 7;
    EXPECT_EQ(tryConnectX("QM1", cno, hconn), failed(MQRC_CNO_ERROR));
}

TEST_F(Connect, UnknownOptionBitsAre2046)
{
    MQCNO cno = cnoOfVersion(1);
    cno.Options = 0x20000000;
    MQHCONN hconn = 7;
    EXPECT_EQ(tryConnectX("QM1", cno, hconn), failed(MQRC_OPTIONS_ERROR));
}

TEST_F(Connect, OptionsThatExcludeEachOtherAre2046)
{
    for (const MQLONG options :
         {MQCNO_SHARED_BINDING | MQCNO_ISOLATED_BINDING, MQCNO_FASTPATH_BINDING | MQCNO_SHARED_BINDING,
          MQCNO_LOCAL_BINDING | MQCNO_CLIENT_BINDING, MQCNO_HANDLE_SHARE_NONE | MQCNO_HANDLE_SHARE_BLOCK,
          MQCNO_HANDLE_SHARE_BLOCK | MQCNO_HANDLE_SHARE_NO_BLOCK,
          MQCNO_ACCOUNTING_MQI_ENABLED | MQCNO_ACCOUNTING_MQI_DISABLED,
          MQCNO_ACCOUNTING_Q_ENABLED | MQCNO_ACCOUNTING_Q_DISABLED, MQCNO_NO_CONV_SHARING | MQCNO_ALL_CONVS_SHARE,
          MQCNO_RECONNECT | MQCNO_RECONNECT_DISABLED, MQCNO_RECONNECT | MQCNO_RECONNECT_Q_MGR,
          MQCNO_ACTIVITY_TRACE_ENABLED | MQCNO_ACTIVITY_TRACE_DISABLED}) {
        MQCNO cno = cnoOfVersion(1);
        cno.Options = options;
        MQHCONN hconn = 7;
        EXPECT_EQ(tryConnectX("QM1", cno, hconn), failed(MQRC_OPTIONS_ERROR)) << std::hex << options;
    }
}

TEST_F(Connect, ReconnectOptionsAreAccepted)
{
    for (const MQLONG options : {MQCNO_RECONNECT, MQCNO_RECONNECT_DISABLED, MQCNO_RECONNECT_Q_MGR}) {
        MQCNO cno = cnoOfVersion(1);
        cno.Options = options;
        MQHCONN hconn = MQHC_UNUSABLE_HCONN;
        EXPECT_EQ(tryConnectX("QM1", cno, hconn), ok);
    }
}

TEST_F(Connect, GeneratedTagIsOfOneConnectionOnly)
{
    std::vector<std::string> tags;
    for (int i = 0; i < 2; ++i) {
        MQCNO cno = {MQCNO_DEFAULT};
        cno.Version = MQCNO_VERSION_3;
        cno.Options = MQCNO_GENERATE_CONN_TAG;
        MQHCONN hconn = MQHC_UNUSABLE_HCONN;
        ASSERT_EQ(tryConnectX("QM1", cno, hconn), ok);
        tags.push_back(bytes(cno.ConnTag));
        EXPECT_EQ(tags.back().substr(0, 4), "MQCT");
        EXPECT_EQ(std::string(tags.back().c_str()).substr(20), "QM1");
    }
    EXPECT_NE(tags[0], tags[1]);
}

TEST_F(Connect, TagIsLeftAloneWhereNoneIsWanted)
{
    MQCNO cno = {MQCNO_DEFAULT};
    cno.Version = MQCNO_VERSION_3;
    cno.ConnTag[0] = 7;
    MQHCONN hconn = MQHC_UNUSABLE_HCONN;
    ASSERT_EQ(tryConnectX("QM1", cno, hconn), ok);
    EXPECT_EQ(cno.ConnTag[0], 7);
}

TEST_F(Connect, TagsThatSerialiseAreOfAnotherPlatform)
{
    for (const MQLONG option : {MQCNO_SERIALIZE_CONN_TAG_Q_MGR, MQCNO_SERIALIZE_CONN_TAG_QSG,
                                MQCNO_RESTRICT_CONN_TAG_Q_MGR, MQCNO_RESTRICT_CONN_TAG_QSG}) {
        MQCNO cno = {MQCNO_DEFAULT};
        cno.Version = MQCNO_VERSION_3;
        cno.Options = option;
        MQHCONN hconn = MQHC_UNUSABLE_HCONN;
        EXPECT_EQ(tryConnectX("QM1", cno, hconn), failed(MQRC_OPTIONS_ERROR));
    }
}

TEST_F(Connect, ClientBindingIs2538)
{
    MQCNO cno = cnoOfVersion(1);
    cno.Options = MQCNO_CLIENT_BINDING;
    MQHCONN hconn = 7;
    EXPECT_EQ(tryConnectX("QM1", cno, hconn), failed(MQRC_HOST_NOT_AVAILABLE));
}

TEST_F(Connect, ChannelWithConnectionNameIs2538)
{
    MQCD cd = {MQCD_CLIENT_CONN_DEFAULT};
    std::strcpy(cd.ConnectionName, "localhost(1414)");
    MQCNO cno = cnoOfVersion(2);
    cno.ClientConnPtr = &cd;
    MQHCONN hconn = 7;
    EXPECT_EQ(tryConnectX("QM1", cno, hconn), failed(MQRC_HOST_NOT_AVAILABLE));
}

TEST_F(Connect, ChannelGivenByOffsetIsReadToo)
{
    struct {
        MQCNO cno = {MQCNO_DEFAULT};
        MQCD cd = {MQCD_CLIENT_CONN_DEFAULT};
    } both;
    std::strcpy(both.cd.ConnectionName, "localhost");
    both.cno.Version = MQCNO_VERSION_2;
    both.cno.ClientConnOffset =
        static_cast<MQLONG>(reinterpret_cast<char *>(&both.cd) - reinterpret_cast<char *>(&both.cno));
    MQHCONN hconn = 7;
    EXPECT_EQ(tryConnectX("QM1", both.cno, hconn), failed(MQRC_HOST_NOT_AVAILABLE));
}

TEST_F(Connect, ChannelWithoutConnectionNameConnects)
{
    MQCD cd = {MQCD_CLIENT_CONN_DEFAULT};
    MQCNO cno = cnoOfVersion(2);
    cno.ClientConnPtr = &cd;
    MQHCONN hconn = MQHC_UNUSABLE_HCONN;
    EXPECT_EQ(tryConnectX("QM1", cno, hconn), ok);
}

TEST_F(Connect, ChannelOfUnknownVersionIs2277)
{
    MQCD cd = {MQCD_CLIENT_CONN_DEFAULT};
    cd.Version = MQCD_CURRENT_VERSION + 1;
    MQCNO cno = cnoOfVersion(2);
    cno.ClientConnPtr = &cd;
    MQHCONN hconn = 7;
    EXPECT_EQ(tryConnectX("QM1", cno, hconn), failed(MQRC_CD_ERROR));
}

TEST_F(Connect, PointerAndOffsetTogetherAre2139)
{
    MQCD cd = {MQCD_CLIENT_CONN_DEFAULT};
    MQCNO cno = cnoOfVersion(2);
    cno.ClientConnPtr = &cd;
    cno.ClientConnOffset = 24;
    MQHCONN hconn = 7;
    EXPECT_EQ(tryConnectX("QM1", cno, hconn), failed(MQRC_CNO_ERROR));
}

TEST_F(Connect, CredentialsAreAccepted)
{
    MQCHAR user[] = "somebody";
    MQCHAR password[] = "secret";
    MQCSP csp = {MQCSP_DEFAULT};
    csp.AuthenticationType = MQCSP_AUTH_USER_ID_AND_PWD;
    csp.CSPUserIdPtr = user;
    csp.CSPUserIdLength = 8;
    csp.CSPPasswordPtr = password;
    csp.CSPPasswordLength = 6;
    MQCNO cno = cnoOfVersion(5);
    cno.SecurityParmsPtr = &csp;
    MQHCONN hconn = MQHC_UNUSABLE_HCONN;
    EXPECT_EQ(tryConnectX("QM1", cno, hconn), ok);
}

TEST_F(Connect, CredentialsMayLieBesideTheOptions)
{
    struct {
        MQCNO cno = cnoOfVersion(5);
        MQCSP csp = {MQCSP_DEFAULT};
    } both;
    both.cno.SecurityParmsOffset =
        static_cast<MQLONG>(reinterpret_cast<char *>(&both.csp) - reinterpret_cast<char *>(&both.cno));
    MQHCONN hconn = MQHC_UNUSABLE_HCONN;
    EXPECT_EQ(tryConnectX("QM1", both.cno, hconn), ok);
    both.csp.AuthenticationType = 99;
    EXPECT_EQ(tryConnectX("QM1", both.cno, hconn), failed(MQRC_CSP_ERROR));
    both.cno.SecurityParmsPtr = &both.csp;
    EXPECT_EQ(tryConnectX("QM1", both.cno, hconn), failed(MQRC_CNO_ERROR));
}

TEST_F(Connect, MalformedCredentialsAre2595)
{
    MQCNO cno = cnoOfVersion(5);
    MQHCONN hconn = 7;
    MQCSP csp = {MQCSP_DEFAULT};
    cno.SecurityParmsPtr = &csp;
    csp.AuthenticationType = 99;
    EXPECT_EQ(tryConnectX("QM1", cno, hconn), failed(MQRC_CSP_ERROR));
    csp = {MQCSP_DEFAULT};
    csp.Version = MQCSP_CURRENT_VERSION + 1;
    EXPECT_EQ(tryConnectX("QM1", cno, hconn), failed(MQRC_CSP_ERROR));
    csp = {MQCSP_DEFAULT};
    csp.StrucId[0] = 'X';
    EXPECT_EQ(tryConnectX("QM1", cno, hconn), failed(MQRC_CSP_ERROR));
}

TEST_F(Connect, ConnectionIdsDifferAndNameTheQueueManager)
{
    MQCNO first = cnoOfVersion(5);
    MQCNO second = cnoOfVersion(5);
    MQHCONN hconn = MQHC_UNUSABLE_HCONN;
    ASSERT_EQ(tryConnectX("QM1", first, hconn), ok);
    ASSERT_EQ(tryConnectX("QM1", second, hconn), ok);
    EXPECT_EQ(bytes(first.ConnectionId).substr(0, 16), "AMQCQM1         ");
    EXPECT_NE(bytes(first.ConnectionId), bytes(second.ConnectionId));
}

TEST_F(Connect, GeneratedTagsDiffer)
{
    MQCNO first = cnoOfVersion(3);
    first.Options = MQCNO_GENERATE_CONN_TAG;
    MQCNO second = first;
    MQHCONN hconn = MQHC_UNUSABLE_HCONN;
    ASSERT_EQ(tryConnectX("QM1", first, hconn), ok);
    ASSERT_EQ(tryConnectX("QM1", second, hconn), ok);
    EXPECT_NE(bytes(first.ConnTag), std::string(128, '\0'));
    EXPECT_NE(bytes(first.ConnTag), bytes(second.ConnTag));
}

TEST_F(Connect, ApplicationNameOfTheOptionsPutsTheMessages)
{
    MQCNO cno = cnoOfVersion(7);
    setText(cno.ApplName, "paymaster");
    MQHCONN hconn = MQHC_UNUSABLE_HCONN;
    ASSERT_EQ(tryConnectX("QM1", cno, hconn), ok);
    const MQHOBJ hobj = open(hconn, "Q1", MQOO_OUTPUT);
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = {MQPMO_DEFAULT};
    ASSERT_EQ(putInOut(hconn, hobj, "hello", md, pmo), ok);
    EXPECT_EQ(text(md.PutApplName), "paymaster");
}

// ---- The end of the queue manager under a connection ----

TEST_F(Connect, AfterImmediateEndCallsAnswer2162Then2009)
{
    const MQHCONN hconn = connect();
    endImmediate();
    EXPECT_EQ(commit(hconn), failed(MQRC_Q_MGR_STOPPING));
    EXPECT_EQ(commit(hconn), failed(MQRC_CONNECTION_BROKEN));
    EXPECT_EQ(commit(hconn), failed(MQRC_CONNECTION_BROKEN));
}

TEST_F(Connect, AfterRestartOldHandlesAnswer2009)
{
    const MQHCONN hconn = connect();
    const MQHOBJ q1 = open(hconn, "Q1", MQOO_OUTPUT);
    restart();
    put(hconn, q1, "first of the old life");
    EXPECT_EQ(put(hconn, q1, "old life"), failed(MQRC_CONNECTION_BROKEN));
}

TEST_F(Connect, DisconnectOfABrokenConnectionFreesTheHandle)
{
    const MQHCONN hconn = connect();
    endImmediate();
    MQHCONN handle = hconn;
    EXPECT_EQ(disconnect(handle).CompCode, MQCC_FAILED);
    EXPECT_EQ(handle, MQHC_UNUSABLE_HCONN);
    EXPECT_EQ(commit(hconn), failed(MQRC_HCONN_ERROR));
}

TEST_F(Connect, QuiescingQueueManagerEndsWithItsLastConnection)
{
    MQHCONN hconn = connect();
    endQuiesce();
    EXPECT_EQ(commit(hconn), ok);
    disconnect(hconn);
    EXPECT_EQ(tryConnect("QM1", hconn), failed(MQRC_Q_MGR_NOT_AVAILABLE));
}

} // namespace
} // namespace mqrig::qmgr::testing
