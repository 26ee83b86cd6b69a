#include "common.h"

#include "output_mutex.h"

#include <atomic>

pthread_mutex_t *output_lock(RunParams *params)
{
    if (!params->threadsInUse()) return nullptr;
    return std::atomic_ref(params->OutputLock).load(std::memory_order_acquire);
}

void set_output_lock(RunParams *params, pthread_mutex_t *lock)
{
    std::atomic_ref(params->OutputLock).store(lock, std::memory_order_release);
}

Status lock_output_mutex(pthread_mutex_t *lock)
{
    if (lock == nullptr) return StatusOk;
    const int code = pthread_mutex_lock(lock);
    if (code == 0) return StatusOk;
    printf_d("lock_section", __LINE__, 0, "pthread_mutex_lock() failed. return code=%d\n", code);
    return StatusLocalFailure;
}

Status lock_section(RunParams *params)
{
    return lock_output_mutex(output_lock(params));
}
