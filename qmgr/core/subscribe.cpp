#include "qmgr/core/subscribe.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>
#include <utility>

#include "qmgr/core/dynamic_queue.h"
#include "qmgr/core/open.h"
#include "qmgr/core/retained.h"
#include "qmgr/core/subscriptions.h"
#include "qmgr/core/system_object.h"
#include "qmgr/core/topic.h"
#include "qmgr/objects/object_name.h"
#include "qmgr/objects/publish_subscribe.h"
#include "qmgr/store/seams.h"

namespace mqrig::qmgr::core {
namespace {

using objects::Handle;
using objects::StoredSubscription;
using objects::Subscription;

constexpr MQLONG managedOptions = MQOO_INPUT_AS_Q_DEF | MQOO_BROWSE | MQOO_INQUIRE;
constexpr int mostAttempts = 100;

template <std::size_t N, class Field>
void copyField(std::array<std::remove_reference_t<decltype(Field{}[0])>, N> &to, const Field &from)
{
    std::copy(std::begin(from), std::end(from), to.begin());
}

std::int64_t deadlineOf(MQLONG expiry, std::int64_t now)
{
    constexpr std::int64_t tenth = 100000;
    return expiry == MQEI_UNLIMITED ? 0 : now + expiry * tenth;
}

// The queue of a handle by the names under which it is reached.
struct QueueNames {
    std::string queue;
    std::string queueManager;

    bool operator==(const QueueNames &) const = default;
};
QueueNames namesOf(const objects::QueueDefinition &queue)
{
    if (queue.askedQueueManager.empty()) return {queue.object.name(), {}};
    return {std::string(objects::fieldText(queue.remoteQueue)), queue.askedQueueManager};
}

// The queue that the program has opened for its publications; null where the handle is none for that.
const OpenObject *findDestination(const Connection &connection, MQHOBJ hobj)
{
    const OpenObject *object = connection.handles.find(hobj);
    if (object == nullptr || object->type != MQOT_Q || object->hold.queue == nullptr) return nullptr;
    if (object->topic != nullptr || object->managed) return nullptr;
    const MQLONG receives = MQOO_INPUT_SHARED | MQOO_INPUT_EXCLUSIVE | MQOO_BROWSE;
    const bool sends = object->hold.queue->remote && object->allows(MQOO_OUTPUT);
    return object->allows(receives) || sends ? object : nullptr;
}

// What a program may change of a subscription at any time.
void setAlterable(const Connection &connection, const SubscribeRequest &request, Subscription &subscription)
{
    subscription.userData = request.userData;
    subscription.expiry = request.expiry;
    subscription.deadline = deadlineOf(request.expiry, store::currentTime());
    subscription.priority = request.priority;
    subscription.onRequest = request.has(MQSO_PUBLICATIONS_ON_REQUEST);
    subscription.anyUser = request.has(MQSO_ANY_USERID);
    if (request.has(MQSO_SET_CORREL_ID)) {
        subscription.correlId = request.correlId;
        subscription.keepsCorrelId = request.correlId == objects::Identifier24{};
    }
    subscription.setsIdentity = request.has(MQSO_SET_IDENTITY_CONTEXT);
    if (subscription.setsIdentity) {
        subscription.accountingToken = request.accountingToken;
        subscription.applIdentityData = request.applIdentityData;
    } else {
        copyField(subscription.accountingToken, connection.identity.accountingToken);
        objects::fillField(subscription.applIdentityData, {});
    }
}

// What is no selector of ours might be one of an extended syntax, which nobody here understands.
MQLONG selectorReason(MQLONG reason)
{
    return reason == MQRC_SELECTOR_SYNTAX_ERROR ? MQRC_SELECTION_NOT_AVAILABLE : reason;
}

bool hasTopic(const SubscribeRequest &request)
{
    return !request.topicObject.empty() || !request.topicString.empty();
}

bool inOneGroup(const Subscription &left, const Subscription &right)
{
    return left.grouped && right.grouped && left.queue == right.queue && left.queueManager == right.queueManager &&
           left.correlId == right.correlId && left.level == right.level;
}

class Subscribing {
public:
    Subscribing(Connection &connection, const SubscribeRequest &request, Subscribed &subscribed)
        : connection_(connection), store_(*connection.store), request_(request), subscribed_(subscribed)
    {
    }

