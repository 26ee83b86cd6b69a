// What a thread of a connection's own waits for, all at once: the queue manager's state, messages on several queues,
// and whatever else the connection wants it to look at.
//
// It sleeps on a number in the connection's slot of the control block. The number is raised when the state changes,
// when messages become visible on a queue that is watched, and by wake(). Whoever takes the number first, then looks,
// and then sleeps misses nothing.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <span>

#include "qmgr/store/message.h"

namespace mqrig::qmgr::store {

class Store;

enum class State : std::uint32_t { Running = 1, Quiescing = 2, Ended = 3 };

using Deadline = std::chrono::steady_clock::time_point;
constexpr Deadline unlimitedWait = Deadline::max();

// Any thread may use it at any time, also when the connection is gone.
class Watch {
public:
    Watch(std::shared_ptr<Store> store, std::uint32_t slot);

    [[nodiscard]] State state() const;
    // See Attachment.
    [[nodiscard]] bool endedToReconnect() const;

    [[nodiscard]] std::uint32_t observe() const;
    // Sleeps while the number is `observed`, at most until the deadline; may wake for no reason.
    void sleep(std::uint32_t observed, Deadline deadline) const;
    void wake() const;

    // Messages that become visible on these queues from now on raise the number; to be called after observe() and
    // before looking, each time. None: no messages do.
    void watchQueues(std::span<const QueueId> queues) const;

private:
    std::shared_ptr<Store> store_;
    std::uint32_t slot_;
};

} // namespace mqrig::qmgr::store
