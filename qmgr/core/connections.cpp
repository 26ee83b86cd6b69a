#include "qmgr/core/connections.h"

#include <pthread.h>
#include <sched.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <utility>
#include <vector>

#include "qmgr/core/callbacks.h"
#include "qmgr/core/command_server.h"
#include "qmgr/core/reconnect.h"
#include "qmgr/store/futex.h"

namespace mqrig::qmgr::core {

struct ConnectionEntry {
    std::mutex inUse;
    std::unique_ptr<Connection> connection; // guarded by inUse
    MQHCONN hconn = MQHC_UNUSABLE_HCONN;    // guarded by inUse
    std::uint32_t place = 0;
    // What calls look at before they wait for the lock; see Special.
    std::atomic<std::uint32_t> special{0};
    // Consumers of messages have the connection: only the thread that calls them may use it.
    std::atomic<bool> consumes{false};
    // The thread of the library has the connection, to reconnect it.
    std::atomic<bool> reconnecting{false};
    // The handle that is being disconnected; a futex word.
    std::atomic<MQHCONN> leaving{0};
};

namespace {

// Bits of ConnectionEntry::special; none for most connections.
namespace special {
constexpr std::uint32_t neverBlocks = 1;  // MQCNO_HANDLE_SHARE_NO_BLOCK
constexpr std::uint32_t hasCallbacks = 2; // a thread of the library's makes calls for it
} // namespace special

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

void giveBack(ConnectionEntry *entry)
{
    Table &connections = *table.load(std::memory_order_acquire);
    const std::lock_guard lock(connections.growing);
    connections.free.push_back(entry); // there is room: freeEntry
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
    const bool neverBlocks = (connection->options & MQCNO_HANDLE_SHARE_NO_BLOCK) != 0;
    entry->special.store(neverBlocks ? special::neverBlocks : 0, std::memory_order_relaxed);
    entry->leaving.store(0, std::memory_order_relaxed);
    entry->consumes.store(false, std::memory_order_relaxed);
    entry->reconnecting.store(false, std::memory_order_relaxed);
    entry->hconn = static_cast<MQHCONN>(number << placeBits | entry->place);
    connection->hconn = entry->hconn;
    connection->leaving = &entry->leaving;
    entry->connection = std::move(connection);
    return entry->hconn;
}

// Null for a number that never was a handle.
ConnectionEntry *entryOf(MQHCONN hconn)
{
    const Table *connections = table.load(std::memory_order_acquire);
    if (connections == nullptr || hconn <= 0) return nullptr;
    return connections->entries[static_cast<std::uint32_t>(hconn) & placeMask].load(std::memory_order_acquire);
}

ConnectionUse::ConnectionUse(MQHCONN hconn, When when) : outcome_(failure(MQRC_HCONN_ERROR))
{
    ConnectionEntry *entry = entryOf(hconn);
    if (entry == nullptr) return;

    bool waits = when != When::Free;
    if (const std::uint32_t found = entry->special.load(std::memory_order_relaxed); found != 0) [[unlikely]] {
        if ((found & special::hasCallbacks) != 0 && !Callbacks::mayWaitFor(hconn)) {
            outcome_ = failure(MQRC_CALL_IN_PROGRESS);
            return;
        }
        // While consumers have the connection, only their thread and who stops it meet here.
        const bool consumes = entry->consumes;
        if (consumes && when == When::Mine && !Callbacks::onThreadOf(hconn)) {
            outcome_ = failure(MQRC_HCONN_ASYNC_ACTIVE);
            return;
        }
        if ((found & special::neverBlocks) != 0 && !consumes) waits = false;
    }
    if (!take(*entry, hconn, when, waits)) {
        outcome_ = failure(MQRC_CALL_IN_PROGRESS);
        return;
    }
    if (entry->hconn != hconn) {
        lock_.unlock();
        return;
    }
    entry_ = entry;
    connection_ = entry->connection.get();
    if (when == When::Free) {
        entry->reconnecting = true;
        library_.flag = &entry->reconnecting;
    }
    outcome_ = checkConnection(*connection_);
}

// Locks the connection. False where another call has it and there is no waiting for that.
bool ConnectionUse::take(ConnectionEntry &entry, MQHCONN hconn, When when, bool waits)
{
    lock_ = std::unique_lock(entry.inUse, std::defer_lock);
    if (waits) {
        lock_.lock();
        return true;
    }
    if (lock_.try_lock()) return true;
    if (when == When::Free) return false;
    if (!entry.reconnecting) return lock_.try_lock(); // it may have let go of it between the two looks
    if (when == When::Leaving) announceRemoval(hconn);
    lock_.lock();
    return true;
}

bool wasInterrupted(MQHCONN hconn, const Outcome &outcome)
{
    if (outcome.Reason != MQRC_CONNECTION_BROKEN) return false;
    ConnectionEntry *entry = entryOf(hconn);
    if (entry == nullptr) return false;
    const std::lock_guard lock(entry->inUse);
    return entry->hconn == hconn && isInterrupted(*entry->connection, outcome);
}

std::shared_ptr<Callbacks> ConnectionUse::consumingCallbacks(MQHCONN hconn)
{
    ConnectionEntry *entry = entryOf(hconn);
    if (entry == nullptr || !entry->consumes) return nullptr;
    const std::lock_guard lock(entry->inUse);
    return entry->hconn == hconn ? entry->connection->callbacks : nullptr;
}

void ConnectionUse::announceRemoval(MQHCONN hconn)
{
    ConnectionEntry *entry = entryOf(hconn);
    if (entry == nullptr) return;
    const bool neverBlocks = (entry->special.load(std::memory_order_relaxed) & special::neverBlocks) != 0;
    if (neverBlocks && !entry->reconnecting && !entry->consumes) return;
    entry->leaving.store(hconn);
    store::futexWake(&entry->leaving);
}

void ConnectionUse::withdrawRemoval(MQHCONN hconn)
{
    ConnectionEntry *entry = entryOf(hconn);
    if (entry == nullptr) return;
    MQHCONN announced = hconn;
    entry->leaving.compare_exchange_strong(announced, 0);
}

const std::shared_ptr<Callbacks> &ConnectionUse::callbacks()
{
    if (connection_->callbacks == nullptr) {
        connection_->callbacks = std::make_shared<Callbacks>(connection_->hconn, connection_->store->watch(),
                                                             connection_->follows(), entry_->consumes);
        entry_->special.fetch_or(special::hasCallbacks, std::memory_order_relaxed);
    }
    return connection_->callbacks;
}

ConnectionUse::~ConnectionUse()
{
    if (connection_ == nullptr) {
        if (entry_ != nullptr) giveBack(entry_);
        return;
    }
    if (outcome_.failed()) return;
    if (connection_->store->requestsWaiting()) [[unlikely]]
        serveRequests(*connection_);
}

std::unique_ptr<Connection> ConnectionUse::remove()
{
    std::unique_ptr<Connection> connection = std::move(entry_->connection);
    entry_->hconn = MQHC_UNUSABLE_HCONN;
    entry_->special.store(0, std::memory_order_relaxed);
    lock_.unlock();
    connection_ = nullptr;
    return connection;
}

} // namespace mqrig::qmgr::core
