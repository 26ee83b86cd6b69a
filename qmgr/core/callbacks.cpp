#include "qmgr/core/callbacks.h"

#include <chrono>
#include <csignal>
#include <cstring>
#include <new>
#include <system_error>
#include <utility>

#include "qmgr/core/connections.h"

namespace mqrig::qmgr::core {
namespace {

// Of the thread that calls callbacks; null on those of the program.
thread_local Callbacks *ofThisThread = nullptr;

// How often the thread looks whether a connection is free whose queue manager has ended while a call is in progress. A
// call that waits does not wait on, so this is for the short ones.
constexpr std::chrono::milliseconds busyPause{10};

MQLONG stateOf(const Outcome &what)
{
    switch (what.Reason) {
    case MQRC_Q_MGR_STOPPING:
    case MQRC_CONNECTION_BROKEN:
    case MQRC_RECONNECT_FAILED:
        return MQCS_STOPPED;
    default:
        return MQCS_NONE;
    }
}

// A thread inherits the mask of the one that makes it.
class AllSignalsBlocked {
public:
    AllSignalsBlocked()
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before_);
    }
    ~AllSignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    AllSignalsBlocked(const AllSignalsBlocked &) = delete;
    AllSignalsBlocked &operator=(const AllSignalsBlocked &) = delete;

private:
    sigset_t before_;
};

} // namespace

Callbacks::Callbacks(MQHCONN hconn, store::Watch watch, bool reconnects, std::atomic<bool> &consumes)
    : hconn_(hconn), reconnects_(reconnects), consumes_(consumes), watch_(std::move(watch))
{
}

Callbacks::~Callbacks()
{
    stop();
}

Outcome Callbacks::startThread()
{
    if (thread_.joinable()) return success();
    const AllSignalsBlocked blocked;
    try {
        thread_ = std::thread([this] { run(); });
    } catch (const std::system_error &) {
        return failure(MQRC_RESOURCE_PROBLEM);
    }
    return success();
}

void Callbacks::wake()
{
    changed_.notify_all();
    watch_.wake();
}

Outcome Callbacks::registerHandler(const Callback &handler)
{
    const std::lock_guard lock(mutex_);
    if (const Outcome started = startThread(); started.failed()) return started;
    const MQPTR area = handler_ ? handler_->area : handler.area;
    handler_ = handler;
    handler_->area = area;
    if ((handler.options & MQCBDO_REGISTER_CALL) != 0)
        calls_.push_back({*handler_, MQCBCT_REGISTER_CALL, success(), 0, nullptr, MQHO_NONE});
    wake();
    return success();
}

Outcome Callbacks::deregisterHandler()
{
    const std::lock_guard lock(mutex_);
    if (!handler_) return failure(MQRC_CALLBACK_NOT_REGISTERED);
    std::erase_if(calls_, [](const Call &call) { return call.type == MQCBCT_EVENT_CALL && call.answer == nullptr; });
    postLastCall();
    wake();
    return success();
}

void Callbacks::postLastCall()
{
    if (handler_ && (handler_->options & MQCBDO_DEREGISTER_CALL) != 0)
        calls_.push_back({*handler_, MQCBCT_DEREGISTER_CALL, success(), 0, nullptr, MQHO_NONE});
    handler_.reset();
}

Outcome Callbacks::suspendHandler(bool suspended)
{
    const std::lock_guard lock(mutex_);
    if (!handler_) return failure(MQRC_CALLBACK_NOT_REGISTERED);
    handler_->suspended = suspended;
    return success();
}

Outcome Callbacks::post(const Callback &consumer, MQHOBJ hobj, MQLONG callType)
{
    const std::lock_guard lock(mutex_);
    if (const Outcome started = startThread(); started.failed()) return started;
    calls_.push_back({consumer, callType, success(), 0, nullptr, hobj});
    wake();
    return success();
}

void Callbacks::settle()
{
    if (ofThisThread == this) return;
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return ending_ || (calls_.empty() && !running_); });
}

