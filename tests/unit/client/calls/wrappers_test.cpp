// The wrappers of the MQI calls: what reaches the MQI, what is written, and what comes back.
#include "calls_test.h"

#include "mqicalls.h"

#include <cstring>

namespace {

class WrappersTest : public CallsTest {
protected:
    void answer(const char *call, MQLONG CompCode, MQLONG Reason)
    {
        fakeMqi.answers[call].push_back({CompCode, Reason});
    }
    Written put(const char *body = "hello")
    {
        return written(
            [&, body] { return MQSeriesPut(hconn, FakeHobj, &params, body, static_cast<MQLONG>(std::strlen(body))); });
    }
    Written open_output()
    {
        return written([&] { return MQSeriesQOpenForOutput(hconn, &hobj, &params); });
    }
    Written open_input()
    {
        return written([&] { return MQSeriesQOpenForInput(hconn, &hobj, &params); });
    }
    Written open_object(MQLONG options = MQOO_INQUIRE)
    {
        return written([&, options] { return MQSeriesQOpen(hconn, &hobj, &params, options); });
    }
    Written close()
    {
        return written([&] { return MQSeriesQClose(hconn, &hobj, &params); });
    }
    /// Two destinations, as `-or Q1,Q2:QM2` builds them.
    void use_distribution_list()
    {
        std::strcpy(objects[0].ObjectName, "Q1");
        std::strcpy(objects[1].ObjectName, "Q2");
        std::strcpy(objects[1].ObjectQMgrName, "QM2");
        responses[1] = {MQCC_FAILED, MQRC_UNKNOWN_OBJECT_NAME};
        params.Od.ObjectRecPtr = objects;
        params.ResponseRecs = responses;
        params.DestCount = 2;
    }

