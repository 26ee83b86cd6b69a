#include "qmgr/store/attachment.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>
#include <utility>

#include "qmgr/store/paths.h"
#include "qmgr/store/process.h"
#include "qmgr/store/queue_managers.h"
#include "qmgr/store/store.h"

namespace mqrig::qmgr::store {

Attached attach(const std::filesystem::path &storeFolder, std::string_view name)
{
    const std::string wanted = name.empty() ? defaultQueueManager(storeFolder) : std::string(name);
    if (!isQueueManagerName(wanted)) return {failure(MQRC_Q_MGR_NAME_ERROR), nullptr};
    auto [outcome, store] = Store::open(storeFolder / folderOfName(wanted));
    if (outcome.failed()) return {outcome, nullptr};
    return Attachment::on(store);
}

Attached Attachment::on(const std::shared_ptr<Store> &store)
{
    const auto taken = store->takeSlot();
    if (taken.outcome.failed()) return {taken.outcome, nullptr};
    std::unique_ptr<Attachment> attachment(new (std::nothrow) Attachment(store, taken.slot));
    if (!attachment) {
        store->freeSlot(taken.slot);
        return {failure(MQRC_STORAGE_NOT_AVAILABLE), nullptr};
    }
    // What killed programs have left behind, their temporary queues above all, goes with the next one that comes.
    attachment->releaseDead();
    // Asked after the slot is taken: whoever quiesces the queue manager counts slots after setting the state, so
    // either it has seen ours or we see its state.
    switch (attachment->state()) {
    case State::Running:
        return {success(), std::move(attachment)};
    case State::Quiescing:
        return {failure(MQRC_Q_MGR_QUIESCING), nullptr};
    case State::Ended:
        break;
    }
    return {failure(MQRC_Q_MGR_NOT_AVAILABLE), nullptr};
}

Attachment::Attachment(std::shared_ptr<Store> store, std::uint32_t slot)
    : store_(std::move(store)), slot_(slot), forks_(forkCount.load(std::memory_order_relaxed)),
      connectionNumber_(store_->control().slots[slot].connection), requestsWaiting_(&store_->control().requestsWaiting)
{
}

Attachment::~Attachment()
{
    if (forked()) {
        // The parent's environment must not be closed from here: closing drops locks and unmaps what it shares.
        static_cast<void>(new std::shared_ptr<Store>(std::move(store_))); // NOLINT: left where it lies
        return;
    }
    store_->freeSlot(slot_);
    Store::forgetEnded(store_);
}

bool Attachment::forked() const
{
    return forkCount.load(std::memory_order_relaxed) != forks_;
}

Attached Attachment::another() const
{
    return on(store_);
}

Outcome Attachment::check()
{
    if (forked()) return failure(MQRC_HCONN_ERROR);
    if (state() != State::Ended && !lost_) [[likely]]
        return success();
    return failure(std::exchange(toldOfEnd_, true) || lost_ ? MQRC_CONNECTION_BROKEN : MQRC_Q_MGR_STOPPING);
}

State Attachment::state() const
{
    return store_->control().state.load(std::memory_order_acquire);
}

State Attachment::waitForStateChange(State seen, Deadline deadline) const
{
    return store_->waitForStateChange(seen, deadline);
}

bool Attachment::endedToReconnect() const
{
    return state() == State::Ended && store_->control().reconnect != 0;
}

Watch Attachment::watch() const
{
    return {store_, slot_};
}

const std::string &Attachment::queueManagerName() const
{
    return store_->name();
}

void Attachment::nameProgram(std::string_view name)
{
    ConnectionSlot &slot = store_->control().slots[slot_];
    std::array<std::uint64_t, std::tuple_size_v<decltype(slot.program)>> words{};
    std::memcpy(words.data(), name.data(), std::min(name.size(), sizeof(MQCHAR28)));
    for (std::size_t i = 0; i < words.size(); ++i)
        slot.program[i].store(words[i], std::memory_order_relaxed);
}

std::vector<ConnectionInfo> Attachment::connections() const
{
    return store_->connections();
}

std::vector<OpenQueue> Attachment::openQueues() const
{
    return store_->openQueues();
}

std::int64_t Attachment::startTime() const
{
    return store_->control().started.load(std::memory_order_relaxed);
}

bool Attachment::announcesStart() const
{
    // The load first: every connection asks.
    std::atomic<std::uint32_t> &told = store_->control().startTold;
    return told.load(std::memory_order_relaxed) == 0 && told.exchange(1) == 0;
}

std::uint64_t Attachment::uniqueNumber() const
{
    return store_->control().sequence.fetch_add(1, std::memory_order_relaxed);
}

std::uint64_t Attachment::definitionVersion() const
{
    return store_->control().definitionVersion.load(std::memory_order_acquire);
}

std::uint64_t Attachment::subscriptionVersion() const
{
    return store_->control().subscriptionVersion.load(std::memory_order_acquire);
}

std::optional<Definition> Attachment::findDefinition(MQLONG type, std::string_view name)
{
    return store_->findDefinition(type, name);
}

std::vector<Definition> Attachment::definitions(MQLONG type)
{
    releaseDead();
    return store_->definitions(type);
}

Outcome Attachment::define(Definition &definition)
{
    return store_->define(definition);
}

Outcome Attachment::alter(const Definition &definition, std::optional<std::string_view> seen)
{
    return store_->alter(definition, seen);
}

Outcome Attachment::defineTemporary(Definition &definition)
{
    return store_->defineTemporary(slot_, definition);
}

Attachment::RetainedTurn::RetainedTurn(const Attachment &attachment)
{
    pthread_mutex_t &lock = attachment.store_->control().retainedLock;
    const int code = pthread_mutex_lock(&lock);
    // Of one that was killed: its unit of work is whole or nothing without it, and nobody was told of it.
    if (code == EOWNERDEAD) pthread_mutex_consistent(&lock);
    if (code == 0 || code == EOWNERDEAD) store_ = attachment.store_.get();
}

Attachment::RetainedTurn::~RetainedTurn()
{
    if (store_ != nullptr) pthread_mutex_unlock(&store_->control().retainedLock);
}

Outcome Attachment::removeTemporary(const Definition &definition)
{
    return store_->removeTemporary(slot_, definition);
}

Outcome Attachment::remove(MQLONG type, std::string_view name, const std::function<Outcome(const QueueStatus &)> &mayGo)
{
    return store_->remove(type, name, mayGo);
}

MessageKey Attachment::newKey(QueueId queue, std::uint8_t order)
{
    return {.queue = queue, .order = order, .sequence = uniqueNumber()};
}

Outcome Attachment::beginRead(ReadTransaction &transaction)
{
    return store_->begin(transaction);
}

Outcome Attachment::beginUpdate(WriteTransaction &transaction, std::size_t bytesToStore)
{
    return store_->begin(transaction, bytesToStore, slot_);
}

Outcome Attachment::endUpdate(WriteTransaction &transaction, const Outcome &answer)
{
    return store_->end(transaction, answer);
}

Outcome Attachment::grow(std::size_t bytesToStore)
{
    return store_->grow(bytesToStore);
}

// Once a call has answered that the connection is broken, it is.
Outcome Attachment::noteLoss(const Outcome &outcome)
{
    if (outcome.Reason == MQRC_CONNECTION_BROKEN && state() != State::Ended) lost_ = true;
    return outcome;
}

Outcome Attachment::harden(Ticket ticket)
{
    return noteLoss(store_->harden(slot_, ticket));
}

Outcome Attachment::commit(const Unit &unit)
{
    return noteLoss(store_->commit(slot_, unit));
}

Outcome Attachment::backOut(const Unit &unit)
{
    // Destructors back out.
    return withMemory([&] { return store_->backOut(slot_, unit); });
}

std::uint32_t Attachment::observe(QueueId queue) const
{
    return store_->cellOf(queue).word.load(std::memory_order_acquire);
}

bool Attachment::waitForMessage(QueueId queue, std::uint32_t observed, Deadline deadline)
{
    return store_->waitForMessage(slot_, queue, observed, deadline);
}

bool Attachment::releaseDead()
{
    return store_->releaseDead();
}

} // namespace mqrig::qmgr::store
