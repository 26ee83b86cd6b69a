// Compares what a run did with what its transcript says.
#pragma once

#include "process.h"
#include "transcript.h"

#include <string>
#include <vector>

namespace transcript {

struct RecordedCall {
    std::string name;
    std::vector<std::string> arguments; // with the thread ("t1") as one of them
    Lines details;
    std::string text;
};

std::vector<RecordedCall> readRecord(const std::string &record, Lines &unusedRules);

// Empty when all is as expected; otherwise a report to read.
std::string check(const Run &run, const Outcome &outcome, const std::string &folder);

} // namespace transcript
