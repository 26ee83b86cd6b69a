#include <cstdio>
#include <string>

#include "qmgr/store/paths.h"
#include "store_report.h"
#include "subcommand.h"

namespace mqrig::rigqm {

int restoreCommand(const Arguments &arguments)
{
    const std::string name(arguments.names()[0]);
    const std::string file(arguments.names()[1]);
    if (!qmgr::store::isQueueManagerName(name))
        return reportFailure("the name of a queue manager has 1 to 48 of A-Z a-z 0-9 . / _ %");
    const auto result = qmgr::store::restoreQueueManager(qmgr::store::defaultStoreFolder(), name, file, canDecode);
    if (result.outcome.Reason == MQRC_OBJECT_ALREADY_EXISTS)
        return reportFailure(name + ": a queue manager of that name exists; rigqm end " + name + " and rigqm delete " +
                             name + " make room for it.");
    if (result.fault != qmgr::store::BackupResult::Fault::None) return reportBackupFault(name, file, result);
    std::printf("Queue manager %s is restored and running: %s.\n", name.c_str(), contentsOf(result.contents).c_str());
    return exitOk;
}

} // namespace mqrig::rigqm
