// Gets messages from one queue and puts a message for each: the body got, or a text, a file or the files of a
// directory; to a named queue, or to where the message got wants its reply. Each pair is one unit of work.
#include "receive.h"

#include "common.h"
#include "mqicalls.h"
#include "receive/forward_body.h"
#include "receive/put_source.h"
#include "receive/show_received.h"

#include <cstring>

namespace {

enum class Target {
    Named,        ///< the queue of -oq
    ReplyQueue,   ///< "*": the ReplyToQ, on the queue manager that is connected
    ReplyAddress, ///< "**": the ReplyToQ at the ReplyToQMgr
};

Target target_of(const char *name)
{
    if (name[0] != '*') return Target::Named;
    return name[1] == '*' ? Target::ReplyAddress : Target::ReplyQueue;
}

/// Both sides of the operation and what it holds open.
struct Transfer {
    RunParams *get;
    MQHCONN hconn;
    RunParams *put;
    Target target;
    ReceiveBuffers buffers = {};
    PutSource source{"Queue2Queue"};
    bool openedInput = false;
    bool openedOutput = false;
    bool madeHandle = false;
};

Status open_queues(Transfer &transfer)
{
    RunParams *const get = transfer.get;
    RunParams *const put = transfer.put;
    if (get->InputHobj == 0) {
        transfer.openedInput = MQSeriesQOpenForInput(transfer.hconn, &get->InputHobj, get) == StatusOk;
        if (!transfer.openedInput) return StatusLocalFailure;
    }
    if (transfer.target == Target::Named && put->OutputHobj == 0) {
        transfer.openedOutput = MQSeriesQOpenForOutput(transfer.hconn, &put->OutputHobj, put) == StatusOk;
        if (!transfer.openedOutput) return StatusLocalFailure;
    }
    return StatusOk;
}

Status prepare(Transfer &transfer)
{
    RunParams *const get = transfer.get;
    RunParams *const put = transfer.put;
    browse_if_asked(get);
    if (open_queues(transfer) != StatusOk) return StatusLocalFailure;
    // Context is passed on from the queue that the message came from.
    if ((put->OpenOptions & (MQOO_PASS_IDENTITY_CONTEXT | MQOO_PASS_ALL_CONTEXT)) != 0) {
        put->Pmo.Context = get->InputHobj;
    }
    if (has_properties_in_handle(get)) {
        transfer.madeHandle = MQSeriesCreateMH(transfer.hconn, get) == StatusOk;
        if (!transfer.madeHandle) return StatusLocalFailure;
        get->Gmo.MsgHandle = get->MsgHandle;
    }
    return transfer.buffers.allocate(get, {"Queue2Queue"}) ? StatusOk : StatusLocalFailure;
}

/// Gets the n-th message into the buffer, and into a file where one is asked for. `*length` is `NothingGot` where the
/// user kept a file.
Status get_message(Transfer &transfer, MQLONG n, MQLONG *length)
{
    RunParams *const get = transfer.get;
    char *const buffer = transfer.buffers.message.get();
    if (get->OutputFile != nullptr) return GetToFile2(get, transfer.hconn, 0, n, buffer, length);
    if (get->OutputDir != nullptr) return GetToDir2(get, transfer.hconn, 0, n, buffer, length);

    get->KeepHeaders = 1;
    const Status got = MQSeriesReceive(transfer.hconn, get->InputHobj, get, buffer, get->MaxMsgSize, length);
    if (got != StatusOk) return got;
    return show_received(get, transfer.hconn, {buffer, *length}, n, n, transfer.buffers.converted.get());
}

/// The names of a reply target; the put side's record points here while it is open.
struct ReplyNames {
    char queue[MQ_Q_NAME_LENGTH + 1] = {};
    char queueManager[MQ_Q_MGR_NAME_LENGTH + 1] = {};

