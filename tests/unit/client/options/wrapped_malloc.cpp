// malloc for the code under test (the linker wraps it): one size has no memory.

#include "parsed.h"

#include <cerrno>

namespace {
std::size_t failingSize = 0;
} // namespace

FailingMalloc::FailingMalloc(std::size_t size)
{
    failingSize = size;
}
FailingMalloc::~FailingMalloc()
{
    failingSize = 0;
}

extern "C" {
void *__real_malloc(std::size_t size);

void *__wrap_malloc(std::size_t size)
{
    if (size != 0 && size == failingSize) {
        errno = ENOMEM;
        return nullptr;
    }
    return __real_malloc(size);
}
}
