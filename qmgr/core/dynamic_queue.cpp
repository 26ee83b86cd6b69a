#include "qmgr/core/dynamic_queue.h"

#include <array>
#include <cstdint>
#include <string>
#include <utility>

#include "qmgr/objects/object_name.h"
#include "qmgr/objects/publish_subscribe.h"

namespace mqrig::qmgr::core {
namespace {

using objects::ObjectDefinition;

// What is put for the '*': as many hexadecimal digits as a number has.
constexpr std::size_t digits = 16;

std::string uniqueName(store::Attachment &store, std::string_view prefix)
{
    std::string name(prefix);
    const std::uint64_t number = store.uniqueNumber();
    for (int shift = 60; shift >= 0; shift -= 4)
        name += "0123456789ABCDEF"[(number >> shift) & 0xF];
    return name;
}

bool isPrefix(std::string_view prefix)
{
    return prefix.size() <= objects::maxNameLength - digits && (prefix.empty() || objects::checkObjectName(prefix));
}

Outcome define(store::Attachment &store, ObjectDefinition &queue, std::string name)
{
    queue.rename(name);
    store::Definition definition;
    definition.type = MQOT_Q;
    definition.name = std::move(name);
    definition.bytes = queue.encode();
    return queue.number(MQIA_DEFINITION_TYPE) == MQQDT_TEMPORARY_DYNAMIC ? store.defineTemporary(definition)
                                                                         : store.define(definition);
}

} // namespace

objects::FoundQueue makeDynamicQueue(Connection &connection, const ObjectDefinition &model, std::string_view name)
{
    const bool generated = name.ends_with('*');
    const std::string_view prefix = generated ? name.substr(0, name.size() - 1) : std::string_view{};
    if (generated ? !isPrefix(prefix) : !objects::checkObjectName(name))
        return {failure(MQRC_DYNAMIC_Q_NAME_ERROR), {}};

    store::Attachment &store = *connection.store;
    ObjectDefinition queue = objects::queueLike(model);
    for (;;) {
        const Outcome made = define(store, queue, generated ? uniqueName(store, prefix) : std::string(name));
        if (!made.failed()) return connection.catalog.queue(queue.name());
        // A name that is made was taken by chance; one that is given, perhaps by a program that was killed.
        if (made.Reason == MQRC_OBJECT_ALREADY_EXISTS && (generated || store.releaseDead())) continue;
        return {made, {}};
    }
}

Outcome removeDynamicQueue(Connection &connection, const objects::QueueDefinition &queue)
{
    if (!store::isTemporary(queue.id)) {
        // Others may have found it by its name meanwhile: then it stays.
        const auto unused = [](const store::QueueStatus &status) {
            const store::OpenCounts &opens = status.opens;
            const bool used = status.depth != 0 || status.held != 0 || status.uncommitted != 0 || opens.input != 0 ||
                              opens.output != 0 || opens.browse != 0;
            return used ? failure(MQRC_OBJECT_IN_USE) : success();
        };
        return connection.store->remove(MQOT_Q, queue.object.name(), unused);
    }
    store::Definition definition;
    definition.type = MQOT_Q;
    definition.name = queue.object.name();
    definition.queue = queue.id;
    return connection.store->removeTemporary(definition);
}

Outcome deleteByClose(Connection &connection, const OpenObject &object, MQLONG closeOptions)
{
    if (object.type != MQOT_Q || object.hold.queue == nullptr || object.managed)
        return failure(MQRC_OPTION_NOT_VALID_FOR_TYPE);
    const objects::QueueDefinition &queue = *object.hold.queue;
    if (object.ownsQueue()) return success();
    if (queue.definitionType != MQQDT_PERMANENT_DYNAMIC || queue.type != MQQT_LOCAL)
        return failure(MQRC_OPTION_NOT_VALID_FOR_TYPE);

    const bool purge = (closeOptions & MQCO_DELETE_PURGE) != 0;
    const auto mayGo = [purge](const store::QueueStatus &status) {
        const bool uncommitted = status.held > 0 || status.uncommitted > 0;
        return uncommitted || (status.depth > 0 && !purge) ? failure(MQRC_Q_NOT_EMPTY) : success();
    };
    store::Attachment &store = *connection.store;
    Outcome removed = store.remove(MQOT_Q, queue.object.name(), mayGo);
    if (removed.Reason == MQRC_Q_NOT_EMPTY && store.releaseDead())
        removed = store.remove(MQOT_Q, queue.object.name(), mayGo);
    // Somebody else was first.
    return removed.Reason == MQRC_UNKNOWN_OBJECT_NAME ? success() : removed;
}

} // namespace mqrig::qmgr::core
