// The driver's surroundings: wrappers and operations that write down that they were called and answer what a test says,
// and system calls that fail or do not wait.
#pragma once

#include "RunParams.h"
#include "captured.h"
#include "run.h"
#include "status.h"

#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

struct FakeRoutines {
    /// What was called, in order: "connect QM1", "open input Q1", "operation", "sleep 500"...
    std::vector<std::string> steps;
    /// Answers of the next calls by step; without one a routine succeeds.
    std::map<std::string, std::deque<Status>> answers;
    /// Runs inside the operation or the step of that name.
    std::map<std::string, std::function<void(RunParams &)>> during;

    /// Connection records that the next allocations of them do not get: the n-th one, counted from 1; 0: none.
    int failingConnection = 0;
    std::map<std::string, int> failingCalls; ///< answer of a pthread call instead of making it
    bool failCalloc = false;

    Status step(const std::string &name, RunParams *params = nullptr);
    long count(const std::string &name);

    std::mutex guard; ///< worker threads write their steps too
    MQHCONN lastHconn = 0;
    int connections = 0;
};

extern FakeRoutines *fake;

/// A run with fresh surroundings.
struct Finished {
    int exitCode = -1;
    std::string out;
    std::string err;
    std::vector<std::string> steps;
};

class DriverTest : public testing::Test {
protected:
    DriverTest() { fake = &routines; }
    ~DriverTest() override { fake = nullptr; }

    Finished run(std::vector<std::string> arguments);
    FakeRoutines routines;
};
