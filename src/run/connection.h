/// The connections of a pass: their records and handles, and the queues that the operation needs open on them.
#pragma once

#include "options.h"
#include "status.h"

#include <memory>

/// One connection with its own copy of both records. It never moves: an event handler may hold its address.
struct Connection {
    RunParams record;
    RunParams secondary;
    char name[MaxQMgrListLength + 1];
    MQHCONN hconn = MQHC_UNUSABLE_HCONN;
    bool connected = false; ///< the connect succeeded, and no disconnect has
    std::unique_ptr<Connection> next;
};

/// The connections made in one pass, in order. Those that are still connected when the pass ends are kept to the end
/// of the process, because the MQI may call their event handler at any time.
class Connections {
public:
    Connections() = default;
    ~Connections();
    Connections(const Connections &) = delete;
    Connections &operator=(const Connections &) = delete;

    /// A new connection with copies of the records and this queue manager's name; null when there is no memory.
    Connection *add(const RunParams &record, const RunParams &secondary, const char *name);

    Connection *first() const { return first_.get(); }

private:
    std::unique_ptr<Connection> first_;
    Connection *last_ = nullptr;
};

/// MQCONN or MQCONNX.
Status connect(Connection &connection);
/// Opens what the operation needs open before it runs. The first failing status.
Status openQueues(Connection &connection, const CommandLine &operation);
/// Closes it again and disconnects, whatever fails. The first failing status.
Status closeAndDisconnect(Connection &connection, const CommandLine &operation);
