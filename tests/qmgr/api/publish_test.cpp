// MQOPEN of a topic, MQPUT and MQPUT1 to it, and what subscribers get.
#include <set>

#include "topics_fixture.h"

namespace mqrig::qmgr::testing {
namespace {

class Publish : public TopicTest {
public:
    void defineTopic(const std::string &name, std::string_view topic, Attributes attributes = {})
    {
        define(objects::ObjectKind::Topic, name, {{MQCA_TOPIC_STRING, topic}}, attributes);
    }
};

TEST_F(Publish, SubscriberGetsWhatIsPublishedOnItsTopic)
{
    const Subscribed sub = subscribe(hconn, "fruit/apple");
    MQHOBJ topic = openTopic(hconn, "fruit/apple");
    EXPECT_EQ(put(hconn, topic, "one"), ok);
    EXPECT_EQ(publish(hconn, "fruit/apple", "two"), ok);
    EXPECT_EQ(publish(hconn, "fruit/pear", "not this"), ok);
    EXPECT_EQ(drain(hconn, sub.queue), (Bodies{"one", "two"}));
    EXPECT_EQ(close(hconn, topic), ok);
}

TEST_F(Publish, EverySubscriberGetsItsOwnCopy)
{
    const OwnConnection other;
    const Subscribed mine = subscribe(hconn, "a/+");
    const Subscribed theirs = subscribe(other.hconn, "a/b");
    const Subscribed apart = subscribe(other.hconn, "#");
    EXPECT_EQ(publish(hconn, "a/b", "x"), ok);
    EXPECT_EQ(drain(hconn, mine.queue), Bodies{"x"});
    EXPECT_EQ(drain(other.hconn, theirs.queue), Bodies{"x"});
    EXPECT_EQ(drain(other.hconn, apart.queue), Bodies{"x"});
}

TEST_F(Publish, OpenTopicSeesSubscriptionsThatComeAndGo)
{
    const MQHOBJ topic = openTopic(hconn, "t");
    EXPECT_EQ(put(hconn, topic, "nobody"), ok);
    Subscribed sub = subscribe(hconn, "t");
    EXPECT_EQ(put(hconn, topic, "somebody"), ok);
    EXPECT_EQ(drain(hconn, sub.queue), Bodies{"somebody"});
    EXPECT_EQ(close(hconn, sub.hsub), ok);
    EXPECT_EQ(put(hconn, topic, "nobody", MQMD{MQMD_DEFAULT}, pmoWith(MQPMO_WARN_IF_NO_SUBS_MATCHED)),
              warned(MQRC_NO_SUBS_MATCHED));
    EXPECT_EQ(put(hconn, topic, "nobody"), ok);
}

TEST_F(Publish, PublicationHasTheDescriptorOfItsSubscription)
{
    MQSD sd = sdFor("t", MQSO_CREATE | MQSO_MANAGED | MQSO_SET_CORREL_ID | MQSO_SET_IDENTITY_CONTEXT);
    setBytes(sd.SubCorrelId, "mine");
    setText(sd.PubApplIdentityData, "identity");
    sd.PubPriority = 7;
    const Subscribed sub = trySubscribe(hconn, sd);
    ASSERT_EQ(sub.codes, ok);
    const Subscribed plain = subscribe(hconn, "t");
    MQMD md = version2Md();
    md.Priority = 3;
    setBytes(md.CorrelId, "publisher's");
    setBytes(md.MsgId, "publisher's");
    MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT);
    const MQHOBJ topic = openTopic(hconn, "t");
    ASSERT_EQ(putInOut(hconn, topic, "x", md, pmo), ok);

