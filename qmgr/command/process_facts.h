// What the system tells of a process of this machine.
#pragma once

#include <cstdint>
#include <string>

namespace mqrig::qmgr::command {

// The file name of its program, cut to the MQI's field for it; empty where the system does not tell.
std::string programOf(std::int32_t pid);
// The name of the user it runs as, cut likewise; the number of a user without a name.
std::string userOf(std::int32_t pid);

} // namespace mqrig::qmgr::command
