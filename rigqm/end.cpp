#include <cstdio>
#include <string>

#include "qmgr/core/lifecycle.h"
#include "qmgr/store/paths.h"
#include "qmgr/store/queue_managers.h"
#include "subcommand.h"

namespace mqrig::rigqm {

namespace {

qmgr::store::End howToEnd(const Arguments &arguments)
{
    if (arguments.has("-r")) return qmgr::store::End::Reconnect;
    return arguments.has("-i") ? qmgr::store::End::Immediate : qmgr::store::End::Quiesce;
}

} // namespace

int endCommand(const Arguments &arguments)
{
    const std::string name(arguments.names().front());
    const auto folder = qmgr::store::defaultStoreFolder();
    qmgr::core::announceEnd(folder, name, howToEnd(arguments));
    const qmgr::Outcome outcome = qmgr::store::endQueueManager(folder, name, howToEnd(arguments));
    if (!outcome.ok()) return reportFailure(name, outcome);

    const qmgr::store::StateOfQueueManager now = qmgr::store::stateOf(folder, name);
    if (now.outcome.ok() && now.state == qmgr::store::State::Quiescing)
        std::printf("Queue manager %s is quiescing; it ends when its last connection has gone.\n", name.c_str());
    else
        std::printf("Queue manager %s has ended.\n", name.c_str());
    return exitOk;
}

} // namespace mqrig::rigqm
