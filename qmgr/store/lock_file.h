// Record locks that the kernel drops with the process: the start-up lock, the lock on the live state's size, and one
// liveness lock for each connection slot.
//
// Why POSIX record locks: they belong to the process, so they fall when it dies however it dies, and a forked child
// does not hold them. (flock and open-file-description locks live in the descriptor: a child that outlives its
// killed parent would keep a dead connection looking alive.) The price: they fall when *any* descriptor of the file
// is closed in the process, so each lock file is opened once in a process and never closed; and they do not exclude
// threads of one process, so whoever needs that holds a mutex besides.
#pragma once

#include <cstdint>
#include <filesystem>

namespace mqrig::qmgr::store {

class LockFile {
public:
    struct Opened {
        LockFile *file; // null: see error; owned by the process
        int error;      // errno
    };
    // Opens (creating it, 0600) the lock file of this path, or finds it if the process has it open already. The
    // caller holds the process's mutex.
    static Opened open(const std::filesystem::path &path);

    // Takes the lock on a byte unless another process has it. Always succeeds on this process's own.
    [[nodiscard]] bool tryLock(std::uint32_t byte);
    // Waits for it. False on an error of the kernel's (no locks left).
    [[nodiscard]] bool lock(std::uint32_t byte);
    void unlock(std::uint32_t byte);
    // Whether another process holds the lock on the byte. False for this process's own.
    [[nodiscard]] bool lockedByOther(std::uint32_t byte) const;

private:
    explicit LockFile(int fd) : fd_(fd) {}
    int fd_;
};

// The lock on a byte, for as long as it exists.
class HeldLock {
public:
    HeldLock(LockFile &file, std::uint32_t byte) : file_(file), byte_(byte), held_(file.lock(byte)) {}
    ~HeldLock()
    {
        if (held_) file_.unlock(byte_);
    }
    HeldLock(const HeldLock &) = delete;
    HeldLock &operator=(const HeldLock &) = delete;
    [[nodiscard]] bool held() const { return held_; }

private:
    LockFile &file_;
    std::uint32_t byte_;
    bool held_;
};

} // namespace mqrig::qmgr::store
