#include "qmgr/command/subscription_commands.h"

#include <algorithm>
#include <optional>
#include <tuple>
#include <unistd.h>
#include <utility>

#include "cmqcfc.h"
#include "qmgr/command/process_facts.h"
#include "qmgr/command/subscription_attributes.h"
#include "qmgr/objects/object_name.h"
#include "qmgr/objects/system_objects.h"
#include "qmgr/objects/topic_tree.h"
#include "qmgr/properties/selector.h"
#include "qmgr/store/seams.h"

namespace mqrig::qmgr::command {
namespace {

constexpr int mostAttempts = 100; // of somebody who is always too slow

using objects::ObjectDefinition;
using objects::Subscription;
using store::Attachment;

// "AMQ ", 12 characters of the queue manager's name, 8 bytes, as identifiers of messages.
objects::Identifier24 newIdentifier(Attachment &attachment)
{
    objects::Identifier24 id{};
    std::string name = "AMQ " + attachment.queueManagerName();
    name.resize(16, ' ');
    std::copy(name.begin(), name.end(), id.begin());
    const std::uint64_t number = attachment.uniqueNumber();
    for (std::size_t i = 0; i < 8; ++i)
        id[16 + i] = static_cast<MQBYTE>(number >> (8 * (7 - i)));
    return id;
}

void setDeadline(Subscription &subscription)
{
    constexpr std::int64_t tenth = 100000;
    subscription.deadline =
        subscription.expiry == MQEI_UNLIMITED ? 0 : store::currentTime() + subscription.expiry * tenth;
}

Outcome assign(Subscription &subscription, const std::vector<Assignment> &attributes)
{
    for (const Assignment &change : attributes)
        if (!setValue(subscription, *change.attribute, change.value)) return failure(MQRC_CORREL_ID_ERROR);
    setDeadline(subscription);
    return success();
}

bool givesTopic(const std::vector<Assignment> &attributes)
{
    return std::ranges::any_of(attributes, [](const Assignment &given) {
        return given.attribute->selector == MQCA_TOPIC_NAME || given.attribute->selector == MQCA_TOPIC_STRING;
    });
}

// The topic string of the object, if one is named, in front of what is given beside it.
Outcome resolveTopic(Attachment &attachment, Subscription &subscription)
{
    if (!subscription.topicObject.empty()) {
        const auto stored = attachment.findDefinition(MQOT_TOPIC, subscription.topicObject);
        const auto object = stored ? ObjectDefinition::decode(stored->bytes) : std::nullopt;
        if (!object) return failure(MQRC_UNKNOWN_OBJECT_NAME);
        std::string topic(object->text(MQCA_TOPIC_STRING));
        if (!topic.empty() && !subscription.topic.empty()) topic += '/';
        subscription.topic = topic + subscription.topic;
    }
    const bool valid = !subscription.topic.empty() && subscription.topic.size() <= MQ_TOPIC_STR_LENGTH &&
                       objects::TopicPattern::parse(subscription.topic, subscription.scheme);
    return valid ? success() : failure(MQRC_TOPIC_STRING_ERROR);
}

// The queue of a managed subscription: made when that is there (publish_subscribe.h).
Outcome makeQueue(Attachment &attachment, const std::string &model, const std::string &name)
{
    std::optional<store::Definition> stored = attachment.findDefinition(MQOT_Q, model);
    if (!stored) stored = objects::systemObject(MQOT_Q, model);
    const auto pattern = stored ? ObjectDefinition::decode(stored->bytes) : std::nullopt;
    if (!pattern || pattern->kind() != objects::ObjectKind::ModelQueue) return failure(MQRC_INVALID_DESTINATION);
    ObjectDefinition queue = objects::queueLike(*pattern);
    queue.rename(name);
    queue.set(MQIA_DEFINITION_TYPE, MQQDT_PERMANENT_DYNAMIC);
    store::Definition made;
    made.type = MQOT_Q;
    made.name = name;
    made.bytes = queue.encode();
    return attachment.define(made);
}

Outcome checkSelector(const std::string &selector)
{
    if (selector.empty()) return success();
    properties::Selector compiled;
    const MQLONG reason = properties::Selector::compile(selector, compiled);
    if (reason == MQRC_NONE) return success();
    return failure(reason == MQRC_SELECTOR_SYNTAX_ERROR ? MQRC_SELECTION_NOT_AVAILABLE : reason);
}

// What it is to be, but for what the store says of one of its name.
Outcome describe(Attachment &attachment, const SubscriptionDefinition &definition, Subscription &subscription)
{
    if (!definition.like.empty()) {
        auto like = objects::findSubscription(attachment, definition.like);
        if (!like) return failure(MQRC_NO_SUBSCRIPTION);
        subscription = std::move(like->subscription);
        // The topic string has the object's in it. A managed one gets a queue of its own.
        subscription.topicObject.clear();
        if (subscription.managed) subscription.queue.clear();
        subscription.keepsCorrelId = false;
        subscription.grouped = false;
    } else {
        objects::fillField(subscription.applIdentityData, {});
    }
    subscription.id = newIdentifier(attachment);
    subscription.correlId = newIdentifier(attachment);
    subscription.name = definition.name;
    subscription.durable = true;
    subscription.type = MQSUBTYPE_ADMIN;
    subscription.created = store::currentTime();
    objects::fillField(subscription.user, userOf(getpid()));
    if (givesTopic(definition.attributes)) subscription.topic.clear();
    if (const Outcome assigned = assign(subscription, definition.attributes); assigned.failed()) return assigned;
    if (const Outcome resolved = resolveTopic(attachment, subscription); resolved.failed()) return resolved;
    return checkSelector(subscription.selector);
}

Outcome create(Attachment &attachment, Subscription subscription)
{
    const auto topic = objects::TopicTree(attachment.definitions(MQOT_TOPIC)).attributesOf(subscription.topic);
    if (topic.subscribe == MQTA_SUB_INHIBITED) return failure(MQRC_SUB_INHIBITED);
    if (topic.durableSubs == MQSUB_DURABLE_INHIBITED) return failure(MQRC_DURABILITY_NOT_ALLOWED);
    if (subscription.managed) {
        subscription.queue =
            std::string(objects::durableQueuePrefix) + objects::hexadecimal(subscription.id).substr(32);
        subscription.queueManager.clear();
    }
    if (subscription.queue.empty()) return failure(MQRC_INVALID_DESTINATION);
    store::Definition definition = objects::definitionOf(subscription);
    const Outcome defined = attachment.define(definition);
    if (defined.Reason == MQRC_OBJECT_ALREADY_EXISTS) return failure(MQRC_SUB_ALREADY_EXISTS);
    if (defined.failed() || !subscription.managed) return defined;
    const Outcome made = makeQueue(attachment, topic.durableModel, subscription.queue);
    if (made.failed()) (void)objects::removeSubscription(attachment, {definition, subscription}, objects::Handle::None);
    return made;
}

Outcome replace(Attachment &attachment, objects::StoredSubscription known, Subscription changed)
{
    const Subscription &before = known.subscription;
    if (!before.durable) return failure(MQRC_DURABILITY_NOT_ALTERABLE);
    if (changed.topic != before.topic || changed.scheme != before.scheme ||
        changed.scopeQueueManager != before.scopeQueueManager)
        return failure(MQRC_TOPIC_NOT_ALTERABLE);
    if (changed.selector != before.selector) return failure(MQRC_SELECTOR_NOT_ALTERABLE);
    if (changed.level != before.level) return failure(MQRC_SUBLEVEL_NOT_ALTERABLE);
    if (changed.managed != before.managed) return failure(MQRC_DEST_CLASS_NOT_ALTERABLE);
    if (before.grouped) return failure(MQRC_GROUPING_NOT_ALTERABLE);
    changed.id = before.id;
    changed.created = before.created;
    changed.topicObject = before.topicObject;
    if (before.managed) {
        changed.queue = before.queue;
        changed.queueManager.clear();
    }
    if (changed.queue.empty()) return failure(MQRC_INVALID_DESTINATION);
    const std::string seen = std::exchange(known.definition.bytes, changed.encode());
    return attachment.alter(known.definition, seen);
}

// What ALTER may not change.
Outcome checkAlterable(const Assignment &change)
{
    switch (change.attribute->selector) {
    case MQCA_TOPIC_NAME:
    case MQCA_TOPIC_STRING:
    case MQIACF_WILDCARD_SCHEMA:
    case MQIACF_SUBSCRIPTION_SCOPE:
        return failure(MQRC_TOPIC_NOT_ALTERABLE);
    case MQCACF_SUB_SELECTOR:
        return failure(MQRC_SELECTOR_NOT_ALTERABLE);
    case MQIACF_SUB_LEVEL:
        return failure(MQRC_SUBLEVEL_NOT_ALTERABLE);
    case MQIACF_DESTINATION_CLASS:
        return failure(MQRC_DEST_CLASS_NOT_ALTERABLE);
    default:
        return success();
    }
}

// Why there is none of this name: a definition that stands in its place cannot be read.
Outcome whyNotFound(Attachment &attachment, const std::string &name)
{
    const auto stored = attachment.findDefinition(store::subscriptions, objects::subscriptionKey(name));
    if (!stored) return failure(MQRC_NO_SUBSCRIPTION);
    const auto read = Subscription::decode(stored->bytes);
    return failure(read && read->name == name ? MQRC_NO_SUBSCRIPTION : MQRC_OBJECT_DAMAGED);
}

} // namespace

Outcome defineSubscription(Attachment &attachment, const SubscriptionDefinition &definition)
{
    Subscription made;
    if (const Outcome described = describe(attachment, definition, made); described.failed()) return described;
    for (int attempt = 0;; ++attempt) {
        auto known = objects::findSubscription(attachment, definition.name); // which removes one that has expired
        if (known && definition.replace == Replace::No) return failure(MQRC_SUB_ALREADY_EXISTS);
        if (!known)
            if (const Outcome none = whyNotFound(attachment, definition.name); none.Reason == MQRC_OBJECT_DAMAGED)
                return none;
        const Outcome defined = known ? replace(attachment, std::move(*known), made) : create(attachment, made);
        // Somebody was faster; or one that has expired cannot be removed now.
        const bool again = attempt < mostAttempts && definition.replace == Replace::Yes &&
                           (defined.Reason == MQRC_SUB_ALREADY_EXISTS || defined.Reason == MQRC_OBJECT_CHANGED ||
                            defined.Reason == MQRC_UNKNOWN_OBJECT_NAME);
        if (!again) return defined;
    }
}

Outcome alterSubscription(Attachment &attachment, const std::string &name, const std::vector<Assignment> &attributes)
{
    for (const Assignment &change : attributes)
        if (const Outcome may = checkAlterable(change); may.failed()) return may;
    for (;;) {
        auto known = objects::findSubscription(attachment, name);
        if (!known) return whyNotFound(attachment, name);
        const bool moves = std::ranges::any_of(attributes, [](const Assignment &change) {
            return change.attribute->selector == MQCACF_DESTINATION ||
                   change.attribute->selector == MQCACF_DESTINATION_Q_MGR;
        });
        if (moves && known->subscription.managed) return failure(MQRC_DEST_CLASS_NOT_ALTERABLE);
        if (const Outcome assigned = assign(known->subscription, attributes); assigned.failed()) return assigned;
        const std::string seen = std::exchange(known->definition.bytes, known->subscription.encode());
        const Outcome altered = attachment.alter(known->definition, seen);
        if (altered.Reason != MQRC_OBJECT_CHANGED && altered.Reason != MQRC_UNKNOWN_OBJECT_NAME) return altered;
    }
}

Outcome deleteSubscription(Attachment &attachment, const std::string &name)
{
    const auto known = objects::findSubscription(attachment, name);
    if (!known) return whyNotFound(attachment, name);
    return objects::removeSubscription(attachment, *known, objects::Handle::None);
}

std::vector<objects::StoredSubscription> inquireSubscriptions(Attachment &attachment, const std::string &genericName)
{
    std::vector<objects::StoredSubscription> found;
    const std::int64_t now = store::currentTime();
    for (store::Definition &stored : attachment.definitions(store::subscriptions)) {
        auto subscription = Subscription::decode(stored.bytes);
        if (subscription && !subscription->expired(now) && objects::matchesGeneric(genericName, subscription->name))
            found.push_back({std::move(stored), std::move(*subscription)});
    }
    std::ranges::sort(found, {}, [](const objects::StoredSubscription &stored) {
        return std::tie(stored.subscription.name, stored.subscription.id);
    });
    return found;
}

} // namespace mqrig::qmgr::command
