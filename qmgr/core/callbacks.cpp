#include "qmgr/core/callbacks.h"

#include <chrono>
#include <csignal>
#include <cstring>
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

Callbacks::Callbacks(MQHCONN hconn, store::Watch watch, bool reconnects)
    : hconn_(hconn), reconnects_(reconnects), watch_(std::move(watch))
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
        calls_.push_back({*handler_, MQCBCT_REGISTER_CALL, success(), 0, nullptr});
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
        calls_.push_back({*handler_, MQCBCT_DEREGISTER_CALL, success(), 0, nullptr});
    handler_.reset();
}

Outcome Callbacks::suspendHandler(bool suspended)
{
    const std::lock_guard lock(mutex_);
    if (!handler_) return failure(MQRC_CALLBACK_NOT_REGISTERED);
    handler_->suspended = suspended;
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
    calls_.push_back({*handler_, MQCBCT_EVENT_CALL, what, 0, nullptr});
}

// Makes the call and waits for the handler. What runs at the moment may be waiting for this very connection: then the
// handler is told afterwards, and not waited for.
void Callbacks::ask(std::unique_lock<std::mutex> &lock, const Outcome &what, Answer &answer)
{
    if (!handler_ || handler_->suspended) return;
    calls_.push_back({*handler_, MQCBCT_EVENT_CALL, what, answer.delay, running_ ? nullptr : &answer});
    if (running_) return;
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
        if (!thread_.joinable()) return;
        static_cast<void>(tellState());
        postLastCall();
        ending_ = true;
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

MQLONG Callbacks::invoke(const Call &call) const
{
    MQCBC context{};
    std::memcpy(context.StrucId, MQCBC_STRUC_ID, sizeof context.StrucId);
    context.Version = MQCBC_VERSION_2;
    context.CallType = call.type;
    context.Hobj = MQHO_NONE;
    context.CallbackArea = call.callback.area;
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
    told_ = state;
    if (state == store::State::Quiescing) {
        postEvent(failure(MQRC_Q_MGR_QUIESCING));
    } else {
        postEvent(failure(MQRC_Q_MGR_STOPPING));
        postEvent(failure(MQRC_CONNECTION_BROKEN));
    }
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

void Callbacks::run()
{
    ofThisThread = this;
    std::unique_lock lock(mutex_);
    for (;;) {
        if (!calls_.empty()) {
            makeCall(lock);
            continue;
        }
        if (ending_) return;
        const store::Watch watch = watch_;
        const std::uint32_t observed = watch.observe();
        if (tellState()) continue;
        if (mustReconnect()) {
            reconnect(lock);
            continue;
        }
        lock.unlock();
        watch.sleep(observed, store::unlimitedWait);
        lock.lock();
    }
}

} // namespace mqrig::qmgr::core
