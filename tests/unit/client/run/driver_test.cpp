// The passes of a run: what is called in which order, what is reported, and the exit code.

#include "fake_routines.h"
#include "option_rows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <regex>
#include <string>
#include <unistd.h>
#include <vector>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;

namespace {

class Driver : public DriverTest {};

const std::string sizeOfRecord = std::to_string(sizeof(RunParams));

/// Line numbers are no part of the facts.
std::string withoutLine(const std::string &text)
{
    return std::regex_replace(text, std::regex(R"(\bmain,\d+,)"), "main,#,");
}

} // namespace

TEST_F(Driver, WithoutArgumentsShowsTheUsageTextOnly)
{
    const Finished done = run({});
    EXPECT_EQ(done.exitCode, 1);
    EXPECT_EQ(done.out, CMD_LINE);
    EXPECT_EQ(done.err, "");
    EXPECT_TRUE(done.steps.empty());
}

TEST_F(Driver, VersionShowsUsageVersionAndLibrary)
{
    const Finished done = run({"-qm", "QM1", "-v"});
    EXPECT_EQ(done.exitCode, 1);
    EXPECT_EQ(done.out, std::string(CMD_LINE) + "version 1.4.2.10 2022/04/22\nlibrary version 1.0.0.1 2021/03/10\n");
    EXPECT_EQ(done.err, "");
}

TEST_F(Driver, VersionWithAllAddsAnEmptyLineAndTheConstants)
{
    const Finished done = run({"-v", "all"});
    EXPECT_EQ(done.exitCode, 1);
    EXPECT_THAT(done.out, StartsWith(std::string(CMD_LINE) +
                                     "version 1.4.2.10 2022/04/22\nlibrary version 1.0.0.1 2021/03/10\n\n"
                                     "MQMD_VERSION_1\nMQMD_VERSION_2\nMQMD_CURRENT_VERSION\n\nMQRO_EXCEPTION\n"));
}

TEST_F(Driver, AParameterErrorEndsWithOneAndOneLine)
{
    const Finished done = run({"-n", "0"});
    EXPECT_EQ(done.exitCode, 1);
    EXPECT_EQ(done.out, "");
    EXPECT_EQ(done.err, "Invalid number was specified(-n)\n");
    EXPECT_TRUE(done.steps.empty());
}

TEST_F(Driver, ConnectsOpensRunsClosesDisconnects)
{
    const Finished done = run({"-qm", "QM1", "-q", "Q1", "-m", "hello"});
    EXPECT_EQ(done.exitCode, 0);
    EXPECT_THAT(done.steps, ElementsAre("connect QM1", "open output Q1", "put", "close Q1", "disconnect QM1"));
    EXPECT_THAT(done.out, MatchesRegex("Elapsed time = [0-9]+\\.[0-9]+ sec\n"));
    EXPECT_EQ(done.err, "");
}

TEST_F(Driver, GettingOpensForInput)
{
    EXPECT_THAT(run({"-qm", "QM1", "-q", "Q1"}).steps,
                ElementsAre("connect QM1", "open input Q1", "get", "close Q1", "disconnect QM1"));
}

TEST_F(Driver, InquiringOpensForInquiry)
{
    EXPECT_THAT(run({"-qm", "QM1", "-q", "Q1", "-inq", "x"}).steps,
                ElementsAre("connect QM1", "open inquire Q1", "inquire", "close Q1", "disconnect QM1"));
}

TEST_F(Driver, SettingOpensForSetting)
{
    EXPECT_THAT(run({"-qm", "QM1", "-q", "Q1", "-set", "x"}).steps,
                ElementsAre("connect QM1", "open set Q1", "set", "close Q1", "disconnect QM1"));
}

TEST_F(Driver, QueueToQueueOpensInputThenOutput)
{
    EXPECT_THAT(run({"-qm", "QM1", "-q", "Q1", "-oq", "Q2"}).steps,
                ElementsAre("connect QM1", "open input Q1", "open output Q2", "queue to queue", "close Q1", "close Q2",
                            "disconnect QM1"));
}

TEST_F(Driver, QueueToTheReplyQueueOpensInputOnly)
{
    for (const char *name : {"*", "**"}) {
        routines.steps.clear();
        EXPECT_THAT(run({"-qm", "QM1", "-q", "Q1", "-oq", name}).steps,
                    ElementsAre("connect QM1", "open input Q1", "queue to queue", "close Q1", "disconnect QM1"));
    }
}

