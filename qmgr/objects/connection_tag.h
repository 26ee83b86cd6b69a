// The tag of a connection (MQCNO.ConnTag): text that no other connection of the queue manager has while it runs.
#pragma once

#include <array>
#include <cstdint>
#include <cstdio>
#include <string>

namespace mqrig::qmgr::objects {

// "MQCT", the connection's number in 16 hexadecimal digits, the queue manager's name.
inline std::string connectionTag(const std::string &queueManager, std::uint64_t connection)
{
    std::array<char, 17> digits{};
    std::snprintf(digits.data(), digits.size(), "%016llX", static_cast<unsigned long long>(connection));
    return "MQCT" + std::string(digits.data()) + queueManager;
}

} // namespace mqrig::qmgr::objects
