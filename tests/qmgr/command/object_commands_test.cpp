#include "qmgr/command/object_commands.h"

#include <thread>

#include "cmqcfc.h"
#include "queue_manager_fixture.h"

namespace mqrig::qmgr::command {
namespace {

constexpr store::OpenCounts input{.input = 1, .exclusive = 0, .output = 0, .browse = 0};
constexpr store::OpenCounts output{.input = 0, .exclusive = 0, .output = 1, .browse = 0};

class ObjectCommands : public QueueManagerFixture {
protected:
    Definition named(const std::string &name)
    {
        Definition definition;
        definition.name = name;
        return definition;
    }
    static Assignment assignment(MQLONG selector, MQLONG value)
    {
        return {objects::findSelector(objects::ObjectKind::LocalQueue, selector), {value, {}}};
    }
    MQLONG numberOf(const std::string &queue, MQLONG selector)
    {
        const InquiredObjects found = inquireObjects(*attachment_, queue, objects::allQueues);
        EXPECT_EQ(found.objects.size(), 1U);
        return found.objects.empty() ? -1 : found.objects[0].definition.number(selector);
    }
};

TEST_F(ObjectCommands, NewQueueTakesItsAttributesFromTheDefaultQueue)
{
    ASSERT_EQ(run("ALTER QL(SYSTEM.DEFAULT.LOCAL.QUEUE) MAXDEPTH(77) DESCR('from default')").result,
              CommandResult::Done);
    ASSERT_TRUE(defineObject(*attachment_, named("Q1")).ok());
    EXPECT_EQ(numberOf("Q1", MQIA_MAX_Q_DEPTH), 77);
}

TEST_F(ObjectCommands, LikeTakesThemFromTheQueueNamed)
{
    Definition first = named("Q1");
    first.attributes = {assignment(MQIA_MAX_Q_DEPTH, 5), assignment(MQIA_DEF_PERSISTENCE, MQPER_PERSISTENT)};
    ASSERT_TRUE(defineObject(*attachment_, first).ok());
    Definition second = named("Q2");
    second.like = "Q1";
    second.attributes = {assignment(MQIA_MAX_Q_DEPTH, 6)};
    ASSERT_TRUE(defineObject(*attachment_, second).ok());
    EXPECT_EQ(numberOf("Q2", MQIA_DEF_PERSISTENCE), MQPER_PERSISTENT);
    EXPECT_EQ(numberOf("Q2", MQIA_MAX_Q_DEPTH), 6);
    second.name = "Q3";
    second.like = "NO.SUCH";
    EXPECT_EQ(defineObject(*attachment_, second), failure(MQRC_UNKNOWN_OBJECT_NAME));
}

TEST_F(ObjectCommands, ExistingQueueIsReplacedOnlyWhenAskedAndKeepsItsMessages)
{
    Definition definition = named("Q1");
    definition.attributes = {assignment(MQIA_MAX_Q_DEPTH, 5)};
    ASSERT_TRUE(defineObject(*attachment_, definition).ok());
    put("Q1", MQPER_PERSISTENT);
    const store::QueueId id = idOf("Q1");
    EXPECT_EQ(defineObject(*attachment_, named("Q1")), failure(MQRCCF_OBJECT_ALREADY_EXISTS));
    EXPECT_EQ(numberOf("Q1", MQIA_MAX_Q_DEPTH), 5);
    Definition replacing = named("Q1");
    replacing.replace = Replace::Yes;
    ASSERT_TRUE(defineObject(*attachment_, replacing).ok());
    EXPECT_EQ(numberOf("Q1", MQIA_MAX_Q_DEPTH), 5000);
    EXPECT_EQ(idOf("Q1"), id);
    EXPECT_EQ(statusOf("Q1").depth, 1U);
}

TEST_F(ObjectCommands, DynamicQueueStaysDynamicWhenReplacedAndOneLikeItIsNot)
{
    objects::ObjectDefinition dynamic(objects::ObjectKind::LocalQueue, "D1");
    dynamic.set(MQIA_DEFINITION_TYPE, MQQDT_PERMANENT_DYNAMIC);
    store::Definition stored{.type = MQOT_Q, .name = "D1", .queue = 0, .bytes = dynamic.encode()};
    ASSERT_TRUE(attachment_->define(stored).ok());
    Definition replacing = named("D1");
    replacing.replace = Replace::Yes;
    ASSERT_TRUE(defineObject(*attachment_, replacing).ok());
    EXPECT_EQ(numberOf("D1", MQIA_DEFINITION_TYPE), MQQDT_PERMANENT_DYNAMIC);
    Definition like = named("Q1");
    like.like = "D1";
    ASSERT_TRUE(defineObject(*attachment_, like).ok());
    EXPECT_EQ(numberOf("Q1", MQIA_DEFINITION_TYPE), MQQDT_PREDEFINED);
}

TEST_F(ObjectCommands, OpenQueueIsNotDeleted)
{
    ASSERT_TRUE(defineObject(*attachment_, named("Q1")).ok());
    const auto other = connect();
    open(*other, idOf("Q1"), output);
    EXPECT_EQ(deleteObject(*attachment_, objects::ObjectKind::LocalQueue, "Q1", Purge::Yes),
              failure(MQRCCF_OBJECT_OPEN));
    EXPECT_NE(idOf("Q1"), 0U);
}

TEST_F(ObjectCommands, QueueWithMessagesIsDeletedOnlyWithPurge)
{
    ASSERT_TRUE(defineObject(*attachment_, named("Q1")).ok());
    put("Q1", MQPER_PERSISTENT);
    put("Q1", MQPER_NOT_PERSISTENT);
    EXPECT_EQ(deleteObject(*attachment_, objects::ObjectKind::LocalQueue, "Q1", Purge::No), failure(MQRC_Q_NOT_EMPTY));
    EXPECT_TRUE(deleteObject(*attachment_, objects::ObjectKind::LocalQueue, "Q1", Purge::Yes).ok());
    EXPECT_EQ(idOf("Q1"), 0U);
    EXPECT_EQ(deleteObject(*attachment_, objects::ObjectKind::LocalQueue, "Q1", Purge::Yes),
              failure(MQRC_UNKNOWN_OBJECT_NAME));
}

TEST_F(ObjectCommands, UncommittedMessagesKeepAQueueEvenFromPurge)
{
    ASSERT_TRUE(defineObject(*attachment_, named("Q1")).ok());
    const auto other = connect();
    const store::QueueId id = idOf("Q1");
    ASSERT_TRUE(other
                    ->update(0,
                             [&](store::WriteTransaction &transaction) {
                                 transaction.bookPut(id);
                                 return success();
                             })
                    .ok());
    EXPECT_EQ(deleteObject(*attachment_, objects::ObjectKind::LocalQueue, "Q1", Purge::Yes), failure(MQRC_Q_NOT_EMPTY));
}

TEST_F(ObjectCommands, ClearRemovesAllMessages)
{
    ASSERT_TRUE(defineObject(*attachment_, named("Q1")).ok());
    for (int i = 0; i < 3; ++i) {
        put("Q1", MQPER_PERSISTENT);
        put("Q1", MQPER_NOT_PERSISTENT);
    }
    ASSERT_TRUE(clearQueue(*attachment_, "Q1").ok());
    const store::QueueStatus status = statusOf("Q1");
    EXPECT_EQ(status.depth, 0U);
    EXPECT_EQ(status.held, 0U);
    EXPECT_EQ(status.opens.input, 0);
    EXPECT_EQ(status.opens.exclusive, 0);
}

TEST_F(ObjectCommands, ClearTakesMoreMessagesThanOneUnitOfWorkHolds)
{
    ASSERT_TRUE(defineObject(*attachment_, named("Q1")).ok());
    for (int i = 0; i < 2500; ++i)
        put("Q1", MQPER_NOT_PERSISTENT);
    ASSERT_TRUE(clearQueue(*attachment_, "Q1").ok());
    EXPECT_EQ(statusOf("Q1").depth, 0U);
}

TEST_F(ObjectCommands, OpenQueueIsNotCleared)
{
    ASSERT_TRUE(defineObject(*attachment_, named("Q1")).ok());
    put("Q1", MQPER_NOT_PERSISTENT);
    const auto other = connect();
    open(*other, idOf("Q1"), output);
    EXPECT_EQ(clearQueue(*attachment_, "Q1"), failure(MQRC_OBJECT_IN_USE));
    EXPECT_EQ(statusOf("Q1").depth, 1U);
}

TEST_F(ObjectCommands, NoShareWantsForceWhileTwoReadTheQueue)
{
    ASSERT_TRUE(defineObject(*attachment_, named("Q1")).ok());
    const auto other = connect();
    open(*other, idOf("Q1"), input);
    Definition change = named("Q1");
    change.attributes = {assignment(MQIA_SHAREABILITY, MQQA_NOT_SHAREABLE)};
    Definition back = named("Q1");
    back.attributes = {assignment(MQIA_SHAREABILITY, MQQA_SHAREABLE)};
    EXPECT_TRUE(alterObject(*attachment_, change).ok());
    EXPECT_TRUE(alterObject(*attachment_, back).ok());
    open(*other, idOf("Q1"), input);
    EXPECT_EQ(alterObject(*attachment_, change), failure(MQRCCF_OBJECT_OPEN));
    change.force = Force::Yes;
    EXPECT_TRUE(alterObject(*attachment_, change).ok());
}

TEST_F(ObjectCommands, OtherUsageWantsForceWhileThereAreMessages)
{
    ASSERT_TRUE(defineObject(*attachment_, named("Q1")).ok());
    put("Q1", MQPER_NOT_PERSISTENT);
    Definition change = named("Q1");
    change.attributes = {assignment(MQIA_USAGE, MQUS_TRANSMISSION)};
    EXPECT_EQ(alterObject(*attachment_, change), failure(MQRCCF_OBJECT_OPEN));
    change.force = Force::Yes;
    EXPECT_TRUE(alterObject(*attachment_, change).ok());
}

TEST_F(ObjectCommands, LowLimitMayNotStandAboveTheHighOne)
{
    ASSERT_TRUE(defineObject(*attachment_, named("Q1")).ok());
    Definition change = named("Q1");
    change.attributes = {assignment(MQIA_Q_DEPTH_LOW_LIMIT, 90)};
    EXPECT_EQ(alterObject(*attachment_, change), failure(MQRCCF_ATTR_VALUE_ERROR));
    change.attributes.push_back(assignment(MQIA_Q_DEPTH_HIGH_LIMIT, 95));
    EXPECT_TRUE(alterObject(*attachment_, change).ok());
}

TEST_F(ObjectCommands, ConcurrentChangesOfOneQueueAreAllKept)
{
    ASSERT_TRUE(defineObject(*attachment_, named("Q1")).ok());
    const auto alterAlone = [this](MQLONG selector) {
        const auto connection = connect();
        for (MQLONG value = 1; value <= 100; ++value) {
            Definition change = named("Q1");
            change.attributes = {assignment(selector, value)};
            EXPECT_TRUE(alterObject(*connection, change).ok());
            const InquiredObjects now = inquireObjects(*connection, "Q1", objects::allQueues);
            ASSERT_EQ(now.objects.size(), 1U);
            EXPECT_EQ(now.objects[0].definition.number(selector), value);
        }
    };
    std::thread depth(alterAlone, MQIA_MAX_Q_DEPTH);
    std::thread length(alterAlone, MQIA_MAX_MSG_LENGTH);
    depth.join();
    length.join();
    EXPECT_EQ(numberOf("Q1", MQIA_MAX_Q_DEPTH), 100);
    EXPECT_EQ(numberOf("Q1", MQIA_MAX_MSG_LENGTH), 100);
}

TEST_F(ObjectCommands, InquiryCountsMessagesAndHandles)
{
    ASSERT_TRUE(defineObject(*attachment_, named("Q1")).ok());
    put("Q1", MQPER_NOT_PERSISTENT);
    const auto other = connect();
    open(*other, idOf("Q1"), input);
    open(*other, idOf("Q1"), output);
    open(*other, idOf("Q1"), output);
    const InquiredObjects found = inquireObjects(*attachment_, "Q1", objects::allQueues);
    ASSERT_EQ(found.objects.size(), 1U);
    const auto valueOf = [&](MQLONG selector) {
        return found.objects[0].value(*objects::findSelector(objects::ObjectKind::LocalQueue, selector)).number;
    };
    EXPECT_EQ(valueOf(MQIA_CURRENT_Q_DEPTH), 1);
    EXPECT_EQ(valueOf(MQIA_OPEN_INPUT_COUNT), 1);
    EXPECT_EQ(valueOf(MQIA_OPEN_OUTPUT_COUNT), 2);
}

} // namespace
} // namespace mqrig::qmgr::command
