#include "qmgr/core/reconnect.h"

#include <algorithm>
#include <array>
#include <new>
#include <utility>

#include "qmgr/core/callbacks.h"
#include "qmgr/core/open.h"
#include "qmgr/core/subscriptions.h"
#include "qmgr/store/futex.h"

namespace mqrig::qmgr::core {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr std::array<std::chrono::milliseconds, 6> delaysOfMq{1000ms, 2000ms, 4000ms, 8000ms, 16000ms, 25000ms};

class Reconnection {
public:
    explicit Reconnection(Connection &connection)
        : connection_(connection), identifier_(identifierOf(connection)),
          giveUpAt_(Clock::now() + reconnectTimes.timeout)
    {
    }

    // MQRC_NONE, or why the connection is lost.
    MQLONG run()
    {
        for (std::size_t attempt = 0;; ++attempt) {
            const std::size_t last = reconnectTimes.delays.size() - 1;
            const MQLONG delay = tell(reconnectTimes.delays[std::min(attempt, last)]);
            if (delay < 0) return MQRC_RECONNECT_FAILED;
            if (!sleep(std::chrono::milliseconds(delay))) return MQRC_CONNECTION_BROKEN;
            store::Attached attached = store::attach(connection_.storeFolder, name());
            if (!attached.outcome.failed()) return takeOver(std::move(attached.attachment));
            if (Clock::now() >= giveUpAt_) return MQRC_RECONNECT_TIMED_OUT;
        }
    }

private:
    using Identifier = decltype(objects::QueueManagerDefinition::identifier);

    // Of the queue manager, or zeros where it cannot be read any more.
    static Identifier identifierOf(Connection &connection)
    {
        const auto &definition = connection.catalog.queueManager();
        return definition == nullptr ? Identifier{} : definition->identifier;
    }

    bool sameQueueManagerOnly() const { return (connection_.options & MQCNO_RECONNECT_Q_MGR) != 0; }

    // MQCNO_RECONNECT follows the name that the program gave: the default queue manager may be another one now.
    std::string name() const
    {
        return sameQueueManagerOnly() ? connection_.store->queueManagerName() : connection_.queueManagerAsked;
    }

    MQLONG tell(std::chrono::milliseconds delay) const
    {
        const auto milliseconds = static_cast<MQLONG>(delay.count());
        return connection_.callbacks == nullptr ? milliseconds : connection_.callbacks->tellReconnecting(milliseconds);
    }

    // False: the program disconnects.
    bool sleep(std::chrono::milliseconds delay) const
    {
        const auto until = std::min(Clock::now() + delay, giveUpAt_);
        for (;;) {
            const MQHCONN leaving = *connection_.leaving;
            if (leaving == connection_.hconn) return false;
            if (Clock::now() >= until) return true;
            store::futexWait(connection_.leaving, static_cast<std::uint32_t>(leaving), until);
        }
    }

    // All or nothing: a connection that cannot be restored keeps what it had, and lets go of the new life.
    MQLONG takeOver(std::unique_ptr<store::Attachment> attachment)
    {
        objects::Catalog fresh(*attachment);
        std::swap(connection_.store, attachment);
        objects::Catalog former = std::exchange(connection_.catalog, std::move(fresh));
        connection_.subscriptions.reset(); // its versions are those of the former life
        const auto giveBack = [&] {
            connection_.subscriptions.reset();
            std::swap(connection_.store, attachment);
            connection_.catalog = std::move(former);
        };
        try {
            if (const MQLONG reason = restore(); reason != MQRC_NONE) {
                giveBack();
                return reason;
            }
        } catch (const std::bad_alloc &) {
            giveBack(); // the next call begins again
            throw;
        }
        connection_.identify();
        connection_.begun = false;
        connection_.unit.lose();
        watchRequests(connection_);
        if (connection_.callbacks != nullptr) connection_.callbacks->tellReconnected(connection_.store->watch());
        return MQRC_NONE;
    }

    MQLONG restore()
    {
        if (connection_.catalog.queueManager() == nullptr) return MQRC_RECONNECT_FAILED;
        const bool same = connection_.catalog.queueManager()->identifier == identifier_;
        if (!same && sameQueueManagerOnly()) return MQRC_RECONNECT_QMID_MISMATCH;
        const bool restored = connection_.handles.forEach([&](OpenObject &object) {
            if (!same) object.cursor.reset();
            object.locked.reset();
            object.marks = {};
            if (!reopenObject(connection_, object).failed()) return true;
            connection_.reconnectFailure = {
                {}, object.type, object.asked.name, object.asked.queueManager, object.asked.options};
            return false;
        });
        return restored ? MQRC_NONE : MQRC_RECONNECT_FAILED;
    }

    Connection &connection_;
    const Identifier identifier_;
    const Clock::time_point giveUpAt_;
};

} // namespace

ReconnectTimes reconnectTimes{delaysOfMq, 1800s};

Outcome afterTheEnd(Connection &connection, const Outcome &ended)
{
    if (connection.store->forked()) return ended;
    if (connection.givenUp == MQRC_NONE) {
        if (!connection.follows() || !connection.store->endedToReconnect()) return ended;
        connection.givenUp = Reconnection(connection).run();
        if (connection.givenUp == MQRC_NONE) return success();
        connection.reconnectFailure.cause = ended;
        if (connection.callbacks != nullptr) connection.callbacks->tellReconnectFailed();
        // The program hears of it from its next call; the thread of the library makes none.
        if (Callbacks::onThreadOf(connection.hconn)) return failure(connection.givenUp);
    }
    return failure(std::exchange(connection.toldOfGivingUp, true) ? MQRC_CONNECTION_BROKEN : connection.givenUp);
}

bool isInterrupted(const Connection &connection, const Outcome &outcome)
{
    return outcome.Reason == MQRC_CONNECTION_BROKEN && connection.follows() && connection.givenUp == MQRC_NONE &&
           connection.store->endedToReconnect();
}

} // namespace mqrig::qmgr::core
