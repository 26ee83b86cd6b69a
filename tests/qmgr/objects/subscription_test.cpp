#include "qmgr/objects/subscription.h"

#include <gtest/gtest.h>

namespace mqrig::qmgr::objects {
namespace {

Subscription sample()
{
    Subscription subscription;
    subscription.id.fill(7);
    subscription.name = "name with trailing blanks  ";
    subscription.topic = std::string(10240, 't');
    subscription.userData = std::string("zero\0inside", 11);
    subscription.queue = "Q1";
    subscription.correlId.fill(9);
    subscription.deadline = 1234567890123;
    subscription.priority = 5;
    subscription.scheme = WildcardScheme::Characters;
    subscription.durable = true;
    subscription.grouped = true;
    return subscription;
}

TEST(Subscription, IsReadAsItWasWritten)
{
    const Subscription subscription = sample();
    EXPECT_EQ(Subscription::decode(subscription.encode()), subscription);
    EXPECT_EQ(Subscription::decode(Subscription().encode()), Subscription());
}

TEST(Subscription, CutOrForeignBytesAreNone)
{
    const std::string bytes = sample().encode();
    EXPECT_FALSE(Subscription::decode(""));
    EXPECT_FALSE(Subscription::decode("O" + bytes.substr(1)));
    EXPECT_FALSE(Subscription::decode("S\2" + bytes.substr(2)));
    // Cut between two fields it reads as one with fewer.
    std::size_t refused = 0;
    for (std::size_t length = 2; length < bytes.size(); ++length)
        refused += Subscription::decode(bytes.substr(0, length)) ? 0 : 1;
    EXPECT_GE(refused, bytes.size() - 2 - 28);
}

TEST(Subscription, UnknownFieldIsPassedOver)
{
    const std::string unknown("\xC8\3\0\0\0xyz", 8);
    EXPECT_EQ(Subscription::decode(sample().encode() + unknown), sample());
}

TEST(Subscription, KeyIsOfTheNameOrOfTheIdentifier)
{
    Subscription subscription = sample();
    EXPECT_EQ(keyOf(subscription), subscriptionKey(subscription.name));
    EXPECT_EQ(keyOf(subscription).size(), 48U);
    EXPECT_NE(subscriptionKey("a"), subscriptionKey("b"));
    EXPECT_NE(subscriptionKey("a"), subscriptionKey(std::string("a\0", 2)));
    subscription.name.clear();
    EXPECT_EQ(keyOf(subscription),
              std::string(48, '0').replace(0, 48, "070707070707070707070707070707070707070707070707"));
}

} // namespace
} // namespace mqrig::qmgr::objects
