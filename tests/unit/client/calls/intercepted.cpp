// Calls of the code under test that the linker hands to us first (see CMakeLists.txt): allocations that are to fail,
// the yield, and sleeps, which are counted instead of slept.
#include "calls_test.h"

#include <atomic>
#include <cerrno>
#include <cstddef>

namespace {
std::atomic<std::size_t> failingSize{0};

bool fails(std::size_t size)
{
    if (size == 0 || size != failingSize) return false;
    errno = ENOMEM;
    return true;
}
} // namespace

Intercepted intercepted;

void fail_malloc_of(std::size_t size)
{
    failingSize = size;
}
void let_malloc_succeed()
{
    failingSize = 0;
}

extern "C" {
void *__real_malloc(std::size_t size);
void *__real_realloc(void *memory, std::size_t size);

void *__wrap_malloc(std::size_t size)
{
    return fails(size) ? nullptr : __real_malloc(size);
}
void *__wrap_realloc(void *memory, std::size_t size)
{
    return fails(size) ? nullptr : __real_realloc(memory, size);
}

int __wrap_sched_yield()
{
    ++intercepted.yields;
    if (intercepted.yieldError == 0) return 0;
    errno = intercepted.yieldError;
    return -1;
}

// sleep_millisecond(RunParams *, MQLONG)
void __wrap__Z17sleep_millisecondP9RunParamsi(RunParams *, MQLONG milliseconds)
{
    intercepted.sleeps.push_back({fakeMqi.calls.size(), milliseconds});
}
}
