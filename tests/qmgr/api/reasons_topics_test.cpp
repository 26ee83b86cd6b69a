// Reasons of publishing and subscribing that only a queue manager in trouble gives, and those that several calls have.
#include "every_call.h"
#include "topics_fixture.h"

namespace mqrig::qmgr::testing {
namespace {

class TopicReasons : public TopicTest {
public:
    static constexpr const char *retained = "SYSTEM.RETAINED.PUB.QUEUE";
};

TEST_F(TopicReasons, PublicationThatCannotBeRetainedIsNotPut)
{
    const Subscribed subscriber = subscribe(hconn, "fruit");
    ASSERT_EQ(publish(hconn, "fruit", "one", MQPMO_NO_SYNCPOINT | MQPMO_RETAIN), ok); // makes the queue
    ASSERT_EQ(get(hconn, subscriber.queue).body, "one");
    alterQueue(retained, {{MQIA_INHIBIT_PUT, MQQA_PUT_INHIBITED}, {MQIA_MAX_Q_DEPTH, 0}});
    EXPECT_EQ(publish(hconn, "fruit", "two", MQPMO_NO_SYNCPOINT | MQPMO_RETAIN), failed(MQRC_PUT_NOT_RETAINED));
    const MQHOBJ topic = openTopic(hconn, "fruit");
    EXPECT_EQ(put(hconn, topic, "two", {MQMD_DEFAULT}, pmoWith(MQPMO_NO_SYNCPOINT | MQPMO_RETAIN)),
              failed(MQRC_PUT_NOT_RETAINED));
    EXPECT_EQ(get(hconn, subscriber.queue).codes, failed(MQRC_NO_MSG_AVAILABLE));
}

TEST_F(TopicReasons, RetainedPublicationsThatCannotBeReadAre2525)
{
    const Subscribed early = subscribe(hconn, "fruit");
    ASSERT_EQ(publish(hconn, "fruit", "one", MQPMO_NO_SYNCPOINT | MQPMO_RETAIN), ok);
    {
        const store::Attached attached = store::attach(storeFolder(), "QM1");
        auto definition = attached.attachment->findDefinition(MQOT_Q, retained);
        ASSERT_TRUE(definition);
        definition->bytes = "?";
        ASSERT_EQ(attached.attachment->alter(*definition), success());
    }
    EXPECT_EQ(codesOf("fruit", MQSO_CREATE | MQSO_MANAGED), failed(MQRC_RETAINED_MSG_Q_ERROR));
    MQLONG number = 0;
    EXPECT_EQ(request(hconn, early.hsub, number), failed(MQRC_RETAINED_MSG_Q_ERROR));
}

TEST_F(TopicReasons, SelectorOfASubscriptionStays)
{
    constexpr MQLONG durable = MQSO_CREATE | MQSO_DURABLE | MQSO_MANAGED;
    MQSD sd = sdFor("fruit", durable, "S1");
    sd.SelectionString = charv("color = 'red'");
    Subscribed made = trySubscribe(hconn, sd);
    ASSERT_EQ(made.codes, ok);
    close(hconn, made.hsub);
    sd.Options = MQSO_ALTER | MQSO_DURABLE | MQSO_MANAGED;
    sd.SelectionString = charv("color = 'green'");
    EXPECT_EQ(trySubscribe(hconn, sd).codes, failed(MQRC_SELECTOR_NOT_ALTERABLE));
}

TEST_F(TopicReasons, SubscriberSaysWhoseThePublicationsAre)
{
    MQSD sd = sdFor("fruit", MQSO_CREATE | MQSO_MANAGED | MQSO_SET_IDENTITY_CONTEXT);
    setBytes(sd.PubAccountingToken, "token");
    setText(sd.PubApplIdentityData, "identity");
    const Subscribed made = trySubscribe(hconn, sd);
    ASSERT_EQ(made.codes, ok);
    ASSERT_EQ(publish(hconn, "fruit", "one"), ok);
    const Got got = get(hconn, made.queue);
    EXPECT_EQ(bytes(got.md.AccountingToken), bytes(sd.PubAccountingToken));
    EXPECT_EQ(text(got.md.ApplIdentityData), "identity");
}

// Its queue takes nothing, and there is no dead-letter queue.
TEST_F(TopicReasons, DurableSubscriberWithoutRoomFailsAPublication)
{
    defineQueue("FULL", {{MQIA_MAX_Q_DEPTH, 0}});
    MQHOBJ full = open(hconn, "FULL", MQOO_INPUT_SHARED | MQOO_OUTPUT);
    Subscribed made = trySubscribe(hconn, sdFor("fruit", MQSO_CREATE | MQSO_DURABLE, "S1"), full);
    ASSERT_EQ(made.codes, ok);
    const MQHOBJ topic = openTopic(hconn, "fruit");
    EXPECT_EQ(put(hconn, topic, "x", persistentMd()), failed(MQRC_PUBLICATION_FAILURE));

    close(hconn, made.hsub);
    close(hconn, full);
    const OwnConnection other;
    open(other.hconn, "FULL", MQOO_INPUT_EXCLUSIVE);
    EXPECT_EQ(trySubscribe(hconn, sdFor({}, MQSO_RESUME | MQSO_DURABLE, "S1")).codes, failed(MQRC_OBJECT_IN_USE));
}

// What MQOPEN says of the strings of a topic, MQPUT1 says too; those of MQSUB are its own.
TEST_F(TopicReasons, StringsOfATopic)
{
    const auto expectBoth = [&](MQLONG reason, const MQOD &od) {
        MQOD opened = od;
        MQOD put = od;
        MQMD md = {MQMD_DEFAULT};
        MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT);
        MQHOBJ hobj = MQHO_NONE;
        EXPECT_EQ(tryOpen(hconn, opened, MQOO_OUTPUT, hobj), failed(reason));
        EXPECT_EQ(answerOf(MQPUT1, hconn, &put, &md, &pmo, 0, nullptr), failed(reason));
    };
    MQOD od = topicOd("fruit");
    od.ObjectString.VSLength = -5;
    expectBoth(MQRC_OBJECT_STRING_ERROR, od);
    expectBoth(MQRC_TOPIC_STRING_ERROR, topicOd("", "SYSTEM.BASE.TOPIC"));
    expectBoth(MQRC_ADMIN_TOPIC_STRING_ERROR, topicOd("$SYS/MQ/mine"));
    expectBoth(MQRC_UNKNOWN_OBJECT_NAME, topicOd("", "NOT.THERE"));
    od = topicOd("fruit");
    char buffer[8] = {};
    od.ResObjectString.VSPtr = buffer;
    od.ResObjectString.VSOffset = 8;
    expectBoth(MQRC_RES_OBJECT_STRING_ERROR, od);

    MQSD sd = sdFor("fruit", MQSO_CREATE | MQSO_MANAGED);
    sd.ResObjectString = od.ResObjectString;
    MQHOBJ queue = MQHO_NONE;
    MQHOBJ hsub = MQHO_NONE;
    EXPECT_EQ(answerOf(MQSUB, hconn, &sd, &queue, &hsub), failed(MQRC_RES_OBJECT_STRING_ERROR));
}

} // namespace
} // namespace mqrig::qmgr::testing
