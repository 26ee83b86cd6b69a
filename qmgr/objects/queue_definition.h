// A queue as the calls on messages see it: the attributes that they need as plain fields, read once from the object.
//
// It is a queue as seen under a name. Under its own name a local queue is itself. Under the name of an alias or of a
// remote queue it is the local queue that keeps the messages, a transmission queue where they are for elsewhere, with
// what the first name on the way says instead: the object that MQINQ asks, the defaults of messages, and the
// inhibition of any queue on the way. So calls on messages need not know how a queue was reached.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <string_view>

#include "cmqc.h"
#include "qmgr/objects/object_definition.h"
#include "qmgr/store/message.h"

namespace mqrig::qmgr::objects {

// Immutable once built; shared by every handle of the process that has the queue open.
struct QueueDefinition {
    // Read for every message, first cache lines.
    store::QueueId id = 0;                // of its messages in the store; another one after delete and define
    MQLONG type = MQQT_LOCAL;             // MQQT_ of the object that was named
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
    bool remote = false;           // a transmission queue reached under the name of a queue that is elsewhere

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
    bool watchesPuts = false;        // a put may trigger, or make a depth event
    bool watchesGets = false;        // a get may make a depth event

    // Blank-padded, as the MQI's fields want them.
    std::array<char, MQ_Q_NAME_LENGTH> name{};
    std::array<char, MQ_Q_NAME_LENGTH> initiationQueue{};
    std::array<char, MQ_PROCESS_NAME_LENGTH> process{};
    std::array<char, MQ_TRIGGER_DATA_LENGTH> triggerData{};

    // Where messages go from the transmission queue; blank-padded.
    std::array<char, MQ_Q_NAME_LENGTH> remoteQueue{};
    std::array<char, MQ_Q_MGR_NAME_LENGTH> remoteQueueManager{};

    // The object that was named: everything, addressed by selector. Its number differs from `id` where the queue was
    // reached under another name.
    ObjectDefinition object;
    store::QueueId objectId = 0;
    // The name of another queue manager under which the queue was asked for; empty: it has a name here.
    std::string askedQueueManager;

    // Just what the object says, reached or not: an alias, remote or model queue keeps no messages.
    static QueueDefinition from(ObjectDefinition object, store::QueueId id);
};

} // namespace mqrig::qmgr::objects