    const Got got = get(hconn, sub.queue);
    EXPECT_EQ(bytes(got.md.CorrelId).substr(0, 5), std::string("mine\0", 5));
    EXPECT_EQ(text(got.md.ApplIdentityData), "identity");
    EXPECT_EQ(got.md.Priority, 7);
    EXPECT_EQ(got.md.PutApplType, MQAT_BROKER);
    EXPECT_EQ(text(got.md.PutApplName), "QM1");
    EXPECT_NE(text(got.md.UserIdentifier), "");
    const Got other = get(hconn, plain.queue);
    EXPECT_EQ(other.md.Priority, 3);
    EXPECT_EQ(bytes(other.md.CorrelId), bytes(plain.sd.SubCorrelId));
    EXPECT_EQ(text(other.md.ApplIdentityData), "");
    EXPECT_NE(bytes(got.md.MsgId), bytes(other.md.MsgId));
    EXPECT_NE(bytes(got.md.MsgId), bytes(md.MsgId));
}

TEST_F(Publish, CorrelIdOfThePublisherIsKeptWhereTheSubscriberWantsIt)
{
    const Subscribed sub = subscribe(hconn, "t", MQSO_CREATE | MQSO_MANAGED | MQSO_SET_CORREL_ID);
    MQMD md = {MQMD_DEFAULT};
    setBytes(md.CorrelId, "publisher's");
    EXPECT_EQ(publish(hconn, "t", "x", MQPMO_NO_SYNCPOINT, md), ok);
    EXPECT_EQ(bytes(get(hconn, sub.queue).md.CorrelId), bytes(md.CorrelId));
}

TEST_F(Publish, PropertiesTellTopicAndUserData)
{
    MQSD sd = sdFor("a/#", MQSO_CREATE | MQSO_MANAGED);
    sd.SubUserData = charv("my data");
    const Subscribed sub = trySubscribe(hconn, sd);
    const Subscribed plain = subscribe(hconn, "a/b");
    MQHMSG hmsg = create(hconn);
    ASSERT_EQ(set(hmsg, "color", "red"), ok);
    MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT);
    pmo.Version = MQPMO_VERSION_3;
    pmo.OriginalMsgHandle = hmsg;
    ASSERT_EQ(put(hconn, openTopic(hconn, "a/b"), "x", MQMD{MQMD_DEFAULT}, pmo), ok);
    EXPECT_EQ(nextWithProperties(sub.queue), "x color=red MQTopicString=a/b MQSubUserData=my data");
    EXPECT_EQ(nextWithProperties(plain.queue), "x color=red MQTopicString=a/b");
}

TEST_F(Publish, PropertyOfThePublisherDoesNotPassForTheTopic)
{
    const Subscribed sub = subscribe(hconn, "t");
    MQHMSG hmsg = create(hconn, MQCMHO_NO_VALIDATION);
    ASSERT_EQ(set(hmsg, "mqps.Top", "forged"), ok);
    MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT);
    pmo.Version = MQPMO_VERSION_3;
    pmo.OriginalMsgHandle = hmsg;
    ASSERT_EQ(put(hconn, openTopic(hconn, "t"), "x", MQMD{MQMD_DEFAULT}, pmo), ok);
    EXPECT_EQ(nextWithProperties(sub.queue), "x MQTopicString=t");
}

TEST_F(Publish, PublicationWithoutPropertiesOfTheProgramComesAsItWasPut)
{
    const Subscribed sub = subscribe(hconn, "t");
    EXPECT_EQ(publish(hconn, "t", "body"), ok);
    const Got got = get(hconn, sub.queue);
    EXPECT_EQ(got.body, "body");
    EXPECT_EQ(text(got.md.Format), "");
}

TEST_F(Publish, UnderSyncpointNobodySeesItBeforeTheCommit)
{
    const OwnConnection other;
    const Subscribed first = subscribe(other.hconn, "t");
    const Subscribed second = subscribe(other.hconn, "t");
    EXPECT_EQ(publish(hconn, "t", "x", MQPMO_SYNCPOINT), ok);
    EXPECT_EQ(drain(other.hconn, first.queue), Bodies{});
    EXPECT_EQ(commit(hconn), ok);
    EXPECT_EQ(drain(other.hconn, first.queue), Bodies{"x"});
    EXPECT_EQ(drain(other.hconn, second.queue), Bodies{"x"});
}

TEST_F(Publish, BackedOutPublicationReachesNobody)
{
    const OwnConnection other;
    const Subscribed first = subscribe(other.hconn, "t");
    const Subscribed second = subscribe(other.hconn, "t", MQSO_CREATE | MQSO_MANAGED | MQSO_DURABLE, "S");
    EXPECT_EQ(publish(hconn, "t", "x", MQPMO_SYNCPOINT | MQPMO_RETAIN, persistentMd()), ok);
    EXPECT_EQ(backOut(hconn), ok);
    EXPECT_EQ(drain(other.hconn, first.queue), Bodies{});
    EXPECT_EQ(drain(other.hconn, second.queue), Bodies{});
    MQLONG number = -1;
    EXPECT_EQ(request(other.hconn, first.hsub, number), failed(MQRC_NO_RETAINED_MSG));
}

