// Temporary queues, and subscriptions that are not durable: they belong to the connection that made them and go with
// it.
//
// They stand in the live state only. So they are made and removed without waiting for a disk, and a restart forgets
// them, as it forgets the non-persistent messages on them, which are the only ones they take. A record under the slot
// of the connection says what is to be removed; it is the last one to go, so that whoever cleans up behind a killed
// process goes on where that one was, also if it was killed removing them.
//
// Others may be using the queue. Its counters are marked when its definition goes: from then on nothing can be put on
// it, booked or opened. What units of work of others had there is passed over when they commit (commit.cpp).

#include <algorithm>
#include <cstring>

#include "qmgr/store/seams.h"
#include "qmgr/store/store.h"
#include "qmgr/store/transaction_scratch.h"
#include "qmgr/store/transaction_walk.h"

namespace mqrig::qmgr::store {

namespace {

constexpr int recordsAtOnce = 2000;

// What stands under the slot of the connection.
std::string nameRecord(const Definition &definition)
{
    std::string record(reinterpret_cast<const char *>(&definition.type), sizeof definition.type);
    return record += definition.name;
}

Definition definitionIn(const MDB_val &key, const MDB_val &value)
{
    Definition definition;
    definition.queue = numberAtEnd<QueueId>(key);
    if (value.mv_size < sizeof definition.type) return definition;
    std::memcpy(&definition.type, value.mv_data, sizeof definition.type);
    definition.name.assign(static_cast<const char *>(value.mv_data) + sizeof definition.type,
                           value.mv_size - sizeof definition.type);
    return definition;
}

} // namespace

Outcome Store::defineTemporary(std::uint32_t slot, Definition &definition)
{
    if (definition.name.empty() || definition.name.size() > MQ_OBJECT_NAME_LENGTH)
        return failure(MQRC_OBJECT_NAME_ERROR);
    definition.queue = temporaryNumbers | control().temporaryQueues.fetch_add(1);
    const std::string record = nameRecord(definition);
    const Outcome made = update(definition.bytes.size() + 4096, slot, [&](WriteTransaction &transaction) {
        const bool known = transaction.get(LiveKey::definition(definition.type, definition.name)).data != nullptr;
        if (known || transaction.exists(definition.queue)) return failure(MQRC_OBJECT_ALREADY_EXISTS);
        putDefinition(transaction, definition);
        transaction.store(LiveKey::temporary(slot, definition.queue), record.data(), record.size());
        return success();
    });
    // A new queue changes nothing that anybody knows; a new subscription does.
    if (!made.failed() && definition.type == subscriptions) definitionsChanged(definition.type);
    return made;
}

Outcome Store::removeTemporary(std::uint32_t slot, const Definition &removed)
{
    const QueueId queue = removed.queue;
    const LiveKey definition = LiveKey::definition(removed.type, removed.name);
    Outcome outcome;
    for (bool more = true; more && !outcome.failed();) {
        outcome = update(0, slot, [&](WriteTransaction &transaction) {
            // Another queue may have the name by now.
            if (recordIn<QueueId>(transaction.get(definition)) == queue) transaction.erase(definition);
            transaction.counters(queue).deleted = 1;
            more = false;
            for (const LiveKey &records : LiveKey::hangingOn(queue))
                more |= transaction.eraseSome(records, recordsAtOnce);
            if (!more) {
                transaction.eraseCounters(queue);
                transaction.erase(LiveKey::booking(slot, queue));
                transaction.erase(LiveKey::temporary(slot, queue));
            }
            return success();
        });
        reached(Step::TemporaryRemoving);
    }
    definitionsChanged(removed.type);
    wakeGetters(queue);
    return outcome;
}

Outcome Store::removeTemporariesOf(std::uint32_t slot)
{
    std::vector<Definition> made;
    const Outcome found = read([&](ReadTransaction &transaction) {
        transaction.forEach(LiveKey::temporariesOf(slot), [&](const MDB_val &key, const MDB_val &value) {
            made.push_back(definitionIn(key, value));
        });
        return success();
    });
    Outcome outcome = found;
    // Subscriptions first: nobody puts on a queue any more that goes next.
    std::stable_partition(made.begin(), made.end(), [](const Definition &one) { return one.type == subscriptions; });
    for (const Definition &one : made)
        if (!outcome.failed()) outcome = removeTemporary(slot, one);
    return outcome;
}

} // namespace mqrig::qmgr::store
