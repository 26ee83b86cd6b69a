// What the functions behind command messages share: their input, and the reading and writing of parameters.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "cmqc.h"
#include "cmqcfc.h"
#include "qmgr/command/mqsc_filter.h"
#include "qmgr/command/object_commands.h"
#include "qmgr/command/pcf_reader.h"
#include "qmgr/command/pcf_replies.h"
#include "qmgr/command/pcf_writer.h"

namespace mqrig::qmgr::command {

// Objects that have commands of the same form, with the ids of their parameters.
struct PcfFamily {
    objects::ObjectKinds kinds;
    MQLONG name;       // MQCA_Q_NAME
    MQLONG from;       // MQCACF_FROM_Q_NAME
    MQLONG to;         // MQCACF_TO_Q_NAME
    MQLONG attributes; // MQIACF_Q_ATTRS
    MQLONG names;      // MQCACF_Q_NAMES
};

struct PcfCommand {
    store::Attachment &attachment;
    const PcfFamily &family;
    std::span<const PcfParameter> parameters; // fit to the command's row
    std::int64_t putTime;                     // of the request
    bool repeated;                            // see PcfRequest

    // Null where it is not given.
    const PcfParameter *find(MQLONG id) const;
    // Without padding; empty where it is not given.
    std::string text(MQLONG id) const;
    // Nothing where it is not given.
    std::optional<MQLONG> number(MQLONG id) const;
};

using PcfFunction = void (*)(const PcfCommand &, PcfReplies &);

void pingQueueManager(const PcfCommand &command, PcfReplies &replies);
void inquireQueueManager(const PcfCommand &command, PcfReplies &replies);
void changeQueueManager(const PcfCommand &command, PcfReplies &replies);
void createObject(const PcfCommand &command, PcfReplies &replies);
void changeObject(const PcfCommand &command, PcfReplies &replies);
void copyObject(const PcfCommand &command, PcfReplies &replies);
void deleteObject(const PcfCommand &command, PcfReplies &replies);
void inquireObjects(const PcfCommand &command, PcfReplies &replies);
void inquireObjectNames(const PcfCommand &command, PcfReplies &replies);
void inquireQueueStatus(const PcfCommand &command, PcfReplies &replies);
void inquireQueueManagerStatus(const PcfCommand &command, PcfReplies &replies);
void inquireConnections(const PcfCommand &command, PcfReplies &replies);
void resetQueueStatistics(const PcfCommand &command, PcfReplies &replies);
void clearQueue(const PcfCommand &command, PcfReplies &replies);
void escape(const PcfCommand &command, PcfReplies &replies);

// ---- Reading ----

// The kinds of object that the command is about: the family's, or with the queue type of a queue command those of
// that type. MQRCCF_Q_TYPE_ERROR.
struct PcfKinds {
    PcfFault fault;
    objects::ObjectKinds kinds = 0;
};
PcfKinds readKinds(const PcfCommand &command);
// Where it has to be one kind, MQQT_ALL is no answer.
PcfKinds readOneKind(const PcfCommand &command);

// One of two values, the first where it is not given.
struct PcfChoice {
    PcfFault fault; // with the reason given
    bool second = false;
};
PcfChoice readChoice(const PcfCommand &command, MQLONG id, MQLONG reason);

// The attributes among the parameters, checked by their rows for this kind of object.
struct PcfAssignments {
    PcfFault fault;
    std::vector<Assignment> assignments;
};
PcfAssignments readAssignments(const PcfCommand &command, objects::ObjectKind kind);

// The list of attributes to be returned.
struct PcfSelection {
    PcfFault fault;
    bool all = true;               // no list, or MQIACF_ALL
    std::vector<MQLONG> selectors; // in the order of the list
};
// `rows`: the attributes that the command could return. MQRC_SELECTOR_ERROR, MQRCCF_CFIL_DUPLICATE_VALUE.
PcfSelection readSelection(const PcfCommand &command, MQLONG id,
                           std::span<const objects::Attribute> rows = objects::attributes());

// The same for a command whose selectors are no rows.
PcfSelection readSelection(const PcfParameter &list, std::span<const MQLONG> known);

// The filter, where there is one.
struct PcfFilter {
    PcfFault fault;
    const objects::Attribute *attribute = nullptr; // that it compares
    std::optional<Filter> filter;
};
PcfFilter readFilter(const PcfCommand &command, std::span<const objects::Attribute> rows = objects::attributes());

// The error for a structure of that type whose parameter the command does not have.
MQLONG parameterIdError(MQLONG type);

// ---- Writing ----

void writeAttribute(PcfWriter &reply, const objects::Attribute &attribute, const objects::AttributeValue &value);
// The attributes that are always returned, then those selected that this kind of object has.
using ValueOf = std::function<objects::AttributeValue(const objects::Attribute &attribute)>;
void writeAttributes(PcfWriter &reply, std::span<const objects::Attribute> rows, objects::ObjectKind kind,
                     const PcfSelection &selection, std::span<const MQLONG> always, const ValueOf &valueOf);
// The same of an object of the family: its name, for a queue its type, and what is selected.
void writeObject(PcfWriter &reply, const PcfFamily &family, const InquiredObject &object,
                 const PcfSelection &selection);

} // namespace mqrig::qmgr::command
