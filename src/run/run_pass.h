/// One pass of a run: connect to every queue manager of the list, run the operation, disconnect.
#pragma once

#include "options.h"
#include "status.h"

#include <cstdint>
#include <optional>

/// What survives from one pass to the next.
struct RunState {
    std::int64_t passes = -1; ///< passes still to run, one more for each retry; -1: not yet taken from -c
    MQLONG retries = -1;      ///< connects that may still be tried again; -1: not yet taken from -cr
    bool retrying = false;    ///< the next pass repeats a failed connect, which has had its pause
    Status result = StatusOk;
};

/// Runs a pass with records that are parsed and reconciled. An exit code when the run ends here.
std::optional<int> runPass(RunState &state, const RunParams &primary, const RunParams &secondary,
                           const CommandLine &operation);
