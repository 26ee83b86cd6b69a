/*
 * A library that makes the n-th call of a class fail: loaded before the C library, by being linked first or by
 * LD_PRELOAD, it stands in front of malloc, read, fdatasync, fcntl and their kind, whoever calls them.
 *
 * A program that it is preloaded into is told by its environment:
 *
 *   MQRIG_TEST_NTH="CLASS N once|good"   the N-th call of that class fails, or it and all behind it; "count" fails none
 *   MQRIG_TEST_NTH_REPORT=PATH           at its end the process writes there: "CLASS COUNT" for each class, "failed N"
 *                                        (how many calls did), "descriptor N PATH" for each that it has left open
 *   MQRIG_TEST_NTH_SHOW=1                the stack of the first call that fails goes to standard error, and that of
 *                                        the end, if it is a signal's
 *
 * A program that is linked with it arms it by the functions below.
 */
#ifndef NTH_CALL_H
#define NTH_CALL_H

#ifdef __cplusplus
extern "C" {
#endif

enum CallClass {
    CallMemory, /* malloc, calloc, realloc, operator new ...: ENOMEM */
    CallOpen,   /* open, fopen, opendir, mkdir: EMFILE */
    CallStat,   /* stat, fstat, statfs, access: EACCES */
    CallRead,   /* read, pread, fread, fgets, readdir: EIO */
    CallWrite,  /* write, pwrite, fwrite, printf, fflush, fclose, rename, unlink: ENOSPC */
    CallSync,   /* fsync, fdatasync: EIO */
    CallMap,    /* mmap, mremap, ftruncate, posix_fallocate: ENOMEM or ENOSPC */
    CallLock,   /* record locks, and mutexes of the kinds whose lock can fail: EIO, EAGAIN */
    CallThread, /* pthread_create, pthread_mutex_init: EAGAIN */
    CallSystem, /* iconv_open, getrandom, gethostname, readlink, getpwuid_r: EIO */
    CallClasses
};

/* From now on calls are counted, from 1; the nth of the class fails (0: none), with forGood those behind it too. */
void nthCallArm(enum CallClass which, long nth, int forGood);
/* No more. */
void nthCallDisarm(void);
/* How many there were since it was armed. */
long nthCallCount(enum CallClass which);
/* How many of them have failed. */
long nthCallFailed(void);
const char *nthCallName(enum CallClass which);

/* Calls of this thread are neither counted nor fail while the sum of what was added is above zero. */
void nthCallSuspend(int add);

#ifdef __cplusplus
}
#endif

#endif
