// MQSUB, MQSUBRQ and MQCLOSE of subscriptions.
#include <unistd.h>

#include "../waiting_program.h"
#include "topics_fixture.h"

namespace mqrig::qmgr::testing {
namespace {

constexpr MQLONG makeManaged = MQSO_CREATE | MQSO_MANAGED;
constexpr MQLONG makeDurable = makeManaged | MQSO_DURABLE;

class Subscribe : public TopicTest {
public:
    // A queue of one's own for publications.
    MQHOBJ ownQueue(MQLONG options = MQOO_INPUT_SHARED) { return open(hconn, "Q1", options); }
    Subscribed subscribeOwn(std::string_view topic, MQLONG options, std::string_view name = {})
    {
        return trySubscribe(hconn, sdFor(topic, options, name), ownQueue());
    }
};

TEST_F(Subscribe, TellsHandlesTopicAndCorrelationIdentifier)
{
    const Subscribed sub = subscribe(hconn, "a/+/c");
    EXPECT_EQ(sub.resolved, "a/+/c");
    EXPECT_GT(sub.queue, 0);
    EXPECT_GT(sub.hsub, 0);
    EXPECT_NE(sub.queue, sub.hsub);
    EXPECT_NE(bytes(sub.sd.SubCorrelId), std::string(24, '\0'));
    EXPECT_EQ(put(hconn, sub.queue, "x"), failed(MQRC_NOT_OPEN_FOR_OUTPUT));
    EXPECT_EQ(put(hconn, sub.hsub, "x"), failed(MQRC_NOT_OPEN_FOR_OUTPUT));
    EXPECT_EQ(get(hconn, sub.hsub).codes, failed(MQRC_NOT_OPEN_FOR_INPUT));
}

TEST_F(Subscribe, ClosedSubscriptionLeavesNothingBehind)
{
    Subscribed sub = subscribe(hconn, "t");
    EXPECT_EQ(countDefined(MQOT_Q, "SYSTEM.MANAGED."), 1U);
    EXPECT_EQ(countDefined(store::subscriptions), 1U);
    EXPECT_EQ(publish(hconn, "t", "x"), ok);
    EXPECT_EQ(close(hconn, sub.hsub), ok);
    EXPECT_EQ(sub.hsub, MQHO_UNUSABLE_HOBJ);
    EXPECT_EQ(countDefined(MQOT_Q, "SYSTEM.MANAGED."), 0U);
    EXPECT_EQ(countDefined(store::subscriptions), 0U);
    EXPECT_EQ(get(hconn, sub.queue).codes, failed(MQRC_Q_DELETED));
    EXPECT_EQ(close(hconn, sub.queue), ok);
}

TEST_F(Subscribe, ManagedQueueStaysWithItsSubscriptionWhenItsHandleIsClosed)
{
    Subscribed sub = subscribe(hconn, "t");
    EXPECT_EQ(close(hconn, sub.queue, MQCO_DELETE), failed(MQRC_OPTION_NOT_VALID_FOR_TYPE));
    EXPECT_EQ(close(hconn, sub.queue), ok);
    EXPECT_EQ(countDefined(MQOT_Q, "SYSTEM.MANAGED."), 1U);
    EXPECT_EQ(close(hconn, sub.hsub), ok);
    EXPECT_EQ(countDefined(MQOT_Q, "SYSTEM.MANAGED."), 0U);
}

TEST_F(Subscribe, NonDurableSubscriptionGoesWithItsConnection)
{
    MQHCONN other = connect();
    subscribe(other, "t", makeManaged, "N");
    EXPECT_EQ(disconnect(other), ok);
    EXPECT_EQ(countDefined(store::subscriptions), 0U);
    EXPECT_EQ(countDefined(MQOT_Q, "SYSTEM.MANAGED."), 0U);
}

TEST_F(Subscribe, NonDurableSubscriptionOfAKilledProgramGoes)
{
    // What the parent has open is not this process's: it connects anew.
    test::WaitingProgram program([] { return trySubscribe(connect(), sdFor("t", makeManaged, "N")).codes == ok; });
    EXPECT_EQ(codesOf("t", makeManaged, "N"), failed(MQRC_SUB_ALREADY_EXISTS));
    program.kill();
    EXPECT_EQ(publish(hconn, "t", "x"), ok);
    const Subscribed again = trySubscribe(hconn, sdFor("t", makeManaged, "N"));
    EXPECT_EQ(again.codes, ok);
    EXPECT_EQ(countDefined(store::subscriptions), 1U);
    EXPECT_EQ(countDefined(MQOT_Q, "SYSTEM.MANAGED."), 1U);
    EXPECT_EQ(publish(hconn, "t", "y"), ok);
    EXPECT_EQ(drain(hconn, again.queue), Bodies{"y"});
}

TEST_F(Subscribe, OwnQueueReceivesForSeveralSubscriptions)
{
    MQHOBJ queue = ownQueue();
    const Subscribed first = trySubscribe(hconn, sdFor("a", MQSO_CREATE), queue);
    const Subscribed second = trySubscribe(hconn, sdFor("b", MQSO_CREATE), queue);
    ASSERT_EQ(first.codes, ok);
    ASSERT_EQ(second.codes, ok);
    EXPECT_EQ(first.queue, queue);
    EXPECT_EQ(publish(hconn, "a", "to a"), ok);
    EXPECT_EQ(publish(hconn, "b", "to b"), ok);
    MQMD md = {MQMD_DEFAULT};
    std::memcpy(md.CorrelId, second.sd.SubCorrelId, sizeof md.CorrelId);
    MQGMO gmo = gmoWith(MQGMO_NO_SYNCPOINT, MQGMO_VERSION_2);
    gmo.MatchOptions = MQMO_MATCH_CORREL_ID;
    EXPECT_EQ(get(hconn, queue, md, gmo).body, "to b");
    EXPECT_EQ(drain(hconn, queue), Bodies{"to a"});
}

TEST_F(Subscribe, QueueHandleMustBeForReceiving)
{
    const MQSD sd = sdFor("t", MQSO_CREATE);
    EXPECT_EQ(trySubscribe(hconn, sd, MQHO_NONE).codes, failed(MQRC_HOBJ_ERROR));
    EXPECT_EQ(trySubscribe(hconn, sd, 12345).codes, failed(MQRC_HOBJ_ERROR));
    EXPECT_EQ(trySubscribe(hconn, sd, ownQueue(MQOO_OUTPUT)).codes, failed(MQRC_HOBJ_ERROR));
    EXPECT_EQ(trySubscribe(hconn, sd, openTopic(hconn, "t")).codes, failed(MQRC_HOBJ_ERROR));
    EXPECT_EQ(trySubscribe(hconn, sd, subscribe(hconn, "t").queue).codes, failed(MQRC_HOBJ_ERROR));
    EXPECT_EQ(trySubscribe(hconn, sd, ownQueue(MQOO_BROWSE)).codes, ok);
}

TEST_F(Subscribe, DurableSubscriptionOutlivesItsConnectionAndARestart)
{
    MQHCONN other = connect();
    const Subscribed made = subscribe(other, "t/#", makeDurable, "S");
    EXPECT_EQ(disconnect(other), ok);
    EXPECT_EQ(publish(hconn, "t/1", "one", MQPMO_NO_SYNCPOINT, persistentMd()), ok);
    restart();
    MQHCONN again = connect();
    EXPECT_EQ(publish(again, "t/2", "two"), ok);
    Subscribed resumed = trySubscribe(again, sdFor("", MQSO_RESUME, "S"));
    ASSERT_EQ(resumed.codes, ok);
    EXPECT_EQ(resumed.resolved, "t/#");
    EXPECT_EQ(bytes(resumed.sd.SubCorrelId), bytes(made.sd.SubCorrelId));
    EXPECT_EQ(drain(again, resumed.queue), (Bodies{"one", "two"}));
    EXPECT_EQ(close(again, resumed.hsub, MQCO_REMOVE_SUB), ok);
    EXPECT_EQ(countDefined(MQOT_Q, "SYSTEM.MANAGED."), 0U);
    EXPECT_EQ(trySubscribe(again, sdFor("", MQSO_RESUME, "S")).codes, failed(MQRC_NO_SUBSCRIPTION));
    disconnect(again);
}

TEST_F(Subscribe, CloseKeepsADurableSubscriptionUnlessToldOtherwise)
{
    Subscribed sub = subscribe(hconn, "t", makeDurable, "S");
    EXPECT_EQ(close(hconn, sub.hsub), ok);
    sub = subscribe(hconn, "t", makeDurable | MQSO_RESUME, "S");
    EXPECT_EQ(close(hconn, sub.hsub, MQCO_KEEP_SUB), ok);
    EXPECT_EQ(publish(hconn, "t", "kept"), ok);
    sub = subscribe(hconn, "t", MQSO_RESUME, "S");
    EXPECT_EQ(drain(hconn, sub.queue), Bodies{"kept"});
    EXPECT_EQ(close(hconn, sub.hsub, MQCO_DELETE), failed(MQRC_OPTION_NOT_VALID_FOR_TYPE));
    EXPECT_EQ(close(hconn, sub.hsub, MQCO_KEEP_SUB | MQCO_REMOVE_SUB), failed(MQRC_OPTIONS_ERROR));
    EXPECT_EQ(close(hconn, sub.hsub, MQCO_REMOVE_SUB), ok);
    Subscribed other = subscribe(hconn, "t");
    EXPECT_EQ(close(hconn, other.hsub, MQCO_KEEP_SUB), failed(MQRC_OPTION_NOT_VALID_FOR_TYPE));
    EXPECT_EQ(close(hconn, other.hsub, MQCO_REMOVE_SUB), ok);
}

TEST_F(Subscribe, DurableQueueWithUncommittedPublicationsGoesLater)
{
    Subscribed sub = subscribe(hconn, "t", makeDurable, "S");
    EXPECT_EQ(close(hconn, sub.queue), ok);
    EXPECT_EQ(publish(hconn, "t", "x", MQPMO_SYNCPOINT), ok);
    EXPECT_EQ(close(hconn, sub.hsub, MQCO_REMOVE_SUB), ok);
    EXPECT_EQ(commit(hconn), ok);
    EXPECT_EQ(countDefined(MQOT_Q, "SYSTEM.MANAGED."), 1U);
    Subscribed other = subscribe(hconn, "t", makeDurable, "OTHER");
    EXPECT_EQ(close(hconn, other.hsub, MQCO_REMOVE_SUB), ok);
    EXPECT_EQ(countDefined(MQOT_Q, "SYSTEM.MANAGED."), 0U);
}

TEST_F(Subscribe, OneHandleAtATimeIsOpenOnASubscription)
{
    MQHCONN other = connect();
    Subscribed sub = subscribe(other, "t", makeDurable, "S");
    EXPECT_EQ(codesOf("t", MQSO_RESUME, "S"), failed(MQRC_SUBSCRIPTION_IN_USE));
    EXPECT_EQ(trySubscribe(other, sdFor("t", MQSO_RESUME, "S")).codes, failed(MQRC_SUBSCRIPTION_IN_USE));
    EXPECT_EQ(disconnect(other), ok);
    EXPECT_EQ(codesOf("t", MQSO_RESUME, "S"), ok);
    const Subscribed temporary = subscribe(hconn, "t", makeManaged, "N");
    EXPECT_EQ(codesOf("t", MQSO_RESUME, "N"), failed(MQRC_SUBSCRIPTION_IN_USE));
}

TEST_F(Subscribe, NameStandsForOneSubscription)
{
    subscribe(hconn, "t", makeDurable, "S");
    EXPECT_EQ(codesOf("other", makeDurable, "S"), failed(MQRC_SUB_ALREADY_EXISTS));
    EXPECT_EQ(codesOf("t", MQSO_RESUME, "s"), failed(MQRC_NO_SUBSCRIPTION));
    EXPECT_EQ(codesOf("t", MQSO_ALTER, "T"), failed(MQRC_NO_SUBSCRIPTION));
    EXPECT_EQ(codesOf("t", makeDurable), failed(MQRC_SUB_NAME_ERROR));
    EXPECT_EQ(codesOf("t", MQSO_RESUME), failed(MQRC_SUB_NAME_ERROR));
    EXPECT_EQ(codesOf("t", makeDurable, std::string(10241, 'n')), failed(MQRC_SUB_NAME_ERROR));
    EXPECT_EQ(codesOf("t", makeDurable, std::string(10240, 'n')), ok);
}

TEST_F(Subscribe, ResumeReturnsWhatTheSubscriptionHas)
{
    MQSD sd = sdFor("t", makeDurable, "S");
    sd.SubUserData = charv("data");
    sd.PubPriority = 5;
    sd.SubLevel = 3;
    Subscribed sub = trySubscribe(hconn, sd);
    ASSERT_EQ(close(hconn, sub.hsub), ok);
    sd = sdFor("", MQSO_RESUME, "S");
    char data[16] = {};
    sd.SubUserData.VSPtr = data;
    sd.SubUserData.VSBufSize = sizeof data;
    sd.SubUserData.VSLength = 0;
    sub = trySubscribe(hconn, sd);
    ASSERT_EQ(sub.codes, ok);
    EXPECT_EQ(std::string(data, static_cast<std::size_t>(sub.sd.SubUserData.VSLength)), "data");
    EXPECT_EQ(sub.sd.PubPriority, 5);
    EXPECT_EQ(sub.sd.SubLevel, 3);
    EXPECT_EQ(sub.sd.SubExpiry, MQEI_UNLIMITED);
}

TEST_F(Subscribe, AlterChangesWhatMayBeChanged)
{
    Subscribed sub = subscribe(hconn, "t", makeDurable, "S");
    MQSD sd = sdFor("t", MQSO_ALTER | MQSO_DURABLE | MQSO_SET_CORREL_ID, "S");
    sd.SubUserData = charv("new data");
    sd.PubPriority = 2;
    setBytes(sd.SubCorrelId, "new");
    const Subscribed altered = trySubscribe(hconn, sd, sub.queue);
    ASSERT_EQ(altered.codes, ok);
    EXPECT_EQ(altered.hsub, sub.hsub);
    EXPECT_EQ(publish(hconn, "t", "x"), ok);
    EXPECT_EQ(publish(hconn, "t", "x"), ok);
    const Got got = get(hconn, sub.queue);
    EXPECT_EQ(got.md.Priority, 2);
    EXPECT_EQ(bytes(got.md.CorrelId).substr(0, 3), "new");
    EXPECT_EQ(nextWithProperties(sub.queue), "x MQTopicString=t MQSubUserData=new data");
}

TEST_F(Subscribe, AlterMovesASubscriptionToAnotherQueue)
{
    defineQueue("Q2");
    Subscribed sub = subscribeOwn("t", MQSO_CREATE | MQSO_DURABLE, "S");
    ASSERT_EQ(sub.codes, ok);
    ASSERT_EQ(close(hconn, sub.hsub), ok);
    const MQHOBJ q2 = open(hconn, "Q2", MQOO_INPUT_SHARED);
    EXPECT_EQ(trySubscribe(hconn, sdFor("t", MQSO_RESUME, "S"), q2).codes, failed(MQRC_HOBJ_ERROR));
    sub = trySubscribe(hconn, sdFor("t", MQSO_ALTER | MQSO_DURABLE, "S"), q2);
    ASSERT_EQ(sub.codes, ok);
    EXPECT_EQ(publish(hconn, "t", "x"), ok);
    EXPECT_EQ(drain(hconn, q2), Bodies{"x"});
    EXPECT_EQ(depth("Q1"), 0);
    ASSERT_EQ(close(hconn, sub.hsub), ok);
    // Without a handle its queue is opened for the program.
    sub = trySubscribe(hconn, sdFor("t", MQSO_RESUME, "S"));
    ASSERT_EQ(sub.codes, ok);
    EXPECT_EQ(publish(hconn, "t", "y"), ok);
    EXPECT_EQ(get(hconn, sub.queue).body, "y");
}

TEST_F(Subscribe, WhatCannotBeAlteredIsRefused)
{
    Subscribed sub = subscribe(hconn, "t", makeDurable, "S");
    ASSERT_EQ(close(hconn, sub.hsub), ok);
    const MQLONG alter = MQSO_ALTER | MQSO_DURABLE;
    EXPECT_EQ(codesOf("t", MQSO_ALTER, "S"), failed(MQRC_DURABILITY_NOT_ALTERABLE));
    EXPECT_EQ(codesOf("other", alter, "S"), failed(MQRC_TOPIC_NOT_ALTERABLE));
    EXPECT_EQ(codesOf("t", alter | MQSO_WILDCARD_CHAR, "S"), failed(MQRC_TOPIC_NOT_ALTERABLE));
    MQSD sd = sdFor("t", alter, "S");
    sd.SubLevel = 2;
    EXPECT_EQ(trySubscribe(hconn, sd).codes, failed(MQRC_SUBLEVEL_NOT_ALTERABLE));
    sd = sdFor("t", alter | MQSO_GROUP_SUB | MQSO_SET_CORREL_ID, "S");
    EXPECT_EQ(trySubscribe(hconn, sd).codes, failed(MQRC_GROUPING_NOT_ALTERABLE));
    EXPECT_EQ(trySubscribe(hconn, sdFor("t", alter, "S"), ownQueue()).codes, failed(MQRC_DEST_CLASS_NOT_ALTERABLE));
    Subscribed own = subscribeOwn("t", MQSO_CREATE | MQSO_DURABLE, "OWN");
    ASSERT_EQ(close(hconn, own.hsub), ok);
    EXPECT_EQ(trySubscribe(hconn, sdFor("t", alter | MQSO_MANAGED, "OWN")).codes,
              failed(MQRC_DEST_CLASS_NOT_ALTERABLE));
    // Nothing of it has left the subscription open.
    EXPECT_EQ(codesOf("t", MQSO_RESUME, "S"), ok);
    EXPECT_EQ(codesOf("t", MQSO_RESUME, "OWN"), ok);
}

TEST_F(Subscribe, DescriptorIsChecked)
{
    Codes codes;
    MQHOBJ queue = MQHO_NONE;
    MQHOBJ hsub = MQHO_NONE;
    const auto codesOfSd = [&](MQSD sd) { return trySubscribe(hconn, sd).codes; };
    MQSUB(hconn, nullptr, &queue, &hsub, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, failed(MQRC_SD_ERROR));
    MQSD sd = sdFor("t", makeManaged);
    MQSUB(hconn, &sd, nullptr, &hsub, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, failed(MQRC_HOBJ_ERROR));
    MQSUB(MQHC_UNUSABLE_HCONN, &sd, &queue, &hsub, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, failed(MQRC_HCONN_ERROR));
    sd.Version = 2;
    EXPECT_EQ(codesOfSd(sd), failed(MQRC_SD_ERROR));
    sd = sdFor("t", makeManaged);
    sd.SubExpiry = 0;
    EXPECT_EQ(codesOfSd(sd), failed(MQRC_EXPIRY_ERROR));
    sd = sdFor("t", makeManaged);
    sd.PubPriority = 10;
    EXPECT_EQ(codesOfSd(sd), failed(MQRC_PRIORITY_ERROR));
    sd = sdFor("t", makeManaged);
    sd.SubLevel = 10;
    EXPECT_EQ(codesOfSd(sd), failed(MQRC_SD_ERROR));
    sd = sdFor("t", makeManaged);
    sd.SubUserData.VSLength = -7;
    EXPECT_EQ(codesOfSd(sd), failed(MQRC_SUB_USER_DATA_ERROR));
    sd = sdFor("t", makeManaged);
    sd.ObjectString.VSPtr = nullptr;
    EXPECT_EQ(codesOfSd(sd), failed(MQRC_OBJECT_STRING_ERROR));
    EXPECT_EQ(codesOf("", makeManaged), failed(MQRC_UNKNOWN_OBJECT_NAME));
    EXPECT_EQ(codesOf("a%b", makeManaged | MQSO_WILDCARD_CHAR), failed(MQRC_TOPIC_STRING_ERROR));
    EXPECT_EQ(codesOf("a%b", makeManaged), ok);
}

TEST_F(Subscribe, OptionsThatExcludeEachOtherAreRefused)
{
    for (const MQLONG options :
         {MQSO_NONE | MQSO_MANAGED, makeManaged | MQSO_WILDCARD_CHAR | MQSO_WILDCARD_TOPIC,
          makeManaged | MQSO_ANY_USERID | MQSO_FIXED_USERID, makeManaged | MQSO_READ_AHEAD | MQSO_NO_READ_AHEAD,
          makeManaged | MQSO_GROUP_SUB | MQSO_SET_CORREL_ID, MQSO_CREATE | MQSO_GROUP_SUB,
          makeManaged | MQSO_NEW_PUBLICATIONS_ONLY | MQSO_PUBLICATIONS_ON_REQUEST, makeManaged | 0x40000000})
        EXPECT_EQ(codesOf("t", options), failed(MQRC_OPTIONS_ERROR)) << options;
}

TEST_F(Subscribe, TopicMayForbidSubscriptions)
{
    define(objects::ObjectKind::Topic, "A", {{MQCA_TOPIC_STRING, "a"}}, {{MQIA_INHIBIT_SUB, MQTA_SUB_INHIBITED}});
    define(objects::ObjectKind::Topic, "B", {{MQCA_TOPIC_STRING, "b"}}, {{MQIA_DURABLE_SUB, MQSUB_DURABLE_INHIBITED}});
    EXPECT_EQ(codesOf("a/x", makeManaged), failed(MQRC_SUB_INHIBITED));
    EXPECT_EQ(codesOf("b", makeDurable, "S"), failed(MQRC_DURABILITY_NOT_ALLOWED));
    EXPECT_EQ(codesOf("b", makeManaged), ok);
}

TEST_F(Subscribe, TopicNamesTheModelOfItsQueues)
{
    define(objects::ObjectKind::ModelQueue, "SMALL", {}, {{MQIA_MAX_Q_DEPTH, 1}});
    define(objects::ObjectKind::Topic, "A", {{MQCA_TOPIC_STRING, "a"}, {MQCA_MODEL_NON_DURABLE_Q, "SMALL"}});
    define(objects::ObjectKind::Topic, "B", {{MQCA_TOPIC_STRING, "b"}, {MQCA_MODEL_NON_DURABLE_Q, "NOSUCH"}});
    const Subscribed sub = subscribe(hconn, "a");
    EXPECT_EQ(publish(hconn, "a", "one"), ok);
    EXPECT_EQ(publish(hconn, "a", "two"), ok);
    EXPECT_EQ(drain(hconn, sub.queue), Bodies{"one"});
    EXPECT_EQ(codesOf("b", makeManaged), failed(MQRC_INVALID_DESTINATION));
    EXPECT_EQ(countDefined(store::subscriptions), 1U);
}

TEST_F(Subscribe, ManagedSubscriptionWithoutItsQueueGetsNothingAndIsNobodyToThePublisher)
{
    Subscribed sub = trySubscribe(hconn, sdFor("t", makeDurable, "S"));
    ASSERT_EQ(sub.codes, ok);
    EXPECT_EQ(publish(hconn, "t", "x", MQPMO_WARN_IF_NO_SUBS_MATCHED), ok);
    EXPECT_EQ(drain(hconn, sub.queue), Bodies{"x"});
    ASSERT_EQ(close(hconn, sub.queue), ok);
    ASSERT_EQ(close(hconn, sub.hsub), ok);
    const std::vector<std::string> queues = namesDefined(MQOT_Q, "SYSTEM.MANAGED.DURABLE.");
    ASSERT_EQ(queues.size(), 1U);
    deleteQueue(queues.front());
    EXPECT_EQ(publish(hconn, "t", "x", MQPMO_WARN_IF_NO_SUBS_MATCHED), warned(MQRC_NO_SUBS_MATCHED));
}

TEST_F(Subscribe, ExpiredSubscriptionIsNoMore)
{
    MQSD sd = sdFor("t", makeDurable, "S");
    sd.SubExpiry = 1;
    Subscribed sub = trySubscribe(hconn, sd);
    ASSERT_EQ(sub.codes, ok);
    ASSERT_EQ(close(hconn, sub.hsub), ok);
    usleep(150000);
    EXPECT_EQ(publish(hconn, "t", "x", MQPMO_WARN_IF_NO_SUBS_MATCHED), warned(MQRC_NO_SUBS_MATCHED));
    EXPECT_EQ(trySubscribe(hconn, sdFor("t", MQSO_RESUME, "S")).codes, failed(MQRC_NO_SUBSCRIPTION));
    EXPECT_EQ(countDefined(store::subscriptions), 0U);
}

TEST_F(Subscribe, GroupGetsOneCopy)
{
    const MQHOBJ queue = ownQueue();
    MQSD sd = sdFor("a/#", MQSO_CREATE | MQSO_GROUP_SUB | MQSO_SET_CORREL_ID);
    setBytes(sd.SubCorrelId, "group");
    ASSERT_EQ(trySubscribe(hconn, sd, queue).codes, ok);
    EXPECT_EQ(trySubscribe(hconn, sd, queue).codes, failed(MQRC_DUPLICATE_GROUP_SUB));
    sd.ObjectString = charv("a/b");
    ASSERT_EQ(trySubscribe(hconn, sd, queue).codes, ok);
    EXPECT_EQ(trySubscribe(hconn, sd, queue).codes, failed(MQRC_DUPLICATE_GROUP_SUB));
    EXPECT_EQ(publish(hconn, "a/b", "x"), ok);
    EXPECT_EQ(drain(hconn, queue), Bodies{"x"});
}

TEST_F(Subscribe, MemberOfAGroupKeepsItsQueueAndCorrelationIdentifier)
{
    defineQueue("Q2");
    const MQHOBJ queue = ownQueue();
    MQSD sd = sdFor("t", MQSO_CREATE | MQSO_DURABLE | MQSO_GROUP_SUB | MQSO_SET_CORREL_ID, "S");
    setBytes(sd.SubCorrelId, "group");
    ASSERT_EQ(trySubscribe(hconn, sd, queue).codes, ok);
    sd.Options = MQSO_ALTER | MQSO_DURABLE | MQSO_GROUP_SUB | MQSO_SET_CORREL_ID;
    EXPECT_EQ(trySubscribe(hconn, sd, open(hconn, "Q2", MQOO_INPUT_SHARED)).codes, failed(MQRC_GROUPING_NOT_ALTERABLE));
    setBytes(sd.SubCorrelId, "other");
    EXPECT_EQ(trySubscribe(hconn, sd, queue).codes, failed(MQRC_GROUPING_NOT_ALTERABLE));
    setBytes(sd.SubCorrelId, "group");
    sd.PubPriority = 3;
    EXPECT_EQ(trySubscribe(hconn, sd, queue).codes, ok);
    EXPECT_EQ(publish(hconn, "t", "x"), ok);
    const Got got = get(hconn, queue);
    EXPECT_EQ(got.md.Priority, 3);
    EXPECT_EQ(bytes(got.md.CorrelId).substr(0, 5), "group");
}

TEST_F(Subscribe, PublicationsMayGoToAnotherQueueManager)
{
    defineTransmissionQueue("QM2");
    MQOD od = {MQOD_DEFAULT};
    setText(od.ObjectName, "THERE");
    setText(od.ObjectQMgrName, "QM2");
    MQHOBJ there = MQHO_NONE;
    ASSERT_EQ(tryOpen(hconn, od, MQOO_OUTPUT, there), ok);
    Subscribed sub = trySubscribe(hconn, sdFor("t", MQSO_CREATE | MQSO_DURABLE, "S"), there);
    ASSERT_EQ(sub.codes, ok);
    EXPECT_EQ(publish(hconn, "t", "x"), ok);
    const Got got = get(hconn, open(hconn, "QM2", MQOO_INPUT_SHARED));
    ASSERT_EQ(got.codes, ok);
    MQXQH header;
    ASSERT_EQ(got.body.size(), sizeof header + 1);
    std::memcpy(&header, got.body.data(), sizeof header);
    EXPECT_EQ(text(header.RemoteQName), "THERE");
    EXPECT_EQ(text(header.RemoteQMgrName), "QM2");
    EXPECT_EQ(got.body.back(), 'x');
    // It is resumed with a handle of the same queue; without one there is nothing to get from.
    ASSERT_EQ(close(hconn, sub.hsub), ok);
    EXPECT_EQ(trySubscribe(hconn, sdFor("", MQSO_RESUME, "S")).codes, failed(MQRC_INVALID_DESTINATION));
    EXPECT_EQ(trySubscribe(hconn, sdFor("", MQSO_RESUME, "S"), ownQueue()).codes, failed(MQRC_HOBJ_ERROR));
    EXPECT_EQ(trySubscribe(hconn, sdFor("", MQSO_RESUME, "S"), there).codes, ok);
}

TEST_F(Subscribe, NameOfASubscriptionThatCannotBeReadIsTaken)
{
    Subscribed sub = subscribe(hconn, "t", makeDurable, "S");
    ASSERT_EQ(close(hconn, sub.hsub), ok);
    {
        const store::Attached attached = store::attach(storeFolder(), "QM1");
        store::Definition stored = attached.attachment->definitions(store::subscriptions).front();
        stored.bytes = "not what a subscription is stored as";
        ASSERT_TRUE(attached.attachment->alter(stored, std::nullopt).ok());
    }
    EXPECT_EQ(codesOf("t", makeDurable, "S"), failed(MQRC_SUB_ALREADY_EXISTS));
    EXPECT_EQ(codesOf("t", MQSO_RESUME, "S"), failed(MQRC_NO_SUBSCRIPTION));
    EXPECT_EQ(publish(hconn, "t", "x"), ok);
    EXPECT_EQ(codesOf("t", makeDurable, "T"), ok);
}

TEST_F(Subscribe, CharacterWildcardsCrossLevels)
{
    const Subscribed sub = subscribe(hconn, "a*c?", makeManaged | MQSO_WILDCARD_CHAR);
    EXPECT_EQ(publish(hconn, "a/b/cd", "yes"), ok);
    EXPECT_EQ(publish(hconn, "a/b/c", "no"), ok);
    EXPECT_EQ(drain(hconn, sub.queue), Bodies{"yes"});
}

TEST_F(Subscribe, SelectorChoosesAmongPublications)
{
    MQSD sd = sdFor("t", makeManaged);
    sd.SelectionString = charv("color = 'red'");
    const Subscribed sub = trySubscribe(hconn, sd);
    ASSERT_EQ(sub.codes, ok);
    const MQHOBJ topic = openTopic(hconn, "t");
    MQPMO pmo = pmoWith(MQPMO_RETAIN);
    pmo.Version = MQPMO_VERSION_3;
    for (const char *color : {"blue", "red"}) {
        pmo.OriginalMsgHandle = create(hconn);
        ASSERT_EQ(set(pmo.OriginalMsgHandle, "color", color), ok);
        ASSERT_EQ(put(hconn, topic, color, MQMD{MQMD_DEFAULT}, pmo), ok);
    }
    EXPECT_EQ(publish(hconn, "t", "no color"), ok);
    EXPECT_EQ(nextWithProperties(sub.queue), "red color=red MQTopicString=t");
    EXPECT_EQ(drain(hconn, sub.queue), Bodies{});
    MQLONG number = 0;
    EXPECT_EQ(request(hconn, sub.hsub, number), ok);
    EXPECT_EQ(number, 1);
    sd.SelectionString = charv("color = 'blue'");
    EXPECT_EQ(drain(hconn, trySubscribe(hconn, sd).queue), Bodies{});
    sd.SelectionString = charv("color = ");
    EXPECT_EQ(trySubscribe(hconn, sd).codes, failed(MQRC_SELECTION_NOT_AVAILABLE));
    sd.SelectionString.VSLength = -5;
    EXPECT_EQ(trySubscribe(hconn, sd).codes, failed(MQRC_SELECTION_STRING_ERROR));
}

// ---- Retained publications ----

TEST_F(Subscribe, NewSubscriberGetsTheRetainedPublication)
{
    EXPECT_EQ(publish(hconn, "t", "old", MQPMO_RETAIN), ok);
    EXPECT_EQ(publish(hconn, "t", "new", MQPMO_RETAIN), ok);
    EXPECT_EQ(publish(hconn, "t", "not retained"), ok);
    const Subscribed sub = subscribe(hconn, "t");
    EXPECT_EQ(nextWithProperties(sub.queue), "new MQTopicString=t MQIsRetained=TRUE");
    EXPECT_EQ(drain(hconn, sub.queue), Bodies{});
    EXPECT_EQ(drain(hconn, subscribe(hconn, "t", makeManaged | MQSO_NEW_PUBLICATIONS_ONLY).queue), Bodies{});
}

TEST_F(Subscribe, RetainedPublicationKeepsItsDescriptor)
{
    MQMD md = persistentMd();
    md.Priority = 4;
    md.Report = MQRO_PAN;
    setText(md.ReplyToQ, "Q1");
    setBytes(md.CorrelId, "publisher's");
    EXPECT_EQ(publish(hconn, "t", "x", MQPMO_RETAIN, md), ok);
    const Subscribed sub = subscribe(hconn, "t", makeManaged | MQSO_SET_CORREL_ID);
    const Got got = get(hconn, sub.queue);
    EXPECT_EQ(bytes(got.md.CorrelId), bytes(md.CorrelId));
    EXPECT_EQ(got.md.Priority, 4);
    EXPECT_EQ(got.md.Report, MQRO_PAN);
    EXPECT_EQ(text(got.md.ReplyToQ), "Q1");
}

TEST_F(Subscribe, WildcardsFindEveryRetainedPublication)
{
    for (const char *topic : {"a/b", "a/c", "x/b", "a/b/c"})
        EXPECT_EQ(publish(hconn, topic, topic, MQPMO_RETAIN), ok);
    EXPECT_EQ(drain(hconn, subscribe(hconn, "a/+").queue), (Bodies{"a/b", "a/c"}));
    EXPECT_EQ(drain(hconn, subscribe(hconn, "*b*", makeManaged | MQSO_WILDCARD_CHAR).queue),
              (Bodies{"a/b", "a/b/c", "x/b"}));
    // A topic with wildcards in it is a topic like others for its publisher.
    EXPECT_EQ(publish(hconn, "a/+", "plus", MQPMO_RETAIN), ok);
    EXPECT_EQ(publish(hconn, "a/+", "plus again", MQPMO_RETAIN), ok);
    EXPECT_EQ(drain(hconn, subscribe(hconn, "a/b").queue), Bodies{"a/b"});
}

TEST_F(Subscribe, RetainedQueueHoldsNoMoreThanTwoForATopic)
{
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(publish(hconn, "t", std::to_string(i), MQPMO_RETAIN), ok);
    EXPECT_LE(depth("SYSTEM.RETAINED.PUB.QUEUE"), 2);
    EXPECT_EQ(drain(hconn, subscribe(hconn, "t").queue), Bodies{"9"});
}

TEST_F(Subscribe, RetainedPublicationIsThereWhileAnotherIsNotCommitted)
{
    const OwnConnection other;
    EXPECT_EQ(publish(hconn, "t", "one", MQPMO_RETAIN), ok);
    EXPECT_EQ(publish(hconn, "t", "two", MQPMO_RETAIN), ok);
    EXPECT_EQ(publish(other.hconn, "t", "three", MQPMO_RETAIN | MQPMO_SYNCPOINT), ok);
    EXPECT_EQ(drain(hconn, subscribe(hconn, "t").queue), Bodies{"two"});
    EXPECT_EQ(backOut(other.hconn), ok);
    EXPECT_EQ(drain(hconn, subscribe(hconn, "t").queue), Bodies{"two"});
    EXPECT_EQ(publish(other.hconn, "t", "four", MQPMO_RETAIN | MQPMO_SYNCPOINT), ok);
    EXPECT_EQ(commit(other.hconn), ok);
    EXPECT_EQ(drain(hconn, subscribe(hconn, "t").queue), Bodies{"four"});
}

TEST_F(Subscribe, PersistentRetainedPublicationSurvivesARestartAndNoOlderOneReturns)
{
    EXPECT_EQ(publish(hconn, "p", "persistent", MQPMO_RETAIN, persistentMd()), ok);
    EXPECT_EQ(publish(hconn, "n", "persistent", MQPMO_RETAIN, persistentMd()), ok);
    EXPECT_EQ(publish(hconn, "n", "not persistent", MQPMO_RETAIN), ok);
    restart();
    const OwnConnection again;
    EXPECT_EQ(drain(again.hconn, subscribe(again.hconn, "p").queue), Bodies{"persistent"});
    EXPECT_EQ(drain(again.hconn, subscribe(again.hconn, "n").queue), Bodies{});
}

TEST_F(Subscribe, ExpiredRetainedPublicationIsNotSent)
{
    EXPECT_EQ(publish(hconn, "t", "x", MQPMO_RETAIN, withExpiry(1)), ok);
    usleep(150000);
    EXPECT_EQ(drain(hconn, subscribe(hconn, "t").queue), Bodies{});
}

TEST_F(Subscribe, RetainedPublicationGoesOnToExpire)
{
    EXPECT_EQ(publish(hconn, "t", "x", MQPMO_RETAIN, withExpiry(6000)), ok);
    usleep(150000);
    const Got got = get(hconn, subscribe(hconn, "t").queue);
    ASSERT_EQ(got.codes, ok);
    EXPECT_GT(got.md.Expiry, 0);
    EXPECT_LT(got.md.Expiry, 6000);
}

TEST_F(Subscribe, PublicationsOnRequestComeOnRequest)
{
    const Subscribed sub = subscribe(hconn, "a/+", makeManaged | MQSO_PUBLICATIONS_ON_REQUEST);
    MQLONG number = -1;
    EXPECT_EQ(request(hconn, sub.hsub, number), failed(MQRC_NO_RETAINED_MSG));
    EXPECT_EQ(publish(hconn, "a/b", "one", MQPMO_RETAIN), ok);
    EXPECT_EQ(publish(hconn, "a/c", "two", MQPMO_RETAIN), ok);
    EXPECT_EQ(drain(hconn, sub.queue), Bodies{});
    EXPECT_EQ(request(hconn, sub.hsub, number), ok);
    EXPECT_EQ(number, 2);
    EXPECT_EQ(drain(hconn, sub.queue), (Bodies{"one", "two"}));
}

TEST_F(Subscribe, RequestIsChecked)
{
    const Subscribed sub = subscribe(hconn, "t");
    MQLONG number = 0;
    EXPECT_EQ(request(hconn, sub.queue, number), failed(MQRC_HOBJ_ERROR));
    EXPECT_EQ(request(hconn, 12345, number), failed(MQRC_HOBJ_ERROR));
    EXPECT_EQ(request(hconn, sub.hsub, number, 2), failed(MQRC_ACTION_ERROR));
    Codes codes;
    MQSUBRQ(hconn, sub.hsub, MQSR_ACTION_PUBLICATION, nullptr, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, failed(MQRC_SRO_ERROR));
    MQSRO sro = {MQSRO_DEFAULT};
    sro.Options = 1;
    MQSUBRQ(hconn, sub.hsub, MQSR_ACTION_PUBLICATION, &sro, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, failed(MQRC_OPTIONS_ERROR));
    sro.Options = MQSRO_FAIL_IF_QUIESCING;
    endQuiesce();
    MQSUBRQ(hconn, sub.hsub, MQSR_ACTION_PUBLICATION, &sro, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, failed(MQRC_Q_MGR_QUIESCING));
}

TEST_F(Subscribe, RetainedPublicationThatDoesNotFitIsTold)
{
    EXPECT_EQ(publish(hconn, "t", "x", MQPMO_RETAIN), ok);
    defineQueue("FULL", {{MQIA_MAX_Q_DEPTH, 0}});
    const MQHOBJ full = open(hconn, "FULL", MQOO_INPUT_SHARED);
    EXPECT_EQ(trySubscribe(hconn, sdFor("t", MQSO_CREATE), full).codes, failed(MQRC_RETAINED_NOT_DELIVERED));
    EXPECT_EQ(countDefined(store::subscriptions), 0U);
    const Subscribed sub = trySubscribe(hconn, sdFor("t", MQSO_CREATE | MQSO_NEW_PUBLICATIONS_ONLY), full);
    ASSERT_EQ(sub.codes, ok);
    MQLONG number = 0;
    EXPECT_EQ(request(hconn, sub.hsub, number), failed(MQRC_RETAINED_NOT_DELIVERED));
    defineQueue("DEAD");
    setDeadLetterQueue("DEAD");
    EXPECT_EQ(request(hconn, sub.hsub, number), ok);
    EXPECT_EQ(depth("DEAD"), 1);
}

TEST_F(Subscribe, QueueManagerWithoutTheSystemQueuesGetsThem)
{
    for (const char *name : {"SYSTEM.RETAINED.PUB.QUEUE", "SYSTEM.DURABLE.MODEL.QUEUE", "SYSTEM.NDURABLE.MODEL.QUEUE"})
        deleteQueue(name);
    EXPECT_EQ(publish(hconn, "t", "x", MQPMO_RETAIN), ok);
    EXPECT_EQ(drain(hconn, subscribe(hconn, "t").queue), Bodies{"x"});
    EXPECT_EQ(drain(hconn, subscribe(hconn, "t", makeDurable, "S").queue), Bodies{"x"});
}

TEST_F(Subscribe, SpareHandleIsNeededForEachHandle)
{
    alterQueueManager({{MQIA_MAX_HANDLES, 2}}); // Q1 is open
    EXPECT_EQ(trySubscribe(hconn, sdFor("t", makeManaged)).codes, failed(MQRC_HANDLE_NOT_AVAILABLE));
    EXPECT_EQ(countDefined(store::subscriptions), 0U);
    EXPECT_EQ(countDefined(MQOT_Q, "SYSTEM.MANAGED."), 0U);
    EXPECT_EQ(trySubscribe(hconn, sdFor("t", MQSO_CREATE), q1).codes, ok);
}

TEST_F(Subscribe, SubscriptionsFollowAReconnection)
{
    MQCNO cno = {MQCNO_DEFAULT};
    cno.Version = MQCNO_VERSION_5;
    cno.Options = MQCNO_RECONNECT_Q_MGR;
    MQHCONN follower = MQHC_UNUSABLE_HCONN;
    ASSERT_EQ(tryConnectX("QM1", cno, follower), ok);
    const Subscribed temporary = subscribe(follower, "t");
    const Subscribed durable = subscribe(follower, "t", makeDurable, "S");
    const MQHOBJ topic = openTopic(follower, "t");
    endToReconnect();
    start();
    EXPECT_EQ(put(follower, topic, "after"), ok);
    EXPECT_EQ(drain(follower, temporary.queue), Bodies{"after"});
    EXPECT_EQ(drain(follower, durable.queue), Bodies{"after"});
    EXPECT_EQ(codesOf("t", MQSO_RESUME, "S"), failed(MQRC_SUBSCRIPTION_IN_USE));
    disconnect(follower);
}

} // namespace
} // namespace mqrig::qmgr::testing
