// Object definitions: durable in the log, mirrored in the live state, where every look-up is served.
//
// Changes are made under the log lock, in the log first. A holder that dies between the two leaves the next one to
// read all definitions from the log again (reloadDefinitions). So does one that cannot bring its change to the live
// state; it has happened all the same, so who looks for a definition sees to it first.
//
// What hangs on a deleted queue is swept out in several transactions. Its counters, marked as deleted, go last: whoever
// reads the definitions again finds by them what somebody else has not swept out.

#include <algorithm>
#include <cstring>
#include <map>
#include <new>

#include "qmgr/store/seams.h"
#include "qmgr/store/store.h"
#include "qmgr/store/transaction_scratch.h"
#include "qmgr/store/transaction_walk.h"

namespace mqrig::qmgr::store {

namespace {

constexpr std::size_t keyHead = 1 + sizeof(MQLONG);

// A look-up reads from memory and fails only for want of it, or of another resource of the process.
void mustHaveRead(const Outcome &outcome)
{
    if (outcome.failed()) throw std::bad_alloc();
}

bool isName(std::string_view name)
{
    return !name.empty() && name.size() <= MQ_OBJECT_NAME_LENGTH;
}

Definition definitionIn(const MDB_val &key, const MDB_val &value)
{
    Definition definition;
    const auto *name = static_cast<const char *>(key.mv_data);
    std::uint32_t type = 0;
    std::memcpy(&type, name + 1, sizeof type);
    definition.type = static_cast<MQLONG>(__builtin_bswap32(type));
    definition.name.assign(name + keyHead, key.mv_size - keyHead);
    if (value.mv_size >= sizeof definition.queue) {
        const auto *bytes = static_cast<const char *>(value.mv_data);
        std::memcpy(&definition.queue, bytes, sizeof definition.queue);
        definition.bytes.assign(bytes + sizeof definition.queue, value.mv_size - sizeof definition.queue);
    }
    return definition;
}

} // namespace

// Stores the definition in the live state. A queue also gets its counters, unless it has them.
void Store::putDefinition(WriteTransaction &transaction, const Definition &definition)
{
    std::string value(reinterpret_cast<const char *>(&definition.queue), sizeof definition.queue);
    value += definition.bytes;
    transaction.store(LiveKey::definition(definition.type, definition.name), value.data(), value.size());
    if (definition.queue != 0) transaction.createCounters(definition.queue);
}

void Store::definitionsChanged(MQLONG type)
{
    (type == subscriptions ? control().subscriptionVersion : control().definitionVersion).fetch_add(1);
}

// No lock held.
void Store::catchUp()
{
    if (control().logUnfinished == liveBehind) mustHaveRead(finishPrepared());
}

std::optional<Definition> Store::findDefinition(MQLONG type, std::string_view name)
{
    catchUp();
    return lookUp(type, name);
}

std::vector<Definition> Store::definitions(MQLONG type)
{
    catchUp();
    return lookUpAll(type);
}

std::optional<Definition> Store::lookUp(MQLONG type, std::string_view name)
{
    std::optional<Definition> found;
    if (!isName(name)) return found;
    const Outcome outcome = read([&](ReadTransaction &transaction) {
        const LiveKey key = LiveKey::definition(type, name);
        const auto value = transaction.get(key);
        if (value.data != nullptr) {
            found = definitionIn(valueOf(key), {value.size, const_cast<void *>(value.data)}); // NOLINT
        }
        return success();
    });
    mustHaveRead(outcome);
    return found;
}

std::vector<Definition> Store::lookUpAll(MQLONG type)
{
    std::vector<Definition> all;
    const Outcome outcome = read([&](ReadTransaction &transaction) {
        const LiveKey from = type == MQOT_ALL ? LiveKey::definitions() : LiveKey::definitionsOf(type);
        transaction.forEach(from,
                            [&](const MDB_val &key, const MDB_val &value) { all.push_back(definitionIn(key, value)); });
        return success();
    });
    mustHaveRead(outcome);
    return all;
}

Outcome Store::define(Definition &definition)
{
    if (!isName(definition.name)) return failure(MQRC_OBJECT_NAME_ERROR);
    const LogLock lock(*this);
    if (lock.outcome().failed()) return lock.outcome();
    if (lookUp(definition.type, definition.name)) return failure(MQRC_OBJECT_ALREADY_EXISTS);
    if (const Outcome room = roomFor(definition); room.failed()) return room;
    if (const Outcome begun = log_->begin(); begun.failed()) return begun;
    definition.queue = hasCounters(definition.type) ? log_->takeQueueId() : 0;
    return logAndStore(definition);
}

Outcome Store::alter(const Definition &definition, std::optional<std::string_view> seen)
{
    if (!isName(definition.name)) return failure(MQRC_OBJECT_NAME_ERROR);
    const LogLock lock(*this);
    if (lock.outcome().failed()) return lock.outcome();
    const auto known = lookUp(definition.type, definition.name);
    if (!known) return failure(MQRC_UNKNOWN_OBJECT_NAME);
    if (seen && *seen != known->bytes) return failure(MQRC_OBJECT_CHANGED);
    Definition changed = definition;
    changed.queue = known->queue;
    if (const Outcome room = roomFor(definition); room.failed()) return room;
    if (isTemporary(changed.queue)) return storeLive(changed);
    if (const Outcome begun = log_->begin(); begun.failed()) return begun;
    return logAndStore(changed);
}

// Ends the log transaction that was begun with this definition, and brings it to the live state.
Outcome Store::logAndStore(const Definition &definition)
{
    log_->storeDefinition(definition);
    log_->advance(control().stamp.generation, 0);
    if (const Outcome logged = log_->commit(); logged.failed()) return judgeLog(logged);
    reached(Step::DefinitionLogged);
    return broughtToLive(withMemory([&] { return storeLive(definition); }));
}

// Whether the live state has room for a definition: asked before the log has it, for then there is no way back.
Outcome Store::roomFor(const Definition &definition)
{
    return update(definition.bytes.size() + 4096, 0, [](WriteTransaction &) { return success(); });
}

// Brings a definition to the live state and tells everybody.
Outcome Store::storeLive(const Definition &definition)
{
    const Outcome stored = update(0, 0, [&](WriteTransaction &transaction) {
        // A temporary queue may go at any moment, and does not come to life again.
        if (isTemporary(definition.queue) && !transaction.exists(definition.queue))
            return failure(MQRC_UNKNOWN_OBJECT_NAME);
        putDefinition(transaction, definition);
        return success();
    });
    definitionsChanged(definition.type);
    // A getter that sleeps looks again: its queue may have been inhibited.
    if (definition.queue != 0) wakeGetters(definition.queue);
    return stored;
}

// Three steps, so that the disk is not waited for under the live state's lock: the queue is marked as going, which
// nobody can open or put to any more; the log forgets it; its messages are swept out.
Outcome Store::remove(MQLONG type, std::string_view name, const std::function<Outcome(const QueueStatus &)> &mayGo)
{
    const LogLock lock(*this);
    if (lock.outcome().failed()) return lock.outcome();
    const auto known = lookUp(type, name);
    if (!known) return failure(MQRC_UNKNOWN_OBJECT_NAME);
    const QueueId queue = known->queue;
    const auto marking = [&](std::uint32_t deleted) {
        return update(0, 0, [&](WriteTransaction &transaction) {
            const QueueStatus status = queue == 0 ? QueueStatus{} : transaction.queue(queue);
            if (deleted != 0 && mayGo) {
                if (const Outcome answer = mayGo(status); answer.failed()) return answer;
            }
            if (queue != 0) transaction.counters(queue).deleted = deleted;
            return success();
        });
    };
    const auto mark = [&](std::uint32_t deleted) { return withMemory([&] { return marking(deleted); }); };
    if (const Outcome marked = mark(1); marked.failed()) return marked;
    reached(Step::QueueMarked);
    Outcome logged = log_->begin();
    if (!logged.failed()) {
        log_->deleteDefinition(type, name);
        if (queue != 0) log_->deleteMessagesOf(queue);
        log_->advance(control().stamp.generation, 0);
        logged = log_->commit();
    }
    if (logged.failed()) {
        if (mark(0).failed()) control().logUnfinished = 1;
        return judgeLog(logged);
    }
    reached(Step::DefinitionLogged);
    const Outcome swept = broughtToLive(withMemory([&] { return sweep(*known); }));
    definitionsChanged(type);
    if (queue != 0) wakeGetters(queue);
    return swept;
}

// Removes a definition that the log no longer has, with everything that hangs on its queue.
Outcome Store::sweep(const Definition &definition)
{
    const Outcome outcome = update(0, 0, [&](WriteTransaction &transaction) {
        transaction.erase(LiveKey::definition(definition.type, definition.name));
        if (definition.queue != 0) transaction.counters(definition.queue).deleted = 1;
        return success();
    });
    return outcome.failed() || definition.queue == 0 ? outcome : sweepQueue(definition.queue);
}

// Some thousand records to a transaction. The counters go last: until then they say that there is more to sweep.
Outcome Store::sweepQueue(QueueId queue)
{
    for (const LiveKey &records : LiveKey::hangingOn(queue)) {
        for (bool more = true; more;) {
            const Outcome outcome = update(0, 0, [&](WriteTransaction &transaction) {
                more = transaction.eraseSome(records, 2000);
                return success();
            });
            reached(Step::QueueSweeping);
            if (outcome.failed()) return outcome;
        }
    }
    return update(0, 0, [&](WriteTransaction &transaction) {
        transaction.eraseCounters(queue);
        return success();
    });
}

// The queues marked as going, whether their definitions are still there or not. Not temporary ones: whoever ends their
// connection is at them.
Outcome Store::queuesGoing(std::vector<QueueId> &going)
{
    return read([&](ReadTransaction &transaction) {
        QueueId next = 0;
        for (bool more = true; more;) {
            more = false;
            transaction.walk(LiveKey::messages(), LiveKey::queue(next), [&](const MDB_val &key, const MDB_val &value) {
                const QueueId queue = queueIn(key);
                const auto status = recordIn<QueueStatus>(value);
                const bool isCounters = key.mv_size == LiveKey::queue(queue).size();
                if (isCounters && status && status->deleted != 0 && !isTemporary(queue)) going.push_back(queue);
                next = queue + 1;
                more = next != 0;
                return false;
            });
        }
        return success();
    });
}

// Log lock held. Makes the live definitions equal to the log's.
Outcome Store::reloadDefinitions()
{
    std::map<std::pair<MQLONG, std::string>, Definition> logged;
    const Outcome outcome = log_->forEachDefinition([&](const Definition &definition) {
        logged.emplace(std::pair{definition.type, definition.name}, definition);
        return true;
    });
    if (outcome.failed()) return outcome;
    for (const Definition &live : lookUpAll(MQOT_ALL)) {
        if (isTemporary(live.queue) || logged.contains({live.type, live.name})) continue;
        if (const Outcome swept = sweep(live); swept.failed()) return swept;
    }
    std::vector<QueueId> going;
    if (const Outcome found = queuesGoing(going); found.failed()) return found;
    for (const QueueId queue : going) {
        const auto isLogged = [&](const auto &entry) { return entry.second.queue == queue; };
        if (std::any_of(logged.begin(), logged.end(), isLogged)) continue; // its delete never came to the log
        if (const Outcome swept = sweepQueue(queue); swept.failed()) return swept;
    }
    const Outcome stored = update(0, 0, [&](WriteTransaction &transaction) {
        for (const auto &[key, definition] : logged) {
            putDefinition(transaction, definition);
            if (definition.queue != 0) transaction.counters(definition.queue).deleted = 0;
        }
        return success();
    });
    definitionsChanged(MQOT_ALL);
    definitionsChanged(subscriptions);
    return stored;
}

} // namespace mqrig::qmgr::store
