/*
 * A library that a test preloads into the client to make an allocation fail:
 *
 *   MQRIG_TEST_FAIL="malloc SIZE"     the allocation of exactly that many bytes fails; SIZE may be FROM-TO, and
 *                                     "malloc SIZE N" lets N of them pass first
 *
 * operator new comes here too. It stands apart from faults.c because the sanitizers do not run with an allocator
 * before their own.
 */
#include <errno.h>
#include <stddef.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

extern void *__libc_malloc(size_t size);
extern void *__libc_calloc(size_t count, size_t size);
extern void *__libc_realloc(void *block, size_t size);

static int passed;

/* True when an allocation of this size is the one that fails. Called before anything is set up: getenv and the
   conversions below allocate nothing. */
static int must_fail(size_t size)
{
    const char *fault = environ == NULL ? NULL : getenv("MQRIG_TEST_FAIL");
    char *end;
    unsigned long from, to, skip = 0;
    if (fault == NULL || strncmp(fault, "malloc ", 7) != 0) return 0;
    from = to = strtoul(fault + 7, &end, 10);
    if (*end == '-') to = strtoul(end + 1, &end, 10);
    if (*end == ' ') skip = strtoul(end + 1, &end, 10);
    if (size < from || size > to || (unsigned long)__atomic_fetch_add(&passed, 1, __ATOMIC_RELAXED) < skip) return 0;
    errno = ENOMEM;
    return 1;
}

void *malloc(size_t size) { return must_fail(size) ? NULL : __libc_malloc(size); }
void *calloc(size_t count, size_t size) { return must_fail(count * size) ? NULL : __libc_calloc(count, size); }
void *realloc(void *block, size_t size) { return must_fail(size) ? NULL : __libc_realloc(block, size); }
