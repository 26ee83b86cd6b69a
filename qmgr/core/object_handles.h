// The objects that a connection has open, and the numbers (MQHOBJ) by which its program knows them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cmqc.h"
#include "qmgr/core/browse_marks.h"
#include "qmgr/core/context.h"
#include "qmgr/core/destination.h"
#include "qmgr/core/logical_order.h"
#include "qmgr/core/message_selector.h"
#include "qmgr/core/open_topic.h"
#include "qmgr/objects/catalog.h"
#include "qmgr/store/message.h"
#include "qmgr/store/transaction.h"

namespace mqrig::qmgr::core {

struct OpenObject {
    MQLONG type = MQOT_Q;    // MQOT_Q, MQOT_Q_MGR, MQOT_PROCESS, MQOT_NAMELIST or MQOT_TOPIC; MQOT_NONE: a subscription
    MQLONG options = 0;      // MQOO_ bits as granted: input is shared or exclusive, never as-queue-def
    objects::QueueHold hold; // of a queue: its messages, and in `object` what MQINQ and MQSET work on
    std::string name;        // of a process or namelist, which is read (catalog.object) whenever it is asked
    store::OpenCounts opens; // what this handle adds to the counts of its queue
    bool made = false;       // the queue was made by this MQOPEN

    // What MQGET passes over, by a selection string; most have none.
    std::shared_ptr<const MessageSelector> selector;
    // Where browsing stands: the last message that a browse returned. It may be gone since.
    std::optional<store::MessageKey> cursor;
    // The message that its last browse locked (MQGMO_LOCK), for this handle only.
    std::optional<store::MessageKey> locked;
    // What this handle has marked (MQGMO_MARK_BROWSE_HANDLE).
    HandleMarks marks;
    // With MQOO_SAVE_ALL_CONTEXT: of the message that the last successful MQGET removed; none if that was a browse.
    std::optional<SavedContext> savedContext;
    // Made with the first message in a group, the first segment or the first call with logical order.
    std::unique_ptr<LogicalOrder> logicalOrder;

    // What MQOPEN was asked for, to open it again in the queue manager's next life.
    struct Asked {
        std::string name;
        std::string queueManager;
        MQLONG options = 0;
        std::string dynamicName; // of the temporary queue that was made of the model `name`
        std::string objectString;
    };
    Asked asked;

    // Several queues for output instead of one; then there is no `hold`.
    std::unique_ptr<DistributionList> list;
    // A topic for publishing, also under the name of an alias queue.
    std::unique_ptr<OpenTopic> topic;
    std::unique_ptr<OpenSubscription> subscription;
    // The queue of a subscription, made for it: only for getting its messages.
    bool managed = false;

    // Whether the queue goes with the handle.
    bool ownsQueue() const { return made && store::isTemporary(hold.queue->id); }
    bool allows(MQLONG anyOf) const { return (options & anyOf) != 0; }
};

// A handle number is the place of the object and how often the place was used before, so that a handle that was
// closed does not become another object's at once. Numbers begin with 2 and stay small.
class ObjectHandles {
public:
    // No place left: MQHO_UNUSABLE_HOBJ.
    MQHOBJ add(std::unique_ptr<OpenObject> object);
    // Null for a number that is no open handle.
    OpenObject *find(MQHOBJ hobj) const
    {
        const auto number = static_cast<std::uint32_t>(hobj);
        const std::size_t place = (number & placeMask) - firstPlace;
        if (place >= places_.size() || places_[place].uses != number >> placeBits) return nullptr;
        return places_[place].object.get();
    }
    std::unique_ptr<OpenObject> remove(MQHOBJ hobj);
    // visit(OpenObject &) -> bool for each until one answers false; true if none did.
    template <class Visit>
    bool forEach(Visit &&visit) const
    {
        for (const Place &place : places_)
            if (place.object != nullptr && !visit(*place.object)) return false;
        return true;
    }
    std::size_t size() const { return open_; }
    std::vector<MQHOBJ> all() const;

private:
    static constexpr unsigned placeBits = 20;
    static constexpr std::uint32_t placeMask = (1U << placeBits) - 1;
    static constexpr std::uint32_t usesMask = (1U << (31 - placeBits)) - 1;
    static constexpr std::size_t firstPlace = 2;

    struct Place {
        std::unique_ptr<OpenObject> object;
        std::uint32_t uses = 0;
    };
    std::vector<Place> places_;
    std::vector<std::uint32_t> free_;
    std::size_t open_ = 0;
};

} // namespace mqrig::qmgr::core
