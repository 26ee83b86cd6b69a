#include "qmgr/objects/topic_tree.h"

#include <optional>
#include <utility>

#include "qmgr/objects/system_objects.h"

namespace mqrig::qmgr::objects {
namespace {

// An attribute, where to put it, and the value that leaves it to the parent.
struct Inherited {
    MQLONG selector;
    MQLONG TopicAttributes::*place;
    MQLONG asParent;
};
constexpr Inherited inherited[] = {
    {MQIA_INHIBIT_PUB, &TopicAttributes::publish, MQTA_PUB_AS_PARENT},
    {MQIA_INHIBIT_SUB, &TopicAttributes::subscribe, MQTA_SUB_AS_PARENT},
    {MQIA_DURABLE_SUB, &TopicAttributes::durableSubs, MQSUB_DURABLE_AS_PARENT},
    {MQIA_DEF_PRIORITY, &TopicAttributes::defPriority, MQPRI_PRIORITY_AS_PARENT},
    {MQIA_TOPIC_DEF_PERSISTENCE, &TopicAttributes::defPersistence, MQPER_PERSISTENCE_AS_PARENT},
    {MQIA_DEF_PUT_RESPONSE_TYPE, &TopicAttributes::defPutResponse, MQPRT_RESPONSE_AS_PARENT},
    {MQIA_PM_DELIVERY, &TopicAttributes::persistentDelivery, MQDLV_AS_PARENT},
    {MQIA_NPM_DELIVERY, &TopicAttributes::nonPersistentDelivery, MQDLV_AS_PARENT},
    {MQIA_USE_DEAD_LETTER_Q, &TopicAttributes::useDeadLetterQueue, MQUSEDLQ_AS_PARENT},
    {MQIA_PUB_SCOPE, &TopicAttributes::pubScope, MQSCOPE_AS_PARENT},
    {MQIA_SUB_SCOPE, &TopicAttributes::subScope, MQSCOPE_AS_PARENT},
};

// Blank leaves these to the parent.
struct InheritedText {
    MQLONG selector;
    std::string TopicAttributes::*place;
};
constexpr InheritedText inheritedTexts[] = {
    {MQCA_MODEL_DURABLE_Q, &TopicAttributes::durableModel},
    {MQCA_MODEL_NON_DURABLE_Q, &TopicAttributes::nonDurableModel},
};

// From an object above another one.
void inherit(const ObjectDefinition &from, const ObjectDefinition &to, ObjectDefinition &into)
{
    for (const Inherited &one : inherited)
        if (to.number(one.selector) == one.asParent) into.set(one.selector, from.number(one.selector));
    for (const InheritedText &one : inheritedTexts)
        if (to.text(one.selector).empty()) into.set(one.selector, from.text(one.selector));
}

TopicAttributes attributesIn(const ObjectDefinition &object)
{
    TopicAttributes attributes;
    attributes.object = object.name();
    for (const Inherited &one : inherited)
        if (object.number(one.selector) != one.asParent) attributes.*one.place = object.number(one.selector);
    for (const InheritedText &one : inheritedTexts)
        attributes.*one.place = object.text(one.selector);
    if (attributes.durableModel.empty()) attributes.durableModel = durableModelQueue;
    if (attributes.nonDurableModel.empty()) attributes.nonDurableModel = nonDurableModelQueue;
    return attributes;
}

} // namespace

MQLONG TopicAttributes::number(MQLONG selector) const
{
    for (const Inherited &one : inherited)
        if (one.selector == selector) return this->*one.place;
    return 0;
}

std::string_view TopicAttributes::text(MQLONG selector) const
{
    for (const InheritedText &one : inheritedTexts)
        if (one.selector == selector) return this->*one.place;
    return {};
}

TopicTree::TopicTree(std::span<const store::Definition> definitions) : base_(ObjectKind::Topic, baseTopic)
{
    for (const store::Definition &stored : definitions) {
        std::optional<ObjectDefinition> object = ObjectDefinition::decode(stored.bytes);
        if (!object || object->kind() != ObjectKind::Topic) continue;
        std::string topic(object->text(MQCA_TOPIC_STRING));
        if (stored.name == baseTopic)
            base_ = std::move(*object);
        else if (!topic.empty())
            nodes_.emplace(std::move(topic), std::move(*object));
    }
}

TopicAttributes TopicTree::attributesOf(std::string_view topic) const
{
    std::optional<ObjectDefinition> nearest;
    std::size_t blocked = 0;
    const auto look = [&](const ObjectDefinition &object, std::string_view at) {
        if (blocked == 0 && object.number(MQIA_WILDCARD_OPERATION) == MQTA_BLOCK) blocked = topicLevels(at).size();
        if (!nearest) {
            nearest = object;
            return;
        }
        const ObjectDefinition below = *nearest;
        inherit(object, below, *nearest);
    };
    for (std::optional<std::string_view> at = topic; at; at = parentTopic(*at))
        if (const auto node = nodes_.find(*at); node != nodes_.end()) look(node->second, *at);
    look(base_, {});
    TopicAttributes attributes = attributesIn(*nearest);
    attributes.blockedLevels = blocked;
    return attributes;
}

std::string_view TopicTree::objectAt(std::string_view topic) const
{
    const auto node = nodes_.find(topic);
    return node == nodes_.end() ? std::string_view() : std::string_view(node->second.name());
}

} // namespace mqrig::qmgr::objects
