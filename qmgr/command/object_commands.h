// What administration does to objects, whichever language asked for it: the command language and command messages
// both come down to these.
//
// The outcomes' reasons are those of PCF: MQRC_ where the MQI has one, else MQRCCF_.
#pragma once

#include <string>
#include <vector>

#include "qmgr/objects/attribute.h"
#include "qmgr/objects/attribute_value.h"
#include "qmgr/objects/object_definition.h"
#include "qmgr/store/attachment.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::command {

// An attribute to be set; the value has been checked against the attribute's row.
struct Assignment {
    const objects::Attribute *attribute = nullptr;
    objects::AttributeValue value;
};

enum class Replace { No, Yes };
enum class Force { No, Yes };
enum class Purge { No, Yes };

struct Definition {
    objects::ObjectKind kind = objects::ObjectKind::LocalQueue;
    std::string name;
    std::string like; // the object whose attributes are taken; empty: the kind's SYSTEM.DEFAULT object
    std::vector<Assignment> attributes;
    Replace replace = Replace::No;
    Force force = Force::No;
};

// The local queue whose triggering a definition that was carried out has touched: a trigger message may be due for the
// messages that are there. Empty: none.
std::string touchedTriggering(const Definition &definition);

// A new topic object needs a topic string of its own: MQRC_TOPIC_STRING_ERROR, MQRCCF_TOPICSTR_ALREADY_EXISTS; it
// cannot be altered: MQRC_TOPIC_NOT_ALTERABLE.
//
// Makes an object, or with Replace gives an existing one the attributes that a new one would have; a queue's messages
// and its creation date stay. MQRCCF_OBJECT_NAME_ERROR, MQRCCF_OBJECT_ALREADY_EXISTS, MQRCCF_LIKE_OBJECT_WRONG_TYPE,
// MQRC_UNKNOWN_OBJECT_NAME for the model object, and those of alterObject.
Outcome defineObject(store::Attachment &attachment, const Definition &definition);

// Changes attributes of an object. MQRC_UNKNOWN_OBJECT_NAME, MQRCCF_OBJECT_WRONG_TYPE. MQRCCF_OBJECT_OPEN without
// Force: NOSHARE on a queue with more than one input handle, or another USAGE while it is open or has messages.
// MQRCCF_ATTR_VALUE_ERROR: the low limit of the depth would be above the high one. MQRCCF_CLUSTER_NAME_CONFLICT: a
// cluster and a namelist of clusters.
Outcome alterObject(store::Attachment &attachment, const Definition &change);

// MQRCCF_OBJECT_OPEN; MQRC_Q_NOT_EMPTY with uncommitted messages, or with messages and without Purge.
Outcome deleteObject(store::Attachment &attachment, objects::ObjectKind kind, const std::string &name, Purge purge);

// Removes all messages. MQRC_OBJECT_IN_USE when it is open or has uncommitted messages.
Outcome clearQueue(store::Attachment &attachment, const std::string &name);

// MQRCCF_REPOS_NAME_CONFLICT: a repository and a namelist of repositories.
Outcome alterQueueManager(store::Attachment &attachment, const std::vector<Assignment> &changes);

// An object with its counters as they are now (all zero for what is not a queue).
struct InquiredObject {
    objects::ObjectDefinition definition;
    store::QueueStatus status;

    objects::AttributeValue value(const objects::Attribute &attribute) const;
};

// The objects of these kinds whose name fits the generic name, in name order; queues of all kinds stand together.
struct InquiredObjects {
    Outcome outcome;
    std::vector<InquiredObject> objects;
};
InquiredObjects inquireObjects(store::Attachment &attachment, const std::string &genericName,
                               objects::ObjectKinds kinds);

struct InquiredQueueManager {
    Outcome outcome;
    InquiredObject queueManager;
};
InquiredQueueManager inquireQueueManager(store::Attachment &attachment);

} // namespace mqrig::qmgr::command
