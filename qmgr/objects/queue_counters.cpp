#include "qmgr/objects/queue_counters.h"

namespace mqrig::qmgr::objects {

MQLONG countedValue(const store::QueueStatus &status, MQLONG selector)
{
    switch (selector) {
    case MQIA_CURRENT_Q_DEPTH:
        return static_cast<MQLONG>(status.depth);
    case MQIA_OPEN_INPUT_COUNT:
        return status.opens.input;
    case MQIA_OPEN_OUTPUT_COUNT:
        return status.opens.output;
    default:
        return 0;
    }
}

} // namespace mqrig::qmgr::objects