void Callbacks::postEvent(const Outcome &what)
{
    if (!handler_ || handler_->suspended) return;
    calls_.push_back({*handler_, MQCBCT_EVENT_CALL, what, 0, nullptr, MQHO_NONE});
}

// Makes the call and waits for the handler. What runs at the moment may be waiting for this very connection: then the
// handler is told afterwards, and not waited for.
void Callbacks::ask(std::unique_lock<std::mutex> &lock, const Outcome &what, Answer &answer)
{
    if (!handler_ || handler_->suspended) return;
    Call call{*handler_, MQCBCT_EVENT_CALL, what, answer.delay, nullptr, MQHO_NONE};
    if (running_) {
        calls_.push_back(call);
        return;
    }
    // Before the calls that have not begun: those, too, might wait for the connection.
    call.answer = &answer;
    calls_.push_front(call);
    if (ofThisThread == this) {
        while (!answer.given)
            makeCall(lock);
    } else {
        wake();
        changed_.wait(lock, [&] { return answer.given; });
    }
}

MQLONG Callbacks::tellReconnecting(MQLONG delay)
{
    std::unique_lock lock(mutex_);
    Answer answer{delay, false};
    ask(lock, warning(MQRC_RECONNECTING), answer);
    return answer.delay;
}

void Callbacks::tellReconnected(store::Watch watch)
{
    std::unique_lock lock(mutex_);
    const store::Watch former = std::exchange(watch_, std::move(watch));
    former.wake();
    told_ = store::State::Running;
    constexpr Outcome reconnected{MQCC_OK, MQRC_RECONNECTED};
    // This thread has the connection itself: the handler is told when it is free.
    if (ofThisThread == this) return postEvent(reconnected);
    Answer answer;
    ask(lock, reconnected, answer);
}

void Callbacks::tellReconnectFailed()
{
    const std::lock_guard lock(mutex_);
    told_ = store::State::Ended;
    postEvent(failure(MQRC_RECONNECT_FAILED));
    wake();
}

void Callbacks::stop()
{
    {
        const std::lock_guard lock(mutex_);
        ending_ = true;
        if (!thread_.joinable()) return;
        try {
            static_cast<void>(tellState());
            postLastCall();
        } catch (const std::bad_alloc &) { // NOLINT(bugprone-empty-catch): what cannot be kept is not told
        }
        wake();
    }
    thread_.join();
}

bool Callbacks::mayWaitFor(MQHCONN hconn)
{
    if (!onThreadOf(hconn)) return true;
    return ofThisThread->letGo();
}

bool Callbacks::letGo()
{
    const std::lock_guard lock(mutex_);
    if (answering_ == nullptr) return true;
    if (answering_->what.Reason != MQRC_RECONNECTED) return false;
    answering_->answer->given = true;
    answering_ = nullptr;
    changed_.notify_all();
    return true;
}

bool Callbacks::onThreadOf(MQHCONN hconn)
{
    return ofThisThread != nullptr && ofThisThread->hconn_ == hconn;
}

// What the program's function throws nobody could catch.
MQLONG Callbacks::invoke(const Call &call) const noexcept
{
    MQCBC context{};
    std::memcpy(context.StrucId, MQCBC_STRUC_ID, sizeof context.StrucId);
    context.Version = MQCBC_VERSION_2;
    context.CallType = call.type;
    context.Hobj = call.hobj;
    context.CallbackArea = call.callback.area;
    context.ConnectionArea = connectionArea_;
    context.CompCode = call.what.CompCode;
    context.Reason = call.what.Reason;
    context.State = stateOf(call.what);
    context.ReconnectDelay = call.delay;
    call.callback.function(hconn_, nullptr, nullptr, nullptr, &context);
    return context.ReconnectDelay;
}

