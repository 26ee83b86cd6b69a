// Units of work: prepare, log, flip.
//
// A unit of work is puts, which its connection kept in its own memory, and gets, which it locked in the live state.
// Without anything persistent in it, one transaction of the live state makes all of it visible: that is atomic, needs
// no disk and waits for nobody but the live state's one writer. Anything persistent takes three steps:
//
//   prepare  One transaction of the live state stores the puts with a Hidden hold, turns the holds of the gets from
//            Got into Prepared, and writes the unit's steps under its ticket, the number of that very transaction.
//   log      Whoever gets the log lock copies all prepared units into one transaction of the log, which also stores
//            the highest ticket of them, and commits it: one sync of the disk for all.
//   flip     One transaction of the live state, for all units up to that ticket: removes the holds of the puts,
//            erases what was got, erases the units. Then the owners answer MQCC_OK.
//
// Why this is right:
//
// 1. Nothing is seen or acknowledged before it is on disk. Hidden messages and those Prepared for a get are passed
//    over by every search; owners wait for the flip, and the flip follows the sync.
// 2. One order. Tickets are numbers of write transactions, so they order units as the live state saw them; the log
//    copies every prepared unit that its snapshot shows, and a snapshot that shows ticket t shows all below. So the
//    log at any moment equals all units up to some ticket: "in the log" is "ticket <= highest logged".
// 3. A process killed at any point leaves a state that the next holder of the log lock finishes. The mutex is robust:
//    the kernel tells the next holder that its owner died. It then reads the highest logged ticket:
//      killed in prepare:  LMDB drops the transaction: as if MQCMIT had not been called; the slot dies, the locks go.
//      killed after it:    unit prepared, ticket above the logged one. It is logged with the next batch. The caller
//                          never got an answer, so either end is right; and all of the unit goes that way.
//      killed in log:      SQLite drops or keeps the whole transaction. Kept: the ticket says so, it is flipped.
//                          Dropped: as before.
//      killed in flip:     LMDB drops or keeps it as a whole. Dropped: flipped again. Kept: the unit is gone, and
//                          flipping up to the logged ticket finds nothing to do.
//      killed after it:    getters not woken: they saw held messages when they last looked, so they look again within
//                          500 ms (waiting.cpp).
//    Flipping is idempotent because a unit and its effects go in one transaction.
// 4. Holds of prepared units are not the slot's: the clean-up of a dead connection releases Got holds only. Otherwise
//    a message could be logged as got and got once more.
// 5. A log that takes too little (full disk) is known not to have taken anything. The units are then tried one by
//    one, so that a get that frees space does not fail with a put that needs it; who fails is undone in the live
//    state, is told by a mark in its slot, and answers MQRC_BACKED_OUT. The mark is set before the undoing
//    transaction: if the process dies between, the unit is still prepared, and is tried again without the mark.
// 6. A log whose sync has failed may or may not have it on disk, and what later syncs say cannot be trusted. Its use
//    ends with the life: all connections answer MQRC_CONNECTION_BROKEN, and the next start believes what is there.
// 7. Two lives never write to one log at a time: every log transaction checks that the life is the present one.
//
// Non-persistent work never takes the log lock. Under LMDB's writer lock nobody waits for a disk.

#include "qmgr/store/futex.h"
#include "qmgr/store/seams.h"
#include "qmgr/store/store.h"
#include "qmgr/store/transaction_scratch.h"
#include "qmgr/store/transaction_walk.h"

#include <algorithm>
#include <cerrno>

