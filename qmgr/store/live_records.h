// The records of the live state: what stands under the keys of live_key.h.
#pragma once

#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <type_traits>

#include <lmdb.h>

#include "qmgr/store/live_key.h"
#include "qmgr/store/message.h"
#include "qmgr/store/transaction.h"

namespace mqrig::qmgr::store {

// Bodies up to here stand with their header; together they fit a page twice, so none needs pages of its own.
constexpr std::size_t inlineBody = 1500;

enum class HoldKind : std::uint32_t {
    Got = 1,      // by the unit of work of a connection: falls with the slot
    Prepared = 2, // got by a prepared unit: only the log decides
    Hidden = 3,   // put by a prepared unit: only the log decides
    Browsed = 4,  // locked by a browse, in no unit of work: falls with the slot
};

struct Hold {
    HoldKind kind;
    std::uint32_t slot;
    Ticket ticket; // 0 for Got and Browsed
};

// That a message is marked for the handles that browse its queue together.
struct BrowseMark {
    std::int64_t since; // microseconds since 1970 UTC
};

// What a connection has booked on a queue, to be given back should it die.
struct Booking {
    std::uint32_t puts;
    std::uint32_t depthTriggers;
    OpenCounts opens;
};

enum class StepKind : std::uint32_t {
    Put = 1,     // hidden until the unit is flipped
    Get = 2,     // erased by the flip
    Backout = 3, // raises the backout count in the log; nothing to flip
    Forget = 4,  // already gone from the live state: leaves the log
};

struct UnitStep {
    StepKind kind;
    std::uint32_t persistent;
    std::uint32_t queue;
    std::uint32_t order;
    std::uint64_t sequence;
    std::uint64_t backoutCount;
};

enum class UnitKind : std::uint32_t {
    Single = 1, // one put or get outside a unit of work
    Unit = 2,   // an MQCMIT
    Note = 3,   // nobody waits for it: goes to the log with the next unit that does
};

struct UnitRecord {
    UnitKind kind;
    std::uint32_t slot;
    std::uint64_t connection;
    std::uint64_t steps;
};

// Runs `act` on the key of every index record that the message has.
template <class Act>
void forEachIndex(const MessageKey &key, const MQMD &md, Act &&act)
{
    const auto isNoId = [](const MQBYTE *id) {
        return std::all_of(id, id + 24, [](MQBYTE byte) { return byte == 0; });
    };
    if (!isNoId(md.MsgId)) act(LiveKey::indexed(key, Index::MsgId, md.MsgId));
    if (!isNoId(md.CorrelId)) act(LiveKey::indexed(key, Index::CorrelId, md.CorrelId));
    if (isNoId(md.GroupId)) return;
    act(LiveKey::indexed(key, Index::GroupId, md.GroupId));
    act(LiveKey::groupPlace(key.queue, {MessageId(md.GroupId), md.MsgSeqNumber, md.Offset}).place(key));
}

// A key as the library takes it.
[[nodiscard]] inline MDB_val valueOf(const LiveKey &key)
{
    return {key.size(), const_cast<std::uint8_t *>(key.data())}; // NOLINT: the library takes no const
}

// The message a key of kind 'B', 'H', 'I' or 'M' speaks of: the queue stands behind the first byte, the place at the
// end. The record must be of one of these kinds.
[[nodiscard]] inline MessageKey messageOf(const void *key, std::size_t size)
{
    const auto *bytes = static_cast<const std::uint8_t *>(key);
    const auto *place = bytes + size - 9;
    std::uint32_t queue = 0;
    std::uint64_t sequence = 0;
    std::memcpy(&queue, bytes + 1, sizeof queue);
    std::memcpy(&sequence, place + 1, sizeof sequence);
    return {.queue = __builtin_bswap32(queue), .order = *place, .sequence = __builtin_bswap64(sequence)};
}

// The number at the end of a key of kind 'S' (the queue) or 'U' (the ticket).
template <class Number>
[[nodiscard]] Number numberAtEnd(const MDB_val &key)
{
    Number number = 0;
    std::memcpy(&number, static_cast<const std::uint8_t *>(key.mv_data) + key.mv_size - sizeof number, sizeof number);
    if constexpr (sizeof number == 4) {
        return __builtin_bswap32(number);
    } else {
        return __builtin_bswap64(number);
    }
}

// The queue that such a key speaks of; 0 if it is too short.
[[nodiscard]] inline QueueId queueIn(const MDB_val &key)
{
    QueueId queue = 0;
    if (key.mv_size >= 1 + sizeof queue) std::memcpy(&queue, static_cast<const char *>(key.mv_data) + 1, sizeof queue);
    return __builtin_bswap32(queue);
}

// Reads a fixed record out of stored bytes; nothing if they are too few to be one.
template <class Record>
[[nodiscard]] std::optional<Record> recordIn(const void *data, std::size_t size)
{
    static_assert(std::is_trivially_copyable_v<Record>);
    std::optional<Record> record;
    if (size >= sizeof(Record)) std::memcpy(&record.emplace(), data, sizeof(Record));
    return record;
}
template <class Record>
[[nodiscard]] std::optional<Record> recordIn(const MDB_val &value)
{
    return recordIn<Record>(value.mv_data, value.mv_size);
}
template <class Record, class Value>
[[nodiscard]] std::optional<Record> recordIn(const Value &value)
{
    return recordIn<Record>(value.data, value.size);
}

} // namespace mqrig::qmgr::store
