// What a fresh program finds on the queue manager while every worker stands still.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "world.h"

namespace mqrig::crash {

struct Inspection {
    struct Message {
        Queue queue{};
        MessageName name;
        bool persistent = false;
        MQLONG priority = 0;
        MQLONG backouts = 0;
    };
    struct Counters {
        std::uint32_t depth = 0;
        std::uint32_t held = 0;
        std::uint32_t uncommitted = 0;
        std::int32_t input = 0;
        std::int32_t output = 0;
        std::int32_t browse = 0;
    };
    std::vector<Message> messages; // of each queue in delivery order; those of Queue::Filled were taken off it
    std::array<Counters, queues> counters{};
    std::vector<MessageName> replies; // these were taken off their queue
    std::vector<std::string> objects; // queues with one of the prefixes; what was defined is removed
    std::uint64_t mapSize = 0;        // of the live state
    std::vector<std::string> faults;
};

struct Look {
    std::filesystem::path storeFolder;
    bool waiterSleeps = false; // a getter waits on Queue::Wait, so that queue must become empty
};

// Looks in a process of its own, so that the controller never is a program of the queue manager.
Inspection inspect(const Look &look);

} // namespace mqrig::crash
