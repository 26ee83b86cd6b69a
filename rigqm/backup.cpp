#include <cstdio>
#include <string>

#include "qmgr/store/paths.h"
#include "store_report.h"
#include "subcommand.h"

namespace mqrig::rigqm {

int backupCommand(const Arguments &arguments)
{
    const std::string name(arguments.names()[0]);
    const std::string file(arguments.names()[1]);
    const auto existing = arguments.has("-f") ? qmgr::store::ExistingFile::Replace : qmgr::store::ExistingFile::Keep;
    const auto result =
        qmgr::store::backUpQueueManager(qmgr::store::defaultStoreFolder(), name, file, existing, canDecode);
    if (result.fault != qmgr::store::BackupResult::Fault::None) return reportBackupFault(name, file, result);
    std::printf("Queue manager %s is backed up: %s.\n", name.c_str(), contentsOf(result.contents).c_str());
    return exitOk;
}

} // namespace mqrig::rigqm