TEST_F(Driver, SendAndReceiveOpensTheReplyQueueFirst)
{
    EXPECT_THAT(run({"-qm", "QM1", "-q", "Q1", "-iq", "R1", "-m", "x"}).steps,
                ElementsAre("connect QM1", "open input R1", "open output Q1", "send", "close Q1", "close R1",
                            "disconnect QM1"));
}

TEST_F(Driver, ADistributionListWithoutAQueueOpensNothing)
{
    EXPECT_THAT(run({"-qm", "QM1", "-or", "A,B", "-m", "x"}).steps,
                ElementsAre("connect QM1", "put", "disconnect QM1"));
}

TEST_F(Driver, ConnectsWithMqconnxWhenAnOptionWantsIt)
{
    EXPECT_THAT(run({"-qm", "QM1", "-q", "Q1", "-x", "host"}).steps[0], "connectx QM1");
}

TEST_F(Driver, TheOtherRecordSelectsMqconnxToo)
{
    EXPECT_THAT(run({"-qm", "QM1", "-q", "Q1", "-ss", "-x", "host"}).steps[0], "connectx QM1");
}

TEST_F(Driver, EveryQueueManagerOfTheListGetsAConnection)
{
    EXPECT_THAT(run({"-qm", "A,B", "-q", "Q1"}).steps,
                ElementsAre("connect A", "open input Q1", "connect B", "open input Q1", "get", "get", "close Q1",
                            "disconnect A", "close Q1", "disconnect B"));
}

TEST_F(Driver, AnEmptyNameInTheListIsTheDefaultQueueManager)
{
    const Finished done = run({"-qm", "qm1,,qm2", "-q", "Q1"});
    EXPECT_EQ(routines.connections, 3);
    EXPECT_EQ(done.steps[0], "connect qm1");
    EXPECT_EQ(done.steps[2], "connect ");
    EXPECT_EQ(done.steps[4], "connect qm2");
}

TEST_F(Driver, ATrailingSeparatorNamesNothing)
{
    EXPECT_THAT(run({"-qm", "A,", "-q", "Q1"}).steps,
                ElementsAre("connect A", "open input Q1", "get", "close Q1", "disconnect A"));
}

TEST_F(Driver, AnEmptyListIsRefused)
{
    const Finished done = run({"-qm", "", "-q", "Q1"});
    EXPECT_EQ(done.exitCode, 1);
    EXPECT_EQ(done.err, "Invalid queue manager name: \n");
    EXPECT_TRUE(done.steps.empty());
}

TEST_F(Driver, ANameOfFortyNineCharactersReachesTheConnect)
{
    const std::string name(49, 'q');
    EXPECT_EQ(run({"-qm", name, "-q", "Q1"}).steps[0], "connect " + name);
}

TEST_F(Driver, OperationsSeeTheNameOfTheirConnection)
{
    std::vector<std::string> names;
    routines.during["get"] = [&](RunParams &params) { names.emplace_back(params.QMgrName); };
    run({"-qm", "A,B", "-q", "Q1"});
    EXPECT_THAT(names, ElementsAre("A", "B"));
}

TEST_F(Driver, TheResultOfTheOperationIsTheExitCode)
{
    for (const Status status : {0, 1, 2, 3}) {
        routines.answers["get"] = {status};
        EXPECT_EQ(run({"-qm", "QM1", "-q", "Q1"}).exitCode, status);
    }
}

TEST_F(Driver, TheLastOperationDecides)
{
    routines.answers["get"] = {3, 0};
    EXPECT_EQ(run({"-qm", "A,B", "-q", "Q1"}).exitCode, 0);
    routines.answers["get"] = {0, 3};
    EXPECT_EQ(run({"-qm", "A,B", "-q", "Q1"}).exitCode, 3);
}

TEST_F(Driver, AFailedCloseCountsOnlyAfterSuccess)
{
    routines.answers["close Q1"] = {3};
    EXPECT_EQ(run({"-qm", "QM1", "-q", "Q1"}).exitCode, 3);
    routines.answers["close Q1"] = {3};
    routines.answers["get"] = {2};
    EXPECT_EQ(run({"-qm", "QM1", "-q", "Q1"}).exitCode, 2);
}

