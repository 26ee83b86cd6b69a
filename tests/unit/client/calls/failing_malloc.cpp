// malloc and realloc for the code under test (the linker wraps them), so that an allocation of a chosen size fails.
#include "calls_test.h"

#include <atomic>
#include <cerrno>
#include <cstddef>

namespace {
std::atomic<std::size_t> failingSize{0};
} // namespace

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
    if (size != 0 && size == failingSize) {
        errno = ENOMEM;
        return nullptr;
    }
    return __real_malloc(size);
}

void *__wrap_realloc(void *memory, std::size_t size)
{
    if (size != 0 && size == failingSize) {
        errno = ENOMEM;
        return nullptr;
    }
    return __real_realloc(memory, size);
}
}
