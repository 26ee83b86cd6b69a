#include "send.h"

#include "display.h"
#include "mqicalls.h"
#include "send/split.h"

#include <algorithm>

Status Applsegmentation(RunParams *params, MQHCONN hconn, MQHOBJ hobj, const char *data, MQLONG length,
                        MQLONG messageIndex, MQLONG logicalNumber)
{
    const RunRecord snapshot = params->snapshot();
    MQLONG offset = 0;
    MQLONG number = 1;
    do {
        params->restore(snapshot);
        const MQLONG segment = std::min(params->SegmentSize, length - offset);
        add_msg_flag(params, segment < length - offset ? MQMF_SEGMENT : MQMF_LAST_SEGMENT);
        // In logical order the queue manager keeps the offsets.
        if ((params->Pmo.Options & MQPMO_LOGICAL_ORDER) == 0) params->Md.Offset = offset;

        const Status shown =
            dsp_message(params, data + offset, segment, DisplaySegment, number, static_cast<MQULONG>(messageIndex));
        if (shown != StatusOk) return shown;
        if (logicalNumber != 1 || offset != 0) describe_without_header(params);
        const Status put = MQSeriesPut(hconn, hobj, params, data + offset, segment);
        if (put != StatusOk) return put;

        offset += segment;
        ++number;
    } while (offset < length);
    return StatusOk;
}
