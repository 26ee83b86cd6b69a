// Triggering: a message on the initiation queue of a queue that a program should be started for.
//
// A trigger message is due, for TRIGTYPE FIRST, EVERY or DEPTH, after
//   Put      a message of priority TRIGMPRI or more came: the first one (or any, once TRIGINT has passed since the last
//            trigger message), each one, or one that makes at least TRIGDPTH;
//   Close    the last program that had the queue open for input has closed it and left enough messages (not EVERY);
//   Change   MQSET or a command gave it TRIGGER, TRIGTYPE, TRIGDPTH, TRIGMPRI or GET(ENABLED) while it holds enough
//            messages;
//   Monitor  a program opened the initiation queue for input while the queue holds enough messages.
// Always: the queue has TRIGGER, its process is defined (a transmission queue may do without one), its initiation queue
// is a local queue of normal usage that takes and gives messages and, except for Change, somebody has it open for
// input; and, except for EVERY and Close, nobody has the queue itself open for input.
//
// Messages of units of work that are not complete count. (Of other programs' units only the depth is known, not the
// priorities: with a TRIGMPRI above 0 those do not count, and a trigger message too many may come.)
//
// The trigger message of a put stands in the unit of work of the put. It appears when that unit is complete, for
// FIRST and DEPTH also if it was backed out: others may have relied on its messages. DEPTH turns TRIGGER off then;
// until it has, nobody else makes one. A program killed meanwhile leaves TRIGGER on, for the next put.
#pragma once

#include <memory>

#include "cmqc.h"
#include "qmgr/core/connection.h"
#include "qmgr/core/unit_of_work.h"
#include "qmgr/objects/queue_definition.h"
#include "qmgr/store/transaction.h"

namespace mqrig::qmgr::core {

enum class TriggerCause { Put, Close, Change, Monitor };

// The judgement on one queue.
class Trigger {
public:
    // Outside a transaction. `unit`: whose puts count beside those that are stored, and where the message goes.
    Trigger(Connection &connection, UnitOfWork &unit, const objects::QueueHold &queue, TriggerCause cause);

    // Inside the transaction that made the change. `priority`: of the message that was put.
    void judge(store::WriteTransaction &transaction, MQLONG priority = 0);
    // After it: puts the trigger message, if one is due. No queue that takes it: it is dropped. Fails for the reasons
    // of the store only.
    Outcome put();

private:
    bool isDue(store::WriteTransaction &transaction, MQLONG priority) const;
    bool isStillOn(store::WriteTransaction &transaction) const;
    bool isForDepth() const;
    std::uint32_t messages(store::WriteTransaction &transaction, std::uint32_t enough) const;

    Connection &connection_;
    UnitOfWork &unit_;
    const objects::QueueHold queue_;
    const TriggerCause cause_;
    objects::QueueHold initiation_;
    std::shared_ptr<const objects::ObjectDefinition> process_;
    std::int64_t interval_ = 0; // TRIGINT in microseconds; read before the transaction, as all definitions are
    bool possible_ = false;
    bool due_ = false;
};

// The causes that are no put; each makes its messages in units of its own.
void triggerAfterClose(Connection &connection, std::string_view queue);
void triggerAfterChange(Connection &connection, std::string_view queue);
// The same for a command that was run on an attachment alone; the connection that this needs is made for it.
void triggerAfterCommand(store::Attachment &attachment, std::string_view queue);
void triggerAfterOpen(Connection &connection, const objects::QueueDefinition &initiationQueue);

// The unit is complete: committed, or backed out. To be called before it is cleared.
void triggersCommitted(Connection &connection, const UnitOfWork &unit) noexcept;
void triggersBackedOut(Connection &connection, const UnitOfWork &unit) noexcept;

} // namespace mqrig::qmgr::core