TEST_F(Publish, SubscriptionThatEndsInsideAUnitOfWorkDoesNotBreakIt)
{
    Subscribed gone = subscribe(hconn, "t");
    const Subscribed stays = subscribe(hconn, "t");
    EXPECT_EQ(publish(hconn, "t", "x", MQPMO_SYNCPOINT), ok);
    EXPECT_EQ(close(hconn, gone.hsub), ok);
    EXPECT_EQ(commit(hconn), ok);
    EXPECT_EQ(drain(hconn, stays.queue), Bodies{"x"});
}

TEST_F(Publish, PersistentPublicationIsNotPersistentOnATemporaryQueue)
{
    const Subscribed temporary = subscribe(hconn, "t");
    const Subscribed durable = subscribe(hconn, "t", MQSO_CREATE | MQSO_MANAGED | MQSO_DURABLE, "S");
    EXPECT_EQ(publish(hconn, "t", "x", MQPMO_NO_SYNCPOINT, persistentMd()), ok);
    EXPECT_EQ(get(hconn, temporary.queue).md.Persistence, MQPER_NOT_PERSISTENT);
    EXPECT_EQ(get(hconn, durable.queue).md.Persistence, MQPER_PERSISTENT);
}

TEST_F(Publish, OwnSubscriptionsAreLeftOutOnRequest)
{
    const OwnConnection other;
    const Subscribed mine = subscribe(hconn, "t");
    const Subscribed theirs = subscribe(other.hconn, "t");
    EXPECT_EQ(publish(hconn, "t", "x", MQPMO_NOT_OWN_SUBS), ok);
    EXPECT_EQ(drain(hconn, mine.queue), Bodies{});
    EXPECT_EQ(drain(other.hconn, theirs.queue), Bodies{"x"});
}

TEST_F(Publish, ReplyToIsPassedOnUnlessSuppressed)
{
    const Subscribed sub = subscribe(hconn, "t");
    MQMD md = {MQMD_DEFAULT};
    setText(md.ReplyToQ, "Q1");
    EXPECT_EQ(publish(hconn, "t", "x", MQPMO_NO_SYNCPOINT, md), ok);
    EXPECT_EQ(publish(hconn, "t", "x", MQPMO_SUPPRESS_REPLYTO, md), ok);
    EXPECT_EQ(text(get(hconn, sub.queue).md.ReplyToQ), "Q1");
    const Got second = get(hconn, sub.queue);
    EXPECT_EQ(text(second.md.ReplyToQ), "");
    EXPECT_EQ(text(second.md.ReplyToQMgr), "");
    md.MsgType = MQMT_REQUEST;
    EXPECT_EQ(publish(hconn, "t", "x", MQPMO_SUPPRESS_REPLYTO, md), failed(MQRC_MISSING_REPLY_TO_Q));
}

TEST_F(Publish, HighestLevelThatThePublicationReachesGetsIt)
{
    MQSD sd = sdFor("t", MQSO_CREATE | MQSO_MANAGED);
    sd.SubLevel = 5;
    const Subscribed high = trySubscribe(hconn, sd);
    const Subscribed low = subscribe(hconn, "t");
    EXPECT_EQ(publish(hconn, "t", "to the high one"), ok);
    MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT);
    pmo.Version = MQPMO_VERSION_3;
    pmo.PubLevel = 4;
    const MQHOBJ topic = openTopic(hconn, "t");
    EXPECT_EQ(put(hconn, topic, "to the low one", MQMD{MQMD_DEFAULT}, pmo), ok);
    EXPECT_EQ(drain(hconn, high.queue), Bodies{"to the high one"});
    EXPECT_EQ(drain(hconn, low.queue), Bodies{"to the low one"});
    pmo.PubLevel = 10;
    EXPECT_EQ(put(hconn, topic, "x", MQMD{MQMD_DEFAULT}, pmo), failed(MQRC_PMO_ERROR));
}

