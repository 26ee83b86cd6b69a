#include "qmgr/objects/queue_definition.h"

#include <gtest/gtest.h>

#include "qmgr/objects/object_name.h"
#include "qmgr/objects/queue_manager_definition.h"

namespace mqrig::qmgr::objects {
namespace {

TEST(QueueDefinition, FieldsAreTheAttributes)
{
    ObjectDefinition object(ObjectKind::LocalQueue, "Q1");
    object.set(MQIA_MAX_Q_DEPTH, 3);
    object.set(MQIA_MAX_MSG_LENGTH, 100);
    object.set(MQIA_DEF_PERSISTENCE, MQPER_PERSISTENT);
    object.set(MQIA_DEF_PRIORITY, 4);
    object.set(MQIA_MSG_DELIVERY_SEQUENCE, MQMDS_FIFO);
    object.set(MQIA_INHIBIT_PUT, MQQA_PUT_INHIBITED);
    object.set(MQIA_INHIBIT_GET, MQQA_GET_INHIBITED);
    object.set(MQIA_TRIGGER_CONTROL, MQTC_ON);
    object.set(MQIA_TRIGGER_DEPTH, 9);
    object.set(MQCA_INITIATION_Q_NAME, "INIT");
    object.set(MQCA_TRIGGER_DATA, "data");
    const QueueDefinition queue = QueueDefinition::from(object, 17);
    EXPECT_EQ(queue.id, 17U);
    EXPECT_EQ(queue.type, MQQT_LOCAL);
    EXPECT_EQ(queue.maxDepth, 3);
    EXPECT_EQ(queue.maxMsgLength, 100);
    EXPECT_EQ(queue.defPersistence, MQPER_PERSISTENT);
    EXPECT_EQ(queue.defPriority, 4);
    EXPECT_EQ(queue.msgDeliverySequence, MQMDS_FIFO);
    EXPECT_EQ(queue.inhibitPut, MQQA_PUT_INHIBITED);
    EXPECT_EQ(queue.inhibitGet, MQQA_GET_INHIBITED);
    EXPECT_EQ(queue.shareability, MQQA_SHAREABLE);
    EXPECT_EQ(queue.defInputOpenOption, MQOO_INPUT_SHARED);
    EXPECT_EQ(queue.usage, MQUS_NORMAL);
    EXPECT_EQ(queue.triggerControl, MQTC_ON);
    EXPECT_EQ(queue.triggerDepth, 9);
    EXPECT_EQ(fieldText(queue.name), "Q1");
    EXPECT_EQ(queue.name.back(), ' ');
    EXPECT_EQ(fieldText(queue.initiationQueue), "INIT");
    EXPECT_EQ(fieldText(queue.triggerData), "data");
    EXPECT_EQ(queue.object, object);
}

TEST(QueueManagerDefinition, FieldsAreTheAttributes)
{
    ObjectDefinition object(ObjectKind::QueueManager, "QM1");
    object.set(MQIA_MAX_MSG_LENGTH, 50000);
    object.set(MQIA_MAX_UNCOMMITTED_MSGS, 5);
    object.set(MQCA_Q_MGR_IDENTIFIER, "QM1_id");
    object.set(MQCA_DEAD_LETTER_Q_NAME, "DLQ");
    const QueueManagerDefinition queueManager = QueueManagerDefinition::from(object);
    EXPECT_EQ(queueManager.maxMsgLength, 50000);
    EXPECT_EQ(queueManager.maxUncommittedMsgs, 5);
    EXPECT_EQ(queueManager.maxPriority, 9);
    EXPECT_EQ(queueManager.maxHandles, 256);
    EXPECT_EQ(fieldText(queueManager.name), "QM1");
    EXPECT_EQ(fieldText(queueManager.identifier), "QM1_id");
    EXPECT_EQ(fieldText(queueManager.deadLetterQueue), "DLQ");
}

} // namespace
} // namespace mqrig::qmgr::objects
