#include "recording_files.h"

#include <cstdarg>
#include <cstdlib>
#include <new>
#include <string>

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mqrig::crash {
namespace {

Recording *recording = nullptr;
bool syncs = true;

std::string pathOf(int fd)
{
    std::array<char, 4096> path{};
    const ssize_t size = readlink(("/proc/self/fd/" + std::to_string(fd)).c_str(), path.data(), path.size());
    return size > 0 ? std::string(path.data(), static_cast<std::size_t>(size)) : std::string();
}

// ---- SQLite's file system, over the ordinary one ----

struct RecordedFile {
    sqlite3_file base; // what SQLite sees
    std::string *path;
    bool syncFolder; // SQLite's own file system syncs the folder with the first sync of a new journal
    sqlite3_file *real() { return reinterpret_cast<sqlite3_file *>(this + 1); }
};

RecordedFile &of(sqlite3_file *file)
{
    return *reinterpret_cast<RecordedFile *>(file);
}
sqlite3_vfs *realSystem()
{
    return sqlite3_vfs_find("unix");
}

int closeFile(sqlite3_file *file)
{
    sqlite3_file *real = of(file).real();
    const int code = real->pMethods->xClose(real);
    delete of(file).path; // NOLINT(cppcoreguidelines-owning-memory): SQLite owns the bytes of a file
    return code;
}
int readFile(sqlite3_file *file, void *data, int size, sqlite3_int64 offset)
{
    return of(file).real()->pMethods->xRead(of(file).real(), data, size, offset);
}
int writeFile(sqlite3_file *file, const void *data, int size, sqlite3_int64 offset)
{
    recording->written(*of(file).path, data, static_cast<std::size_t>(size), static_cast<std::uint64_t>(offset));
    return of(file).real()->pMethods->xWrite(of(file).real(), data, size, offset);
}
int sizeOfFile(sqlite3_file *file, sqlite3_int64 *size)
{
    return of(file).real()->pMethods->xFileSize(of(file).real(), size);
}
int truncateFile(sqlite3_file *file, sqlite3_int64 size)
{
    const int code = of(file).real()->pMethods->xTruncate(of(file).real(), size);
    sizeOfFile(file, &size); // it may be rounded
    recording->truncated(*of(file).path, static_cast<std::uint64_t>(size));
    return code;
}
int syncFile(sqlite3_file *file, int flags)
{
    recording->synced(*of(file).path);
    if (of(file).syncFolder) {
        recording->synced(std::filesystem::path(*of(file).path).parent_path());
        of(file).syncFolder = false;
    }
    return syncs ? of(file).real()->pMethods->xSync(of(file).real(), flags) : SQLITE_OK;
}
int lockFile(sqlite3_file *file, int level)
{
    return of(file).real()->pMethods->xLock(of(file).real(), level);
}
int unlockFile(sqlite3_file *file, int level)
{
    return of(file).real()->pMethods->xUnlock(of(file).real(), level);
}
int checkReserved(sqlite3_file *file, int *answer)
{
    return of(file).real()->pMethods->xCheckReservedLock(of(file).real(), answer);
}
int controlFile(sqlite3_file *file, int what, void *argument)
{
    sqlite3_int64 before = 0;
    sqlite3_int64 after = 0;
    sizeOfFile(file, &before);
    const int code = of(file).real()->pMethods->xFileControl(of(file).real(), what, argument);
    sizeOfFile(file, &after);
    if (after != before) recording->truncated(*of(file).path, static_cast<std::uint64_t>(after));
    return code;
}
int sectorSizeOf(sqlite3_file *file)
{
    return of(file).real()->pMethods->xSectorSize(of(file).real());
}
int traitsOf(sqlite3_file *file)
{
    return of(file).real()->pMethods->xDeviceCharacteristics(of(file).real());
}
int mapShared(sqlite3_file *file, int page, int size, int extend, void volatile **place)
{
    return of(file).real()->pMethods->xShmMap(of(file).real(), page, size, extend, place);
}
int lockShared(sqlite3_file *file, int offset, int n, int flags)
{
    return of(file).real()->pMethods->xShmLock(of(file).real(), offset, n, flags);
}
void barrier(sqlite3_file *file)
{
    of(file).real()->pMethods->xShmBarrier(of(file).real());
}
int unmapShared(sqlite3_file *file, int remove)
{
    return of(file).real()->pMethods->xShmUnmap(of(file).real(), remove);
}

constexpr sqlite3_io_methods methods{2,           closeFile,    readFile, writeFile,  truncateFile,
                                     syncFile,    sizeOfFile,   lockFile, unlockFile, checkReserved,
                                     controlFile, sectorSizeOf, traitsOf, mapShared,  lockShared,
                                     barrier,     unmapShared,  nullptr,  nullptr};

int openFile(sqlite3_vfs *, const char *name, sqlite3_file *file, int flags, int *outFlags)
{
    auto *recorded = new (file) RecordedFile{};
    const bool known = name != nullptr && access(name, F_OK) == 0;
    const int code = realSystem()->xOpen(realSystem(), name, recorded->real(), flags, outFlags);
    if (recorded->real()->pMethods == nullptr) return code;
    recorded->base.pMethods = &methods;
    recorded->path = new std::string(name == nullptr ? "" : name); // NOLINT(cppcoreguidelines-owning-memory)
    if (name != nullptr && !known) {
        recording->made(name, false);
        recorded->syncFolder = (flags & (SQLITE_OPEN_MAIN_JOURNAL | SQLITE_OPEN_WAL)) != 0;
    }
    return code;
}

int deleteFile(sqlite3_vfs *, const char *name, int syncFolder)
{
    recording->removed(name);
    if (syncFolder != 0) recording->synced(std::filesystem::path(name).parent_path());
    return realSystem()->xDelete(realSystem(), name, syncFolder);
}

} // namespace

void recordFiles(Recording &into)
{
    recording = &into;
    static sqlite3_vfs system = *realSystem();
    system.zName = "recorded";
    system.szOsFile += static_cast<int>(sizeof(RecordedFile));
    system.xOpen = openFile;
    system.xDelete = deleteFile;
    if (sqlite3_vfs_register(&system, 1) != SQLITE_OK) abort();
}

void stopRecording()
{
    syncs = false;
    static Recording ignored{"/nowhere"}; // for files that are still open
    recording = &ignored;
}

} // namespace mqrig::crash

