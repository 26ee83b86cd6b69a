// The topic tree: what topic objects say about the topics at and below them.
//
// A topic has each attribute from the nearest topic object at or above it that does not say ASPARENT; at the root
// stands SYSTEM.BASE.TOPIC.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <span>
#include <string>
#include <string_view>

#include "cmqc.h"
#include "qmgr/objects/object_definition.h"
#include "qmgr/objects/topic_string.h"
#include "qmgr/store/attachment.h"

namespace mqrig::qmgr::objects {

// What holds for one topic.
struct TopicAttributes {
    std::string object; // name of the nearest topic object
    MQLONG publish = MQTA_PUB_ALLOWED;
    MQLONG subscribe = MQTA_SUB_ALLOWED;
    MQLONG durableSubs = MQSUB_DURABLE_ALLOWED;
    MQLONG defPriority = 0;
    MQLONG defPersistence = MQPER_NOT_PERSISTENT;
    MQLONG defPutResponse = MQPRT_SYNC_RESPONSE;
    MQLONG persistentDelivery = MQDLV_ALL_DUR;      // MQDLV_
    MQLONG nonPersistentDelivery = MQDLV_ALL_AVAIL; // MQDLV_
    MQLONG useDeadLetterQueue = MQUSEDLQ_YES;
    MQLONG pubScope = MQSCOPE_ALL;
    MQLONG subScope = MQSCOPE_ALL;
    std::string durableModel;
    std::string nonDurableModel;
    // Of the lowest topic object at or above with WILDCARD(BLOCK) the number of levels; 0: there is none. Patterns
    // with a wildcard in one of these levels do not reach the topic.
    std::size_t blockedLevels = 0;

    // By the selector of the topic object's attribute; 0 and empty for attributes that are not inherited.
    MQLONG number(MQLONG selector) const;
    std::string_view text(MQLONG selector) const;

    bool reachedBy(const TopicPattern &pattern) const
    {
        return !pattern.hasWildcards() || pattern.levelsBeforeWildcard() >= blockedLevels;
    }
};

class TopicTree {
public:
    // Of all definitions of topics; damaged ones say nothing.
    explicit TopicTree(std::span<const store::Definition> definitions);

    TopicAttributes attributesOf(std::string_view topic) const;
    // The name of the topic object that has this topic string; empty if none has.
    std::string_view objectAt(std::string_view topic) const;
    // visit(topic string, object) for every node that has an object.
    template <class Visit>
    void forEach(Visit &&visit) const
    {
        for (const auto &[topic, object] : nodes_)
            visit(topic, object);
    }

private:
    std::map<std::string, ObjectDefinition, std::less<>> nodes_; // by topic string
    ObjectDefinition base_;
};

} // namespace mqrig::qmgr::objects
