// Sleeping getters and who wakes them.
//
// Every queue has a wait cell in the control block (queues may share one). A getter takes the cell's number, looks
// for a message, and sleeps only while the number is the same; whoever makes messages visible raises the number
// after its transaction has committed. So a message is either seen by the look or has raised the number. The system
// call to wake is made only if the cell counts waiters: the number is raised before the count is read, and a sleeper
// raises the count before the kernel compares the number, so one of the two notices the other.
//
// A process that is killed raises nothing. What it had locked or prepared was there, held, when a sleeper last looked
// or else raises the number later; so a sleeper whose queue has held messages wakes every 500 ms to see whether
// somebody died. To make that true for units prepared while it slept, the prepare wakes one sleeper, which from then
// on keeps the watch, and hands it on when it leaves. What a killed process made visible without waking anybody is
// found when somebody cleans up behind that process and wakes everybody (slots.cpp); for a sleeper all alone that is
// the sleeper itself, which does so every five seconds.
//
// A sleeper may wait for what a request to the queue manager brings, and a request is served by whoever has put it,
// unless that one is killed. So while requests wait no sleep lasts longer than those 500 ms, and the first one that
// waits wakes one sleeper, of any queue, before it becomes visible (requests.cpp). Who is about to sleep counts itself
// first and then looks whether requests wait; who raises `requestsWaiting` then looks for sleepers: so one of the two
// notices the other.
//
// A connection's own thread, which calls the callbacks of its program, sleeps on a word of its slot instead (watch.h),
// because it waits for several things at once. It marks the cells of its queues; whoever wakes the getters of a marked
// cell raises the words of the slots that watch it, and takes the mark off.

#include "qmgr/store/futex.h"
#include "qmgr/store/process.h"
#include "qmgr/store/store.h"

namespace mqrig::qmgr::store {

namespace {

constexpr std::chrono::milliseconds watchInterval{500};

} // namespace

WaitCell &Store::cellOf(QueueId queue) const
{
    return control().cells[queue % waitCells];
}

void Store::wakeGetters(QueueId queue)
{
    WaitCell &cell = cellOf(queue);
    cell.word.fetch_add(1);
    if (cell.waiters != 0) futexWake(&cell.word);
    if (cell.watched != 0) wakeWatchers(queue);
}

void Store::wakeOneGetter(QueueId queue)
{
    WaitCell &cell = cellOf(queue);
    cell.word.fetch_add(1);
    if (cell.waiters != 0) futexWake(&cell.word, 1);
    if (cell.watched != 0) wakeWatchers(queue);
}

void Store::wakeSlot(std::uint32_t number)
{
    ConnectionSlot &slot = control().slots[number];
    slot.watch.fetch_add(1);
    futexWake(&slot.watch);
}

// The mark on the cell is 1 where somebody watches and 2 while the watchers are being woken; whoever watches again sets
// it to 1 before going to sleep. It goes only when all have been woken, so that the next put does what a killed process
// has left.
void Store::wakeWatchers(QueueId queue)
{
    std::atomic<std::uint32_t> &mark = cellOf(queue).watched;
    std::uint32_t watched = 1;
    mark.compare_exchange_strong(watched, 2);
    if (watched == 0) return;
    const std::uint64_t bit = watchBit(queue);
    for (std::uint32_t number = 0; number < control().slotLimit; ++number)
        if ((control().slots[number].watched & bit) != 0) wakeSlot(number);
    std::uint32_t waking = 2;
    mark.compare_exchange_strong(waking, 0);
}

void Store::wakeEverybody()
{
    for (WaitCell &cell : control().cells) {
        cell.word.fetch_add(1);
        if (cell.waiters != 0) futexWake(&cell.word);
    }
    for (std::uint32_t number = 0; number < control().slotLimit; ++number)
        if (control().slots[number].state == SlotState::Taken) wakeSlot(number);
    // The state is rarely changed: no count of who waits for it.
    futexWake(&control().state);
}

State Store::waitForStateChange(State seen, Deadline deadline) const
{
    while (control().state == seen) {
        if (!futexWait(&control().state, static_cast<std::uint32_t>(seen), deadline)) break;
    }
    return control().state;
}

bool Store::waitForMessage(std::uint32_t slot, QueueId queue, std::uint32_t observed, Deadline deadline)
{
    WaitCell &cell = cellOf(queue);
    const State before = control().state;
    ConnectionSlot &own = control().slots[slot];
    while (cell.word == observed) {
        if (control().state != before || before == State::Ended) return true;
        if (std::chrono::steady_clock::now() >= deadline) return false;
        bool watching = false;
        const Outcome looked = read([&](ReadTransaction &transaction) {
            watching = transaction.queue(queue).held > 0;
            return success();
        });
        if (looked.failed()) return true; // the caller's next look says what is wrong
        Deadline until = std::min(deadline, std::chrono::steady_clock::now() + longestSleep);
        if (watching) until = std::min(until, std::chrono::steady_clock::now() + watchInterval);

        // In this order, so that whoever counts a killed sleeper out never takes off more than it had put on: a count
        // that is too low would let sleepers be forgotten, one that is too high costs a needless call.
        cell.waiters.fetch_add(1);
        own.waitsOn = queue % waitCells + 1;
        const bool requests = control().requestsWaiting != 0;
        if (requests) until = std::min(until, std::chrono::steady_clock::now() + watchInterval);
        const bool woken = futexWait(&cell.word, observed, until);
        own.waitsOn = 0;
        cell.waiters.fetch_sub(1);

        if (woken) continue;
        if (releaseDead()) return true;
        const bool over = std::chrono::steady_clock::now() >= deadline;
        if (requests && !over) return true;
        if (!watching) continue;
        if (anyPrepared() && !finishPrepared().failed() && cell.word != observed) return true;
        if (over && cell.waiters != 0) futexWake(&cell.word, 1);
    }
    return true;
}

} // namespace mqrig::qmgr::store
