// Which operation a command line selects, and what the selection writes.

#include "parsed.h"

#include "attributes.h"
#include "pcf.h"
#include "receive.h"
#include "send.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Arguments = std::vector<std::string>;

void expectSingle(const Arguments &arguments, SingleOperation operation)
{
    const Parsed parsed = parse(arguments);
    EXPECT_EQ(parsed.result(), CommandLine::Single);
    EXPECT_EQ(parsed.commandLine.single, operation);
    EXPECT_EQ(parsed.commandLine.paired, nullptr);
}

void expectPaired(const Arguments &arguments, PairedOperation operation)
{
    const Parsed parsed = parse(arguments);
    EXPECT_EQ(parsed.result(), CommandLine::Paired);
    EXPECT_EQ(parsed.commandLine.paired, operation);
    EXPECT_EQ(parsed.commandLine.single, nullptr);
}

Arguments with(Arguments more)
{
    more.insert(more.begin(), {"-qm", "QM1", "-q", "Q1"});
    return more;
}

} // namespace

TEST(ModeSelection, NoArgumentsAskForTheUsageText)
{
    EXPECT_EQ(parse({}).result(), CommandLine::NoArguments);
    EXPECT_EQ(parse({}).err, "");
}

TEST(ModeSelection, NotEvenAProgramNameAsksForTheUsageText)
{
    RunParams primary = DEFAULT_RUN_PARAMS;
    RunParams secondary = DEFAULT_RUN_PARAMS;
    char *nothing[] = {nullptr};
    EXPECT_EQ(GetArgParam(0, nothing, &primary, &secondary).result, CommandLine::NoArguments);
}

TEST(ModeSelection, VersionEndsTheScanAnywhere)
{
    EXPECT_EQ(parse({"-v"}).result(), CommandLine::Version);
    EXPECT_EQ(parse({"-qm", "QM1", "-v", "-zz"}).result(), CommandLine::Version);
    EXPECT_EQ(parse({"-n", "5", "-v"}).result(), CommandLine::Version);
    EXPECT_EQ(parse({"-v", "All"}).result(), CommandLine::Version);
}

TEST(ModeSelection, VersionWithAllAsksForTheConstantsToo)
{
    EXPECT_EQ(parse({"-v", "all"}).result(), CommandLine::VersionAndAll);
    EXPECT_EQ(parse({"-q", "Q1", "-v", "all", "x"}).result(), CommandLine::VersionAndAll);
}

TEST(ModeSelection, AnErrorBeforeVersionComesFirst)
{
    EXPECT_EQ(parse({"-zz", "-v"}).result(), CommandLine::Error);
}

TEST(ModeSelection, AQueueAloneIsReadFrom)
{
    expectSingle(with({}), GetMQMessage);
}

TEST(ModeSelection, AMessageIsPut)
{
    expectSingle(with({"-m", "x"}), PutFromCmdLine);
    expectSingle(with({"-mx", "00"}), PutFromCmdLine);
}

TEST(ModeSelection, AnEmptyMessageIsPut)
{
    expectSingle(with({"-m", ""}), PutFromCmdLine);
}

TEST(ModeSelection, MessageSourcesHaveAnOrder)
{
    expectSingle(with({"-f", "f"}), PutFromFile);
    expectSingle(with({"-d", "d"}), PutFromDir);
    expectSingle(with({"-d", "d", "-f", "f"}), PutFromFile);
    expectSingle(with({"-d", "d", "-f", "f", "-mx", "00"}), PutFromCmdLine);
}

TEST(ModeSelection, ASourceComesBeforeAnOutputFile)
{
    expectSingle(with({"-o", "o", "-m", "x"}), PutFromCmdLine);
    expectSingle(with({"-o", "o", "-g", "g"}), GetToFile);
    expectSingle(with({"-g", "g"}), GetToDir);
}

TEST(ModeSelection, SettingComesBehindOutputFiles)
{
    expectSingle(with({"-set", "x"}), CallMQSET);
    expectSingle(with({"-set", "x", "-g", "g"}), GetToDir);
    expectSingle(with({"-set", "x", "-pcf", "p"}), CallMQSET);
}

TEST(ModeSelection, APcfFileIsPut)
{
    expectSingle(with({"-pcf", "p"}), PutFromPcfDef);
}

TEST(ModeSelection, InquiryWinsOverEverything)
{
    expectSingle(with({"-inq", "x"}), CallMQINQ);
    expectSingle(with({"-inq", "x", "-oq", "Q2", "-m", "x"}), CallMQINQ);
    expectSingle({"-qm", "QM1", "-inq", "x"}, CallMQINQ);
}

TEST(ModeSelection, AnOutputQueueIsQueueToQueue)
{
    expectPaired(with({"-oq", "Q2"}), Queue2Queue);
    expectPaired(with({"-oq", "Q2", "-m", "x"}), Queue2Queue);
    expectPaired(with({"-oq", "Q2", "-iq", "Q3"}), Queue2Queue);
}

TEST(ModeSelection, AnInputQueueIsSendAndReceive)
{
    expectPaired(with({"-iq", "Q2", "-m", "x"}), SendReceive);
}