    Outcome run()
    {
        if (const Outcome may = mayOpen(connection_, request_.options & MQSO_FAIL_IF_QUIESCING); may.failed())
            return may;
        if (const Outcome may = mayPublishOrSubscribe(connection_); may.failed()) return may;
        for (int attempt = 0; attempt < mostAttempts; ++attempt) {
            std::optional<StoredSubscription> known;
            if (!request_.name.empty()) known = objects::findSubscription(store_, request_.name);
            if (known) {
                if (!request_.has(MQSO_RESUME | MQSO_ALTER)) {
                    // That of a program that was killed is no more.
                    if (store_.releaseDead()) continue;
                    return failure(MQRC_SUB_ALREADY_EXISTS);
                }
                return resume(std::move(*known));
            }
            if (!request_.has(MQSO_CREATE)) return failure(MQRC_NO_SUBSCRIPTION);
            const Outcome created = create();
            // Somebody else has made it since.
            if (created.Reason == MQRC_OBJECT_ALREADY_EXISTS) continue;
            return created;
        }
        // What has the name and is never found is damaged.
        return failure(MQRC_SUB_ALREADY_EXISTS);
    }

private:
    // ---- A new one ----

    Outcome create()
    {
        Subscription subscription;
        if (const Outcome described = describe(subscription); described.failed()) return described;
        std::string model;
        if (const Outcome placed = placeDestination(subscription, model); placed.failed()) return placed;
        if (const Outcome grouped = checkGroup(subscription); grouped.failed()) return grouped;

        // The handle first: once the store knows the subscription nothing may fail for want of a handle.
        auto object = std::make_unique<OpenObject>();
        object->type = MQOT_NONE;
        object->subscription = std::make_unique<OpenSubscription>();
        OpenSubscription &open = *object->subscription;
        open.subscription = subscription;
        open.owned = !subscription.durable;
        const MQHOBJ hsub = connection_.handles.add(std::move(object));
        if (hsub == MQHO_UNUSABLE_HOBJ) return failure(MQRC_HANDLE_NOT_AVAILABLE);
        std::optional<store::Attachment::RetainedTurn> turn;
        if (wantsRetained(subscription)) turn.emplace(store_);
        store::Definition definition = objects::definitionOf(subscription);
        Outcome made = failure(MQRC_STORAGE_NOT_AVAILABLE);
        try {
            made = make(definition, open, model);
            if (!made.failed() && turn) made = sendRetainedTo(definition.queue, subscription);
        } catch (...) {
            abandon(hsub, definition, subscription);
            throw;
        }
        if (made.failed()) {
            abandon(hsub, definition, subscription);
            return made;
        }
        subscribed_.hsub = hsub;
        return made;
    }

    // All of the subscription but its destination.
    Outcome describe(Subscription &subscription)
    {
        std::string topic;
        const Outcome resolved = resolveTopic(connection_, request_.topicObject, request_.topicString, topic);
        if (resolved.failed()) return resolved;
        subscription.scheme =
            request_.has(MQSO_WILDCARD_CHAR) ? objects::WildcardScheme::Characters : objects::WildcardScheme::Topic;
        if (!objects::TopicPattern::parse(topic, subscription.scheme)) return failure(MQRC_TOPIC_STRING_ERROR);
        std::shared_ptr<const MessageSelector> selector;
        if (!request_.selector.empty())
            if (const MQLONG reason = MessageSelector::compile(request_.selector, selector))
                return failure(selectorReason(reason));
        attributes_ = connection_.catalog.topics()->attributesOf(topic);
        if (attributes_.subscribe == MQTA_SUB_INHIBITED) return failure(MQRC_SUB_INHIBITED);
        subscription.durable = request_.has(MQSO_DURABLE);
        if (subscription.durable && attributes_.durableSubs == MQSUB_DURABLE_INHIBITED)
            return failure(MQRC_DURABILITY_NOT_ALLOWED);

        MQBYTE24 identifier;
        connection_.newIdentifier(identifier);
        copyField(subscription.id, identifier);
        connection_.newIdentifier(identifier);
        copyField(subscription.correlId, identifier);
        subscription.name = request_.name;
        subscription.topic = std::move(topic);
        subscription.topicObject = request_.topicObject;
        subscription.selector = request_.selector;
        copyField(subscription.user, connection_.identity.userIdentifier);
        subscription.created = store::currentTime();
        subscription.level = request_.level;
        subscription.grouped = request_.has(MQSO_GROUP_SUB);
        subscription.scopeQueueManager = request_.has(MQSO_SCOPE_QMGR);
        subscription.managed = request_.has(MQSO_MANAGED);
        setAlterable(connection_, request_, subscription);
        return success();
    }

