#include "mqicalls.h"

#include "common.h"

#include <cstdio>

// Runs on a thread of the MQI while the run works on the record, so it reads nothing of it but the output identity.
void EventHandler(MQHCONN, PMQVOID, PMQVOID, PMQVOID, PMQCBC context)
{
    RunParams *params = static_cast<RunParams *>(context->CallbackArea);
    const LockedSection locked(params);
    if (locked.status() != StatusOk) return;

    dsp_timestamp(params);
    switch (context->Reason) {
    case MQRC_CONNECTION_BROKEN:
        std::printf("EVENT : Connection Broken\n");
        break;
    case MQRC_RECONNECTING:
        std::printf("EVENT : Reconnecting (Delay: %dms)\n", context->ReconnectDelay);
        break;
    case MQRC_RECONNECTED:
        std::printf("EVENT : Reconnected\n");
        break;
    case MQRC_RECONNECT_FAILED:
        std::printf("EVENT : Reconnection failed\n");
        break;
    default:
        std::printf("EVENT : Reason(%d)\n", context->Reason);
        break;
    }
    // Events come while the program waits, when nothing else would hand the line on.
    flush_output();
}
