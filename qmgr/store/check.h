// Verifies the store of a queue manager, whether it runs or has ended, and changes nothing in it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "qmgr/store/log_check.h"

namespace mqrig::qmgr::store {

// What the live state of a running queue manager has in it; as far as it could be read.
struct LiveContents {
    bool looked = false; // there is one, and it was verified
    std::uint64_t queues = 0;
    std::uint64_t messages = 0;
    std::uint64_t heldForTheDead = 0; // by connections whose program was killed: released when the next one connects
};

struct StoreCheck {
    // MQRC_Q_MGR_NAME_ERROR, and what LogContents::outcome says: nothing was verified.
    Outcome outcome;
    std::vector<std::string> findings; // a line each; none: all is well
    std::uint64_t count = 0;           // of findings
    LogContents log;
    LiveContents live;
};
[[nodiscard]] StoreCheck checkQueueManager(const std::filesystem::path &storeFolder, std::string_view name,
                                           const CanDecode &canDecode);

} // namespace mqrig::qmgr::store
