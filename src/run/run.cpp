/// A run is a sequence of passes. Each pass
///   1. waits (-wp), if it is not the first and does not retry a connect,
///   2. resets both records from the template and parses the command line into them,
///   3. reconciles the records,
///   4. connects to every queue manager, registers the callback, opens the queues,
///   5. waits for the start file (-sf),
///   6. runs the operation on each connection and settles what a group of threads left open,
///   7. closes and disconnects.
/// Nothing but the counters, the start time and the result survives from one pass to the next.

#include "run.h"

#include "common.h"
#include "reconcile.h"
#include "run_pass.h"

#include <optional>

namespace {

constexpr int ExitFailure = 1;

/// Shows what the command line asked for instead of a run, or nothing after an error that is reported.
int endWithoutRun(CommandLine::Result result)
{
    if (result == CommandLine::Error) return ExitFailure;
    std::fputs(CMD_LINE, stdout);
    if (result == CommandLine::NoArguments) return ExitFailure;
    std::printf("%s\n", VERSION);
    std::printf("library %s\n", LIBRARY_VERSION);
    if (result == CommandLine::VersionAndAll) {
        std::puts("");
        printVerbose();
    }
    return ExitFailure;
}

void showElapsedTime(const timespec &start, const RunParams &primary, const RunParams &secondary)
{
    timespec end = {};
    clock_gettime(CLOCK_REALTIME, &end);
    const bool raw = primary.OutputForm == OutputFormRaw || secondary.OutputForm == OutputFormRaw;
    timeDiff(raw ? stderr : stdout, start, end);
}

} // namespace

int run(int argc, char *const argv[])
{
    RunParams primary = DEFAULT_RUN_PARAMS;
    RunParams secondary = DEFAULT_RUN_PARAMS;
    RunState state;
    timespec start = {};
    clock_gettime(CLOCK_REALTIME, &start);

    do {
        // The records still are the previous pass's; in the first pass the template's count of 1.
        if (primary.ConnLoopCount >= 2 && !state.retrying) sleep_millisecond(&primary, primary.WaitMs);

        primary = DEFAULT_RUN_PARAMS;
        secondary = DEFAULT_RUN_PARAMS;
        const CommandLine operation = GetArgParam(argc, argv, &primary, &secondary);
        if (operation.single == nullptr && operation.paired == nullptr) return endWithoutRun(operation.result);
        if (state.passes == -1) state.passes = primary.ConnLoopCount;
        if (state.retries == -1) state.retries = primary.ConnRetryCount;
        reconcile(primary, secondary);

        if (const std::optional<int> exitCode = runPass(state, primary, secondary, operation)) return *exitCode;
    } while (--state.passes != 0);

    showElapsedTime(start, primary, secondary);
    return state.result;
}
