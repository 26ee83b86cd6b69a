// DISPLAY QSTATUS and DISPLAY CONN.
#include <pwd.h>
#include <unistd.h>

#include <cinttypes>
#include <cstdio>

#include "../waiting_program.h"
#include "qmgr/command/process_facts.h"
#include "queue_manager_fixture.h"

namespace mqrig::qmgr::command {
namespace {

class MqscStatus : public QueueManagerFixture {
protected:
    MqscStatus() { EXPECT_EQ(run("DEF QL(Q1)").result, CommandResult::Done); }

    static std::string nameOf(const store::Attachment &connection)
    {
        char digits[17];
        std::snprintf(digits, sizeof digits, "%016" PRIX64, connection.connectionNumber());
        return digits;
    }
};

TEST_F(MqscStatus, QueueStatusCountsMessagesHandlesAndUncommittedWork)
{
    EXPECT_EQ(answer("DIS QSTATUS(Q1)"), "AMQ8450I: Queue status details:\n"
                                         "   QUEUE(Q1)                               TYPE(QUEUE)\n"
                                         "   CURDEPTH(0)                             IPPROCS(0)\n"
                                         "   LGETDATE( )                             LGETTIME( )\n"
                                         "   LPUTDATE( )                             LPUTTIME( )\n"
                                         "   MONQ(OFF)                               MSGAGE( )\n"
                                         "   OPPROCS(0)                              UNCOM(NO)\n");
    put("Q1", MQPER_NOT_PERSISTENT);
    const auto other = connect();
    open(*other, idOf("Q1"), {.input = 1, .exclusive = 0, .output = 2, .browse = 1});
    ASSERT_TRUE(other
                    ->update(0,
                             [&](store::WriteTransaction &transaction) {
                                 transaction.bookPut(idOf("Q1"));
                                 transaction.bookPut(idOf("Q1"));
                                 return success();
                             })
                    .ok());
    EXPECT_EQ(answer("DIS QS(Q*)  IPPROCS,OPPROCS,UNCOM"), "AMQ8450I: Queue status details:\n"
                                                           "   QUEUE(Q1)                               TYPE(QUEUE)\n"
                                                           "   CURDEPTH(3)                             IPPROCS(1)\n"
                                                           "   OPPROCS(2)                              UNCOM(2)\n");
}

TEST_F(MqscStatus, HandlesTellWhoHasAQueueOpen)
{
    EXPECT_EQ(answer("DIS QS(Q1) TYPE(HANDLE)"), "AMQ8565E: There is no such status of queue Q1.\n");
    EXPECT_EQ(answer("DIS QS(NONE) TYPE(HANDLE)"), "AMQ8147E: There is no object NONE.\n");
    const auto other = connect();
    open(*other, idOf("Q1"), {.input = 1, .exclusive = 1, .output = 0, .browse = 0});
    open(*attachment_, idOf("Q1"), {.input = 0, .exclusive = 0, .output = 1, .browse = 1});
    EXPECT_EQ(answer("DIS QS(Q*) TYPE(HANDLE) INPUT OUTPUT BROWSE PID"),
              "AMQ8450I: Queue status details:\n"
              "   QUEUE(Q1)                               TYPE(HANDLE)\n"
              "   BROWSE(YES)                             INPUT(NO)\n"
              "   OUTPUT(YES)                             PID(" +
                  std::to_string(getpid()) +
                  ")\n"
                  "AMQ8450I: Queue status details:\n"
                  "   QUEUE(Q1)                               TYPE(HANDLE)\n"
                  "   BROWSE(NO)                              INPUT(EXCL)\n"
                  "   OUTPUT(NO)                              PID(" +
                  std::to_string(getpid()) + ")\n");
    EXPECT_EQ(answer("DIS QS(Q1) TYPE(HANDLE) INPUT WHERE(INPUT EQ SHARED)"),
              "AMQ8565E: There is no such status of queue Q1.\n");
    EXPECT_EQ(run("DIS QS(Q1) TYPE(QLOCAL)").result, CommandResult::SyntaxError);
}

TEST_F(MqscStatus, OpenTypeChoosesQueuesAndHandles)
{
    ASSERT_EQ(run("DEF QL(Q2)").result, CommandResult::Done);
    open(*attachment_, idOf("Q1"), {.input = 1, .exclusive = 0, .output = 0, .browse = 0});
    open(*attachment_, idOf("Q2"), {.input = 0, .exclusive = 0, .output = 1, .browse = 1});
    EXPECT_EQ(answer("DIS QS(Q*) OPENTYPE(INPUT) OPPROCS"), "AMQ8450I: Queue status details:\n"
                                                            "   QUEUE(Q1)                               TYPE(QUEUE)\n"
                                                            "   CURDEPTH(0)                             OPPROCS(0)\n");
    EXPECT_EQ(answer("DIS QS(Q*) TYPE(HANDLE) OPENTYPE(OUTPUT) INPUT"),
              "AMQ8450I: Queue status details:\n"
              "   QUEUE(Q2)                               TYPE(HANDLE)\n"
              "   INPUT(NO)\n");
    EXPECT_EQ(answer("DIS QS(Q*) OPENTYPE(ALL)"), answer("DIS QS(Q*)"));
    EXPECT_EQ(answer("DIS QS(Q1) OPENTYPE(OUTPUT)"), "AMQ8565E: There is no such status of queue Q1.\n");
    EXPECT_EQ(answer("DIS QS(Q1) OPENTYPE(BROWSE)"),
              "AMQ8405E: Syntax error at line 1, column 21: OPENTYPE takes ALL, INPUT or OUTPUT.\n"
              "   DIS QS(Q1) OPENTYPE(BROWSE)\n"
              "                       ^\n");
    EXPECT_EQ(run("DIS QL(Q1) OPENTYPE(INPUT)").result, CommandResult::SyntaxError);
}

TEST_F(MqscStatus, QueueStatusIsOfLocalQueues)
{
    ASSERT_EQ(run("DEF QA(A1) TARGET(Q1)").result, CommandResult::Done);
    EXPECT_EQ(answer("DIS QS(A1)"), "AMQ8147E: There is no object A1.\n");
}

TEST_F(MqscStatus, FiltersChooseQueues)
{
    ASSERT_EQ(run("DEF QL(Q2)").result, CommandResult::Done);
    put("Q2", MQPER_NOT_PERSISTENT);
    EXPECT_EQ(answer("DIS QS(Q*) WHERE(CURDEPTH GT 0)"), "AMQ8450I: Queue status details:\n"
                                                         "   QUEUE(Q2)                               TYPE(QUEUE)\n"
                                                         "   CURDEPTH(1)\n");
    EXPECT_EQ(answer("DIS QS(Q*) WHERE(UNCOM NE NO)"), "AMQ8565E: There is no such status of queue Q*.\n");
    EXPECT_EQ(run("DIS QS(Q*) WHERE(MAXDEPTH GT 0)").result, CommandResult::SyntaxError);
}

TEST_F(MqscStatus, EveryConnectionIsShown)
{
    const auto other = connect();
    const std::string shown = answer("DIS CONN(*) PID");
    for (const store::Attachment *connection : {attachment_.get(), other.get()})
        EXPECT_NE(shown.find("   CONN(" + nameOf(*connection) +
                             ")\n   EXTCONN(414D5143514D31202020202020202020)\n"
                             "   TYPE(CONN)                              PID(" +
                             std::to_string(getpid()) + ")\n"),
                  std::string::npos)
            << shown;
}

TEST_F(MqscStatus, OneConnectionIsShownWithEverything)
{
    const std::string shown = answer("DIS CONN(" + nameOf(*attachment_) + ')');
    for (const std::string &part : {std::string("APPLTAG(qmgr_command_test)"), std::string("APPLTYPE(USER)"),
                                    "PID(" + std::to_string(getpid()) + ')', std::string("USERID(")})
        EXPECT_NE(shown.find(part), std::string::npos) << part << '\n' << shown;
}

TEST_F(MqscStatus, ConnectionIsShownUnderTheNameThatItsProgramGives)
{
    attachment_->nameProgram("billing of the third floor and more");
    const std::string shown = answer("DIS CONN(" + nameOf(*attachment_) + ") APPLTAG CONNTAG");
    EXPECT_NE(shown.find("APPLTAG(billing of the third floor a)"), std::string::npos) << shown;
    EXPECT_NE(shown.find("CONNTAG(MQCT" + nameOf(*attachment_) + "QM1)"), std::string::npos) << shown;
}

TEST_F(MqscStatus, ConnectionThatHasEndedIsNotShown)
{
    auto other = connect();
    const std::string name = nameOf(*other);
    other.reset();
    EXPECT_EQ(answer("DIS CONN(" + name + ')'), "AMQ8461E: There is no connection " + name + ".\n");
    EXPECT_EQ(answer("DIS CONN(*) WHERE(PID EQ 0)"), "AMQ8461E: There is no connection *.\n");
}

TEST(ProcessFacts, UserWithoutANameIsANumber)
{
    constexpr uid_t nobodys = 2'000'000'123;
    if (geteuid() != 0 || getpwuid(nobodys) != nullptr) GTEST_SKIP() << "only root can become such a user";
    const test::WaitingProgram program([] { return setresuid(nobodys, nobodys, nobodys) == 0; });
    EXPECT_EQ(userOf(program.pid()), "2000000123");
}

} // namespace
} // namespace mqrig::qmgr::command
