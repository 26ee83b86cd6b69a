// The queue manager's own attributes as calls see them: those that every call may need as plain fields.
#pragma once

#include <array>
#include <string_view>

#include "cmqc.h"
#include "qmgr/objects/object_definition.h"

namespace mqrig::qmgr::objects {

// Immutable once built; shared by every connection of the process.
struct QueueManagerDefinition {
    MQLONG maxMsgLength = 0;       // bytes
    MQLONG maxPriority = 0;        // 9
    MQLONG maxUncommittedMsgs = 0; // per unit of work
    MQLONG maxHandles = 0;         // open objects per connection
    MQLONG codedCharSetId = 0;
    MQLONG maxPropertiesLength = 0; // bytes, or MQPROP_UNRESTRICTED_LENGTH
    MQLONG markBrowseInterval = 0;  // milliseconds, or -1 for no limit
    MQLONG triggerInterval = 0;     // milliseconds
    MQLONG inhibitEvent = 0;        // MQEVR_
    MQLONG localEvent = 0;          // MQEVR_
    MQLONG remoteEvent = 0;         // MQEVR_
    MQLONG performanceEvent = 0;    // MQEVR_
    MQLONG startStopEvent = 0;      // MQEVR_

    // Blank-padded, as the MQI's fields want them.
    std::array<char, MQ_Q_MGR_NAME_LENGTH> name{};
    std::array<char, MQ_Q_MGR_IDENTIFIER_LENGTH> identifier{};
    std::array<char, MQ_Q_NAME_LENGTH> deadLetterQueue{};
    std::array<char, MQ_Q_NAME_LENGTH> defaultXmitQueue{};

    // Everything, addressed by selector.
    ObjectDefinition object;

    static QueueManagerDefinition from(ObjectDefinition object);
};

} // namespace mqrig::qmgr::objects