    // Where publications go: the queue of the handle, or the name of one that will be made like `model`.
    Outcome placeDestination(Subscription &subscription, std::string &model)
    {
        if (subscription.managed) {
            model = subscription.durable ? attributes_.durableModel : attributes_.nonDurableModel;
            const std::string_view prefix =
                subscription.durable ? objects::durableQueuePrefix : objects::nonDurableQueuePrefix;
            subscription.queue = std::string(prefix) + objects::hexadecimal(subscription.id).substr(32);
            return success();
        }
        const OpenObject *destination = findDestination(connection_, request_.queue);
        if (destination == nullptr) return failure(MQRC_HOBJ_ERROR);
        const objects::QueueDefinition &queue = *destination->hold.queue;
        // It would be gone before the subscription is.
        if (subscription.durable && store::isTemporary(queue.id)) return failure(MQRC_INVALID_DESTINATION);
        QueueNames names = namesOf(queue);
        subscription.queue = std::move(names.queue);
        subscription.queueManager = std::move(names.queueManager);
        subscribed_.queue = request_.queue;
        return success();
    }

    Outcome checkGroup(const Subscription &subscription)
    {
        if (!subscription.grouped) return success();
        Subscriptions others;
        others.refresh(store_);
        for (const auto &other : others.all())
            if (inOneGroup(subscription, other->subscription) && other->subscription.topic == subscription.topic)
                return failure(MQRC_DUPLICATE_GROUP_SUB);
        return success();
    }

    // The subscription, then its queue: a queue without a subscription would be left behind (subscriptions.h).
    Outcome make(store::Definition &definition, OpenSubscription &open, const std::string &model)
    {
        store::Definition stored = definition;
        const Outcome defined = open.owned ? store_.defineTemporary(stored) : store_.define(stored);
        if (defined.failed()) return defined;
        definition.queue = stored.queue;
        open.id = stored.queue;
        Outcome counted = countUse(open.id);
        // What is in the log is there, but it may take another look to bring it to the live state.
        if (counted.Reason == MQRC_NO_SUBSCRIPTION && store_.findDefinition(stored.type, stored.name))
            counted = countUse(open.id);
        if (counted.failed()) return counted;
        return open.subscription.managed ? openManaged(open.subscription, model) : success();
    }

    // Makes the queue if it is not there, and opens it for the program.
    Outcome openManaged(const Subscription &subscription, const std::string &model)
    {
        if (connection_.catalog.definition(subscription.queue).outcome.Reason == MQRC_UNKNOWN_OBJECT_NAME) {
            const objects::FoundQueue pattern = findSystemQueue(connection_, model);
            if (pattern.outcome.failed() || pattern.hold.queue->type != MQQT_MODEL)
                return failure(MQRC_INVALID_DESTINATION);
            objects::ObjectDefinition like = pattern.hold.queue->object;
            like.set(MQIA_DEFINITION_TYPE, subscription.durable ? MQQDT_PERMANENT_DYNAMIC : MQQDT_TEMPORARY_DYNAMIC);
            const objects::FoundQueue made = makeDynamicQueue(connection_, like, subscription.queue);
            if (made.outcome.failed()) return made.outcome;
        }
        const ObjectName name{MQOT_Q, subscription.queue, {}};
        const Outcome opened = openObject(connection_, name, managedOptions, subscribed_.queue);
        if (opened.failed()) return opened;
        OpenObject &object = *connection_.handles.find(subscribed_.queue);
        object.managed = true;
        // In another life of the queue manager the queue is made again with the same name.
        if (!subscription.durable) {
            object.asked.dynamicName = subscription.queue;
            object.asked.name = model;
        }
        return opened;
    }

    void abandon(MQHOBJ hsub, const store::Definition &definition, const Subscription &subscription)
    {
        if (subscribed_.queue != request_.queue && subscribed_.queue != MQHO_NONE)
            (void)closeObject(connection_, subscribed_.queue, MQCO_NONE);
        subscribed_.queue = request_.queue;
        connection_.handles.remove(hsub);
        if (definition.queue != 0) (void)objects::removeSubscription(store_, {definition, subscription}, Handle::Own);
    }

