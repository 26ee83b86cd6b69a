#include "qmgr/store/folders.h"

#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include "qmgr/store/seams.h"
#include "qmgr/store/system_error.h"

namespace mqrig::qmgr::store {

Outcome outcomeOfErrno()
{
    switch (errno) {
    case EEXIST:
    case ENOTEMPTY:
        return failure(MQRC_OBJECT_ALREADY_EXISTS);
    default:
        return outcomeOfSystem(errno);
    }
}

std::string randomName(const char *prefix)
{
    std::uint64_t number = 0;
    if (getrandom(&number, sizeof number, 0) != sizeof number) number = static_cast<std::uint64_t>(currentTime());
    return prefix + std::to_string(number);
}

int syncFolder(const std::filesystem::path &folder)
{
    const int fd = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) return errno;
    const int error = fsync(fd) == 0 || errno == EINVAL || errno == ENOTSUP ? 0 : errno;
    close(fd);
    return error;
}

Outcome makeFolders(const std::filesystem::path &folder)
{
    const auto make = [&] {
        if (mkdir(folder.c_str(), 0700) != 0) return errno == EEXIST;
        const int error = syncFolder(folder.has_parent_path() ? folder.parent_path() : ".");
        if (error != 0) rmdir(folder.c_str()); // the next one to make it is to sync it
        errno = error;
        return error == 0;
    };
    if (make()) return success();
    if (errno != ENOENT || !folder.has_parent_path() || folder.parent_path() == folder) return outcomeOfErrno();
    if (const Outcome parent = makeFolders(folder.parent_path()); parent.failed()) return parent;
    return make() ? success() : outcomeOfErrno();
}

Outcome writeFile(const std::filesystem::path &file, std::string_view text)
{
    const int fd = open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (fd < 0) return outcomeOfErrno();
    const ssize_t size = write(fd, text.data(), text.size());
    Outcome outcome;
    if (size < 0 || fsync(fd) != 0) {
        outcome = outcomeOfErrno();
    } else if (static_cast<std::size_t>(size) != text.size()) {
        outcome = failure(MQRC_STORAGE_NOT_AVAILABLE);
    }
    close(fd);
    return outcome;
}

} // namespace mqrig::qmgr::store
