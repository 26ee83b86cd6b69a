// Gets messages into the directory of -g, one file each, named after the put date and time.
#include "receive.h"

#include "mqicalls.h"
#include "receive/body_file.h"
#include "receive/overwrite_prompt.h"

#include <cerrno>
#include <climits>
#include <cstring>
#include <sys/stat.h>

namespace {

constexpr std::size_t LongestName = 64 + sizeof "_2147483647";

/// The path of a file in the directory; `prepare_directory` has seen that the longest one fits.
using Path = char[PATH_MAX];

enum class Directory {
    Ready,
    Declined, ///< the user does not want files to be added
    Failed,   ///< already reported
};

bool is_directory(const char *path)
{
    struct stat status = {};
    return stat(path, &status) == 0 && S_ISDIR(status.st_mode);
}

void say(RunParams *params, const char *line)
{
    const LockedSection locked(params);
    if (locked.status() == StatusOk) std::puts(line);
}

/// Creates the directory at the start of a series; a single call (message number 0) asks before it adds to one that is
/// there. Done before anything is got, so that every message has a place to go.
Directory prepare_directory(RunParams *params, MQLONG messageNumber)
{
    const bool fits = std::strlen(params->OutputDir) + 1 + LongestName <= sizeof(Path);
    if (fits && messageNumber > 1) return Directory::Ready;
    if (fits && mkdir(params->OutputDir, 0777) == 0) {
        say(params, "mkdir success.");
        return Directory::Ready;
    }
    const int error = fits ? errno : ENAMETOOLONG;
    if (error != EEXIST || !is_directory(params->OutputDir)) {
        say(params, "cannot create directory.");
        report_failure(params, {"GetToDir"}, "mkdir() or _mkdir()", error, "mkdir() or _mkdir() failed.\n");
        return Directory::Failed;
    }
    if (messageNumber != 0) return Directory::Ready;
    switch (ask_overwrite(params, "directory already exist. overwrite? y/n : ")) {
    case Overwrite::Yes:
        return Directory::Ready;
    case Overwrite::No:
        return Directory::Declined;
    default:
        return Directory::Failed;
    }
}

/// The number that this thread tried last behind a name, so that thousands of messages of the same hundredth of a
/// second do not try each other's names from the first one on.
struct LastNumber {
    Path name = "";
    int number = 0;

    void rename(const char *newName, std::size_t length)
    {
        if (std::strcmp(name, newName) == 0) return;
        std::memcpy(name, newName, length + 1);
        number = 0;
    }
};

/// Creates the first free name, with "_1", "_2" and so on behind it where it is taken. The creation is what finds out:
/// neither a thread nor another program can take the name in between. False with errno; `path` is what was tried last.
bool create_free(const RunParams *params, Path &path, BodyFile &file)
{
    thread_local LastNumber last;
    const auto folder = static_cast<std::size_t>(std::snprintf(path, sizeof path, "%s/", params->OutputDir));
    const std::size_t base = folder + static_cast<std::size_t>(mkFileName(&params->Md, path + folder));
    if (file.create(path)) return true;

    last.rename(path, base);
    while (errno == EEXIST) {
        std::snprintf(path + base, sizeof path - base, "_%d", ++last.number);
        if (file.create(path)) return true;
    }
    return false;
}

Status save(RunParams *params, const ReceivedMessage &message, MQLONG number)
{
    Path path;
    BodyFile file;
    LockedSection locked(params);
    if (locked.status() != StatusOk) return StatusLocalFailure;
    const bool created = create_free(params, path, file);
    const int error = errno;
    dsp_timestamp(params);
    std::printf("%d: write file : %s\n", number, path);
    if (locked.release() != StatusOk) return StatusLocalFailure;

    if (!created) return report_file(params, {"GetToDir"}, "fopen(_s)()", error, path);
    return write_body(params, {"GetToDir"}, file, path, message);
}

Status get_messages(RunParams *params, MQHCONN hconn, MQHOBJ hobj, bool isSeries, MQLONG messageNumber, char *buffer,
                    MQLONG *lengthOut)
{
    const RunRecord snapshot = params->snapshot();
    MQLONG written = 0;
    for (;;) {
        ReceivedMessage message{buffer, 0};
        const Status got = MQSeriesReceive(hconn, hobj, params, buffer, params->MaxMsgSize, &message.length);
        if (got != StatusOk) return got;
        if (lengthOut != nullptr) *lengthOut = message.length;
        ++written;
        const Status saved = save(params, message, messageNumber != 0 ? messageNumber : written);
        if (saved != StatusOk) return saved;

        if (!isSeries || (params->GetRepeatedly == 0 && params->MsgCount <= written)) return StatusOk;
        flush_output();
        sleep_millisecond(params, params->IntervalMs);
        params->restore(snapshot);
    }
}

} // namespace

Status GetToDir2(RunParams *params, MQHCONN hconn, MQLONG ownUnitOfWork, MQLONG messageNumber, char *buffer,
                 MQLONG *lengthOut)
{
    if (lengthOut != nullptr) *lengthOut = NothingGot;
    const Directory directory = prepare_directory(params, messageNumber);
    if (directory != Directory::Ready) return directory == Directory::Declined ? StatusOk : StatusLocalFailure;

    const bool openedHere = params->InputHobj == 0;
    MQHOBJ hobj = params->InputHobj;
    if (openedHere && MQSeriesQOpenForInput(hconn, &hobj, params) != StatusOk) return StatusLocalFailure;
    Buffer<> ownBuffer;
    if (buffer == nullptr) {
        ownBuffer = checked_malloc(params, static_cast<std::size_t>(params->MaxMsgSize) + 1, {"GetToDir"});
        if (ownBuffer == nullptr) return StatusLocalFailure;
        buffer = ownBuffer.get();
    }
    if (params->MsgCount == 0) params->MsgCount = 1;
    if (ownUnitOfWork != 0 && begin_unit_of_work(params) != StatusOk) return StatusLocalFailure;

    const bool isSeries = ownUnitOfWork != 0; // else the caller drives it
    Status status = get_messages(params, hconn, hobj, isSeries, messageNumber, buffer, lengthOut);
    if (ownUnitOfWork != 0) status = end_unit_of_work(params, hconn, status);
    if (openedHere && MQSeriesQClose(hconn, &hobj, params) != StatusOk) status = StatusLocalFailure;
    return status;
}