namespace mqrig::qmgr::store {

struct Store::PreparedUnit {
    Ticket ticket = 0;
    UnitRecord unit{};
    std::vector<UnitStep> steps;
};

namespace {

constexpr std::chrono::milliseconds killedHolderInterval{50};

MessageKey keyOf(const UnitStep &step)
{
    return {.queue = step.queue, .order = static_cast<std::uint8_t>(step.order), .sequence = step.sequence};
}

// A unit as it is stored; nothing if the bytes are none.
bool readUnit(const MDB_val &value, UnitRecord &unit, std::vector<UnitStep> &steps)
{
    const auto record = recordIn<UnitRecord>(value);
    if (!record) return false;
    const std::size_t bytes = value.mv_size - sizeof(UnitRecord);
    if (record->slot >= maxSlots || record->steps != bytes / sizeof(UnitStep) || bytes % sizeof(UnitStep) != 0)
        return false;
    unit = *record;
    steps.resize(record->steps);
    std::memcpy(steps.data(), static_cast<const std::byte *>(value.mv_data) + sizeof(UnitRecord),
                steps.size() * sizeof(UnitStep));
    return true;
}

bool leftTheLogAsItWas(const Outcome &outcome)
{
    return outcome.Reason == MQRC_STORAGE_NOT_AVAILABLE || outcome.Reason == MQRC_RESOURCE_PROBLEM ||
           outcome.Reason == MQRC_NOT_AUTHORIZED;
}

// A flip or an undoing decides what owners are told. It needs no space that is not there and fails for next to
// nothing; if it keeps failing for another reason than that this process lacks memory or the like, nothing true can be
// said any more, and the life has to end.
template <class Step>
Outcome insistOn(Step &&step)
{
    Outcome outcome = withMemory(step);
    for (int again = 0; outcome.failed() && again < 3; ++again)
        outcome = withMemory(step);
    return !outcome.failed() || leftTheLogAsItWas(outcome) ? outcome : failure(MQRC_UNEXPECTED_ERROR);
}

// About what a unit adds to the live state, its own steps and the pages of its flip included.
std::size_t roomOf(const Unit &unit)
{
    if (unit.puts.empty()) return 0;
    std::size_t bytes = unit.gets.size() * 256;
    for (const NewMessage &put : unit.puts)
        bytes += put.body.size() + 2 * sizeof(MessageHeader);
    return bytes;
}

} // namespace

LogLock::LogLock(Store &store, Busy busy) : store_(store), change_(store)
{
    ControlBlock &control = store.control();
    int code = EAGAIN;
    for (int tries = 0; code == EAGAIN && tries < 3; ++tries)
        code = busy == Busy::Wait ? pthread_mutex_lock(&control.logLock) : pthread_mutex_trylock(&control.logLock);
    busy_ = code == EBUSY;
    if (busy_) return;
    if (code == EOWNERDEAD) {
        // Noted before the mutex is declared whole: should we die too, the next one knows.
        control.logUnfinished = 1;
        pthread_mutex_consistent(&control.logLock);
        reached(Step::LogTakenOver);
    } else if (code != 0) {
        outcome_ = failure(MQRC_RESOURCE_PROBLEM);
        return;
    }
    held_ = true;
    if (control.state == State::Ended) {
        outcome_ = failure(MQRC_CONNECTION_BROKEN);
        return;
    }
    // Nothing is thrown from here: the lock would stay with nobody to give it up.
    outcome_ = withMemory([&] {
        const Outcome opened = store.openLog();
        return opened.failed() || control.logUnfinished == 0 ? opened : store.finishLogged();
    });
}

LogLock::~LogLock()
{
    if (!held_) return;
    ControlBlock &control = store_.control();
    pthread_mutex_unlock(&control.logLock);
    control.logTurns.fetch_add(1);
    if (control.logWaiters != 0) futexWake(&control.logTurns);
}

Outcome Store::openLog()
{
    if (log_ && !log_->isStale()) return success();
    log_.reset();
    auto [outcome, log] = LogDatabase::open(folder_ / "log.db");
    log_ = std::move(log);
    return outcome;
}

// Brings to the live state what the log has and a killed or failed holder of the log lock did not.
Outcome Store::finishLogged()
{
    const auto row = log_->queueManager();
    if (row.outcome.failed()) return row.outcome;
    if (row.generation != control().stamp.generation) {
        endLife();
        return failure(MQRC_CONNECTION_BROKEN);
    }
    if (row.state == State::Ended) { // by an `end` that died between the log and the control block
        endLife();
        return failure(MQRC_CONNECTION_BROKEN);
    }
    if (row.state == State::Quiescing) control().state = State::Quiescing;
    if (const Outcome reloaded = reloadDefinitions(); reloaded.failed()) return reloaded;
    return judgeLog(insistOn([&] { return flip(row.ticket); }));
}

std::vector<Store::PreparedUnit> Store::preparedUnits(Outcome &outcome)
{
    std::vector<PreparedUnit> units;
    outcome = read([&](ReadTransaction &transaction) {
        transaction.forEach(LiveKey::units(), [&](const MDB_val &key, const MDB_val &value) {
            PreparedUnit unit;
            unit.ticket = numberAtEnd<Ticket>(key);
            if (readUnit(value, unit.unit, unit.steps)) units.push_back(std::move(unit));
        });
        return success();
    });
    return units;
}

bool Store::anyPrepared()
{
    Outcome outcome;
    const auto units = preparedUnits(outcome);
    return std::any_of(units.begin(), units.end(),
                       [](const PreparedUnit &unit) { return unit.unit.kind != UnitKind::Note; });
}

// One transaction of the log with these units, in ticket order. On disk when it answers success.
Outcome Store::logUnits(std::span<const PreparedUnit> units)
{
    if (const Outcome begun = log_->begin(); begun.failed()) return begun;
    const auto copy = [&](ReadTransaction &transaction) {
        std::uint64_t messages = 0;
        std::uint64_t bytes = 0;
        for (const PreparedUnit &unit : units) {
            for (const UnitStep &step : unit.steps) {
                if (step.kind != StepKind::Put || step.persistent == 0) continue;
                messages += 1;
                bytes += sizeof(MessageHeader) + transaction.body(keyOf(step)).size();
            }
        }
        if (messages > 0) log_->makeRoom(messages, bytes);
        for (const PreparedUnit &unit : units) {
            for (const UnitStep &step : unit.steps) {
                if (step.persistent == 0) continue;
                const MessageKey key = keyOf(step);
                switch (step.kind) {
                case StepKind::Put:
                    // Not there any more: its queue has been deleted meanwhile.
                    if (const auto header = transaction.findHeld(key)) {
                        log_->insertMessage(key, *header, transaction.body(key));
                    }
                    break;
                case StepKind::Get:
                case StepKind::Forget:
                    log_->deleteMessage(key.sequence);
                    break;
                case StepKind::Backout:
                    log_->setBackoutCount(key.sequence, step.backoutCount);
                    break;
                }
            }
        }
        return success();
    };
    if (const Outcome copied = withMemory([&] { return read(copy); }); copied.failed()) {
        log_->rollback();
        return copied;
    }
    // A mark of a process that died before it could undo the unit: the unit has its second chance here.
    for (const PreparedUnit &unit : units) {
        Ticket stale = unit.ticket;
        control().slots[unit.unit.slot].undone.compare_exchange_strong(stale, 0);
    }
    log_->advance(control().stamp.generation, units.back().ticket);
    // From here until the flip the log is ahead of the live state. Noted before it is, for whatever may go wrong.
    const std::uint32_t before = control().logUnfinished.exchange(1);
    reached(Step::UnitLogging);
    const Outcome committed = log_->commit();
    if (leftTheLogAsItWas(committed)) control().logUnfinished = before;
    return committed;
}

// Log lock held. Logs and flips everything that is prepared; undoes what the log cannot take.
Outcome Store::logPrepared()
{
    std::vector<PreparedUnit> units;
    Outcome outcome = withMemory([&] {
        Outcome found;
        units = preparedUnits(found);
        return found;
    });
    if (outcome.failed() || units.empty()) return outcome;
    outcome = logUnits(units);
    if (!outcome.failed()) {
        reached(Step::UnitLogged);
        return flipLogged(units.back().ticket);
    }
    if (!leftTheLogAsItWas(outcome)) return judgeLog(outcome);
    for (const PreparedUnit &unit : units) {
        if (units.size() > 1) outcome = logUnits({&unit, 1});
        if (!outcome.failed()) {
            outcome = flipLogged(unit.ticket);
        } else if (leftTheLogAsItWas(outcome)) {
            outcome = unit.unit.kind == UnitKind::Note ? success() : insistOn([&] { return undo(unit); });
        }
        if (outcome.failed()) break;
    }
    return judgeLog(outcome);
}

// Log lock held. The flip of what is in the log.
Outcome Store::flipLogged(Ticket upTo)
{
    return broughtToLive(insistOn([&] { return flip(upTo); }));
}

// Log lock held. What became of a step that brings to the live state what is in the log already. It has happened, and
// its owner is told so. Where this process cannot show it for want of memory or the like, it is the first thing that
// the next holder of the log lock does.
Outcome Store::broughtToLive(const Outcome &outcome)
{
    if (!outcome.failed() || !leftTheLogAsItWas(outcome)) return judgeLog(outcome);
    control().logUnfinished = liveBehind;
    return success();
}

// Log lock held. What a failed log transaction means to its caller: if it cannot be known what the log holds, or the
// log is another life's by now, this life is over.
Outcome Store::judgeLog(const Outcome &outcome)
{
    if (!outcome.failed() || leftTheLogAsItWas(outcome)) return outcome;
    endLife();
    return failure(MQRC_CONNECTION_BROKEN);
}

void Store::endLife()
{
    control().state = State::Ended;
    wakeEverybody();
}

// Makes every prepared unit up to the ticket visible and erases its gets.
Outcome Store::flip(Ticket upTo)
{
    const Outcome flipped = update(0, 0, [&](WriteTransaction &transaction) {
        UnitRecord unit{};
        std::vector<UnitStep> steps;
        for (;;) {
            Ticket ticket = 0;
            bool readable = false;
            transaction.forFirst(LiveKey::units(), [&](const MDB_val &key, const MDB_val &value) {
                ticket = numberAtEnd<Ticket>(key);
                readable = readUnit(value, unit, steps);
            });
            if (ticket == 0 || ticket > upTo) {
                reached(Step::UnitFlipping);
                return success();
            }
            if (readable) {
                for (const UnitStep &step : steps) {
                    const MessageKey key = keyOf(step);
                    if (step.kind == StepKind::Put) {
                        transaction.clearHold(key);
                        transaction.wakeGetters(key.queue);
                    } else if (step.kind == StepKind::Get) {
                        transaction.eraseMessage(key);
                        transaction.clearHold(key);
                    }
                }
            }
            transaction.erase(LiveKey::unit(ticket));
        }
    });
    if (flipped.failed()) return flipped;
    control().logUnfinished = 0;
    for (Ticket before = control().flipped; before < upTo;) {
        if (control().flipped.compare_exchange_weak(before, upTo)) break;
    }
    reached(Step::UnitFlipped);
    return success();
}

// Takes a prepared unit back that could not be logged: as a backout, or as if a single operation had not been.
Outcome Store::undo(const PreparedUnit &unit)
{
    ConnectionSlot &owner = control().slots[unit.unit.slot];
    if (owner.connection == unit.unit.connection) owner.undone = unit.ticket;
    reached(Step::UnitUndoing);
    return update(0, unit.unit.slot, [&](WriteTransaction &transaction) {
        for (const UnitStep &step : unit.steps) {
            const MessageKey key = keyOf(step);
            if (step.kind == StepKind::Put) {
                transaction.eraseMessage(key);
                transaction.clearHold(key);
                transaction.counters(key.queue).depth -= 1;
            } else if (step.kind == StepKind::Get && unit.unit.kind == UnitKind::Unit) {
                transaction.returnToQueue(key);
            } else if (step.kind == StepKind::Get) {
                transaction.clearHold(key);
                transaction.counters(key.queue).addToDepth();
                transaction.wakeGetters(key.queue);
            }
        }
        transaction.erase(LiveKey::unit(unit.ticket));
        return success();
    });
}

Outcome Store::finishPrepared()
{
    const LogLock lock(*this);
    return lock.outcome().failed() ? lock.outcome() : logPrepared();
}

// Does the log's work for everybody, the owner of the ticket among them; its outcome.
template <class OwnOutcome>
Outcome Store::logOwn(const LogLock &lock, Ticket ticket, OwnOutcome &&outcome)
{
    ControlBlock &block = control();
    if (block.flipped >= ticket) return outcome(); // the holder before us has done it
    Outcome logged = lock.outcome();
    if (!logged.failed()) logged = logPrepared();
    if (!logged.failed()) return outcome();
    // The log could not even be tried (no descriptor for it, no memory). What is told must come true: the unit is
    // undone if it is certain that the log does not have it; otherwise it is for somebody else to finish.
    std::vector<PreparedUnit> units;
    Outcome found = withMemory([&] {
        Outcome looked;
        units = preparedUnits(looked);
        return looked;
    });
    const auto own = std::find_if(units.begin(), units.end(), [&](const auto &unit) { return unit.ticket == ticket; });
    if (!found.failed() && own == units.end()) return outcome();
    const bool undoable = lock.held() && block.logUnfinished == 0 && block.state != State::Ended;
    if (found.failed() || !undoable || withMemory([&] { return undo(*own); }).failed())
        return failure(MQRC_CONNECTION_BROKEN);
    return logged;
}

Outcome Store::harden(std::uint32_t slot, Ticket ticket)
{
    if (ticket == 0) return success();
    reached(Step::UnitPrepared);
    ControlBlock &block = control();
    const auto outcome = [&] {
        return block.slots[slot].undone == ticket ? failure(MQRC_STORAGE_NOT_AVAILABLE) : success();
    };
    while (block.flipped < ticket) {
        const std::uint32_t seen = block.logTurns;
        const LogLock lock(*this, LogLock::Busy::GiveUp);
        if (!lock.busy()) return logOwn(lock, ticket, outcome);
        // Owners do not queue up for the lock: they would take it one after the other only to find their unit done,
        // and the next batch would wait for all of them. They sleep until its holder is through, wake together, and
        // one of those that are left over becomes the next holder. A holder that is killed wakes nobody.
        block.logWaiters.fetch_add(1);
        futexWait(&block.logTurns, seen, std::chrono::steady_clock::now() + killedHolderInterval);
        block.logWaiters.fetch_sub(1);
    }
    return outcome();
}

Outcome Store::commit(std::uint32_t slot, const Unit &unit)
{
    if (unit.puts.empty() && unit.gets.empty()) return success();
    const bool persistent =
        std::any_of(unit.puts.begin(), unit.puts.end(), [](const auto &put) { return isPersistent(put.header); }) ||
        std::any_of(unit.gets.begin(), unit.gets.end(), [](const auto &get) { return get.persistent; });
    Ticket ticket = 0;
    Outcome outcome = update(roomOf(unit), slot, [&](WriteTransaction &transaction) {
        ticket = persistent ? transaction.ticket() : 0;
        for (const NewMessage &put : unit.puts) {
            const MessageKey &key = put.key;
            if (!transaction.exists(key.queue)) {
                if (!isTemporary(key.queue)) return failure(MQRC_Q_DELETED);
                transaction.unbookPut(key.queue); // the message would have gone with its queue
                continue;
            }
            transaction.insertMessage(put);
            QueueStatus &status = transaction.counters(key.queue);
            status.uncommitted -= 1;
            transaction.booking(key.queue).puts -= 1;
            transaction.wakeGetters(key.queue);
            if (!persistent) continue;
            transaction.setHold(key, {.kind = HoldKind::Hidden, .slot = slot, .ticket = ticket});
            transaction.addStep(UnitKind::Unit, StepKind::Put, key, isPersistent(put.header), 0);
        }
        for (const TakenMessage &get : unit.gets) {
            const auto hold = transaction.holdOf(get.key);
            if (!hold && isTemporary(get.key.queue)) continue; // the queue has gone, and its messages with it
            if (!hold || hold->kind != HoldKind::Got || hold->slot != slot) return failure(MQRC_BACKED_OUT);
            if (persistent) {
                transaction.changeHold(get.key, {.kind = HoldKind::Prepared, .slot = slot, .ticket = ticket});
                transaction.addStep(UnitKind::Unit, StepKind::Get, get.key, get.persistent, 0);
            } else {
                transaction.clearHold(get.key);
                transaction.eraseMessage(get.key);
            }
        }
        if (persistent) reached(Step::UnitPreparing);
        return success();
    });
    if (outcome.failed()) {
        if (const Outcome undone = backOut(slot, unit); undone.failed()) return undone;
        return outcome.Reason == MQRC_CONNECTION_BROKEN ? outcome : warning(MQRC_BACKED_OUT);
    }
    control().slots[slot].holds.fetch_sub(static_cast<std::uint32_t>(unit.gets.size()));
    outcome = harden(slot, ticket);
    return outcome.failed() && outcome.Reason != MQRC_CONNECTION_BROKEN ? warning(MQRC_BACKED_OUT) : outcome;
}

Outcome Store::backOut(std::uint32_t slot, const Unit &unit)
{
    if (unit.puts.empty() && unit.gets.empty()) return success();
    std::uint32_t returned = 0;
    const Outcome outcome = update(0, slot, [&](WriteTransaction &transaction) {
        returned = 0;
        for (const NewMessage &put : unit.puts)
            transaction.unbookPut(put.key.queue);
        for (const TakenMessage &get : unit.gets) {
            const auto hold = transaction.holdOf(get.key);
            if (!hold || hold->kind != HoldKind::Got || hold->slot != slot) continue;
            transaction.returnToQueue(get.key);
            ++returned;
        }
        reached(Step::UnitReturning);
        return success();
    });
    reached(Step::UnitReturned);
    if (!outcome.failed()) control().slots[slot].holds.fetch_sub(returned);
    return outcome;
}

} // namespace mqrig::qmgr::store
