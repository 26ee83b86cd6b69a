// The connections of this process and the numbers (MQHCONN) by which its program knows them.
//
// Any thread may use any connection, one call at a time: ConnectionUse holds the connection's lock for one call.
// Storage of an entry never moves and is never freed, so that a call with a handle that another thread disconnects
// at that moment finds a lock to take and then a number that is no longer its own.
//
// In a process forked from one that was connected, every handle answers MQRC_HCONN_ERROR: the child never takes a
// lock that a thread of its parent may have held. It may connect anew; numbers go on, so that no handle of the parent
// ever means a connection of the child.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>

#include "cmqc.h"
#include "qmgr/core/connection.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::core {

struct ConnectionEntry;

// The handle of the connection, or MQHC_UNUSABLE_HCONN when there are too many.
MQHCONN addConnection(std::unique_ptr<Connection> connection);

// One call's use of a connection.
class ConnectionUse {
public:
    enum class When {
        Mine,    // waits for its turn; with MQCNO_HANDLE_SHARE_NO_BLOCK only for threads of the library
        Free,    // not found while another call uses the connection; for a thread of the library
        Control, // like Mine, also while consumers of messages have the connection
        Leaving, // like Control; ends a reconnection that it would wait for
    };
    explicit ConnectionUse(MQHCONN hconn, When when = When::Mine);
    // The end of a call is where requests to the queue manager are served.
    ~ConnectionUse();
    ConnectionUse(const ConnectionUse &) = delete;
    ConnectionUse &operator=(const ConnectionUse &) = delete;

    // Whether the call may go on. MQRC_HCONN_ERROR; MQRC_CALL_IN_PROGRESS where it does not wait, or is made by a
    // callback that the connection waits for; MQRC_HCONN_ASYNC_ACTIVE while consumers have it, except for their own
    // thread; what checkConnection (reconnect.h) says.
    const Outcome &outcome() const { return outcome_; }
    // The connection exists, whether or not its queue manager still runs.
    bool found() const { return lock_.owns_lock(); }

    Connection &operator*() const { return *connection_; }
    Connection *operator->() const { return connection_; }

    // Takes the connection out of the table; its number means nothing from now on. Its place in the table is not given
    // to another before the end of the use, so that its callbacks can be stopped first.
    std::unique_ptr<Connection> remove();

    // The connection's callbacks, made at the first use.
    const std::shared_ptr<Callbacks> &callbacks();

    // Those of a connection whose consumers have it at the moment; null where that is not so.
    static std::shared_ptr<Callbacks> consumingCallbacks(MQHCONN hconn);

    // Lets a reconnection end that the connection is in: it is about to be disconnected. Not with
    // MQCNO_HANDLE_SHARE_NO_BLOCK while a call of the program reconnects: there the MQDISC is refused.
    static void announceRemoval(MQHCONN hconn);
    // It was refused.
    static void withdrawRemoval(MQHCONN hconn);

private:
    bool take(ConnectionEntry &entry, MQHCONN hconn, When when, bool waits);

    ConnectionEntry *entry_ = nullptr;
    Connection *connection_ = nullptr;
    // Raised while a thread of the library has the lock; lowered behind it, so that who meets the lock sees it.
    struct Raised {
        ~Raised()
        {
            if (flag != nullptr) *flag = false;
        }
        std::atomic<bool> *flag = nullptr;
    } library_;
    std::unique_lock<std::mutex> lock_;
    Outcome outcome_;
};

// Whether the queue manager's end has caught a call that answers this, and the connection follows it to its next life:
// then the call has not happened and is to be made again (reconnect.h).
bool wasInterrupted(MQHCONN hconn, const Outcome &outcome);

} // namespace mqrig::qmgr::core
