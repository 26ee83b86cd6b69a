#include "qmgr/objects/queue_manager_definition.h"

#include "qmgr/objects/object_name.h"

namespace qmgr::objects {

QueueManagerDefinition QueueManagerDefinition::from(ObjectDefinition object)
{
    QueueManagerDefinition qmgr;
    qmgr.maxMsgLength = object.number(MQIA_MAX_MSG_LENGTH);
    qmgr.maxPriority = object.number(MQIA_MAX_PRIORITY);
    qmgr.maxUncommittedMsgs = object.number(MQIA_MAX_UNCOMMITTED_MSGS);
    qmgr.maxHandles = object.number(MQIA_MAX_HANDLES);
    qmgr.codedCharSetId = object.number(MQIA_CODED_CHAR_SET_ID);
    qmgr.maxPropertiesLength = object.number(MQIA_MAX_PROPERTIES_LENGTH);
    qmgr.markBrowseInterval = object.number(MQIA_MSG_MARK_BROWSE_INTERVAL);
    qmgr.triggerInterval = object.number(MQIA_TRIGGER_INTERVAL);
    qmgr.inhibitEvent = object.number(MQIA_INHIBIT_EVENT);
    qmgr.localEvent = object.number(MQIA_LOCAL_EVENT);
    qmgr.remoteEvent = object.number(MQIA_REMOTE_EVENT);
    qmgr.performanceEvent = object.number(MQIA_PERFORMANCE_EVENT);
    qmgr.startStopEvent = object.number(MQIA_START_STOP_EVENT);

    fillField(qmgr.name, object.name());
    fillField(qmgr.identifier, object.text(MQCA_Q_MGR_IDENTIFIER));
    fillField(qmgr.deadLetterQueue, object.text(MQCA_DEAD_LETTER_Q_NAME));
    fillField(qmgr.defaultXmitQueue, object.text(MQCA_DEF_XMIT_Q_NAME));

    qmgr.object = std::move(object);
    return qmgr;
}

} // namespace qmgr::objects
