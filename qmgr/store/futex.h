// Sleeping on a 32-bit word of shared memory, across processes.
#pragma once

#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdint>
#include <ctime>

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace mqrig::qmgr::store {

// Sleeps while the word holds `seen`, at most until the deadline; may wake for no reason. False: deadline passed.
inline bool futexWait(const void *word, std::uint32_t seen, std::chrono::steady_clock::time_point deadline)
{
    using std::chrono::steady_clock;
    timespec until{};
    timespec *limit = nullptr;
    if (deadline != steady_clock::time_point::max()) {
        const auto since =
            deadline.time_since_epoch().count() < 0 ? steady_clock::duration::zero() : deadline.time_since_epoch();
        until.tv_sec = std::chrono::duration_cast<std::chrono::seconds>(since).count();
        until.tv_nsec = (since % std::chrono::seconds(1)).count();
        limit = &until;
    }
    // The bitset form takes an absolute time on the monotonic clock, which is steady_clock's.
    const long answer = syscall(SYS_futex, word, FUTEX_WAIT_BITSET, seen, limit, nullptr, FUTEX_BITSET_MATCH_ANY);
    return answer == 0 || errno != ETIMEDOUT;
}

// How many have been woken.
inline long futexWake(const void *word, int howMany = INT_MAX)
{
    return syscall(SYS_futex, word, FUTEX_WAKE, howMany, nullptr, nullptr, 0);
}

} // namespace mqrig::qmgr::store
