#include "send/message_buffer.h"

#include "send.h"

#include <cerrno>
#include <climits>
#include <cstring>

Buffer<> allocate_message(RunParams *params, std::int64_t size, std::int64_t reported, Caller caller)
{
    errno = ENOMEM;
    Buffer<> memory(size - 1 <= INT_MAX ? static_cast<char *>(std::malloc(static_cast<std::size_t>(size))) : nullptr);
    if (memory == nullptr) {
        report_failure(params, caller, "malloc()", errno, "malloc() failed. size=%lld\n",
                       static_cast<long long>(reported));
    }
    return memory;
}

Status MessageHeader::build(RunParams *params)
{
    if (params->UseRfh2 == 0) return StatusOk;
    params->DataEncoding = params->Md.Encoding;
    bytes.reset(make_rfh2(params));
    if (bytes == nullptr) return StatusLocalFailure;
    MQLONG strucLength = 0;
    std::memcpy(&strucLength, bytes.get() + offsetof(MQRFH2, StrucLength), sizeof strucLength);
    length = reverseEndian(strucLength, params);
    return StatusOk;
}

void MessageHeader::copy_to(char *message) const
{
    if (bytes != nullptr) std::memcpy(message, bytes.get(), static_cast<std::size_t>(length));
}
