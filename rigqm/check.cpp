#include <cstdio>
#include <string>

#include "qmgr/store/check.h"
#include "qmgr/store/paths.h"
#include "store_report.h"
#include "subcommand.h"

namespace mqrig::rigqm {

int checkCommand(const Arguments &arguments)
{
    const std::string name(arguments.names().front());
    const auto check = qmgr::store::checkQueueManager(qmgr::store::defaultStoreFolder(), name, canDecode);
    if (!check.outcome.ok()) return reportFailure(name, check.outcome);
    printFindings(check.findings);
    const auto &live = check.live;
    if (live.heldForTheDead != 0)
        std::printf(
            "Messages held for programs that were killed: %llu; they are released when the next one connects.\n",
            static_cast<unsigned long long>(live.heldForTheDead));
    if (check.count != 0) {
        std::printf("Queue manager %s: %s.\n", name.c_str(), counted(check.count, "finding", "findings").c_str());
        return exitFindings;
    }
    std::string text = contentsOf(check.log);
    if (live.looked)
        text += "; live: " + counted(live.messages, "message", "messages") + " on " +
                counted(live.queues, "queue", "queues");
    std::printf("Queue manager %s is sound: %s.\n", name.c_str(), text.c_str());
    return exitOk;
}

} // namespace mqrig::rigqm