void Callbacks::makeCall(std::unique_lock<std::mutex> &lock)
{
    Call call = calls_.front();
    calls_.pop_front();
    running_ = true;
    answering_ = call.answer != nullptr ? &call : nullptr;
    lock.unlock();
    const MQLONG delay = invoke(call);
    lock.lock();
    running_ = false;
    if (answering_ != nullptr) *call.answer = {delay, true};
    answering_ = nullptr;
    changed_.notify_all();
}

// Tells the handler what it does not know yet. False: nothing new, or a matter of reconnecting.
bool Callbacks::tellState()
{
    const store::State state = watch_.state();
    const store::State told = told_;
    if (state == told || mustReconnect()) return false;
    if (state == store::State::Quiescing) {
        postEvent(failure(MQRC_Q_MGR_QUIESCING));
    } else {
        postEvent(failure(MQRC_Q_MGR_STOPPING));
        postEvent(failure(MQRC_CONNECTION_BROKEN));
    }
    told_ = state;
    return true;
}

bool Callbacks::mustReconnect() const
{
    return reconnects_ && told_ != store::State::Ended && watch_.endedToReconnect();
}

// Reconnects, unless a call has the connection: then that does it, or is through in a moment.
void Callbacks::reconnect(std::unique_lock<std::mutex> &lock)
{
    lock.unlock();
    bool free = false;
    {
        const ConnectionUse use(hconn_, ConnectionUse::When::Free);
        free = use.found();
    }
    lock.lock();
    if (!free && calls_.empty() && !ending_) changed_.wait_for(lock, busyPause);
}

// ---- Consuming messages ----

Outcome Callbacks::control(MQLONG operation, MQPTR connectionArea)
{
    std::unique_lock lock(mutex_);
    // Another thread has disconnected meanwhile: no thread is there any more that would do it.
    if (ending_) return failure(MQRC_HCONN_ERROR);
    switch (operation) {
    case MQOP_START:
    case MQOP_START_WAIT:
        return start(lock, operation, connectionArea);
    case MQOP_STOP:
        return reach(lock, Stage::Stopped);
    case MQOP_SUSPEND:
    case MQOP_RESUME:
        if (stage_ == Stage::Stopped) return failure(MQRC_OPERATION_NOT_ALLOWED);
        return reach(lock, operation == MQOP_SUSPEND ? Stage::Suspended : Stage::Started);
    default:
        return failure(MQRC_OPERATION_ERROR);
    }
}

// Waits for the condition; false if the connection ends first.
template <typename Condition>
bool Callbacks::await(std::unique_lock<std::mutex> &lock, Condition condition)
{
    changed_.wait(lock, [&] { return ending_ || condition(); });
    return condition();
}

Outcome Callbacks::start(std::unique_lock<std::mutex> &lock, MQLONG operation, MQPTR connectionArea)
{
    if (ofThisThread != nullptr) {
        if (operation == MQOP_START_WAIT) return failure(MQRC_ENVIRONMENT_ERROR);
        if (ofThisThread == this) { // takes a stop of this callback's back
            if (stage_ == Stage::Stopped) return failure(MQRC_OPERATION_NOT_ALLOWED);
            wanted_ = Stage::Started;
            return success();
        }
    }
    if (stage_ == Stage::Suspended) return failure(MQRC_OPERATION_NOT_ALLOWED);
    if (stage_ == Stage::Started || wanted_ == Stage::Started) return failure(MQRC_HCONN_ASYNC_ACTIVE);
    const bool waits = operation == MQOP_START_WAIT;
    if (waits && (consuming_ == nullptr || !consuming_->anyActive())) return failure(MQRC_NO_CALLBACKS_ACTIVE);
    if (const Outcome started = startThread(); started.failed()) return started;

    connectionArea_ = connectionArea;
    ended_ = MQRC_NONE;
    waits_ = waits;
    wanted_ = Stage::Started;
    wake();
    // Another thread may stop it before it has begun.
    const std::uint64_t before = starts_;
    bool done = await(lock, [&] { return starts_ != before || (wanted_ != Stage::Started && !consumes_); });
    const bool began = starts_ != before;
    const bool refused = !began || startRefused_;
    if (done && began && (waits || refused))
        done = await(lock, [this] { return stage_ != Stage::Started && stage_ == wanted_; });
    waits_ = false;
    if (!done) return failure(MQRC_HCONN_ERROR);
    if (refused) return failure(MQRC_CONNECTION_STOPPED);
    if (!waits) return success();
    if (stage_ == Stage::Suspended) return warning(MQRC_CONNECTION_SUSPENDED);
    return ended_ == MQRC_NONE ? success() : failure(ended_);
}

