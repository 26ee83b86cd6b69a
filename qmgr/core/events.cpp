#include "qmgr/core/events.h"

#include <algorithm>
#include <array>
#include <string>

#include <unistd.h>

#include "qmgr/command/pcf_writer.h"
#include "qmgr/core/private_unit.h"
#include "qmgr/core/system_put.h"
#include "qmgr/objects/definition_change.h"
#include "qmgr/objects/object_name.h"
#include "qmgr/store/seams.h"

namespace mqrig::qmgr::core {
namespace {

using command::PcfWriter;
using objects::ObjectDefinition;

constexpr std::string_view queueManagerEvents = "SYSTEM.ADMIN.QMGR.EVENT";
constexpr std::string_view performanceEvents = "SYSTEM.ADMIN.PERFM.EVENT";

PcfWriter eventOf(Connection &connection, MQLONG command, MQLONG reason)
{
    MQCFH header = {MQCFH_DEFAULT};
    header.Type = MQCFT_EVENT;
    header.Command = command;
    header.CompCode = MQCC_WARNING;
    header.Reason = reason;
    PcfWriter event(header);
    event.text(MQCA_Q_MGR_NAME, connection.store->queueManagerName(), MQ_Q_MGR_NAME_LENGTH);
    return event;
}

void send(Connection &connection, std::string_view queue, const PcfWriter &event)
{
    const objects::FoundQueue found = connection.catalog.queue(queue);
    if (found.outcome.failed()) return;
    const std::string body = event.message();
    store::NewMessage message{};
    message.header.md = queueManagerDescriptor(connection, MQFMT_EVENT);
    message.body = {reinterpret_cast<const std::byte *>(body.data()), body.size()};
    PrivateUnit unit(connection);
    if (!putByQueueManager(connection, *unit, found.hold, message).failed()) (void)unit.commit();
}

// For want of memory an event is lost like any other that finds no place.
template <class Make>
void quietly(Make &&make) noexcept
{
    try {
        make();
    } catch (...) { // NOLINT(bugprone-empty-catch)
    }
}

// ---- Performance ----

// Turns the event's own switch off and the others on. False if somebody else has been quicker, or it was off.
bool turnSwitches(store::Attachment &store, const objects::QueueDefinition &queue, MQLONG reason)
{
    struct Switches {
        MQLONG reason;
        MQLONG own;
        std::array<MQLONG, 2> others;
    };
    constexpr Switches rows[] = {
        {MQRC_Q_DEPTH_HIGH, MQIA_Q_DEPTH_HIGH_EVENT, {MQIA_Q_DEPTH_LOW_EVENT, MQIA_Q_DEPTH_MAX_EVENT}},
        {MQRC_Q_DEPTH_LOW, MQIA_Q_DEPTH_LOW_EVENT, {MQIA_Q_DEPTH_HIGH_EVENT, MQIA_Q_DEPTH_MAX_EVENT}},
        {MQRC_Q_FULL, MQIA_Q_DEPTH_MAX_EVENT, {MQIA_Q_DEPTH_LOW_EVENT, MQIA_Q_DEPTH_LOW_EVENT}},
    };
    const auto *const row = std::find_if(std::begin(rows), std::end(rows),
                                         [reason](const Switches &each) { return each.reason == reason; });
    if (row == std::end(rows)) return false;
    const Outcome turned = objects::changeDefinition(store, MQOT_Q, objects::fieldText(queue.name),
                                                     [&](ObjectDefinition &object, store::QueueId id) {
                                                         if (id != queue.id || object.number(row->own) != MQEVR_ENABLED)
                                                             return failure(MQRC_NONE);
                                                         object.set(row->own, MQEVR_DISABLED);
                                                         for (const MQLONG other : row->others)
                                                             object.set(other, MQEVR_ENABLED);
                                                         return success();
                                                     });
    return !turned.failed();
}

void makePerformanceEvent(Connection &connection, const objects::QueueDefinition &queue, MQLONG reason)
{
    if (connection.queueManager().performanceEvent != MQEVR_ENABLED) return;
    if (!turnSwitches(*connection.store, queue, reason)) return;
    store::QueueStatus statistics;
    const Outcome taken = connection.store->update(0, [&](store::WriteTransaction &transaction) {
        statistics = transaction.resetStatistics(queue.id);
        return success();
    });
    if (taken.failed()) return;

    constexpr std::int64_t microseconds = 1'000'000;
    PcfWriter event = eventOf(connection, MQCMD_PERFM_EVENT, reason);
    event.text(MQCA_BASE_Q_NAME, objects::fieldText(queue.name), MQ_Q_NAME_LENGTH);
    event.integer(MQIA_TIME_SINCE_RESET,
                  static_cast<MQLONG>((store::currentTime() - statistics.resetTime) / microseconds));
    event.integer(MQIA_HIGH_Q_DEPTH, static_cast<MQLONG>(statistics.highDepth));
    event.integer(MQIA_MSG_ENQ_COUNT, static_cast<MQLONG>(statistics.enqueued));
    event.integer(MQIA_MSG_DEQ_COUNT, static_cast<MQLONG>(statistics.dequeued));
    send(connection, performanceEvents, event);
}

// ---- Calls that fail ----

// The queue manager's attribute that turns the event on, of those that callEvent makes.
MQLONG switchOf(const objects::QueueManagerDefinition &queueManager, MQLONG reason)
{
    switch (reason) {
    case MQRC_PUT_INHIBITED:
    case MQRC_GET_INHIBITED:
        return queueManager.inhibitEvent;
    case MQRC_UNKNOWN_OBJECT_NAME:
    case MQRC_UNKNOWN_ALIAS_BASE_Q:
    case MQRC_ALIAS_BASE_Q_TYPE_ERROR:
        return queueManager.localEvent;
    case MQRC_UNKNOWN_REMOTE_Q_MGR:
    case MQRC_REMOTE_Q_NAME_ERROR:
    case MQRC_UNKNOWN_XMIT_Q:
    case MQRC_XMIT_Q_TYPE_ERROR:
    case MQRC_XMIT_Q_USAGE_ERROR:
    case MQRC_UNKNOWN_DEF_XMIT_Q:
    case MQRC_DEF_XMIT_Q_TYPE_ERROR:
    case MQRC_DEF_XMIT_Q_USAGE_ERROR:
        return queueManager.remoteEvent;
    default:
        return MQEVR_DISABLED;
    }
}

void nameObject(PcfWriter &event, const ObjectName &name)
{
    switch (name.type) {
    case MQOT_PROCESS:
        return event.text(MQCA_PROCESS_NAME, name.name, MQ_PROCESS_NAME_LENGTH);
    case MQOT_NAMELIST:
        return event.text(MQCA_NAMELIST_NAME, name.name, MQ_NAMELIST_NAME_LENGTH);
    default:
        return event.text(MQCA_Q_NAME, name.name, MQ_Q_NAME_LENGTH);
    }
}

// The queue that an alias stands for.
void nameBaseQueue(Connection &connection, PcfWriter &event, MQLONG reason, const ObjectName &name)
{
    const objects::FoundQueue alias = connection.catalog.definition(name.name);
    if (alias.outcome.failed()) return;
    const std::string base(alias.hold.queue->object.text(MQCA_BASE_OBJECT_NAME));
    event.text(MQCA_BASE_OBJECT_NAME, base, MQ_Q_NAME_LENGTH);
    if (reason != MQRC_ALIAS_BASE_Q_TYPE_ERROR) return;
    if (const objects::FoundQueue found = connection.catalog.definition(base); !found.outcome.failed())
        event.integer(MQIA_Q_TYPE, found.hold.queue->type);
}

// The transmission queue on the way to a name: that of the remote queue's definition, or the one that is named as the
// queue manager.
void nameTransmissionQueue(Connection &connection, PcfWriter &event, const ObjectName &name)
{
    std::string queue(name.queueManager);
    if (const objects::FoundQueue found = connection.catalog.definition(name.name); !found.outcome.failed()) {
        const ObjectDefinition &remote = found.hold.queue->object;
        queue = remote.text(MQCA_XMIT_Q_NAME);
        if (queue.empty()) queue = remote.text(MQCA_REMOTE_Q_MGR_NAME);
    }
    event.text(MQCA_XMIT_Q_NAME, queue, MQ_Q_NAME_LENGTH);
}

// What only events of this reason tell.
void nameOthers(Connection &connection, PcfWriter &event, MQLONG reason, const ObjectName &name)
{
    switch (reason) {
    case MQRC_UNKNOWN_ALIAS_BASE_Q:
    case MQRC_ALIAS_BASE_Q_TYPE_ERROR:
        return nameBaseQueue(connection, event, reason, name);
    case MQRC_UNKNOWN_XMIT_Q:
    case MQRC_XMIT_Q_TYPE_ERROR:
    case MQRC_XMIT_Q_USAGE_ERROR:
        return nameTransmissionQueue(connection, event, name);
    case MQRC_UNKNOWN_DEF_XMIT_Q:
    case MQRC_DEF_XMIT_Q_TYPE_ERROR:
    case MQRC_DEF_XMIT_Q_USAGE_ERROR:
        return event.text(MQCA_XMIT_Q_NAME, objects::fieldText(connection.queueManager().defaultXmitQueue),
                          MQ_Q_NAME_LENGTH);
    default:
        return;
    }
}

void makeCallEvent(Connection &connection, MQLONG reason, const ObjectName &name)
{
    if (switchOf(connection.queueManager(), reason) != MQEVR_ENABLED) return;
    PcfWriter event = eventOf(connection, MQCMD_Q_MGR_EVENT, reason);
    nameObject(event, name);
    nameOthers(connection, event, reason, name);
    event.integer(MQIA_APPL_TYPE, MQAT_DEFAULT);
    event.text(MQCACF_APPL_NAME, objects::fieldText(connection.identity.putApplName), MQ_APPL_NAME_LENGTH);
    const std::string_view queueManager = name.queueManager;
    if (!queueManager.empty() && queueManager != connection.store->queueManagerName())
        event.text(MQCACF_OBJECT_Q_MGR_NAME, queueManager, MQ_Q_MGR_NAME_LENGTH);
    send(connection, queueManagerEvents, event);
}

void makeStartEvent(Connection &connection)
{
    if (connection.queueManager().startStopEvent != MQEVR_ENABLED) return;
    PcfWriter event = eventOf(connection, MQCMD_Q_MGR_EVENT, MQRC_Q_MGR_ACTIVE);
    std::array<char, 256> host{};
    if (gethostname(host.data(), host.size() - 1) == 0) event.text(MQCACF_HOST_NAME, host.data());
    event.integer(MQIACF_REASON_QUALIFIER, MQRQ_FAILOVER_NOT_PERMITTED);
    send(connection, queueManagerEvents, event);
}

void makeStopEvent(Connection &connection, MQLONG qualifier)
{
    if (connection.queueManager().startStopEvent != MQEVR_ENABLED) return;
    PcfWriter event = eventOf(connection, MQCMD_Q_MGR_EVENT, MQRC_Q_MGR_NOT_ACTIVE);
    event.integer(MQIACF_REASON_QUALIFIER, qualifier);
    send(connection, queueManagerEvents, event);
}

} // namespace

void performanceEvent(Connection &connection, const objects::QueueDefinition &queue, MQLONG reason) noexcept
{
    quietly([&] { makePerformanceEvent(connection, queue, reason); });
}
void callEvent(Connection &connection, const Outcome &outcome, const ObjectName &name) noexcept
{
    if (outcome.failed()) quietly([&] { makeCallEvent(connection, outcome.Reason, name); });
}

void callEvent(Connection &connection, const Outcome &outcome, const OpenObject &object) noexcept
{
    if (object.type != MQOT_Q || object.hold.queue == nullptr) return;
    const objects::QueueDefinition &queue = *object.hold.queue;
    callEvent(connection, outcome, ObjectName{MQOT_Q, queue.object.name(), queue.askedQueueManager});
}

void startEvent(Connection &connection) noexcept
{
    quietly([&] { makeStartEvent(connection); });
}

void stopEvent(Connection &connection, MQLONG qualifier) noexcept
{
    quietly([&] { makeStopEvent(connection, qualifier); });
}

} // namespace mqrig::qmgr::core