TEST_F(Driver, AFailedDisconnectCountsOnlyAfterSuccess)
{
    routines.answers["disconnect QM1"] = {3};
    EXPECT_EQ(run({"-qm", "QM1", "-q", "Q1"}).exitCode, 3);
    routines.answers["disconnect QM1"] = {3};
    routines.answers["get"] = {1};
    EXPECT_EQ(run({"-qm", "QM1", "-q", "Q1"}).exitCode, 1);
}

TEST_F(Driver, DisconnectsAfterAFailedClose)
{
    routines.answers["close Q1"] = {3};
    EXPECT_EQ(run({"-qm", "QM1", "-q", "Q1"}).steps.back(), "disconnect QM1");
}

TEST_F(Driver, AFailedOpenEndsTheRun)
{
    routines.answers["open input Q1"] = {3};
    const Finished done = run({"-qm", "A,B", "-q", "Q1"});
    EXPECT_EQ(done.exitCode, 1);
    EXPECT_THAT(done.steps, ElementsAre("connect A", "open input Q1"));
    EXPECT_THAT(done.out, Not(HasSubstr("Elapsed")));
}

TEST_F(Driver, AFailedSecondOpenEndsTheRun)
{
    routines.answers["open output Q2"] = {3};
    EXPECT_EQ(run({"-qm", "QM1", "-q", "Q1", "-oq", "Q2"}).exitCode, 1);
    routines.answers["open output Q1"] = {1};
    EXPECT_EQ(run({"-qm", "QM1", "-q", "Q1", "-iq", "R", "-m", "x"}).exitCode, 1);
}

TEST_F(Driver, AFailedConnectEndsTheRun)
{
    routines.answers["connect QM1"] = {3};
    const Finished done = run({"-qm", "QM1", "-q", "Q1"});
    EXPECT_EQ(done.exitCode, 1);
    EXPECT_EQ(done.err, "!!! Queue Manager Connect Fail QM1 !!!\n");
    EXPECT_THAT(done.steps, ElementsAre("connect QM1"));
}

TEST_F(Driver, ARetryRepeatsAFailedConnectAfterAPause)
{
    routines.answers["connect QM1"] = {3, 0};
    const Finished done = run({"-qm", "QM1", "-q", "Q1", "-cr", "2", "-wp", "100"});
    EXPECT_EQ(done.exitCode, 0);
    EXPECT_THAT(done.steps, ElementsAre("connect QM1", "sleep 100", "connect QM1", "open input Q1", "get", "close Q1",
                                        "disconnect QM1"));
}

TEST_F(Driver, RetriesEndAfterTheirCount)
{
    routines.answers["connect QM1"] = {3, 3, 3, 0};
    const Finished done = run({"-qm", "QM1", "-q", "Q1", "-cr", "2", "-wp", "100"});
    EXPECT_EQ(done.exitCode, 1);
    EXPECT_THAT(done.steps, ElementsAre("connect QM1", "sleep 100", "connect QM1", "sleep 100", "connect QM1"));
}

TEST_F(Driver, ALocalConnectFailureIsNeverRetried)
{
    routines.answers["connectx QM1"] = {1, 0};
    const Finished done = run({"-qm", "QM1", "-q", "Q1", "-ru", "", "-cr", "2", "-ca"});
    EXPECT_EQ(done.exitCode, 1);
    EXPECT_THAT(done.steps, ElementsAre("connectx QM1"));
}

TEST_F(Driver, ARetryUsesUpNoPass)
{
    routines.answers["connect QM1"] = {0, 3, 0};
    run({"-qm", "QM1", "-q", "Q1", "-cr", "1", "-c", "2"});
    EXPECT_EQ(routines.count("get"), 2);
}

TEST_F(Driver, ARetryWaitsOnce)
{
    routines.answers["connect QM1"] = {3, 0, 0};
    const Finished done = run({"-qm", "QM1", "-q", "Q1", "-cr", "1", "-c", "2", "-wp", "50"});
    EXPECT_THAT(done.steps, ElementsAre("connect QM1", "sleep 50", "connect QM1", "open input Q1", "get", "close Q1",
                                        "disconnect QM1", "sleep 50", "connect QM1", "open input Q1", "get", "close Q1",
                                        "disconnect QM1"));
}

