// A command line, parsed.
#pragma once

#include "captured.h"
#include "options.h"

#include <string>
#include <vector>

struct Parsed {
    RunParams primary = DEFAULT_RUN_PARAMS;
    RunParams secondary = DEFAULT_RUN_PARAMS;
    CommandLine commandLine;
    std::string out;
    std::string err;

    CommandLine::Result result() const { return commandLine.result; }
};

/// Parses the arguments behind the program's name. They stay valid, so that the records' pointers do.
inline Parsed parse(std::vector<std::string> arguments)
{
    static std::vector<std::vector<std::string>> kept;
    arguments.insert(arguments.begin(), "mqrig");
    kept.push_back(std::move(arguments));
    std::vector<char *> argv;
    for (std::string &argument : kept.back())
        argv.push_back(argument.data());
    argv.push_back(nullptr);

    Parsed parsed;
    const Captured written = captured([&] {
        parsed.commandLine =
            GetArgParam(static_cast<int>(argv.size()) - 1, argv.data(), &parsed.primary, &parsed.secondary);
    });
    parsed.out = written.out;
    parsed.err = written.err;
    return parsed;
}

/// The same behind "-qm QM1 -q Q1", which make any command line complete.
inline Parsed parseComplete(std::vector<std::string> arguments)
{
    arguments.insert(arguments.begin(), {"-qm", "QM1", "-q", "Q1"});
    return parse(std::move(arguments));
}

/// malloc of this size has no memory while this object lives.
class FailingMalloc {
public:
    explicit FailingMalloc(std::size_t size);
    ~FailingMalloc();
    FailingMalloc(const FailingMalloc &) = delete;
    FailingMalloc &operator=(const FailingMalloc &) = delete;
};
