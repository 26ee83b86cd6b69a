#undef _FILE_OFFSET_BITS /* both names of each call are defined here */
#include "nth_call.h"

#include <dirent.h>
#include <dlfcn.h>
#include <errno.h>
#include <execinfo.h>
#include <fcntl.h>
#include <iconv.h>
#include <pthread.h>
#include <pwd.h>
#include <signal.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/vfs.h>
#include <time.h>
#include <unistd.h>

#define EXPORT __attribute__((visibility("default")))

static const char *const names[CallClasses] = {"memory", "open", "stat", "read",   "write",
                                               "sync",   "map",  "lock", "thread", "system"};

static int armed; /* atomic, as all below */
static int wanted;
static long wantedNth;
static int wantedForGood;
static long counts[CallClasses];
static long failures;
static __thread int suspended __attribute__((tls_model("initial-exec")));

EXPORT void nthCallArm(enum CallClass which, long nth, int forGood)
{
    int i;
    for (i = 0; i < CallClasses; ++i)
        __atomic_store_n(&counts[i], 0, __ATOMIC_RELAXED);
    __atomic_store_n(&failures, 0, __ATOMIC_RELAXED);
    wanted = (int)which;
    wantedNth = nth;
    wantedForGood = forGood;
    __atomic_store_n(&armed, 1, __ATOMIC_RELEASE);
}

EXPORT void nthCallDisarm(void)
{
    __atomic_store_n(&armed, 0, __ATOMIC_RELEASE);
}
EXPORT long nthCallCount(enum CallClass which)
{
    return __atomic_load_n(&counts[which], __ATOMIC_RELAXED);
}
EXPORT long nthCallFailed(void)
{
    return __atomic_load_n(&failures, __ATOMIC_RELAXED);
}
EXPORT const char *nthCallName(enum CallClass which)
{
    return names[which];
}
EXPORT void nthCallSuspend(int add)
{
    suspended += add;
}

static void show(void)
{
    void *frames[64];
    const int count = backtrace(frames, 64);
    backtrace_symbols_fd(frames, count, STDERR_FILENO);
}

static void showEnd(int signal)
{
    static const char line[] = "the end:\n";
    nthCallDisarm();
    if (write(STDERR_FILENO, line, sizeof line - 1) > 0) show();
    syscall(SYS_tgkill, getpid(), syscall(SYS_gettid), signal); /* its handler is the default again */
}

/* Where the process is when it aborts, or when its time is over. */
static void showEnds(void)
{
    struct sigaction action;
    memset(&action, 0, sizeof action);
    action.sa_handler = showEnd;
    action.sa_flags = (int)SA_RESETHAND;
    sigaction(SIGABRT, &action, NULL);
    sigaction(SIGSEGV, &action, NULL);
    sigaction(SIGALRM, &action, NULL);
}

/* Counts the call; true when it is one that fails. */
static int fails(enum CallClass which, int error)
{
    long nth;
    if (!__atomic_load_n(&armed, __ATOMIC_ACQUIRE) || suspended > 0) return 0;
    nth = __atomic_add_fetch(&counts[which], 1, __ATOMIC_RELAXED);
    if ((int)which != wanted || wantedNth == 0 || nth < wantedNth || (nth > wantedNth && !wantedForGood)) return 0;
    if (__atomic_fetch_add(&failures, 1, __ATOMIC_RELAXED) == 0 && getenv("MQRIG_TEST_NTH_SHOW") != NULL) {
        ++suspended;
        show();
        showEnds();
        --suspended;
    }
    errno = error;
    return 1;
}

/* ---- Told by the environment ---- */

static int isOpen(int fd)
{
    return syscall(SYS_fcntl, fd, F_GETFD) != -1;
}

#define DESCRIPTORS 256
static char openAtStart[DESCRIPTORS];

__attribute__((constructor)) static void readEnvironment(void)
{
    const char *told = getenv("MQRIG_TEST_NTH");
    char name[16];
    char how[8];
    long nth = 0;
    int which;
    if (told == NULL) return;
    for (which = 0; which < DESCRIPTORS; ++which)
        openAtStart[which] = (char)isOpen(which);
    if (strcmp(told, "count") == 0) {
        nthCallArm(CallMemory, 0, 0);
    } else if (sscanf(told, "%15s %ld %7s", name, &nth, how) == 3) {
        for (which = 0; which < CallClasses && strcmp(names[which], name) != 0; ++which) {
        }
        if (which == CallClasses) abort();
        nthCallArm((enum CallClass)which, nth, strcmp(how, "good") == 0);
    } else {
        abort();
    }
}

