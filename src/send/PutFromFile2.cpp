// Puts the contents of a file as often as -n says. The whole file is read before anything is opened or put.
#include "send.h"

#include "display.h"
#include "mqicalls.h"
#include "send/input_file.h"
#include "send/message_buffer.h"
#include "send/put_round.h"
#include "send/put_target.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace {

struct FileMessage {
    Buffer<> bytes; ///< header and body
    MQLONG length = 0;
};

/// The size of the file, which stands at its start then. A failure is reported.
Status take_size(RunParams *params, std::FILE *file, std::int64_t &size)
{
    const auto failed = [&](Caller caller, const char *call) {
        report_failure(params, caller, call, errno, "%s failed.\n", call);
        return StatusLocalFailure;
    };
    if (fseeko(file, 0, SEEK_END) != 0) return failed({"PutFromFile"}, "fseek()");
    const off_t end = ftello(file);
    if (end == -1) return failed({"PutFromFile"}, "ftell()");
    if (fseeko(file, 0, SEEK_SET) != 0) return failed({"PutFromFile"}, "fseek()");
    // No file system's limit makes the sums below overflow.
    size = std::min<std::int64_t>(end, INT64_MAX / 2);
    return StatusOk;
}

/// Header, contents and padding. -l pads and cuts; a file that has become shorter since its size was taken is padded.
Status read_message(RunParams *params, std::FILE *file, std::int64_t size, FileMessage &message)
{
    MessageHeader header;
    if (header.build(params) != StatusOk) return StatusLocalFailure;
    const std::int64_t body = params->MsgLength >= 0 ? params->MsgLength : size;
    const std::int64_t total = header.length + body;
    message.bytes = allocate_message(params, total + 1, total + 1, {"PutFromFile"});
    if (message.bytes == nullptr) return StatusLocalFailure;
    message.length = static_cast<MQLONG>(total);

    header.copy_to(message.bytes.get());
    char *const start = message.bytes.get() + header.length;
    const auto wanted = static_cast<std::size_t>(std::min(size, body));
    const std::size_t got = std::fread(start, 1, wanted, file);
    if (std::ferror(file) != 0) {
        // Padding in place of what could not be read would be another message.
        report_failure(params, {"PutFromFile"}, "fread()", errno, "fread() failed. file name=%s\n", params->InputFile);
        return StatusLocalFailure;
    }
    std::memset(start + got, pad_c, static_cast<std::size_t>(body) - got);
    return StatusOk;
}

Status put_messages(RunParams *params, MQHCONN hconn, MQHOBJ hobj, const FileMessage &message, MQLONG messageNumber)
{
    const RunRecord snapshot = params->snapshot();
    for (MQLONG i = 0; i < params->MsgCount; ++i) {
        begin_put_round(params, snapshot, i);
        const MQLONG index = messageNumber != 0 ? messageNumber - 1 : i;
        const Status shown = dsp_message(params, nullptr, 0, DisplayPutFile, -1, static_cast<MQULONG>(index));
        if (shown != StatusOk) return shown;
        const Status put = put_body(params, hconn, hobj, message.bytes.get(), message.length, i);
        if (put != StatusOk) return put;
    }
    return StatusOk;
}

} // namespace

Status PutFromFile2(RunParams *params, MQHCONN hconn, MQLONG ownUnitOfWork, std::FILE *openFile, MQLONG messageNumber)
{
    InputStream opened;
    if (openFile == nullptr) {
        opened = open_input_file(params->InputFile);
        if (opened == nullptr) {
            report_failure(params, {"PutFromFile"}, "fopen(_s)()", errno, "fopen(_s)() failed. file name=%s\n",
                           params->InputFile);
            return StatusLocalFailure;
        }
        openFile = opened.get();
    }
    std::int64_t size = 0;
    if (take_size(params, openFile, size) != StatusOk) return StatusLocalFailure;

    PutTarget target;
    FileMessage message;
    Status status = read_message(params, openFile, size, message);
    if (status == StatusOk) status = target.open(params, hconn);
    if (status == StatusOk) status = target.set_properties(params, hconn);
    if (params->MsgCount == 0) params->MsgCount = 1;
    if (status == StatusOk && ownUnitOfWork != 0) status = begin_unit_of_work(params);
    if (status == StatusOk) status = put_messages(params, hconn, target.hobj, message, messageNumber);
    return target.finish(params, hconn, ownUnitOfWork, status);
}
