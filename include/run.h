/// The run driver and the worker threads.
///
/// How to add a step to a pass
///   1. A pass is the numbered list at the head of src/run/run.cpp: parse, connect, wait, run, settle, close,
///   disconnect.
///   2. What depends on the operation's queues belongs to src/run/connection.cpp.
///   3. A setting that must hold for both records belongs to src/run/reconcile.cpp.
#pragma once

#include "RunParams.h"
#include "options.h"
#include "status.h"

inline constexpr char VERSION[] = "version 1.4.2.10 2022/04/22";
inline constexpr char LIBRARY_VERSION[] = "version 1.0.0.1 2021/03/10";

/// The whole program: passes, retries, elapsed time. Answers the exit code.
int run(int argc, char *const argv[]);

/// The names of all symbolic constants, table by table, to standard output.
void printVerbose();

/// Runs the operation in `ThreadCount` threads on one connection and joins them.
Status thread_main(RunParams *params, MQHCONN hconn, RunParams *secondary, SingleOperation single,
                   PairedOperation paired);
/// Runs it in `InnerConnThreadCount` threads that connect by themselves.
Status thread_main_i(RunParams *params, RunParams *secondary, SingleOperation single, PairedOperation paired);
