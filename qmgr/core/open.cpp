#include "qmgr/core/open.h"

#include <memory>
#include <utility>

#include "qmgr/core/distribution_list.h"
#include "qmgr/core/dynamic_queue.h"
#include "qmgr/core/subscribe.h"
#include "qmgr/core/topic.h"
#include "qmgr/core/trigger.h"
#include "qmgr/objects/object_name.h"

namespace mqrig::qmgr::core {
namespace {

constexpr MQLONG inputOptions = MQOO_INPUT_AS_Q_DEF | MQOO_INPUT_SHARED | MQOO_INPUT_EXCLUSIVE;

// Options that mean something for objects that have attributes only.
constexpr MQLONG attributeOptions = MQOO_INQUIRE | MQOO_FAIL_IF_QUIESCING | MQOO_ALTERNATE_USER_AUTHORITY;

bool isLocal(const Connection &connection, std::string_view queueManager)
{
    return queueManager.empty() || queueManager == connection.store->queueManagerName();
}

// Input as the queue's definition wants it: one of shared and exclusive.
MQLONG grantedOptions(const objects::QueueDefinition &queue, MQLONG options)
{
    if ((options & MQOO_INPUT_AS_Q_DEF) != 0) options = (options & ~MQOO_INPUT_AS_Q_DEF) | queue.defInputOpenOption;
    if ((options & MQOO_INPUT_SHARED) != 0 && queue.shareability == MQQA_NOT_SHAREABLE)
        options = (options & ~MQOO_INPUT_SHARED) | MQOO_INPUT_EXCLUSIVE;
    return options;
}

store::OpenCounts countsOf(MQLONG options)
{
    store::OpenCounts opens;
    opens.exclusive = (options & MQOO_INPUT_EXCLUSIVE) != 0 ? 1 : 0;
    opens.input = (options & (MQOO_INPUT_SHARED | MQOO_INPUT_EXCLUSIVE)) != 0 ? 1 : 0;
    opens.output = (options & MQOO_OUTPUT) != 0 ? 1 : 0;
    opens.browse = (options & MQOO_BROWSE) != 0 ? 1 : 0;
    opens.together = (options & MQOO_CO_OP) != 0 ? 1 : 0;
    return opens;
}

bool inTheWay(const store::OpenCounts &others, const store::OpenCounts &wanted)
{
    return (wanted.exclusive != 0 && others.input != 0) || (wanted.input != 0 && others.exclusive != 0);
}

// Counts the handle, unless another one's exclusive use forbids it.
Outcome countOpen(store::Attachment &store, const objects::QueueDefinition &queue, const store::OpenCounts &wanted)
{
    // The marks of programs that have browsed together and were killed end before this handle joins them.
    if (wanted.together != 0) static_cast<void>(store.releaseDead());
    for (;;) {
        const Outcome outcome = store.update(0, [&](store::WriteTransaction &transaction) {
            if (inTheWay(transaction.queue(queue.id).opens, wanted)) return failure(MQRC_OBJECT_IN_USE);
            transaction.addOpens(queue.id, wanted);
            // The name by which it was reached is in use too: it cannot be deleted.
            if (queue.objectId != queue.id) transaction.addOpens(queue.objectId, wanted);
            return success();
        });
        if (outcome.Reason == MQRC_OBJECT_IN_USE && store.releaseDead()) continue;
        return outcome;
    }
}

// The queue, for what the options want of it. Its messages, unless only its attributes are meant: these are there
// whether or not the name leads to messages.
objects::FoundQueue findQueue(Connection &connection, const ObjectName &name, MQLONG options)
{
    if (isLocal(connection, name.queueManager)) {
        objects::FoundQueue named = connection.catalog.definition(name.name);
        if (named.outcome.failed() || named.hold.queue->type == MQQT_MODEL) return named;
    }
    const bool forMessages = (options & (inputOptions | MQOO_BROWSE | MQOO_OUTPUT)) != 0;
    if (!forMessages && isLocal(connection, name.queueManager)) return connection.catalog.definition(name.name);
    objects::FoundQueue found = connection.catalog.queue(name.name, name.queueManager);
    if (found.outcome.failed()) return found;
    const objects::QueueDefinition &queue = *found.hold.queue;
    // What is elsewhere takes messages, and only a name that it has here has attributes.
    const bool wrong = (queue.remote && (options & (inputOptions | MQOO_BROWSE)) != 0) ||
                       (!isLocal(connection, name.queueManager) &&
                        (options & (inputOptions | MQOO_BROWSE | MQOO_INQUIRE | MQOO_SET)) != 0);
    return wrong ? objects::FoundQueue{failure(MQRC_OPTION_NOT_VALID_FOR_TYPE), {}} : found;
}

// What to open in another life of the queue manager: a temporary queue will have gone and is made again.
void rememberMade(const objects::QueueDefinition &queue, OpenObject &object)
{
    (store::isTemporary(queue.id) ? object.asked.dynamicName : object.asked.name) = queue.object.name();
}

Outcome openQueue(Connection &connection, const ObjectName &name, OpenObject &object)
{
    objects::FoundQueue found = findQueue(connection, name, object.options);
    // What a killed program has left is not opened.
    if (!found.outcome.failed() && store::isTemporary(found.hold.queue->id) && connection.store->releaseDead())
        found = findQueue(connection, name, object.options);
    if (!found.outcome.failed() && found.hold.queue->type == MQQT_MODEL) {
        found = makeDynamicQueue(connection, found.hold.queue->object, name.dynamicName);
        object.made = true;
        if (!found.outcome.failed()) rememberMade(*found.hold.queue, object);
    }
    if (found.outcome.failed()) return found.outcome;
    object.options = grantedOptions(*found.hold.queue, object.options);
    object.opens = countsOf(object.options);
    object.hold = std::move(found.hold);
    const Outcome counted = countOpen(*connection.store, *object.hold.queue, object.opens);
    if (counted.failed() && object.made) (void)removeDynamicQueue(connection, *object.hold.queue);
    return counted;
}

Outcome openQueueManager(const Connection &connection, const ObjectName &name, const OpenObject &object)
{
    if ((object.options & ~attributeOptions) != 0) return failure(MQRC_OPTION_NOT_VALID_FOR_TYPE);
    if (!name.name.empty()) return failure(MQRC_UNKNOWN_OBJECT_NAME);
    return isLocal(connection, name.queueManager) ? success() : failure(MQRC_UNKNOWN_REMOTE_Q_MGR);
}

// A process or namelist: only its attributes could be meant.
Outcome openDefinition(Connection &connection, const ObjectName &name, OpenObject &object)
{
    if ((object.options & ~attributeOptions) != 0) return failure(MQRC_OPTION_NOT_VALID_FOR_TYPE);
    if (!isLocal(connection, name.queueManager)) return failure(MQRC_OPTION_NOT_VALID_FOR_TYPE);
    const objects::FoundObject found = connection.catalog.object(name.type, name.name);
    object.name = name.name;
    return found.outcome;
}

Outcome openForPublishing(Connection &connection, const ObjectName &name, MQLONG options, OpenObject &object)
{
    object.topic = std::make_unique<OpenTopic>();
    return openTopic(connection, name, options, *object.topic);
}

// An alias queue that stands for a topic; its own attributes can be inquired all the same.
Outcome openAliasOfTopic(Connection &connection, const ObjectName &name, std::string_view topic, OpenObject &object)
{
    objects::FoundQueue alias = connection.catalog.definition(name.name);
    if (alias.outcome.failed()) return alias.outcome;
    object.hold = std::move(alias.hold);
    constexpr MQLONG ofAlias = MQOO_INQUIRE | MQOO_SET;
    return openForPublishing(connection, {MQOT_TOPIC, topic, {}}, object.options & ~ofAlias, object);
}

Outcome openByType(Connection &connection, const ObjectName &name, OpenObject &object)
{
    switch (name.type) {
    case MQOT_Q:
        if ((object.options & (inputOptions | MQOO_BROWSE | MQOO_OUTPUT)) != 0)
            if (const std::string topic = topicOfAlias(connection, name); !topic.empty())
                return openAliasOfTopic(connection, name, topic, object);
        return openQueue(connection, name, object);
    case MQOT_Q_MGR:
        return openQueueManager(connection, name, object);
    case MQOT_PROCESS:
    case MQOT_NAMELIST:
        return openDefinition(connection, name, object);
    case MQOT_TOPIC:
        return openForPublishing(connection, name, object.options, object);
    default:
        return failure(MQRC_OBJECT_TYPE_ERROR);
    }
}

} // namespace

objects::FoundQueue resolveForPut(Connection &connection, const ObjectName &name)
{
    if (name.type == MQOT_Q) return connection.catalog.queue(name.name, name.queueManager);
    return {failure(MQRC_OBJECT_TYPE_ERROR), {}};
}

Outcome mayOpen(Connection &connection, MQLONG options)
{
    if ((options & MQOO_FAIL_IF_QUIESCING) != 0 && connection.store->state() == store::State::Quiescing)
        return failure(MQRC_Q_MGR_QUIESCING);
    if (connection.handles.size() >= static_cast<std::size_t>(connection.queueManager().maxHandles))
        return failure(MQRC_HANDLE_NOT_AVAILABLE);
    return success();
}

Outcome openObject(Connection &connection, const ObjectName &name, MQLONG options, MQHOBJ &hobj)
{
    if (const Outcome may = mayOpen(connection, options); may.failed()) return may;

    auto object = std::make_unique<OpenObject>();
    object->type = name.type;
    object->options = options;
    object->asked = {
        std::string(name.name), std::string(name.queueManager), options, {}, std::string(name.objectString)};
    // The handle first: once the open is counted in the store nothing may fail.
    OpenObject &opened = *object;
    const MQHOBJ added = connection.handles.add(std::move(object));
    if (added == MQHO_UNUSABLE_HOBJ) return failure(MQRC_HANDLE_NOT_AVAILABLE);
    Outcome outcome = failure(MQRC_STORAGE_NOT_AVAILABLE);
    try {
        outcome = openByType(connection, name, opened);
    } catch (...) {
        connection.handles.remove(added);
        throw;
    }
    if (outcome.failed()) {
        connection.handles.remove(added);
        return outcome;
    }
    hobj = added;
    if (opened.opens.input != 0) triggerAfterOpen(connection, *opened.hold.queue);
    return outcome;
}

Outcome reopenObject(Connection &connection, OpenObject &object)
{
    if (object.list != nullptr) return reopenList(connection, object);
    if (object.subscription != nullptr) return reopenSubscription(connection, object);
    OpenObject again;
    again.type = object.type;
    again.options = object.asked.options;
    again.asked = object.asked;
    const ObjectName name{object.type, object.asked.name, object.asked.queueManager, object.asked.dynamicName,
                          object.asked.objectString};
    if (const Outcome opened = openByType(connection, name, again); opened.failed()) return opened;
    again.selector = object.selector;
    again.savedContext = std::move(object.savedContext);
    again.managed = object.managed;
    if (again.managed) again.made = false;
    // Messages that outlive the queue manager's end keep their keys, so browsing goes on where it stood.
    const bool sameQueue =
        object.hold.queue != nullptr && again.hold.queue != nullptr && object.hold.queue->id == again.hold.queue->id;
    if (sameQueue) again.cursor = object.cursor;
    object = std::move(again);
    return success();
}

} // namespace mqrig::qmgr::core
