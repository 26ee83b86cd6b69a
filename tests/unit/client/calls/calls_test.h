// What the tests of the call layer, the put and get loops and the display share: a fresh record, a fresh fake MQI, and
// what a piece of work wrote to the two streams.
#pragma once

#include "RunParams.h"
#include "fake_mqi.h"
#include "status.h"

#include <gtest/gtest.h>

#include <functional>
#include <pthread.h>
#include <string>
#include <vector>

/// Calls that never reach the system; see intercepted.cpp.
struct Intercepted {
    struct Sleep {
        std::size_t callsBefore; ///< MQI calls made before it
        MQLONG milliseconds;
        bool operator==(const Sleep &) const = default;
    };
    int yields = 0;
    int yieldError = 0; ///< errno of a yield that is to fail
    std::vector<Sleep> sleeps;
};
extern Intercepted intercepted;

/// Allocations that are to fail.
void fail_malloc_of(std::size_t size);
void let_malloc_succeed();

/// `text` with every time stamp replaced by "[now] ", or "[now tid=N] ".
std::string without_time(const std::string &text);

/// Standard output as a file for the length of a scope, to see what has really been handed on.
class OutputFile {
public:
    OutputFile();
    ~OutputFile();
    OutputFile(const OutputFile &) = delete;
    OutputFile &operator=(const OutputFile &) = delete;

    /// What has left the buffers so far.
    std::string handed_on() const;

private:
    int file_;
    int saved_;
};

/// Gives a record of a thread an output lock that cannot be had: this thread holds it, and it is not recursive.
class UnavailableLock {
public:
    explicit UnavailableLock(RunParams &params);
    ~UnavailableLock();
    UnavailableLock(const UnavailableLock &) = delete;
    UnavailableLock &operator=(const UnavailableLock &) = delete;

private:
    pthread_mutex_t lock_;
};

struct Written {
    Status status = -99;
    std::string out; ///< time stamps as "[now] "
    std::string err; ///< line numbers of "source,line,errno: " as "#"
};

class CallsTest : public testing::Test {
protected:
    CallsTest();
    ~CallsTest() override;

    /// Runs the work with both streams caught.
    Written written(const std::function<Status()> &work) const;
    Written written_by(const std::function<void()> &work) const;

    RunParams params = {};
    const MQHCONN hconn = FakeHconn;
};
