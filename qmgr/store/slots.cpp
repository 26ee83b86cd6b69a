// Connection slots: who is connected, who has died, and what dead connections held.
//
// A slot belongs to the process that holds the record lock on its byte in `live/slots` (lock_file.h). The lock is
// taken before the slot says Taken and given up after it says Free, so a Taken slot whose lock nobody else has, and
// which is not this process's own, is a dead connection's. Its clean-up runs while its byte is locked: nobody else
// cleans or takes it meanwhile.

#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <new>

#include "qmgr/store/process.h"
#include "qmgr/store/seams.h"
#include "qmgr/store/store.h"
#include "qmgr/store/transaction_scratch.h"
#include "qmgr/store/transaction_walk.h"

namespace mqrig::qmgr::store {

namespace {

bool isAlive(const ConnectionSlot &slot, std::uint32_t number, const LockFile &locks)
{
    if (slot.process == thisProcess().token) return true;
    if (seams.slotAlive != nullptr) return seams.slotAlive(number);
    return locks.lockedByOther(number);
}

} // namespace

bool Store::anyConnection()
{
    ControlBlock &block = control();
    for (std::uint32_t number = 0; number < block.slotLimit; ++number) {
        const ConnectionSlot &slot = block.slots[number];
        if (slot.state == SlotState::Taken && isAlive(slot, number, *slotLocks_)) return true;
    }
    return false;
}

namespace {

std::string programOf(const ConnectionSlot &slot)
{
    std::array<std::uint64_t, std::tuple_size_v<decltype(slot.program)>> words{};
    for (std::size_t i = 0; i < words.size(); ++i)
        words[i] = slot.program[i].load(std::memory_order_relaxed);
    const auto *text = reinterpret_cast<const char *>(words.data());
    return {text, strnlen(text, sizeof words)};
}

} // namespace

std::optional<ConnectionInfo> Store::connectionOf(std::uint32_t number)
{
    const ConnectionSlot &slot = control().slots[number];
    ConnectionInfo connection{.number = slot.connection, .pid = slot.pid, .program = programOf(slot)};
    if (slot.state != SlotState::Taken || !isAlive(slot, number, *slotLocks_)) return std::nullopt;
    return connection;
}

std::vector<ConnectionInfo> Store::connections()
{
    std::vector<ConnectionInfo> alive;
    for (std::uint32_t number = 0; number < control().slotLimit; ++number)
        if (const auto connection = connectionOf(number)) alive.push_back(*connection);
    std::ranges::sort(alive, {}, &ConnectionInfo::number);
    return alive;
}

std::vector<OpenQueue> Store::openQueues()
{
    std::vector<OpenQueue> open;
    const Outcome outcome = read([&](ReadTransaction &transaction) {
        for (std::uint32_t number = 0; number < control().slotLimit; ++number) {
            const auto connection = connectionOf(number);
            if (!connection) continue;
            transaction.forEach(LiveKey::bookingsOf(number), [&](const MDB_val &key, const MDB_val &value) {
                const OpenCounts opens = recordIn<Booking>(value).value_or(Booking{}).opens;
                if (opens.input > 0 || opens.output > 0 || opens.browse > 0)
                    open.push_back({numberAtEnd<QueueId>(key), opens, *connection});
            });
        }
        return success();
    });
    static_cast<void>(outcome);
    std::ranges::sort(open, {}, [](const OpenQueue &entry) { return entry.connection.number; });
    return open;
}

Store::SlotTaken Store::takeSlot()
{
    ControlBlock &block = control();
    const std::uint64_t ours = pidNamespaceOfThisProcess();
    if (ours == 0) return {failure(MQRC_RESOURCE_PROBLEM)};
    if (block.pidNamespace != ours) {
        // Process ids mean nothing across the border, and the reader table of the live state goes by them.
        if (anyConnection()) return {failure(MQRC_ENVIRONMENT_ERROR)};
        block.pidNamespace = ours;
    }
    for (int attempt = 0; attempt < 2; ++attempt) {
        {
            const std::scoped_lock lock(slotsMutex_);
            for (std::uint32_t number = 0; number < maxSlots; ++number) {
                ConnectionSlot &slot = block.slots[number];
                if (slot.state != SlotState::Free || !slotLocks_->tryLock(number)) continue;
                if (slot.state != SlotState::Free) { // taken by a process that has died since
                    slotLocks_->unlock(number);
                    continue;
                }
                slot.pid = getpid();
                slot.process = thisProcess().token;
                slot.connection = block.connections.fetch_add(1) + 1;
                slot.undone = 0;
                slot.waitsOn = 0;
                slot.holds = 0;
                slot.watched = 0;
                for (std::atomic<std::uint64_t> &word : slot.program)
                    word.store(0, std::memory_order_relaxed);
                for (std::uint32_t limit = block.slotLimit; limit <= number;) {
                    if (block.slotLimit.compare_exchange_weak(limit, number + 1)) break;
                }
                slot.state = SlotState::Taken;
                noteChange();
                reached(Step::SlotTaken);
                return {success(), number, slot.connection};
            }
        }
        if (!releaseDead()) break;
    }
    return {failure(MQRC_MAX_CONNS_LIMIT_REACHED)};
}

void Store::freeSlot(std::uint32_t number) noexcept
{
    {
        const std::scoped_lock lock(slotsMutex_);
        ConnectionSlot &slot = control().slots[number];
        if (cleanUp(number)) {
            slot.state = SlotState::Free;
        } else {
            // Nobody's from now on, so a dead connection's: for whoever looks next.
            slot.process = 0;
        }
        slotLocks_->unlock(number);
    }
    try {
        if (control().state == State::Quiescing && !anyConnection()) completeQuiesce();
        noteQuiet();
    } catch (const std::bad_alloc &) { // NOLINT(bugprone-empty-catch): the next look at the state completes it
    }
}

bool Store::releaseDead()
{
    ControlBlock &block = control();
    bool any = false;
    {
        const std::scoped_lock lock(slotsMutex_);
        for (std::uint32_t number = 0; number < block.slotLimit; ++number) {
            ConnectionSlot &slot = block.slots[number];
            if (slot.state != SlotState::Taken || isAlive(slot, number, *slotLocks_)) continue;
            if (!slotLocks_->tryLock(number)) continue; // somebody else is at it
            if (slot.state == SlotState::Taken && slot.process != thisProcess().token && cleanUp(number)) {
                // It may have died between making messages visible and waking those who wait for them.
                wakeEverybody();
                if (const std::uint32_t cell = slot.waitsOn; cell != 0) block.cells[cell - 1].waiters.fetch_sub(1);
                slot.state = SlotState::Free;
                any = true;
            }
            slotLocks_->unlock(number);
        }
    }
    // Units in the log that the last holder of its lock could not make visible, and their owners go on.
    if (!any) return block.logUnfinished == liveBehind && !finishPrepared().failed();
    live_->clearDeadReaders();
    // It may have died between preparing a unit and finishing it.
    if (anyPrepared()) static_cast<void>(finishPrepared());
    if (block.state == State::Quiescing && !anyConnection()) completeQuiesce();
    return true;
}

// Gives back whatever a connection holds that ends: the messages it got go back to their queues as by a backout, the
// places it booked and the handles it had open are uncounted. What it had prepared is not its own any more. If
// storage or memory fails, nothing has changed, the answer is false, and it has to be done again by somebody.
bool Store::cleanUp(std::uint32_t number) noexcept
try {
    if (control().state == State::Ended) return true;
    const Change change(*this);
    if (removeTemporariesOf(number).failed()) return false;
    const bool mayHold = control().slots[number].holds != 0;
    const Outcome cleaned = update(0, number, [&](WriteTransaction &transaction) {
        std::vector<MessageKey> gots;
        std::vector<MessageKey> browsed;
        if (mayHold) {
            transaction.forEach(LiveKey::holds(), [&](const MDB_val &key, const MDB_val &value) {
                const auto hold = recordIn<Hold>(value);
                if (!hold || hold->slot != number) return;
                if (hold->kind == HoldKind::Got) gots.push_back(messageOf(key));
                if (hold->kind == HoldKind::Browsed) browsed.push_back(messageOf(key));
            });
        }
        std::vector<std::pair<QueueId, Booking>> booked;
        transaction.forEach(LiveKey::bookingsOf(number), [&](const MDB_val &key, const MDB_val &value) {
            booked.emplace_back(numberAtEnd<QueueId>(key), recordIn<Booking>(value).value_or(Booking{}));
        });
        if (gots.empty() && browsed.empty() && booked.empty()) return failure(MQRC_NONE); // nothing to commit
        for (const MessageKey &key : gots)
            transaction.returnToQueue(key);
        for (const MessageKey &key : browsed)
            transaction.releaseBrowsed(key);
        for (const auto &[queue, booking] : booked) {
            QueueStatus &status = transaction.counters(queue);
            status.depth -= booking.puts;
            status.uncommitted -= booking.puts;
            status.depthTriggers -= booking.depthTriggers;
            transaction.addToOpens(queue, -booking.opens);
            transaction.erase(LiveKey::booking(number, queue));
            transaction.wakeGetters(queue);
        }
        reached(Step::SlotCleaning);
        return success();
    });
    reached(Step::SlotCleaned);
    return !cleaned.failed() || cleaned.Reason == MQRC_NONE;
} catch (const std::bad_alloc &) {
    return false;
}

} // namespace mqrig::qmgr::store
