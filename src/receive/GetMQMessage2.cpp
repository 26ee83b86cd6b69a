// Gets or browses messages and shows each.
#include "receive.h"

#include "common.h"
#include "mqicalls.h"
#include "receive/show_received.h"

namespace {

Status get_messages(RunParams *params, MQHCONN hconn, MQHOBJ hobj, const ReceiveBuffers &buffers, MQLONG messageNumber)
{
    const RunRecord snapshot = params->snapshot();
    MQLONG received = 0;
    MQLONG shown = 0; // numbered lines; the pause belongs to them alone
    for (;;) {
        params->restore(snapshot);
        ReceivedMessage message{buffers.message.get(), 0};
        const Status got =
            MQSeriesReceive(hconn, hobj, params, buffers.message.get(), params->MaxMsgSize, &message.length);
        if (got != StatusOk) return got;
        ++received;

        const MQLONG lineNumber = messageNumber != 0 ? messageNumber : shown + 1;
        if (shows_numbered_line(params)) ++shown;
        if (show_received(params, hconn, message, received, lineNumber, buffers.converted.get()) != StatusOk) {
            return StatusLocalFailure;
        }
        if (params->GetRepeatedly == 0 && params->MsgCount <= received) return StatusOk;
        flush_output();
        if (shown >= 1) sleep_millisecond(params, params->IntervalMs);
    }
}

} // namespace

Status GetMQMessage2(RunParams *params, MQHCONN hconn, MQLONG messageNumber)
{
    browse_if_asked(params);
    const bool openedHere = params->InputHobj == 0;
    MQHOBJ hobj = params->InputHobj;
    if (openedHere && MQSeriesQOpenForInput(hconn, &hobj, params) != StatusOk) return StatusLocalFailure;

    const bool wantsHandle = has_properties_in_handle(params);
    const bool madeHandle = wantsHandle && MQSeriesCreateMH(hconn, params) == StatusOk;
    Status status = wantsHandle && !madeHandle ? StatusLocalFailure : StatusOk;
    if (status == StatusOk) {
        if (madeHandle) params->Gmo.MsgHandle = params->MsgHandle;
        ReceiveBuffers buffers;
        if (!buffers.allocate(params, {"GetMQMessage"})) return StatusLocalFailure;
        if (params->MsgCount == 0) params->MsgCount = 1;
        status = begin_unit_of_work(params);
        if (status == StatusOk) status = get_messages(params, hconn, hobj, buffers, messageNumber);
    }

    if (madeHandle && MQSeriesDeleteMH(hconn, params) != StatusOk) status = StatusLocalFailure;
    status = end_unit_of_work(params, hconn, status);
    if (openedHere && MQSeriesQClose(hconn, &hobj, params) != StatusOk) status = StatusLocalFailure;
    return status;
}