TEST_F(Driver, QueueManagersConnectedBeforeARetryRunInBothPasses)
{
    routines.answers["connect B"] = {3, 0};
    const Finished done = run({"-qm", "A,B", "-q", "Q1", "-cr", "1"});
    EXPECT_EQ(done.exitCode, 0);
    EXPECT_THAT(done.steps, ElementsAre("connect A", "open input Q1", "connect B", "get", "close Q1", "disconnect A",
                                        "connect A", "open input Q1", "connect B", "open input Q1", "get", "get",
                                        "close Q1", "disconnect A", "close Q1", "disconnect B"));
}

TEST_F(Driver, AConnectThatIsPassedOverIsNoFailure)
{
    routines.answers["connect QM1"] = {3};
    const Finished done = run({"-qm", "QM1", "-q", "Q1", "-ca"});
    EXPECT_EQ(done.exitCode, 0);
    EXPECT_EQ(done.err, "!!! Queue Manager Connect Fail QM1 !!!\n");
    EXPECT_THAT(done.steps, ElementsAre("connect QM1"));
    EXPECT_THAT(done.out, HasSubstr("Elapsed time"));
}

TEST_F(Driver, APassedOverConnectLeavesTheRestOfThePassAlone)
{
    routines.answers["connect B"] = {3};
    const Finished done = run({"-qm", "A,B,C", "-q", "Q1", "-ca"});
    EXPECT_THAT(done.steps, ElementsAre("connect A", "open input Q1", "connect B"));
}

TEST_F(Driver, APassedOverConnectLeavesTheResultAsItWas)
{
    routines.answers["connect QM1"] = {0, 3};
    routines.answers["get"] = {2};
    EXPECT_EQ(run({"-qm", "QM1", "-q", "Q1", "-ca", "-c", "2"}).exitCode, 2);
}

TEST_F(Driver, RetriesComeBeforePassingOver)
{
    routines.answers["connect QM1"] = {3, 3};
    const Finished done = run({"-qm", "QM1", "-q", "Q1", "-ca", "-cr", "1", "-wp", "5"});
    EXPECT_EQ(done.exitCode, 0);
    EXPECT_THAT(done.steps, ElementsAre("connect QM1", "sleep 5", "connect QM1"));
}

TEST_F(Driver, RunsAsOftenAsAskedWithPausesBetween)
{
    const Finished done = run({"-qm", "QM1", "-q", "Q1", "-c", "3", "-wp", "500"});
    EXPECT_EQ(routines.count("get"), 3);
    EXPECT_EQ(routines.count("sleep 500"), 2);
    EXPECT_EQ(done.steps.front(), "connect QM1");
}

TEST_F(Driver, OnePassNeverPauses)
{
    run({"-qm", "QM1", "-q", "Q1", "-wp", "500"});
    EXPECT_EQ(routines.count("sleep 500"), 0);
}

TEST_F(Driver, EveryPassStartsFromFreshRecords)
{
    std::vector<MQLONG> counts;
    routines.during["get"] = [&](RunParams &params) {
        counts.push_back(params.MsgCount);
        params.MsgCount = 99;
        params.Md.Priority = 5;
    };
    run({"-qm", "QM1", "-q", "Q1", "-c", "2", "-n", "7"});
    EXPECT_THAT(counts, ElementsAre(7, 7));
}

TEST_F(Driver, ACallbackIsRegisteredAfterTheConnect)
{
    EXPECT_THAT(run({"-qm", "QM1", "-q", "Q1", "-cf", "EventHandler", "-op", "MQOP_REGISTER"}).steps,
                ElementsAre("connect QM1", "register QM1", "open input Q1", "get", "close Q1", "disconnect QM1"));
}

TEST_F(Driver, WithoutACallbackNothingIsRegistered)
{
    run({"-qm", "QM1", "-q", "Q1", "-op", "MQOP_REGISTER"});
    EXPECT_EQ(routines.count("register QM1"), 0);
}