TEST(ModeSelection, ADistributionListPutsItsSource)
{
    expectSingle({"-qm", "QM1", "-or", "A,B", "-m", "x"}, PutFromCmdLine);
    expectSingle({"-qm", "QM1", "-or", "A,B", "-mx", "00"}, PutFromCmdLine);
    expectSingle({"-qm", "QM1", "-or", "A,B", "-f", "f"}, PutFromFile);
    expectSingle({"-qm", "QM1", "-or", "A,B", "-d", "d"}, PutFromDir);
}

TEST(ModeSelection, ADistributionListComesBeforeQueueToQueue)
{
    expectSingle(with({"-or", "A,B", "-m", "x", "-oq", "Q2"}), PutFromCmdLine);
}

TEST(ModeSelection, ADistributionListWithoutASourceGoesOn)
{
    expectSingle(with({"-or", "A,B"}), GetMQMessage);
}

TEST(ModeSelection, PuttingNamesTheOutputQueue)
{
    const Parsed parsed = parse(with({"-m", "x"}));
    EXPECT_STREQ(parsed.primary.OutputQName, "Q1");
    EXPECT_EQ(parsed.primary.InputQName, nullptr);
}

TEST(ModeSelection, GettingNamesTheInputQueue)
{
    for (const Arguments &arguments : {with({}), with({"-o", "o"}), with({"-g", "g"})}) {
        const Parsed parsed = parse(arguments);
        EXPECT_STREQ(parsed.primary.InputQName, "Q1");
        EXPECT_EQ(parsed.primary.OutputQName, nullptr);
    }
}

TEST(ModeSelection, PairedOperationsNameTheOtherQueue)
{
    EXPECT_STREQ(parse(with({"-oq", "Q2"})).primary.InputQName, "Q1");
    EXPECT_STREQ(parse(with({"-iq", "Q2"})).primary.OutputQName, "Q1");
}

TEST(ModeSelection, AttributesNameNeitherQueue)
{
    for (const Arguments &arguments : {with({"-inq", "x"}), with({"-set", "x"})}) {
        const Parsed parsed = parse(arguments);
        EXPECT_EQ(parsed.primary.InputQName, nullptr);
        EXPECT_EQ(parsed.primary.OutputQName, nullptr);
    }
}

TEST(ModeSelection, AnEmptyQueueManagerNameIsGiven)
{
    EXPECT_EQ(parse({"-qm", "", "-q", "Q1"}).result(), CommandLine::Single);
}

TEST(ModeSelection, PuttingUnderSyncpointSetsTheWord)
{
    EXPECT_EQ(parse(with({"-m", "x", "MQPMO_SYNCPOINT"})).primary.SyncpointFlag, 1);
    EXPECT_EQ(parse(with({"-m", "x", "MQGMO_SYNCPOINT"})).primary.SyncpointFlag, 0);
    EXPECT_EQ(parse(with({"-pcf", "x", "MQPMO_SYNCPOINT"})).primary.SyncpointFlag, 1);
    EXPECT_EQ(parse({"-qm", "QM1", "-or", "A", "-f", "x", "MQPMO_SYNCPOINT"}).primary.SyncpointFlag, 1);
}

TEST(ModeSelection, GettingUnderSyncpointSetsTheWord)
{
    EXPECT_EQ(parse(with({"MQGMO_SYNCPOINT"})).primary.SyncpointFlag, 1);
    EXPECT_EQ(parse(with({"MQPMO_SYNCPOINT"})).primary.SyncpointFlag, 0);
    EXPECT_EQ(parse(with({"-o", "o", "MQGMO_SYNCPOINT"})).primary.SyncpointFlag, 1);
}

TEST(ModeSelection, SyncpointIfPersistentWantsAPersistentDescriptor)
{
    EXPECT_EQ(parse(with({"MQGMO_SYNCPOINT_IF_PERSISTENT"})).primary.SyncpointFlag, 0);
    EXPECT_EQ(parse(with({"MQGMO_SYNCPOINT_IF_PERSISTENT", "MQPER_PERSISTENT"})).primary.SyncpointFlag, 1);
}

TEST(ModeSelection, QueueToQueueUnderSyncpointSetsBothWords)
{
    for (const Arguments &arguments :
         {with({"-oq", "Q2", "MQGMO_SYNCPOINT"}), with({"-oq", "Q2", "-ss", "MQPMO_SYNCPOINT"})}) {
        const Parsed parsed = parse(arguments);
        EXPECT_EQ(parsed.primary.SyncpointFlag, 1);
        EXPECT_EQ(parsed.secondary.SyncpointFlag, 1);
    }
}

TEST(ModeSelection, SendAndReceiveJudgesEachSideByItself)
{
    const Parsed parsed = parse(with({"-iq", "Q2", "-m", "x", "MQPMO_SYNCPOINT", "-ss", "MQPMO_SYNCPOINT"}));
    EXPECT_EQ(parsed.primary.SyncpointFlag, 1);
    EXPECT_EQ(parsed.secondary.SyncpointFlag, 0);
}

TEST(ModeSelection, AttributesHaveNoUnitOfWork)
{
    EXPECT_EQ(parse(with({"-set", "x", "MQPMO_SYNCPOINT", "MQGMO_SYNCPOINT"})).primary.SyncpointFlag, 0);
}