    explicit ReplyNames(const MQMD &got)
    {
        strncpy2(queue, got.ReplyToQ, MQ_Q_NAME_LENGTH);
        strncpy2(queueManager, got.ReplyToQMgr, MQ_Q_MGR_NAME_LENGTH);
        trim(queue);
        trim(queueManager);
    }
};

Status open_reply_target(Transfer &transfer, const ReplyNames &names)
{
    RunParams *const put = transfer.put;
    put->QName = names.queue;
    put->QMgrName = transfer.get->QMgrName;
    if (transfer.target == Target::ReplyAddress) {
        strncpy2(put->Od.ObjectQMgrName, names.queueManager, MQ_Q_MGR_NAME_LENGTH);
    }
    return MQSeriesQOpenForOutput(transfer.hconn, &put->OutputHobj, put);
}

Status put_message(Transfer &transfer, MQLONG length, MQLONG n)
{
    if (PutSource::isGiven(transfer.put)) return transfer.source.put(transfer.put, transfer.hconn, 0, n);
    return forward_body(transfer.get, transfer.hconn, transfer.put, transfer.buffers, length, n);
}

/// Ends the unit of work of one message. A message for which nothing was put stays on its queue. The result of a
/// backout changes nothing: the next get will tell.
Status end_message(Transfer &transfer, Status status)
{
    const Status result = transfer.source.isExhausted() ? StatusLocalFailure : status;
    const bool commits = isSuccess(result) && transfer.get->ForceBackout == 0;
    const Status ended = end_unit_of_work(transfer.get, transfer.hconn, result);
    return commits ? ended : status;
}

/// Puts for the message got and ends its unit of work.
Status answer_message(Transfer &transfer, MQLONG length, MQLONG n)
{
    if (transfer.target == Target::Named) return end_message(transfer, put_message(transfer, length, n));

    RunParams *const put = transfer.put;
    const ReplyNames names(transfer.get->Md);
    const bool opened = open_reply_target(transfer, names) == StatusOk;
    Status status = end_message(transfer, opened ? put_message(transfer, length, n) : StatusLocalFailure);
    if (opened && MQSeriesQClose(transfer.hconn, &put->OutputHobj, put) != StatusOk) status = StatusLocalFailure;
    put->OutputHobj = 0;
    put->QName = transfer.get->OutputQName; // the names of the reply end here
    return status;
}

Status move_messages(Transfer &transfer, MQLONG count)
{
    RunParams *const get = transfer.get;
    RunParams *const put = transfer.put;
    const RunRecord getSnapshot = get->snapshot();
    const RunRecord putSnapshot = put->snapshot();
    for (MQLONG n = 1;; ++n) {
        get->restore(getSnapshot);
        if (begin_unit_of_work(get) != StatusOk) return StatusLocalFailure;
        MQLONG length = NothingGot;
        if (const Status got = get_message(transfer, n, &length); got != StatusOk) {
            // A message may have been taken all the same: with a warning, or for a file that could not be written.
            if (got != StatusWarning) end_unit_of_work(get, transfer.hconn, got);
            return got;
        }
        if (length == NothingGot) return StatusOk;

        put->restore(putSnapshot);
        put->QName = get->OutputQName;
        if (put->InheritMd != 0) put->Md = get->Md;
        setOutputMD(get, put, &putSnapshot);
        const Status status = answer_message(transfer, length, n);
        if (!isSuccess(status)) return status; // going on would empty the queue into nothing

        if (get->GetRepeatedly == 0 && n >= count) return status;
        if (transfer.source.isExhausted()) {
            printf_t(get, "No more input files in directory \"%s\".\n", put->InputDir);
            return status;
        }
        flush_output();
        sleep_millisecond(get, get->IntervalMs);
    }
}

Status clean_up(Transfer &transfer, Status status)
{
    const auto fails = [&](Status ended) {
        if (ended != StatusOk) status = StatusLocalFailure;
    };
    if (transfer.madeHandle) fails(MQSeriesDeleteMH(transfer.hconn, transfer.get));
    if (transfer.openedInput) {
        fails(MQSeriesQClose(transfer.hconn, &transfer.get->InputHobj, transfer.get));
        transfer.get->InputHobj = 0;
    }
    if (transfer.openedOutput) {
        fails(MQSeriesQClose(transfer.hconn, &transfer.put->OutputHobj, transfer.put));
        transfer.put->OutputHobj = 0;
    }
    return status;
}

} // namespace

Status Queue2Queue(RunParams *getParams, MQHCONN hconn, RunParams *putParams)
{
    const MQLONG count = getParams->MsgCount;
    getParams->MsgCount = 1;
    putParams->MsgCount = 1;
    putParams->QName = getParams->OutputQName;
    if (putParams->QName == nullptr) {
        printf_te(getParams, "invalid function call Queue2Queue() out_q_name is (null).\n");
        return StatusLocalFailure;
    }
    Transfer transfer{getParams, hconn, putParams, target_of(putParams->QName)};
    Status status = prepare(transfer);
    if (status == StatusOk) status = move_messages(transfer, count);
    return clean_up(transfer, status);
}