TEST_F(Driver, AFailedRegistrationEndsTheRun)
{
    routines.answers["register QM1"] = {3};
    const Finished done = run({"-qm", "QM1", "-q", "Q1", "-cf", "EventHandler"});
    EXPECT_EQ(done.exitCode, 1);
    EXPECT_EQ(done.err, "!!! Callback fuction Resistration Fail QM1 !!!\n");
    EXPECT_THAT(done.steps, ElementsAre("connect QM1", "register QM1"));
}

TEST_F(Driver, AFailedRegistrationIsPassedOverWithCa)
{
    routines.answers["register QM1"] = {3};
    const Finished done = run({"-qm", "QM1", "-q", "Q1", "-cf", "EventHandler", "-ca"});
    EXPECT_EQ(done.exitCode, 0);
    EXPECT_EQ(routines.count("get"), 1);
}

TEST_F(Driver, TheStartFileIsWaitedForAfterEveryConnect)
{
    char folder[] = "/tmp/mqrig_start_XXXXXX";
    ASSERT_NE(mkdtemp(folder), nullptr);
    const std::string file = std::string(folder) + "/go";
    int sleeps = 0;
    routines.during["sleep"] = [&](RunParams &) {
        if (++sleeps == 3) std::fclose(std::fopen(file.c_str(), "w"));
    };
    const Finished done = run({"-qm", "A,B", "-q", "Q1", "-sf", file});
    unlink(file.c_str());
    rmdir(folder);
    EXPECT_THAT(done.steps,
                ElementsAre("connect A", "open input Q1", "connect B", "open input Q1", "sleep 1", "sleep 1", "sleep 1",
                            "get", "get", "close Q1", "disconnect A", "close Q1", "disconnect B"));
}

TEST_F(Driver, RawMovesTheElapsedTimeToStandardError)
{
    const Finished done = run({"-qm", "QM1", "-q", "Q1", "-raw"});
    EXPECT_EQ(done.out, "");
    EXPECT_THAT(done.err, MatchesRegex("Elapsed time = [0-9.]+ sec\n"));
}

TEST_F(Driver, RawOfTheSecondaryRecordMovesItToo)
{
    EXPECT_EQ(run({"-qm", "QM1", "-q", "Q1", "-ss", "-raw"}).out, "");
}

TEST_F(Driver, HexLeavesTheElapsedTime)
{
    EXPECT_THAT(run({"-qm", "QM1", "-q", "Q1", "-hex"}).out, HasSubstr("Elapsed time"));
}

TEST_F(Driver, NoMemoryForTheFirstConnectionIsReported)
{
    routines.failingConnection = 1;
    const Finished done = run({"-qm", "QM1", "-q", "Q1"});
    EXPECT_EQ(done.exitCode, 1);
    EXPECT_EQ(withoutLine(done.err),
              "malloc(): Cannot allocate memory\nmain,#,12: malloc() failed. size=" + sizeOfRecord + "\n");
}

TEST_F(Driver, NoMemoryForAnotherConnectionIsReportedWithTheGrownSize)
{
    routines.failingConnection = 2;
    const Finished done = run({"-qm", "A,B", "-q", "Q1"});
    EXPECT_EQ(done.exitCode, 1);
    EXPECT_EQ(withoutLine(done.err), "realloc(): Cannot allocate memory\nmain,#,12: realloc() failed. size=" +
                                         std::to_string(2 * sizeof(RunParams)) + "\n");
}

TEST_F(Driver, ConnectionRecordsStayWhereTheyAre)
{
    std::vector<const RunParams *> connected;
    std::vector<const RunParams *> running;
    for (const char *name : {"connect A", "connect B", "connect C"}) {
        routines.during[name] = [&](RunParams &params) { connected.push_back(&params); };
    }
    routines.during["get"] = [&](RunParams &params) { running.push_back(&params); };
    run({"-qm", "A,B,C", "-q", "Q1"});
    EXPECT_EQ(connected, running);
}

TEST_F(Driver, RecordsOfConnectionsThatStayLiveOn)
{
    std::vector<RunParams *> records;
    routines.during["get"] = [&](RunParams &params) { records.push_back(&params); };
    run({"-qm", "A", "-q", "Q1", "-sd", "-c", "2"});
    ASSERT_EQ(records.size(), 2u);
    // An event handler may still read them, as the address sanitizer would tell.
    for (RunParams *record : records)
        EXPECT_EQ(record->ThreadCount, 0);
    EXPECT_NE(records[0], records[1]);
}
