#include "qmgr/api/consumers.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

#include "qmgr/core/connections.h"
#include "qmgr/core/get.h"

namespace mqrig::qmgr::api {
namespace {

using namespace std::chrono_literals;

constexpr std::size_t firstBuffer = 4096;
// How long a consumer is left alone whose queue has its gets inhibited.
constexpr auto troublePause = 1s;
// How often the thread looks for what wakes nobody, such as the death of who holds messages, like any getter.
constexpr auto oftenPause = 500ms;

// What ends the consuming for all consumers of the connection.
bool endsConnection(MQLONG reason)
{
    switch (reason) {
    case MQRC_CONNECTION_BROKEN:
    case MQRC_Q_MGR_STOPPING:
    case MQRC_HCONN_ERROR:
    case MQRC_RECONNECT_FAILED:
    case MQRC_RECONNECT_TIMED_OUT:
    case MQRC_RECONNECT_QMID_MISMATCH:
        return true;
    default:
        return false;
    }
}

bool waitsForEvents(const MQGMO &gmo, const core::Callback &callback)
{
    return (gmo.Options & MQGMO_WAIT) != 0 && (callback.options & MQCBDO_EVENT_CALL) != 0;
}

} // namespace

MQGMO nextGet(const ConsumerRequest &request, bool browsed)
{
    constexpr MQLONG unmarks = MQGMO_UNMARK_BROWSE_CO_OP | MQGMO_UNMARK_BROWSE_HANDLE;
    MQGMO gmo = request.gmo;
    gmo.Options &= ~MQGMO_WAIT;
    if (request.maxMsgLength == MQCBD_FULL_MSG_LENGTH) gmo.Options &= ~MQGMO_ACCEPT_TRUNCATED_MSG;
    if ((gmo.Options & startThenGoOn) == startThenGoOn)
        gmo.Options &= browsed ? ~MQGMO_BROWSE_FIRST : ~MQGMO_BROWSE_NEXT;
    // What it marks it is not shown again.
    if ((gmo.Options & setsMark) != 0 && (gmo.Options & unmarks) == 0) gmo.Options |= MQGMO_UNMARKED_BROWSE_MSG;
    return gmo;
}

// ---- The registrations ----

std::shared_ptr<const Consumers::List> Consumers::list() const
{
    const std::lock_guard lock(mutex_);
    return consumers_;
}

std::shared_ptr<const Consumers::List> Consumers::listWith(const std::shared_ptr<Consumer> &added) const
{
    auto next = std::make_shared<List>();
    for (const auto &consumer : *list())
        if (!consumer->gone && (added == nullptr || consumer->request.hobj != added->request.hobj))
            next->push_back(consumer);
    if (added != nullptr) next->push_back(added);
    return next;
}

void Consumers::replaceList(std::shared_ptr<const List> next)
{
    const std::lock_guard lock(mutex_);
    consumers_.swap(next);
}

std::shared_ptr<Consumers::Consumer> Consumers::find(MQHOBJ hobj) const
{
    const auto consumers = list();
    const auto found = std::find_if(consumers->begin(), consumers->end(), [&](const auto &consumer) {
        return !consumer->gone && consumer->request.hobj == hobj;
    });
    return found == consumers->end() ? nullptr : *found;
}

Outcome Consumers::add(const ConsumerRequest &request)
{
    auto consumer = std::make_shared<Consumer>();
    consumer->request = request;
    consumer->suspended = request.callback.suspended;
    const std::shared_ptr<Consumer> former = find(request.hobj);
    if (former != nullptr) {
        consumer->request.callback.area = former->request.callback.area;
        // In place of another: no first call, and no last one of the other.
        consumer->started = former->started;
    }
    std::shared_ptr<const List> next = listWith(consumer);
    if (former == nullptr && consumer->wants(MQCBDO_REGISTER_CALL)) {
        const Outcome posted = callbacks_.post(consumer->request.callback, request.hobj, MQCBCT_REGISTER_CALL);
        if (posted.failed()) return posted;
    }
    if (former != nullptr) former->gone = true;
    replaceList(std::move(next));
    return success();
}

Outcome Consumers::remove(MQHOBJ hobj)
{
    const std::shared_ptr<Consumer> consumer = find(hobj);
    if (consumer == nullptr) return failure(MQRC_CALLBACK_NOT_REGISTERED);
    consumer->gone = true;
    try {
        replaceList(listWith(nullptr));
    } catch (const std::bad_alloc &) { // NOLINT(bugprone-empty-catch): it is passed over until the next change
    }
    if (std::exchange(consumer->started, false) && consumer->wants(MQCBDO_STOP_CALL))
        static_cast<void>(callbacks_.post(consumer->request.callback, hobj, MQCBCT_STOP_CALL));
    if (consumer->wants(MQCBDO_DEREGISTER_CALL))
        static_cast<void>(callbacks_.post(consumer->request.callback, hobj, MQCBCT_DEREGISTER_CALL));
    return success();
}

Outcome Consumers::suspend(MQHOBJ hobj, bool suspended)
{
    const std::shared_ptr<Consumer> consumer = find(hobj);
    if (consumer == nullptr) return failure(MQRC_CALLBACK_NOT_REGISTERED);
    consumer->suspended = suspended;
    return success();
}

bool Consumers::anyActive() const
{
    const auto consumers = list();
    return std::any_of(consumers->begin(), consumers->end(),
                       [](const auto &consumer) { return !consumer->gone && !consumer->suspended; });
}

// ---- The calls, on the connection's thread ----

void Consumers::call(const Consumer &consumer, MQLONG type, const Outcome &what, MQLONG state) const noexcept
{
    MQCBC context{};
    context.CallType = type;
    context.CompCode = what.CompCode;
    context.Reason = what.Reason;
    context.State = state;
    complete(context, consumer);
    consumer.request.callback.function(hconn_, nullptr, nullptr, nullptr, &context);
}

void Consumers::deliver(const Consumer &consumer, MQMD &md, MQGMO &gmo, MQCBC &context) noexcept
{
    complete(context, consumer);
    void *const body = context.DataLength == 0 ? nullptr : buffer_.data();
    consumer.request.callback.function(hconn_, consumer.request.describes ? &md : nullptr, &gmo, body, &context);
}

// What every call of the consumer's says.
void Consumers::complete(MQCBC &context, const Consumer &consumer) const noexcept
{
    std::memcpy(context.StrucId, MQCBC_STRUC_ID, sizeof context.StrucId);
    context.Version = MQCBC_VERSION_2;
    context.Hobj = consumer.request.hobj;
    context.CallbackArea = consumer.request.callback.area;
    context.ConnectionArea = connectionArea_;
}

void Consumers::begin(MQPTR connectionArea)
{
    connectionArea_ = connectionArea;
    queues_.clear();
    const auto consumers = list();
    for (const auto &consumer : *consumers) {
        if (consumer->gone) continue;
        consumer->started = true;
        consumer->hearsOfNone = true;
        consumer->told = MQRC_NONE;
        consumer->waitingSince = Clock::now();
        if (consumer->wants(MQCBDO_START_CALL)) call(*consumer, MQCBCT_START_CALL, success(), MQCS_NONE);
    }
}

void Consumers::end(MQLONG reason)
{
    const Outcome why = reason == MQRC_NONE ? success() : failure(reason);
    const auto consumers = list();
    for (const auto &consumer : *consumers) {
        if (consumer->gone || !std::exchange(consumer->started, false)) continue;
        if (consumer->wants(MQCBDO_STOP_CALL)) call(*consumer, MQCBCT_STOP_CALL, why, MQCS_STOPPED);
    }
}

Consumers::Done Consumers::once(const store::Watch &watch)
{
    const std::shared_ptr<const List> known = list();
    const List &consumers = *known;
    for (const auto &consumer : consumers) {
        if (consumer->started || consumer->gone) continue;
        consumer->started = true;
        consumer->waitingSince = Clock::now();
        if (!consumer->wants(MQCBDO_START_CALL)) continue;
        call(*consumer, MQCBCT_START_CALL, success(), MQCS_NONE);
        return {Clock::now()};
    }
    watch.watchQueues(queues_);
    for (std::size_t i = 0; i < consumers.size(); ++i) {
        const std::size_t place = (next_ + i) % consumers.size();
        Consumer &consumer = *consumers[place];
        if (consumer.gone || consumer.suspended) continue;
        if (consumer.told != MQRC_GET_INHIBITED && Clock::now() < consumer.notBefore) continue;
        const Turn turn = turnOf(consumer);
        if (turn.called || turn.ended != MQRC_NONE) {
            next_ = place + 1;
            return {Clock::now(), turn.ended};
        }
    }
    // Queues that were not watched while the thread looked at them want another look.
    if (lookAtQueues(consumers)) return {Clock::now()};
    return {whenToLookAgain(consumers)};
}

bool Consumers::roomFor(std::size_t bytes)
try {
    if (buffer_.size() < bytes) buffer_.resize(bytes);
    return true;
} catch (const std::bad_alloc &) {
    return false;
}

Consumers::Turn Consumers::turnOf(Consumer &consumer)
{
    const ConsumerRequest &request = consumer.request;
    if (consumer.told == MQRC_GET_INHIBITED) {
        // No get is tried: each would be an event for the queue manager's administrator.
        if (isInhibited(consumer)) {
            consumer.notBefore = Clock::now() + troublePause;
            return {};
        }
        consumer.told = MQRC_NONE;
        consumer.notBefore = {};
        if (consumer.wants(MQCBDO_EVENT_CALL)) {
            call(consumer, MQCBCT_EVENT_CALL, warning(MQRC_GET_ENABLED), MQCS_NONE);
            return {true};
        }
    }
    const bool whole = request.maxMsgLength == MQCBD_FULL_MSG_LENGTH;
    const auto most = static_cast<std::size_t>(whole ? 0 : request.maxMsgLength);
    if (!roomFor(std::max(firstBuffer, most))) return tell(consumer, failure(MQRC_STORAGE_NOT_AVAILABLE));
    for (;;) {
        MQMD md = request.md;
        MQGMO gmo = nextGet(request, consumer.browsed);
        const auto length = static_cast<MQLONG>(whole ? buffer_.size() : most);
        MQLONG dataLength = 0;
        Outcome got;
        MQGET(hconn_, request.hobj, &md, &gmo, length, buffer_.data(), &dataLength, &got.CompCode, &got.Reason);
        if (got.failed()) return got.Reason == MQRC_NO_MSG_AVAILABLE ? nothingFor(consumer) : tell(consumer, got);
        if (whole && got.Reason == MQRC_TRUNCATED_MSG_FAILED && dataLength > length) {
            if (!roomFor(static_cast<std::size_t>(dataLength)))
                return tell(consumer, failure(MQRC_STORAGE_NOT_AVAILABLE));
            continue;
        }
        consumer.browsed = true;
        consumer.hearsOfNone = true;
        consumer.told = MQRC_NONE;

        MQCBC context{};
        const bool stays = (gmo.Options & core::browseOptions) != 0 || got.Reason == MQRC_TRUNCATED_MSG_FAILED;
        context.CallType = stays ? MQCBCT_MSG_NOT_REMOVED : MQCBCT_MSG_REMOVED;
        context.CompCode = got.CompCode;
        context.Reason = got.Reason;
        context.DataLength = dataLength;
        context.BufferLength = length;
        deliver(consumer, md, gmo, context);
        consumer.waitingSince = Clock::now();
        return {true};
    }
}

// A get that failed: the consumer hears of it once, and is left alone for a while, or until it is resumed.
Consumers::Turn Consumers::tell(Consumer &consumer, const Outcome &trouble)
{
    if (endsConnection(trouble.Reason)) return {false, trouble.Reason};
    const bool passes = trouble.Reason == MQRC_GET_INHIBITED || trouble.Reason == MQRC_STORAGE_NOT_AVAILABLE;
    if (passes)
        consumer.notBefore = Clock::now() + troublePause;
    else
        consumer.suspended = true;
    if (std::exchange(consumer.told, trouble.Reason) == trouble.Reason && passes) return {};
    if (!consumer.wants(MQCBDO_EVENT_CALL)) return {};
    call(consumer, MQCBCT_EVENT_CALL, trouble, passes ? MQCS_SUSPENDED_TEMPORARY : MQCS_SUSPENDED_USER_ACTION);
    return {true};
}

// With MQGMO_WAIT, a consumer that asks for events hears when its interval has passed; with an interval of 0 it hears
// once, until it has had a message again.
Consumers::Turn Consumers::nothingFor(Consumer &consumer)
{
    const MQGMO &gmo = consumer.request.gmo;
    consumer.told = MQRC_NONE;
    if (!waitsForEvents(gmo, consumer.request.callback) || gmo.WaitInterval < 0) return {};
    if (gmo.WaitInterval == 0) {
        if (!std::exchange(consumer.hearsOfNone, false)) return {};
    } else if (Clock::now() < consumer.waitingSince + std::chrono::milliseconds(gmo.WaitInterval)) {
        return {};
    }
    call(consumer, MQCBCT_EVENT_CALL, failure(MQRC_NO_MSG_AVAILABLE), MQCS_NONE);
    consumer.waitingSince = std::max(Clock::now(), consumer.waitingSince + 1ms);
    return {true};
}

bool Consumers::isInhibited(const Consumer &consumer) const
{
    const core::ConnectionUse use(hconn_);
    if (use.outcome().failed()) return false;
    core::OpenObject *object = use->handles.find(consumer.request.hobj);
    if (object == nullptr || object->hold.queue == nullptr) return false;
    return !use->catalog.refresh(object->hold).failed() && object->hold.queue->inhibitGet == MQQA_GET_INHIBITED;
}

// Which queues the consumers have, and whether something may bring them a message that wakes nobody: the death of who
// holds one, a mark that runs out, a request that the program serving it leaves behind. True if there are others than
// before.
bool Consumers::lookAtQueues(const List &consumers)
{
    std::vector<store::QueueId> queues;
    looksOften_ = false;
    const core::ConnectionUse use(hconn_);
    if (use.outcome().failed()) return false;
    looksOften_ = use->store->requestsWaiting();
    for (const auto &consumer : consumers) {
        if (consumer->gone || consumer->suspended) continue;
        const core::OpenObject *object = use->handles.find(consumer->request.hobj);
        if (object == nullptr || object->hold.queue == nullptr) continue;
        queues.push_back(object->hold.queue->id);
    }
    static_cast<void>(use->store->read([&](store::ReadTransaction &transaction) {
        for (const store::QueueId queue : queues) {
            const store::QueueStatus status = transaction.queue(queue);
            looksOften_ = looksOften_ || status.held != 0 || status.marked != 0;
        }
        return success();
    }));
    const bool others = queues != queues_;
    queues_ = std::move(queues);
    return others;
}

store::Deadline Consumers::whenToLookAgain(const List &consumers) const
{
    store::Deadline until = store::unlimitedWait;
    if (looksOften_) until = Clock::now() + oftenPause;
    for (const auto &consumer : consumers) {
        if (consumer->gone || consumer->suspended) continue;
        if (consumer->told != MQRC_NONE) { // its interval may pass before it has a turn
            until = std::min(until, consumer->notBefore);
            continue;
        }
        const MQGMO &gmo = consumer->request.gmo;
        if (waitsForEvents(gmo, consumer->request.callback) && gmo.WaitInterval > 0)
            until = std::min(until, consumer->waitingSince + std::chrono::milliseconds(gmo.WaitInterval));
    }
    return until;
}

Consumers &consumersOf(core::ConnectionUse &use)
{
    core::Callbacks &callbacks = *use.callbacks();
    if (callbacks.consuming() == nullptr) callbacks.setConsuming(std::make_shared<Consumers>(use->hconn, callbacks));
    return static_cast<Consumers &>(*callbacks.consuming());
}

void forgetConsumer(core::ConnectionUse &use, MQHOBJ hobj)
{
    if (use->callbacks == nullptr || use->callbacks->consuming() == nullptr) return;
    static_cast<void>(consumersOf(use).remove(hobj));
}

} // namespace mqrig::qmgr::api
