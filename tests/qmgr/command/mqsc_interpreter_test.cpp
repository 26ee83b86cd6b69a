#include "qmgr/command/mqsc_interpreter.h"

#include <random>

#include "../waiting_program.h"
#include "qmgr/command/mqsc_messages.h"
#include "qmgr/objects/attribute.h"
#include "qmgr/objects/attribute_value.h"
#include "queue_manager_fixture.h"

namespace mqrig::qmgr::command {
namespace {

class Mqsc : public QueueManagerFixture {};

TEST_F(Mqsc, UnquotedNamesAreFoldedAndQuotedOnesKept)
{
    EXPECT_EQ(answer("define ql(my.queue)"), "AMQ8006I: Queue MY.QUEUE was created.\n");
    EXPECT_EQ(answer("define ql('my.queue')"), "AMQ8006I: Queue my.queue was created.\n");
    EXPECT_NE(idOf("MY.QUEUE"), idOf("my.queue"));
}

TEST_F(Mqsc, EverySynonymIsUnderstood)
{
    for (const char *command : {"DEF QL(A)",       "DEFINE QLOCAL(B)", "ALT QL(A) MAXDEPTH(1)",
                                "ALTER QLOCAL(A)", "DIS QL(A)",        "DISPLAY QLOCAL(A)",
                                "DIS Q(A)",        "DISPLAY QUEUE(A)", "CLEAR QL(A)",
                                "CLEAR QLOCAL(A)", "DELETE QL(A)",     "DELETE QLOCAL(B)",
                                "DIS QMGR",        "ALT QMGR",         "PING QMGR",
                                "DIS QSTATUS(*)",  "DIS QS(*)",        "DIS CONN(*)",
                                "DIS NL(*)",       "DIS PRO(*)",       "DIS QA(*)",
                                "DIS QR(*)",       "DIS QM(*)"})
        EXPECT_EQ(run(command).result, CommandResult::Done) << command << '\n' << answer(command);
}

constexpr objects::ObjectKind kindsWithNames[] = {objects::ObjectKind::LocalQueue,  objects::ObjectKind::AliasQueue,
                                                  objects::ObjectKind::RemoteQueue, objects::ObjectKind::ModelQueue,
                                                  objects::ObjectKind::Namelist,    objects::ObjectKind::Process};

// A value of the attribute that is not its default.
objects::AttributeValue anotherValue(const objects::Attribute &row)
{
    if (row.isText()) return {0, "X.Y"};
    if (row.value != objects::ValueKind::Number) return {row.words.back().value, {}};
    return {row.selector == MQIA_Q_DEPTH_LOW_LIMIT ? row.low : row.high, {}};
}

TEST_F(Mqsc, EveryAlterableAttributeComesBackFromDisplay)
{
    std::vector<std::pair<objects::ObjectKind, std::string>> made = {{objects::ObjectKind::QueueManager, "QMGR"}};
    for (const objects::ObjectKind kind : kindsWithNames) {
        const std::string word(objects::commandWord(kind));
        made.emplace_back(kind, word + "(MY." + word + ')');
        ASSERT_EQ(run("DEFINE " + made.back().second).result, CommandResult::Done);
    }
    for (const auto &[kind, object] : made) {
        for (const objects::Attribute &row : objects::attributes()) {
            if (!objects::contains(row.kinds, kind) || row.access != objects::Access::Alterable) continue;
            const std::string shown = objects::formatAttribute(row, anotherValue(row));
            const CommandAnswer altered = run("ALTER " + object + ' ' + shown);
            EXPECT_EQ(altered.result, CommandResult::Done) << shown << ' ' << altered.lines[0];
            const std::string displayed = answer("DISPLAY " + object + ' ' + std::string(row.keyword));
            EXPECT_NE(displayed.find(shown), std::string::npos) << shown << '\n' << displayed;
            // Texts become blank again: some of them exclude others.
            if (row.isText()) {
                EXPECT_EQ(run("ALTER " + object + ' ' + std::string(row.keyword) + "()").result, CommandResult::Done);
            }
        }
    }
}

TEST_F(Mqsc, AttributesThatExcludeEachOtherAreRefused)
{
    EXPECT_EQ(answer("DEF QL(Q1) CLUSTER(A) CLUSNL(B)"),
              "AMQ8404E: The command failed: only one of CLUSTER and CLUSNL may be set.\n");
    EXPECT_EQ(answer("ALTER QMGR REPOS(A) REPOSNL(B)"),
              "AMQ8404E: The command failed: only one of REPOS and REPOSNL may be set.\n");
    EXPECT_EQ(answer("DEF QM(Q1) QDEPTHLO(81)"), "AMQ8404E: The command failed: QDEPTHLO may not be above QDEPTHHI.\n");
    EXPECT_EQ(run("DIS QUEUE(Q1)").result, CommandResult::Failed);
    EXPECT_NE(answer("DIS QMGR REPOS").find("REPOS( )"), std::string::npos);
}

TEST_F(Mqsc, QuotedNamesOfAListHaveNoCommas)
{
    EXPECT_EQ(answer("DEF NL(N1) NAMES(A, 'B,C')"),
              "AMQ8405E: Syntax error at line 1, column 21: NAMES takes a name of A-Z a-z 0-9 . / _ % or a blank.\n"
              "   DEF NL(N1) NAMES(A, 'B,C')\n"
              "                       ^\n");
    EXPECT_EQ(run("DIS NL(N1)").result, CommandResult::Failed);
}

TEST_F(Mqsc, QueuesWhoseTriggeringIsTouchedAreTold)
{
    EXPECT_EQ(run("DEF QL(Q1) TRIGGER").triggering, "Q1");
    for (const char *touches :
         {"ALTER QL(Q1) TRIGGER", "ALTER QL(Q1) NOTRIGGER", "ALTER QL(Q1) TRIGTYPE(EVERY)", "ALTER QL(Q1) TRIGDPTH(2)",
          "ALTER QL(Q1) TRIGMPRI(3)", "ALTER QL(Q1) GET(ENABLED)", "DEF QL(Q1) REPLACE"})
        EXPECT_EQ(run(touches).triggering, "Q1") << touches;
    for (const char *other : {"ALTER QL(Q1) PUT(DISABLED)", "ALTER QL(NONE) TRIGGER", "DEF QL(Q1) TRIGGER",
                              "DEF QM(M1) TRIGGER", "DEF QA(A1) GET(ENABLED)", "DIS QL(Q1) TRIGGER"})
        EXPECT_EQ(run(other).triggering, "") << other;
}

TEST_F(Mqsc, DefineNeedsNoDefaultObject)
{
    for (const objects::ObjectKind kind : kindsWithNames) {
        const std::string word(objects::commandWord(kind));
        ASSERT_EQ(run("DELETE " + word + '(' + std::string(objects::defaultObject(kind)) + ')').result,
                  CommandResult::Done);
        EXPECT_EQ(run("DEFINE " + word + "(MY." + word + ')').result, CommandResult::Done);
    }
    EXPECT_NE(answer("DIS QL(MY.QLOCAL) MAXDEPTH").find("MAXDEPTH(5000)"), std::string::npos);
}

TEST_F(Mqsc, FixedAndDynamicAttributesCannotBeSet)
{
    ASSERT_EQ(run("DEF QL(Q1)").result, CommandResult::Done);
    for (const char *command : {"ALTER QL(Q1) CURDEPTH(5)", "ALTER QL(Q1) CRDATE(2020-01-01)", "ALTER QMGR QMID(X)",
                                "ALTER QMGR CMDLEVEL(1)", "DEF QL(Q2) TYPE(QLOCAL)", "ALTER QMGR QMNAME(X)"})
        EXPECT_EQ(run(command).result, CommandResult::SyntaxError) << command;
}

TEST_F(Mqsc, FaultsNameTheirPlace)
{
    EXPECT_EQ(answer("DEF QL(Q1) MAXDEPTH(abc)"),
              "AMQ8405E: Syntax error at line 1, column 21: MAXDEPTH is a number from 0 to 999999999.\n"
              "   DEF QL(Q1) MAXDEPTH(abc)\n"
              "                       ^\n");
    EXPECT_EQ(answer("DEF QL(Q1) MAXDEPTH(1000000000)").substr(0, 45), "AMQ8412E: Number out of range at line 1, colu");
    EXPECT_EQ(answer("DEF QL(Q1) SHARE NOSHARE").substr(0, 41), "AMQ8411E: Keyword given more than once at");
    EXPECT_EQ(answer("DEF QL(Q1) DESCR('" + std::string(65, 'x') + "')").substr(0, 23), "AMQ8413E: Text too long");
    EXPECT_EQ(answer("DEF QL(" + std::string(49, 'x') + ")").substr(0, 23), "AMQ8413E: Text too long");
    EXPECT_EQ(answer("FROBNICATE"),
              "AMQ8405E: Syntax error at line 1, column 1: the command begins with ALTER, CLEAR, DEFINE, DELETE, "
              "DISPLAY or PING.\n"
              "   FROBNICATE\n"
              "   ^\n");
    EXPECT_EQ(answer("CLEAR QMGR").substr(0, 85),
              "AMQ8405E: Syntax error at line 1, column 7: CLEAR is followed by QLOCAL or TOPICSTR.\n");
}

TEST_F(Mqsc, EachFaultSaysWhatWouldBeRight)
{
    std::string tooMany = "DEF NAMELIST(N1) NAMES(A";
    for (int n = 0; n < 256; ++n)
        tooMany += ",A";
    const std::vector<std::pair<std::string, std::string>> faults{
        {"DELETE QL(Q1) FROB", "DELETE QLOCAL takes only PURGE or NOPURGE, without a value"},
        {"DELETE QL(Q1) PURGE(YES)", "DELETE QLOCAL takes only PURGE or NOPURGE, without a value"},
        {"CLEAR QL(Q1) SHARE", "CLEAR QLOCAL takes only a name"},
        {"DIS QMGR(QM1)", "QMGR takes no name"},
        {"ALTER QMGR(QM1) DESCR(x)", "QMGR takes no name"},
        {"PING QMGR(QM1)", "PING QMGR takes no name and no parameters"},
        {"PING QMGR DESCR", "PING QMGR takes no name and no parameters"},
        {tooMany + ')', "NAMES has at most 256 names"},
        {"DEF QL(Q1) DESCR('a\x01z')", "DESCR takes no control characters"},
        {"DEF QL(Q1) REPLACE(YES)", "REPLACE takes no value"},
        {"DEF QL(Q1) LIKE", "LIKE takes a name in parentheses"},
        {"DEF QL(Q1) LIKE(A,B)", "LIKE takes the name of an object"},
        {"DEF QL(Q1) LIKE('A B')", "LIKE takes the name of an object"},
        {"DEF QL(Q1) SHARE(YES)", "SHARE takes no value"},
        {"DEF QL(Q1) MAXDEPTH", "MAXDEPTH takes a value in parentheses"},
        {"DEF QL(Q1) DESCR(a,b)", "a value with blanks or commas in it stands between quotes"},
        {"DEF QL(Q1,Q2)", "only one name may be given"},
        {"DEF QL()", "the name is empty"},
    };
    for (const auto &[command, reason] : faults) {
        EXPECT_EQ(run(command).result, CommandResult::SyntaxError) << command;
        EXPECT_NE(answer(command).find(reason), std::string::npos) << command << '\n' << answer(command);
    }
    EXPECT_EQ(idOf("Q1"), 0U);
    EXPECT_EQ(run("DEF QL(Q1) NOREPLACE").result, CommandResult::Done);
    EXPECT_EQ(run("ALTER QL(Q1) NOSHARE FORCE").result, CommandResult::Done);
}

TEST_F(Mqsc, EachReasonOfTheStoreHasItsMessage)
{
    const std::vector<std::pair<MQLONG, std::string>> messages{
        {MQRC_OBJECT_DAMAGED, "AMQ8149E: The definition of object Q1 is damaged."},
        {MQRC_NOT_AUTHORIZED, "AMQ8135E: Not authorized: the files of the queue manager do not allow it."},
        {MQRC_Q_MGR_STOPPING, "AMQ8146E: The queue manager is not available."},
        {MQRC_CONNECTION_BROKEN, "AMQ8145E: The connection to the queue manager is broken."},
        {MQRC_HCONN_ERROR, "AMQ8145E: The connection to the queue manager is broken."},
        {MQRC_STORAGE_NOT_AVAILABLE, "AMQ8404E: The command failed: no storage is left."},
        {MQRC_RESOURCE_PROBLEM, "AMQ8404E: The command failed: no storage is left."},
    };
    for (const auto &[reason, message] : messages)
        EXPECT_EQ(formatFailure(failure(reason), "Q1"), message) << reason;
    EXPECT_EQ(formatFailure(failure(MQRC_UNEXPECTED_ERROR), "Q1").substr(0, 9), "AMQ8101E:");
}

TEST_F(Mqsc, ADefinitionThatCannotBeReadIsSaidToBeDamaged)
{
    ASSERT_EQ(run("DEF QL(Q1)").result, CommandResult::Done);
    auto stored = attachment_->findDefinition(MQOT_Q, "Q1");
    ASSERT_TRUE(stored);
    stored->bytes = "not what an object is stored as";
    ASSERT_TRUE(attachment_->alter(*stored, std::nullopt).ok());
    for (const char *command : {"ALTER QL(Q1) SHARE", "DIS QL(Q1)", "CLEAR QL(Q1)"})
        EXPECT_EQ(answer(command).substr(0, 9), "AMQ8149E:") << command << '\n' << answer(command);
    EXPECT_NE(answer("DIS QL(*) MAXDEPTH").find("MAXDEPTH("), std::string::npos); // the others are shown
}

TEST_F(Mqsc, NothingIsDoneByACommandWithAFault)
{
    ASSERT_EQ(run("DEF QL(Q1) MAXDEPTH(5)").result, CommandResult::Done);
    EXPECT_EQ(run("ALTER QL(Q1) MAXDEPTH(6) MAXMSGL(-1)").result, CommandResult::SyntaxError);
    EXPECT_NE(answer("DIS QL(Q1) MAXDEPTH").find("MAXDEPTH(5)"), std::string::npos);
}

TEST_F(Mqsc, FailuresAreAnsweredInMqsNumbers)
{
    ASSERT_EQ(run("DEF QL(Q1)").result, CommandResult::Done);
    EXPECT_EQ(answer("DEF QL(Q1)"), "AMQ8150E: Object Q1 exists already.\n");
    EXPECT_EQ(answer("ALTER QL(Q2) SHARE"), "AMQ8147E: There is no object Q2.\n");
    EXPECT_EQ(answer("DELETE QL(Q2)"), "AMQ8147E: There is no object Q2.\n");
    EXPECT_EQ(answer("DIS QL(NO*)"), "AMQ8147E: There is no object NO*.\n");
    EXPECT_EQ(answer("DEF QL(Q3) LIKE(Q2)"), "AMQ8147E: There is no object Q2.\n");
    put("Q1", MQPER_NOT_PERSISTENT);
    EXPECT_EQ(answer("DELETE QL(Q1)"), "AMQ8143E: Queue Q1 has messages.\n");
    open(*attachment_, idOf("Q1"), {.input = 0, .exclusive = 0, .output = 1, .browse = 0});
    EXPECT_EQ(answer("CLEAR QL(Q1)"), "AMQ8148E: Object Q1 is in use: a program has it open.\n");
    EXPECT_EQ(run("CLEAR QL(Q1)").result, CommandResult::Failed);
}

TEST_F(Mqsc, ClearPassesByWhatAKilledProgramHadOpen)
{
    ASSERT_EQ(run("DEF QL(Q1)").result, CommandResult::Done);
    put("Q1", MQPER_NOT_PERSISTENT);
    test::WaitingProgram program([this] {
        store::Attachment *mine = connect().release(); // as it is when the program is killed
        open(*mine, mine->findDefinition(MQOT_Q, "Q1")->queue, {.input = 1, .exclusive = 0, .output = 1, .browse = 0});
        return true;
    });
    EXPECT_EQ(answer("CLEAR QL(Q1)"), "AMQ8148E: Object Q1 is in use: a program has it open.\n");
    program.kill();
    EXPECT_EQ(run("CLEAR QL(Q1)").result, CommandResult::Done);
    EXPECT_EQ(statusOf("Q1").depth, 0U);
}

TEST_F(Mqsc, DisplayShowsWhatIsAskedFor)
{
    ASSERT_EQ(run("DEF QL(A.1) MAXDEPTH(5)").result, CommandResult::Done);
    ASSERT_EQ(run("DEF QL(A.2) MAXDEPTH(6)").result, CommandResult::Done);
    EXPECT_EQ(answer("DIS QL(A.1*)"), "AMQ8409I: Queue details:\n"
                                      "   QUEUE(A.1)                              TYPE(QLOCAL)\n");
    EXPECT_EQ(answer("DIS QL(A.*) CURDEPTH MAXDEPTH NOSHARE"),
              "AMQ8409I: Queue details:\n"
              "   QUEUE(A.1)                              TYPE(QLOCAL)\n"
              "   CURDEPTH(0)                             MAXDEPTH(5)\n"
              "   SHARE\n"
              "AMQ8409I: Queue details:\n"
              "   QUEUE(A.2)                              TYPE(QLOCAL)\n"
              "   CURDEPTH(0)                             MAXDEPTH(6)\n"
              "   SHARE\n");
    EXPECT_EQ(answer("DIS QL(A.*) WHERE(MAXDEPTH GT 5)"), "AMQ8409I: Queue details:\n"
                                                          "   QUEUE(A.2)                              TYPE(QLOCAL)\n"
                                                          "   MAXDEPTH(6)\n");
    EXPECT_EQ(run("DIS QL(A.*) WHERE(MAXDEPTH GT 6)").result, CommandResult::Failed);
    EXPECT_EQ(run("DIS QL(A.*) WHERE(MAXDEPTH)").result, CommandResult::SyntaxError);
    EXPECT_EQ(run("DIS QL(A*B)").result, CommandResult::SyntaxError);
}

TEST_F(Mqsc, EverythingIsShownOfAnObjectThatIsNamedAlone)
{
    EXPECT_EQ(answer("DIS QL(SYSTEM.DEFAULT.LOCAL.QUEUE)"), answer("DIS QL(SYSTEM.DEFAULT.LOCAL.QUEUE) ALL"));
    EXPECT_NE(answer("DIS QL(SYSTEM.DEFAULT.LOCAL.QUEUE)"), answer("DIS QL(SYSTEM.DEFAULT.LOCAL.QUEUE*)"));
}

TEST_F(Mqsc, DisplayAllShowsEveryAttributeOnce)
{
    const std::string shown = answer("DIS QL(SYSTEM.DEFAULT.LOCAL.QUEUE) ALL");
    for (const objects::Attribute &row : objects::attributes()) {
        if (!objects::contains(row.kinds, objects::ObjectKind::LocalQueue)) continue;
        if (row.value == objects::ValueKind::Flag) continue;
        const std::string part = ' ' + std::string(row.keyword) + '(';
        const std::size_t first = shown.find(part);
        ASSERT_NE(first, std::string::npos) << row.keyword;
        EXPECT_EQ(shown.find(part, first + 1), std::string::npos) << row.keyword;
    }
}

TEST_F(Mqsc, AnyBytesAreAnswered)
{
    std::mt19937 random(2);
    const std::vector<std::string> parts = {
        "DEF ",  "ALTER ", "DIS ",     "QL",    "QMGR ", "(",  ")",          "Q1",    "'",
        ",",     ";",      "MAXDEPTH", "DESCR", "*",     " ",  "9999999999", "\xff",  std::string(1, '\0'),
        "WHERE", "LIKE",   "REPLACE ", "NL",    "QA",    "QS", "CONN",       "QUEUE", "NAMES",
        "TYPE",  "HANDLE", " EQ ",     " CT "};
    for (int i = 0; i < 3000; ++i) {
        std::string line = "X";
        for (std::size_t n = random() % 12; n > 0; --n)
            line += parts[random() % parts.size()];
        line.erase(0, random() % 2);
        if (line.find_first_not_of(" \t") == std::string::npos || line.starts_with('*')) continue;
        EXPECT_FALSE(run(line).lines.empty());
    }
    EXPECT_EQ(run(std::string(1000000, '(')).result, CommandResult::SyntaxError);
    EXPECT_EQ(run("DEF QL(" + std::string(1000000, 'A') + ")").result, CommandResult::SyntaxError);
}

} // namespace
} // namespace mqrig::qmgr::command
