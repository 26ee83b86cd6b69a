// A queue as the calls on messages see it: the attributes that they need as plain fields, read once from the object.
#pragma once

#include <array>
#include <memory>
#include <string_view>

#include "cmqc.h"
#include "qmgr/objects/object_definition.h"
#include "qmgr/store/message.h"

namespace mqrig::qmgr::objects {

// Immutable once built; shared by every handle of the process that has the queue open.
struct QueueDefinition {
    // Read for every message, first cache lines.
    store::QueueId id = 0;                // of its messages in the store; another one after delete and define
    MQLONG type = MQQT_LOCAL;             // MQQT_
    MQLONG inhibitPut = MQQA_PUT_ALLOWED; // MQQA_
    MQLONG inhibitGet = MQQA_GET_ALLOWED; // MQQA_
    MQLONG maxDepth = 0;                  // messages
    MQLONG maxMsgLength = 0;              // bytes
    MQLONG defPersistence = 0;            // MQPER_
    MQLONG defPriority = 0;               // 0 to MAXPRTY
    MQLONG msgDeliverySequence = 0;       // MQMDS_
    MQLONG usage = 0;                     // MQUS_
    MQLONG shareability = 0;              // MQQA_
    MQLONG defInputOpenOption = 0;        // MQOO_INPUT_SHARED or MQOO_INPUT_EXCLUSIVE
    MQLONG hardenGetBackout = 0;          // MQQA_
    MQLONG backoutThreshold = 0;
    MQLONG propertyControl = 0;    // MQPROP_
    MQLONG nonPersistentClass = 0; // MQNPM_CLASS_
    MQLONG distLists = 0;          // MQDL_
    MQLONG defPutResponse = 0;     // MQPRT_
    MQLONG defReadAhead = 0;       // MQREADA_

    // Triggering and depth events.
    MQLONG triggerControl = 0; // MQTC_
    MQLONG triggerType = 0;    // MQTT_
    MQLONG triggerDepth = 0;
    MQLONG triggerMsgPriority = 0;
    MQLONG depthHighLimit = 0;       // percent of maxDepth
    MQLONG depthLowLimit = 0;        // percent of maxDepth
    MQLONG depthMaxEvent = 0;        // MQEVR_
    MQLONG depthHighEvent = 0;       // MQEVR_
    MQLONG depthLowEvent = 0;        // MQEVR_
    MQLONG serviceInterval = 0;      // milliseconds
    MQLONG serviceIntervalEvent = 0; // MQQSIE_
    MQLONG definitionType = 0;       // MQQDT_

    // Blank-padded, as the MQI's fields want them.
    std::array<char, MQ_Q_NAME_LENGTH> name{};
    std::array<char, MQ_Q_NAME_LENGTH> initiationQueue{};
    std::array<char, MQ_PROCESS_NAME_LENGTH> process{};
    std::array<char, MQ_TRIGGER_DATA_LENGTH> triggerData{};

    // Everything, addressed by selector.
    ObjectDefinition object;

    static QueueDefinition from(ObjectDefinition object, store::QueueId id);
};

} // namespace mqrig::qmgr::objects
