#include "qmgr/objects/queue_definition.h"

#include "cmqcfc.h"
#include "qmgr/objects/object_name.h"

namespace mqrig::qmgr::objects {

QueueDefinition QueueDefinition::from(ObjectDefinition object, store::QueueId id)
{
    QueueDefinition queue;
    queue.id = id;
    queue.objectId = id;
    queue.type = object.number(MQIA_Q_TYPE);
    queue.inhibitPut = object.number(MQIA_INHIBIT_PUT);
    queue.inhibitGet = object.number(MQIA_INHIBIT_GET);
    queue.maxDepth = object.number(MQIA_MAX_Q_DEPTH);
    queue.maxMsgLength = object.number(MQIA_MAX_MSG_LENGTH);
    queue.defPersistence = object.number(MQIA_DEF_PERSISTENCE);
    queue.defPriority = object.number(MQIA_DEF_PRIORITY);
    queue.msgDeliverySequence = object.number(MQIA_MSG_DELIVERY_SEQUENCE);
    queue.usage = object.number(MQIA_USAGE);
    queue.shareability = object.number(MQIA_SHAREABILITY);
    queue.defInputOpenOption = object.number(MQIA_DEF_INPUT_OPEN_OPTION);
    queue.hardenGetBackout = object.number(MQIA_HARDEN_GET_BACKOUT);
    queue.backoutThreshold = object.number(MQIA_BACKOUT_THRESHOLD);
    queue.propertyControl = object.number(MQIA_PROPERTY_CONTROL);
    queue.nonPersistentClass = object.number(MQIA_NPM_CLASS);
    queue.distLists = object.number(MQIA_DIST_LISTS);
    queue.defPutResponse = object.number(MQIA_DEF_PUT_RESPONSE_TYPE);
    queue.defReadAhead = object.number(MQIA_DEF_READ_AHEAD);

    queue.triggerControl = object.number(MQIA_TRIGGER_CONTROL);
    queue.triggerType = object.number(MQIA_TRIGGER_TYPE);
    queue.triggerDepth = object.number(MQIA_TRIGGER_DEPTH);
    queue.triggerMsgPriority = object.number(MQIA_TRIGGER_MSG_PRIORITY);
    queue.depthHighLimit = object.number(MQIA_Q_DEPTH_HIGH_LIMIT);
    queue.depthLowLimit = object.number(MQIA_Q_DEPTH_LOW_LIMIT);
    queue.depthMaxEvent = object.number(MQIA_Q_DEPTH_MAX_EVENT);
    queue.depthHighEvent = object.number(MQIA_Q_DEPTH_HIGH_EVENT);
    queue.depthLowEvent = object.number(MQIA_Q_DEPTH_LOW_EVENT);
    queue.serviceInterval = object.number(MQIA_Q_SERVICE_INTERVAL);
    queue.serviceIntervalEvent = object.number(MQIA_Q_SERVICE_INTERVAL_EVENT);
    queue.definitionType = object.number(MQIA_DEFINITION_TYPE);

    queue.watchesPuts =
        (queue.triggerControl == MQTC_ON && queue.triggerType != MQTT_NONE) || queue.depthHighEvent == MQEVR_ENABLED;
    queue.watchesGets = queue.depthLowEvent == MQEVR_ENABLED;

    fillField(queue.name, object.name());
    fillField(queue.initiationQueue, object.text(MQCA_INITIATION_Q_NAME));
    fillField(queue.process, object.text(MQCA_PROCESS_NAME));
    fillField(queue.triggerData, object.text(MQCA_TRIGGER_DATA));

    queue.object = std::move(object);
    return queue;
}

} // namespace mqrig::qmgr::objects
