#include "common.h"

#include <cerrno>
#include <climits>
#include <cstring>

namespace {

/// malloc and calloc may answer null for no bytes at all; a buffer of ours never is.
std::size_t atLeastOne(std::size_t size)
{
    return size == 0 ? 1 : size;
}

Buffer<> checked(RunParams *params, void *memory, const char *call, std::size_t size, Caller caller)
{
    if (memory == nullptr) report_failure(params, caller, call, errno, "%s failed. size=%zu\n", call, size);
    return Buffer<>(static_cast<char *>(memory));
}

} // namespace

Buffer<> checked_malloc(RunParams *params, std::size_t size, Caller caller, const char *call)
{
    return checked(params, std::malloc(atLeastOne(size)), call, size, caller);
}

Buffer<> checked_calloc(RunParams *params, std::size_t size, Caller caller)
{
    return checked(params, std::calloc(atLeastOne(size), 1), "calloc()", size, caller);
}

Buffer<> checked_malloc_counted(RunParams *params, std::int64_t size, Caller caller)
{
    if (size <= INT_MAX) return checked_malloc(params, static_cast<std::size_t>(size), caller);
    report_failure(params, caller, "malloc()", ENOMEM, "malloc() failed. size=%lld\n", static_cast<long long>(size));
    return nullptr;
}

bool checked_realloc(RunParams *params, Buffer<> &buffer, std::size_t size, Caller caller)
{
    void *const grown = std::realloc(buffer.get(), atLeastOne(size));
    if (grown == nullptr) {
        report_failure(params, caller, "realloc()", errno, "realloc() failed. size=%zu\n", size);
        return false;
    }
    static_cast<void>(buffer.release()); // realloc has freed or moved it
    buffer.reset(static_cast<char *>(grown));
    return true;
}

Buffer<> checked_copy(RunParams *params, const char *text, Caller caller, const char *call)
{
    const std::size_t size = std::strlen(text) + 1;
    Buffer<> copy = checked_malloc(params, size, caller, call);
    if (copy) std::memcpy(copy.get(), text, size);
    return copy;
}