TEST_F(Publish, TopicObjectAndStringMakeTheTopicTogether)
{
    defineTopic("FRUIT", "fruit");
    const struct {
        const char *object;
        const char *string;
        const char *topic;
    } cases[] = {{"FRUIT", "", "fruit"},
                 {"FRUIT", "apple", "fruit/apple"},
                 {"FRUIT", "/apple", "fruit//apple"},
                 {"", "fruit/apple", "fruit/apple"},
                 {"SYSTEM.BASE.TOPIC", "x", "x"},
                 {"", "/x", "/x"}};
    for (const auto &row : cases) {
        const Subscribed sub = subscribe(hconn, row.topic);
        MQOD od = topicOd(row.string, row.object);
        char resolved[64];
        od.ResObjectString.VSPtr = resolved;
        od.ResObjectString.VSBufSize = sizeof resolved;
        MQHOBJ hobj = MQHO_NONE;
        ASSERT_EQ(tryOpen(hconn, od, MQOO_OUTPUT, hobj), ok) << row.topic;
        EXPECT_EQ(std::string(resolved, static_cast<std::size_t>(od.ResObjectString.VSLength)), row.topic);
        EXPECT_EQ(od.ResolvedType, MQOT_TOPIC);
        EXPECT_EQ(put(hconn, hobj, "x"), ok);
        EXPECT_EQ(drain(hconn, sub.queue), Bodies{"x"}) << row.topic;
    }
}

TEST_F(Publish, ResolvedTopicIsCutToItsBuffer)
{
    MQOD od = topicOd("a/b/c/d");
    char resolved[5] = {'?', '?', '?', '?', '?'};
    od.ResObjectString.VSPtr = resolved;
    od.ResObjectString.VSBufSize = 4;
    MQHOBJ hobj = MQHO_NONE;
    ASSERT_EQ(tryOpen(hconn, od, MQOO_OUTPUT, hobj), ok);
    EXPECT_EQ(std::string_view(resolved, 5), "a/b/?");
    EXPECT_EQ(od.ResObjectString.VSLength, 7);
}

TEST_F(Publish, TopicsThatCannotBeAreRefused)
{
    MQHOBJ hobj = MQHO_NONE;
    EXPECT_EQ(tryOpenTopic(hconn, "", hobj), failed(MQRC_UNKNOWN_OBJECT_NAME));
    EXPECT_EQ(tryOpenTopic(hconn, "t", hobj, MQOO_OUTPUT, "NOSUCH"), failed(MQRC_UNKNOWN_OBJECT_NAME));
    EXPECT_EQ(tryOpenTopic(hconn, "", hobj, MQOO_OUTPUT, "SYSTEM.BASE.TOPIC"), failed(MQRC_TOPIC_STRING_ERROR));
    const std::string longest(10240, 'x');
    EXPECT_EQ(tryOpenTopic(hconn, longest, hobj), ok);
    EXPECT_EQ(tryOpenTopic(hconn, longest + "x", hobj), failed(MQRC_OBJECT_STRING_ERROR));
    defineTopic("FRUIT", "fruit");
    EXPECT_EQ(tryOpenTopic(hconn, longest, hobj, MQOO_OUTPUT, "FRUIT"), failed(MQRC_TOPIC_STRING_ERROR));
    EXPECT_EQ(tryOpenTopic(hconn, "$SYS/MQ/INFO", hobj), failed(MQRC_ADMIN_TOPIC_STRING_ERROR));
    MQOD od = topicOd("t");
    od.ObjectString.VSLength = -2;
    EXPECT_EQ(tryOpen(hconn, od, MQOO_OUTPUT, hobj), failed(MQRC_OBJECT_STRING_ERROR));
    od = topicOd("t");
    od.ResObjectString.VSPtr = &od;
    od.ResObjectString.VSOffset = 8;
    EXPECT_EQ(tryOpen(hconn, od, MQOO_OUTPUT, hobj), failed(MQRC_RES_OBJECT_STRING_ERROR));
    od = topicOd("t");
    setText(od.ObjectQMgrName, "QM7");
    EXPECT_EQ(tryOpen(hconn, od, MQOO_OUTPUT, hobj), failed(MQRC_UNKNOWN_OBJECT_Q_MGR));
}

