#include "qmgr/core/message_handles.h"

#include <pthread.h>

#include <atomic>
#include <unordered_map>
#include <utility>

#include "qmgr/core/connection.h"

namespace mqrig::qmgr::core {
namespace {

constexpr MQMD defaultDescriptor = {MQMD_DEFAULT};

std::uint32_t ownerOf(MQHMSG hmsg)
{
    return static_cast<std::uint32_t>(static_cast<std::uint64_t>(hmsg) >> 32);
}

std::uint32_t numberOf(MQHMSG hmsg)
{
    return static_cast<std::uint32_t>(static_cast<std::uint64_t>(hmsg));
}

MQHMSG handleOf(std::uint32_t owner, std::uint32_t number)
{
    return static_cast<MQHMSG>(static_cast<std::uint64_t>(owner) << 32 | number);
}

// The handles of the process.
struct ProcessHandles {
    std::mutex changing;
    std::unordered_map<std::uint32_t, std::shared_ptr<MessageHandle>> handles; // guarded by changing
    std::uint32_t last = 0;                                                    // guarded by changing
};

// Never freed: other threads may still be in a call at the end of the process. A forked child begins with none, because
// a thread of its parent may have held the lock.
std::atomic<ProcessHandles *> processHandles{nullptr};

ProcessHandles &handlesOfProcess()
{
    if (ProcessHandles *made = processHandles.load(std::memory_order_acquire)) return *made;
    static std::atomic<bool> watchesForks{false};
    if (!watchesForks.exchange(true))
        pthread_atfork(nullptr, nullptr, [] { processHandles.store(nullptr, std::memory_order_relaxed); });
    auto made = std::make_unique<ProcessHandles>();
    ProcessHandles *there = nullptr;
    if (processHandles.compare_exchange_strong(there, made.get(), std::memory_order_acq_rel)) return *made.release();
    return *there;
}

std::shared_ptr<MessageHandle> findInProcess(std::uint32_t number)
{
    ProcessHandles *process = processHandles.load(std::memory_order_acquire);
    if (process == nullptr) return nullptr;
    const std::lock_guard lock(process->changing);
    const auto found = process->handles.find(number);
    return found == process->handles.end() ? nullptr : found->second;
}

std::uint32_t addToProcess(std::shared_ptr<MessageHandle> handle)
{
    ProcessHandles &process = handlesOfProcess();
    const std::lock_guard lock(process.changing);
    do
        ++process.last;
    while (process.last == 0 || process.handles.contains(process.last));
    process.handles.emplace(process.last, std::move(handle));
    return process.last;
}

} // namespace

MessageHandle::MessageHandle() : md(defaultDescriptor)
{
    md.Version = MQMD_VERSION_2;
}

void MessageHandle::clear()
{
    properties.clear();
    md = defaultDescriptor;
    md.Version = MQMD_VERSION_2;
    fieldsSet.reset();
}

std::uint32_t MessageHandles::add(std::unique_ptr<MessageHandle> handle)
{
    if (free_.empty()) {
        if (places_.size() > placeMask) return 0;
        places_.emplace_back();
        // Room for every place, so that deleting allocates nothing.
        free_.reserve(places_.capacity());
        free_.push_back(static_cast<std::uint32_t>(places_.size() - 1));
    }
    const std::uint32_t index = free_.back();
    free_.pop_back();
    places_[index].handle = std::move(handle);
    return places_[index].uses << placeBits | index;
}

MessageHandle *MessageHandles::find(std::uint32_t number) const
{
    const std::size_t index = number & placeMask;
    if (index >= places_.size() || places_[index].uses != number >> placeBits) return nullptr;
    return places_[index].handle.get();
}

std::unique_ptr<MessageHandle> MessageHandles::remove(std::uint32_t number)
{
    if (find(number) == nullptr) return nullptr;
    Place &place = places_[number & placeMask];
    // Never 0, so that no handle is MQHM_NONE.
    place.uses = place.uses == usesMask ? 1 : place.uses + 1;
    free_.push_back(number & placeMask);
    return std::move(place.handle);
}

Outcome createMessageHandle(MQHCONN hconn, Connection *connection, properties::NameCheck check, MQHMSG &hmsg)
{
    auto handle = std::make_unique<MessageHandle>();
    handle->check = check;
    if (connection == nullptr) {
        hmsg = handleOf(0, addToProcess(std::move(handle)));
        return success();
    }
    const std::uint32_t number = connection->messageHandles.add(std::move(handle));
    if (number == 0) return failure(MQRC_HMSG_NOT_AVAILABLE);
    hmsg = handleOf(static_cast<std::uint32_t>(hconn), number);
    return success();
}

Outcome deleteMessageHandle(MQHCONN hconn, Connection *connection, MQHMSG hmsg)
{
    const MessageHandleUse use(hconn, connection, hmsg);
    if (use.outcome().failed()) return use.outcome();
    if (ownerOf(hmsg) != 0) {
        (void)connection->messageHandles.remove(numberOf(hmsg));
        return success();
    }
    ProcessHandles &process = handlesOfProcess();
    const std::lock_guard lock(process.changing);
    process.handles.erase(numberOf(hmsg));
    return success();
}

MessageHandleUse::MessageHandleUse(MQHCONN hconn, Connection *connection, MQHMSG hmsg)
{
    if (ownerOf(hmsg) == 0) {
        shared_ = findInProcess(numberOf(hmsg));
        if (shared_ == nullptr) return;
        lock_ = std::unique_lock(shared_->inUse, std::try_to_lock);
        if (!lock_.owns_lock()) {
            outcome_ = failure(MQRC_MSG_HANDLE_IN_USE);
            return;
        }
        handle_ = shared_.get();
    } else {
        if (connection == nullptr || ownerOf(hmsg) != static_cast<std::uint32_t>(hconn)) return;
        handle_ = connection->messageHandles.find(numberOf(hmsg));
        if (handle_ == nullptr) return;
    }
    outcome_ = success();
}

} // namespace mqrig::qmgr::core
