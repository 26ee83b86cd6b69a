#include <functional>
#include <utility>

#include "qmgr/store/seams.h"
#include "store_test.h"

namespace mqrig::qmgr::store::test {
namespace {

using Definitions = StoreTest;

TEST_F(Definitions, AreFoundByTypeAndName)
{
    const auto a = connect();
    EXPECT_EQ(a->findDefinition(MQOT_Q, "Q1").value_or(Definition{}).bytes, "first");
    EXPECT_EQ(a->findDefinition(MQOT_Q_MGR, "QM1").value_or(Definition{}).bytes, "manager");
    EXPECT_FALSE(a->findDefinition(MQOT_Q_MGR, "Q1").has_value());
    EXPECT_FALSE(a->findDefinition(MQOT_Q, "Q").has_value());
    EXPECT_FALSE(a->findDefinition(MQOT_Q, "").has_value());
    EXPECT_FALSE(a->findDefinition(MQOT_Q, std::string(49, 'Q')).has_value());
}

TEST_F(Definitions, AreListedInNameOrder)
{
    const auto a = connect();
    Definition more{.type = MQOT_Q, .name = "A.QUEUE", .bytes = "x"};
    ASSERT_EQ(a->define(more), success());
    std::vector<std::string> names;
    for (const auto &definition : a->definitions(MQOT_Q))
        names.push_back(definition.name);
    EXPECT_EQ(names, (std::vector<std::string>{"A.QUEUE", "Q1", "Q2"}));
    EXPECT_EQ(a->definitions(MQOT_ALL).size(), 4U);
}

TEST_F(Definitions, ChangesMoveTheVersion)
{
    const auto a = connect();
    const auto b = connect();
    std::uint64_t version = a->definitionVersion();
    const auto moved = [&] { return std::exchange(version, a->definitionVersion()) != b->definitionVersion(); };
    Definition queue{.type = MQOT_Q, .name = "NEW", .bytes = "1"};
    ASSERT_EQ(b->define(queue), success());
    EXPECT_TRUE(moved());
    queue.bytes = "2";
    ASSERT_EQ(b->alter(queue), success());
    EXPECT_TRUE(moved());
    EXPECT_EQ(a->findDefinition(MQOT_Q, "NEW").value_or(Definition{}).bytes, "2");
    ASSERT_EQ(b->remove(MQOT_Q, "NEW", nullptr), success());
    EXPECT_TRUE(moved());
    EXPECT_FALSE(a->findDefinition(MQOT_Q, "NEW").has_value());
    EXPECT_FALSE(moved());
}

TEST_F(Definitions, AreRefusedTwiceAndWhenUnknown)
{
    const auto a = connect();
    Definition queue{.type = MQOT_Q, .name = "Q1", .bytes = "again"};
    EXPECT_EQ(a->define(queue), failure(MQRC_OBJECT_ALREADY_EXISTS));
    queue.name = "NONE";
    EXPECT_EQ(a->alter(queue), failure(MQRC_UNKNOWN_OBJECT_NAME));
    EXPECT_EQ(a->remove(MQOT_Q, "NONE", nullptr), failure(MQRC_UNKNOWN_OBJECT_NAME));
    queue.name = "";
    EXPECT_EQ(a->define(queue), failure(MQRC_OBJECT_NAME_ERROR));
}

TEST_F(Definitions, QueueNumbersAreNeverGivenTwice)
{
    const auto a = connect();
    std::vector<QueueId> ids{q1_, q2_};
    for (int time = 0; time < 3; ++time) {
        Definition queue{.type = MQOT_Q, .name = "AGAIN", .bytes = ""};
        ASSERT_EQ(a->define(queue), success());
        for (const QueueId id : ids)
            EXPECT_NE(queue.queue, id);
        ids.push_back(queue.queue);
        ASSERT_EQ(a->remove(MQOT_Q, "AGAIN", nullptr), success());
    }
}

TEST_F(Definitions, RemovingAQueueAsksAndTakesItsMessages)
{
    const auto a = connect();
    ASSERT_EQ(put(*a, q1_, "stays", {.persistence = MQPER_PERSISTENT, .msgId = "m"}), success());
    for (int n = 0; n < 5000; ++n)
        ASSERT_EQ(put(*a, q2_, "goes", {.msgId = "m", .correlId = "c"}), success());
    ASSERT_EQ(put(*a, q2_, std::string(100'000, 'g'), {.persistence = MQPER_PERSISTENT}), success());
    const auto ifEmpty = [](const QueueStatus &status) {
        return status.depth == 0 ? success() : failure(MQRC_Q_NOT_EMPTY);
    };
    EXPECT_EQ(a->remove(MQOT_Q, "Q2", ifEmpty), failure(MQRC_Q_NOT_EMPTY));
    EXPECT_EQ(statusOf(*a, q2_).depth, 5001U);
    EXPECT_EQ(a->remove(MQOT_Q, "Q2", nullptr), success());
    EXPECT_TRUE(browse(*a, q2_).empty());
    EXPECT_EQ(put(*a, q2_, "late"), failure(MQRC_Q_DELETED));
    UnitOfWork unit(*a);
    EXPECT_EQ(unit.put(q2_, "late"), failure(MQRC_Q_DELETED));
    EXPECT_EQ(a->update(0,
                        [&](WriteTransaction &transaction) {
                            transaction.addOpens(q2_, {.input = 1});
                            return success();
                        }),
              failure(MQRC_Q_DELETED));
    EXPECT_EQ(browse(*a, q1_), (std::vector<std::string>{"stays"}));
}

TEST_F(Definitions, AUnitWithAPutToARemovedQueueIsBackedOut)
{
    const auto a = connect();
    UnitOfWork unit(*a);
    ASSERT_EQ(unit.put(q1_, "one"), success());
    ASSERT_EQ(unit.put(q2_, "other"), success());
    ASSERT_EQ(a->remove(MQOT_Q, "Q2", nullptr), success());
    EXPECT_EQ(unit.commit(), warning(MQRC_BACKED_OUT));
    EXPECT_TRUE(browse(*a, q1_).empty());
    EXPECT_EQ(statusOf(*a, q1_).depth, 0U);
}

TEST_F(Definitions, OpenCountsAddUpOverConnections)
{
    const auto a = connect();
    const auto b = connect();
    const auto open = [&](Attachment &attachment, const OpenCounts &counts) {
        return attachment.update(0, [&](WriteTransaction &transaction) {
            transaction.addOpens(q1_, counts);
            return success();
        });
    };
    ASSERT_EQ(open(*a, {.input = 1, .output = 1}), success());
    ASSERT_EQ(open(*b, {.input = 2, .browse = 1}), success());
    EXPECT_EQ(statusOf(*a, q1_).opens.input, 3);
    EXPECT_EQ(statusOf(*a, q1_).opens.output, 1);
    EXPECT_EQ(statusOf(*a, q1_).opens.browse, 1);
    ASSERT_EQ(open(*b, {.input = -2, .browse = -1}), success());
    EXPECT_EQ(statusOf(*a, q1_).opens.input, 1);
    EXPECT_EQ(statusOf(*a, q1_).opens.browse, 0);
}

TEST_F(Definitions, OfTemporaryQueuesHaveNamesOfOneTo48Characters)
{
    const auto a = connect();
    for (const std::size_t length : {0, 49}) {
        Definition queue{.type = MQOT_Q, .name = std::string(length, 'T'), .bytes = "x"};
        EXPECT_EQ(a->defineTemporary(queue), failure(MQRC_OBJECT_NAME_ERROR)) << length;
    }
    EXPECT_EQ(a->definitions(MQOT_Q).size(), 2U);
    Definition queue{.type = MQOT_Q, .name = std::string(48, 'T'), .bytes = "x"};
    EXPECT_EQ(a->defineTemporary(queue), success());
    EXPECT_EQ(a->definitions(MQOT_Q).size(), 3U);
}

TEST_F(Definitions, OfATemporaryQueueThatGoesMeanwhileIsNotBroughtBackByAChange)
{
    const auto a = connect();
    const auto b = connect();
    Definition queue{.type = MQOT_Q, .name = "TEMPORARY", .bytes = "x"};
    ASSERT_EQ(a->defineTemporary(queue), success());
    // The first step of the change that writes comes when the queue has been looked up.
    static std::function<void()> meanwhile;
    meanwhile = [&] { EXPECT_EQ(a->removeTemporary(queue), success()); };
    seams.storageError = [](StorageCall call) {
        if (call == StorageCall::LiveBegin && meanwhile) std::exchange(meanwhile, nullptr)();
        return 0;
    };
    EXPECT_EQ(b->alter({.type = MQOT_Q, .name = "TEMPORARY", .bytes = "changed"}), failure(MQRC_UNKNOWN_OBJECT_NAME));
    seams.storageError = nullptr;
    EXPECT_FALSE(meanwhile);
    EXPECT_FALSE(b->findDefinition(MQOT_Q, "TEMPORARY").has_value());
    EXPECT_EQ(findings(), "");
}

} // namespace
} // namespace mqrig::qmgr::store::test
