#include "qmgr/store/control_block.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include "qmgr/store/seams.h"

namespace mqrig::qmgr::store {

namespace {

constexpr std::array<char, 8> magic{'M', 'Q', 'L', 'I', 'V', 'E', '\n', '\x1a'};
constexpr std::uint32_t format = 11;

class Descriptor {
public:
    explicit Descriptor(int fd) : fd_(fd) {}
    ~Descriptor()
    {
        if (fd_ >= 0) close(fd_);
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    [[nodiscard]] int get() const { return fd_; }

private:
    int fd_;
};

// False, with errno, if it cannot be read now.
bool readBootId(std::array<char, 40> &id)
{
    id = {};
    const Descriptor file(::open("/proc/sys/kernel/random/boot_id", O_RDONLY | O_CLOEXEC));
    if (file.get() < 0) return errno == ENOENT; // a system without one: all boots are the same
    const ssize_t got = read(file.get(), id.data(), 36);
    if (got >= 0 && got != 36) errno = EIO;
    return got == 36;
}

ControlBlock *map(int fd)
{
    void *place = mmap(nullptr, sizeof(ControlBlock), PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    return place == MAP_FAILED ? nullptr : static_cast<ControlBlock *>(place);
}

int initialise(pthread_mutex_t &mutex)
{
    pthread_mutexattr_t attributes;
    if (const int error = pthread_mutexattr_init(&attributes); error != 0) return error;
    int error = pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
    if (error == 0) error = pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST);
    if (error == 0) error = pthread_mutex_init(&mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
    return error;
}

bool fits(const LifeStamp &stamp, const std::array<char, 40> &boot, const struct stat &control, const struct stat &data)
{
    return stamp.magic == magic && stamp.format == format && stamp.ready == 1 && stamp.bootId == boot &&
           stamp.controlDevice == control.st_dev && stamp.controlInode == control.st_ino &&
           stamp.dataInode == data.st_ino;
}

} // namespace

std::unique_ptr<ControlMapping> ControlMapping::create(const std::filesystem::path &live, std::uint64_t generation,
                                                       int &error)
{
    const Descriptor file(::open((live / "control").c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    struct stat status {};
    std::array<char, 40> boot{};
    if (file.get() < 0 || !readBootId(boot) || fstat(file.get(), &status) != 0) {
        error = errno;
        return nullptr;
    }
    // Space that is not reserved would be a SIGBUS on a full disk.
    if (error = posix_fallocate(file.get(), 0, sizeof(ControlBlock)); error != 0) return nullptr;
    ControlBlock *block = map(file.get());
    if (block == nullptr) {
        error = errno;
        return nullptr;
    }
    std::unique_ptr<ControlMapping> mapping(new ControlMapping(block));
    block->stamp = {.magic = magic,
                    .format = format,
                    .ready = 0,
                    .bootId = boot,
                    .controlDevice = status.st_dev,
                    .controlInode = status.st_ino,
                    .dataInode = 0,
                    .generation = generation};
    block->state = State::Ended;
    block->pidNamespace = pidNamespaceOfThisProcess();
    block->definitionVersion = 1;
    block->started = currentTime();
    block->requestsWaiting = 1; // what the life before has left
    for (pthread_mutex_t *mutex : {&block->logLock, &block->requestLock, &block->retainedLock})
        if (error = initialise(*mutex); error != 0) return nullptr;
    return mapping;
}

std::unique_ptr<ControlMapping> ControlMapping::open(const std::filesystem::path &live, int &error)
{
    error = 0;
    const Descriptor file(::open((live / "control").c_str(), O_RDWR | O_CLOEXEC | O_NONBLOCK));
    struct stat control {};
    struct stat data {};
    if (file.get() < 0 || stat((live / "data.mdb").c_str(), &data) != 0 || fstat(file.get(), &control) != 0) {
        if (errno != ENOENT && errno != ENOTDIR && errno != EISDIR && errno != ELOOP && errno != ENXIO) error = errno;
        return nullptr;
    }
    LifeStamp stamp{};
    std::array<char, 40> boot{};
    if (control.st_size != sizeof(ControlBlock)) return nullptr;
    // A life that cannot be looked at is not one that is over: others may be in it.
    const ssize_t got = pread(file.get(), &stamp, sizeof stamp, 0);
    if (got < 0 || !readBootId(boot)) {
        error = errno;
        return nullptr;
    }
    if (got != sizeof stamp || !fits(stamp, boot, control, data)) return nullptr;
    ControlBlock *block = map(file.get());
    if (block == nullptr) {
        error = errno;
        return nullptr;
    }
    std::unique_ptr<ControlMapping> mapping(new ControlMapping(block));
    // A live state shorter than what is mapped of it would be a SIGBUS.
    if (static_cast<std::uint64_t>(data.st_size) < block->mapSize) return nullptr;
    return mapping;
}

bool ControlMapping::declareReady(const std::filesystem::path &live)
{
    struct stat data {};
    if (stat((live / "data.mdb").c_str(), &data) != 0) return false;
    block_->stamp.dataInode = data.st_ino;
    std::atomic_ref(block_->stamp.ready).store(1, std::memory_order_release);
    return true;
}

bool ControlMapping::isStillAt(const std::filesystem::path &live) const
{
    struct stat now {};
    // What cannot be looked at is taken to be there: this process must not open the files of one life twice.
    if (stat((live / "control").c_str(), &now) != 0) return errno != ENOENT && errno != ENOTDIR;
    return now.st_ino == block_->stamp.controlInode && now.st_dev == block_->stamp.controlDevice;
}

ControlMapping::~ControlMapping()
{
    munmap(block_, sizeof(ControlBlock));
}

std::uint64_t pidNamespaceOfThisProcess()
{
    struct stat status {};
    return stat("/proc/self/ns/pid", &status) == 0 ? status.st_ino : 0;
}

} // namespace mqrig::qmgr::store
