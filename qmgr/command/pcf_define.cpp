#include <algorithm>
#include <ctime>

#include "qmgr/command/pcf_commands.h"

namespace mqrig::qmgr::command {
namespace {

using objects::ObjectDefinition;

// "2026-11-21" and "09.30.05" in local time, as objects carry them, one behind the other.
std::string stampOf(std::int64_t microseconds)
{
    const auto seconds = static_cast<std::time_t>(microseconds / 1000000);
    std::tm parts{};
    localtime_r(&seconds, &parts);
    char text[32];
    const std::size_t length = std::strftime(text, sizeof text, "%Y-%m-%d%H.%M.%S", &parts);
    return {text, length};
}

// Whether an earlier run of this very command has made the object: it is what the command asks for, and no older than
// the command.
bool madeBefore(const PcfCommand &command, const Definition &definition)
{
    if (!command.repeated) return false;
    const auto stored = command.attachment.findDefinition(objects::openType(definition.kind), definition.name);
    if (!stored) return false;
    const auto object = ObjectDefinition::decode(stored->bytes);
    if (!object || object->kind() != definition.kind) return false;
    const std::string altered =
        std::string(object->text(MQCA_ALTERATION_DATE)) + std::string(object->text(MQCA_ALTERATION_TIME));
    return altered >= stampOf(command.putTime) &&
           std::all_of(definition.attributes.begin(), definition.attributes.end(), [&](const Assignment &assignment) {
               return object->value(*assignment.attribute) == assignment.value;
           });
}

// What is common to Create, Change and Copy. True when the definition can be used.
bool readDefinition(const PcfCommand &command, PcfReplies &replies, Definition &definition)
{
    const PcfKinds kinds = readOneKind(command);
    if (kinds.fault) {
        replies.fail(kinds.fault);
        return false;
    }
    definition.kind = objects::onlyKind(kinds.kinds);
    const PcfChoice replace = readChoice(command, MQIACF_REPLACE, MQRCCF_REPLACE_VALUE_ERROR);
    const PcfChoice force = readChoice(command, MQIACF_FORCE, MQRCCF_FORCE_VALUE_ERROR);
    PcfAssignments read = readAssignments(command, definition.kind);
    for (const PcfFault &fault : {replace.fault, force.fault, read.fault})
        if (fault) replies.fail(fault);
    definition.replace = replace.second ? Replace::Yes : Replace::No;
    definition.force = force.second ? Force::Yes : Force::No;
    definition.attributes = std::move(read.assignments);
    return !replies.failed();
}

void define(const PcfCommand &command, PcfReplies &replies, const Definition &definition, MQLONG nameParameter)
{
    const Outcome outcome = defineObject(command.attachment, definition);
    if (outcome.Reason == MQRCCF_OBJECT_ALREADY_EXISTS && madeBefore(command, definition)) return;
    const bool pattern = outcome.Reason == MQRCCF_LIKE_OBJECT_WRONG_TYPE || outcome.Reason == MQRC_UNKNOWN_OBJECT_NAME;
    replies.judge(outcome, pattern && !definition.like.empty() ? command.family.from : nameParameter);
    if (outcome.ok()) replies.noteTriggering(touchedTriggering(definition));
}

} // namespace

void createObject(const PcfCommand &command, PcfReplies &replies)
{
    Definition definition;
    if (!readDefinition(command, replies, definition)) return;
    definition.name = command.text(command.family.name);
    define(command, replies, definition, command.family.name);
}

void copyObject(const PcfCommand &command, PcfReplies &replies)
{
    Definition definition;
    if (!readDefinition(command, replies, definition)) return;
    definition.name = command.text(command.family.to);
    definition.like = command.text(command.family.from);
    // An empty name would mean the default object.
    if (definition.like.empty()) return replies.fail(faultOf(MQRCCF_OBJECT_NAME_ERROR, command.family.from));
    define(command, replies, definition, command.family.to);
}

void changeObject(const PcfCommand &command, PcfReplies &replies)
{
    Definition change;
    if (!readDefinition(command, replies, change)) return;
    change.name = command.text(command.family.name);
    const Outcome outcome = alterObject(command.attachment, change);
    replies.judge(outcome, command.family.name);
    if (outcome.ok()) replies.noteTriggering(touchedTriggering(change));
}

void deleteObject(const PcfCommand &command, PcfReplies &replies)
{
    const PcfKinds asked = readKinds(command);
    const PcfChoice purge = readChoice(command, MQIACF_PURGE, MQRCCF_PURGE_VALUE_ERROR);
    for (const PcfFault &fault : {asked.fault, purge.fault})
        if (fault) replies.fail(fault);
    if (replies.failed()) return;

    const std::string name = command.text(command.family.name);
    const MQLONG type = objects::openType(objects::onlyKind(command.family.kinds));
    const auto stored = command.attachment.findDefinition(type, name);
    if (!stored) {
        // An earlier run of this very command has deleted it.
        if (!command.repeated) replies.fail(faultOf(MQRC_UNKNOWN_OBJECT_NAME, command.family.name));
        return;
    }
    const auto object = ObjectDefinition::decode(stored->bytes);
    if (!object) return replies.fail(faultOf(MQRC_OBJECT_DAMAGED, command.family.name));
    if (!objects::contains(asked.kinds, object->kind()))
        return replies.fail(faultOf(MQRCCF_OBJECT_WRONG_TYPE, command.family.name));
    replies.judge(deleteObject(command.attachment, object->kind(), name, purge.second ? Purge::Yes : Purge::No),
                  command.family.name);
}

} // namespace mqrig::qmgr::command
