#include "qmgr/command/object_commands.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "cmqcfc.h"
#include "qmgr/objects/definition_change.h"
#include "qmgr/objects/object_name.h"
#include "qmgr/objects/queue_counters.h"
#include "qmgr/objects/system_objects.h"

namespace mqrig::qmgr::command {
namespace {

using objects::ObjectDefinition;
using objects::ObjectKind;
using store::Attachment;
using store::QueueStatus;

struct Found {
    Outcome outcome;
    store::Definition stored;
    ObjectDefinition object;
};

Found find(Attachment &attachment, MQLONG type, std::string_view name)
{
    auto stored = attachment.findDefinition(type, name);
    if (!stored) return {failure(MQRC_UNKNOWN_OBJECT_NAME), {}, {}};
    auto object = ObjectDefinition::decode(stored->bytes);
    if (!object) return {failure(MQRC_OBJECT_DAMAGED), {}, {}};
    return {success(), std::move(*stored), std::move(*object)};
}

Found findOfKind(Attachment &attachment, ObjectKind kind, std::string_view name)
{
    Found found = find(attachment, objects::openType(kind), name);
    if (found.outcome.ok() && found.object.kind() != kind) found.outcome = failure(MQRCCF_OBJECT_WRONG_TYPE);
    return found;
}

bool isOpen(const QueueStatus &status)
{
    const store::OpenCounts &opens = status.opens;
    return opens.input > 0 || opens.output > 0 || opens.browse > 0;
}

bool hasUncommitted(const QueueStatus &status)
{
    return status.held > 0 || status.uncommitted > 0;
}

Outcome readStatus(Attachment &attachment, store::QueueId queue, QueueStatus &status)
{
    return attachment.read([&](store::ReadTransaction &transaction) {
        status = transaction.queue(queue);
        return success();
    });
}

void assign(ObjectDefinition &object, const std::vector<Assignment> &changes)
{
    for (const Assignment &change : changes)
        object.set(*change.attribute, change.value);
}

// Attributes that exclude each other.
Outcome checkTogether(const ObjectDefinition &object)
{
    const auto both = [&](MQLONG first, MQLONG second) {
        return !object.text(first).empty() && !object.text(second).empty();
    };
    if (object.number(MQIA_Q_DEPTH_LOW_LIMIT) > object.number(MQIA_Q_DEPTH_HIGH_LIMIT))
        return failure(MQRCCF_ATTR_VALUE_ERROR);
    if (both(MQCA_CLUSTER_NAME, MQCA_CLUSTER_NAMELIST)) return failure(MQRCCF_CLUSTER_NAME_CONFLICT);
    if (both(MQCA_REPOSITORY_NAME, MQCA_REPOSITORY_NAMELIST)) return failure(MQRCCF_REPOS_NAME_CONFLICT);
    return success();
}

// Whether a queue may change from one definition to the other while programs may have it open.
Outcome mayChange(Attachment &attachment, store::QueueId queue, const ObjectDefinition &before,
                  const ObjectDefinition &after, Force force)
{
    if (const Outcome together = checkTogether(after); together.failed()) return together;
    if (before.kind() == ObjectKind::Topic && before.text(MQCA_TOPIC_STRING) != after.text(MQCA_TOPIC_STRING))
        return failure(MQRC_TOPIC_NOT_ALTERABLE);
    const auto changes = [&](MQLONG selector) { return before.number(selector) != after.number(selector); };
    const bool careful = before.kind() == ObjectKind::LocalQueue && force == Force::No;
    if (!careful || !(changes(MQIA_SHAREABILITY) || changes(MQIA_USAGE))) return success();

    const auto judge = [&] {
        QueueStatus status;
        if (const Outcome known = readStatus(attachment, queue, status); known.failed()) return known;
        const bool sharedNow = after.number(MQIA_SHAREABILITY) == MQQA_NOT_SHAREABLE && status.opens.input > 1;
        const bool busy = isOpen(status) || status.depth > 0 || hasUncommitted(status);
        const bool refused = (changes(MQIA_SHAREABILITY) && sharedNow) || (changes(MQIA_USAGE) && busy);
        return refused ? failure(MQRCCF_OBJECT_OPEN) : success();
    };
    const Outcome first = judge();
    return first.Reason == MQRCCF_OBJECT_OPEN && attachment.releaseDead() ? judge() : first;
}

// What a new object begins with: the attributes of the one it shall be like, of its kind's SYSTEM.DEFAULT object, or,
// where that one is missing, MQ's defaults.
Found findPattern(Attachment &attachment, const Definition &definition)
{
    const bool named = !definition.like.empty();
    const std::string_view name = named ? definition.like : objects::defaultObject(definition.kind);
    Found pattern = findOfKind(attachment, definition.kind, name);
    if (pattern.outcome.Reason == MQRC_UNKNOWN_OBJECT_NAME && !named)
        return {success(), {}, ObjectDefinition(definition.kind, definition.name)};
    if (pattern.outcome.Reason == MQRCCF_OBJECT_WRONG_TYPE) pattern.outcome = failure(MQRCCF_LIKE_OBJECT_WRONG_TYPE);
    return pattern;
}

// The object as a new one would be.
Found makeObject(Attachment &attachment, const Definition &definition)
{
    Found made = findPattern(attachment, definition);
    if (made.outcome.failed()) return made;
    made.object.rename(definition.name);
    if (definition.kind == ObjectKind::LocalQueue) made.object.set(MQIA_DEFINITION_TYPE, MQQDT_PREDEFINED);
    assign(made.object, definition.attributes);
    return made;
}

// A new topic object stands for a topic that no other one stands for.
Outcome checkTopic(Attachment &attachment, const ObjectDefinition &topic)
{
    if (topic.kind() != ObjectKind::Topic) return success();
    const std::string_view string = topic.text(MQCA_TOPIC_STRING);
    if (topic.name() == objects::baseTopic || topic.name() == objects::defaultTopic) return success();
    if (string.empty() || string.back() == '/') return failure(MQRC_TOPIC_STRING_ERROR);
    for (const store::Definition &stored : attachment.definitions(MQOT_TOPIC)) {
        const auto other = ObjectDefinition::decode(stored.bytes);
        if (other && other->text(MQCA_TOPIC_STRING) == string) return failure(MQRCCF_TOPICSTR_ALREADY_EXISTS);
    }
    return success();
}

Outcome replaceObject(Attachment &attachment, const Definition &definition)
{
    const auto replace = [&](ObjectDefinition &existing, store::QueueId queue) {
        if (existing.kind() != definition.kind) return failure(MQRCCF_OBJECT_WRONG_TYPE);
        if (definition.replace == Replace::No) return failure(MQRCCF_OBJECT_ALREADY_EXISTS);
        Found made = makeObject(attachment, definition);
        if (made.outcome.failed()) return made.outcome;
        for (const MQLONG kept : {MQCA_CREATION_DATE, MQCA_CREATION_TIME})
            made.object.set(kept, existing.text(kept));
        if (existing.kind() == ObjectKind::LocalQueue)
            made.object.set(MQIA_DEFINITION_TYPE, existing.number(MQIA_DEFINITION_TYPE));
        made.object.stampAltered();
        const Outcome may = mayChange(attachment, queue, existing, made.object, definition.force);
        if (!may.failed()) existing = std::move(made.object);
        return may;
    };
    return objects::changeDefinition(attachment, objects::openType(definition.kind), definition.name, replace);
}

} // namespace

std::string touchedTriggering(const Definition &definition)
{
    const bool touched =
        definition.replace == Replace::Yes ||
        std::ranges::any_of(definition.attributes, [](const Assignment &each) { return each.attribute->triggering; });
    return touched && definition.kind == ObjectKind::LocalQueue ? definition.name : std::string();
}

Outcome defineObject(Attachment &attachment, const Definition &definition)
{
    if (!objects::checkObjectName(definition.name)) return failure(MQRCCF_OBJECT_NAME_ERROR);
    // Between the two looks of one round another connection may make or delete the object.
    for (;;) {
        const Outcome replaced = replaceObject(attachment, definition);
        if (replaced.Reason != MQRC_UNKNOWN_OBJECT_NAME) return replaced;

        Found made = makeObject(attachment, definition);
        if (made.outcome.failed()) return made.outcome;
        if (const Outcome together = checkTogether(made.object); together.failed()) return together;
        if (const Outcome topic = checkTopic(attachment, made.object); topic.failed()) return topic;
        made.object.stampCreated();
        store::Definition stored;
        stored.type = objects::openType(definition.kind);
        stored.name = definition.name;
        stored.bytes = made.object.encode();
        const Outcome defined = attachment.define(stored);
        if (defined.Reason != MQRC_OBJECT_ALREADY_EXISTS) return defined;
    }
}

Outcome alterObject(Attachment &attachment, const Definition &change)
{
    const auto alter = [&](ObjectDefinition &object, store::QueueId queue) {
        if (object.kind() != change.kind) return failure(MQRCCF_OBJECT_WRONG_TYPE);
        const ObjectDefinition before = object;
        assign(object, change.attributes);
        object.stampAltered();
        return mayChange(attachment, queue, before, object, change.force);
    };
    return objects::changeDefinition(attachment, objects::openType(change.kind), change.name, alter);
}

Outcome alterQueueManager(Attachment &attachment, const std::vector<Assignment> &changes)
{
    const auto alter = [&](ObjectDefinition &object, store::QueueId) {
        assign(object, changes);
        object.stampAltered();
        return checkTogether(object);
    };
    return objects::changeDefinition(attachment, MQOT_Q_MGR, attachment.queueManagerName(), alter);
}

Outcome deleteObject(Attachment &attachment, ObjectKind kind, const std::string &name, Purge purge)
{
    const Found found = findOfKind(attachment, kind, name);
    if (found.outcome.failed()) return found.outcome;
    const MQLONG type = objects::openType(kind);
    const auto mayGo = [&](const QueueStatus &status) {
        if (isOpen(status)) return failure(MQRCCF_OBJECT_OPEN);
        if (hasUncommitted(status)) return failure(MQRC_Q_NOT_EMPTY);
        if (status.depth > 0 && purge == Purge::No) return failure(MQRC_Q_NOT_EMPTY);
        return success();
    };
    const Outcome first = attachment.remove(type, name, mayGo);
    const bool refused = first.Reason == MQRCCF_OBJECT_OPEN || first.Reason == MQRC_Q_NOT_EMPTY;
    return refused && attachment.releaseDead() ? attachment.remove(type, name, mayGo) : first;
}

objects::AttributeValue InquiredObject::value(const objects::Attribute &attribute) const
{
    if (attribute.access == objects::Access::Dynamic) return {objects::countedValue(status, attribute.selector), {}};
    return definition.value(attribute);
}

InquiredObjects inquireObjects(Attachment &attachment, const std::string &genericName, objects::ObjectKinds kinds)
{
    InquiredObjects answer;
    std::vector<store::QueueId> ids;
    for (const MQLONG type : {MQOT_Q, MQOT_NAMELIST, MQOT_PROCESS, MQOT_TOPIC}) {
        if (!objects::hasOpenType(kinds, type)) continue;
        for (const store::Definition &stored : attachment.definitions(type)) {
            if (!objects::matchesGeneric(genericName, stored.name)) continue;
            auto object = ObjectDefinition::decode(stored.bytes);
            if (!object) {
                answer.outcome = warning(MQRC_OBJECT_DAMAGED);
                continue;
            }
            if (!objects::contains(kinds, object->kind())) continue;
            answer.objects.push_back({std::move(*object), {}});
            ids.push_back(stored.queue);
        }
    }
    if (answer.objects.empty()) {
        if (answer.outcome.ok()) answer.outcome = failure(MQRC_UNKNOWN_OBJECT_NAME);
        return answer;
    }
    const Outcome counted = attachment.read([&](store::ReadTransaction &transaction) {
        for (std::size_t i = 0; i < ids.size(); ++i)
            if (answer.objects[i].definition.kind() == ObjectKind::LocalQueue)
                answer.objects[i].status = transaction.queue(ids[i]);
        return success();
    });
    if (counted.failed()) answer.outcome = counted;
    return answer;
}

InquiredQueueManager inquireQueueManager(Attachment &attachment)
{
    Found found = find(attachment, MQOT_Q_MGR, attachment.queueManagerName());
    return {found.outcome, {std::move(found.object), {}}};
}

} // namespace mqrig::qmgr::command
