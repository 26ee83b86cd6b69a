#include <algorithm>
#include <cstdio>
#include <string>

#include "qmgr/store/paths.h"
#include "qmgr/store/queue_managers.h"
#include "subcommand.h"

namespace mqrig::rigqm {
namespace {

const char *stateText(const qmgr::store::QueueManagerEntry &entry)
{
    if (!entry.outcome.ok()) return "Not readable";
    switch (entry.state) {
    case qmgr::store::State::Running:
        return "Running";
    case qmgr::store::State::Quiescing:
        return "Quiescing";
    case qmgr::store::State::Ended:
        break;
    }
    return "Ended";
}

} // namespace

int listCommand(const Arguments &)
{
    const auto entries = qmgr::store::listQueueManagers(qmgr::store::defaultStoreFolder());
    std::size_t width = 0;
    for (const auto &entry : entries)
        width = std::max(width, entry.name.size());
    int result = exitOk;
    for (const auto &entry : entries) {
        const std::string name = "QMNAME(" + entry.name + ")" + std::string(width - entry.name.size(), ' ');
        const std::string state = std::string("STATUS(") + stateText(entry) + ")";
        std::printf("%s  %s%s\n", name.c_str(), state.c_str(), entry.isDefault ? "  DEFAULT(Yes)" : "");
        if (!entry.outcome.ok()) result = reportFailure(entry.name, entry.outcome);
    }
    return result;
}

} // namespace mqrig::rigqm
