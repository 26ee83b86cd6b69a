#include <cstdio>
#include <string>

#include "qmgr/store/paths.h"
#include "qmgr/store/queue_managers.h"
#include "subcommand.h"

namespace mqrig::rigqm {

int endCommand(const Arguments &arguments)
{
    if (arguments.has("-r"))
        return reportFailure("ending with reconnection (-r) is not available yet; end -i ends at once.");
    const std::string name(arguments.names().front());
    const auto folder = qmgr::store::defaultStoreFolder();
    const auto how = arguments.has("-i") ? qmgr::store::End::Immediate : qmgr::store::End::Quiesce;
    const qmgr::Outcome outcome = qmgr::store::endQueueManager(folder, name, how);
    if (!outcome.ok()) return reportFailure(name, outcome);

    const qmgr::store::StateOfQueueManager now = qmgr::store::stateOf(folder, name);
    if (now.outcome.ok() && now.state == qmgr::store::State::Quiescing)
        std::printf("Queue manager %s is quiescing; it ends when its last connection has gone.\n", name.c_str());
    else
        std::printf("Queue manager %s has ended.\n", name.c_str());
    return exitOk;
}

} // namespace mqrig::rigqm
