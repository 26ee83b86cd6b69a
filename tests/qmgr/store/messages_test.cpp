#include "store_test.h"

namespace mqrig::qmgr::store::test {
namespace {

using Messages = StoreTest;
using Texts = std::vector<std::string>;

TEST_F(Messages, AreDeliveredInTheOrderTheyWerePut)
{
    const auto a = connect();
    for (const char *text : {"one", "two", "three"})
        ASSERT_EQ(put(*a, q1_, text), success());
    EXPECT_EQ(browse(*a, q1_), (Texts{"one", "two", "three"}));
    EXPECT_EQ(get(*a, q1_), "one");
    EXPECT_EQ(get(*a, q1_), "two");
    EXPECT_EQ(get(*a, q1_), "three");
    EXPECT_EQ(get(*a, q1_), "");
}

TEST_F(Messages, OfHigherPriorityComeFirst)
{
    const auto a = connect();
    ASSERT_EQ(put(*a, q1_, "low", {.priority = 1}), success());
    ASSERT_EQ(put(*a, q1_, "high", {.priority = 9}), success());
    ASSERT_EQ(put(*a, q1_, "low too", {.priority = 1}), success());
    ASSERT_EQ(put(*a, q1_, "middle", {.persistence = MQPER_PERSISTENT, .priority = 5}), success());
    EXPECT_EQ(browse(*a, q1_), (Texts{"high", "middle", "low", "low too"}));
}

TEST_F(Messages, StayOnTheirOwnQueue)
{
    const auto a = connect();
    ASSERT_EQ(put(*a, q1_, "first"), success());
    ASSERT_EQ(put(*a, q2_, "second"), success());
    EXPECT_EQ(browse(*a, q1_), (Texts{"first"}));
    EXPECT_EQ(browse(*a, q2_), (Texts{"second"}));
}

TEST_F(Messages, KeepHeaderAndBodyByteForByte)
{
    const auto a = connect();
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{1500}, std::size_t{1501},
                                   std::size_t{100'000}, std::size_t{100} << 20}) {
        for (const MQLONG persistence : {MQPER_NOT_PERSISTENT, MQPER_PERSISTENT}) {
            std::string text(size, 'x');
            for (std::size_t at = 0; at < size; at += 4099)
                text[at] = static_cast<char>('a' + at % 26);
            ASSERT_EQ(
                put(*a, q1_, text, {.persistence = persistence, .priority = 3, .msgId = "id", .correlId = "correl"}),
                success());
            MessageHeader header{};
            ASSERT_EQ(a->read([&](ReadTransaction &transaction) {
                MessageCursor cursor(transaction, q1_);
                EXPECT_TRUE(cursor.first());
                header = cursor.header();
                return success();
            }),
                      success());
            EXPECT_EQ(header.bodyLength, size);
            EXPECT_EQ(header.md.Priority, 3);
            EXPECT_EQ(std::memcmp(header.md.CorrelId, "correl", 7), 0);
            EXPECT_TRUE(get(*a, q1_) == text) << size;
        }
    }
}

TEST_F(Messages, AreFoundByTheirIdsInDeliveryOrder)
{
    const auto a = connect();
    ASSERT_EQ(put(*a, q1_, "1", {.priority = 1, .msgId = "m1", .correlId = "c", .groupId = "g"}), success());
    ASSERT_EQ(put(*a, q1_, "2", {.priority = 2, .msgId = "m2", .correlId = "c"}), success());
    ASSERT_EQ(put(*a, q1_, "3", {.priority = 1, .msgId = "m3", .correlId = "d", .groupId = "g"}), success());
    ASSERT_EQ(put(*a, q2_, "4", {.priority = 1, .msgId = "m1", .correlId = "c", .groupId = "g"}), success());
    const auto found = [&](Index index, std::string_view id) {
        Texts texts;
        MQBYTE24 bytes{};
        std::memcpy(bytes, id.data(), id.size());
        EXPECT_EQ(a->read([&](ReadTransaction &transaction) {
            MessageCursor cursor(transaction, q1_, index, bytes);
            for (bool on = cursor.first(); on; on = cursor.next())
                texts.push_back(textOf(cursor.body()));
            return success();
        }),
                  success());
        return texts;
    };
    EXPECT_EQ(found(Index::MsgId, "m1"), (Texts{"1"}));
    EXPECT_EQ(found(Index::CorrelId, "c"), (Texts{"2", "1"}));
    EXPECT_EQ(found(Index::GroupId, "g"), (Texts{"1", "3"}));
    EXPECT_EQ(found(Index::CorrelId, "e"), (Texts{}));
    UnitOfWork unit(*a);
    EXPECT_EQ(unit.get(q1_), "2");
    EXPECT_EQ(found(Index::CorrelId, "c"), (Texts{"1"}));
    EXPECT_EQ(unit.commit(), success());
    EXPECT_EQ(found(Index::MsgId, "m2"), (Texts{}));
}

TEST_F(Messages, OfAGroupAreFoundInLogicalOrder)
{
    const auto a = connect();
    MQBYTE group[24] = {'g'};
    const auto putAt = [&](const char *text, MQLONG msgSeqNumber, MQLONG offset) {
        NewMessage message{a->newKey(q1_, 0), headerOf({.groupId = "g"}), bytesOf(text)};
        message.header.md.MsgSeqNumber = msgSeqNumber;
        message.header.md.Offset = offset;
        ASSERT_EQ(a->update(1,
                            [&](WriteTransaction &transaction) {
                                transaction.put(message);
                                return success();
                            }),
                  success());
    };
    putAt("third", 300, 0);
    putAt("second", 2, 256);
    putAt("first", 2, 1);
    ASSERT_EQ(put(*a, q1_, "of none"), success());
    ASSERT_EQ(put(*a, q1_, "of another", {.groupId = "h"}), success());

    const auto found = [&](const GroupPlace &place) {
        Texts texts;
        EXPECT_EQ(a->read([&](ReadTransaction &transaction) {
            MessageCursor cursor(transaction, q1_, place);
            for (bool on = cursor.first(); on; on = cursor.next())
                texts.push_back(textOf(cursor.body()));
            if (cursor.last()) texts.push_back("last " + textOf(cursor.body()));
            return success();
        }),
                  success());
        return texts;
    };
    EXPECT_EQ(found({MessageId(group), {}, {}}), (Texts{"first", "second", "third", "last third"}));
    EXPECT_EQ(found({MessageId(group), 2, {}}), (Texts{"first", "second", "last second"}));
    EXPECT_EQ(found({MessageId(group), 2, 256}), (Texts{"second", "last second"}));
    EXPECT_EQ(found({MessageId(group), 1, {}}), (Texts{}));
    UnitOfWork unit(*a);
    ASSERT_EQ(unit.get(q1_), "third");
    EXPECT_EQ(found({MessageId(group), {}, {}}), (Texts{"first", "second", "last second"}));
    EXPECT_EQ(unit.commit(), success());
    EXPECT_EQ(found({MessageId(group), 300, {}}), (Texts{}));
}

TEST_F(Messages, AreBrowsedOnFromAKeyThatIsGone)
{
    const auto a = connect();
    for (const char *text : {"1", "2", "3", "4"})
        ASSERT_EQ(put(*a, q1_, text), success());
    MessageKey first;
    ASSERT_EQ(a->read([&](ReadTransaction &transaction) {
        MessageCursor cursor(transaction, q1_);
        EXPECT_TRUE(cursor.first());
        first = cursor.key();
        return success();
    }),
              success());
    const auto behindFirst = [&] {
        std::string text;
        EXPECT_EQ(a->read([&](ReadTransaction &transaction) {
            MessageCursor cursor(transaction, q1_);
            if (cursor.seek(first)) text = textOf(cursor.body());
            return success();
        }),
                  success());
        return text;
    };
    EXPECT_EQ(behindFirst(), "2");
    EXPECT_EQ(get(*a, q1_), "1");
    EXPECT_EQ(behindFirst(), "2");
    EXPECT_EQ(get(*a, q1_), "2");
    EXPECT_EQ(behindFirst(), "3");
}

TEST_F(Messages, HeldInTheMiddleArePassedOver)
{
    const auto a = connect();
    const auto b = connect();
    for (int n = 0; n < 10; ++n)
        ASSERT_EQ(put(*a, q1_, std::to_string(n)), success());
    UnitOfWork unit(*a);
    ASSERT_EQ(unit.get(q1_), "0");
    ASSERT_EQ(unit.get(q1_), "1");
    UnitOfWork other(*b);
    ASSERT_EQ(other.get(q1_), "2");
    ASSERT_EQ(unit.get(q1_), "3");
    EXPECT_EQ(browse(*b, q1_), (Texts{"4", "5", "6", "7", "8", "9"}));
    EXPECT_EQ(other.backOut(), success());
    EXPECT_EQ(browse(*b, q1_), (Texts{"2", "4", "5", "6", "7", "8", "9"}));
    EXPECT_EQ(unit.backOut(), success());
    EXPECT_EQ(browse(*b, q1_), (Texts{"0", "1", "2", "3", "4", "5", "6", "7", "8", "9"}));
}

TEST_F(Messages, AreNamedByTheirToken)
{
    const MessageKey key{.queue = 0x01020304, .order = 7, .sequence = 0x1122334455667788};
    EXPECT_EQ(keyOfToken(tokenOfKey(key)), key);
    EXPECT_FALSE(keyOfToken(MessageToken{}).has_value());
}

TEST_F(Messages, HeaderChangesLeaveTheBodyAlone)
{
    const auto a = connect();
    ASSERT_EQ(put(*a, q1_, "small"), success());
    const std::string large(200'000, 'L');
    ASSERT_EQ(put(*a, q1_, large), success());
    ASSERT_EQ(a->update(0,
                        [&](WriteTransaction &transaction) {
                            std::vector<MessageKey> keys;
                            {
                                MessageCursor cursor(transaction, q1_);
                                for (bool on = cursor.first(); on; on = cursor.next())
                                    keys.push_back(cursor.key());
                            }
                            for (const MessageKey &key : keys) {
                                auto header = transaction.find(key);
                                EXPECT_TRUE(header.has_value());
                                header->md.BackoutCount = 7;
                                transaction.changeHeader(key, *header);
                            }
                            return success();
                        }),
              success());
    EXPECT_EQ(browse(*a, q1_), (Texts{"small", large}));
}

TEST_F(Messages, OfARefusedUpdateAreNotThere)
{
    const auto a = connect();
    const NewMessage message{a->newKey(q1_, 0), headerOf({}), bytesOf("never")};
    EXPECT_EQ(a->update(5,
                        [&](WriteTransaction &transaction) {
                            transaction.put(message);
                            return failure(MQRC_Q_FULL);
                        }),
              failure(MQRC_Q_FULL));
    EXPECT_EQ(browse(*a, q1_), (Texts{}));
    EXPECT_EQ(statusOf(*a, q1_).depth, 0U);
}

TEST_F(Messages, DiscardedAreGoneAtOnce)
{
    const auto a = connect();
    ASSERT_EQ(put(*a, q1_, "expired", {.persistence = MQPER_PERSISTENT}), success());
    ASSERT_EQ(put(*a, q1_, "alive", {.persistence = MQPER_PERSISTENT}), success());
    ASSERT_EQ(a->update(0,
                        [&](WriteTransaction &transaction) {
                            MessageKey key;
                            {
                                MessageCursor cursor(transaction, q1_);
                                EXPECT_TRUE(cursor.first());
                                key = cursor.key();
                            }
                            transaction.discard(key);
                            return success();
                        }),
              success());
    EXPECT_EQ(browse(*a, q1_), (Texts{"alive"}));
    EXPECT_EQ(statusOf(*a, q1_).depth, 1U);
}

TEST_F(Messages, AreCountedSinceTheStatisticsWereReset)
{
    const auto a = connect();
    EXPECT_EQ(put(*a, q1_, "one"), success());
    EXPECT_EQ(put(*a, q1_, "two"), success());
    UnitOfWork unit(*a);
    EXPECT_EQ(unit.put(q1_, "three"), success());
    EXPECT_EQ(get(*a, q1_), "one");
    unit.get(q1_);
    EXPECT_EQ(unit.backOut(), success());
    QueueStatus status = statusOf(*a, q1_);
    EXPECT_EQ(status.depth, 1U);
    EXPECT_EQ(status.enqueued, 3U);
    EXPECT_EQ(status.dequeued, 2U);
    EXPECT_EQ(status.highDepth, 3U);
    EXPECT_GT(status.resetTime, 0);

    EXPECT_EQ(a->update(0,
                        [&](WriteTransaction &transaction) {
                            EXPECT_EQ(transaction.resetStatistics(q1_).enqueued, 3U);
                            return success();
                        }),
              success());
    status = statusOf(*a, q1_);
    EXPECT_EQ(status.enqueued, 0U);
    EXPECT_EQ(status.dequeued, 0U);
    EXPECT_EQ(status.highDepth, 1U);
    EXPECT_EQ(statusOf(*a, q2_).enqueued, 0U);
}

TEST_F(Messages, CountsThatARequestWasToldAreToldAgainWhenItIsRepeated)
{
    const auto a = connect();
    const auto resetFor = [&](std::int64_t request, bool repeated) {
        QueueStatus told;
        EXPECT_EQ(a->update(0,
                            [&](WriteTransaction &transaction) {
                                told = transaction.resetStatisticsFor(q1_, request, repeated);
                                return success();
                            }),
                  success());
        return told;
    };
    const std::int64_t begun = statusOf(*a, q1_).resetTime;
    ASSERT_EQ(put(*a, q1_, "1"), success());
    ASSERT_EQ(put(*a, q1_, "2"), success());
    EXPECT_EQ(resetFor(7, false).enqueued, 2U);
    ASSERT_EQ(put(*a, q1_, "3"), success());
    for (int i = 0; i < 2; ++i) {
        const QueueStatus again = resetFor(7, true);
        EXPECT_EQ(again.enqueued, 3U);
        EXPECT_EQ(again.highDepth, 3U);
        EXPECT_EQ(again.resetTime, begun);
    }
    const QueueStatus another = resetFor(8, true);
    EXPECT_EQ(another.enqueued, 0U) << "of another request";
    EXPECT_GT(another.resetTime, begun);
}

TEST_F(Messages, AreCountedFromTheStartOfTheQueueManager)
{
    ASSERT_EQ(put(*connect(), q1_, "kept", {.persistence = MQPER_PERSISTENT}), success());
    ASSERT_EQ(endQueueManager(folder_, "QM1", End::Immediate), success());
    ASSERT_EQ(startQueueManager(folder_, "QM1"), success());
    const QueueStatus status = statusOf(*connect(), q1_);
    EXPECT_EQ(status.enqueued, 0U);
    EXPECT_EQ(status.highDepth, 1U);
    EXPECT_GT(status.resetTime, 0);
}

TEST_F(Messages, UnlockedAreAsIfTheyHadNeverBeenGot)
{
    const auto a = connect();
    const auto b = connect();
    ASSERT_EQ(put(*a, q1_, "one", {.persistence = MQPER_PERSISTENT}), success());
    ASSERT_EQ(put(*a, q1_, "two"), success());
    const QueueStatus before = statusOf(*a, q1_);
    std::vector<MessageKey> keys;
    const auto forEachKey = [&](Attachment &attachment, void (WriteTransaction::*act)(const MessageKey &)) {
        return attachment.update(0, [&](WriteTransaction &transaction) {
            for (const MessageKey &key : keys)
                (transaction.*act)(key);
            return success();
        });
    };
    ASSERT_EQ(a->read([&](ReadTransaction &transaction) {
        MessageCursor cursor(transaction, q1_);
        for (bool found = cursor.first(); found; found = cursor.next())
            keys.push_back(cursor.key());
        return success();
    }),
              success());
    ASSERT_EQ(forEachKey(*a, &WriteTransaction::lock), success());
    ASSERT_EQ(browse(*b, q1_), Texts{});
    ASSERT_EQ(forEachKey(*b, &WriteTransaction::unlock), success());
    EXPECT_EQ(browse(*b, q1_), Texts{}) << "they are another connection's";
    ASSERT_EQ(forEachKey(*a, &WriteTransaction::unlock), success());
    EXPECT_EQ(browse(*b, q1_), (Texts{"one", "two"}));
    const QueueStatus after = statusOf(*a, q1_);
    EXPECT_EQ(after.depth, before.depth);
    EXPECT_EQ(after.held, 0U);
    EXPECT_EQ(after.dequeued, before.dequeued);
    EXPECT_EQ(get(*b, q1_), "one");
    EXPECT_EQ(get(*b, q1_), "two");
}

TEST_F(Messages, AreAllUnmarkedWhenTheLastHandleThatBrowsesTogetherGoes)
{
    const auto a = connect();
    const auto open = [&](const OpenCounts &counts) {
        return a->update(0, [&](WriteTransaction &transaction) {
            transaction.addOpens(q1_, counts);
            return success();
        });
    };
    const OpenCounts together{.browse = 1, .together = 1};
    ASSERT_EQ(open(together), success());
    ASSERT_EQ(open(together), success());
    constexpr int many = 4500;
    std::vector<MessageKey> keys;
    ASSERT_EQ(a->update(many * 100,
                        [&](WriteTransaction &transaction) {
                            for (int n = 0; n < many; ++n) {
                                keys.push_back(a->newKey(q1_, 9));
                                transaction.put({.key = keys.back(), .header = headerOf({}), .body = {}});
                                transaction.setMark(keys.back(), 1);
                            }
                            return success();
                        }),
              success());
    const auto marked = [&] {
        int count = 0;
        EXPECT_EQ(a->read([&](ReadTransaction &transaction) {
            for (const MessageKey &key : keys)
                count += transaction.markOf(key) ? 1 : 0;
            return success();
        }),
                  success());
        return count;
    };
    ASSERT_EQ(open(-together), success());
    EXPECT_EQ(marked(), many);
    ASSERT_EQ(open(-together), success());
    EXPECT_EQ(marked(), 0);
    EXPECT_EQ(statusOf(*a, q1_).marked, 0U);
    EXPECT_EQ(statusOf(*a, q1_).depth, static_cast<std::uint32_t>(many));
}

} // namespace
} // namespace mqrig::qmgr::store::test
