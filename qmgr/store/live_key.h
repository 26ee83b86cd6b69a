// The key of a record of the live state.
//
// All records are in one ordered tree of keys: one tree keeps a transaction's cost at the few
// pages it changes. The first byte says what a record is; numbers are big-endian so that bytes sort as numbers do.
//
// clang-format off
//   'B' queue order sequence          -> body of a large message
//   'C' queue order sequence          -> BrowseMark of a message that co-operating browsers have marked
//   'D' type name                     -> object definition: queue id, bytes
//   'H' queue order sequence          -> Hold: the message is there but not visible, and who has it
//   'I' queue index id order sequence -> nothing; for every id that is not all zero
//   'I' queue 4 GroupId MsgSeqNumber Offset order sequence -> nothing; the same for the place in a group
//   'M' queue                         -> QueueStatus: on the page of the queue's first messages, which a get changes anyway
//   'M' queue order sequence          -> MessageHeader, then the body unless it is large
//   'S' slot queue                    -> Booking: what the connection has of the queue
//   'T' slot queue                    -> type, name: a temporary queue or subscription that the connection has made
//   'U' ticket                        -> a prepared unit of work: UnitRecord, then its steps
// clang-format on
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "qmgr/store/message.h"

namespace mqrig::qmgr::store {

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__);

class LiveKey {
public:
    static LiveKey message(const MessageKey &key) { return LiveKey('M').ofMessage(key); }
    static LiveKey body(const MessageKey &key) { return LiveKey('B').ofMessage(key); }
    static LiveKey hold(const MessageKey &key) { return LiveKey('H').ofMessage(key); }
    static LiveKey mark(const MessageKey &key) { return LiveKey('C').ofMessage(key); }
    static LiveKey marksOf(QueueId queue) { return LiveKey('C').u32(queue); }
    static LiveKey messagesOf(QueueId queue) { return LiveKey('M').u32(queue); }
    static LiveKey holdsOf(QueueId queue) { return LiveKey('H').u32(queue); }
    static LiveKey bodiesOf(QueueId queue) { return LiveKey('B').u32(queue); }
    static LiveKey indexesOf(QueueId queue) { return LiveKey('I').u32(queue); }
    static LiveKey holds() { return LiveKey('H'); }
    static LiveKey messages() { return LiveKey('M'); }
    static LiveKey bodies() { return LiveKey('B'); }
    static LiveKey marks() { return LiveKey('C'); }
    static LiveKey indexes() { return LiveKey('I'); }
    static LiveKey queue(QueueId queue) { return messagesOf(queue); }
    static LiveKey booking(std::uint32_t slot, QueueId queue) { return LiveKey('S').u32(slot).u32(queue); }
    static LiveKey bookingsOf(std::uint32_t slot) { return LiveKey('S').u32(slot); }
    static LiveKey bookings() { return LiveKey('S'); }
    static LiveKey temporary(std::uint32_t slot, QueueId queue) { return LiveKey('T').u32(slot).u32(queue); }
    static LiveKey temporariesOf(std::uint32_t slot) { return LiveKey('T').u32(slot); }
    static LiveKey unit(Ticket ticket) { return LiveKey('U').u64(ticket); }
    static LiveKey units() { return LiveKey('U'); }
    static LiveKey definitions() { return LiveKey('D'); }
    static LiveKey definitionsOf(MQLONG type) { return LiveKey('D').u32(static_cast<std::uint32_t>(type)); }
    static LiveKey definition(MQLONG type, std::string_view name)
    {
        return definitionsOf(type).bytes(name.data(), std::min<std::size_t>(name.size(), MQ_OBJECT_NAME_LENGTH));
    }
    static LiveKey idOf(QueueId queue, Index index, const MQBYTE *id)
    {
        return LiveKey('I').u32(queue).u8(static_cast<std::uint8_t>(index)).bytes(id, 24);
    }
    static LiveKey indexed(const MessageKey &key, Index index, const MQBYTE *id)
    {
        return idOf(key.queue, index, id).place(key);
    }

    static LiveKey groupPlace(QueueId queue, const GroupPlace &place)
    {
        LiveKey key = idOf(queue, Index::GroupPlace, place.groupId.data());
        if (place.msgSeqNumber) key.u32(static_cast<std::uint32_t>(*place.msgSeqNumber));
        if (place.offset) key.u32(static_cast<std::uint32_t>(*place.offset));
        return key;
    }

    // Behind all keys that begin with this one.
    LiveKey end() const
    {
        LiveKey behind = *this;
        std::fill(behind.bytes_.begin() + size_, behind.bytes_.end(), std::uint8_t{0xFF});
        behind.size_ = behind.bytes_.size();
        return behind;
    }

    // The prefixes of all records that hang on a queue. (One of them is the key of its counters.)
    static std::array<LiveKey, 5> hangingOn(QueueId queue)
    {
        return {bodiesOf(queue), marksOf(queue), indexesOf(queue), holdsOf(queue), messagesOf(queue)};
    }

    LiveKey place(const MessageKey &key) const { return LiveKey(*this).u8(key.order).u64(key.sequence); }

    [[nodiscard]] const std::uint8_t *data() const { return bytes_.data(); }
    [[nodiscard]] std::size_t size() const { return size_; }
    [[nodiscard]] bool isPrefixOf(const void *key, std::size_t size) const
    {
        return size >= size_ && std::memcmp(key, bytes_.data(), size_) == 0;
    }

private:
    explicit LiveKey(char kind) { u8(static_cast<std::uint8_t>(kind)); }
    LiveKey &u8(std::uint8_t value)
    {
        bytes_[size_++] = value;
        return *this;
    }
    LiveKey &u32(std::uint32_t value)
    {
        value = __builtin_bswap32(value);
        return bytes(&value, sizeof value);
    }
    LiveKey &u64(std::uint64_t value)
    {
        value = __builtin_bswap64(value);
        return bytes(&value, sizeof value);
    }
    LiveKey &bytes(const void *from, std::size_t length)
    {
        std::memcpy(bytes_.data() + size_, from, length);
        size_ += length;
        return *this;
    }
    LiveKey &ofMessage(const MessageKey &key) { return u32(key.queue).u8(key.order).u64(key.sequence); }

    std::array<std::uint8_t, 56> bytes_; // as far as size_
    std::size_t size_ = 0;
};

} // namespace mqrig::qmgr::store
