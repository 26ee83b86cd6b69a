// Topics and subscriptions in the command language.
#include "queue_manager_fixture.h"

namespace mqrig::qmgr::command {
namespace {

class MqscTopics : public QueueManagerFixture {};

TEST_F(MqscTopics, TopicIsDefinedShownAlteredAndDeleted)
{
    EXPECT_EQ(answer("DEF TOPIC(FRUIT) TOPICSTR('fruit/fresh') DESCR('All fruit') DEFPRTY(3)"),
              "AMQ8690I: Topic FRUIT was created.\n");
    EXPECT_EQ(answer("ALTER TOPIC(FRUIT) PUB(DISABLED) DURSUB(NO)"), "AMQ8691I: Topic FRUIT was changed.\n");
    EXPECT_EQ(answer("DIS TOPIC(FRUIT) TOPICSTR DEFPRTY DEFPSIST PUB DURSUB"),
              "AMQ8633I: Topic details:\n"
              "   TOPIC(FRUIT)                            TYPE(LOCAL)\n"
              "   DEFPRTY(3)                              DEFPSIST(ASPARENT)\n"
              "   DURSUB(NO)                              PUB(DISABLED)\n"
              "   TOPICSTR(fruit/fresh)\n");
    EXPECT_EQ(answer("DELETE TOPIC(FRUIT)"), "AMQ8692I: Topic FRUIT was deleted.\n");
    EXPECT_EQ(answer("DIS TOPIC(FRUIT)"), "AMQ8147E: There is no object FRUIT.\n");
}

TEST_F(MqscTopics, BaseTopicHasNothingLeftToAParent)
{
    const std::string shown = answer("DIS TOPIC(SYSTEM.BASE.TOPIC)");
    EXPECT_EQ(shown.find("ASPARENT"), std::string::npos) << shown;
    EXPECT_NE(shown.find("PMSGDLV(ALLDUR)"), std::string::npos) << shown;
}

TEST_F(MqscTopics, TopicStringIsNeededUniqueAndForEver)
{
    EXPECT_EQ(answer("DEF TOPIC(A)"), "AMQ8404E: The command failed: TOPICSTR is missing, or is no topic string.\n");
    EXPECT_EQ(answer("DEF TOPIC(A) TOPICSTR('a/')"),
              "AMQ8404E: The command failed: TOPICSTR is missing, or is no topic string.\n");
    EXPECT_EQ(run("DEF TOPIC(A) TOPICSTR(a)").result, CommandResult::Done);
    EXPECT_EQ(answer("DEF TOPIC(B) TOPICSTR(a)"),
              "AMQ8404E: The command failed: another topic object has this TOPICSTR.\n");
    EXPECT_EQ(answer("ALTER TOPIC(A) TOPICSTR(b)"), "AMQ8404E: The command failed: the topic cannot be altered.\n");
    EXPECT_EQ(run("DEF TOPIC(A) TOPICSTR(a) REPLACE DEFPRTY(1)").result, CommandResult::Done);
}

TEST_F(MqscTopics, SubscriptionIsDefinedShownAlteredAndDeleted)
{
    ASSERT_EQ(run("DEF QL(Q1)").result, CommandResult::Done);
    EXPECT_EQ(answer("DEF SUB('my sub') TOPICSTR('fruit/#') DEST(Q1) USERDATA('my data') DESTCORL(0A0b)"),
              "AMQ8094I: Subscription my sub was created.\n");
    EXPECT_EQ(answer("DEF SUB('my sub') TOPICSTR('x') DEST(Q1)"), "AMQ8150E: Subscription my sub exists already.\n");
    EXPECT_EQ(answer("ALTER SUB('my sub') PUBPRTY(4) EXPIRY(UNLIMITED)"),
              "AMQ8097I: Subscription my sub was changed.\n");
    EXPECT_EQ(answer("DIS SUB(my*)"), "AMQ8147E: There is no subscription MY*.\n");
    EXPECT_EQ(answer("DIS SUB('my*') TOPICSTR DEST DESTCLAS DESTCORL DURABLE PUBPRTY SUBTYPE USERDATA WSCHEMA"),
              "AMQ8096I: Subscription details:\n"
              "   SUB(my sub)                             DEST(Q1)\n"
              "   DESTCLAS(PROVIDED)\n"
              "   DESTCORL(0A0B00000000000000000000000000000000000000000000)\n"
              "   DURABLE(YES)                            PUBPRTY(4)\n"
              "   SUBTYPE(ADMIN)                          TOPICSTR(fruit/#)\n"
              "   USERDATA(my data)                       WSCHEMA(TOPIC)\n");
    EXPECT_EQ(run("DIS SUB(*) WHERE(DEST EQ Q2)").result, CommandResult::Failed);
    EXPECT_EQ(answer("DELETE SUB('my sub')"), "AMQ8091I: Subscription my sub was deleted.\n");
    EXPECT_EQ(answer("DELETE SUB('my sub')"), "AMQ8147E: There is no subscription my sub.\n");
    EXPECT_EQ(answer("ALTER SUB(NONE) PUBPRTY(1)"), "AMQ8147E: There is no subscription NONE.\n");
}

TEST_F(MqscTopics, SubscriptionShowsEveryAttributeAsItWasGiven)
{
    ASSERT_EQ(run("DEF QL(Q1)").result, CommandResult::Done);
    ASSERT_EQ(run("DEF TOPIC(T1) TOPICSTR(fruit)").result, CommandResult::Done);
    ASSERT_EQ(
        answer(
            "DEF SUB(S) TOPICOBJ(T1) TOPICSTR(apple) DEST(Q1) DESTQMGR(QM2) EXPIRY(1000) PSPROP(NONE) PUBAPPID('an id')"
            " PUBPRTY(7) REQONLY(YES) SELECTOR('a = 1') SUBLEVEL(3) SUBSCOPE(QMGR) VARUSER(FIXED)"
            " WSCHEMA(CHAR)"),
        "AMQ8094I: Subscription S was created.\n");
    EXPECT_EQ(
        answer("DIS SUB(S) DESTQMGR EXPIRY PSPROP PUBAPPID PUBPRTY REQONLY SELECTOR SUBLEVEL SUBSCOPE TOPICOBJ TOPICSTR"
               " VARUSER WSCHEMA"),
        "AMQ8096I: Subscription details:\n"
        "   SUB(S)                                  DESTQMGR(QM2)\n"
        "   EXPIRY(1000)                            PSPROP(NONE)\n"
        "   PUBAPPID(an id)                         PUBPRTY(7)\n"
        "   REQONLY(YES)                            SELECTOR(a = 1)\n"
        "   SUBLEVEL(3)                             SUBSCOPE(QMGR)\n"
        "   TOPICOBJ(T1)                            TOPICSTR(FRUIT/APPLE)\n"
        "   VARUSER(FIXED)                          WSCHEMA(CHAR)\n");
    const std::string all = answer("DIS SUB(S) ALL");
    for (const char *keyword : {"CRDATE(20", "CRTIME(", "PUBACCT(", "SUBID(", "SUBUSER("})
        EXPECT_NE(all.find(keyword), std::string::npos) << keyword << " in " << all;
}

TEST_F(MqscTopics, ManagedSubscriptionHasItsQueue)
{
    ASSERT_EQ(run("DEF SUB(S) TOPICSTR(t) DESTCLAS(MANAGED)").result, CommandResult::Done);
    EXPECT_NE(answer("DIS Q(SYSTEM.MANAGED.DURABLE.*) DEFTYPE").find("DEFTYPE(PERMDYN)"), std::string::npos);
    EXPECT_EQ(answer("ALTER SUB(S) DEST(Q1)"),
              "AMQ8404E: The command failed: the queue of a managed subscription cannot be altered.\n");
    const std::string queue = answer("DIS SUB(S) DEST");
    ASSERT_EQ(answer("DEF SUB(S) TOPICSTR(t) DESTCLAS(MANAGED) USERDATA('new') REPLACE"),
              "AMQ8094I: Subscription S was created.\n");
    EXPECT_EQ(answer("DIS SUB(S) DEST"), queue);
    ASSERT_EQ(run("DELETE SUB(S)").result, CommandResult::Done);
    EXPECT_EQ(run("DIS Q(SYSTEM.MANAGED.*)").result, CommandResult::Failed);
}

TEST_F(MqscTopics, SubscriptionThatCannotBeIsRefused)
{
    ASSERT_EQ(run("DEF TOPIC(A) TOPICSTR(a) SUB(DISABLED)").result, CommandResult::Done);
    ASSERT_EQ(run("DEF TOPIC(B) TOPICSTR('b') DURSUB(NO)").result, CommandResult::Done);
    const auto fails = [this](const std::string &command, const std::string &because) {
        EXPECT_EQ(answer(command), "AMQ8404E: The command failed: " + because + ".\n");
    };
    fails("DEF SUB(S) DEST(Q1)", "TOPICSTR is missing, or is no topic string");
    fails("DEF SUB(S) TOPICSTR('%a') WSCHEMA(CHAR) DEST(Q1)", "TOPICSTR is missing, or is no topic string");
    fails("DEF SUB(S) TOPICSTR(t)", "DEST is missing, or there is no model of a managed queue");
    fails("DEF SUB(S) TOPICOBJ(A) TOPICSTR(x) DEST(Q1)", "the topic does not allow subscriptions");
    fails("DEF SUB(S) TOPICSTR('b/x') DEST(Q1)", "the topic does not allow durable subscriptions");
    fails("DEF SUB(S) TOPICSTR(t) DEST(Q1) DESTCORL(XYZ)", "DESTCORL takes up to 48 hexadecimal digits");
    EXPECT_EQ(answer("DEF SUB(S) TOPICOBJ(NOSUCH) DEST(Q1)"), "AMQ8147E: There is no object S.\n");
    for (const char *command : {"DEF SUB TOPICSTR(t)", "DEF SUB() TOPICSTR(t)", "DEF SUB(S) TOPICSTR(t) DURABLE(NO)",
                                "DEF SUB(S) TOPICSTR(t) TOPICSTR(u)", "DEF SUB(S) FROB(1)", "DELETE SUB(S) PURGE"})
        EXPECT_EQ(run(command).result, CommandResult::SyntaxError) << command;
    EXPECT_EQ(run("DIS SUB(*)").result, CommandResult::Failed);
    const std::string longest(MQ_SUB_NAME_LENGTH, 'S');
    EXPECT_EQ(run("DEF SUB(" + longest + ") TOPICSTR(t) DEST(Q1)").result, CommandResult::Done);
    EXPECT_EQ(answer("DEF SUB(" + longest + "S) TOPICSTR(t) DEST(Q1)"),
              "AMQ8405E: Syntax error at line 1, column 9: at most 10240 bytes may be given.\n"
              "   DEF SUB(SSSSSSSSSSSSSSS...\n"
              "           ^\n");
}

TEST_F(MqscTopics, SelectorIsJudgedWhenItIsDefined)
{
    EXPECT_EQ(run("DEF SUB(S) TOPICSTR(t) DEST(Q1) SELECTOR('color = ''red''')").result, CommandResult::Done);
    EXPECT_EQ(answer("DIS SUB(S) SELECTOR"), "AMQ8096I: Subscription details:\n"
                                             "   SUB(S)                                  SELECTOR(color = 'red')\n");
    EXPECT_EQ(answer("DEF SUB(T) TOPICSTR(t) DEST(Q1) SELECTOR('color = ')"),
              "AMQ8404E: The command failed: SELECTOR is no selection string.\n");
    EXPECT_EQ(answer("DEF SUB(T) TOPICSTR(t) DEST(Q1) SELECTOR('1 = 2')"),
              "AMQ8404E: The command failed: SELECTOR is never true.\n");
}

TEST_F(MqscTopics, WhatMakesASubscriptionIsNotAltered)
{
    ASSERT_EQ(run("DEF SUB(S) TOPICSTR(t) DEST(Q1)").result, CommandResult::Done);
    const std::string before = answer("DIS SUB(S) ALL");
    const auto fails = [this](const std::string &attribute, const std::string &because) {
        EXPECT_EQ(answer("ALTER SUB(S) PUBPRTY(4) " + attribute), "AMQ8404E: The command failed: " + because + ".\n");
    };
    fails("TOPICSTR(u)", "the topic cannot be altered");
    fails("TOPICOBJ(T)", "the topic cannot be altered");
    fails("WSCHEMA(CHAR)", "the topic cannot be altered");
    fails("SUBSCOPE(QMGR)", "the topic cannot be altered");
    fails("SELECTOR('a = 1')", "SELECTOR cannot be altered");
    fails("SUBLEVEL(2)", "SUBLEVEL cannot be altered");
    fails("DESTCLAS(MANAGED)", "the queue of a managed subscription cannot be altered");
    EXPECT_EQ(answer("DIS SUB(S) ALL"), before);
}

TEST_F(MqscTopics, ASubscriptionThatCannotBeReadIsSaidToBeDamaged)
{
    ASSERT_EQ(run("DEF SUB(S) TOPICSTR(t) DEST(Q1)").result, CommandResult::Done);
    auto stored = attachment_->definitions(store::subscriptions).front();
    stored.bytes = "not what a subscription is stored as";
    ASSERT_TRUE(attachment_->alter(stored, std::nullopt).ok());
    for (const char *command : {"DEF SUB(S) TOPICSTR(t) DEST(Q1)", "DEF SUB(S) TOPICSTR(t) DEST(Q1) REPLACE",
                                "ALTER SUB(S) PUBPRTY(1)", "DELETE SUB(S)"})
        EXPECT_EQ(answer(command), "AMQ8149E: The definition of object S is damaged.\n") << command;
}

TEST_F(MqscTopics, SubscriptionIsReplacedAsFarAsItCanBeAltered)
{
    ASSERT_EQ(run("DEF SUB(S) TOPICSTR(t) DEST(Q1) USERDATA('one') PUBPRTY(3)").result, CommandResult::Done);
    const std::string id = answer("DIS SUB(S) SUBID");
    EXPECT_EQ(answer("DEF SUB(S) TOPICSTR(t) DEST(Q2) USERDATA('two') NOREPLACE"),
              "AMQ8150E: Subscription S exists already.\n");
    EXPECT_EQ(answer("DEF SUB(S) TOPICSTR(t) DEST(Q2) USERDATA('two') REPLACE"),
              "AMQ8094I: Subscription S was created.\n");
    EXPECT_EQ(answer("DIS SUB(S) DEST PUBPRTY USERDATA"), "AMQ8096I: Subscription details:\n"
                                                          "   SUB(S)                                  DEST(Q2)\n"
                                                          "   PUBPRTY(ASPUB)                          USERDATA(two)\n");
    EXPECT_EQ(answer("DIS SUB(S) SUBID"), id);
    const auto fails = [this](const std::string &attributes, const std::string &because) {
        EXPECT_EQ(answer("DEF SUB(S) REPLACE " + attributes), "AMQ8404E: The command failed: " + because + ".\n");
    };
    fails("TOPICSTR(u) DEST(Q2)", "the topic cannot be altered");
    fails("TOPICSTR(t) DEST(Q2) WSCHEMA(CHAR)", "the topic cannot be altered");
    fails("TOPICSTR(t) DEST(Q2) SELECTOR('a = 1')", "SELECTOR cannot be altered");
    fails("TOPICSTR(t) DEST(Q2) SUBLEVEL(2)", "SUBLEVEL cannot be altered");
    fails("TOPICSTR(t) DESTCLAS(MANAGED)", "the queue of a managed subscription cannot be altered");
    EXPECT_EQ(run("DEF SUB(NEW) TOPICSTR(t) DEST(Q1) REPLACE").result, CommandResult::Done);
    EXPECT_EQ(run("ALTER SUB(S) REPLACE").result, CommandResult::SyntaxError);
}

TEST_F(MqscTopics, SubscriptionIsMadeLikeAnother)
{
    ASSERT_EQ(run("DEF SUB(S) TOPICSTR('a/#') DEST(Q1) USERDATA('data') PUBPRTY(3) SUBLEVEL(4)").result,
              CommandResult::Done);
    EXPECT_EQ(run("DEF SUB(T) LIKE(S) USERDATA('other')").result, CommandResult::Done);
    EXPECT_EQ(answer("DIS SUB(T) DEST PUBPRTY SUBLEVEL TOPICSTR USERDATA"),
              "AMQ8096I: Subscription details:\n"
              "   SUB(T)                                  DEST(Q1)\n"
              "   PUBPRTY(3)                              SUBLEVEL(4)\n"
              "   TOPICSTR(a/#)                           USERDATA(other)\n");
    EXPECT_NE(answer("DIS SUB(T) SUBID").substr(60), answer("DIS SUB(S) SUBID").substr(60));
    EXPECT_EQ(run("DEF SUB(U) LIKE(S) TOPICSTR('b')").result, CommandResult::Done);
    EXPECT_NE(answer("DIS SUB(U) TOPICSTR").find("TOPICSTR(b)"), std::string::npos);
    EXPECT_EQ(run("DEF SUB(M) TOPICSTR('m') DESTCLAS(MANAGED)").result, CommandResult::Done);
    EXPECT_EQ(run("DEF SUB(N) LIKE(M)").result, CommandResult::Done);
    EXPECT_NE(answer("DIS SUB(M) DEST").substr(60), answer("DIS SUB(N) DEST").substr(60));
    EXPECT_EQ(answer("DEF SUB(V) LIKE(NONE)"), "AMQ8147E: There is no subscription NONE.\n");
}

TEST_F(MqscTopics, StatusOfASubscriptionTellsWhoHasItOpen)
{
    ASSERT_EQ(run("DEF SUB(S) TOPICSTR('t') DEST(Q1)").result, CommandResult::Done);
    EXPECT_NE(answer("DIS SBSTATUS(S)").find("ACTCONN( )"), std::string::npos) << answer("DIS SBSTATUS(S)");
    EXPECT_NE(answer("DIS SBSTATUS(S)").find("TOPICSTR(t)"), std::string::npos);
    const auto other = connect();
    open(*other, other->definitions(store::subscriptions).front().queue,
         {.input = 1, .exclusive = 1, .output = 0, .browse = 0});
    EXPECT_NE(answer("DIS SBSTATUS(*) ACTCONN").find("ACTCONN(414D5143514D31"), std::string::npos);
    EXPECT_EQ(answer("DIS SBSTATUS(T)"), "AMQ8147E: There is no subscription T.\n");
}

TEST_F(MqscTopics, StatusOfATopicTellsWhatHoldsThere)
{
    ASSERT_EQ(run("DEF TOPIC(A) TOPICSTR('a') DEFPRTY(5)").result, CommandResult::Done);
    ASSERT_EQ(run("DEF SUB(S) TOPICSTR('a/b/c') DEST(Q1)").result, CommandResult::Done);
    ASSERT_EQ(run("DEF SUB(T) TOPICSTR('a/b/c') DEST(Q1)").result, CommandResult::Done);
    EXPECT_EQ(answer("DIS TPSTATUS('a/b/c') ADMIN DEFPRTY RETAINED SUB SUBCOUNT"),
              "AMQ8754I: Topic status details:\n"
              "   TOPICSTR(a/b/c)                         ADMIN( )\n"
              "   DEFPRTY(5)                              RETAINED(NO)\n"
              "   SUB(ENABLED)                            SUBCOUNT(2)\n");
    EXPECT_EQ(answer("DIS TPSTATUS('a/b/c') MDURMDL MNDURMDL PUBSCOPE"),
              "AMQ8754I: Topic status details:\n"
              "   TOPICSTR(a/b/c)                         MDURMDL(SYSTEM.DURABLE.MODEL.QUEUE)\n"
              "   MNDURMDL(SYSTEM.NDURABLE.MODEL.QUEUE)   PUBSCOPE(ALL)\n");
    EXPECT_EQ(answer("DIS TPS('a/+') TYPE(TOPIC) SUBCOUNT"),
              "AMQ8754I: Topic status details:\n"
              "   TOPICSTR(a/b)                           SUBCOUNT(0)\n");
    EXPECT_EQ(answer("DIS TPSTATUS('a') ADMIN"), "AMQ8754I: Topic status details:\n"
                                                 "   TOPICSTR(a)                             ADMIN(A)\n");
    EXPECT_EQ(answer("DIS TPSTATUS('x')"), "AMQ8147E: There is no topic x.\n");
    EXPECT_EQ(answer("DIS PUBSUB"), "AMQ8723I: Publish/subscribe status details:\n"
                                    "   TYPE(LOCAL)                             QMNAME(QM1)\n"
                                    "   STATUS(ACTIVE)                          SUBCOUNT(2)\n"
                                    "   TPCOUNT(4)\n");
    ASSERT_EQ(run("ALTER QMGR PSMODE(DISABLED)").result, CommandResult::Done);
    EXPECT_NE(answer("DIS PUBSUB TYPE(LOCAL) STATUS").find("STATUS(INACTIVE)"), std::string::npos);
    EXPECT_EQ(run("DIS PUBSUB(QM1)").result, CommandResult::SyntaxError);
}

TEST_F(MqscTopics, OpenSubscriptionIsNotDeleted)
{
    ASSERT_EQ(run("DEF SUB(S) TOPICSTR(t) DEST(Q1)").result, CommandResult::Done);
    const auto other = connect();
    const auto stored = other->definitions(store::subscriptions);
    ASSERT_EQ(stored.size(), 1U);
    open(*other, stored.front().queue, {.input = 1, .exclusive = 1, .output = 0, .browse = 0});
    EXPECT_EQ(answer("DELETE SUB(S)"), "AMQ8469E: Subscription S is in use.\n");
}

TEST_F(MqscTopics, ClearNeedsARetainedPublication)
{
    EXPECT_EQ(answer("CLEAR TOPICSTR('a/b') CLRTYPE(RETAINED)"),
              "AMQ8404E: The command failed: there is no retained publication.\n");
    EXPECT_EQ(run("CLEAR TOPICSTR(a) CLRTYPE(ALL)").result, CommandResult::SyntaxError);
}

} // namespace
} // namespace mqrig::qmgr::command
