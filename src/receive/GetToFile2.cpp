// Gets one message and writes its body to the file of -o.
#include "receive.h"

#include "mqicalls.h"
#include "receive/body_file.h"
#include "receive/overwrite_prompt.h"

#include <cerrno>
#include <sys/stat.h>

namespace {

enum class Target {
    Free,     ///< to be written
    Declined, ///< a file that the user wants to keep
    Refused,  ///< already reported
};

/// Looked at before the get, so that nothing is taken off the queue for a file that is not wanted.
Target look_at_target(RunParams *params)
{
    struct stat status = {};
    if (stat(params->OutputFile, &status) != 0) {
        if (errno != ENAMETOOLONG) return Target::Free;
        report_file(params, {"GetToFile"}, "fopen(_s)()", errno, params->OutputFile);
        return Target::Refused;
    }
    switch (ask_overwrite(params, "file already exist. overwrite? y/n : ")) {
    case Overwrite::Yes:
        return Target::Free;
    case Overwrite::No:
        return Target::Declined;
    default:
        return Target::Refused;
    }
}

/// The line and the file, both inside the output lock.
Status save(RunParams *params, const ReceivedMessage &message, MQLONG number)
{
    LockedSection locked(params);
    if (locked.status() != StatusOk) return StatusLocalFailure;
    dsp_timestamp(params);
    std::printf("%d: message length: %d output filename : %s\n", number, message.length, params->OutputFile);

    BodyFile file;
    if (!file.replace(params->OutputFile)) {
        return report_file(params, {"GetToFile"}, "fopen(_s)()", errno, params->OutputFile);
    }
    const Status written = write_body(params, {"GetToFile"}, file, params->OutputFile, message);
    return written != StatusOk ? written : locked.release();
}

Status get_message(RunParams *params, MQHCONN hconn, MQHOBJ hobj, MQLONG messageNumber, char *buffer, MQLONG *lengthOut)
{
    ReceivedMessage message{buffer, 0};
    const Status got = MQSeriesReceive(hconn, hobj, params, buffer, params->MaxMsgSize, &message.length);
    if (got != StatusOk) return got;
    if (lengthOut != nullptr) *lengthOut = message.length;
    return save(params, message, messageNumber != 0 ? messageNumber : 1);
}

} // namespace

Status GetToFile2(RunParams *params, MQHCONN hconn, MQLONG ownUnitOfWork, MQLONG messageNumber, char *buffer,
                  MQLONG *lengthOut)
{
    if (lengthOut != nullptr) *lengthOut = NothingGot;
    const bool openedHere = params->InputHobj == 0;
    MQHOBJ hobj = params->InputHobj;
    if (openedHere && MQSeriesQOpenForInput(hconn, &hobj, params) != StatusOk) return StatusLocalFailure;

    const Target target = look_at_target(params);
    Status status = target == Target::Refused ? StatusLocalFailure : StatusOk;
    if (target == Target::Free) {
        Buffer<> ownBuffer;
        if (buffer == nullptr) {
            ownBuffer = checked_malloc(params, static_cast<std::size_t>(params->MaxMsgSize) + 1, {"GetToFile"});
            if (ownBuffer == nullptr) return StatusLocalFailure;
            buffer = ownBuffer.get();
        }
        if (ownUnitOfWork != 0) status = begin_unit_of_work(params);
        if (status == StatusOk) status = get_message(params, hconn, hobj, messageNumber, buffer, lengthOut);
    }

    if (ownUnitOfWork != 0) status = end_unit_of_work(params, hconn, status);
    if (openedHere && MQSeriesQClose(hconn, &hobj, params) != StatusOk) status = StatusLocalFailure;
    return status;
}