// ---- The store's own calls ----

using mqrig::crash::pathOf;
using mqrig::crash::recording;

extern "C" {
int __real_mkdir(const char *path, mode_t mode);
int __real_rename(const char *from, const char *to);
int __real_fsync(int fd);
ssize_t __real_write(int fd, const void *data, size_t size);
int __real_open64(const char *path, int flags, ...);

int __wrap_mkdir(const char *path, mode_t mode)
{
    const int code = __real_mkdir(path, mode);
    if (code == 0 && recording != nullptr) recording->made(path, true);
    return code;
}
int __wrap_rename(const char *from, const char *to)
{
    const int code = __real_rename(from, to);
    if (code == 0 && recording != nullptr) recording->renamed(from, to);
    return code;
}
int __wrap_fsync(int fd)
{
    const int code = mqrig::crash::syncs ? __real_fsync(fd) : 0;
    if (code == 0 && recording != nullptr) recording->synced(pathOf(fd));
    return code;
}
ssize_t __wrap_write(int fd, const void *data, size_t size)
{
    const off_t offset = recording != nullptr ? lseek(fd, 0, SEEK_CUR) : 0;
    const ssize_t written = __real_write(fd, data, size);
    if (written > 0 && offset >= 0 && recording != nullptr)
        recording->written(pathOf(fd), data, static_cast<size_t>(written), static_cast<std::uint64_t>(offset));
    return written;
}
int __wrap_open64(const char *path, int flags, ...)
{
    mode_t mode = 0;
    if ((flags & O_CREAT) != 0) {
        va_list arguments;
        va_start(arguments, flags);
        mode = va_arg(arguments, mode_t);
        va_end(arguments);
    }
    const bool known = access(path, F_OK) == 0;
    const int fd = __real_open64(path, flags, mode);
    if (fd >= 0 && !known && recording != nullptr) recording->made(path, false);
    return fd;
}
}
