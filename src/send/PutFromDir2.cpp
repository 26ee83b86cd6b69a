// Puts the files of a directory in the order in which it lists them; sub-directories are named and passed over. With a
// cursor, each call puts the next file.
#include "send.h"

#include "common.h"
#include "mqicalls.h"
#include "send/input_file.h"
#include "send/put_round.h"

#include <cerrno>
#include <climits>
#include <cstring>
#include <sys/stat.h>

namespace {

/// The name of a file in the directory. A directory that was opened has a name shorter than PATH_MAX, so this holds
/// every name; one that is too long for the system is refused when the file is opened.
using Path = char[PATH_MAX + sizeof dirent::d_name];

struct FilesPut {
    MQLONG count = 0;
    bool tried = false;         ///< whether any file was tried
    Status status = StatusOk;   ///< of the last one, or a local failure because of
    bool listingFailed = false; ///< the directory that could not be read to its end
};

struct NextEntry {
    const dirent *entry; ///< none at the end
    int error;           ///< why the end is none
};

/// Threads may share the stream.
NextEntry next_entry(RunParams *params, DIR *stream)
{
    const LockedSection locked(params);
    if (locked.status() != StatusOk) return {nullptr, 0};
    errno = 0;
    const dirent *const entry = readdir(stream);
    return {entry, entry == nullptr ? errno : 0};
}

bool is_self_or_parent(const char *name)
{
    return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

FilesPut put_files(RunParams *params, MQHCONN hconn, DIR *stream, MQLONG messageNumber)
{
    const RunRecord snapshot = params->snapshot();
    FilesPut files;
    Path path;
    for (;;) {
        const auto [entry, error] = next_entry(params, stream);
        if (entry == nullptr) {
            if (error == 0) break;
            report_failure(params, {"PutFromDir"}, "readdir()", error, "readdir() failed. directory=%s\n",
                           snapshot.InputDir);
            files.status = StatusLocalFailure;
            files.listingFailed = true;
            break;
        }
        std::snprintf(path, sizeof path, "%s/%s", snapshot.InputDir, entry->d_name);
        struct stat status = {};
        if (stat(path, &status) != 0 && errno != ENAMETOOLONG) break;
        if (S_ISDIR(status.st_mode)) {
            if (!is_self_or_parent(entry->d_name)) printf_t(params, "%s is directory.\n", entry->d_name);
            continue;
        }
        begin_put_round(params, snapshot, files.count);
        params->InputFile = path;
        files.tried = true;
        files.status = PutFromFile2(params, hconn, 0, nullptr, messageNumber);
        if (files.status != StatusOk) break;
        ++files.count;
        if (params->DirCursor != nullptr && params->MsgCount <= 1) break;
    }
    params->InputFile = snapshot.InputFile;
    return files;
}

} // namespace

Status PutFromDir2(RunParams *params, MQHCONN hconn, MQLONG ownUnitOfWork, MQLONG messageNumber)
{
    DirectoryCursor *const cursor = params->DirCursor;
    DirectoryStream opened;
    bool openedQueue = false;
    if (cursor == nullptr) {
        opened.reset(opendir(params->InputDir));
        if (opened == nullptr) {
            report_failure(params, {"PutFromDir"}, "opendir()", errno, "opendir() failed. cannot open directory=%s\n",
                           params->InputDir);
            return StatusLocalFailure;
        }
        if (params->OutputHobj == 0) {
            // Each file finds the queue open.
            openedQueue = MQSeriesQOpenForOutput(hconn, &params->OutputHobj, params) == StatusOk;
            if (!openedQueue) return StatusLocalFailure;
        }
    }
    if (params->MsgCount == 0) params->MsgCount = 1;
    if (ownUnitOfWork != 0 && begin_unit_of_work(params) != StatusOk) return StatusLocalFailure;

    DIR *const stream = cursor != nullptr ? static_cast<DIR *>(cursor->stream) : opened.get();
    const FilesPut files = put_files(params, hconn, stream, messageNumber);
    if (cursor != nullptr) {
        cursor->filesPut = files.count;
        cursor->lastStatus = files.status;
    }

    // How the last file was put decides about the unit of work; the directory itself has been gone through.
    Status status = files.listingFailed ? StatusLocalFailure : StatusOk;
    if (ownUnitOfWork != 0 && files.tried && end_unit_of_work(params, hconn, files.status) != files.status) {
        status = StatusLocalFailure;
    }
    if (openedQueue) {
        if (MQSeriesQClose(hconn, &params->OutputHobj, params) != StatusOk) status = StatusLocalFailure;
        params->OutputHobj = 0;
    }
    return status;
}
