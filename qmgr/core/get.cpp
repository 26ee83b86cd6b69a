#include "qmgr/core/get.h"

#include <chrono>
#include <optional>
#include <utility>

#include "qmgr/core/command_server.h"
#include "qmgr/core/delivery.h"
#include "qmgr/core/events.h"
#include "qmgr/core/expiry.h"
#include "qmgr/core/ordered_get.h"
#include "qmgr/core/reconnect.h"

namespace mqrig::qmgr::core {
namespace {

// What has to hold before each look, also after a wait.
Outcome mayGet(Connection &connection, OpenObject &object, const GetRequest &request)
{
    if (const Outcome there = connection.catalog.refresh(object.hold); there.failed()) return there;
    if (object.hold.queue->inhibitGet == MQQA_GET_INHIBITED) return failure(MQRC_GET_INHIBITED);
    if (request.has(MQGMO_FAIL_IF_QUIESCING) && connection.store->state() == store::State::Quiescing)
        return failure(MQRC_Q_MGR_QUIESCING);
    if (request.has(MQGMO_SYNCPOINT | MQGMO_SYNCPOINT_IF_PERSISTENT) && connection.unit.lost())
        return failure(MQRC_BACKED_OUT);
    return success();
}

Outcome mayUseHandle(const OpenObject &object, const GetRequest &request)
{
    const bool browses = request.has(browseOptions);
    if ((browses || request.has(MQGMO_MSG_UNDER_CURSOR)) && !object.allows(MQOO_BROWSE))
        return failure(MQRC_NOT_OPEN_FOR_BROWSE);
    if (request.has(MQGMO_MARK_BROWSE_CO_OP | MQGMO_UNMARK_BROWSE_CO_OP) && !object.allows(MQOO_CO_OP))
        return failure(MQRC_OPTIONS_ERROR);
    if (!browses && !object.allows(MQOO_INPUT_SHARED | MQOO_INPUT_EXCLUSIVE)) return failure(MQRC_NOT_OPEN_FOR_INPUT);
    return success();
}

store::Deadline deadlineOf(const GetRequest &request)
{
    if (request.waitInterval == MQWI_UNLIMITED) return store::unlimitedWait;
    return std::chrono::steady_clock::now() + std::chrono::milliseconds(request.waitInterval);
}

// The message waited for may be a reply to a request that nobody serves yet. While another program serves, or is about
// to, its death would go unnoticed in a long sleep.
class RequestWatch {
public:
    explicit RequestWatch(Connection &connection) : connection_(connection) {}

    // Before each sleep: when to look up from it.
    store::Deadline endOfSleep(store::Deadline deadline)
    {
        constexpr std::chrono::milliseconds watchInterval{100};
        const bool knew = std::exchange(knows_, connection_.store->requestsWaiting());
        const bool slept = std::exchange(slept_, true);
        if (!knows_) return deadline;
        // Those that came up while this one slept are being served by who has put them, as a rule.
        const bool cameUp = slept && !knew;
        if (!cameUp && serveRequests(connection_) == Served::Done) return deadline;
        return std::min(deadline, std::chrono::steady_clock::now() + watchInterval);
    }

private:
    Connection &connection_;
    bool slept_ = false;
    bool knows_ = false;
};

Outcome lookUntilFound(Connection &connection, OpenObject &object, const GetRequest &request, GotMessage &got)
{
    const bool waits = request.has(MQGMO_WAIT) && request.waitInterval != 0;
    std::optional<store::Deadline> deadline;
    RequestWatch requests(connection);
    for (;;) {
        // Where messages for others come all the time, no sleep ever lasts until the deadline: it ends the looking.
        const bool lastLook = deadline && std::chrono::steady_clock::now() >= *deadline;
        if (const Outcome may = mayGet(connection, object, request); may.failed()) return may;
        const store::QueueId queue = object.hold.queue->id;
        got.propertyControl = object.hold.queue->propertyControl;
        got.savesContext = object.allows(MQOO_SAVE_ALL_CONTEXT);
        // Before the look, so that a message that comes between look and sleep ends the sleep.
        const std::uint32_t observed = connection.store->observe(queue);
        const Look look = request.has(browseOptions) ? browseMessage(connection, object, request, got)
                                                     : takeMessage(connection, object, request, got);
        if (look.outcome.Reason != MQRC_NO_MSG_AVAILABLE) return look.outcome;
        if (look.held && connection.store->releaseDead()) continue;
        if (!waits || lastLook) return look.outcome;
        if (!deadline) deadline = deadlineOf(request);
        store::Deadline until = requests.endOfSleep(*deadline);
        if (look.again)
            until = std::min(until, std::chrono::steady_clock::now() + std::chrono::microseconds(*look.again));
        if (!connection.store->waitForMessage(queue, observed, until) && until == *deadline) return look.outcome;
        if (const Outcome alive = checkConnection(connection); alive.failed()) return alive;
    }
}

// The context is that of the last get, if it removed its message. A browse leaves none; a get that returned no message,
// or left it for want of room, changes nothing.
void saveContext(OpenObject &object, const GetRequest &request, const Outcome &outcome, GotMessage &got)
{
    if (request.has(browseOptions))
        object.savedContext.reset();
    else if (outcome.Reason != MQRC_TRUNCATED_MSG_FAILED)
        object.savedContext = SavedContext{contextOf(got.header.md), std::move(got.userContext)};
}

// A get that removed a message may have brought the depth down to the limit of an event.
void watchDepth(Connection &connection, const objects::QueueDefinition &queue)
{
    std::uint32_t depth = 0;
    const Outcome looked = connection.store->read([&](store::ReadTransaction &transaction) {
        depth = transaction.queue(queue.id).depth;
        return success();
    });
    if (!looked.failed() && isLow(queue, depth)) performanceEvent(connection, queue, MQRC_Q_DEPTH_LOW);
}

} // namespace

GotMessage::GotMessage() = default;
GotMessage::~GotMessage() = default;

Outcome getMessage(Connection &connection, OpenObject &object, const GetRequest &request, GotMessage &got)
{
    if (const Outcome may = mayUseHandle(object, request); may.failed()) return may;
    if (const MQLONG reason = judgeBrowse(object, request)) return failure(reason);
    Outcome outcome;
    if (request.has(orderOptions)) {
        GetRequest ordered = request;
        outcome = prepareOrderedGet(connection, object, ordered);
        if (!outcome.failed()) outcome = lookUntilFound(connection, object, ordered, got);
    } else {
        outcome = lookUntilFound(connection, object, request, got);
    }
    if (outcome.failed()) return outcome;
    const objects::QueueDefinition &queue = *object.hold.queue;
    if (queue.watchesGets && !request.has(browseOptions) && outcome.Reason != MQRC_TRUNCATED_MSG_FAILED)
        watchDepth(connection, queue);
    outcome = notePosition(object, request, outcome, got);
    got.header.md.Expiry = remainingExpiry(got.header);
    if (got.unpacked) properties::setForm(got.header.md, got.unpacked->form);
    if (object.allows(MQOO_SAVE_ALL_CONTEXT)) saveContext(object, request, outcome, got);
    return outcome;
}

} // namespace mqrig::qmgr::core
