#include "qmgr/store/watch.h"

#include <algorithm>
#include <utility>

#include "qmgr/store/futex.h"
#include "qmgr/store/store.h"

namespace mqrig::qmgr::store {

Watch::Watch(std::shared_ptr<Store> store, std::uint32_t slot) : store_(std::move(store)), slot_(slot) {}

State Watch::state() const
{
    return store_->control().state.load(std::memory_order_acquire);
}

bool Watch::endedToReconnect() const
{
    return state() == State::Ended && store_->control().reconnect != 0;
}

std::uint32_t Watch::observe() const
{
    return store_->control().slots[slot_].watch;
}

void Watch::sleep(std::uint32_t observed, Deadline deadline) const
{
    // Not for ever: what a killed process made visible without waking anybody is found by the next look.
    const Deadline longest = std::chrono::steady_clock::now() + longestSleep;
    futexWait(&store_->control().slots[slot_].watch, observed, std::min(deadline, longest));
}

void Watch::wake() const
{
    store_->wakeSlot(slot_);
}

void Watch::watchQueues(std::span<const QueueId> queues) const
{
    std::uint64_t bits = 0;
    for (const QueueId queue : queues)
        bits |= watchBit(queue);
    // The slot first: whoever meets a mark looks for the slot.
    store_->control().slots[slot_].watched = bits;
    for (const QueueId queue : queues)
        store_->cellOf(queue).watched = 1;
}

} // namespace mqrig::qmgr::store
