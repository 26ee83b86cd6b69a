// A transcript file: cases, each a few runs of the client with what they must show. README.md describes the format.
#pragma once

#include "text.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace transcript {

struct Reaction {
    std::string when; // text to wait for, behind what the reaction before waited for
    std::string keys;     // typed
    std::string fileName; // or a file that is made, empty
    int signal = 0;       // or a signal that is sent
};

// Something in the working folder before the run: a file with its contents, a link with its target, a folder, a pipe.
struct Node {
    enum class Kind { File, Folder, Link, Pipe };
    Kind kind;
    std::string name;
    std::string contents;
};

enum class Terminal { Never, Only, Both };

// How the client is run. It holds from where it stands to the end of the case.
struct Setup {
    std::string script;
    std::vector<std::pair<std::string, std::string>> environment;
    std::vector<Node> nodes; // made in the working folder, in this order
    long long fileSizeLimit = -1; // what no file of the client may grow beyond
    std::string input;
    bool merged = false;
    Terminal terminal = Terminal::Never;
    std::vector<Reaction> reactions;
    std::vector<std::pair<std::string, std::string>> faults; // for the preloaded library: environment variables
    bool recordsAllFields = false;
};

struct ExpectedCall {
    std::string name;
    std::vector<std::string> arguments;
    Lines details;
    std::string text; // as it stands in the file
};

struct CallsExpectation {
    std::vector<std::string> names; // empty: all calls
    bool exactly = false;           // no detail but the listed ones
    std::vector<ExpectedCall> calls;
};

struct Run {
    int line = 0;
    Setup setup;
    std::vector<std::string> arguments;
    std::optional<Lines> out;
    Lines err;
    std::string exit = "0";
    std::optional<std::vector<std::string>> order;
    std::vector<CallsExpectation> calls;
    std::vector<std::pair<std::string, Lines>> filesAfter;
    std::vector<std::pair<std::string, Lines>> foldersAfter; // the names in them, sorted
    std::vector<std::string> absentAfter;
};

struct Case {
    std::string name;
    int line = 0;
    std::vector<Run> runs;
};

// Reads a file; throws std::runtime_error with file and line on a fault.
std::vector<Case> readTranscript(const std::string &path);

} // namespace transcript
