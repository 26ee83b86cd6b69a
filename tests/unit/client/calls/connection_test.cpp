// Connecting: MQCONN, and MQCONNX with what the options link to the MQCNO.
#include "calls_test.h"

#include "mqicalls.h"

#include <cstring>

namespace {

class ConnectionTest : public CallsTest {
protected:
    Written conn()
    {
        return written([&] { return MQSeriesConn(&handle, &params); });
    }
    Written connx()
    {
        return written([&] { return MQSeriesConnX(&handle, &params); });
    }
    void use_urls(const char *list)
    {
        params.OcspUrlList = list;
        params.Sco.AuthInfoRecCount = 1;
    }
    MQHCONN handle = 0;
};

std::string url_of(const MQAIR &air)
{
    return {air.OCSPResponderURL, strnlen(air.OCSPResponderURL, 256)};
}

TEST_F(ConnectionTest, ConnStoresTheHandle)
{
    const Written written = conn();
    EXPECT_EQ(written.status, 0);
    EXPECT_EQ(handle, FakeHconn);
    EXPECT_EQ(written.out + written.err, "");
}

TEST_F(ConnectionTest, ConnHandsOverTheWholeNameField)
{
    conn();
    EXPECT_EQ(fakeMqi.qmgrField, std::string("QM1") + std::string(45, '\0'));
}

TEST_F(ConnectionTest, EmptyNameConnectsToTheDefaultQueueManager)
{
    params.QMgrName = "";
    EXPECT_EQ(conn().status, 0);
    EXPECT_EQ(fakeMqi.qmgrField, std::string(48, '\0'));
}

TEST_F(ConnectionTest, NameOf48CharactersFillsTheField)
{
    const std::string name(48, 'M');
    params.QMgrName = name.c_str();
    EXPECT_EQ(conn().status, 0);
    EXPECT_EQ(fakeMqi.qmgrField, name);
}

TEST_F(ConnectionTest, LongerNameIsRefusedInsteadOfReachingAnotherQueueManager)
{
    const std::string name(49, 'M');
    params.QMgrName = name.c_str();
    const Written written = conn();
    EXPECT_EQ(written.status, 1);
    EXPECT_EQ(written.err, name + " is too long - MQ_Q_NAME_LENGTH is 48(-qm)\n");
    EXPECT_EQ(connx().status, 1);
    EXPECT_EQ(fakeMqi.calls.size(), 0U);
}

TEST_F(ConnectionTest, ConnIsTraced)
{
    params.ApiTrace = 1;
    EXPECT_EQ(conn().out, "[now] MQCONN start qmgr:QM1\n"
                          "[now] MQCONN stop hcon:7 qmgr:QM1 CompCd=00 ReasonCd=00\n");
}

TEST_F(ConnectionTest, ConnWarningIsSuccess)
{
    fakeMqi.answers["MQCONN"].push_back({MQCC_WARNING, MQRC_ALREADY_CONNECTED});
    EXPECT_EQ(conn().status, 0);
}

TEST_F(ConnectionTest, FailedConnNamesTheQueueManagerAndAnswers3)
{
    fakeMqi.answers["MQCONN"].push_back({MQCC_FAILED, MQRC_Q_MGR_NOT_AVAILABLE});
    const Written written = conn();
    EXPECT_EQ(written.status, 3);
    EXPECT_EQ(written.err, "MQCONN fail : QM1 CompCd=02 ReasonCd=2059\n");
}

TEST_F(ConnectionTest, ConnXIsTracedWithTheConnectOptions)
{
    params.ApiTrace = 1;
    params.Cno.Options = MQCNO_HANDLE_SHARE_BLOCK;
    EXPECT_EQ(connx().out, "[now] MQCONNX start qmgr:QM1 Options:0x00000040\n"
                           "[now] MQCONNX stop hcon:7 qmgr:QM1 CompCd=00 ReasonCd=00\n");
}

TEST_F(ConnectionTest, FailedConnXNamesTheQueueManagerAndAnswers3)
{
    fakeMqi.answers["MQCONNX"].push_back({MQCC_FAILED, MQRC_HOST_NOT_AVAILABLE});
    const Written written = connx();
    EXPECT_EQ(written.status, 3);
    EXPECT_EQ(written.err, "MQCONNX fail : QM1 CompCd=02 ReasonCd=2538\n");
}

TEST_F(ConnectionTest, ConnXWarningIsSuccess)
{
    fakeMqi.answers["MQCONNX"].push_back({MQCC_WARNING, MQRC_ALREADY_CONNECTED});
    EXPECT_EQ(connx().status, 0);
}

TEST_F(ConnectionTest, ConnXAlwaysLinksTheTlsOptions)
{
    connx();
    EXPECT_EQ(fakeMqi.cno.SSLConfigPtr, &params.Sco);
}

TEST_F(ConnectionTest, ConnXWithoutClientOrCredentialsLinksNeither)
{
    connx();
    EXPECT_EQ(fakeMqi.cno.ClientConnPtr, nullptr);
    EXPECT_EQ(fakeMqi.cno.SecurityParmsPtr, nullptr);
    EXPECT_EQ(fakeMqi.authInfoRecs.size(), 0U);
}

TEST_F(ConnectionTest, ClientConnectionWithoutChannelUsesTheDefaultChannel)
{
    std::strcpy(params.Cd.ConnectionName, "host(1414)");
    connx();
    EXPECT_EQ(fakeMqi.cno.ClientConnPtr, &params.Cd);
    EXPECT_STREQ(params.Cd.ChannelName, "SYSTEM.DEF.SVRCONN");
}

TEST_F(ConnectionTest, ClientConnectionKeepsTheChannelGiven)
{
    std::strcpy(params.Cd.ConnectionName, "host(1414)");
    std::strcpy(params.Cd.ChannelName, "MY.CHANNEL");
    connx();
    EXPECT_STREQ(params.Cd.ChannelName, "MY.CHANNEL");
}

TEST_F(ConnectionTest, UserIdLinksTheCredentials)
{
    params.Csp.CSPUserIdLength = 4;
    connx();
    EXPECT_EQ(fakeMqi.cno.SecurityParmsPtr, &params.Csp);
}

TEST_F(ConnectionTest, PasswordLinksTheCredentials)
{
    params.Csp.CSPPasswordLength = 4;
    connx();
    EXPECT_EQ(fakeMqi.cno.SecurityParmsPtr, &params.Csp);
}

TEST_F(ConnectionTest, AuthenticationTypeLinksTheCredentials)
{
    params.Csp.AuthenticationType = MQCSP_AUTH_USER_ID_AND_PWD;
    connx();
    EXPECT_EQ(fakeMqi.cno.SecurityParmsPtr, &params.Csp);
}

TEST_F(ConnectionTest, OneUrlUsesTheRecordsOwnAuthenticationRecord)
{
    use_urls("http://one");
    const MQAIR *used = nullptr;
    fakeMqi.during["MQCONNX"] = [&] { used = fakeMqi.cno.SSLConfigPtr->AuthInfoRecPtr; };
    EXPECT_EQ(connx().status, 0);
    EXPECT_EQ(used, &params.Air);
    ASSERT_EQ(fakeMqi.authInfoRecs.size(), 1U);
    EXPECT_EQ(url_of(fakeMqi.authInfoRecs[0]), "http://one");
}

TEST_F(ConnectionTest, ThreeUrlsConnectWithThreeRecordsThatShareTheFieldsGiven)
{
    use_urls("http://one,http://two,http://three");
    params.Air.AuthInfoType = MQAIT_OCSP;
    params.Air.Version = MQAIR_VERSION_2;
    EXPECT_EQ(connx().status, 0);
    ASSERT_EQ(fakeMqi.authInfoRecs.size(), 3U);
    EXPECT_EQ(url_of(fakeMqi.authInfoRecs[0]), "http://one");
    EXPECT_EQ(url_of(fakeMqi.authInfoRecs[1]), "http://two");
    EXPECT_EQ(url_of(fakeMqi.authInfoRecs[2]), "http://three");
    EXPECT_EQ(fakeMqi.authInfoRecs[2].AuthInfoType, MQAIT_OCSP);
    EXPECT_EQ(fakeMqi.authInfoRecs[2].Version, MQAIR_VERSION_2);
}

TEST_F(ConnectionTest, NothingPointsAtTheFreedRecordsAfterTheCall)
{
    use_urls("http://one,http://two");
    connx();
    EXPECT_EQ(params.Sco.AuthInfoRecPtr, &params.Air);
    EXPECT_EQ(params.Sco.AuthInfoRecCount, 1);
}

TEST_F(ConnectionTest, EmptyUrlsInTheListAreKept)
{
    use_urls("http://one,,http://three");
    connx();
    ASSERT_EQ(fakeMqi.authInfoRecs.size(), 3U);
    EXPECT_EQ(url_of(fakeMqi.authInfoRecs[1]), "");
}

TEST_F(ConnectionTest, ShorterUrlLeavesNothingOfALongerOneBehind)
{
    use_urls("http://a-long-first-one,x");
    connx();
    EXPECT_EQ(std::string(fakeMqi.authInfoRecs.at(1).OCSPResponderURL, 256), "x" + std::string(255, '\0'));
}

TEST_F(ConnectionTest, UrlOf256CharactersFillsTheField)
{
    const std::string url(256, 'u');
    use_urls(url.c_str());
    EXPECT_EQ(connx().status, 0);
    EXPECT_EQ(url_of(fakeMqi.authInfoRecs.at(0)), url);
}

TEST_F(ConnectionTest, UrlOf257CharactersIsRefusedBeforeMqconnx)
{
    const std::string url(257, 'u');
    use_urls(url.c_str());
    const Written written = connx();
    EXPECT_EQ(written.status, 1);
    EXPECT_EQ(written.err, "OCSPResponderURL is too long - MQ_AUTH_INFO_OCSP_URL_LENGTH is 256(-ru)\n");
    EXPECT_EQ(fakeMqi.calls.size(), 0U);
}

TEST_F(ConnectionTest, LaterUrlOf257CharactersIsRefusedToo)
{
    const std::string list = "http://one,http://two," + std::string(257, 'u');
    use_urls(list.c_str());
    const Written written = connx();
    EXPECT_EQ(written.status, 1);
    EXPECT_EQ(written.err, "OCSPResponderURL is too long - MQ_AUTH_INFO_OCSP_URL_LENGTH is 256(-ru)\n");
    EXPECT_EQ(fakeMqi.calls.size(), 0U);
}

TEST_F(ConnectionTest, EmptyUrlListIsRefusedBeforeMqconnx)
{
    use_urls("");
    const Written written = connx();
    EXPECT_EQ(written.status, 1);
    EXPECT_EQ(written.err, "invalid OCSPResponderURL \n");
    EXPECT_EQ(fakeMqi.calls.size(), 0U);
}

TEST_F(ConnectionTest, CopyOfTheUrlListThatCannotBeHadIsReported)
{
    const std::string list = "http://" + std::string(700, 'x');
    use_urls(list.c_str());
    const Written written = this->written([&] {
        fail_malloc_of(list.size() + 1);
        return setOCSPPesponderURL(&params);
    });
    EXPECT_EQ(written.status, 1);
    EXPECT_EQ(written.err, "malloc(): Cannot allocate memory\nsetOCSPPesponderURL,#,12: malloc() failed. size=" +
                               std::to_string(list.size() + 1) + "\n");
}

TEST_F(ConnectionTest, FirstRecordThatCannotBeHadIsReported)
{
    use_urls("http://one,http://two");
    const Written written = this->written([&] {
        fail_malloc_of(sizeof(MQAIR));
        return setOCSPPesponderURL(&params);
    });
    EXPECT_EQ(written.status, 1);
    EXPECT_EQ(written.err, "malloc(): Cannot allocate memory\nsetOCSPPesponderURL,#,12: malloc() failed. size=" +
                               std::to_string(sizeof(MQAIR)) + "\n");
}

TEST_F(ConnectionTest, RecordsThatCannotGrowAreReported)
{
    use_urls("http://one,http://two,http://three");
    const Written written = this->written([&] {
        fail_malloc_of(3 * sizeof(MQAIR));
        return setOCSPPesponderURL(&params);
    });
    EXPECT_EQ(written.status, 1);
    EXPECT_EQ(written.err, "realloc(): Cannot allocate memory\nsetOCSPPesponderURL,#,12: realloc() failed. size=" +
                               std::to_string(3 * sizeof(MQAIR)) + "\n");
}

} // namespace
