#include "qmgr/core/publication.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <string>

#include "qmgr/core/dead_letter.h"
#include "qmgr/core/put_properties.h"
#include "qmgr/core/reports.h"
#include "qmgr/core/system_put.h"
#include "qmgr/objects/object_name.h"
#include "qmgr/properties/record.h"

namespace mqrig::qmgr::core {
namespace {

properties::Property textProperty(std::string_view name, std::string_view value)
{
    properties::Property property;
    property.name = name;
    property.type = MQTYPE_STRING;
    property.value = value;
    return property;
}

properties::Property flagProperty(std::string_view name)
{
    properties::Property property;
    property.name = name;
    property.type = MQTYPE_BOOLEAN;
    const MQLONG set = 1;
    property.value.assign(reinterpret_cast<const char *>(&set), sizeof set);
    return property;
}

// The publisher's, without those that say what only the queue manager says.
std::vector<std::byte> propertiesOf(std::span<const std::byte> stored)
{
    std::vector<properties::Property> all;
    (void)properties::readRecord(copiedProperties(stored, MQCOPY_PUBLISH), all);
    std::vector<std::byte> kept;
    for (const properties::Property &property : all)
        if (!property.name.starts_with("mqps.")) properties::appendRecord(property, kept);
    return kept;
}

template <class Field, std::size_t N, class Element>
void copyField(Field &to, const std::array<Element, N> &from)
{
    static_assert(sizeof to == sizeof from);
    std::memcpy(to, from.data(), sizeof to);
}

ObjectName destinationOf(const objects::Subscription &subscription)
{
    return {MQOT_Q, subscription.queue, subscription.queueManager};
}

Outcome findDestination(Connection &connection, Subscriber &subscriber)
{
    objects::QueueHold &hold = subscriber.destination;
    if (hold.queue != nullptr && !connection.catalog.refresh(hold).failed()) return success();
    objects::FoundQueue found =
        connection.catalog.queue(subscriber.subscription.queue, subscriber.subscription.queueManager);
    if (!found.outcome.failed()) hold = std::move(found.hold);
    return found.outcome;
}

} // namespace

Publication::Publication(const store::NewMessage &message, std::string_view topic, Retained retained)
    : message_(message)
{
    const std::size_t given = message.header.coreLength;
    if (given != 0) stored_ = propertiesOf(message.body.first(given));
    ofPublisher_ = stored_.size();
    properties::appendRecord(textProperty("mqps.Top", topic), stored_);
    if (retained == Retained::Yes) properties::appendRecord(flagProperty("mqps.Ret"), stored_);
    properties_ = stored_.size();
    stored_.insert(stored_.end(), message.body.begin() + static_cast<std::ptrdiff_t>(given), message.body.end());
}

store::NewMessage Publication::common() const
{
    store::NewMessage common = message_;
    common.header.coreLength = static_cast<std::uint32_t>(properties_);
    common.body = stored_;
    return common;
}

store::NewMessage Publication::messageFor(Connection &connection, const objects::Subscription &subscription,
                                          std::vector<std::byte> &stored) const
{
    store::NewMessage own = common();
    const bool plain = subscription.properties == MQPSPROP_NONE;
    if (plain || !subscription.userData.empty()) {
        const std::size_t kept = plain ? ofPublisher_ : properties_;
        stored.assign(stored_.begin(), stored_.begin() + static_cast<std::ptrdiff_t>(kept));
        if (!plain) properties::appendRecord(textProperty("mqps.Sud", subscription.userData), stored);
        own.header.coreLength = static_cast<std::uint32_t>(stored.size());
        stored.insert(stored.end(), stored_.begin() + static_cast<std::ptrdiff_t>(properties_), stored_.end());
        own.body = stored;
    }
    MQMD &md = own.header.md;
    connection.newIdentifier(md.MsgId);
    if (!subscription.keepsCorrelId) copyField(md.CorrelId, subscription.correlId);
    if (subscription.priority != MQPRI_PRIORITY_AS_PUBLISHED) md.Priority = subscription.priority;
    copyField(md.UserIdentifier, subscription.user);
    copyField(md.AccountingToken, subscription.accountingToken);
    copyField(md.ApplIdentityData, subscription.applIdentityData);
    md.PutApplType = MQAT_BROKER;
    std::copy_n(connection.queueManagerName.begin(), sizeof md.PutApplName, md.PutApplName);
    connection.clock.write(own.header.putTime, md.PutDate, md.PutTime);
    objects::fillField(md.ApplOriginData, sizeof md.ApplOriginData, {});
    return own;
}

Outcome Publication::putFor(Connection &connection, UnitOfWork &unit, Subscriber &subscriber) const
{
    if (const Outcome found = findDestination(connection, subscriber); found.failed()) return found;
    std::vector<std::byte> stored;
    store::NewMessage own = messageFor(connection, subscriber.subscription, stored);
    const objects::QueueDefinition &queue = *subscriber.destination.queue;
    if (queue.definitionType == MQQDT_TEMPORARY_DYNAMIC) own.header.md.Persistence = MQPER_NOT_PERSISTENT;
    const Outcome put = putByQueueManager(connection, unit, subscriber.destination, own);
    if (put.failed() || queue.usage == MQUS_TRANSMISSION || !wantsArrivalReport(own.header.md)) return put;
    return reportArrival(connection, unit, own);
}

Outcome Publication::putOnDeadLetterQueueFor(Connection &connection, UnitOfWork &unit, const Subscriber &subscriber,
                                             MQLONG reason) const
{
    std::vector<std::byte> stored;
    const store::NewMessage own = messageFor(connection, subscriber.subscription, stored);
    return putOnDeadLetterQueue(connection, unit, reason, destinationOf(subscriber.subscription), own);
}

} // namespace mqrig::qmgr::core
