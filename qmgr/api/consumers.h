// Message consumers: what MQCB registers on object handles, and the getting of messages for them.
//
// Messages are got as the program itself would get them, by MQGET on the connection's own thread (core/callbacks.h), so
// that selection, conversion, properties and units of work are those of MQGET. Consumers take turns.
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <memory>
#include <mutex>
#include <vector>

#include "cmqc.h"
#include "qmgr/core/callbacks.h"
#include "qmgr/core/connections.h"
#include "qmgr/core/consuming.h"
#include "qmgr/store/message.h"

namespace mqrig::qmgr::api {

// A consumer as MQCB describes it.
struct ConsumerRequest {
    MQHOBJ hobj = MQHO_NONE;
    core::Callback callback;
    MQLONG maxMsgLength = MQCBD_FULL_MSG_LENGTH;
    MQMD md = {MQMD_DEFAULT}; // as the program gave it, up to its Version
    bool describes = true;    // the consumer is shown a descriptor
    MQGMO gmo = {MQGMO_DEFAULT};
};

// Browsing, a consumer is shown with MQGMO_BROWSE_FIRST the first message each time, with MQGMO_BROWSE_NEXT each
// message once, and with both together each one once from the start of the queue on.
inline constexpr MQLONG startThenGoOn = MQGMO_BROWSE_FIRST | MQGMO_BROWSE_NEXT;
inline constexpr MQLONG setsMark = MQGMO_MARK_BROWSE_HANDLE | MQGMO_MARK_BROWSE_CO_OP;

// What the next MQGET for the consumer asks for; `browsed`: it has been shown a message.
MQGMO nextGet(const ConsumerRequest &request, bool browsed);

class Consumers : public core::Consuming {
public:
    Consumers(MQHCONN hconn, core::Callbacks &callbacks) : hconn_(hconn), callbacks_(callbacks) {}

    // The caller has the connection. A registration in place of another keeps the other's area.
    Outcome add(const ConsumerRequest &request);
    // MQRC_CALLBACK_NOT_REGISTERED.
    Outcome remove(MQHOBJ hobj);
    Outcome suspend(MQHOBJ hobj, bool suspended);

    bool anyActive() const override;
    void begin(MQPTR connectionArea) override;
    Done once(const store::Watch &watch) override;
    void end(MQLONG reason) override;

private:
    using Clock = std::chrono::steady_clock;

    struct Consumer {
        ConsumerRequest request;
        std::atomic<bool> suspended{false};
        std::atomic<bool> gone{false};
        bool started = false;           // it has had its start call
        bool browsed = false;           // the first message
        bool hearsOfNone = true;        // an interval of 0: that there is no message is told once
        MQLONG told = MQRC_NONE;        // the reason that it was told of last
        Clock::time_point waitingSince; // for a message
        Clock::time_point notBefore;    // the next attempt after a passing trouble

        bool wants(MQLONG option) const { return (request.callback.options & option) != 0; }
    };
    using List = std::vector<std::shared_ptr<Consumer>>;

    // Never changed once it is there: who goes through it needs neither a lock nor memory.
    std::shared_ptr<const List> list() const;
    // Without those that are gone, and with this one in place of that of its handle.
    std::shared_ptr<const List> listWith(const std::shared_ptr<Consumer> &added) const;
    void replaceList(std::shared_ptr<const List> next);
    std::shared_ptr<Consumer> find(MQHOBJ hobj) const;
    void call(const Consumer &consumer, MQLONG type, const Outcome &what, MQLONG state) const noexcept;
    // A turn of one consumer.
    struct Turn {
        bool called = false;
        MQLONG ended = MQRC_NONE;
    };
    void complete(MQCBC &context, const Consumer &consumer) const noexcept;
    void deliver(const Consumer &consumer, MQMD &md, MQGMO &gmo, MQCBC &context) noexcept;
    bool roomFor(std::size_t bytes);
    Turn turnOf(Consumer &consumer);
    Turn tell(Consumer &consumer, const Outcome &trouble);
    Turn nothingFor(Consumer &consumer);
    bool isInhibited(const Consumer &consumer) const;
    bool lookAtQueues(const List &consumers);
    store::Deadline whenToLookAgain(const List &consumers) const;

    const MQHCONN hconn_;
    core::Callbacks &callbacks_;
    mutable std::mutex mutex_; // guards the pointer
    std::shared_ptr<const List> consumers_ = std::make_shared<const List>();

    // Of the thread.
    MQPTR connectionArea_ = nullptr;
    std::vector<std::byte> buffer_;
    std::size_t next_ = 0;
    std::vector<store::QueueId> queues_;
    bool looksOften_ = false; // messages may come without a wake
};

// The consumers of a connection, made at the first use.
Consumers &consumersOf(core::ConnectionUse &use);
// An object handle is closed: its consumer goes with it.
void forgetConsumer(core::ConnectionUse &use, MQHOBJ hobj);

} // namespace mqrig::qmgr::api
