#include "receive/body_file.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace {

constexpr int OpenFlags = O_WRONLY | O_CREAT | O_CLOEXEC;
constexpr mode_t Permissions = 0666; // less the umask

} // namespace

BodyFile::~BodyFile()
{
    if (descriptor_ >= 0) close(descriptor_);
}

bool BodyFile::replace(const char *path)
{
    descriptor_ = open(path, OpenFlags | O_TRUNC, Permissions);
    return descriptor_ >= 0;
}

bool BodyFile::create(const char *path)
{
    descriptor_ = open(path, OpenFlags | O_EXCL, Permissions);
    return descriptor_ >= 0;
}

bool BodyFile::write(const char *data, MQLONG length)
{
    while (length > 0) {
        // A short write is no failure yet: the next one says what is wrong, or writes the rest.
        const ssize_t written = ::write(descriptor_, data, static_cast<std::size_t>(length));
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        data += written;
        length -= static_cast<MQLONG>(written);
    }
    return close(std::exchange(descriptor_, -1)) == 0;
}

Status report_file(RunParams *params, Caller caller, const char *call, int error, const char *path)
{
    report_failure(params, caller, call, error, "%s failed. file name=%s\n", call, path);
    return StatusLocalFailure;
}

Status write_body(RunParams *params, Caller caller, BodyFile &file, const char *path, const ReceivedMessage &message)
{
    if (file.write(message.data, std::min(message.length, params->MaxMsgSize))) return StatusOk;
    return report_file(params, caller, "fwrite()", errno, path);
}
