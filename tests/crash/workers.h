// The programs of a crash run: each puts, gets, moves, browses, asks or administers without end, until it is killed.
#pragma once

#include <cstdint>
#include <filesystem>

#include "journal.h"
#include "world.h"

namespace mqrig::crash {

enum class Role : std::uint8_t {
    Putter,
    Getter,
    Mover,
    Browser,
    GroupPutter,
    GroupGetter,
    Waiter,    // sleeps for messages of the queue Wait
    Requester, // of the command server
    Definer,   // of queues that it deletes again
    Dynamic,   // makes dynamic queues
    Connector, // connects and disconnects
    Filler,    // makes the live state grow
    roles
};
constexpr std::size_t roles = static_cast<std::size_t>(Role::roles);
extern const std::array<const char *, roles> roleNames;

struct Death {
    Step step{};
    std::uint32_t passing = 1; // which passing of the step it does not survive
};

struct Assignment {
    Role role{};
    std::uint32_t number = 0; // of the worker, never used twice
    std::optional<Death> death = {};
    bool diskFullAtTimes = false;   // its log transactions fail now and then, as on a full disk
    std::optional<Queue> only = {}; // a putter that puts single messages on this queue, without opening it
    bool onlyPersistent = true;     // and these are persistent
    bool goesOnInPauses = false;
};

// Arms the fault points of this process: it is killed at that passing of the step.
void armDeath(const Death &death);

// The life of a worker, in its own process.
[[noreturn]] void work(const Assignment &assignment, const std::filesystem::path &storeFolder, Board &board, Post &post,
                       const Journal &journal);

} // namespace mqrig::crash
