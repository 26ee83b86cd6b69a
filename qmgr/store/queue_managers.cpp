#include "qmgr/store/queue_managers.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <sys/stat.h>

#include "qmgr/store/folders.h"
#include "qmgr/store/paths.h"
#include "qmgr/store/seams.h"
#include "qmgr/store/store.h"
#include "qmgr/store/system_error.h"

namespace mqrig::qmgr::store {

namespace {

// Files of the store folder that are no queue manager begin with '.', which no queue manager's folder does.
constexpr const char *defaultFile = ".default";
constexpr const char *discarded = ".old-";

// What a killed create or delete has left. One that is still at work is younger than that.
void sweepLeftovers(const std::filesystem::path &storeFolder)
{
    constexpr std::int64_t anHour = 3600;
    std::error_code error;
    forEachEntry(storeFolder, [&](const std::filesystem::path &entry) {
        const std::string name = entry.filename().string();
        struct stat status {};
        if (!name.starts_with(unfinishedPrefix) && !name.starts_with(discarded)) return;
        if (stat(entry.c_str(), &status) != 0 || status.st_mtime > currentTime() / 1'000'000 - anHour) return;
        std::filesystem::remove_all(entry, error);
    });
}

Outcome writeLog(const std::filesystem::path &folder, std::string_view name, std::span<const Definition> objects)
{
    auto [outcome, log] = LogDatabase::create(folder / "log.db", name);
    if (outcome.failed()) return outcome;
    if (const Outcome begun = log->begin(); begun.failed()) return begun;
    for (Definition object : objects) {
        object.queue = hasCounters(object.type) ? log->takeQueueId() : 0;
        log->storeDefinition(object);
    }
    return log->commit();
}

} // namespace

Outcome makeQueueManager(const std::filesystem::path &storeFolder, std::string_view name,
                         const std::function<Outcome(const std::filesystem::path &)> &write)
{
    if (!isQueueManagerName(name)) return failure(MQRC_Q_MGR_NAME_ERROR);
    if (const Outcome made = makeFolders(storeFolder); made.failed()) return made;
    sweepLeftovers(storeFolder);
    const std::filesystem::path folder = storeFolder / folderOfName(name);
    if (!Store::exists(folder).failed()) return failure(MQRC_OBJECT_ALREADY_EXISTS);
    const std::filesystem::path building = storeFolder / randomName(unfinishedPrefix);
    if (mkdir(building.c_str(), 0700) != 0) return outcomeOfErrno();
    Outcome outcome = write(building);
    if (!outcome.failed()) outcome = outcomeOfSystem(syncFolder(building));
    if (!outcome.failed()) {
        reached(Step::CreateWritten);
        // The one step that makes it a queue manager. A folder with anything in it is never replaced.
        if (rename(building.c_str(), folder.c_str()) != 0) outcome = outcomeOfErrno();
    }
    if (!outcome.failed()) {
        outcome = outcomeOfSystem(syncFolder(storeFolder));
        if (outcome.failed()) rename(folder.c_str(), building.c_str());
    }
    if (outcome.failed()) {
        std::error_code ignored;
        std::filesystem::remove_all(building, ignored);
        return outcome;
    }
    return success();
}

Outcome createQueueManager(const std::filesystem::path &storeFolder, std::string_view name,
                           std::span<const Definition> objects, DefaultQueueManager makeDefault)
{
    const Outcome made = makeQueueManager(
        storeFolder, name, [&](const std::filesystem::path &folder) { return writeLog(folder, name, objects); });
    if (made.failed()) return made;
    return makeDefault == DefaultQueueManager::Yes ? setDefaultQueueManager(storeFolder, name) : success();
}

Outcome deleteQueueManager(const std::filesystem::path &storeFolder, std::string_view name)
{
    if (!isQueueManagerName(name)) return failure(MQRC_Q_MGR_NAME_ERROR);
    const std::filesystem::path folder = storeFolder / folderOfName(name);
    const auto [outcome, state] = stateOf(storeFolder, name);
    if (outcome.failed()) return outcome;
    if (state != State::Ended) return failure(MQRC_Q_MGR_ACTIVE);
    const std::filesystem::path grave = storeFolder / randomName(discarded);
    if (const Outcome buried = Store::bury(folder, grave); buried.failed()) return buried;
    if (const int unsynced = syncFolder(storeFolder); unsynced != 0) {
        rename(grave.c_str(), folder.c_str());
        return outcomeOfSystem(unsynced);
    }
    std::error_code error;
    std::filesystem::remove_all(grave, error);
    if (defaultQueueManager(storeFolder) == name) std::filesystem::remove(storeFolder / defaultFile, error);
    return success();
}

std::vector<QueueManagerEntry> listQueueManagers(const std::filesystem::path &storeFolder)
{
    std::vector<QueueManagerEntry> entries;
    const std::string byDefault = defaultQueueManager(storeFolder);
    forEachEntry(storeFolder, [&](const std::filesystem::path &entry) {
        const auto name = nameOfFolder(entry.filename().string());
        if (!name || Store::exists(entry).failed()) return;
        const auto [outcome, state] = stateOf(storeFolder, *name);
        entries.push_back({.name = *name, .isDefault = *name == byDefault, .outcome = outcome, .state = state});
    });
    std::sort(entries.begin(), entries.end(), [](const auto &a, const auto &b) { return a.name < b.name; });
    return entries;
}

std::string defaultQueueManager(const std::filesystem::path &storeFolder)
{
    std::ifstream file(storeFolder / defaultFile);
    std::string name;
    std::getline(file, name);
    return isQueueManagerName(name) ? name : std::string();
}

Outcome setDefaultQueueManager(const std::filesystem::path &storeFolder, std::string_view name)
{
    if (!isQueueManagerName(name)) return failure(MQRC_Q_MGR_NAME_ERROR);
    if (const Outcome there = Store::exists(storeFolder / folderOfName(name)); there.failed()) return there;
    const std::filesystem::path written = storeFolder / randomName(unfinishedPrefix);
    Outcome outcome = writeFile(written, std::string(name) + '\n');
    if (!outcome.failed() && rename(written.c_str(), (storeFolder / defaultFile).c_str()) != 0)
        outcome = outcomeOfErrno();
    if (outcome.failed()) {
        unlink(written.c_str());
        return outcome;
    }
    return outcomeOfSystem(syncFolder(storeFolder));
}

Outcome startQueueManager(const std::filesystem::path &storeFolder, std::string_view name)
{
    const auto [outcome, state] = stateOf(storeFolder, name);
    if (outcome.failed()) return outcome;
    if (state == State::Quiescing) return failure(MQRC_Q_MGR_QUIESCING);
    if (state == State::Running) return failure(MQRC_Q_MGR_ACTIVE);
    return Store::start(storeFolder / folderOfName(name));
}

Outcome endQueueManager(const std::filesystem::path &storeFolder, std::string_view name, End how)
{
    if (!isQueueManagerName(name)) return failure(MQRC_Q_MGR_NAME_ERROR);
    auto [outcome, store] = Store::open(storeFolder / folderOfName(name));
    if (outcome.Reason == MQRC_Q_MGR_NOT_AVAILABLE) return failure(MQRC_Q_MGR_NOT_ACTIVE);
    if (outcome.failed()) return outcome;
    const Outcome ended = store->end(how);
    Store::forgetEnded(store);
    return ended;
}

StateOfQueueManager stateOf(const std::filesystem::path &storeFolder, std::string_view name)
{
    if (!isQueueManagerName(name)) return {failure(MQRC_Q_MGR_NAME_ERROR)};
    const std::filesystem::path folder = storeFolder / folderOfName(name);
    const StateOfQueueManager found = Store::look(folder);
    if (found.outcome.failed() || found.state != State::Quiescing) return found;
    if (auto [outcome, store] = Store::open(folder); !outcome.failed()) {
        if (!store->releaseDead() && !store->anyConnection()) store->completeQuiesce();
        const State state = store->control().state;
        Store::forgetEnded(store);
        return {success(), state};
    }
    return Store::look(folder);
}

// Log lock held. The state is on disk before anybody in this life sees it.
Outcome Store::logState(State state)
{
    if (const Outcome begun = log_->begin(); begun.failed()) return begun;
    log_->setState(control().stamp.generation, state);
    const Outcome logged = judgeLog(log_->commit());
    if (!logged.failed() && state == State::Ended) log_->settle();
    return logged;
}

Outcome Store::end(End how)
{
    {
        const LogLock lock(*this);
        if (lock.outcome().Reason == MQRC_CONNECTION_BROKEN) return failure(MQRC_Q_MGR_NOT_ACTIVE);
        if (lock.outcome().failed()) return lock.outcome();
        if (how != End::Quiesce) {
            // Calls in progress complete: what they have prepared is logged now; what they prepare from now on is
            // refused by the log lock, and goes with the life.
            if (const Outcome logged = logPrepared(); logged.failed()) return logged;
            // Before the log says so: whoever finishes the end for a process killed here says the same.
            control().reconnect = how == End::Reconnect ? 1 : 0;
            if (const Outcome logged = logState(State::Ended); logged.failed()) {
                if (control().state != State::Ended) control().reconnect = 0;
                return logged;
            }
            reached(Step::EndLogged);
            endLife();
            return success();
        }
        if (control().state == State::Running) {
            if (const Outcome logged = logState(State::Quiescing); logged.failed()) return logged;
            control().state = State::Quiescing;
            wakeEverybody();
        }
    }
    releaseDead();
    if (!anyConnection()) completeQuiesce();
    return success();
}

void Store::completeQuiesce()
{
    const LogLock lock(*this);
    // Somebody else may have completed it, and a connection may have come before it began.
    if (lock.outcome().failed() || control().state != State::Quiescing || anyConnection()) return;
    if (logPrepared().failed() || logState(State::Ended).failed()) return;
    reached(Step::EndLogged);
    endLife();
}

} // namespace mqrig::qmgr::store
