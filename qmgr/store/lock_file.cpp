#include "qmgr/store/lock_file.h"

#include <cerrno>
#include <ctime>
#include <fcntl.h>
#include <memory>
#include <new>
#include <sys/stat.h>
#include <unistd.h>

#include "qmgr/store/process.h"

namespace mqrig::qmgr::store {

namespace {

struct flock lockOf(short type, std::uint32_t byte)
{
    struct flock lock {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = byte;
    lock.l_len = 1;
    return lock;
}

std::pair<std::uint64_t, std::uint64_t> identity(const struct stat &file)
{
    return {file.st_dev, file.st_ino};
}

} // namespace

LockFile::Opened LockFile::open(const std::filesystem::path &path)
{
    auto &known = thisProcess().lockFiles;
    struct stat file {};
    // Looked up before it is opened: a second descriptor could not be closed again without dropping every lock.
    if (stat(path.c_str(), &file) == 0) {
        if (const auto found = known.find(identity(file)); found != known.end()) return {found->second.get(), 0};
        // Locks on something that others have open too would not be ours.
        if (!S_ISREG(file.st_mode)) return {nullptr, EINVAL};
    } else if (errno != ENOENT) {
        return {nullptr, errno};
    }
    const int fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (fd < 0) return {nullptr, errno};
    int error = fstat(fd, &file) == 0 ? 0 : errno;
    if (error == 0) {
        try {
            std::unique_ptr<LockFile> made(new LockFile(fd));
            auto &entry = known[identity(file)];
            if (!entry) entry = std::move(made);
            return {entry.get(), 0};
        } catch (const std::bad_alloc &) {
            error = ENOMEM;
        }
    }
    close(fd); // new to this process, so no lock goes with it
    return {nullptr, error};
}

bool LockFile::tryLock(std::uint32_t byte)
{
    struct flock lock = lockOf(F_WRLCK, byte);
    return fcntl(fd_, F_SETLK, &lock) == 0;
}

bool LockFile::lock(std::uint32_t byte)
{
    for (;;) {
        struct flock lock = lockOf(F_WRLCK, byte);
        if (fcntl(fd_, F_SETLKW, &lock) == 0) return true;
        // The kernel looks for deadlocks by process and takes the locks of two threads for a cycle: ask again.
        if (errno != EINTR && errno != EDEADLK) return false;
        if (errno == EDEADLK) {
            constexpr timespec pause{.tv_sec = 0, .tv_nsec = 1'000'000};
            nanosleep(&pause, nullptr);
        }
    }
}

void LockFile::unlock(std::uint32_t byte)
{
    struct flock lock = lockOf(F_UNLCK, byte);
    fcntl(fd_, F_SETLK, &lock);
}

bool LockFile::lockedByOther(std::uint32_t byte) const
{
    struct flock lock = lockOf(F_WRLCK, byte);
    return fcntl(fd_, F_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
}

} // namespace mqrig::qmgr::store