TEST_F(Publish, TopicIsForOutputOnly)
{
    MQHOBJ hobj = MQHO_NONE;
    for (const MQLONG options : {MQOO_INPUT_SHARED, MQOO_BROWSE, MQOO_INQUIRE, MQOO_SET, MQOO_OUTPUT | MQOO_INQUIRE})
        EXPECT_EQ(tryOpenTopic(hconn, "t", hobj, options), failed(MQRC_OPTION_NOT_VALID_FOR_TYPE));
    hobj = openTopic(hconn, "t");
    EXPECT_EQ(get(hconn, hobj).codes, failed(MQRC_NOT_OPEN_FOR_INPUT));
    for (const MQLONG options : {MQCO_DELETE, MQCO_KEEP_SUB, MQCO_REMOVE_SUB})
        EXPECT_EQ(close(hconn, hobj, options), failed(MQRC_OPTION_NOT_VALID_FOR_TYPE));
    EXPECT_EQ(close(hconn, hobj), ok);
}

TEST_F(Publish, AttributesComeFromTheNearestTopicObject)
{
    defineTopic("A", "a", {{MQIA_TOPIC_DEF_PERSISTENCE, MQPER_PERSISTENT}, {MQIA_DEF_PRIORITY, 4}});
    defineTopic("A.B", "a/b", {{MQIA_DEF_PRIORITY, 6}});
    const Subscribed sub = subscribe(hconn, "#", MQSO_CREATE | MQSO_MANAGED | MQSO_DURABLE, "S");
    const struct {
        const char *topic;
        MQLONG priority;
        MQLONG persistence;
    } cases[] = {{"x", 0, MQPER_NOT_PERSISTENT}, {"a", 4, MQPER_PERSISTENT},       {"a/x/y", 4, MQPER_PERSISTENT},
                 {"a/b", 6, MQPER_PERSISTENT},   {"a/b/c/d", 6, MQPER_PERSISTENT}, {"ab", 0, MQPER_NOT_PERSISTENT}};
    for (const auto &row : cases) {
        EXPECT_EQ(publish(hconn, row.topic, "x"), ok);
        const Got got = get(hconn, sub.queue);
        EXPECT_EQ(got.md.Priority, row.priority) << row.topic;
        EXPECT_EQ(got.md.Persistence, row.persistence) << row.topic;
    }
}

TEST_F(Publish, InhibitedTopicIs2051AndItsChildrenToo)
{
    defineTopic("A", "a", {{MQIA_INHIBIT_PUB, MQTA_PUB_INHIBITED}});
    defineTopic("A.B", "a/b", {{MQIA_INHIBIT_PUB, MQTA_PUB_ALLOWED}});
    EXPECT_EQ(publish(hconn, "a", "x"), failed(MQRC_PUT_INHIBITED));
    EXPECT_EQ(publish(hconn, "a/c", "x"), failed(MQRC_PUT_INHIBITED));
    EXPECT_EQ(publish(hconn, "a/b/c", "x"), ok);
    const MQHOBJ topic = openTopic(hconn, "a");
    EXPECT_EQ(put(hconn, topic, "x"), failed(MQRC_PUT_INHIBITED));
}

TEST_F(Publish, SwitchedOffPublishSubscribeIs2531)
{
    const MQHOBJ topic = openTopic(hconn, "t");
    alterQueueManager({{MQIA_PUBSUB_MODE, MQPSM_DISABLED}});
    EXPECT_EQ(put(hconn, topic, "x"), failed(MQRC_PUBSUB_INHIBITED));
    EXPECT_EQ(publish(hconn, "t", "x"), failed(MQRC_PUBSUB_INHIBITED));
    MQHOBJ hobj = MQHO_NONE;
    EXPECT_EQ(tryOpenTopic(hconn, "t", hobj), failed(MQRC_PUBSUB_INHIBITED));
    EXPECT_EQ(codesOf("t", MQSO_CREATE | MQSO_MANAGED), failed(MQRC_PUBSUB_INHIBITED));
}

