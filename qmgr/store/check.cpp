#include "qmgr/store/check.h"

#include <sys/stat.h>

#include "qmgr/store/paths.h"
#include "qmgr/store/store.h"

namespace mqrig::qmgr::store {

namespace {

// Files of a queue manager are its owner's, and nobody else reads them.
void checkPermissions(const std::filesystem::path &folder, Findings &findings)
{
    struct stat owner {};
    if (stat(folder.c_str(), &owner) != 0) return;
    const auto look = [&](const std::filesystem::path &path) {
        struct stat status {};
        if (lstat(path.c_str(), &status) != 0) return;
        const std::string name = path == folder ? "its folder" : path.lexically_relative(folder).string();
        if (status.st_uid != owner.st_uid)
            findings.add(name + " belongs to user " + std::to_string(status.st_uid) + ", the folder to user " +
                         std::to_string(owner.st_uid));
        if (!S_ISLNK(status.st_mode) && (status.st_mode & (S_IRWXG | S_IRWXO)) != 0)
            findings.add(name + " is open to other users");
    };
    look(folder);
    std::error_code error;
    std::filesystem::recursive_directory_iterator entry(folder, error);
    for (const std::filesystem::recursive_directory_iterator end; !error && entry != end; entry.increment(error))
        look(entry->path());
}

} // namespace

StoreCheck checkQueueManager(const std::filesystem::path &storeFolder, std::string_view name,
                             const CanDecode &canDecode)
{
    StoreCheck check;
    if (!isQueueManagerName(name)) {
        check.outcome = failure(MQRC_Q_MGR_NAME_ERROR);
        return check;
    }
    const std::filesystem::path folder = storeFolder / folderOfName(name);
    check.outcome = Store::exists(folder);
    if (check.outcome.failed()) return check;
    Findings findings;
    checkPermissions(folder, findings);
    check.log = checkLog(folder / "log.db", canDecode, findings);
    check.outcome = check.log.outcome;
    if (check.outcome.failed()) return check;
    checkLogTail(folder / "log.db", check.log.state != State::Ended, findings);
    Store::check(folder, check.live, findings);
    check.findings = findings.lines();
    check.count = findings.count();
    return check;
}

} // namespace mqrig::qmgr::store
