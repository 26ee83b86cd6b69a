// A connection's view of the object definitions: parsed once, kept until any definition changes.
//
// How calls use it
//   MQCONN         catalog.queueManager()
//   MQOPEN, MQPUT1 catalog.queue(name); the handle keeps the QueueHold
//   every call on a handle
//                  catalog.refresh(hold): one load while nothing has changed, so that ALTER and MQSET of other
//                  processes hold from the next call on
//
// Belongs to one connection and is used by one call at a time, like the attachment; nothing here is locked. After a
// change of any definition the next use reads the store again, which may wait for a disk; never use it inside a
// transaction, except for `unchanged`.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "qmgr/objects/queue_definition.h"
#include "qmgr/objects/queue_manager_definition.h"
#include "qmgr/store/attachment.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::objects {

// A queue's definition and the version of all definitions as of which it is known to be right.
struct QueueHold {
    std::shared_ptr<const QueueDefinition> queue; // null: none
    std::uint64_t version = 0;
};

struct FoundQueue {
    Outcome outcome; // MQRC_UNKNOWN_OBJECT_NAME, MQRC_OBJECT_DAMAGED
    QueueHold hold;
};

class Catalog {
public:
    // The attachment outlives the catalog.
    explicit Catalog(store::Attachment &attachment) : attachment_(attachment) {}

    // The queue manager's attributes as they are now. Null only where its own definition is damaged.
    const std::shared_ptr<const QueueManagerDefinition> &queueManager();

    // The queue of that name (without padding; an impossible name is an unknown one).
    FoundQueue queue(std::string_view name);

    // Brings a handle's queue up to date. MQRC_Q_DELETED where it is gone or another queue has its name now: the
    // hold then keeps what it had.
    Outcome refresh(QueueHold &hold)
    {
        if (unchanged(hold)) [[likely]]
            return success();
        return reload(hold);
    }
    bool unchanged(const QueueHold &hold) const { return hold.version == attachment_.definitionVersion(); }

private:
    Outcome reload(QueueHold &hold);

    store::Attachment &attachment_;
    std::map<std::string, QueueHold, std::less<>> queues_;
    std::shared_ptr<const QueueManagerDefinition> queueManager_;
    std::uint64_t queueManagerVersion_ = 0;
};

} // namespace mqrig::qmgr::objects
