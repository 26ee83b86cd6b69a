// A connection to the queue manager: everything that MQCONN makes and MQDISC ends.
//
// Used by one call at a time: whoever has it through a ConnectionUse (connections.h) holds its lock.
#pragma once

#include <array>
#include <atomic>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "cmqc.h"
#include "qmgr/core/async_puts.h"
#include "qmgr/core/message_handles.h"
#include "qmgr/core/object_handles.h"
#include "qmgr/core/process_identity.h"
#include "qmgr/core/put_clock.h"
#include "qmgr/core/unit_of_work.h"
#include "qmgr/objects/catalog.h"
#include "qmgr/store/attachment.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::core {

class Callbacks;
class Subscriptions;

// Why a connection began to reconnect, and the object that could not be opened again, if one was in the way.
struct ReconnectFailure {
    Outcome cause;
    MQLONG type = MQOT_NONE;
    std::string name;
    std::string queueManager;
    MQLONG openOptions = 0;
};

struct ConnectRequest {
    std::string_view queueManager; // without padding; empty: the default queue manager
    MQLONG options = MQCNO_NONE;   // MQCNO_
    std::string_view applName;     // empty: the program's file name
};

struct Connection {
    // The folder is where it looks for the queue manager again.
    Connection(std::unique_ptr<store::Attachment> attachment, const ConnectRequest &request,
               std::filesystem::path storeFolder = {});
    ~Connection();

    // Never null; the catalog and the handles go first.
    std::unique_ptr<store::Attachment> store;
    objects::Catalog catalog;
    ObjectHandles handles;
    std::unique_ptr<Subscriptions> subscriptions; // read at the first publication; null before
    MessageHandles messageHandles;
    UnitOfWork unit;
    bool begun = false; // by MQBEGIN
    AsyncPuts asyncPuts;
    bool triggering = false; // a trigger message is being put, which triggers nothing itself

    MQLONG options;       // MQCNO_
    std::string applName; // MQCNO.ApplName; empty: the program's file name
    ProcessIdentity identity;
    PutClock clock;
    std::array<char, MQ_Q_MGR_NAME_LENGTH> queueManagerName; // blank-padded
    std::array<MQBYTE, MQ_CONNECTION_ID_LENGTH> connectionId;
    std::array<MQBYTE, MQ_CONN_TAG_LENGTH> connectionTag;

    // ---- The reconnection (reconnect.h) ----
    std::filesystem::path storeFolder;
    std::string queueManagerAsked;                 // as the program named it
    MQLONG givenUp = MQRC_NONE;                    // why no more attempts are made to reconnect
    ReconnectFailure reconnectFailure;             // what MQSTAT tells of it
    bool toldOfGivingUp = false;                   // the program has had that reason
    MQHCONN hconn = MQHC_UNUSABLE_HCONN;           // set when it gets into the table, like the next
    const std::atomic<MQHCONN> *leaving = nullptr; // a futex word: holds hconn when somebody disconnects it

    // Null while nothing is registered. Shared with calls that wait until a callback has returned.
    std::shared_ptr<Callbacks> callbacks;

    // Whether it follows its queue manager when that ends to come back.
    bool follows() const { return (options & (MQCNO_RECONNECT | MQCNO_RECONNECT_Q_MGR)) != 0; }

    // Names the queue manager and the connection after the attachment.
    void identify();

    // The queue manager's attributes as of now.
    const objects::QueueManagerDefinition &queueManager() { return *catalog.queueManager(); }

    // An identifier that no message of this queue manager had before: "AMQ ", 12 characters of the queue manager's
    // name, 8 bytes.
    void newIdentifier(MQBYTE24 &identifier) const;
};

// At the beginning of each life that a connection meets: the store is told which queue holds requests to the queue
// manager, and what others have left there is served.
void watchRequests(Connection &connection);

// MQCONN and MQCONNX. On success `hconn` is the handle of a new connection.
Outcome connect(const ConnectRequest &request, MQHCONN &hconn);

} // namespace mqrig::qmgr::core
