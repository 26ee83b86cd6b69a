// A message as the store keeps it: its place in delivery order, its header and its body.
#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "cmqc.h"

namespace mqrig::qmgr::store {

using QueueId = std::uint32_t; // numeric id of a queue, never used again once the queue is deleted; 0 is no queue
// Temporary queues have numbers apart from the others.
constexpr QueueId temporaryNumbers = 0x80000000;
[[nodiscard]] constexpr bool isTemporary(QueueId queue)
{
    return (queue & temporaryNumbers) != 0;
}
using Ticket = std::uint64_t;                  // a prepared unit of work; 0 is none: nothing had to be logged
using MessageId = std::span<const MQBYTE, 24>; // MsgId, CorrelId or GroupId
using MessageToken = std::array<MQBYTE, 16>;

// The place of a message in the live state. Keys of one queue compare in delivery order.
struct MessageKey {
    QueueId queue = 0;
    std::uint8_t order = 0;     // rank within the queue, 0 first: 9 - Priority, or one constant for MSGDLVSQ(FIFO)
    std::uint64_t sequence = 0; // taken at MQPUT, unique in the store, also over restarts

    auto operator<=>(const MessageKey &) const = default; // NOLINT(modernize-use-nullptr): the checker misreads it
};

// The ids that messages can be found by.
enum class Index : std::uint8_t { MsgId = 1, CorrelId = 2, GroupId = 3, GroupPlace = 4 };

// Messages of a group in logical order: all of them, those with one MsgSeqNumber, or those that have the Offset too.
struct GroupPlace {
    MessageId groupId;
    std::optional<MQLONG> msgSeqNumber;
    std::optional<MQLONG> offset; // only beside msgSeqNumber
};

// The message token of MQGMO names the message by its key. A token that no message of ours can have gives nothing.
[[nodiscard]] MessageToken tokenOfKey(const MessageKey &key);
[[nodiscard]] std::optional<MessageKey> keyOfToken(const MessageToken &token);

// Everything about a message but its body. Stored as it stands, in the live state and, for persistent messages, in
// the log: no pointers, no padding that is not zero (value-initialise it), and a new meaning only for spare fields.
struct MessageHeader {
    MQMD md;                              // version 2, all fields as the getter will see them
    std::uint32_t bodyLength = 0;         // bytes; the store sets it from the body
    std::int64_t expiryDeadline = 0;      // microseconds since 1970 UTC; 0: never expires
    std::int64_t putTime = 0;             // microseconds since 1970 UTC
    std::uint32_t coreFlags = 0;          // free for the floors above
    std::uint32_t coreLength = 0;         // free for the floors above, e.g. length of the properties before the body
    std::array<std::uint8_t, 32> spare{}; // zero; free for the floors above
};

[[nodiscard]] inline bool isPersistent(const MessageHeader &header)
{
    return header.md.Persistence == MQPER_PERSISTENT;
}

// A message to be stored. The body is the caller's memory, alive and unchanged until the call that stores it is back.
struct NewMessage {
    MessageKey key;
    MessageHeader header;
    std::span<const std::byte> body;
};

// A message got under syncpoint: locked by this connection until the unit of work ends.
struct TakenMessage {
    MessageKey key;
    bool persistent = false;
};

// A connection's unit of work, in the caller's memory: puts in the order they were made, each booked on its queue
// with WriteTransaction::bookPut, and gets, each locked with WriteTransaction::lock.
struct Unit {
    std::span<const NewMessage> puts;
    std::span<const TakenMessage> gets;
};

} // namespace mqrig::qmgr::store
