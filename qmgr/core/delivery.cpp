#include "qmgr/core/delivery.h"

#include <algorithm>
#include <cstring>

namespace mqrig::qmgr::core {
namespace {

Outcome judgeLength(const GetRequest &request, std::size_t length)
{
    if (length <= request.buffer.size()) return success();
    return warning(request.has(MQGMO_ACCEPT_TRUNCATED_MSG) ? MQRC_TRUNCATED_MSG_ACCEPTED : MQRC_TRUNCATED_MSG_FAILED);
}

} // namespace

Outcome prepareDelivery(const GetRequest &request, std::span<const std::byte> stored, GotMessage &got)
{
    const std::size_t length = bodyOf(got.header, stored).size();
    got.dataLength = static_cast<MQLONG>(length);
    return judgeLength(request, length);
}

void copyDelivery(const GetRequest &request, std::span<const std::byte> stored, GotMessage &got)
{
    const std::span<const std::byte> body = bodyOf(got.header, stored);
    const std::size_t returned = std::min(body.size(), request.buffer.size());
    if (returned != 0) std::memcpy(request.buffer.data(), body.data(), returned);
    got.returnedLength = static_cast<MQLONG>(returned);
}

Outcome deliver(const GetRequest &request, std::span<const std::byte> stored, GotMessage &got)
{
    const Outcome outcome = prepareDelivery(request, stored, got);
    copyDelivery(request, stored, got);
    return outcome;
}

} // namespace mqrig::qmgr::core
