/*
 * A library that a test preloads into the client to make the system misbehave on purpose:
 *
 *   MQRIG_TEST_FAIL="tcgetattr"         that call fails with EIO; likewise tcsetattr, sched_yield
 *   MQRIG_TEST_CLOCK="SECONDS.NANOS"    the real-time clock stands still at this time
 *   MQRIG_TEST_PAUSES=1                 sleeps return at once and are written to the record, as is a yield
 */
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <sched.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <termios.h>
#include <time.h>
#include <unistd.h>

static int fails(const char *call)
{
    const char *fault = getenv("MQRIG_TEST_FAIL");
    if (fault == NULL || strcmp(fault, call) != 0) return 0;
    errno = EIO;
    return 1;
}

int tcgetattr(int fd, struct termios *settings)
{
    int (*next)(int, struct termios *) = (int (*)(int, struct termios *))dlsym(RTLD_NEXT, "tcgetattr");
    return fails("tcgetattr") ? -1 : next(fd, settings);
}

int tcsetattr(int fd, int when, const struct termios *settings)
{
    int (*next)(int, int, const struct termios *) =
        (int (*)(int, int, const struct termios *))dlsym(RTLD_NEXT, "tcsetattr");
    return fails("tcsetattr") ? -1 : next(fd, when, settings);
}

int clock_gettime(clockid_t clock, struct timespec *now)
{
    int (*next)(clockid_t, struct timespec *) = (int (*)(clockid_t, struct timespec *))dlsym(RTLD_NEXT, "clock_gettime");
    const char *frozen = getenv("MQRIG_TEST_CLOCK");
    char *end;
    if (frozen == NULL || clock != CLOCK_REALTIME) return next(clock, now);
    now->tv_sec = (time_t)strtoll(frozen, &end, 10);
    now->tv_nsec = *end == '.' ? strtol(end + 1, NULL, 10) : 0;
    return 0;
}

/* A line of the record that is no call: "#0 t0 pause ms=500". */
static int recorded(const char *line)
{
    const char *record = getenv("MQRIG_RECORD");
    int file;
    if (getenv("MQRIG_TEST_PAUSES") == NULL || record == NULL) return 0;
    file = open(record, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
    if (file < 0 || write(file, line, strlen(line)) < 0) abort();
    close(file);
    return 1;
}

static int pause_recorded(long long nanoseconds)
{
    char line[64];
    snprintf(line, sizeof line, "#0 t0 pause ms=%lld\n", nanoseconds / 1000000);
    return recorded(line);
}

int nanosleep(const struct timespec *pause, struct timespec *rest)
{
    int (*next)(const struct timespec *, struct timespec *) =
        (int (*)(const struct timespec *, struct timespec *))dlsym(RTLD_NEXT, "nanosleep");
    return pause_recorded((long long)pause->tv_sec * 1000000000 + pause->tv_nsec) ? 0 : next(pause, rest);
}

int clock_nanosleep(clockid_t clock, int flags, const struct timespec *pause, struct timespec *rest)
{
    int (*next)(clockid_t, int, const struct timespec *, struct timespec *) =
        (int (*)(clockid_t, int, const struct timespec *, struct timespec *))dlsym(RTLD_NEXT, "clock_nanosleep");
    if (flags == 0 && pause_recorded((long long)pause->tv_sec * 1000000000 + pause->tv_nsec)) return 0;
    return next(clock, flags, pause, rest);
}

int usleep(useconds_t microseconds)
{
    struct timespec pause;
    pause.tv_sec = (time_t)(microseconds / 1000000);
    pause.tv_nsec = (long)(microseconds % 1000000) * 1000;
    return nanosleep(&pause, NULL);
}

/* The sanitizers yield on their own account. */
static int called_by_sanitizer(const void *caller)
{
    Dl_info from;
    return dladdr(caller, &from) != 0 && from.dli_fname != NULL && strstr(from.dli_fname, "san.so") != NULL;
}

int sched_yield(void)
{
    int (*next)(void) = (int (*)(void))dlsym(RTLD_NEXT, "sched_yield");
    if (called_by_sanitizer(__builtin_return_address(0))) return next();
    if (fails("sched_yield")) return -1;
    recorded("#0 t0 yield\n");
    return next();
}
