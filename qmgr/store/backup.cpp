#include "qmgr/store/backup.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <sqlite3.h>

#include "qmgr/store/folders.h"
#include "qmgr/store/log_format.h"
#include "qmgr/store/paths.h"
#include "qmgr/store/store.h"
#include "qmgr/store/system_error.h"

namespace mqrig::qmgr::store {

namespace {

using Fault = BackupResult::Fault;

BackupResult refused(Outcome outcome)
{
    return {.fault = Fault::QueueManager, .outcome = outcome, .findings = {}, .contents = {}};
}

BackupResult refusedBySystem(int error)
{
    return {.fault = Fault::FileError, .outcome = {}, .error = error, .findings = {}, .contents = {}};
}

// A file that goes again unless it was kept.
class Draft {
public:
    explicit Draft(std::filesystem::path path) : path_(std::move(path)) {}
    ~Draft()
    {
        if (path_.empty()) return;
        for (const char *companion : {"", "-journal", "-wal", "-shm"})
            unlink((path_.string() + companion).c_str());
    }
    Draft(const Draft &) = delete;
    Draft &operator=(const Draft &) = delete;
    [[nodiscard]] const std::filesystem::path &path() const { return path_; }
    void keep() { path_.clear(); }

private:
    std::filesystem::path path_;
};

class Connection {
public:
    Connection(const std::filesystem::path &file, int flags)
    {
        code_ = sqlite3_open_v2(file.c_str(), &database_, flags | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE, nullptr);
        if (code_ != SQLITE_OK) return;
        sqlite3_db_config(database_, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
        sqlite3_db_config(database_, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
        sqlite3_busy_timeout(database_, 3000);
    }
    ~Connection() { sqlite3_close(database_); }
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;
    [[nodiscard]] sqlite3 *get() const { return database_; }
    [[nodiscard]] int code() const { return code_; }
    int run(const char *sql) { return sqlite3_exec(database_, sql, nullptr, nullptr, nullptr); }

private:
    sqlite3 *database_ = nullptr;
    int code_ = SQLITE_OK;
};

// All pages in one reading transaction: one commit's state, and no commit waits for it.
int copyLog(sqlite3 *from, sqlite3 *to)
{
    sqlite3_backup *copy = sqlite3_backup_init(to, "main", from, "main");
    if (copy == nullptr) return sqlite3_extended_errcode(to);
    const int code = sqlite3_backup_step(copy, -1);
    const int finished = sqlite3_backup_finish(copy);
    return code == SQLITE_DONE ? finished : code;
}

// What makes a copied log a backup: a file without companions that knows its name and comes back running.
int makeBackup(Connection &copy, std::string_view name)
{
    int code = copy.run("PRAGMA journal_mode = DELETE");
    sqlite3_stmt *naming = nullptr;
    if (code == SQLITE_OK)
        code = sqlite3_prepare_v2(copy.get(), "UPDATE queue_manager SET name = ?, state = ?", -1, &naming, nullptr);
    if (code != SQLITE_OK) return code;
    sqlite3_bind_text(naming, 1, name.data(), static_cast<int>(name.size()), SQLITE_STATIC);
    sqlite3_bind_int(naming, 2, static_cast<int>(State::Running));
    code = sqlite3_step(naming);
    sqlite3_finalize(naming);
    return code == SQLITE_DONE ? SQLITE_OK : code;
}

int makePrivateFile(const std::filesystem::path &file)
{
    const int fd = ::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (fd < 0) return errno;
    close(fd);
    return 0;
}

int syncFile(const std::filesystem::path &file)
{
    const int fd = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return errno;
    const int error = fsync(fd) == 0 ? 0 : errno;
    close(fd);
    return error;
}

// Puts the draft in its place. What is there is replaced only if it is a file and may be.
int publish(const std::filesystem::path &draft, const std::filesystem::path &file, ExistingFile existing)
{
    if (existing == ExistingFile::Replace) return rename(draft.c_str(), file.c_str()) == 0 ? 0 : errno;
    if (renameat2(AT_FDCWD, draft.c_str(), AT_FDCWD, file.c_str(), RENAME_NOREPLACE) == 0) return 0;
    if (errno != EINVAL && errno != ENOSYS) return errno;
    // A file system that cannot do it in one step.
    if (link(draft.c_str(), file.c_str()) != 0) return errno;
    unlink(draft.c_str());
    return 0;
}

bool isInside(const std::filesystem::path &folder, const std::filesystem::path &outer)
{
    std::error_code error;
    const auto inner = std::filesystem::weakly_canonical(folder, error);
    const auto whole = std::filesystem::weakly_canonical(outer, error);
    const auto rest = inner.lexically_relative(whole);
    return !error && !rest.empty() && *rest.begin() != "..";
}

// Copies an ordinary file to a new one for its owner alone.
int copyFile(const std::filesystem::path &from, const std::filesystem::path &to)
{
    struct stat status {};
    if (stat(from.c_str(), &status) != 0) return errno;
    if (!S_ISREG(status.st_mode)) return S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
    const int in = ::open(from.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (in < 0) return errno;
    const int out = ::open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    int error = out < 0 ? errno : 0;
    std::vector<char> buffer(std::size_t{1} << 20);
    while (error == 0) {
        const ssize_t got = read(in, buffer.data(), buffer.size());
        if (got < 0) error = errno;
        if (got <= 0) break;
        for (ssize_t done = 0; done < got && error == 0;) {
            const ssize_t put = write(out, buffer.data() + done, static_cast<std::size_t>(got - done));
            if (put < 0)
                error = errno;
            else
                done += put;
        }
    }
    if (error == 0 && fsync(out) != 0) error = errno;
    close(in);
    if (out >= 0) close(out);
    return error;
}

} // namespace

BackupResult backUpQueueManager(const std::filesystem::path &storeFolder, std::string_view name,
                                const std::filesystem::path &file, ExistingFile existing, const CanDecode &canDecode)
{
    if (!isQueueManagerName(name)) return refused(failure(MQRC_Q_MGR_NAME_ERROR));
    const std::filesystem::path log = storeFolder / folderOfName(name) / "log.db";
    if (const Outcome there = Store::exists(log.parent_path()); there.failed()) return refused(there);
    const std::filesystem::path place = std::filesystem::absolute(file).parent_path();
    if (isInside(place, storeFolder))
        return {.fault = Fault::InsideStore, .outcome = {}, .findings = {}, .contents = {}};
    struct stat status {};
    const bool exists = lstat(file.c_str(), &status) == 0;
    if (exists && S_ISDIR(status.st_mode)) return refusedBySystem(EISDIR);
    if (exists && existing == ExistingFile::Keep)
        return {.fault = Fault::FileExists, .outcome = {}, .findings = {}, .contents = {}};

    const Draft draft(place / randomName(unfinishedPrefix));
    if (const int error = makePrivateFile(draft.path()); error != 0) return refusedBySystem(error);
    {
        errno = 0;
        const Connection from(log, SQLITE_OPEN_READONLY);
        Connection to(draft.path(), SQLITE_OPEN_READWRITE);
        int code = from.code() != SQLITE_OK ? from.code() : to.code();
        if (code == SQLITE_OK) code = copyLog(from.get(), to.get());
        if (code == SQLITE_OK) code = makeBackup(to, name);
        if (const Outcome outcome = logFormat::outcomeOfStep(code); outcome.failed()) {
            // What is damaged is told in detail, if it can be.
            Findings findings;
            BackupResult result = refused(outcome);
            if ((code & 0xff) == SQLITE_BUSY) return refusedBySystem(EBUSY);
            // A log that nobody has open needs a little space to be read, too.
            const bool full = (code & 0xff) == SQLITE_IOERR &&
                              outcomeOfSystem(sqlite3_system_errno(to.get())).Reason == MQRC_STORAGE_NOT_AVAILABLE;
            if (full || outcome.Reason == MQRC_STORAGE_NOT_AVAILABLE) return refusedBySystem(ENOSPC);
            result.contents = checkLog(log, canDecode, findings);
            result.findings = findings.lines();
            if (!result.findings.empty()) result.fault = Fault::Damaged;
            return result;
        }
    }
    BackupResult result;
    Findings findings;
    result.contents = checkLog(draft.path(), canDecode, findings);
    result.findings = findings.lines();
    if (result.contents.outcome.failed()) return refused(result.contents.outcome);
    if (!result.findings.empty()) {
        result.fault = Fault::Damaged;
        return result;
    }
    if (const int error = syncFile(draft.path()); error != 0) return refusedBySystem(error);
    if (const int error = publish(draft.path(), file, existing); error != 0) {
        if (error == EEXIST)
            result.fault = Fault::FileExists;
        else
            result = refusedBySystem(error);
        return result;
    }
    if (const int error = syncFolder(place); error != 0) return refusedBySystem(error);
    return result;
}

BackupResult restoreQueueManager(const std::filesystem::path &storeFolder, std::string_view name,
                                 const std::filesystem::path &file, const CanDecode &canDecode)
{
    BackupResult result;
    const Outcome made = makeQueueManager(storeFolder, name, [&](const std::filesystem::path &folder) {
        // The copy is verified, not the file: nobody can change it any more.
        const std::filesystem::path log = folder / "log.db";
        const auto stop = [&](Fault fault) {
            result.fault = fault;
            return failure(MQRC_UNEXPECTED_ERROR);
        };
        result.error = copyFile(file, log);
        if (result.error != 0) return stop(Fault::FileError);
        Findings findings;
        result.contents = checkLog(log, canDecode, findings);
        result.findings = findings.lines();
        if (result.contents.outcome.failed()) return result.contents.outcome;
        if (result.contents.aheadMode) return stop(Fault::NoBackup);
        if (!result.findings.empty()) return stop(Fault::Damaged);
        if (result.contents.name != name) return stop(Fault::OtherQueueManager);
        return LogDatabase::open(log).outcome; // brings it up to date, and to how a log in use is kept
    });
    result.outcome = made;
    if (made.failed() && result.fault == Fault::None) result.fault = Fault::QueueManager;
    return result;
}

} // namespace mqrig::qmgr::store
