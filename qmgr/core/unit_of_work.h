// The unit of work of a connection, in the connection's own memory.
//
// A put under syncpoint lives here until MQCMIT: nobody else sees the message, but its place in the queue's depth is
// booked in the store. A get under syncpoint is a lock in the store that this list remembers. The process may die at
// any moment: the memory goes, and whoever finds the dead connection gives bookings and locks back.
//
// Rooms before deeds: what may fail for want of memory happens before the store is changed (keepPut, roomForGet).
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "qmgr/objects/catalog.h"
#include "qmgr/store/attachment.h"
#include "qmgr/store/message.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::core {

// Memory for the bodies of one unit of work: taken piece by piece, given back all at once.
class BodyMemory {
public:
    std::span<const std::byte> copy(std::span<const std::byte> body);
    // Gives back what the last copy took.
    void dropLast(std::size_t size) { used_ -= size <= used_ ? size : 0; }
    // Keeps one block of ordinary size, so that the next unit of work allocates nothing.
    void clear();

private:
    struct Block {
        std::unique_ptr<std::byte[]> bytes;
        std::size_t size = 0;
    };
    std::vector<Block> blocks_;
    std::size_t used_ = 0; // of the last block
};

// A DEPTH trigger message is being made: nobody makes another one while this exists. It ends outside transactions.
class DepthTriggerBooking {
public:
    DepthTriggerBooking(store::Attachment &store, store::QueueId queue) : store_(&store), queue_(queue) {}
    DepthTriggerBooking(DepthTriggerBooking &&other) noexcept
        : store_(std::exchange(other.store_, nullptr)), queue_(other.queue_)
    {
    }
    DepthTriggerBooking &operator=(DepthTriggerBooking &&other) noexcept
    {
        std::swap(store_, other.store_);
        std::swap(queue_, other.queue_);
        return *this;
    }
    ~DepthTriggerBooking();
    DepthTriggerBooking(const DepthTriggerBooking &) = delete;
    DepthTriggerBooking &operator=(const DepthTriggerBooking &) = delete;

private:
    store::Attachment *store_;
    store::QueueId queue_;
};

// A trigger message among the puts of a unit (trigger.h).
struct UnitTrigger {
    objects::QueueHold queue; // that was triggered, as it was defined then
    objects::QueueHold initiation;
    std::size_t put = 0; // which of the puts it is
    std::optional<DepthTriggerBooking> booking;
};

class UnitOfWork {
public:
    bool empty() const { return puts_.empty() && gets_.empty(); }
    // What MAXUMSGS counts.
    std::size_t size() const { return puts_.size() + gets_.size(); }

    // Copies the message with its body to the end of the unit.
    void keepPut(const store::NewMessage &message);
    // The last put could not be booked.
    void dropLastPut()
    {
        bodies_.dropLast(puts_.back().body.size());
        puts_.pop_back();
    }
    std::size_t puts() const { return puts_.size(); }
    // Takes back the puts behind the first `kept` ones, with their places on their queues.
    void takeBackPuts(store::Attachment &store, std::size_t kept);

    // The last put is a trigger message.
    void addTrigger(UnitTrigger trigger) { triggers_.push_back(std::move(trigger)); }
    const std::vector<UnitTrigger> &triggers() const { return triggers_; }
    bool hasTriggerOf(store::QueueId queue, MQLONG triggerType) const;

    void roomForGet(std::size_t number = 1);
    void addGet(const store::TakenMessage &message) { gets_.push_back(message); }

    // For Attachment::commit and backOut; valid until the unit changes.
    store::Unit content() const { return {puts_, gets_}; }
    // After either of them: the unit holds nothing any more.
    void clear();

    // The queue manager has ended, and what was in the unit is backed out. Until the program ends the unit, nothing
    // more can be done in it: MQRC_BACKED_OUT.
    void lose();
    bool lost() const { return lost_; }

    // A message that belongs to the unit could not be put, and its program does not know: MQCMIT backs the unit out.
    void doom() { doomed_ = true; }
    bool doomed() const { return doomed_; }

private:
    std::vector<store::NewMessage> puts_;
    std::vector<store::TakenMessage> gets_;
    std::vector<UnitTrigger> triggers_;
    BodyMemory bodies_;
    bool lost_ = false;
    bool doomed_ = false;
};

struct Connection;

// MQCMIT and MQBACK: ends the connection's unit of work and begins an empty one.
Outcome commit(Connection &connection);
Outcome backOut(Connection &connection);

} // namespace mqrig::qmgr::core
