#include "qmgr/store/process.h"

#include <pthread.h>
#include <sys/random.h>
#include <unistd.h>

#include "qmgr/store/lock_file.h"
#include "qmgr/store/seams.h"
#include "qmgr/store/store.h"

namespace mqrig::qmgr::store {

std::atomic<std::uint32_t> forkCount{0};

namespace {

std::atomic<Process *> current{nullptr};

void forgetParent()
{
    forkCount.fetch_add(1, std::memory_order_relaxed);
    current.store(nullptr, std::memory_order_relaxed);
}

std::uint64_t randomToken()
{
    std::uint64_t token = 0;
    if (getrandom(&token, sizeof token, 0) != sizeof token || token == 0) {
        token = static_cast<std::uint64_t>(currentTime()) << 20 ^ static_cast<std::uint64_t>(getpid());
    }
    return token;
}

} // namespace

Process::Process() : token(randomToken()) {}

Process &thisProcess()
{
    static const int registered = pthread_atfork(nullptr, nullptr, forgetParent);
    static_cast<void>(registered);
    Process *known = current.load(std::memory_order_acquire);
    if (known != nullptr) return *known;
    // Never freed: threads may be inside it until the very end of the process.
    Process *fresh = new Process; // NOLINT(cppcoreguidelines-owning-memory)
    if (current.compare_exchange_strong(known, fresh, std::memory_order_acq_rel)) return *fresh;
    delete fresh;
    return *known;
}

} // namespace mqrig::qmgr::store
