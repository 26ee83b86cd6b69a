#include "store_report.h"

#include <cstdio>
#include <system_error>

#include "qmgr/objects/object_definition.h"
#include "qmgr/objects/subscription.h"
#include "subcommand.h"

namespace mqrig::rigqm {

std::string counted(std::uint64_t number, const char *one, const char *many)
{
    return std::to_string(number) + ' ' + (number == 1 ? one : many);
}

bool canDecode(const qmgr::store::Definition &definition)
{
    if (definition.type != qmgr::store::subscriptions)
        return qmgr::objects::ObjectDefinition::decode(definition.bytes).has_value();
    const auto subscription = qmgr::objects::Subscription::decode(definition.bytes);
    return subscription && qmgr::objects::keyOf(*subscription) == definition.name &&
           qmgr::objects::TopicPattern::parse(subscription->topic, subscription->scheme);
}

void printFindings(const std::vector<std::string> &findings)
{
    for (std::string line : findings) {
        for (char &c : line)
            if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) c = '.';
        std::printf("%s.\n", line.c_str());
    }
}

std::string contentsOf(const qmgr::store::LogContents &log)
{
    std::string subscriptions;
    if (log.subscriptions != 0) subscriptions = ", " + counted(log.subscriptions, "subscription", "subscriptions");
    return counted(log.definitions - log.subscriptions, "object", "objects") + subscriptions + ", " +
           counted(log.messages, "persistent message", "persistent messages") + " of " +
           counted(log.bytes, "byte", "bytes");
}

int reportBackupFault(std::string_view name, std::string_view file, const qmgr::store::BackupResult &result)
{
    using Fault = qmgr::store::BackupResult::Fault;
    const std::string shown(file.substr(0, 200));
    switch (result.fault) {
    case Fault::None:
        return exitOk;
    case Fault::QueueManager:
        break;
    case Fault::FileExists:
        return reportFailure(shown + " exists; -f replaces it.");
    case Fault::FileError:
        return reportFailure(shown + ": " + std::generic_category().message(result.error) + '.');
    case Fault::InsideStore:
        return reportFailure(shown + " would stand among the files of the store; choose another place.");
    case Fault::Damaged:
        printFindings(result.findings);
        return reportFailure(std::string(name) + ": the files are damaged; nothing was written.");
    case Fault::NoBackup:
        return reportFailure(shown + " is the log of a queue manager, not a backup of it (rigqm backup makes one).");
    case Fault::OtherQueueManager:
        return reportFailure(shown + " is a backup of queue manager " + result.contents.name.substr(0, 48) +
                             ", and can be restored under that name only.");
    }
    return reportFailure(name, result.outcome);
}

} // namespace mqrig::rigqm
