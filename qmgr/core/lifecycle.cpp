#include "qmgr/core/lifecycle.h"

#include <memory>
#include <utility>

#include "qmgr/core/connection.h"
#include "qmgr/core/events.h"

namespace mqrig::qmgr::core {
namespace {

// A connection of the administrator's, or null where there can be none.
std::unique_ptr<Connection> connectTo(const std::filesystem::path &storeFolder, std::string_view queueManager)
{
    store::Attached attached = store::attach(storeFolder, queueManager);
    if (attached.outcome.failed()) return nullptr;
    auto connection = std::make_unique<Connection>(std::move(attached.attachment), ConnectRequest{}, storeFolder);
    return connection->catalog.queueManager() == nullptr ? nullptr : std::move(connection);
}

} // namespace

void announceStart(const std::filesystem::path &storeFolder, std::string_view queueManager)
{
    const auto connection = connectTo(storeFolder, queueManager);
    if (connection != nullptr && connection->store->announcesStart()) startEvent(*connection);
}

void announceEnd(const std::filesystem::path &storeFolder, std::string_view queueManager, store::End how)
{
    const auto connection = connectTo(storeFolder, queueManager);
    if (connection == nullptr) return;
    stopEvent(*connection, how == store::End::Quiesce ? MQRQ_Q_MGR_QUIESCING : MQRQ_Q_MGR_STOPPING);
}

} // namespace mqrig::qmgr::core
