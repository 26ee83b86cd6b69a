#include "qmgr/objects/queue_manager_definition.h"

#include "qmgr/objects/object_name.h"

namespace mqrig::qmgr::objects {

QueueManagerDefinition QueueManagerDefinition::from(ObjectDefinition object)
{
    QueueManagerDefinition definition;
    definition.maxMsgLength = object.number(MQIA_MAX_MSG_LENGTH);
    definition.maxPriority = object.number(MQIA_MAX_PRIORITY);
    definition.maxUncommittedMsgs = object.number(MQIA_MAX_UNCOMMITTED_MSGS);
    definition.maxHandles = object.number(MQIA_MAX_HANDLES);
    definition.codedCharSetId = object.number(MQIA_CODED_CHAR_SET_ID);
    definition.maxPropertiesLength = object.number(MQIA_MAX_PROPERTIES_LENGTH);
    definition.markBrowseInterval = object.number(MQIA_MSG_MARK_BROWSE_INTERVAL);
    definition.triggerInterval = object.number(MQIA_TRIGGER_INTERVAL);
    definition.inhibitEvent = object.number(MQIA_INHIBIT_EVENT);
    definition.localEvent = object.number(MQIA_LOCAL_EVENT);
    definition.remoteEvent = object.number(MQIA_REMOTE_EVENT);
    definition.performanceEvent = object.number(MQIA_PERFORMANCE_EVENT);
    definition.startStopEvent = object.number(MQIA_START_STOP_EVENT);

    fillField(definition.name, object.name());
    fillField(definition.identifier, object.text(MQCA_Q_MGR_IDENTIFIER));
    fillField(definition.deadLetterQueue, object.text(MQCA_DEAD_LETTER_Q_NAME));
    fillField(definition.defaultXmitQueue, object.text(MQCA_DEF_XMIT_Q_NAME));

    definition.object = std::move(object);
    return definition;
}

} // namespace mqrig::qmgr::objects
