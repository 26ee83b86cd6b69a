#include "qmgr/store/store.h"

#include <cerrno>
#include <cstdio>
#include <sys/stat.h>
#include <utility>

#include "qmgr/store/paths.h"
#include "qmgr/store/process.h"
#include "qmgr/store/seams.h"
#include "qmgr/store/system_error.h"
#include "qmgr/store/transaction_scratch.h"

namespace mqrig::qmgr::store {

namespace {

// Why the lock file cannot be opened: the queue manager may just have been deleted.
Outcome withoutLocks(const std::filesystem::path &folder, int error)
{
    const Outcome there = Store::exists(folder);
    return there.failed() ? there : outcomeOfSystem(error);
}

} // namespace

Outcome Store::exists(const std::filesystem::path &folder)
{
    struct stat status {};
    if (stat((folder / "log.db").c_str(), &status) == 0) return success();
    if (errno == ENOENT || errno == ENOTDIR || errno == ENAMETOOLONG) return failure(MQRC_Q_MGR_NAME_ERROR);
    return outcomeOfSystem(errno);
}

Store::Opened Store::open(const std::filesystem::path &folder)
{
    Process &process = thisProcess();
    const std::scoped_lock lock(process.mutex);
    auto &known = process.stores[folder.string()];
    if (known && known->control().state != State::Ended && known->control_->isStillAt(folder / "live")) {
        return {success(), known};
    }
    known.reset();
    if (const Outcome there = exists(folder); there.failed()) return {there, nullptr};
    const auto [locks, error] = LockFile::open(folder / "locks");
    if (locks == nullptr) return {withoutLocks(folder, error), nullptr};
    const HeldLock start(*locks, lockBytes::start);
    if (!start.held()) return {failure(MQRC_RESOURCE_PROBLEM), nullptr};
    Opened opened = openUnderLock(folder, *locks);
    if (!opened.outcome.failed()) process.stores[folder.string()] = opened.store;
    return opened;
}

void Store::forgetEnded(const std::shared_ptr<Store> &store)
{
    if (store->control().state != State::Ended) return;
    Process &process = thisProcess();
    const std::scoped_lock lock(process.mutex);
    const auto known = process.stores.find(store->folder_.native()); // called by destructors: no copy
    if (known != process.stores.end() && known->second == store) process.stores.erase(known);
}

Store::Opened Store::openUnderLock(const std::filesystem::path &folder, LockFile &locks)
{
    // Asked again: it may have been deleted while we waited.
    if (const Outcome there = exists(folder); there.failed()) return {there, nullptr};
    int error = 0;
    auto control = ControlMapping::open(folder / "live", error);
    if (error != 0) return {outcomeOfSystem(error), nullptr};
    if (control) {
        if ((*control)->state == State::Ended) return {failure(MQRC_Q_MGR_NOT_AVAILABLE), nullptr};
        Opened opened = openLife(folder, locks, std::move(control));
        if (opened.outcome.Reason != MQRC_UNEXPECTED_ERROR) return opened;
        // The live state's file is damaged: that life is over, and the log is where the next one comes from.
    }
    auto [outcome, log] = LogDatabase::open(folder / "log.db");
    if (outcome.failed()) return {outcome, nullptr};
    const auto row = log->queueManager();
    if (row.outcome.failed()) return {row.outcome, nullptr};
    // Whoever was connected when the machine went down is gone: a quiesce is complete.
    if (row.state != State::Running) return {failure(MQRC_Q_MGR_NOT_AVAILABLE), nullptr};
    return beginLife(folder, locks, *log);
}

Store::Opened Store::openLife(const std::filesystem::path &folder, LockFile &locks,
                              std::unique_ptr<ControlMapping> control, Damage damage)
{
    const std::filesystem::path live = folder / "live";
    std::shared_ptr<Store> store(new Store(folder, locks));
    store->name_ = nameOfFolder(folder.filename().string()).value_or(std::string());
    store->control_ = std::move(control);
    const auto [slotLocks, error] = LockFile::open(live / "slots");
    if (slotLocks == nullptr) return {outcomeOfSystem(error), nullptr};
    store->slotLocks_ = slotLocks;
    if (const Outcome sound = store->control().stamp.ready == 1 ? store->soundness() : success(); sound.failed()) {
        if (sound.Reason == MQRC_UNEXPECTED_ERROR && damage == Damage::EndsLife) store->endLife();
        return {sound, nullptr};
    }
    const Opening opening(*store);
    auto opened = LiveEnvironment::open(live, store->control(), locks);
    if (opened.outcome.Reason == MQRC_UNEXPECTED_ERROR && damage == Damage::EndsLife) store->endLife();
    if (opened.outcome.failed()) return {opened.outcome, nullptr};
    store->live_ = std::move(opened.environment);
    return {success(), store};
}

StateOfQueueManager Store::look(const std::filesystem::path &folder)
{
    if (const Outcome there = exists(folder); there.failed()) return {there};
    int error = 0;
    if (const auto control = ControlMapping::open(folder / "live", error); control)
        return {success(), (*control)->state};
    if (error != 0) return {outcomeOfSystem(error)};
    Process &process = thisProcess();
    const std::scoped_lock lock(process.mutex);
    const auto [locks, fault] = LockFile::open(folder / "locks");
    if (locks == nullptr) return {withoutLocks(folder, fault)};
    const HeldLock start(*locks, lockBytes::start);
    if (!start.held()) return {failure(MQRC_RESOURCE_PROBLEM)};
    return stateInLog(folder);
}

// Start-up lock held, and there is no valid life.
StateOfQueueManager Store::stateInLog(const std::filesystem::path &folder)
{
    auto [outcome, log] = LogDatabase::open(folder / "log.db");
    if (outcome.failed()) return {outcome};
    const auto row = log->queueManager();
    return {row.outcome, row.state == State::Running ? State::Running : State::Ended};
}

Outcome Store::bury(const std::filesystem::path &folder, const std::filesystem::path &grave)
{
    Process &process = thisProcess();
    const std::scoped_lock lock(process.mutex);
    const auto [locks, fault] = LockFile::open(folder / "locks");
    if (locks == nullptr) return withoutLocks(folder, fault);
    const HeldLock start(*locks, lockBytes::start);
    if (!start.held()) return failure(MQRC_RESOURCE_PROBLEM);
    if (const Outcome there = exists(folder); there.failed()) return there; // somebody else has done it
    int error = 0;
    const auto control = ControlMapping::open(folder / "live", error);
    if (error != 0) return outcomeOfSystem(error);
    const auto [outcome, state] = control ? StateOfQueueManager{success(), (*control)->state} : stateInLog(folder);
    if (outcome.failed()) return outcome;
    if (state != State::Ended) return failure(MQRC_Q_MGR_ACTIVE);
    if (rename(folder.c_str(), grave.c_str()) != 0) return outcomeOfSystem(errno);
    process.stores.erase(folder.string());
    return success();
}

Outcome Store::start(const std::filesystem::path &folder)
{
    if (const Outcome there = exists(folder); there.failed()) return there;
    Process &process = thisProcess();
    const std::scoped_lock lock(process.mutex);
    const auto [locks, error] = LockFile::open(folder / "locks");
    if (locks == nullptr) return withoutLocks(folder, error);
    const HeldLock start(*locks, lockBytes::start);
    if (!start.held()) return failure(MQRC_RESOURCE_PROBLEM);
    if (const Outcome there = exists(folder); there.failed()) return there; // it may have been deleted while we waited
    int fault = 0;
    const auto control = ControlMapping::open(folder / "live", fault);
    if (fault != 0) return outcomeOfSystem(fault);
    if (control && (*control)->state == State::Quiescing) return failure(MQRC_Q_MGR_QUIESCING);
    if (control && (*control)->state == State::Running) return failure(MQRC_Q_MGR_ACTIVE);
    auto [outcome, log] = LogDatabase::open(folder / "log.db");
    if (outcome.failed()) return outcome;
    const auto row = log->queueManager();
    if (row.outcome.failed()) return row.outcome;
    // Running in the log without a life: the machine went down, or the life's log failed. Both start afresh here; in
    // the first case the first connection would have done it too.
    if (row.state == State::Running && !control) return failure(MQRC_Q_MGR_ACTIVE);
    const Opened begun = beginLife(folder, *locks, *log);
    if (!begun.outcome.failed()) process.stores[folder.string()] = begun.store;
    return begun.outcome;
}

// The log is as it was; the next start makes the live state anew from it.
Outcome Store::endDamagedLife()
{
    if (control().state != State::Ended) endLife();
    return failure(MQRC_CONNECTION_BROKEN);
}

Outcome Store::begin(ReadTransaction &transaction)
{
    if (live_->damaged()) return endDamagedLife();
    if (const Outcome begun = live_->beginRead(transaction.txn_); begun.failed()) return begun;
    transaction.environment_ = live_.get();
    transaction.records_ = live_->records();
    return success();
}

Outcome Store::begin(WriteTransaction &transaction, std::size_t room, std::uint32_t slot)
{
    if (live_->damaged()) return endDamagedLife();
    if (const Outcome begun = live_->beginWrite(transaction.txn_, room); begun.failed()) return begun;
    transaction.environment_ = live_.get();
    transaction.records_ = live_->records();
    transaction.scratch_ = &TransactionScratch::ofThisThread();
    transaction.scratch_->clear();
    transaction.slot_ = slot;
    transaction.connection_ = &control().slots[slot];
    return success();
}

Outcome Store::end(WriteTransaction &transaction, const Outcome &answer)
{
    MDB_txn *const txn = std::exchange(transaction.txn_, nullptr);
    if (!answer.failed() && !transaction.outcome().failed()) {
        // flush() works on the transaction as long as it is one.
        transaction.txn_ = txn;
        transaction.flush();
        transaction.txn_ = nullptr;
    }
    if (answer.failed() || transaction.outcome().failed()) {
        live_->abortWrite(txn);
        return transaction.outcome().failed() ? transaction.outcome() : answer;
    }
    noteRequests(transaction.scratch_->wake);
    const bool prepared = !transaction.scratch_->steps.empty() && transaction.scratch_->unitKind != UnitKind::Note;
    if (const int code = live_->commitWrite(txn); code != MDB_SUCCESS) {
        transaction.sticks(code);
        return transaction.outcome();
    }
    // What is prepared is not visible yet; but should its owner die, a sleeper has to know that there is something to
    // look after (see waiting.cpp).
    for (const QueueId queue : transaction.scratch_->wake) {
        if (prepared) {
            wakeOneGetter(queue);
        } else {
            wakeGetters(queue);
        }
    }
    return answer;
}

} // namespace mqrig::qmgr::store
