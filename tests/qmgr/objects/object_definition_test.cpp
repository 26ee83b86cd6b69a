#include "qmgr/objects/object_definition.h"

#include <gtest/gtest.h>

#include <string>

namespace mqrig::qmgr::objects {
namespace {

ObjectDefinition sample()
{
    ObjectDefinition queue(ObjectKind::LocalQueue, "Q1");
    queue.set(MQIA_MAX_Q_DEPTH, 7);
    queue.set(MQCA_Q_DESC, "a description");
    return queue;
}

TEST(ObjectDefinition, NewObjectHasMqsDefaults)
{
    const ObjectDefinition queue(ObjectKind::LocalQueue, "Q1");
    EXPECT_EQ(queue.number(MQIA_MAX_Q_DEPTH), 5000);
    EXPECT_EQ(queue.number(MQIA_MAX_MSG_LENGTH), 4194304);
    EXPECT_EQ(queue.number(MQIA_DEF_PERSISTENCE), MQPER_NOT_PERSISTENT);
    EXPECT_EQ(queue.number(MQIA_SHAREABILITY), MQQA_SHAREABLE);
    EXPECT_EQ(queue.number(MQIA_Q_TYPE), MQQT_LOCAL);
    EXPECT_EQ(queue.text(MQCA_Q_NAME), "Q1");
    const ObjectDefinition queueManager(ObjectKind::QueueManager, "QM1");
    EXPECT_EQ(queueManager.number(MQIA_MAX_HANDLES), 256);
    EXPECT_EQ(queueManager.number(MQIA_MAX_UNCOMMITTED_MSGS), 10000);
    EXPECT_EQ(queueManager.number(MQIA_MAX_PRIORITY), 9);
    EXPECT_EQ(queueManager.number(MQIA_PLATFORM), MQPL_UNIX);
    EXPECT_EQ(queueManager.text(MQCA_Q_MGR_NAME), "QM1");
    EXPECT_EQ(queueManager.text(MQCA_COMMAND_INPUT_Q_NAME), "SYSTEM.ADMIN.COMMAND.QUEUE");
}

TEST(ObjectDefinition, BytesGiveTheSameObject)
{
    const ObjectDefinition queue = sample();
    const auto again = ObjectDefinition::decode(queue.encode());
    ASSERT_TRUE(again);
    EXPECT_EQ(*again, queue);
    EXPECT_EQ(again->encode(), queue.encode());
}

TEST(ObjectDefinition, AttributesOfALaterVersionSurvive)
{
    std::string bytes = sample().encode();
    const std::string unknownInteger("\xd0\x07\x00\x00\x00\x04\x00\x00\x00\x2a\x00\x00\x00", 13); // selector 2000
    const std::string unknownType("\x01\x00\x00\x00\x09\x03\x00\x00\x00xyz", 12);
    bytes += unknownInteger + unknownType;
    auto object = ObjectDefinition::decode(bytes);
    ASSERT_TRUE(object);
    EXPECT_EQ(object->number(2000), 42);
    object->set(MQIA_MAX_Q_DEPTH, 8);
    const std::string written = object->encode();
    EXPECT_NE(written.find(unknownInteger), std::string::npos);
    EXPECT_NE(written.find(unknownType), std::string::npos);
}

TEST(ObjectDefinition, AttributeThatWasNotStoredHasItsDefault)
{
    const std::string bare("O\x01\x01\x02Q1", 6);
    const auto object = ObjectDefinition::decode(bare);
    ASSERT_TRUE(object);
    EXPECT_EQ(object->number(MQIA_MAX_Q_DEPTH), 5000);
    EXPECT_EQ(object->text(MQCA_Q_DESC), "");
}

TEST(ObjectDefinition, NoBeginningOfItsBytesIsMisread)
{
    const std::string bytes = sample().encode();
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        const auto object = ObjectDefinition::decode(std::string_view(bytes).substr(0, length));
        // A cut at the end of a record is a shorter object; any other cut is none.
        if (object) {
            EXPECT_EQ(object->encode(), bytes.substr(0, length));
        }
    }
}

TEST(ObjectDefinition, ForeignAndLyingBytesAreRefused)
{
    EXPECT_FALSE(ObjectDefinition::decode(""));
    EXPECT_FALSE(ObjectDefinition::decode("something else"));
    EXPECT_FALSE(ObjectDefinition::decode(std::string("O\x02\x01\x02Q1", 6))); // later format
    EXPECT_FALSE(ObjectDefinition::decode(std::string("O\x01\x63\x02Q1", 6))); // unknown kind
    EXPECT_FALSE(ObjectDefinition::decode(std::string("O\x01\x01\xffQ1", 6))); // name too long
    EXPECT_FALSE(ObjectDefinition::decode(std::string("O\x01\x01\x02Q1\x01\x00\x00\x00\x01\xff\xff\xff\xff", 15)));
}

TEST(ObjectDefinition, TrailingBlanksOfTextsGo)
{
    ObjectDefinition queue = sample();
    queue.set(MQCA_Q_DESC, "text   ");
    EXPECT_EQ(queue.text(MQCA_Q_DESC), "text");
}

TEST(ObjectDefinition, StampsAreInMqsForm)
{
    ObjectDefinition queue = sample();
    queue.stampCreated();
    EXPECT_EQ(queue.text(MQCA_CREATION_DATE).size(), 10U);
    EXPECT_EQ(queue.text(MQCA_CREATION_DATE)[4], '-');
    EXPECT_EQ(queue.text(MQCA_CREATION_TIME).size(), 8U);
    EXPECT_EQ(queue.text(MQCA_CREATION_TIME)[2], '.');
    EXPECT_EQ(queue.text(MQCA_ALTERATION_DATE), queue.text(MQCA_CREATION_DATE));
}

} // namespace
} // namespace mqrig::qmgr::objects
