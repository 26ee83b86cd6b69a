// Requests to the queue manager itself: whether any wait, and whose turn it is to work them off.
//
// There is no process of the queue manager's own, so its programs serve its requests between two of their own calls.
// They look at one word, `requestsWaiting`, and nobody may rely on the one who put the request: it may be killed at
// any moment. The word is therefore raised inside the transaction that makes a message of the request queue visible
// (or gives one back that a dead server held), and lowered only inside a transaction that sees the queue without any
// message, visible or held. Both run under the live state's one writer lock, so either the lowering sees the message
// or the raising comes after it. Too high costs a look, too low cannot be.
//
// Sleepers that wait for a message are no help against a killed server as long as they sleep, so one of them is woken
// when the word is raised (waiting.cpp).
//
// The turn is a robust mutex: requests are served one after the other in the order of their queue, and when a server
// is killed the next one to ask has the turn.
#include <cerrno>

#include "qmgr/store/futex.h"
#include "qmgr/store/seams.h"
#include "qmgr/store/store.h"

namespace mqrig::qmgr::store {

namespace {

// Whatever it sleeps for. Of those that were killed nobody wakes.
void wakeOneSleeper(ControlBlock &control)
{
    for (std::uint32_t number = 0; number < control.slotLimit; ++number) {
        const std::uint32_t cell = control.slots[number].waitsOn;
        if (cell == 0 || cell > waitCells) continue;
        control.cells[cell - 1].word.fetch_add(1);
        if (futexWake(&control.cells[cell - 1].word, 1) > 0) return;
    }
}

} // namespace

void Store::setRequestQueue(QueueId queue)
{
    if (control().requestQueue.exchange(queue) != queue) control().requestsWaiting = 1;
}

void Store::noteRequests(std::span<const QueueId> queues)
{
    const QueueId requests = control().requestQueue.load(std::memory_order_relaxed);
    for (const QueueId queue : queues)
        if (queue == requests && control().requestsWaiting.exchange(1) == 0) wakeOneSleeper(control());
}

bool Store::noRequestsLeft()
{
    bool none = false;
    const Outcome looked = update(0, 0, [&](WriteTransaction &transaction) {
        const QueueStatus status = transaction.queue(control().requestQueue);
        if (transaction.outcome().failed()) return transaction.outcome();
        none = status.held == 0 && status.depth == status.uncommitted;
        if (none) control().requestsWaiting = 0;
        return failure(MQRC_NONE); // nothing to commit
    });
    static_cast<void>(looked);
    reached(Step::RequestsLookedFor);
    return none;
}

void Attachment::setRequestQueue(QueueId queue)
{
    store_->setRequestQueue(queue);
}

bool Attachment::noRequestsLeft()
{
    return store_->noRequestsLeft();
}

Attachment::RequestTurn::RequestTurn(const Attachment &attachment)
{
    pthread_mutex_t &lock = attachment.store_->control().requestLock;
    const int code = pthread_mutex_trylock(&lock);
    // Of one that was killed: what it had begun comes back to the queue, so there is nothing to mend here.
    if (code == EOWNERDEAD) pthread_mutex_consistent(&lock);
    if (code == 0 || code == EOWNERDEAD) store_ = attachment.store_.get();
}

Attachment::RequestTurn::~RequestTurn()
{
    if (store_ != nullptr) pthread_mutex_unlock(&store_->control().requestLock);
}

} // namespace mqrig::qmgr::store
