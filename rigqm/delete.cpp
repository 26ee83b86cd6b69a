#include <cstdio>
#include <string>

#include "qmgr/store/paths.h"
#include "qmgr/store/queue_managers.h"
#include "subcommand.h"

namespace mqrig::rigqm {

int deleteCommand(const Arguments &arguments)
{
    const std::string name(arguments.names().front());
    const auto folder = qmgr::store::defaultStoreFolder();
    if (arguments.has("-f")) {
        const qmgr::Outcome ended = qmgr::store::endQueueManager(folder, name, qmgr::store::End::Immediate);
        if (!ended.ok() && ended.Reason != MQRC_Q_MGR_NOT_ACTIVE) return reportFailure(name, ended);
    }
    const qmgr::Outcome outcome = qmgr::store::deleteQueueManager(folder, name);
    if (outcome.Reason == MQRC_Q_MGR_ACTIVE)
        return reportFailure(name + ": the queue manager is running; end it first (rigqm end " + name +
                             "), or delete it with -f.");
    if (!outcome.ok()) return reportFailure(name, outcome);
    std::printf("Queue manager %s is deleted.\n", name.c_str());
    return exitOk;
}

} // namespace mqrig::rigqm
