#include "qmgr/core/connections.h"

#include <pthread.h>
#include <sched.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <utility>
#include <vector>

#include "qmgr/core/command_server.h"

namespace mqrig::qmgr::core {

struct ConnectionEntry {
    std::mutex inUse;
    std::unique_ptr<Connection> connection; // guarded by inUse
    MQHCONN hconn = MQHC_UNUSABLE_HCONN;    // guarded by inUse
    std::uint32_t place = 0;
    std::atomic<bool> blocks{true}; // MQCNO_HANDLE_SHARE_NO_BLOCK was not given
};

namespace {

constexpr unsigned placeBits = 14;
constexpr std::uint32_t maxPlaces = 1U << placeBits;
constexpr std::uint32_t placeMask = maxPlaces - 1;
constexpr std::uint32_t turnMask = (1U << (31 - placeBits)) - 1;

struct Table {
    std::array<std::atomic<ConnectionEntry *>, maxPlaces> entries{};
    std::mutex growing;
    std::uint32_t used = 0;              // guarded by growing
    std::vector<ConnectionEntry *> free; // guarded by growing
};

// Counts connections over forks, so that a number is not given twice for a long time.
std::atomic<std::uint32_t> turn{0};

// Null until the first connection and, reset by the fork, in a child. Tables are never freed: at the end of the
// process other threads may still be in a call.
std::atomic<Table *> table{nullptr};
std::atomic<bool> making{false};

void forgetInChild()
{
    table.store(nullptr, std::memory_order_relaxed);
    making.store(false, std::memory_order_relaxed);
}

Table &tableForConnecting()
{
    for (;;) {
        if (Table *made = table.load(std::memory_order_acquire)) return *made;
        if (!making.exchange(true, std::memory_order_acquire)) break;
        sched_yield();
    }
    // The one that makes it. No mutex: a fork at this moment must leave nothing locked.
    static std::atomic<bool> watchesForks{false};
    if (!watchesForks.exchange(true)) pthread_atfork(nullptr, nullptr, forgetInChild);
    Table *made = table.load(std::memory_order_acquire);
    if (made == nullptr) {
        try {
            made = new Table;
        } catch (...) {
            making.store(false, std::memory_order_release);
            throw;
        }
        table.store(made, std::memory_order_release);
    }
    making.store(false, std::memory_order_release);
    return *made;
}

ConnectionEntry *freeEntry(Table &connections)
{
    const std::lock_guard lock(connections.growing);
    if (!connections.free.empty()) {
        ConnectionEntry *entry = connections.free.back();
        connections.free.pop_back();
        return entry;
    }
    if (connections.used == maxPlaces) return nullptr;
    connections.free.reserve(connections.used + 1);
    auto entry = std::make_unique<ConnectionEntry>();
    entry->place = connections.used++;
    connections.entries[entry->place].store(entry.get(), std::memory_order_release);
    return entry.release();
}

} // namespace

MQHCONN addConnection(std::unique_ptr<Connection> connection)
{
    ConnectionEntry *entry = freeEntry(tableForConnecting());
    if (entry == nullptr) return MQHC_UNUSABLE_HCONN;
    const std::lock_guard lock(entry->inUse);
    std::uint32_t number = 0;
    do
        number = (turn.fetch_add(1, std::memory_order_relaxed) + 1) & turnMask;
    while (number == 0);
    entry->blocks.store((connection->options & MQCNO_HANDLE_SHARE_NO_BLOCK) == 0, std::memory_order_relaxed);
    entry->connection = std::move(connection);
    entry->hconn = static_cast<MQHCONN>(number << placeBits | entry->place);
    return entry->hconn;
}

ConnectionUse::ConnectionUse(MQHCONN hconn) : outcome_(failure(MQRC_HCONN_ERROR))
{
    const Table *connections = table.load(std::memory_order_acquire);
    if (connections == nullptr || hconn <= 0) return;
    ConnectionEntry *entry =
        connections->entries[static_cast<std::uint32_t>(hconn) & placeMask].load(std::memory_order_acquire);
    if (entry == nullptr) return;

    std::unique_lock lock(entry->inUse, std::defer_lock);
    if (entry->blocks.load(std::memory_order_relaxed)) {
        lock.lock();
    } else if (!lock.try_lock()) {
        outcome_ = failure(MQRC_CALL_IN_PROGRESS);
        return;
    }
    if (entry->hconn != hconn) return;
    entry_ = entry;
    connection_ = entry->connection.get();
    lock_ = std::move(lock);
    outcome_ = connection_->store->check();
}

ConnectionUse::~ConnectionUse()
{
    if (connection_ == nullptr || outcome_.failed()) return;
    if (connection_->store->requestsWaiting()) [[unlikely]]
        serveRequests(*connection_);
}

std::unique_ptr<Connection> ConnectionUse::remove()
{
    std::unique_ptr<Connection> connection = std::move(entry_->connection);
    entry_->hconn = MQHC_UNUSABLE_HCONN;
    entry_->blocks.store(true, std::memory_order_relaxed);
    lock_.unlock();
    connection_ = nullptr;
    Table &connections = *table.load(std::memory_order_acquire);
    const std::lock_guard lock(connections.growing);
    connections.free.push_back(entry_);
    return connection;
}

} // namespace mqrig::qmgr::core