    MQHOBJ hobj = 0;
    MQOR objects[2] = {};
    MQRR responses[2] = {};
};

constexpr char Name48[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789.ABCDEFGHIJK";
static_assert(sizeof Name48 == 49);
constexpr char Name49[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789.ABCDEFGHIJKL";

// ---- MQPUT ----

TEST_F(WrappersTest, PutHandsBufferLengthAndHandlesToTheMqi)
{
    EXPECT_EQ(put("hello").status, 0);
    EXPECT_EQ(fakeMqi.bodies, std::vector<std::string>{"hello"});
    EXPECT_EQ(fakeMqi.hconn, hconn);
    EXPECT_EQ(fakeMqi.hobj, FakeHobj);
}

TEST_F(WrappersTest, PutIsSilentWithoutTrace)
{
    const Written written = put();
    EXPECT_EQ(written.out + written.err, "");
}

TEST_F(WrappersTest, PutPassesTheResponseRecordsOfADistributionList)
{
    use_distribution_list();
    put();
    EXPECT_EQ(fakeMqi.pmo.ResponseRecPtr, responses);
}

TEST_F(WrappersTest, PutClearsTheResponseRecordsWithoutADistributionList)
{
    params.Pmo.ResponseRecPtr = responses;
    put();
    EXPECT_EQ(fakeMqi.pmo.ResponseRecPtr, nullptr);
}

TEST_F(WrappersTest, PutTracesStartAndStop)
{
    params.ApiTrace = 1;
    params.Pmo.Options = MQPMO_SYNCPOINT;
    answer("MQPUT", MQCC_OK, MQRC_NONE);
    EXPECT_EQ(put().out, "[now] MQPUT start hcon:7 hobj:11 Options:0x00000002\n"
                         "[now] MQPUT stop hcon:7 hobj:11 CompCd=00 ReasonCd=00\n");
}

TEST_F(WrappersTest, FailedPutIsReportedOnStandardErrorAndAnswers3)
{
    answer("MQPUT", MQCC_FAILED, MQRC_Q_FULL);
    const Written written = put();
    EXPECT_EQ(written.status, 3);
    EXPECT_EQ(written.err, "MQPUT fail : Q1 CompCd=02 ReasonCd=2053\n");
    EXPECT_EQ(written.out, "");
}

TEST_F(WrappersTest, PutWithoutQueueNamePrintsNullName)
{
    params.QName = nullptr;
    answer("MQPUT", MQCC_FAILED, MQRC_HOBJ_ERROR);
    EXPECT_EQ(put().err, "MQPUT fail : (null) CompCd=02 ReasonCd=2019\n");
}

TEST_F(WrappersTest, PutWarningWithReasonIsAFailure)
{
    answer("MQPUT", MQCC_WARNING, MQRC_PRIORITY_EXCEEDS_MAXIMUM);
    EXPECT_EQ(put().status, 3);
}

TEST_F(WrappersTest, PutWarningWithoutReasonIsSuccess)
{
    answer("MQPUT", MQCC_WARNING, MQRC_NONE);
    EXPECT_EQ(put().status, 0);
}

TEST_F(WrappersTest, PutWithMultipleReasonsListsTheDestinationsAndSucceeds)
{
    use_distribution_list();
    answer("MQPUT", MQCC_WARNING, MQRC_MULTIPLE_REASONS);
    const Written written = put();
    EXPECT_EQ(written.status, 0);
    EXPECT_EQ(written.out, "MQRC_MULTIPLE_REASONS:MQPUT for Q1() returned CompCode=0, Reason=0\n"
                           "MQRC_MULTIPLE_REASONS:MQPUT for Q2(QM2) returned CompCode=2, Reason=2085\n");
    EXPECT_EQ(written.err, "");
}

TEST_F(WrappersTest, FailedPutToADistributionListNeverStopsTheRun)
{
    use_distribution_list();
    answer("MQPUT", MQCC_FAILED, MQRC_HOBJ_ERROR);
    const Written written = put();
    EXPECT_EQ(written.status, 0);
    EXPECT_EQ(written.out, "MQPUT for Q1() returned CompCode=0, Reason=0\n"
                           "MQPUT for Q2(QM2) returned CompCode=2, Reason=2085\n");
    EXPECT_EQ(written.err, "MQPUT fail : CompCd=02 ReasonCd=2019\n");
}

TEST_F(WrappersTest, ResponsesMoveToStandardErrorWithRaw)
{
    use_distribution_list();
    params.OutputForm = OutputFormRaw;
    answer("MQPUT", MQCC_WARNING, MQRC_MULTIPLE_REASONS);
    const Written written = put();
    EXPECT_EQ(written.out, "");
    EXPECT_NE(written.err.find("MQRC_MULTIPLE_REASONS:MQPUT for Q1()"), std::string::npos);
}

TEST_F(WrappersTest, ResponseNamesEndAtTheirFieldOf48Characters)
{
    use_distribution_list();
    std::memcpy(objects[0].ObjectName, Name48, 48);
    std::memcpy(objects[0].ObjectQMgrName, Name48, 48);
    params.DestCount = 1;
    const Written written = written_by([&] { print_responses("MQPUT", &params); });
    EXPECT_EQ(written.out, std::string("MQPUT for ") + Name48 + "(" + Name48 + ") returned CompCode=0, Reason=0\n");
}

TEST_F(WrappersTest, ResponsesOfNoDestinationsPrintNothing)
{
    EXPECT_EQ(written_by([&] { print_responses("MQPUT", &params); }).out, "");
}

// ---- MQPUT1 ----

TEST_F(WrappersTest, Put1UsesDescriptorsOfItsOwn)
{
    params.Od.ObjectType = MQOT_PROCESS;
    params.Pmo.Options = MQPMO_SYNCPOINT;
    params.Md.Priority = 5;
    EXPECT_EQ(written([&] { return MQSeriesPut1(hconn, &params, "abc", 3); }).status, 0);
    EXPECT_STREQ(fakeMqi.od.ObjectName, "Q1");
    EXPECT_EQ(fakeMqi.od.ObjectType, MQOT_Q);
    EXPECT_EQ(fakeMqi.pmo.Options, 8196);
    EXPECT_EQ(fakeMqi.md.Priority, 5);
}

TEST_F(WrappersTest, Put1TracesNamesAndOptions)
{
    params.ApiTrace = 1;
    EXPECT_EQ(written([&] { return MQSeriesPut1(hconn, &params, "abc", 3); }).out,
              "[now] MQPUT1 start hcon:7 ObjectName:Q1 ObjectQMgrName: Options:0x00002004\n"
              "[now] MQPUT1 stop hcon:7 ObjectName:Q1 ObjectQMgrName: CompCd=00 ReasonCd=00\n");
}

TEST_F(WrappersTest, FailedPut1IsReportedAndAnswers3)
{
    answer("MQPUT1", MQCC_FAILED, MQRC_UNKNOWN_OBJECT_NAME);
    const Written written = this->written([&] { return MQSeriesPut1(hconn, &params, "abc", 3); });
    EXPECT_EQ(written.status, 3);
    EXPECT_EQ(written.err, "MQPUT1 fail : Q1 CompCd=02 ReasonCd=2085\n");
}

// ---- MQOPEN for output ----

TEST_F(WrappersTest, OpenForOutputNamesTheQueueAndAddsTheOutputOption)
{
    params.OpenOptions = MQOO_FAIL_IF_QUIESCING;
    EXPECT_EQ(open_output().status, 0);
    EXPECT_STREQ(fakeMqi.od.ObjectName, "Q1");
    EXPECT_EQ(fakeMqi.openOptions, MQOO_FAIL_IF_QUIESCING | MQOO_OUTPUT);
    EXPECT_EQ(hobj, FakeHobj);
}

TEST_F(WrappersTest, OpenForOutputTracesTheHandleAsTheCallLeftIt)
{
    params.ApiTrace = 1;
    std::strcpy(params.Od.ObjectQMgrName, "QM2");
    EXPECT_EQ(open_output().out,
              "[now] MQOPEN start hcon:7 ObjectName:Q1 ObjectQMgrName:QM2 Options:0x00000010\n"
              "[now] MQOPEN stop hcon:7 hobj:11 ObjectName:Q1 ObjectQMgrName:QM2 CompCd=00 ReasonCd=00\n");
}

TEST_F(WrappersTest, OpenForOutputWarningWithReason0IsSuccess)
{
    answer("MQOPEN", MQCC_WARNING, MQRC_NONE);
    EXPECT_EQ(open_output().status, 0);
}

TEST_F(WrappersTest, OpenForOutputFailedWithReason0IsAFailure)
{
    answer("MQOPEN", MQCC_FAILED, MQRC_NONE);
    const Written written = open_output();
    EXPECT_EQ(written.status, 3);
    EXPECT_EQ(written.err, "MQOPEN fail : QM1 Q1 CompCd=02 ReasonCd=00\n");
}

TEST_F(WrappersTest, OpenForOutputWarningWithReasonIsAFailure)
{
    answer("MQOPEN", MQCC_WARNING, MQRC_UNKNOWN_OBJECT_NAME);
    EXPECT_EQ(open_output().status, 3);
}

TEST_F(WrappersTest, OpenForOutputWithMultipleReasonsListsTheDestinationsAndSucceeds)
{
    use_distribution_list();
    answer("MQOPEN", MQCC_WARNING, MQRC_MULTIPLE_REASONS);
    const Written written = open_output();
    EXPECT_EQ(written.status, 0);
    EXPECT_EQ(written.out, "MQRC_MULTIPLE_REASONS:MQOPEN for Q1() returned CompCode=0, Reason=0\n"
                           "MQRC_MULTIPLE_REASONS:MQOPEN for Q2(QM2) returned CompCode=2, Reason=2085\n");
}

TEST_F(WrappersTest, FailedOpenOfADistributionListIsNotAFailureOfTheCaller)
{
    use_distribution_list();
    answer("MQOPEN", MQCC_FAILED, MQRC_OD_ERROR);
    const Written written = open_output();
    EXPECT_EQ(written.status, 0);
    EXPECT_EQ(written.out, "MQOPEN for Q1() returned CompCode=0, Reason=0\n"
                           "MQOPEN for Q2(QM2) returned CompCode=2, Reason=2085\n");
    EXPECT_EQ(written.err, "");
}

TEST_F(WrappersTest, ResponseRecordsReachTheObjectDescriptorBeforeTheOpen)
{
    use_distribution_list();
    open_output();
    EXPECT_EQ(fakeMqi.od.ResponseRecPtr, responses);
}

// ---- Object names ----

TEST_F(WrappersTest, NameOf48CharactersFillsTheField)
{
    params.QName = params.OutputQName = Name48;
    EXPECT_EQ(open_output().status, 0);
    EXPECT_EQ(std::string(fakeMqi.od.ObjectName, 48), Name48);
}

TEST_F(WrappersTest, NameOf48CharactersIsTracedWithoutWhatFollowsItsField)
{
    params.ApiTrace = 1;
    params.QName = params.InputQName = Name48;
    std::strcpy(params.Od.ObjectQMgrName, "QM2");
    EXPECT_EQ(open_input().out, std::string("[now] MQOPEN start hcon:7 ObjectName:") + Name48 +
                                    " Options:0x00000001\n[now] MQOPEN stop hcon:7 hobj:11 ObjectName:" + Name48 +
                                    " CompCd=00 ReasonCd=00\n");
}

TEST_F(WrappersTest, ShorterNameLeavesNothingOfALongerOneBehind)
{
    std::memset(params.Od.ObjectName, 'X', sizeof params.Od.ObjectName);
    open_output();
    EXPECT_EQ(std::string(fakeMqi.od.ObjectName, 48), std::string("Q1") + std::string(46, '\0'));
}

TEST_F(WrappersTest, LongerOutputNameIsRefusedWithoutMqopen)
{
    params.QName = params.OutputQName = Name49;
    const Written written = open_output();
    EXPECT_EQ(written.status, 1);
    EXPECT_EQ(written.err, std::string(Name49) + " is too long - MQ_Q_NAME_LENGTH is 48(-q)\n");
    EXPECT_EQ(fakeMqi.calls.size(), 0U);
}

TEST_F(WrappersTest, LongerNameOfThePairedOutputQueueQuotesOq)
{
    params.QName = Name49;
    params.OutputQName = nullptr;
    EXPECT_EQ(open_output().err, std::string(Name49) + " is too long - MQ_Q_NAME_LENGTH is 48(-oq)\n");
}

TEST_F(WrappersTest, LongerInputNameIsRefusedWithoutMqopen)
{
    params.QName = params.InputQName = Name49;
    const Written written = open_input();
    EXPECT_EQ(written.status, 1);
    EXPECT_EQ(written.err, std::string(Name49) + " is too long - MQ_Q_NAME_LENGTH is 48(-q)\n");
    EXPECT_EQ(fakeMqi.calls.size(), 0U);
}

TEST_F(WrappersTest, LongerNameOfThePairedInputQueueQuotesIq)
{
    params.QName = Name49;
    params.InputQName = nullptr;
    EXPECT_EQ(open_input().err, std::string(Name49) + " is too long - MQ_Q_NAME_LENGTH is 48(-iq)\n");
}

TEST_F(WrappersTest, LongerProcessNameQuotesP)
{
    params.QName = nullptr;
    params.ProcessName = Name49;
    EXPECT_EQ(open_object().err, std::string(Name49) + " is too long - MQ_Q_NAME_LENGTH is 48(-p)\n");
}

TEST_F(WrappersTest, LongerNamelistNameQuotesNl)
{
    params.QName = nullptr;
    params.NamelistName = Name49;
    const Written written = open_object();
    EXPECT_EQ(written.status, 1);
    EXPECT_EQ(written.err, std::string(Name49) + " is too long - MQ_Q_NAME_LENGTH is 48(-nl)\n");
}

TEST_F(WrappersTest, NameOfAMegabyteIsRefused)
{
    const std::string name(1 << 20, 'Q');
    params.QName = params.OutputQName = name.c_str();
    EXPECT_EQ(open_output().status, 1);
}

// ---- MQOPEN for input ----

TEST_F(WrappersTest, OpenForInputAddsInputAsQDefWithoutAPurpose)
{
    EXPECT_EQ(open_input().status, 0);
    EXPECT_EQ(fakeMqi.openOptions, MQOO_INPUT_AS_Q_DEF);
}

TEST_F(WrappersTest, BrowseModeAloneOpensForBrowsingOnly)
{
    params.BrowseMode = 1;
    open_input();
    EXPECT_EQ(fakeMqi.openOptions, MQOO_BROWSE);
}

TEST_F(WrappersTest, BrowseModeWithInputSharedOpensForBoth)
{
    params.BrowseMode = 2;
    params.OpenOptions = MQOO_INPUT_SHARED;
    open_input();
    EXPECT_EQ(fakeMqi.openOptions, MQOO_BROWSE | MQOO_INPUT_SHARED);
}

TEST_F(WrappersTest, OptionsThatNameNoPurposeStillGetInputAsQDef)
{
    params.OpenOptions = MQOO_SAVE_ALL_CONTEXT;
    open_input();
    EXPECT_EQ(fakeMqi.openOptions, MQOO_SAVE_ALL_CONTEXT | MQOO_INPUT_AS_Q_DEF);
}

class PurposeOptionTest : public WrappersTest, public testing::WithParamInterface<MQLONG> {};

TEST_P(PurposeOptionTest, IsKeptAsGiven)
{
    params.OpenOptions = GetParam();
    open_input();
    EXPECT_EQ(fakeMqi.openOptions, GetParam());
}

INSTANTIATE_TEST_SUITE_P(Each, PurposeOptionTest,
                         testing::Values(MQOO_INPUT_AS_Q_DEF, MQOO_INPUT_SHARED, MQOO_INPUT_EXCLUSIVE, MQOO_BROWSE,
                                         MQOO_INQUIRE, MQOO_SET));

TEST_F(WrappersTest, FailedOpenForInputNamesTheQueue)
{
    answer("MQOPEN", MQCC_FAILED, MQRC_UNKNOWN_OBJECT_NAME);
    const Written written = open_input();
    EXPECT_EQ(written.status, 3);
    EXPECT_EQ(written.err, "MQOPEN fail : Q1 CompCd=02 ReasonCd=2085\n");
}

TEST_F(WrappersTest, OpenForInputWarningWithReason0IsSuccess)
{
    answer("MQOPEN", MQCC_WARNING, MQRC_NONE);
    EXPECT_EQ(open_input().status, 0);
}

// ---- MQOPEN for inquiry and setting ----

TEST_F(WrappersTest, OpenForInquiryTakesTheQueueFirst)
{
    params.ProcessName = "P1";
    params.NamelistName = "NL1";
    EXPECT_EQ(open_object().status, 0);
    EXPECT_STREQ(fakeMqi.od.ObjectName, "Q1");
    EXPECT_EQ(fakeMqi.od.ObjectType, MQOT_Q);
    EXPECT_EQ(fakeMqi.openOptions, MQOO_INQUIRE);
}

TEST_F(WrappersTest, OpenForInquiryTakesTheProcessWithoutAQueue)
{
    params.QName = nullptr;
    params.ProcessName = "P1";
    params.NamelistName = "NL1";
    open_object();
    EXPECT_STREQ(fakeMqi.od.ObjectName, "P1");
    EXPECT_EQ(fakeMqi.od.ObjectType, MQOT_PROCESS);
}

TEST_F(WrappersTest, OpenForInquiryTakesTheNamelistLast)
{
    params.QName = nullptr;
    params.NamelistName = "NL1";
    open_object();
    EXPECT_STREQ(fakeMqi.od.ObjectName, "NL1");
    EXPECT_EQ(fakeMqi.od.ObjectType, MQOT_NAMELIST);
}

TEST_F(WrappersTest, OpenForInquiryWithoutANameOpensTheQueueManager)
{
    params.QName = nullptr;
    open_object();
    EXPECT_STREQ(fakeMqi.od.ObjectName, "");
    EXPECT_EQ(fakeMqi.od.ObjectType, MQOT_Q_MGR);
}

TEST_F(WrappersTest, ObjectTypeGivenByNameHoldsForInquiry)
{
    params.QName = nullptr;
    params.ObjectTypeGiven = 1;
    params.Od.ObjectType = MQOT_NAMELIST;
    open_object();
    EXPECT_EQ(fakeMqi.od.ObjectType, MQOT_NAMELIST);
}

TEST_F(WrappersTest, OpenForSettingAddsTheSetOptionToThoseGiven)
{
    params.OpenOptions = MQOO_FAIL_IF_QUIESCING;
    open_object(MQOO_SET);
    EXPECT_EQ(fakeMqi.openOptions, MQOO_FAIL_IF_QUIESCING | MQOO_SET);
}

TEST_F(WrappersTest, FailedOpenOfAnObjectNamesQueueManagerAndObject)
{
    params.QName = nullptr;
    params.ProcessName = "P1";
    answer("MQOPEN", MQCC_FAILED, MQRC_UNKNOWN_OBJECT_NAME);
    const Written written = open_object();
    EXPECT_EQ(written.status, 3);
    EXPECT_EQ(written.err, "MQOPEN fail : QM1 P1 CompCd=02 ReasonCd=2085\n");
}

TEST_F(WrappersTest, FailedOpenOfTheQueueManagerNamesAnEmptyObject)
{
    params.QName = nullptr;
    answer("MQOPEN", MQCC_FAILED, MQRC_NOT_AUTHORIZED);
    EXPECT_EQ(open_object().err, "MQOPEN fail : QM1  CompCd=02 ReasonCd=2035\n");
}

// ---- MQCLOSE, MQDISC ----

TEST_F(WrappersTest, CloseHandsOverTheCloseOptions)
{
    hobj = FakeHobj;
    params.CloseOptions = MQCO_DELETE;
    EXPECT_EQ(close().status, 0);
    EXPECT_EQ(fakeMqi.closeOptions, MQCO_DELETE);
    EXPECT_EQ(fakeMqi.hobj, FakeHobj);
}

TEST_F(WrappersTest, CloseTracesTheHandleAsTheCallLeftIt)
{
    hobj = FakeHobj;
    params.ApiTrace = 1;
    EXPECT_EQ(close().out, "[now] MQCLOSE start hcon:7 hobj:11 Options:0x00000000\n"
                           "[now] MQCLOSE stop hcon:7 hobj:-1 CompCd=00 ReasonCd=00\n");
}

TEST_F(WrappersTest, FailedCloseIsReportedAndAnswers3)
{
    answer("MQCLOSE", MQCC_FAILED, MQRC_HOBJ_ERROR);
    const Written written = close();
    EXPECT_EQ(written.status, 3);
    EXPECT_EQ(written.err, "MQCLOSE fail : CompCd=02 ReasonCd=2019\n");
}

TEST_F(WrappersTest, CloseReleasesADistributionListFirst)
{
    params.ObjectRecList = "Q1,Q2";
    params.Od.ObjectRecPtr = std::calloc(2, sizeof(MQOR));
    params.ResponseRecs = static_cast<MQRR *>(std::calloc(2, sizeof(MQRR)));
    params.DestCount = 2;
    std::size_t countAtClose = 99;
    fakeMqi.during["MQCLOSE"] = [&] { countAtClose = static_cast<std::size_t>(params.DestCount); };
    close();
    EXPECT_EQ(countAtClose, 0U);
    EXPECT_EQ(params.ResponseRecs, nullptr);
    EXPECT_EQ(params.Od.ObjectRecPtr, nullptr);
}

TEST_F(WrappersTest, DisconnectTracesTheHandleAsTheCallLeftIt)
{
    MQHCONN connection = FakeHconn;
    params.ApiTrace = 1;
    const Written written = this->written([&] { return MQSeriesDisconn(&connection, &params); });
    EXPECT_EQ(written.status, 0);
    EXPECT_EQ(written.out, "[now] MQDISC start hcon:7\n[now] MQDISC stop hcon:-1 CompCd=00 ReasonCd=00\n");
}

TEST_F(WrappersTest, DisconnectWarningIsSuccess)
{
    MQHCONN connection = FakeHconn;
    answer("MQDISC", MQCC_WARNING, MQRC_BACKED_OUT);
    const Written written = this->written([&] { return MQSeriesDisconn(&connection, &params); });
    EXPECT_EQ(written.status, 0);
    EXPECT_EQ(written.err, "");
}

TEST_F(WrappersTest, FailedDisconnectIsReportedAndAnswers3)
{
    MQHCONN connection = FakeHconn;
    answer("MQDISC", MQCC_FAILED, MQRC_HCONN_ERROR);
    const Written written = this->written([&] { return MQSeriesDisconn(&connection, &params); });
    EXPECT_EQ(written.status, 3);
    EXPECT_EQ(written.err, "MQDISC fail : CompCd=02 ReasonCd=2018\n");
}

TEST_F(WrappersTest, SkippedDisconnectMakesNoCallAndNoTrace)
{
    MQHCONN connection = FakeHconn;
    params.SkipDisc = 1;
    params.ApiTrace = 1;
    const Written written = this->written([&] { return MQSeriesDisconn(&connection, &params); });
    EXPECT_EQ(written.status, 0);
    EXPECT_EQ(written.out, "");
    EXPECT_EQ(fakeMqi.count("MQDISC"), 0);
    EXPECT_EQ(connection, FakeHconn);
}

// ---- MQCMIT, MQBACK ----

TEST_F(WrappersTest, CommitReportsSuccessOnStandardOutput)
{
    const Written written = this->written([&] { return MQSeriesCommit(hconn, &params); });
    EXPECT_EQ(written.status, 0);
    EXPECT_EQ(written.out, "MQCMIT success : CompCd=00 ReasonCd=00\n");
}

TEST_F(WrappersTest, CommitReportsSuccessOnStandardErrorWithRaw)
{
    params.OutputForm = OutputFormRaw;
    const Written written = this->written([&] { return MQSeriesCommit(hconn, &params); });
    EXPECT_EQ(written.out, "");
    EXPECT_EQ(written.err, "MQCMIT success : CompCd=00 ReasonCd=00\n");
}

TEST_F(WrappersTest, CommitWarningIsPartialCompletionAndFailure)
{
    answer("MQCMIT", MQCC_WARNING, MQRC_OUTCOME_MIXED);
    const Written written = this->written([&] { return MQSeriesCommit(hconn, &params); });
    EXPECT_EQ(written.status, 3);
    EXPECT_EQ(written.err, "MQCMIT partially completed : CompCd=01 ReasonCd=2123\n");
}

TEST_F(WrappersTest, FailedCommitIsReportedAndAnswers3)
{
    answer("MQCMIT", MQCC_FAILED, MQRC_CONNECTION_BROKEN);
    const Written written = this->written([&] { return MQSeriesCommit(hconn, &params); });
    EXPECT_EQ(written.status, 3);
    EXPECT_EQ(written.err, "MQCMIT fail : CompCd=02 ReasonCd=2009\n");
}

TEST_F(WrappersTest, CommitWithAnUnknownCompletionIsReportedAndAnswers3)
{
    answer("MQCMIT", 5, 17);
    const Written written = this->written([&] { return MQSeriesCommit(hconn, &params); });
    EXPECT_EQ(written.status, 3);
    EXPECT_EQ(written.err, "MQCMIT unknown status : CompCd=05 ReasonCd=17\n");
}

TEST_F(WrappersTest, CommitIsTraced)
{
    params.ApiTrace = 1;
    EXPECT_EQ(written([&] { return MQSeriesCommit(hconn, &params); }).out,
              "[now] MQCMIT start hcon:7\n[now] MQCMIT stop hcon:7 CompCd=00 ReasonCd=00\n"
              "MQCMIT success : CompCd=00 ReasonCd=00\n");
}

TEST_F(WrappersTest, BackoutReportsSuccessOnStandardOutput)
{
    const Written written = this->written([&] { return MQSeriesBack(hconn, &params); });
    EXPECT_EQ(written.status, 0);
    EXPECT_EQ(written.out, "MQBACK success : CompCd=00 ReasonCd=00\n");
}

TEST_F(WrappersTest, BackoutWarningIsAFailure)
{
    answer("MQBACK", MQCC_WARNING, MQRC_OUTCOME_PENDING);
    const Written written = this->written([&] { return MQSeriesBack(hconn, &params); });
    EXPECT_EQ(written.status, 3);
    EXPECT_EQ(written.err, "MQBACK fail : CompCd=01 ReasonCd=2124\n");
}

TEST_F(WrappersTest, BackoutIsTraced)
{
    params.ApiTrace = 1;
    EXPECT_EQ(written([&] { return MQSeriesBack(hconn, &params); }).out,
              "[now] MQBACK start hcon:7\n[now] MQBACK stop hcon:7 CompCd=00 ReasonCd=00\n"
              "MQBACK success : CompCd=00 ReasonCd=00\n");
}

// ---- MQINQ, MQSET ----

TEST_F(WrappersTest, InquiryHandsTheArraysOver)
{
    MQLONG selectors[] = {MQIA_CURRENT_Q_DEPTH, MQCA_Q_DESC};
    MQLONG values[1] = {};
    char text[64] = {};
    params.ApiTrace = 1;
    const Written written =
        this->written([&] { return MQSeriesInquiry(hconn, FakeHobj, &params, 2, selectors, 1, values, 64, text); });
    EXPECT_EQ(written.status, 0);
    EXPECT_EQ(fakeMqi.selectors, (std::vector<MQLONG>{MQIA_CURRENT_Q_DEPTH, MQCA_Q_DESC}));
    EXPECT_EQ(written.out, "[now] MQINQ start hcon:7 Selector count:2 IntAttrCount:1\n"
                           "[now] MQINQ stop hcon:7 CompCd=00 ReasonCd=00\n");
}

TEST_F(WrappersTest, FailedInquiryNamesTheObject)
{
    params.QName = nullptr;
    params.NamelistName = "NL1";
    MQLONG selector = MQIA_NAME_COUNT;
    answer("MQINQ", MQCC_WARNING, MQRC_SELECTOR_NOT_FOR_TYPE);
    const Written written =
        this->written([&] { return MQSeriesInquiry(hconn, FakeHobj, &params, 1, &selector, 0, nullptr, 0, nullptr); });
    EXPECT_EQ(written.status, 3);
    EXPECT_EQ(written.err, "MQINQ fail : QM1 NL1 CompCd=01 ReasonCd=2068\n");
}

TEST_F(WrappersTest, FailedSetNamesQueueManagerAndQueue)
{
    MQLONG selector = MQIA_INHIBIT_GET;
    MQLONG value = 1;
    params.ApiTrace = 1;
    answer("MQSET", MQCC_FAILED, MQRC_SELECTOR_ERROR);
    const Written written =
        this->written([&] { return MQSeriesSet(hconn, FakeHobj, &params, 1, &selector, 1, &value, 0, nullptr); });
    EXPECT_EQ(written.status, 3);
    EXPECT_EQ(written.out, "[now] MQSET start hcon:7 Selector count:1 IntAttrCount:1\n"
                           "[now] MQSET stop hcon:7 CompCd=02 ReasonCd=2067\n");
    EXPECT_EQ(written.err, "MQSET fail : QM1 Q1 CompCd=02 ReasonCd=2067\n");
}

// ---- Message handles and properties ----

TEST_F(WrappersTest, CreateMhStoresTheHandleInTheRecord)
{
    params.ApiTrace = 1;
    const Written written = this->written([&] { return MQSeriesCreateMH(hconn, &params); });
    EXPECT_EQ(written.status, 0);
    EXPECT_EQ(params.MsgHandle, FakeHmsg);
    EXPECT_EQ(written.out, "[now] MQCRTMH start hcon:7\n[now] MQCRTMH stop hcon:7 CompCd=00 ReasonCd=00\n");
}

TEST_F(WrappersTest, FailedCreateMhNamesTheQueueManager)
{
    answer("MQCRTMH", MQCC_FAILED, MQRC_CMHO_ERROR);
    const Written written = this->written([&] { return MQSeriesCreateMH(hconn, &params); });
    EXPECT_EQ(written.status, 3);
    EXPECT_EQ(written.err, "MQCRTMH fail : QM1 CompCd=02 ReasonCd=2461\n");
}

TEST_F(WrappersTest, DeleteMhDeletesTheHandleOfTheRecord)
{
    params.MsgHandle = FakeHmsg;
    params.ApiTrace = 1;
    const Written written = this->written([&] { return MQSeriesDeleteMH(hconn, &params); });
    EXPECT_EQ(written.status, 0);
    EXPECT_EQ(fakeMqi.messageHandle, FakeHmsg);
    EXPECT_EQ(written.out, "[now] MQDLTMH start hcon:7\n[now] MQDLTMH stop hcon:7 CompCd=00 ReasonCd=00\n");
}

TEST_F(WrappersTest, FailedDeleteMhNamesTheQueueManager)
{
    answer("MQDLTMH", MQCC_FAILED, MQRC_HMSG_ERROR);
    const Written written = this->written([&] { return MQSeriesDeleteMH(hconn, &params); });
    EXPECT_EQ(written.status, 3);
    EXPECT_EQ(written.err, "MQDLTMH fail : QM1 CompCd=02 ReasonCd=2460\n");
}

class PropertyInquiryTest : public WrappersTest {
protected:
    Written inquire()
    {
        return written([&] {
            return MQSeriesInqMP(hconn, &params, sizeof name, name, &type, sizeof value, value, &dataLength, &CompCode,
                                 &Reason);
        });
    }
    char name[256];
    MQBYTE value[1000];
    MQLONG type = 0;
    MQLONG dataLength = 0;
    MQLONG CompCode = -1;
    MQLONG Reason = -1;
};

TEST_F(PropertyInquiryTest, AsksForEveryName)
{
    EXPECT_EQ(inquire().status, 0);
    EXPECT_EQ(fakeMqi.propertyName, "%");
    EXPECT_EQ(fakeMqi.propertyNameCcsid, MQCCSI_APPL);
}

TEST_F(PropertyInquiryTest, OffersBothBuffersWithTheirSizeLessOne)
{
    inquire();
    EXPECT_EQ(fakeMqi.returnedNameSize, 255);
    EXPECT_EQ(fakeMqi.propertyValueLength, 999);
    EXPECT_EQ(params.Impo.ReturnedName.VSPtr, name);
}

TEST_F(PropertyInquiryTest, GivesTheCodesBack)
{
    answer("MQINQMP", MQCC_FAILED, MQRC_PROPERTY_NOT_AVAILABLE);
    params.ApiTrace = 1;
    const Written written = inquire();
    EXPECT_EQ(written.status, 3);
    EXPECT_EQ(CompCode, MQCC_FAILED);
    EXPECT_EQ(Reason, MQRC_PROPERTY_NOT_AVAILABLE);
    EXPECT_EQ(written.out, "[now] MQINQMP start hcon:7\n[now] MQINQMP stop hcon:7 CompCd=02 ReasonCd=2471\n");
    EXPECT_EQ(written.err, "MQINQMP faild : CompCd=02 ReasonCd=2471\n");
}

TEST_F(WrappersTest, SetMpLinksTheMessageHandleToThePut)
{
    params.MsgHandle = FakeHmsg;
    params.ApiTrace = 1;
    MQCHARV name = {MQCHARV_DEFAULT};
    const Written written = this->written(
        [&] { return MQSeriesSetMP(hconn, &params, &name, MQTYPE_STRING, 3, const_cast<char *>("red")); });
    EXPECT_EQ(written.status, 0);
    EXPECT_EQ(params.Pmo.OriginalMsgHandle, FakeHmsg);
    EXPECT_EQ(fakeMqi.messageHandle, FakeHmsg);
    EXPECT_EQ(fakeMqi.propertyValueLength, 3);
    EXPECT_EQ(written.out, "[now] MQSETMP start hcon:7\n[now] MQSETMP stop hcon:7 CompCd=00 ReasonCd=00\n");
}

TEST_F(WrappersTest, FailedSetMpIsReportedAndAnswers3)
{
    MQCHARV name = {MQCHARV_DEFAULT};
    answer("MQSETMP", MQCC_FAILED, MQRC_PROPERTY_NAME_ERROR);
    const Written written =
        this->written([&] { return MQSeriesSetMP(hconn, &params, &name, MQTYPE_NULL, 0, nullptr); });
    EXPECT_EQ(written.status, 3);
    EXPECT_EQ(written.err, "MQSETMP faild : CompCd=02 ReasonCd=2442\n");
}

} // namespace
