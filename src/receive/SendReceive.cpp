// Request and reply: puts a message, then gets one, round by round. Each put and each get ends its own unit of work, so
// that the request is committed before its reply is awaited.
#include "receive.h"

#include "common.h"
#include "mqicalls.h"
#include "receive/put_source.h"

#include <cstring>

namespace {

struct Ended {
    Status status;
    bool atOnce; ///< leave without closing anything
};

Ended run_rounds(RunParams *putParams, MQHCONN hconn, RunParams *getParams, MQLONG rounds)
{
    const RunRecord putSnapshot = putParams->snapshot();
    const RunRecord getSnapshot = getParams->snapshot();
    PutSource source("SendReceive");
    for (MQLONG round = 1;; ++round) {
        putParams->restore(putSnapshot);
        getParams->restore(getSnapshot);
        if (const Status put = source.put(putParams, hconn, 1, round); put != StatusOk) return {put, true};
        if (source.isExhausted()) return {StatusOk, false};

        if (getParams->MatchCorrelToMsgId != 0) {
            std::memcpy(getParams->Md.CorrelId, putParams->Md.MsgId, sizeof getParams->Md.CorrelId);
        }
        if (getParams->OutputFile != nullptr || getParams->OutputDir != nullptr) {
            const auto receive = getParams->OutputFile != nullptr ? GetToFile2 : GetToDir2;
            const Status got = receive(getParams, hconn, 1, round, nullptr, nullptr);
            if (got != StatusOk) return {got, false};
        } else if (const Status got = GetMQMessage2(getParams, hconn, round); got != StatusOk) {
            return {got, true};
        }

        // A directory is put to its end, whatever the count.
        if (round >= rounds && putParams->InputDir == nullptr) return {StatusOk, false};
        flush_output();
        sleep_millisecond(putParams, putParams->IntervalMs);
    }
}

} // namespace

Status SendReceive(RunParams *putParams, MQHCONN hconn, RunParams *getParams)
{
    const MQLONG rounds = putParams->MsgCount;
    putParams->MsgCount = 1;
    getParams->MsgCount = 1;
    getParams->QName = putParams->InputQName;

    const bool opensOutput = putParams->OutputHobj == 0;
    if (opensOutput && MQSeriesQOpenForOutput(hconn, &putParams->OutputHobj, putParams) != StatusOk) {
        return StatusLocalFailure;
    }
    const bool opensInput = getParams->InputHobj == 0;
    Status status = opensInput ? MQSeriesQOpenForInput(hconn, &getParams->InputHobj, getParams) : StatusOk;
    const bool bothOpen = status == StatusOk;
    if (bothOpen) {
        // The name with which the reply queue is open: that of a dynamic queue was made by the open.
        std::memcpy(putParams->Md.ReplyToQ, getParams->Od.ObjectName, sizeof putParams->Md.ReplyToQ);
        const Ended ended = run_rounds(putParams, hconn, getParams, rounds);
        if (ended.atOnce) return ended.status;
        status = ended.status;
    }

    const auto close = [&](MQHOBJ &hobj, RunParams *params) {
        if (MQSeriesQClose(hconn, &hobj, params) != StatusOk) status = StatusLocalFailure;
        hobj = 0;
    };
    if (opensOutput) close(putParams->OutputHobj, putParams);
    if (opensInput && bothOpen) close(getParams->InputHobj, getParams);
    return status;
}