// Waits for it, unless on the thread that has to do it.
Outcome Callbacks::reach(std::unique_lock<std::mutex> &lock, Stage stage)
{
    if (wanted_ == stage && stage_ == stage) return success();
    wanted_ = stage;
    wake();
    if (ofThisThread == this) return success();
    return await(lock, [this] { return stage_ == wanted_; }) ? success() : failure(MQRC_HCONN_ERROR);
}

void Callbacks::changeStage(std::unique_lock<std::mutex> &lock)
{
    const Stage from = std::exchange(stage_, wanted_);
    consumes_ = stage_ == Stage::Started;
    const bool begins = from == Stage::Stopped;
    const bool ends = stage_ == Stage::Stopped;
    if (consuming_ != nullptr && (begins || ends)) {
        running_ = true;
        // Until it has been told, nobody is told that it is so.
        const Stage reached = std::exchange(stage_, from);
        const MQLONG reason = ended_;
        lock.unlock();
        if (begins)
            consuming_->begin(connectionArea_);
        else
            consuming_->end(reason);
        lock.lock();
        running_ = false;
        stage_ = reached;
    }
    if (begins) {
        ++starts_;
        startRefused_ = wanted_ == Stage::Stopped;
    }
    changed_.notify_all();
}

store::Deadline Callbacks::consumeOnce(std::unique_lock<std::mutex> &lock, const store::Watch &watch)
{
    if (consuming_ == nullptr) return store::unlimitedWait;
    running_ = true;
    lock.unlock();
    const Consuming::Done done = consuming_->once(watch);
    const bool active = consuming_->anyActive();
    lock.lock();
    running_ = false;
    changed_.notify_all();
    if (done.ended != MQRC_NONE || (waits_ && !active && wanted_ == Stage::Started)) {
        ended_ = done.ended != MQRC_NONE ? done.ended : MQRC_NO_CALLBACKS_ACTIVE;
        wanted_ = Stage::Stopped;
    }
    return done.again;
}

// One thing that there is to do, or a sleep. False at the end of the connection.
bool Callbacks::runOnce(std::unique_lock<std::mutex> &lock)
{
    if (!calls_.empty()) {
        makeCall(lock);
        return true;
    }
    if (ending_) return false;
    const store::Watch watch = watch_;
    const std::uint32_t observed = watch.observe();
    if (tellState()) return true;
    if (mustReconnect()) {
        reconnect(lock);
        return true;
    }
    if (wanted_ != stage_) {
        changeStage(lock);
        return true;
    }
    const store::Deadline until = stage_ == Stage::Started ? consumeOnce(lock, watch) : store::unlimitedWait;
    if (!calls_.empty() || ending_ || wanted_ != stage_) return true;
    lock.unlock();
    watch.sleep(observed, until);
    lock.lock();
    return true;
}

void Callbacks::run()
{
    ofThisThread = this;
    std::unique_lock lock(mutex_);
    for (;;) {
        try {
            if (!runOnce(lock)) return;
        } catch (const std::bad_alloc &) {
            // Nobody is there to be told. What was to be done is still to be done; in a moment there may be memory.
            if (!lock.owns_lock()) lock.lock();
            running_ = false;
            changed_.notify_all();
            changed_.wait_for(lock, busyPause);
        }
    }
}

} // namespace mqrig::qmgr::core