TEST_F(Publish, AliasQueueMayStandForATopic)
{
    defineTopic("FRUIT", "fruit");
    define(objects::ObjectKind::AliasQueue, "ALIAS", {{MQCA_BASE_OBJECT_NAME, "FRUIT"}},
           {{MQIA_BASE_TYPE, MQOT_TOPIC}});
    const Subscribed sub = subscribe(hconn, "fruit");
    MQHOBJ hobj = open(hconn, "ALIAS", MQOO_OUTPUT | MQOO_INQUIRE);
    EXPECT_EQ(put(hconn, hobj, "one"), ok);
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = pmoWith(MQPMO_RETAIN);
    EXPECT_EQ(put1(hconn, "ALIAS", "two", md, pmo), ok);
    EXPECT_EQ(drain(hconn, sub.queue), (Bodies{"one", "two"}));
    EXPECT_EQ(openCodes(hconn, "ALIAS", MQOO_INPUT_SHARED), failed(MQRC_OPTION_NOT_VALID_FOR_TYPE));
    MQLONG selector = MQIA_BASE_TYPE;
    MQLONG value = 0;
    Codes codes;
    MQINQ(hconn, hobj, 1, &selector, 1, &value, 0, nullptr, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, ok);
    EXPECT_EQ(value, MQOT_TOPIC);
    EXPECT_EQ(trySubscribe(hconn, sdFor("t", MQSO_CREATE), hobj).codes, failed(MQRC_HOBJ_ERROR));
}

class Delivery : public Publish {
public:
    // A queue that is full with its one message, and a subscription that wants more there.
    Subscribed subscribeFull(MQLONG options = MQSO_CREATE, std::string_view name = {})
    {
        defineQueue("FULL", {{MQIA_MAX_Q_DEPTH, 0}});
        const MQHOBJ full = open(hconn, "FULL", MQOO_INPUT_SHARED);
        Subscribed made = trySubscribe(hconn, sdFor("t", options, name), full);
        EXPECT_EQ(made.codes, ok);
        return made;
    }
};

TEST_F(Delivery, FullQueueOfANonDurableSubscriptionIsPassedOver)
{
    subscribeFull();
    const Subscribed other = subscribe(hconn, "t");
    EXPECT_EQ(publish(hconn, "t", "x"), ok);
    EXPECT_EQ(drain(hconn, other.queue), Bodies{"x"});
}

TEST_F(Delivery, FullQueueOfADurableSubscriptionFailsAPersistentPublicationForAll)
{
    subscribeFull(MQSO_CREATE | MQSO_DURABLE, "S");
    const Subscribed other = subscribe(hconn, "t");
    EXPECT_EQ(publish(hconn, "t", "x", MQPMO_RETAIN, persistentMd()), failed(MQRC_PUBLICATION_FAILURE));
    EXPECT_EQ(drain(hconn, other.queue), Bodies{});
    EXPECT_EQ(publish(hconn, "t", "y"), ok);
    EXPECT_EQ(drain(hconn, other.queue), Bodies{"y"});
    // Under syncpoint the unit of work goes on without it.
    EXPECT_EQ(publish(hconn, "t", "z", MQPMO_SYNCPOINT, persistentMd()), failed(MQRC_PUBLICATION_FAILURE));
    EXPECT_EQ(publish(hconn, "other", "z", MQPMO_SYNCPOINT), ok);
    EXPECT_EQ(commit(hconn), ok);
    EXPECT_EQ(drain(hconn, other.queue), Bodies{});
    EXPECT_EQ(depth("FULL"), 0);
}

TEST_F(Delivery, RuleOfTheTopicDecides)
{
    defineTopic("T", "t", {{MQIA_PM_DELIVERY, MQDLV_ALL_AVAIL}, {MQIA_NPM_DELIVERY, MQDLV_ALL}});
    subscribeFull(MQSO_CREATE | MQSO_DURABLE, "S");
    EXPECT_EQ(publish(hconn, "t", "x", MQPMO_NO_SYNCPOINT, persistentMd()), ok);
    EXPECT_EQ(publish(hconn, "t", "x"), failed(MQRC_PUBLICATION_FAILURE));
}

TEST_F(Delivery, WhatAQueueDoesNotTakeGoesOnTheDeadLetterQueue)
{
    defineQueue("DEAD");
    setDeadLetterQueue("DEAD");
    subscribeFull(MQSO_CREATE | MQSO_DURABLE, "S");
    EXPECT_EQ(publish(hconn, "t", "x", MQPMO_NO_SYNCPOINT, persistentMd()), ok);
    const Got got = get(hconn, open(hconn, "DEAD", MQOO_INPUT_SHARED));
    ASSERT_EQ(got.codes, ok);
    ASSERT_GE(got.body.size(), sizeof(MQDLH));
    MQDLH header;
    std::memcpy(&header, got.body.data(), sizeof header);
    EXPECT_EQ(header.Reason, MQRC_Q_FULL);
    EXPECT_EQ(text(header.DestQName), "FULL");
    EXPECT_EQ(got.body.substr(sizeof header), "x");
}

