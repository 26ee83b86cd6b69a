// The callbacks of a connection and the thread of the library that calls them.
//
// A connection that registers nothing has none of this. The first registration makes the thread; it blocks all
// signals, calls one callback at a time, and ends with the connection. After a fork it belongs to the parent alone: the
// child has no such thread, and nothing of the parent's connections is ever used there (connections.h).
//
// The thread watches the queue manager's state for the event handler. When the queue manager ends to come back, whoever
// uses the connection looks for it (reconnect.h): the call that is in progress, or this thread when there is none.
//
// Who waits for whom: the thread takes a connection only when it is free, or inside a callback by a call of the
// program. A call that reconnects waits for the event handler, but only while the thread runs nothing else. Calls that
// the handler makes on the connection meanwhile are refused with MQRC_CALL_IN_PROGRESS before the queue manager is
// found, and afterwards end the waiting. So neither waits for the other.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

#include "cmqc.h"
#include "qmgr/core/consuming.h"
#include "qmgr/store/outcome.h"
#include "qmgr/store/watch.h"

namespace mqrig::qmgr::core {

// What MQCB registers.
struct Callback {
    MQCB_FUNCTION *function = nullptr;
    MQPTR area = nullptr;
    MQLONG options = MQCBDO_NONE;
    bool suspended = false;
};

class Callbacks {
public:
    // `reconnects`: the connection follows its queue manager.
    // `consumes` is true while other threads may not use the connection.
    Callbacks(MQHCONN hconn, store::Watch watch, bool reconnects, std::atomic<bool> &consumes);
    ~Callbacks();
    Callbacks(const Callbacks &) = delete;
    Callbacks &operator=(const Callbacks &) = delete;

    // ---- The event handler; the caller has the connection ----

    // A registration in place of another keeps the other's area, as the MQI has it. MQRC_RESOURCE_PROBLEM: no thread.
    Outcome registerHandler(const Callback &handler);
    // MQRC_CALLBACK_NOT_REGISTERED.
    Outcome deregisterHandler();
    Outcome suspendHandler(bool suspended);

    // Waits until no callback runs any more that was called before. Without the connection; at once on the thread
    // itself.
    void settle();

    // Another call for a consumer of messages, of the kind that tells it about its registration; the thread is made if
    // there is none.
    Outcome post(const Callback &consumer, MQHOBJ hobj, MQLONG callType);

    // ---- Consuming messages ----

    // Null until somebody sets it.
    const std::shared_ptr<Consuming> &consuming() const { return consuming_; }
    void setConsuming(std::shared_ptr<Consuming> consuming) { consuming_ = std::move(consuming); }
    // MQCTL, without the connection: MQOP_START, MQOP_START_WAIT, MQOP_STOP, MQOP_SUSPEND, MQOP_RESUME. Returns when it
    // has come true; on the thread itself at once, and it comes true when the callback has returned.
    // MQRC_OPERATION_NOT_ALLOWED, MQRC_HCONN_ASYNC_ACTIVE, MQRC_ENVIRONMENT_ERROR, MQRC_NO_CALLBACKS_ACTIVE,
    // MQRC_CONNECTION_STOPPED; warning MQRC_CONNECTION_SUSPENDED; MQRC_HCONN_ERROR: disconnected meanwhile.
    Outcome control(MQLONG operation, MQPTR connectionArea);

    // ---- The reconnection; the caller has the connection ----

    // Tells the handler that the next attempt is made after `delay` milliseconds; the delay that it wants instead, or
    // MQRD_NO_RECONNECT.
    MQLONG tellReconnecting(MQLONG delay);
    // The queue manager has been found again: from now on its new life is watched.
    void tellReconnected(store::Watch watch);
    void tellReconnectFailed();

    // ---- The end of the connection ----

    // Tells the handler what has happened so far, makes the last calls and ends the thread. Not on the thread itself.
    void stop();

    // For a call that is about to wait for the connection. False where the calling thread is in a callback that whoever
    // has the connection waits for.
    static bool mayWaitFor(MQHCONN hconn);
    // Whether the calling thread is the one that calls this connection's callbacks.
    static bool onThreadOf(MQHCONN hconn);

private:
    // For somebody who has the connection and waits for the handler.
    struct Answer {
        MQLONG delay = 0; // as the handler leaves it
        bool given = false;
    };
    enum class Stage { Stopped, Started, Suspended };
    struct Call {
        Callback callback;
        MQLONG type = MQCBCT_EVENT_CALL;
        Outcome what;
        MQLONG delay = 0;
        Answer *answer = nullptr; // null: nobody waits
        MQHOBJ hobj = MQHO_NONE;
    };

    void run();
    bool runOnce(std::unique_lock<std::mutex> &lock);
    Outcome startThread();
    void makeCall(std::unique_lock<std::mutex> &lock);
    MQLONG invoke(const Call &call) const noexcept;
    void postEvent(const Outcome &what);
    void ask(std::unique_lock<std::mutex> &lock, const Outcome &what, Answer &answer);
    bool letGo();
    void postLastCall();
    bool tellState();
    [[nodiscard]] bool mustReconnect() const;
    void reconnect(std::unique_lock<std::mutex> &lock);
    void wake();
    Outcome start(std::unique_lock<std::mutex> &lock, MQLONG operation, MQPTR connectionArea);
    Outcome reach(std::unique_lock<std::mutex> &lock, Stage stage);
    template <typename Condition>
    bool await(std::unique_lock<std::mutex> &lock, Condition condition);
    void changeStage(std::unique_lock<std::mutex> &lock);
    store::Deadline consumeOnce(std::unique_lock<std::mutex> &lock, const store::Watch &watch);

    const MQHCONN hconn_;
    const bool reconnects_;
    std::atomic<bool> &consumes_;
    std::shared_ptr<Consuming> consuming_; // set by who has the connection, before it is started

    std::mutex mutex_; // guards all that follows
    std::condition_variable changed_;
    store::Watch watch_;
    store::State told_ = store::State::Running; // what the handler knows
    std::optional<Callback> handler_;
    std::deque<Call> calls_;
    bool running_ = false;      // a callback
    Call *answering_ = nullptr; // the call that is running, if somebody waits for it
    bool ending_ = false;
    Stage wanted_ = Stage::Stopped; // by the program
    Stage stage_ = Stage::Stopped;
    std::uint64_t starts_ = 0;  // how often the stage was Started
    bool startRefused_ = false; // the last time, a start call has stopped it
    bool waits_ = false;        // a thread waits in MQOP_START_WAIT
    MQLONG ended_ = MQRC_NONE;  // why no more could be consumed
    MQPTR connectionArea_ = nullptr;
    std::thread thread_;
};

} // namespace mqrig::qmgr::core
