#include "qmgr/core/trigger.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "qmgr/core/dead_letter.h"
#include "qmgr/core/private_unit.h"
#include "qmgr/core/system_put.h"
#include "qmgr/objects/definition_change.h"
#include "qmgr/objects/object_name.h"
#include "qmgr/store/seams.h"

namespace mqrig::qmgr::core {
namespace {

// Messages looked at to count those of sufficient priority, while others wait.
constexpr std::uint32_t mostLooked = 4096;

bool isOn(const objects::QueueDefinition &queue)
{
    return queue.triggerControl == MQTC_ON && queue.triggerType != MQTT_NONE;
}

bool servesAsInitiationQueue(const objects::QueueDefinition &queue)
{
    return queue.type == MQQT_LOCAL && queue.usage == MQUS_NORMAL && queue.inhibitGet == MQQA_GET_ALLOWED &&
           queue.inhibitPut == MQQA_PUT_ALLOWED;
}

MQTM triggerMessage(const objects::QueueDefinition &queue, const objects::ObjectDefinition *process)
{
    MQTM message = {MQTM_DEFAULT};
    std::copy(queue.name.begin(), queue.name.end(), message.QName);
    std::copy(queue.process.begin(), queue.process.end(), message.ProcessName);
    std::copy(queue.triggerData.begin(), queue.triggerData.end(), message.TriggerData);
    const auto text = [&](auto &field, MQLONG selector) {
        objects::fillField(field, sizeof field, process == nullptr ? std::string_view() : process->text(selector));
    };
    text(message.ApplId, MQCA_APPL_ID);
    text(message.EnvData, MQCA_ENV_DATA);
    text(message.UserData, MQCA_USER_DATA);
    if (process != nullptr) message.ApplType = process->number(MQIA_APPL_TYPE);
    return message;
}

void turnOff(store::Attachment &store, const objects::QueueDefinition &queue)
{
    (void)objects::changeDefinition(store, MQOT_Q, objects::fieldText(queue.name),
                                    [&](objects::ObjectDefinition &object, store::QueueId id) {
                                        if (id != queue.id) return failure(MQRC_Q_DELETED);
                                        object.set(MQIA_TRIGGER_CONTROL, MQTC_OFF);
                                        return success();
                                    });
}

// Trigger messages trigger nothing themselves, however the queues are defined.
class Triggering {
public:
    explicit Triggering(Connection &connection) : connection_(connection) { connection_.triggering = true; }
    ~Triggering() { connection_.triggering = false; }
    Triggering(const Triggering &) = delete;
    Triggering &operator=(const Triggering &) = delete;

private:
    Connection &connection_;
};

// Puts it on the initiation queue, else on the dead-letter queue. Failed: nowhere.
Outcome putTriggerMessage(Connection &connection, UnitOfWork &unit, const objects::QueueHold &initiation,
                          store::NewMessage &message)
{
    const Triggering triggering(connection);
    const Outcome put = putByQueueManager(connection, unit, initiation, message);
    if (!put.failed() || isOfStore(put)) return put;
    const ObjectName destination{MQOT_Q, objects::fieldText(initiation.queue->name), {}};
    return putOnDeadLetterQueue(connection, unit, put.Reason, destination, message);
}

void triggerInOwnUnit(Connection &connection, std::string_view queue, TriggerCause cause)
{
    const objects::FoundQueue found = connection.catalog.definition(queue);
    if (found.outcome.failed() || found.hold.queue->type != MQQT_LOCAL || !isOn(*found.hold.queue)) return;
    PrivateUnit unit(connection);
    Trigger trigger(connection, *unit, found.hold, cause);
    const Outcome judged = connection.store->update(0, [&](store::WriteTransaction &transaction) {
        trigger.judge(transaction);
        return success();
    });
    if (judged.failed()) return;
    if (!trigger.put().failed()) (void)unit.commit();
}

void turnOffDepthTriggers(Connection &connection, const UnitOfWork &unit)
{
    for (const UnitTrigger &trigger : unit.triggers())
        if (trigger.queue.queue->triggerType == MQTT_DEPTH) turnOff(*connection.store, *trigger.queue.queue);
}

// The trigger messages of a unit that was backed out, as far as they outlive it.
void putAgain(Connection &connection, const UnitOfWork &unit)
{
    for (const UnitTrigger &trigger : unit.triggers()) {
        store::NewMessage message = unit.content().puts[trigger.put];
        const bool survives = trigger.queue.queue->triggerType != MQTT_EVERY;
        // One that went to the dead-letter queue instead is not made again.
        if (!survives || message.key.queue != trigger.initiation.queue->id) continue;
        PrivateUnit again(connection);
        if (!putTriggerMessage(connection, *again, trigger.initiation, message).failed()) (void)again.commit();
    }
}

} // namespace

Trigger::Trigger(Connection &connection, UnitOfWork &unit, const objects::QueueHold &queue, TriggerCause cause)
    : connection_(connection), unit_(unit), queue_(queue), cause_(cause)
{
    const objects::QueueDefinition &triggered = *queue_.queue;
    if (!isOn(triggered) || connection.triggering || unit.hasTriggerOf(triggered.id, MQTT_DEPTH)) return;
    const std::string_view initiation = objects::fieldText(triggered.initiationQueue);
    if (initiation.empty()) return;
    objects::FoundQueue found = connection.catalog.definition(initiation);
    if (found.outcome.failed() || !servesAsInitiationQueue(*found.hold.queue)) return;
    initiation_ = std::move(found.hold);
    const std::string_view process = objects::fieldText(triggered.process);
    if (!process.empty()) process_ = connection.catalog.process(process);
    interval_ = std::int64_t{connection.queueManager().triggerInterval} * 1000;
    possible_ = process_ != nullptr || (process.empty() && triggered.usage == MQUS_TRANSMISSION);
}

// Of sufficient priority, counted up to `enough`.
std::uint32_t Trigger::messages(store::WriteTransaction &transaction, std::uint32_t enough) const
{
    const objects::QueueDefinition &queue = *queue_.queue;
    const MQLONG lowest = queue.triggerMsgPriority;
    if (lowest <= 0) return transaction.queue(queue.id).depth;
    std::uint32_t count = 0;
    for (const store::NewMessage &put : unit_.content().puts)
        if (put.key.queue == queue.id && put.header.md.Priority >= lowest) ++count;
    store::MessageCursor cursor(transaction, queue.id);
    std::uint32_t looked = 0;
    for (bool there = cursor.first(); there && count < enough && looked < mostLooked; there = cursor.next(), ++looked)
        if (cursor.header().md.Priority >= lowest) ++count;
    return count;
}

bool Trigger::isDue(store::WriteTransaction &transaction, MQLONG priority) const
{
    const objects::QueueDefinition &queue = *queue_.queue;
    const store::QueueStatus status = transaction.queue(queue.id);
    if (cause_ == TriggerCause::Change && queue.inhibitGet == MQQA_GET_INHIBITED) return false;
    if (cause_ == TriggerCause::Put && priority < queue.triggerMsgPriority) return false;
    if (cause_ == TriggerCause::Close && queue.triggerType == MQTT_EVERY) return false;
    if (queue.triggerType != MQTT_EVERY && status.opens.input > 0) return false;
    if (cause_ != TriggerCause::Change && transaction.queue(initiation_.queue->id).opens.input <= 0) return false;

    switch (queue.triggerType) {
    case MQTT_EVERY:
        return cause_ == TriggerCause::Put || messages(transaction, 1) >= 1;
    case MQTT_FIRST: {
        const std::uint32_t count = messages(transaction, 2);
        if (cause_ != TriggerCause::Put || count == 1) return count >= 1;
        return count > 1 && store::currentTime() - status.triggerTime >= interval_;
    }
    case MQTT_DEPTH: {
        const auto enough = static_cast<std::uint32_t>(std::max<MQLONG>(queue.triggerDepth, 1));
        return status.depthTriggers == 0 && messages(transaction, enough) >= enough && isStillOn(transaction);
    }
    default:
        return false;
    }
}

// The definition that we know was read before the transaction: another program may have turned the trigger off since.
bool Trigger::isStillOn(store::WriteTransaction &transaction) const
{
    const auto object =
        objects::ObjectDefinition::decode(transaction.definition(MQOT_Q, objects::fieldText(queue_.queue->name)));
    return object && object->number(MQIA_TRIGGER_CONTROL) == MQTC_ON;
}

bool Trigger::isForDepth() const
{
    return queue_.queue->triggerType == MQTT_DEPTH;
}

void Trigger::judge(store::WriteTransaction &transaction, MQLONG priority)
{
    due_ = possible_ && isDue(transaction, priority);
    if (!due_) return;
    transaction.noteTrigger(queue_.queue->id);
    if (isForDepth()) transaction.bookDepthTrigger(queue_.queue->id);
}

Outcome Trigger::put()
{
    if (!due_) return success();
    std::optional<DepthTriggerBooking> booking;
    if (isForDepth()) booking.emplace(*connection_.store, queue_.queue->id);
    const MQTM content = triggerMessage(*queue_.queue, process_.get());
    store::NewMessage message{};
    message.header.md = queueManagerDescriptor(connection_, MQFMT_TRIGGER);
    message.header.md.Persistence = MQPER_NOT_PERSISTENT;
    message.body = {reinterpret_cast<const std::byte *>(&content), sizeof content};
    const Outcome put = putTriggerMessage(connection_, unit_, initiation_, message);
    if (put.failed()) return isOfStore(put) ? put : success();
    unit_.addTrigger({queue_, initiation_, unit_.puts() - 1, std::move(booking)});
    return success();
}

void triggerAfterClose(Connection &connection, std::string_view queue)
{
    triggerInOwnUnit(connection, queue, TriggerCause::Close);
}

void triggerAfterChange(Connection &connection, std::string_view queue)
{
    triggerInOwnUnit(connection, queue, TriggerCause::Change);
}

void triggerAfterCommand(store::Attachment &attachment, std::string_view queue)
{
    store::Attached attached = attachment.another();
    if (attached.outcome.failed()) return;
    Connection connection(std::move(attached.attachment), ConnectRequest{});
    if (connection.catalog.queueManager() != nullptr) triggerAfterChange(connection, queue);
}

void triggerAfterOpen(Connection &connection, const objects::QueueDefinition &initiationQueue)
{
    // Requesters open such queues by the thousand; no definition names one.
    if (initiationQueue.definitionType == MQQDT_TEMPORARY_DYNAMIC) return;
    for (const std::string &name : connection.catalog.triggeredBy(objects::fieldText(initiationQueue.name)))
        triggerInOwnUnit(connection, name, TriggerCause::Monitor);
}

void triggersCommitted(Connection &connection, const UnitOfWork &unit) noexcept
{
    if (unit.triggers().empty()) return;
    try {
        turnOffDepthTriggers(connection, unit);
    } catch (...) { // NOLINT(bugprone-empty-catch): for want of memory a trigger stays on; the unit is complete
    }
}

void triggersBackedOut(Connection &connection, const UnitOfWork &unit) noexcept
{
    if (unit.triggers().empty()) return;
    try {
        putAgain(connection, unit);
        turnOffDepthTriggers(connection, unit);
    } catch (...) { // NOLINT(bugprone-empty-catch): as above, and a trigger message is lost
    }
}

} // namespace mqrig::qmgr::core
