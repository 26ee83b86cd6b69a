#include "qmgr/objects/catalog.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <string>
#include <vector>

#include "qmgr/objects/system_objects.h"
#include "qmgr/store/queue_managers.h"

namespace mqrig::qmgr::objects {
namespace {

class CatalogTest : public testing::Test {
protected:
    CatalogTest()
    {
        char pattern[] = "/tmp/mqrig-catalog-XXXXXX";
        folder_ = mkdtemp(pattern);
        EXPECT_TRUE(
            store::createQueueManager(folder_, "QM1", systemObjects("QM1"), store::DefaultQueueManager::No).ok());
        here_ = store::attach(folder_, "QM1").attachment;
        there_ = store::attach(folder_, "QM1").attachment;
    }
    ~CatalogTest() override
    {
        here_.reset();
        there_.reset();
        std::filesystem::remove_all(folder_);
    }

    void define(const std::string &name)
    {
        store::Definition stored;
        stored.type = MQOT_Q;
        stored.name = name;
        stored.bytes = ObjectDefinition(ObjectKind::LocalQueue, name).encode();
        ASSERT_TRUE(there_->define(stored).ok());
    }
    void setDepth(const std::string &name, MQLONG depth)
    {
        auto stored = there_->findDefinition(MQOT_Q, name);
        ASSERT_TRUE(stored);
        auto object = ObjectDefinition::decode(stored->bytes);
        ASSERT_TRUE(object);
        object->set(MQIA_MAX_Q_DEPTH, depth);
        stored->bytes = object->encode();
        ASSERT_TRUE(there_->alter(*stored).ok());
    }

    std::filesystem::path folder_;
    std::unique_ptr<store::Attachment> here_;
    std::unique_ptr<store::Attachment> there_; // another connection, which changes things
};

TEST_F(CatalogTest, FindsQueuesAndTheQueueManager)
{
    Catalog catalog(*here_);
    ASSERT_NE(catalog.queueManager(), nullptr);
    EXPECT_EQ(catalog.queueManager()->object.name(), "QM1");
    const FoundQueue found = catalog.queue(defaultLocalQueue);
    ASSERT_TRUE(found.outcome.ok());
    EXPECT_EQ(found.hold.queue->maxDepth, 5000);
    EXPECT_NE(found.hold.queue->id, 0U);
}

TEST_F(CatalogTest, UnknownAndImpossibleNamesAreUnknown)
{
    Catalog catalog(*here_);
    for (const std::string &name : {std::string("NO.SUCH"), std::string(), std::string(49, 'A'), std::string("A B")})
        EXPECT_EQ(catalog.queue(name).outcome, failure(MQRC_UNKNOWN_OBJECT_NAME)) << name;
}

TEST_F(CatalogTest, SharesOneDefinitionWhileNothingChanges)
{
    Catalog catalog(*here_);
    const FoundQueue first = catalog.queue(defaultLocalQueue);
    const FoundQueue second = catalog.queue(defaultLocalQueue);
    EXPECT_EQ(first.hold.queue, second.hold.queue);
    EXPECT_TRUE(catalog.unchanged(first.hold));
}

TEST_F(CatalogTest, ChangeOfAnotherConnectionIsSeenAtTheNextUse)
{
    define("Q1");
    Catalog catalog(*here_);
    QueueHold hold = catalog.queue("Q1").hold;
    const auto unrelated = catalog.queue(defaultLocalQueue).hold.queue;
    setDepth("Q1", 9);
    EXPECT_FALSE(catalog.unchanged(hold));
    ASSERT_TRUE(catalog.refresh(hold).ok());
    EXPECT_EQ(hold.queue->maxDepth, 9);
    EXPECT_TRUE(catalog.unchanged(hold));
    EXPECT_EQ(catalog.queue(defaultLocalQueue).hold.queue, unrelated);
}

TEST_F(CatalogTest, DeletedQueueIsNoticedAlsoWhenItsNameLivesAgain)
{
    define("Q1");
    Catalog catalog(*here_);
    QueueHold hold = catalog.queue("Q1").hold;
    ASSERT_TRUE(there_->remove(MQOT_Q, "Q1", nullptr).ok());
    EXPECT_EQ(catalog.refresh(hold), failure(MQRC_Q_DELETED));
    define("Q1");
    EXPECT_EQ(catalog.refresh(hold), failure(MQRC_Q_DELETED));
    EXPECT_NE(hold.queue, nullptr);
    EXPECT_TRUE(catalog.queue("Q1").outcome.ok());
}

TEST_F(CatalogTest, ManyQueuesAreFoundBeforeAndAfterAChange)
{
    constexpr int many = 300; // more than are remembered of former versions
    Catalog catalog(*here_);
    std::vector<store::QueueId> ids;
    for (int i = 0; i < many; ++i) {
        define("Q" + std::to_string(i));
        ids.push_back(catalog.queue("Q" + std::to_string(i)).hold.queue->id);
    }
    setDepth("Q7", 9);
    for (int i = 0; i < many; ++i) {
        const FoundQueue found = catalog.queue("Q" + std::to_string(i));
        ASSERT_TRUE(found.outcome.ok()) << i;
        EXPECT_EQ(found.hold.queue->id, ids[static_cast<std::size_t>(i)]) << i;
        EXPECT_EQ(found.hold.queue->maxDepth, i == 7 ? 9 : 5000) << i;
    }
}

TEST_F(CatalogTest, DamagedDefinitionIsReportedAsSuch)
{
    store::Definition stored;
    stored.type = MQOT_Q;
    stored.name = "BAD";
    stored.bytes = "not an object";
    ASSERT_TRUE(there_->define(stored).ok());
    Catalog catalog(*here_);
    EXPECT_EQ(catalog.queue("BAD").outcome, failure(MQRC_OBJECT_DAMAGED));
}

} // namespace
} // namespace mqrig::qmgr::objects