    bool wantsRetained(const Subscription &subscription) const
    {
        return !request_.has(MQSO_NEW_PUBLICATIONS_ONLY) && !subscription.onRequest;
    }
    Outcome sendRetainedTo(store::QueueId id, const Subscription &subscription)
    {
        MQLONG number = 0;
        return sendRetained(connection_, *subscriberOf(id, subscription), number);
    }

    // ---- One that is there ----

    Outcome countUse(store::QueueId id)
    {
        for (;;) {
            const Outcome counted = store_.update(0, [&](store::WriteTransaction &transaction) {
                if (!transaction.exists(id)) return failure(MQRC_NO_SUBSCRIPTION);
                if (transaction.queue(id).opens.input != 0) return failure(MQRC_SUBSCRIPTION_IN_USE);
                transaction.addOpens(id, oneUse);
                return success();
            });
            if (counted.Reason == MQRC_SUBSCRIPTION_IN_USE && store_.releaseDead()) continue;
            return counted.Reason == MQRC_Q_DELETED ? failure(MQRC_NO_SUBSCRIPTION) : counted;
        }
    }

    // The handle under which this connection has it open already.
    MQHOBJ ownHandle(store::QueueId id) const
    {
        for (const MQHOBJ hobj : connection_.handles.all()) {
            const OpenObject &object = *connection_.handles.find(hobj);
            if (object.subscription != nullptr && object.subscription->id == id) return hobj;
        }
        return MQHO_UNUSABLE_HOBJ;
    }

    Outcome resume(StoredSubscription known)
    {
        const bool alters = request_.has(MQSO_ALTER);
        if (const Outcome same = checkUnchanged(known.subscription); same.failed()) return same;
        const MQHOBJ own = ownHandle(known.definition.queue);
        const bool altersOwn = alters && own != MQHO_UNUSABLE_HOBJ;
        if (own != MQHO_UNUSABLE_HOBJ && !alters) return failure(MQRC_SUBSCRIPTION_IN_USE);
        if (!altersOwn && !known.subscription.durable) {
            return store_.releaseDead() ? run() : failure(MQRC_SUBSCRIPTION_IN_USE);
        }
        QueueNames destination{known.subscription.queue, known.subscription.queueManager};
        if (const Outcome given = checkDestination(known.subscription, destination); given.failed()) return given;
        if (altersOwn) {
            subscribed_.hsub = own;
            subscribed_.queue = request_.queue;
            return alter(known, destination, *connection_.handles.find(own)->subscription);
        }

        auto object = std::make_unique<OpenObject>();
        object->type = MQOT_NONE;
        object->subscription = std::make_unique<OpenSubscription>();
        OpenSubscription &open = *object->subscription;
        open.subscription = known.subscription;
        open.id = known.definition.queue;
        const MQHOBJ hsub = connection_.handles.add(std::move(object));
        if (hsub == MQHO_UNUSABLE_HOBJ) return failure(MQRC_HANDLE_NOT_AVAILABLE);
        if (const Outcome counted = countUse(open.id); counted.failed()) {
            connection_.handles.remove(hsub);
            return counted;
        }
        const Outcome opened = openResumed(known, destination, open);
        if (opened.failed()) {
            subscribed_.queue = request_.queue;
            (void)closeSubscription(connection_, hsub, MQCO_NONE);
            return opened;
        }
        subscribed_.hsub = hsub;
        return opened;
    }

    Outcome openResumed(StoredSubscription &known, const QueueNames &destination, OpenSubscription &open)
    {
        if (request_.has(MQSO_ALTER))
            if (const Outcome altered = alter(known, destination, open); altered.failed()) return altered;
        if (request_.queue != MQHO_NONE && !request_.has(MQSO_MANAGED)) {
            subscribed_.queue = request_.queue;
            return success();
        }
        if (open.subscription.managed) {
            attributes_ = connection_.catalog.topics()->attributesOf(open.subscription.topic);
            return openManaged(open.subscription, attributes_.durableModel);
        }
        const ObjectName name{MQOT_Q, open.subscription.queue, open.subscription.queueManager};
        const Outcome opened = openObject(connection_, name, MQOO_INPUT_AS_Q_DEF | MQOO_BROWSE, subscribed_.queue);
        return opened.failed() && opened.Reason != MQRC_OBJECT_IN_USE && opened.Reason != MQRC_HANDLE_NOT_AVAILABLE
                   ? failure(MQRC_INVALID_DESTINATION)
                   : opened;
    }

