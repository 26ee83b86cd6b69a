#include <cstdio>
#include <string>

#include "qmgr/objects/system_objects.h"
#include "qmgr/store/paths.h"
#include "qmgr/store/queue_managers.h"
#include "subcommand.h"

namespace mqrig::rigqm {

int createCommand(const Arguments &arguments)
{
    const std::string name(arguments.names().front());
    if (!qmgr::store::isQueueManagerName(name))
        return reportFailure("the name of a queue manager has 1 to 48 of A-Z a-z 0-9 . / _ %");
    const auto makeDefault =
        arguments.has("-d") ? qmgr::store::DefaultQueueManager::Yes : qmgr::store::DefaultQueueManager::No;
    const qmgr::Outcome outcome = qmgr::store::createQueueManager(qmgr::store::defaultStoreFolder(), name,
                                                                  qmgr::objects::systemObjects(name), makeDefault);
    if (!outcome.ok()) return reportFailure(name, outcome);
    std::printf("Queue manager %s is created%s and running.\n", name.c_str(),
                arguments.has("-d") ? " as the default" : "");
    return exitOk;
}

} // namespace mqrig::rigqm
