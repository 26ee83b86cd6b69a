/// The command line: options, MQI constant names, and the choice of the operation.
///
/// How to add a new option
///   1. Add the field that it sets to the record (RunParams.h).
///   2. Add its row to the group it belongs to in tables/run_option_rows.h or tables/message_option_rows.h: flag, kind,
///      field, limit, texts, usage line. The usage text and the parser both come from that row.
///   3. Only if no kind fits: add one to option_rows.h and its case to src/options/applyOption.cpp.
/// How to add a new operation
///   1. Write the mode and declare it with its subsystem.
///   2. Add its step to src/options/selectOperation.cpp, and what the driver opens for it to src/run/connection.cpp.
#pragma once

#include "RunParams.h"
#include "option_rows.h"

/// What the command line asks for.
struct CommandLine {
    enum Result : int {
        NoArguments = -3,   ///< show the usage text
        VersionAndAll = -2, ///< `-v all`
        Version = -1,       ///< `-v`
        Error = 0,          ///< already reported
        Paired = 1,         ///< run `paired` with both records
        Single = 2,         ///< run `single` with the primary record
    };
    Result result = Error;
    SingleOperation single = nullptr;
    PairedOperation paired = nullptr;
};

/// Fills the records from the arguments and selects the operation. Records keep what was set before an error.
CommandLine GetArgParam(int argc, char *const argv[], RunParams *primary, RunParams *secondary);
