/// Console output, error reports, and the small helpers that every subsystem shares.
///
/// How to report
///   1. A report line: `LockedSection` around `dsp_timestamp` and the text (printf, or `printf_t` where `-raw` moves
///   it).
///   2. A failed MQI call: `printf_te`.
///   3. A failed library call: `report_failure` with the routine's name.
///   4. A buffer: `checked_malloc` and its kin, which report their own failure.
///
/// Standard output is fully buffered unless it is a terminal. Whatever writes to standard error, prompts or may wait
/// flushes it first (`flush_output`), so that a merged log reads in order; the writers below do so themselves.
#pragma once

#include "RunParams.h"
#include "status.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>

#define MQRIG_PRINTF(text, arguments) __attribute__((format(printf, text, arguments)))

/// Where a failure is reported: the routine's name, and the line, which fills itself in: `{"PutFromCmdLine"}`.
struct Caller {
    const char *source;
    int line = __builtin_LINE();
};

// ---- Report lines -------------------------------------------------------------------------------------------------

/// Under the record's lock, to standard output, or to standard error with `-raw`.
Status printf_t(RunParams *params, const char *format, ...) MQRIG_PRINTF(2, 3);
/// Under the record's lock, to standard error: every line about a failed MQI call.
Status printf_te(RunParams *params, const char *format, ...) MQRIG_PRINTF(2, 3);
/// Under the record's lock, to standard error, behind "source,line,error: ".
Status printf_td(RunParams *params, const char *source, int line, int error, const char *format, ...)
    MQRIG_PRINTF(5, 6);
/// `printf_td` without a lock, for where no record is at hand or the lock is held or cannot be had.
void printf_d(const char *source, int line, int error, const char *format, ...) MQRIG_PRINTF(4, 5);
/// The system's description of `error` behind `text`; nothing when `error` is 0.
void perrinfo(const char *text, int error);
/// The pair of lines for a failed system or library call: `perrinfo(call, error)` and the sentence through `printf_td`,
/// or through `printf_d` when `params` is null.
void report_failure(RunParams *params, Caller caller, const char *call, int error, const char *format, ...)
    MQRIG_PRINTF(5, 6);
/// The formatted text, cut at 255 bytes, and a line feed.
void info(std::FILE *stream, const char *format, ...) MQRIG_PRINTF(2, 3);

/// "Elapsed time = ... sec" to `stream`.
void timeDiff(std::FILE *stream, const timespec &start, const timespec &end);
double timespecToDouble(std::time_t seconds, long nanoseconds);

/// The time stamp at the head of a report line, to standard output. The caller holds the lock.
void dsp_timestamp(RunParams *params);
/// "tid=... " to standard output, only when threads are in use.
void dsp_tid(RunParams *params);

/// Hands buffered standard output on; before anything that waits or that writes to standard error.
void flush_output();

// ---- The output lock ----------------------------------------------------------------------------------------------

/// Takes the lock of the record's thread group; 0 at once when threads are not in use. A failure is reported.
Status lock_section(RunParams *params);
Status unlock_section(RunParams *params);

/// The lock that report lines of this record take now, or null. A connection's record is given its group's lock while
/// an event handler may look at it, so both sides go through these two.
pthread_mutex_t *output_lock(RunParams *params);
void set_output_lock(RunParams *params, pthread_mutex_t *lock);

/// The output lock for the length of a scope. `status()` other than 0 means that the lock was not had: write nothing.
class LockedSection {
public:
    explicit LockedSection(RunParams *params);
    ~LockedSection() { release(); }
    LockedSection(const LockedSection &) = delete;
    LockedSection &operator=(const LockedSection &) = delete;

    Status status() const { return status_; }
    /// Releases early, for callers that answer with the status of the release.
    Status release();

private:
    pthread_mutex_t *held_; ///< the very lock that was taken, whatever the record says by now
    Status status_;
};

// ---- Buffers that can fail and be seen ----------------------------------------------------------------------------

struct FreeBuffer {
    void operator()(void *memory) const { std::free(memory); }
};

/// Memory from malloc that frees itself.
template <class T = char>
using Buffer = std::unique_ptr<T[], FreeBuffer>;

/// Memory of `size` bytes, or null after reporting "malloc() failed. size=..." for `caller`. `params` null: no lock.
/// `call` is how the report names the call.
Buffer<> checked_malloc(RunParams *params, std::size_t size, Caller caller, const char *call = "malloc()");
/// The same, zero-filled, as calloc(). `size` is the whole size.
Buffer<> checked_calloc(RunParams *params, std::size_t size, Caller caller);
/// Memory of a size that was computed from what a user or a queue manager said. More than the MQI can count (2^31-1)
/// is refused and reported as memory that cannot be had.
Buffer<> checked_malloc_counted(RunParams *params, std::int64_t size, Caller caller);
/// Grows `buffer` in place. On failure it is reported as realloc(), `buffer` keeps what it held and false comes back.
bool checked_realloc(RunParams *params, Buffer<> &buffer, std::size_t size, Caller caller);
/// A copy of `text` with its terminator, or null after the report of `checked_malloc`.
Buffer<> checked_copy(RunParams *params, const char *text, Caller caller, const char *call = "malloc()");

// ---- Waiting ------------------------------------------------------------------------------------------------------

/// Sleeps; nothing for 0 or less. Flushes standard output first.
void sleep_millisecond(RunParams *params, MQLONG milliseconds);

// ---- Hexadecimal, strings, byte order -----------------------------------------------------------------------------

/// The digits of a byte string or number in hexadecimal notation, behind its "0x"; null for any other text.
const char *hexadecimal_digits(const char *text);
/// Hexadecimal digits to bytes; `target` holds half the digits, rounded up. 1 for a bad or an odd number of digits,
/// with the bytes before the fault written.
Status hexdec2bin(const char *text, void *target);
/// The same, ending with success as soon as `maximum` bytes are written (at least one).
Status hexdec2binl(const char *text, void *target, MQLONG maximum);
/// Two upper-case digits for each byte and a terminator.
void bin2hexdec(const void *source, char *target, std::size_t length);

/// A decimal number as atoi reads it - leading blanks, a sign, digits up to the first other character, 0 for none - but
/// a number that is too large is the nearest one that fits.
MQLONG lenientNumber(const char *text);
/// Cuts the next token off, keeping empty ones between adjacent delimiters; null at the end of the text.
char *strtoknn_r(char *text, const char *delimiters, char **position);
/// strncpy: zero-filled behind a shorter source, unterminated when the source fills it.
char *strncpy2(char *target, const char *source, std::size_t maximum);
/// Removes trailing and leading blanks in place; how many, or -1 for null.
MQLONG trim(char *text);

/// The value in the machine's byte order, by the record's `DataEncoding`.
MQLONG reverseEndian(MQLONG value, const RunParams *params);
MQINT64 reverseEndian64(MQINT64 value, const RunParams *params);
