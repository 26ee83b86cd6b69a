// What controller, workers and inspector of a crash run share: the queues, how a message says who it is, and the
// memory that outlives a killed process.
#pragma once

#include <array>
#include <atomic>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "cmqc.h"
#include "qmgr/store/seams.h"

namespace mqrig::crash {

using qmgr::store::Step;

enum class Queue : std::uint8_t {
    A,       // putters, getters and movers
    B,       //
    Wait,    // its getter sleeps until a message comes
    Group,   // holds whole groups only
    Filled,  // large messages, until the live state has to grow
    Replies, // of the command server
    Command, //
    queues
};
constexpr std::size_t queues = static_cast<std::size_t>(Queue::queues);
constexpr std::array<const char *, queues> queueNames{
    "A", "B", "WAIT", "GROUP", "FILLED", "REPLIES", "SYSTEM.ADMIN.COMMAND.QUEUE"};
constexpr std::size_t indexOf(Queue queue)
{
    return static_cast<std::size_t>(queue);
}
inline const char *nameOf(Queue queue)
{
    return queueNames.at(indexOf(queue));
}

constexpr const char *queueManager = "CRASH";
// Queues that come and go are named after the worker and a number: these, those that requests create, dynamic ones.
constexpr const char *definedPrefix = "DEFINED.";
constexpr const char *requestedPrefix = "REQUESTED.";
constexpr const char *dynamicPrefix = "DYNAMIC.";

// Who put a message, and its number among those. Workers' numbers are never used twice in a run.
struct MessageName {
    std::uint32_t producer = 0;
    std::uint32_t serial = 0;
    auto operator<=>(const MessageName &) const = default;
};
inline std::string textOf(const MessageName &name)
{
    return std::to_string(name.producer) + ":" + std::to_string(name.serial);
}

// Bodies tell everything about their message again, and every byte is accounted for.
struct BodyHead {
    MessageName name;
    std::uint32_t length = 0;
    std::uint8_t queue = 0;
    std::uint8_t persistent = 0;
    std::uint8_t priority = 0;
    std::uint8_t spare = 0;
};
void fillBody(std::span<std::byte> body, const BodyHead &head);
// The head, if every byte is what the producer wrote.
std::optional<BodyHead> headOf(std::span<const std::byte> body);

void toMsgId(const MessageName &name, MQBYTE24 id);
std::optional<MessageName> ofMsgId(const MQBYTE24 id);

// What each worker shows while it lives.
struct Post {
    std::atomic<std::uint32_t> parked; // the pause in which it stands outside any call and any unit of work
    std::atomic<std::uint64_t> calls;  // calls answered
    std::array<std::atomic<std::uint8_t>, queues> input;
    std::array<std::atomic<std::uint8_t>, queues> output;
    std::array<std::atomic<std::uint8_t>, queues> browse;
    void clear()
    {
        parked = 0;
        calls = 0;
        for (std::size_t queue = 0; queue < queues; ++queue)
            input.at(queue) = output.at(queue) = browse.at(queue) = 0;
    }
};
constexpr std::size_t mostWorkers = 32;
struct Board {
    std::atomic<std::uint32_t> pause; // number of the pause that is on, 0: none
    std::atomic<std::uint32_t> stop;
    std::atomic<std::uint32_t> diskFull; // some worker's log refuses now and then
    std::array<Post, mostWorkers> posts;
};

// How a worker ends by itself.
enum Exit : int { stopped = 0, queueManagerEnded = 10, foundFault = 11 };

extern const std::array<const char *, static_cast<std::size_t>(Step::steps)> stepNames;

} // namespace mqrig::crash