    // What the request says of a subscription that is there and that cannot be altered.
    Outcome checkUnchanged(const Subscription &known)
    {
        const bool mayBeMade = request_.has(MQSO_CREATE | MQSO_ALTER);
        if (mayBeMade && request_.has(MQSO_DURABLE) != known.durable) return failure(MQRC_DURABILITY_NOT_ALTERABLE);
        if (hasTopic(request_)) {
            std::string topic;
            const Outcome resolved = resolveTopic(connection_, request_.topicObject, request_.topicString, topic);
            if (resolved.failed()) return resolved;
            if (topic != known.topic) return failure(MQRC_TOPIC_NOT_ALTERABLE);
        }
        if (!request_.has(MQSO_ALTER)) return success();
        const bool characters = known.scheme == objects::WildcardScheme::Characters;
        if (request_.has(characters ? MQSO_WILDCARD_TOPIC : MQSO_WILDCARD_CHAR))
            return failure(MQRC_TOPIC_NOT_ALTERABLE);
        if (request_.level != known.level) return failure(MQRC_SUBLEVEL_NOT_ALTERABLE);
        if (request_.has(MQSO_GROUP_SUB) != known.grouped) return failure(MQRC_GROUPING_NOT_ALTERABLE);
        if (!request_.selector.empty() && request_.selector != known.selector)
            return failure(MQRC_SELECTOR_NOT_ALTERABLE);
        return success();
    }

    // The queue of the handle, where one is given: another one only for ALTER.
    Outcome checkDestination(const Subscription &known, QueueNames &destination)
    {
        if (request_.has(MQSO_MANAGED)) {
            const bool other = request_.has(MQSO_ALTER) && !known.managed;
            return other ? failure(MQRC_DEST_CLASS_NOT_ALTERABLE) : success();
        }
        if (request_.queue == MQHO_NONE) return success();
        const OpenObject *given = connection_.handles.find(request_.queue);
        // The handle that this subscription gave out before.
        if (given != nullptr && given->managed && given->hold.queue->object.name() == known.queue) return success();
        given = findDestination(connection_, request_.queue);
        if (given == nullptr) return failure(MQRC_HOBJ_ERROR);
        QueueNames names = namesOf(*given->hold.queue);
        if (names == destination) return success();
        if (!request_.has(MQSO_ALTER)) return failure(MQRC_HOBJ_ERROR);
        if (known.managed) return failure(MQRC_DEST_CLASS_NOT_ALTERABLE);
        if (known.grouped) return failure(MQRC_GROUPING_NOT_ALTERABLE);
        destination = std::move(names);
        return success();
    }

    Outcome alter(StoredSubscription &known, const QueueNames &destination, OpenSubscription &open)
    {
        for (;;) {
            Subscription changed = known.subscription;
            setAlterable(connection_, request_, changed);
            if (known.subscription.grouped && changed.correlId != known.subscription.correlId)
                return failure(MQRC_GROUPING_NOT_ALTERABLE);
            changed.queue = destination.queue;
            changed.queueManager = destination.queueManager;
            store::Definition definition = known.definition;
            definition.bytes = changed.encode();
            const Outcome altered = store_.alter(definition, known.definition.bytes);
            if (altered.Reason == MQRC_OBJECT_CHANGED) {
                auto now = objects::findSubscription(store_, known.subscription.name);
                if (!now) return failure(MQRC_NO_SUBSCRIPTION);
                known = std::move(*now);
                continue;
            }
            if (altered.Reason == MQRC_UNKNOWN_OBJECT_NAME) return failure(MQRC_NO_SUBSCRIPTION);
            if (!altered.failed()) open.subscription = std::move(changed);
            return altered;
        }
    }

    Connection &connection_;
    store::Attachment &store_;
    const SubscribeRequest &request_;
    Subscribed &subscribed_;
    objects::TopicAttributes attributes_;
};

} // namespace

Outcome subscribe(Connection &connection, const SubscribeRequest &request, Subscribed &subscribed)
{
    subscribed = {request.queue, MQHO_UNUSABLE_HOBJ};
    return Subscribing(connection, request, subscribed).run();
}

} // namespace mqrig::qmgr::core
