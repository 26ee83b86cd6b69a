// Retained publications while programs publish and subscribe at once.
#include <atomic>
#include <thread>

#include "topics_fixture.h"

namespace mqrig::qmgr::testing {
namespace {

constexpr int rounds = 40;
constexpr int wanted = 5; // publications that each subscriber looks at

class Retained : public TopicTest {};

// Publishes 1, 2, 3 ... on the topic until it is told to stop.
void publishNumbers(const std::atomic<bool> &stop, std::string_view topic, MQLONG options)
{
    const OwnConnection publisher;
    for (int number = 1; !stop; ++number) {
        ASSERT_EQ(TopicTest::publish(publisher.hconn, topic, std::to_string(number), MQPMO_RETAIN | options), ok);
        if (options == MQPMO_NO_SYNCPOINT) continue;
        ASSERT_EQ(QueueManagerTest::commit(publisher.hconn), ok);
    }
}

TEST_F(Retained, NewSubscriberHasEveryPublicationOnceFromTheRetainedOneOn)
{
    std::atomic<bool> stop = false;
    std::thread publisher([&] { publishNumbers(stop, "numbers", MQPMO_NO_SYNCPOINT); });
    {
        // Until there is something to be retained.
        const Subscribed first = subscribe(hconn, "numbers");
        MQGMO gmo = gmoWith(MQGMO_NO_SYNCPOINT | MQGMO_WAIT);
        gmo.WaitInterval = MQWI_UNLIMITED;
        EXPECT_EQ(get(hconn, first.queue, MQMD{MQMD_DEFAULT}, gmo).codes, ok);
    }
    for (int round = 0; round < rounds; ++round) {
        const OwnConnection subscriber;
        const Subscribed sub = subscribe(subscriber.hconn, round % 2 == 0 ? "numbers" : "#");
        int before = 0;
        for (int i = 0; i < wanted; ++i) {
            MQGMO gmo = gmoWith(MQGMO_NO_SYNCPOINT | MQGMO_WAIT);
            gmo.WaitInterval = MQWI_UNLIMITED;
            const Got got = get(subscriber.hconn, sub.queue, MQMD{MQMD_DEFAULT}, gmo);
            ASSERT_EQ(got.codes, ok);
            const int number = std::stoi(got.body);
            EXPECT_EQ(number, i == 0 ? number : before + 1) << "round " << round << ", publication " << i;
            before = number;
        }
    }
    stop = true;
    publisher.join();
}

TEST_F(Retained, PublishersOfOneTopicLeaveTheLastOneOnly)
{
    std::atomic<bool> stop = false;
    std::vector<std::thread> publishers;
    for (int i = 0; i < 3; ++i)
        publishers.emplace_back(
            [&stop, i] { publishNumbers(stop, "t", i == 0 ? MQPMO_SYNCPOINT : MQPMO_NO_SYNCPOINT); });
    for (int round = 0; round < rounds; ++round) {
        const OwnConnection subscriber;
        subscribe(subscriber.hconn, "t");
    }
    stop = true;
    for (std::thread &publisher : publishers)
        publisher.join();
    EXPECT_EQ(publish(hconn, "t", "last", MQPMO_RETAIN), ok);
    EXPECT_EQ(publish(hconn, "t", "very last", MQPMO_RETAIN), ok);
    EXPECT_LE(depth("SYSTEM.RETAINED.PUB.QUEUE"), 2);
    EXPECT_EQ(drain(hconn, subscribe(hconn, "t").queue), Bodies{"very last"});
}

} // namespace
} // namespace mqrig::qmgr::testing
