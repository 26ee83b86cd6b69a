#include "wrapped_calls.h"

#include <cerrno>
#include <pthread.h>

WrappedCalls wrapped;

namespace {

bool noMemory(std::size_t size)
{
    if (size == 0 || size != wrapped.failingSize) return false;
    errno = ENOMEM;
    return true;
}

} // namespace

extern "C" {
void *__real_malloc(std::size_t size);
void *__real_calloc(std::size_t count, std::size_t size);
void *__real_realloc(void *memory, std::size_t size);
int __real_clock_gettime(clockid_t clock, timespec *time);
int __real_pthread_mutex_lock(pthread_mutex_t *lock);
int __real_pthread_mutex_unlock(pthread_mutex_t *lock);

void *__wrap_malloc(std::size_t size)
{
    return noMemory(size) ? nullptr : __real_malloc(size);
}

void *__wrap_calloc(std::size_t count, std::size_t size)
{
    return noMemory(count * size) ? nullptr : __real_calloc(count, size);
}

void *__wrap_realloc(void *memory, std::size_t size)
{
    return noMemory(size) ? nullptr : __real_realloc(memory, size);
}

int __wrap_clock_gettime(clockid_t clock, timespec *time)
{
    if (clock != CLOCK_REALTIME || !wrapped.now) return __real_clock_gettime(clock, time);
    *time = *wrapped.now;
    return 0;
}

int __wrap_nanosleep(const timespec *duration, timespec *)
{
    wrapped.sleeps.push_back(*duration);
    return 0;
}

int __wrap_pthread_mutex_lock(pthread_mutex_t *lock)
{
    return wrapped.lockCode != 0 ? wrapped.lockCode : __real_pthread_mutex_lock(lock);
}

int __wrap_pthread_mutex_unlock(pthread_mutex_t *lock)
{
    return wrapped.unlockCode != 0 ? wrapped.unlockCode : __real_pthread_mutex_unlock(lock);
}
}
