#include "send/put_round.h"

#include "common.h"
#include "mqicalls.h"
#include "send.h"

void begin_put_round(RunParams *params, const RunRecord &snapshot, MQLONG messagesBefore)
{
    params->restore(snapshot);
    flush_output();
    if (messagesBefore > 0) sleep_millisecond(params, params->IntervalMs);
}

Status put_body(RunParams *params, MQHCONN hconn, MQHOBJ hobj, const char *body, MQLONG length, MQLONG messageIndex)
{
    if (params->SegmentSize == -1 && params->LogicalMsgDelimiter == nullptr) {
        return MQSeriesPut(hconn, hobj, params, body, length);
    }
    return splitMessage(params, hconn, hobj, body, length, messageIndex);
}
