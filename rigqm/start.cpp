#include <cstdio>
#include <string>

#include "qmgr/core/lifecycle.h"
#include "qmgr/store/paths.h"
#include "qmgr/store/queue_managers.h"
#include "subcommand.h"

namespace mqrig::rigqm {

int startCommand(const Arguments &arguments)
{
    const std::string name(arguments.names().front());
    const auto folder = qmgr::store::defaultStoreFolder();
    const qmgr::Outcome outcome = qmgr::store::startQueueManager(folder, name);
    if (!outcome.ok()) return reportFailure(name, outcome);
    qmgr::core::announceStart(folder, name);
    std::printf("Queue manager %s is running.\n", name.c_str());
    return exitOk;
}

} // namespace mqrig::rigqm
