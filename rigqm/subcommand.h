// The sub-commands of rigqm.
//
// How to add one
//   1. Write its function in a file of its own (start.cpp is the shortest) and declare it here.
//   2. Add its row to the table in main.cpp; dispatch, help and "did you mean" come from there.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

#include "arguments.h"
#include "qmgr/store/outcome.h"

namespace mqrig::rigqm {

// Exit codes.
inline constexpr int exitOk = 0;
inline constexpr int exitFailed = 1;
inline constexpr int exitUsage = 2;
inline constexpr int exitFindings = 3; // of `check`: something is wrong with the store

struct Subcommand {
    std::string_view name;
    std::string_view operands; // "NAME", as the help shows them
    std::size_t fewest;        // how many operands it takes
    std::size_t most;
    std::span<const Option> options;
    std::string_view summary; // one line for the list
    std::string_view details; // more lines for its own help; may be empty
    int (*run)(const Arguments &);
};

int createCommand(const Arguments &arguments);
int startCommand(const Arguments &arguments);
int endCommand(const Arguments &arguments);
int listCommand(const Arguments &arguments);
int deleteCommand(const Arguments &arguments);
int mqscCommand(const Arguments &arguments);
int checkCommand(const Arguments &arguments);
int backupCommand(const Arguments &arguments);
int restoreCommand(const Arguments &arguments);
int explainCommand(const Arguments &arguments);

// ---- What they share ----

// Writes "rigqm: QM1: what the reason means here." to standard error; answers exitFailed.
int reportFailure(std::string_view queueManager, const qmgr::Outcome &outcome);

// Writes "rigqm: text" to standard error; answers exitFailed.
int reportFailure(std::string_view text);

} // namespace mqrig::rigqm
