#include <cstdio>
#include <string>

#include "qmgr/store/paths.h"
#include "reasons.h"
#include "subcommand.h"

namespace mqrig::rigqm {
namespace {

// What a reason of the store means to somebody who administers queue managers; empty where rigqm explains it as well.
std::string meaningOf(MQLONG reason)
{
    const std::string folder = qmgr::store::defaultStoreFolder().string();
    switch (reason) {
    case MQRC_Q_MGR_NAME_ERROR:
        return "there is no queue manager of that name in " + folder;
    case MQRC_OBJECT_ALREADY_EXISTS:
        return "a queue manager of that name exists already";
    case MQRC_Q_MGR_ACTIVE:
        return "the queue manager is running";
    case MQRC_Q_MGR_NOT_ACTIVE:
        return "the queue manager has ended already";
    case MQRC_Q_MGR_NOT_AVAILABLE:
        return "the queue manager is not running (rigqm start starts it)";
    case MQRC_Q_MGR_QUIESCING:
        return "the queue manager is quiescing: it waits for its last connection to end (rigqm end -i ends it at once)";
    case MQRC_NOT_AUTHORIZED:
        return "the permissions of the files in " + folder + " do not allow it";
    case MQRC_ENVIRONMENT_ERROR:
        return "its files are of a newer format than this program knows, or it is in use in another container";
    case MQRC_STORAGE_NOT_AVAILABLE:
        return "no space is left on the disk of " + folder;
    case MQRC_MAX_CONNS_LIMIT_REACHED:
        return "it has as many connections as it can keep";
    case MQRC_UNEXPECTED_ERROR:
        return "its files in " + folder + " are damaged, or no queue manager's, or the disk failed";
    default:
        return {};
    }
}

} // namespace

int reportFailure(std::string_view queueManager, const qmgr::Outcome &outcome)
{
    std::string text(queueManager.substr(0, 60));
    if (!text.empty()) text += ": ";
    const std::string meaning = meaningOf(outcome.Reason);
    if (!meaning.empty()) {
        text += meaning;
        if (outcome.Reason == MQRC_UNEXPECTED_ERROR && !queueManager.empty())
            text += " (rigqm check " + std::string(queueManager.substr(0, 48)) + " tells more)";
    } else {
        const auto reasons = reasonsOf(outcome.Reason);
        text += "reason " + std::to_string(outcome.Reason);
        if (!reasons.empty()) text += ' ' + std::string(reasons.front().name);
    }
    return reportFailure(text + '.');
}

int reportFailure(std::string_view text)
{
    // What was typed may stand in the text: one line, without control characters.
    std::string line(text);
    for (char &c : line)
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) c = '.';
    std::fflush(stdout);
    std::fprintf(stderr, "rigqm: %s\n", line.c_str());
    return exitFailed;
}

} // namespace mqrig::rigqm
