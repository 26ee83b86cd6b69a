// operator new comes to malloc in every build, also where a sanitizer's own would not.
#include <cstdlib>
#include <new>

#define EXPORT __attribute__((visibility("default")))

namespace {

void *made(void *block)
{
    if (block == nullptr) throw std::bad_alloc();
    return block;
}

std::size_t number(std::align_val_t alignment)
{
    return static_cast<std::size_t>(alignment);
}

} // namespace

EXPORT void *operator new(std::size_t size)
{
    return made(std::malloc(size));
}
EXPORT void *operator new[](std::size_t size)
{
    return made(std::malloc(size));
}
EXPORT void *operator new(std::size_t size, const std::nothrow_t &) noexcept
{
    return std::malloc(size);
}
EXPORT void *operator new[](std::size_t size, const std::nothrow_t &) noexcept
{
    return std::malloc(size);
}
EXPORT void *operator new(std::size_t size, std::align_val_t alignment)
{
    return made(std::aligned_alloc(number(alignment), size));
}
EXPORT void *operator new[](std::size_t size, std::align_val_t alignment)
{
    return made(std::aligned_alloc(number(alignment), size));
}
EXPORT void operator delete(void *block) noexcept
{
    std::free(block);
}
EXPORT void operator delete[](void *block) noexcept
{
    std::free(block);
}
EXPORT void operator delete(void *block, std::size_t) noexcept
{
    std::free(block);
}
EXPORT void operator delete[](void *block, std::size_t) noexcept
{
    std::free(block);
}
EXPORT void operator delete(void *block, std::align_val_t) noexcept
{
    std::free(block);
}
EXPORT void operator delete[](void *block, std::align_val_t) noexcept
{
    std::free(block);
}
EXPORT void operator delete(void *block, std::size_t, std::align_val_t) noexcept
{
    std::free(block);
}
EXPORT void operator delete[](void *block, std::size_t, std::align_val_t) noexcept
{
    std::free(block);
}