/* What the descriptor stands for, if it was not open at the start and nobody else is to close it; else empty. */
static void leftOpen(int fd, char *target, size_t size)
{
    const char *record = getenv("MQRIG_RECORD");
    const char *script = getenv("MQRIG_SCRIPT");
    char link[32];
    ssize_t length = -1;
    target[0] = '\0';
    if (openAtStart[fd] || !isOpen(fd)) return;
    snprintf(link, sizeof link, "/proc/self/fd/%d", fd);
    length = readlink(link, target, size - 1);
    target[length < 0 ? 0 : length] = '\0';
    /* The scripted MQI library keeps its record open to the end, and may be at its script. */
    if ((record != NULL && strcmp(record, target) == 0) || (script != NULL && strcmp(script, target) == 0))
        target[0] = '\0';
}

__attribute__((destructor)) static void writeReport(void)
{
    const char *path = getenv("MQRIG_TEST_NTH_REPORT");
    const struct timespec moment = {.tv_nsec = 10 * 1000 * 1000};
    char left[DESCRIPTORS];
    char target[4096];
    FILE *report;
    int found = 1;
    int look;
    int i;
    if (getenv("MQRIG_TEST_NTH") == NULL || path == NULL) return;
    nthCallDisarm();
    /* The program may end while threads of it are in the middle of a call: left open is what stays so. */
    memset(left, 1, sizeof left);
    for (look = 0; look < 100 && found != 0; ++look) {
        if (look != 0) nanosleep(&moment, NULL);
        found = 0;
        for (i = 0; i < DESCRIPTORS; ++i) {
            if (!left[i]) continue;
            leftOpen(i, target, sizeof target);
            left[i] = target[0] != '\0';
            found += left[i];
        }
    }
    report = fopen(path, "we");
    if (report == NULL) abort();
    for (i = 0; i < CallClasses; ++i)
        fprintf(report, "%s %ld\n", names[i], nthCallCount((enum CallClass)i));
    fprintf(report, "failed %ld\n", nthCallFailed());
    for (i = 0; i < DESCRIPTORS; ++i) {
        if (!left[i]) continue;
        leftOpen(i, target, sizeof target);
        fprintf(report, "descriptor %d %s\n", i, target);
    }
    if (fclose(report) != 0) abort();
}

/* ---- Memory: the sanitizer's allocator where there is one, else the C library's ---- */

#define WEAK __attribute__((weak))
extern void *__interceptor_malloc(size_t) WEAK;
extern void *__interceptor_calloc(size_t, size_t) WEAK;
extern void *__interceptor_realloc(void *, size_t) WEAK;
extern void *__interceptor_memalign(size_t, size_t) WEAK;
extern void *__libc_malloc(size_t);
extern void *__libc_calloc(size_t, size_t);
extern void *__libc_realloc(void *, size_t);
extern void *__libc_memalign(size_t, size_t);

EXPORT void *malloc(size_t size)
{
    if (fails(CallMemory, ENOMEM)) return NULL;
    return __interceptor_malloc != NULL ? __interceptor_malloc(size) : __libc_malloc(size);
}

EXPORT void *calloc(size_t count, size_t size)
{
    if (fails(CallMemory, ENOMEM)) return NULL;
    return __interceptor_calloc != NULL ? __interceptor_calloc(count, size) : __libc_calloc(count, size);
}

EXPORT void *realloc(void *block, size_t size)
{
    if (fails(CallMemory, ENOMEM)) return NULL;
    return __interceptor_realloc != NULL ? __interceptor_realloc(block, size) : __libc_realloc(block, size);
}

EXPORT void *memalign(size_t alignment, size_t size)
{
    if (fails(CallMemory, ENOMEM)) return NULL;
    return __interceptor_memalign != NULL ? __interceptor_memalign(alignment, size) : __libc_memalign(alignment, size);
}

EXPORT void *aligned_alloc(size_t alignment, size_t size)
{
    return memalign(alignment, size);
}

EXPORT int posix_memalign(void **block, size_t alignment, size_t size)
{
    void *const made = memalign(alignment, size);
    if (made == NULL) return ENOMEM;
    *block = made;
    return 0;
}