TEST_F(Delivery, TopicMayKeepTheDeadLetterQueueOut)
{
    defineQueue("DEAD");
    setDeadLetterQueue("DEAD");
    defineTopic("T", "t", {{MQIA_USE_DEAD_LETTER_Q, MQUSEDLQ_NO}});
    subscribeFull(MQSO_CREATE | MQSO_DURABLE, "S");
    EXPECT_EQ(publish(hconn, "t", "x", MQPMO_NO_SYNCPOINT, persistentMd()), failed(MQRC_PUBLICATION_FAILURE));
    EXPECT_EQ(depth("DEAD"), 0);
}

TEST_F(Publish, WildcardsDoNotPassATopicThatBlocksThem)
{
    defineTopic("A.B", "a/b", {{MQIA_WILDCARD_OPERATION, MQTA_BLOCK}});
    const Subscribed above = subscribe(hconn, "#");
    const Subscribed beside = subscribe(hconn, "a/+/c");
    const Subscribed at = subscribe(hconn, "a/b/#");
    const Subscribed exact = subscribe(hconn, "a/b/c");
    EXPECT_EQ(publish(hconn, "a/b/c", "blocked"), ok);
    EXPECT_EQ(publish(hconn, "a/x/c", "free"), ok);
    EXPECT_EQ(drain(hconn, above.queue), Bodies{"free"});
    EXPECT_EQ(drain(hconn, beside.queue), Bodies{"free"});
    EXPECT_EQ(drain(hconn, at.queue), Bodies{"blocked"});
    EXPECT_EQ(drain(hconn, exact.queue), Bodies{"blocked"});
}

TEST_F(Publish, OutcomeOfAnAsynchronousPublicationIsLeftToMQSTAT)
{
    defineTopic("T", "closed",
                {{MQIA_INHIBIT_PUB, MQTA_PUB_INHIBITED}, {MQIA_DEF_PUT_RESPONSE_TYPE, MQPRT_ASYNC_RESPONSE}});
    const Subscribed sub = subscribe(hconn, "free");
    EXPECT_EQ(publish(hconn, "closed/a", "x"), failed(MQRC_PUT_INHIBITED)); // MQPUT1 does not ask the topic
    EXPECT_EQ(put(hconn, openTopic(hconn, "closed/a"), "lost"), ok);
    EXPECT_EQ(publish(hconn, "closed/b", "lost", MQPMO_NO_SYNCPOINT | MQPMO_ASYNC_RESPONSE), ok);
    EXPECT_EQ(publish(hconn, "free", "there", MQPMO_NO_SYNCPOINT | MQPMO_ASYNC_RESPONSE), ok);
    EXPECT_EQ(drain(hconn, sub.queue), Bodies{"there"});
    MQSTS sts = {MQSTS_DEFAULT};
    sts.Version = MQSTS_VERSION_2;
    std::string topic(100, '\0');
    sts.ObjectString.VSPtr = topic.data();
    sts.ObjectString.VSBufSize = static_cast<MQLONG>(topic.size());
    Codes codes;
    MQSTAT(hconn, MQSTAT_TYPE_ASYNC_ERROR, &sts, &codes.CompCode, &codes.Reason);
    ASSERT_EQ(codes, ok);
    EXPECT_EQ((Codes{sts.CompCode, sts.Reason}), failed(MQRC_PUT_INHIBITED));
    EXPECT_EQ(sts.PutSuccessCount, 1);
    EXPECT_EQ(sts.PutFailureCount, 2);
    EXPECT_EQ(sts.ObjectType, MQOT_TOPIC);
    ASSERT_EQ(sts.ObjectString.VSLength, 8);
    EXPECT_EQ(topic.substr(0, 8), "closed/a");
}

