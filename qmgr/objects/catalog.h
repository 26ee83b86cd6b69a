// A connection's view of the object definitions: parsed once, kept until any definition changes.
//
// How calls use it
//   MQCONN         catalog.queueManager()
//   MQOPEN, MQPUT1 catalog.queue(name, queue manager); the handle keeps the QueueHold
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
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "qmgr/objects/queue_definition.h"
#include "qmgr/objects/queue_manager_definition.h"
#include "qmgr/objects/topic_tree.h"
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

struct FoundObject {
    Outcome outcome;
    std::optional<ObjectDefinition> object;
};

class Catalog {
public:
    // The attachment outlives the catalog.
    explicit Catalog(store::Attachment &attachment) : attachment_(&attachment) {}

    // The queue manager's attributes as they are now. Null only where its own definition is damaged.
    const std::shared_ptr<const QueueManagerDefinition> &queueManager();

    // The queue whose messages are meant by the names (without padding; an impossible name is an unknown one): a local
    // queue, seen under the name. An empty queue manager is this one. The reasons are those of name resolution
    // (name_resolution.cpp); MQRC_Q_TYPE_ERROR: a model queue.
    FoundQueue queue(std::string_view name, std::string_view queueManager = {});

    // The queue that has this name here, as it is defined: not for messages unless it is a local queue.
    // MQRC_UNKNOWN_OBJECT_NAME, MQRC_OBJECT_DAMAGED.
    FoundQueue definition(std::string_view name);

    // An object that is no queue (MQOT_). MQRC_UNKNOWN_OBJECT_NAME, MQRC_OBJECT_DAMAGED.
    FoundObject object(MQLONG type, std::string_view name);

    // Brings a handle's queue up to date; where that fails the hold keeps what it had. MQRC_Q_DELETED: it is gone, or
    // another queue has its name now. MQRC_OBJECT_CHANGED: the name by which it was reached leads elsewhere now.
    Outcome refresh(QueueHold &hold)
    {
        if (unchanged(hold)) [[likely]]
            return success();
        return reload(hold);
    }
    bool unchanged(const QueueHold &hold) const { return hold.version == attachment_->definitionVersion(); }

    // The topic objects as they are now; shared with the handles that looked at it.
    const std::shared_ptr<const TopicTree> &topics();

    // ---- For triggering ----

    // The process definition of that name; null if there is none.
    std::shared_ptr<const ObjectDefinition> process(std::string_view name);
    // The names of the local queues with TRIGGER whose INITQ is this one.
    std::vector<std::string> triggeredBy(std::string_view initiationQueue);

private:
    using Known = std::map<std::string, QueueHold, std::less<>>;

    Outcome reload(QueueHold &hold);
    static FoundQueue keep(Known &known, std::string_view name, QueueHold hold);

    // Name resolution (name_resolution.cpp).
    FoundQueue resolve(std::string_view name, std::string_view queueManager);
    FoundQueue resolveAlias(const QueueDefinition &alias);
    FoundQueue resolveRemote(const QueueDefinition &remote);
    FoundQueue resolveElsewhere(std::string_view name, std::string_view queueManager);
    FoundQueue transmissionQueue(std::string_view name, std::string_view queueManager);
    bool isHere(std::string_view queueManager) const;

    store::Attachment *attachment_;
    Known queues_;  // as defined
    Known reached_; // under names of this queue manager that lead to another queue
    std::shared_ptr<const QueueManagerDefinition> queueManager_;
    std::uint64_t queueManagerVersion_ = 0;
    std::map<std::string, std::shared_ptr<const ObjectDefinition>, std::less<>> processes_;
    std::uint64_t processesVersion_ = 0;
    std::shared_ptr<const TopicTree> topics_;
    std::uint64_t topicsVersion_ = 0;
    std::multimap<std::string, std::string, std::less<>> triggeredBy_; // initiation queue, triggered queue
    std::uint64_t triggeredByVersion_ = 0;
};

} // namespace mqrig::qmgr::objects