/* ---- The others: the next definition of the name, found at the first call ---- */

static void *next(void **known, const char *name)
{
    void *found = __atomic_load_n(known, __ATOMIC_RELAXED);
    if (found == NULL) {
        ++suspended;
        found = dlsym(RTLD_NEXT, name);
        --suspended;
        if (found == NULL) abort();
        __atomic_store_n(known, found, __ATOMIC_RELAXED);
    }
    return found;
}

#define NEXT(name)                                                                                                     \
    ({                                                                                                                 \
        static void *known;                                                                                            \
        (__typeof__(&name))next(&known, #name);                                                                        \
    })

/* TYPE NAME(PARAMETERS) that fails with RESULT and errno. */
#define CALL(type, name, parameters, arguments, which, result, error)                                                  \
    EXPORT type name parameters                                                                                        \
    {                                                                                                                  \
        if (fails(which, error)) return result;                                                                        \
        return NEXT(name) arguments;                                                                                   \
    }

#define OPEN(name)                                                                                                     \
    EXPORT int name(const char *path, int flags, ...)                                                                  \
    {                                                                                                                  \
        va_list list;                                                                                                  \
        mode_t mode;                                                                                                   \
        va_start(list, flags);                                                                                         \
        mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(list, mode_t) : 0;                                        \
        va_end(list);                                                                                                  \
        if (fails(CallOpen, EMFILE)) return -1;                                                                        \
        return NEXT(name)(path, flags, mode);                                                                          \
    }
OPEN(open)
OPEN(open64)
CALL(FILE *, fopen, (const char *path, const char *mode), (path, mode), CallOpen, NULL, EMFILE)
CALL(FILE *, fopen64, (const char *path, const char *mode), (path, mode), CallOpen, NULL, EMFILE)
CALL(FILE *, fdopen, (int fd, const char *mode), (fd, mode), CallOpen, NULL, ENOMEM)
CALL(DIR *, opendir, (const char *path), (path), CallOpen, NULL, EMFILE)
CALL(int, mkdir, (const char *path, mode_t mode), (path, mode), CallOpen, -1, ENOSPC)

CALL(int, stat, (const char *path, struct stat *file), (path, file), CallStat, -1, EACCES)
CALL(int, stat64, (const char *path, struct stat64 *file), (path, file), CallStat, -1, EACCES)
CALL(int, fstat, (int fd, struct stat *file), (fd, file), CallStat, -1, EIO)
CALL(int, fstat64, (int fd, struct stat64 *file), (fd, file), CallStat, -1, EIO)
CALL(int, lstat, (const char *path, struct stat *file), (path, file), CallStat, -1, EACCES)
CALL(int, lstat64, (const char *path, struct stat64 *file), (path, file), CallStat, -1, EACCES)
CALL(int, statfs, (const char *path, struct statfs *system), (path, system), CallStat, -1, EIO)
CALL(int, statfs64, (const char *path, struct statfs64 *system), (path, system), CallStat, -1, EIO)
CALL(int, access, (const char *path, int mode), (path, mode), CallStat, -1, EACCES)

CALL(ssize_t, read, (int fd, void *to, size_t size), (fd, to, size), CallRead, -1, EIO)
CALL(ssize_t, pread, (int fd, void *to, size_t size, off_t at), (fd, to, size, at), CallRead, -1, EIO)
CALL(ssize_t, pread64, (int fd, void *to, size_t size, off64_t at), (fd, to, size, at), CallRead, -1, EIO)
CALL(struct dirent *, readdir, (DIR * folder), (folder), CallRead, NULL, EIO)
CALL(struct dirent64 *, readdir64, (DIR * folder), (folder), CallRead, NULL, EIO)

/* A stream remembers that a call on it has failed. */
static int streamFails(enum CallClass which, int error, FILE *stream)
{
    if (!fails(which, error)) return 0;
    stream->_flags |= 0x20; /* _IO_ERR_SEEN */
    return 1;
}

EXPORT size_t fread(void *to, size_t size, size_t count, FILE *from)
{
    return streamFails(CallRead, EIO, from) ? 0 : NEXT(fread)(to, size, count, from);
}
EXPORT char *fgets(char *to, int size, FILE *from)
{
    return streamFails(CallRead, EIO, from) ? NULL : NEXT(fgets)(to, size, from);
}

CALL(ssize_t, write, (int fd, const void *from, size_t size), (fd, from, size), CallWrite, -1, ENOSPC)
CALL(ssize_t, pwrite, (int fd, const void *from, size_t size, off_t at), (fd, from, size, at), CallWrite, -1, ENOSPC)
CALL(ssize_t, pwrite64, (int fd, const void *from, size_t size, off64_t at), (fd, from, size, at), CallWrite, -1,
     ENOSPC)
CALL(ssize_t, writev, (int fd, const struct iovec *from, int count), (fd, from, count), CallWrite, -1, ENOSPC)
CALL(int, rename, (const char *from, const char *to), (from, to), CallWrite, -1, ENOSPC)
CALL(int, unlink, (const char *path), (path), CallWrite, -1, EIO)
CALL(int, rmdir, (const char *path), (path), CallWrite, -1, EIO)

EXPORT size_t fwrite(const void *from, size_t size, size_t count, FILE *to)
{
    return streamFails(CallWrite, ENOSPC, to) ? 0 : NEXT(fwrite)(from, size, count, to);
}
EXPORT int fputs(const char *text, FILE *to)
{
    return streamFails(CallWrite, ENOSPC, to) ? EOF : NEXT(fputs)(text, to);
}
EXPORT int fputc(int c, FILE *to)
{
    return streamFails(CallWrite, ENOSPC, to) ? EOF : NEXT(fputc)(c, to);
}
EXPORT int puts(const char *text)
{
    return streamFails(CallWrite, ENOSPC, stdout) ? EOF : NEXT(puts)(text);
}
EXPORT int putchar(int c)
{
    return streamFails(CallWrite, ENOSPC, stdout) ? EOF : NEXT(putchar)(c);
}
EXPORT int fflush(FILE *stream)
{
    return streamFails(CallWrite, ENOSPC, stream == NULL ? stdout : stream) ? EOF : NEXT(fflush)(stream);
}
EXPORT int vfprintf(FILE *to, const char *format, va_list list)
{
    return streamFails(CallWrite, ENOSPC, to) ? -1 : NEXT(vfprintf)(to, format, list);
}
EXPORT int vprintf(const char *format, va_list list)
{
    return vfprintf(stdout, format, list);
}
EXPORT int fprintf(FILE *to, const char *format, ...)
{
    va_list list;
    int written;
    va_start(list, format);
    written = vfprintf(to, format, list);
    va_end(list);
    return written;
}
EXPORT int printf(const char *format, ...)
{
    va_list list;
    int written;
    va_start(list, format);
    written = vfprintf(stdout, format, list);
    va_end(list);
    return written;
}
/* What fails to close is closed all the same. */
EXPORT int fclose(FILE *stream)
{
    const int failed = fails(CallWrite, ENOSPC);
    const int answer = NEXT(fclose)(stream);
    if (failed) errno = ENOSPC;
    return failed ? EOF : answer;
}
EXPORT int close(int fd)
{
    const int failed = fails(CallWrite, EIO);
    const int answer = NEXT(close)(fd);
    if (failed) errno = EIO;
    return failed ? -1 : answer;
}

CALL(int, fsync, (int fd), (fd), CallSync, -1, EIO)
CALL(int, fdatasync, (int fd), (fd), CallSync, -1, EIO)

CALL(void *, mmap, (void *at, size_t size, int access, int flags, int fd, off_t from),
     (at, size, access, flags, fd, from), CallMap, MAP_FAILED, ENOMEM)
CALL(void *, mmap64, (void *at, size_t size, int access, int flags, int fd, off64_t from),
     (at, size, access, flags, fd, from), CallMap, MAP_FAILED, ENOMEM)
EXPORT void *mremap(void *old, size_t oldSize, size_t size, int flags, ...)
{
    if (fails(CallMap, ENOMEM)) return MAP_FAILED;
    return NEXT(mremap)(old, oldSize, size, flags);
}
CALL(int, ftruncate, (int fd, off_t size), (fd, size), CallMap, -1, ENOSPC)
CALL(int, ftruncate64, (int fd, off64_t size), (fd, size), CallMap, -1, ENOSPC)
CALL(int, posix_fallocate, (int fd, off_t from, off_t size), (fd, from, size), CallMap, ENOSPC, ENOSPC)
CALL(int, posix_fallocate64, (int fd, off64_t from, off64_t size), (fd, from, size), CallMap, ENOSPC, ENOSPC)

/* Giving a lock up never fails. */
static int lockFails(int command, void *argument)
{
    const struct flock *lock = argument;
    switch (command) {
    case F_SETLK:
    case F_SETLKW:
    case F_GETLK:
    case F_OFD_SETLK:
    case F_OFD_SETLKW:
    case F_OFD_GETLK:
        return lock->l_type != F_UNLCK && fails(CallLock, EIO);
    default:
        return 0;
    }
}
#define FCNTL(name)                                                                                                    \
    EXPORT int name(int fd, int command, ...)                                                                          \
    {                                                                                                                  \
        va_list list;                                                                                                  \
        void *argument;                                                                                                \
        va_start(list, command);                                                                                       \
        argument = va_arg(list, void *);                                                                               \
        va_end(list);                                                                                                  \
        if (lockFails(command, argument)) return -1;                                                                   \
        return NEXT(name)(fd, command, argument);                                                                      \
    }
FCNTL(fcntl)
FCNTL(fcntl64)

/* Who finds a lock taken tries again for many seconds. Where locks fail for good it is as well to do so at once. */
static int isVain(void)
{
    return wantedForGood && wanted == (int)CallLock && suspended <= 0 && __atomic_load_n(&armed, __ATOMIC_ACQUIRE) &&
           nthCallFailed() > 0;
}
EXPORT int usleep(useconds_t microseconds)
{
    return isVain() ? 0 : NEXT(usleep)(microseconds);
}
EXPORT int nanosleep(const struct timespec *pause, struct timespec *rest)
{
    return isVain() ? 0 : NEXT(nanosleep)(pause, rest);
}

/* SQLite does not look at these answers: the C library has no reason to refuse it the mutexes that it makes, or their
   locks. */
static int isSqlite(const void *caller)
{
    Dl_info from;
    return dladdr(caller, &from) != 0 && from.dli_fname != NULL && strstr(from.dli_fname, "sqlite") != NULL;
}

/* The lock of an ordinary mutex never fails; that of a recursive, checking, robust or shared one may. */
static int mayFail(const pthread_mutex_t *mutex, const void *caller)
{
    return mutex->__data.__kind != 0 && !isSqlite(caller);
}
EXPORT int pthread_mutex_lock(pthread_mutex_t *mutex)
{
    return mayFail(mutex, __builtin_return_address(0)) && fails(CallLock, EAGAIN) ? EAGAIN
                                                                                  : NEXT(pthread_mutex_lock)(mutex);
}
EXPORT int pthread_mutex_trylock(pthread_mutex_t *mutex)
{
    return mayFail(mutex, __builtin_return_address(0)) && fails(CallLock, EAGAIN) ? EAGAIN
                                                                                  : NEXT(pthread_mutex_trylock)(mutex);
}
EXPORT int pthread_mutex_init(pthread_mutex_t *mutex, const pthread_mutexattr_t *kind)
{
    if (!isSqlite(__builtin_return_address(0)) && fails(CallThread, EAGAIN)) return EAGAIN;
    return NEXT(pthread_mutex_init)(mutex, kind);
}
CALL(int, pthread_create, (pthread_t * thread, const pthread_attr_t *kind, void *(*body)(void *), void *argument),
     (thread, kind, body, argument), CallThread, EAGAIN, EAGAIN)

CALL(iconv_t, iconv_open, (const char *to, const char *from), (to, from), CallSystem, (iconv_t)-1, ENOMEM)
CALL(ssize_t, getrandom, (void *to, size_t size, unsigned flags), (to, size, flags), CallSystem, -1, EIO)
CALL(int, gethostname, (char *name, size_t size), (name, size), CallSystem, -1, EIO)
CALL(ssize_t, readlink, (const char *path, char *to, size_t size), (path, to, size), CallSystem, -1, EIO)
/* What the C library does inside counts as one call: without memory there it ends the process. */
EXPORT int getpwuid_r(uid_t user, struct passwd *entry, char *buffer, size_t size, struct passwd **found)
{
    int code;
    if (fails(CallSystem, EIO)) return EIO;
    ++suspended;
    code = NEXT(getpwuid_r)(user, entry, buffer, size, found);
    --suspended;
    return code;
}
