// Runs the client once, piped or on a terminal of its own, and brings back what it wrote.
#pragma once

#include "transcript.h"

#include <string>

namespace transcript {

struct Programs {
    std::string client;  // the mqrig under test
    std::string mqiFolder; // folder of the scripted libmqm_r.so
    std::string faults;  // folder of the libraries that are preloaded for faults, the clock and pauses
};

struct Outcome {
    std::string out;
    std::string err; // empty when merged
    std::string exit; // "0", "signal 2"
    std::string record;
    std::string trouble; // why the run itself went wrong: time-out, a reaction's text never seen, terminal left changed
};

// `folder` is the client's working folder and holds the script and the record.
Outcome runClient(const Run &run, bool onTerminal, const Programs &programs, const std::string &folder);

} // namespace transcript