TEST_F(Publish, MessageHandleThatIsNoneIsRefused)
{
    const Subscribed sub = subscribe(hconn, "t");
    MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT);
    pmo.Version = MQPMO_VERSION_3;
    pmo.OriginalMsgHandle = 12345;
    EXPECT_EQ(put(hconn, openTopic(hconn, "t"), "x", MQMD{MQMD_DEFAULT}, pmo), failed(MQRC_HMSG_ERROR));
    EXPECT_EQ(drain(hconn, sub.queue), Bodies{});
}

TEST_F(Publish, GroupInLogicalOrderReachesEachSubscriberAsAGroup)
{
    const Subscribed subs[] = {subscribe(hconn, "t"), subscribe(hconn, "#")};
    const MQHOBJ topic = openTopic(hconn, "t");
    const auto putMember = [&](MQLONG flags, std::string_view body) {
        MQMD md = version2Md();
        md.MsgFlags = flags;
        return put(hconn, topic, body, md, pmoWith(MQPMO_LOGICAL_ORDER | MQPMO_NO_SYNCPOINT));
    };
    EXPECT_EQ(putMember(MQMF_MSG_IN_GROUP, "one"), ok);
    EXPECT_EQ(putMember(MQMF_MSG_IN_GROUP, "two"), ok);
    EXPECT_EQ(putMember(MQMF_NONE, "outside"), failed(MQRC_INCOMPLETE_GROUP));
    EXPECT_EQ(putMember(MQMF_LAST_MSG_IN_GROUP, "three"), ok);
    EXPECT_EQ(putMember(MQMF_NONE, "alone"), ok);
    for (const Subscribed &sub : subs) {
        std::string group;
        for (MQLONG number = 1; number <= 3; ++number) {
            const Got got = get(hconn, sub.queue, version2Md(), gmoWith(MQGMO_NO_SYNCPOINT));
            ASSERT_EQ(got.codes, ok);
            EXPECT_EQ(got.md.MsgSeqNumber, number) << got.body;
            if (number == 1) group = bytes(got.md.GroupId);
            EXPECT_EQ(bytes(got.md.GroupId), group) << got.body;
        }
        EXPECT_NE(group, std::string(MQ_GROUP_ID_LENGTH, '\0'));
        EXPECT_EQ(drain(hconn, sub.queue), Bodies{"alone"});
    }
}

TEST_F(Publish, ArrivalIsReportedForEachSubscriber)
{
    const Subscribed subs[] = {subscribe(hconn, "t"), subscribe(hconn, "#")};
    MQMD md = version2Md();
    md.Report = MQRO_COA_WITH_DATA;
    setText(md.ReplyToQ, "Q1");
    EXPECT_EQ(publish(hconn, "t", "x", MQPMO_NO_SYNCPOINT, md), ok);
    std::set<std::string> published;
    std::set<std::string> reported;
    for (const Subscribed &sub : subs) {
        published.insert(bytes(get(hconn, sub.queue).md.MsgId));
        const Got report = get(hconn, q1);
        ASSERT_EQ(report.codes, ok);
        EXPECT_EQ(report.md.Feedback, MQFB_COA);
        EXPECT_EQ(report.body, "x");
        reported.insert(bytes(report.md.CorrelId));
    }
    EXPECT_EQ(published.size(), 2U);
    EXPECT_EQ(reported, published);
    EXPECT_EQ(depth("Q1"), 0);
}

TEST_F(Publish, SyncpointLimitAndQuiesceHoldForPublications)
{
    alterQueueManager({{MQIA_MAX_UNCOMMITTED_MSGS, 1}});
    const Subscribed sub = subscribe(hconn, "t");
    EXPECT_EQ(publish(hconn, "t", "x", MQPMO_SYNCPOINT), ok);
    EXPECT_EQ(publish(hconn, "t", "x", MQPMO_SYNCPOINT), failed(MQRC_SYNCPOINT_LIMIT_REACHED));
    EXPECT_EQ(commit(hconn), ok);
    endQuiesce();
    EXPECT_EQ(publish(hconn, "t", "x", MQPMO_FAIL_IF_QUIESCING), failed(MQRC_Q_MGR_QUIESCING));
    EXPECT_EQ(trySubscribe(hconn, sdFor("t", MQSO_CREATE | MQSO_MANAGED | MQSO_FAIL_IF_QUIESCING)).codes,
              failed(MQRC_Q_MGR_QUIESCING));
}

} // namespace
} // namespace mqrig::qmgr::testing
