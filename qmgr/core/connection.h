// A connection to the queue manager: everything that MQCONN makes and MQDISC ends.
//
// Used by one call at a time: whoever has it through a ConnectionUse (connections.h) holds its lock.
#pragma once

#include <array>
#include <memory>
#include <string_view>

#include "cmqc.h"
#include "qmgr/core/message_handles.h"
#include "qmgr/core/object_handles.h"
#include "qmgr/core/process_identity.h"
#include "qmgr/core/put_clock.h"
#include "qmgr/core/unit_of_work.h"
#include "qmgr/objects/catalog.h"
#include "qmgr/store/attachment.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::core {

struct ConnectRequest {
    std::string_view queueManager; // without padding; empty: the default queue manager
    MQLONG options = MQCNO_NONE;   // MQCNO_; the reconnect options are for the event handler of the connection
    std::string_view applName;     // empty: the program's file name
};

struct Connection {
    Connection(std::unique_ptr<store::Attachment> attachment, const ConnectRequest &request);

    // Never null; the catalog and the handles go first.
    std::unique_ptr<store::Attachment> store;
    objects::Catalog catalog;
    ObjectHandles handles;
    MessageHandles messageHandles;
    UnitOfWork unit;
    bool begun = false; // by MQBEGIN

    MQLONG options; // MQCNO_
    ProcessIdentity identity;
    PutClock clock;
    std::array<char, MQ_Q_MGR_NAME_LENGTH> queueManagerName; // blank-padded
    std::array<MQBYTE, MQ_CONNECTION_ID_LENGTH> connectionId;

    // The queue manager's attributes as of now.
    const objects::QueueManagerDefinition &queueManager() { return *catalog.queueManager(); }

    // An identifier that no message of this queue manager had before: "AMQ ", 12 characters of the queue manager's
    // name, 8 bytes.
    void newIdentifier(MQBYTE24 &identifier) const;
};

// MQCONN and MQCONNX. On success `hconn` is the handle of a new connection.
Outcome connect(const ConnectRequest &request, MQHCONN &hconn);

} // namespace mqrig::qmgr::core
