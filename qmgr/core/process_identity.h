// Who puts the messages of a connection: the values that MQ takes from the environment for a message's context.
#pragma once

#include "cmqc.h"

namespace mqrig::qmgr::core {

// All fields padded as the MQI wants them.
struct ProcessIdentity {
    MQCHAR12 userIdentifier;  // name of the effective user, cut to its field; the numeric id if it has no name
    MQBYTE32 accountingToken; // length, digits of the user id, zeros, and in the last byte MQACTT_UNIX_NUMERIC_ID
    MQCHAR28 putApplName;     // the program's file name
};

// Read anew at every call: a connection takes it once. System calls, and a look into the user database.
ProcessIdentity processIdentity();

} // namespace mqrig::qmgr::core
