#include "qmgr/core/connection.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <string>
#include <utility>

#include "qmgr/core/callbacks.h"
#include "qmgr/core/command_server.h"
#include "qmgr/core/connections.h"
#include "qmgr/core/events.h"
#include "qmgr/core/subscriptions.h"
#include "qmgr/objects/connection_tag.h"
#include "qmgr/objects/object_name.h"
#include "qmgr/objects/system_objects.h"
#include "qmgr/store/paths.h"
#include "qmgr/store/queue_managers.h"

namespace mqrig::qmgr::core {
namespace {

constexpr std::size_t productLength = 4;
constexpr std::size_t nameLength = 12;

// Big-endian, so that identifiers sort in the order they were made.
void writeNumber(MQBYTE *at, std::uint64_t number)
{
    for (int i = 0; i < 8; ++i)
        at[i] = static_cast<MQBYTE>(number >> (8 * (7 - i)));
}

void makeIdentifier(MQBYTE *identifier, const char *product, const char *queueManager, std::uint64_t number)
{
    std::memcpy(identifier, product, productLength);
    std::memcpy(identifier + productLength, queueManager, nameLength);
    writeNumber(identifier + productLength + nameLength, number);
}

// A quiescing queue manager whose last program was killed has ended, and this look ends it.
Outcome whenQuiescing(const std::filesystem::path &storeFolder, std::string_view queueManager)
{
    const std::string name(queueManager.empty() ? store::defaultQueueManager(storeFolder) : queueManager);
    const store::StateOfQueueManager now = store::stateOf(storeFolder, name);
    const bool ended = !now.outcome.failed() && now.state == store::State::Ended;
    return failure(ended ? MQRC_Q_MGR_NOT_AVAILABLE : MQRC_Q_MGR_QUIESCING);
}

} // namespace

Connection::Connection(std::unique_ptr<store::Attachment> attachment, const ConnectRequest &request,
                       std::filesystem::path folder)
    : store(std::move(attachment)), catalog(*store), options(request.options), applName(request.applName),
      identity(processIdentity()), storeFolder(std::move(folder)), queueManagerAsked(request.queueManager)
{
    identify();
    if (!request.applName.empty())
        objects::fillField(identity.putApplName, sizeof identity.putApplName, request.applName);
}

void watchRequests(Connection &connection)
{
    const objects::FoundQueue queue = connection.catalog.queue(objects::commandQueue);
    if (!queue.outcome.failed()) connection.store->setRequestQueue(queue.hold.queue->id);
    if (connection.store->requestsWaiting()) serveRequests(connection);
}

Connection::~Connection() = default;

void Connection::identify()
{
    objects::fillField(queueManagerName, store->queueManagerName());
    makeIdentifier(connectionId.data(), "AMQC", queueManagerName.data(), store->connectionNumber());
    connectionTag.fill(0);
    const std::string tag = objects::connectionTag(store->queueManagerName(), store->connectionNumber());
    std::copy_n(tag.begin(), std::min(tag.size(), connectionTag.size()), connectionTag.begin());
    if (!applName.empty()) store->nameProgram(applName);
}

void Connection::newIdentifier(MQBYTE24 &identifier) const
{
    makeIdentifier(identifier, "AMQ ", queueManagerName.data(), store->uniqueNumber());
}

Outcome connect(const ConnectRequest &request, MQHCONN &hconn)
{
    const std::filesystem::path storeFolder = store::defaultStoreFolder();
    store::Attached attached = store::attach(storeFolder, request.queueManager);
    if (attached.outcome.Reason == MQRC_Q_MGR_QUIESCING) return whenQuiescing(storeFolder, request.queueManager);
    if (attached.outcome.failed()) return attached.outcome;
    auto connection = std::make_unique<Connection>(std::move(attached.attachment), request, storeFolder);
    if (connection->catalog.queueManager() == nullptr) return failure(MQRC_OBJECT_DAMAGED);
    watchRequests(*connection);
    if (connection->store->announcesStart()) startEvent(*connection);
    hconn = addConnection(std::move(connection));
    return hconn == MQHC_UNUSABLE_HCONN ? failure(MQRC_MAX_CONNS_LIMIT_REACHED) : attached.outcome;
}

} // namespace mqrig::qmgr::core
