// client_transcript FILE [CASE]: runs the cases of a transcript file, or one of them.
//   --client PATH  --library FOLDER  --faults FOLDER   what is tested, and with what
//   --list         only the names of the cases
//   --show         what the runs do, written as a transcript, instead of comparing
#include "check.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

using namespace transcript;

namespace {

struct Options {
    Programs programs;
    std::string file;
    std::string caseName;
    bool list = false;
    bool show = false;
};

Options optionsOf(int argc, char **argv)
{
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        const auto value = [&] {
            if (i + 1 == argc) throw std::runtime_error(argument + " takes a value");
            return std::string(argv[++i]);
        };
        const auto path = [&] { return std::filesystem::absolute(value()).string(); };
        if (argument == "--client") options.programs.client = path();
        else if (argument == "--library") options.programs.mqiFolder = path();
        else if (argument == "--faults") options.programs.faults = path();
        else if (argument == "--list") options.list = true;
        else if (argument == "--show") options.show = true;
        else if (options.file.empty()) options.file = argument;
        else options.caseName = argument;
    }
    if (options.file.empty()) throw std::runtime_error("usage: client_transcript [options] FILE [CASE]");
    return options;
}

// A folder for one case, gone with it.
class Folder {
public:
    Folder()
    {
        std::string pattern = std::filesystem::temp_directory_path() / "mqrig-client-XXXXXX";
        if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("cannot make " + pattern);
        path_ = pattern;
    }
    ~Folder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    const std::string &path() const { return path_; }

private:
    std::string path_;
};

void showBlock(const char *head, const Lines &lines)
{
    if (lines.empty()) return;
    std::printf("%s\n", head);
    for (const std::string &line : lines) std::printf("    %s\n", line.c_str());
}

void show(const Outcome &outcome)
{
    showBlock("out:", linesOf(outcome.out));
    showBlock("err:", linesOf(outcome.err));
    std::printf("exit: %s\n", outcome.exit.c_str());
    Lines calls;
    for (const RecordedCall &call : readRecord(outcome.record, calls)) {
        calls.push_back(call.text);
        for (const std::string &detail : call.details) calls.push_back("    " + detail);
    }
    showBlock("calls:", calls);
    if (!outcome.trouble.empty()) std::printf("# %s\n", outcome.trouble.c_str());
}

bool passes(const Case &tested, const Options &options)
{
    const Folder folder;
    bool passed = true;
    for (const Run &run : tested.runs) {
        for (const bool onTerminal : {false, true}) {
            if (run.setup.terminal == (onTerminal ? Terminal::Never : Terminal::Only)) continue;
            const Outcome outcome = runClient(run, onTerminal, options.programs, folder.path());
            if (options.show) {
                show(outcome);
                continue;
            }
            const std::string report = check(run, outcome, folder.path());
            if (report.empty()) continue;
            passed = false;
            std::printf("%s:%d: %s%s\n%s", options.file.c_str(), run.line, tested.name.c_str(),
                        onTerminal ? " (on a terminal)" : "", report.c_str());
        }
    }
    return passed;
}

} // namespace

int main(int argc, char **argv)
{
    try {
        const Options options = optionsOf(argc, argv);
        int run = 0;
        bool passed = true;
        for (const Case &tested : readTranscript(options.file)) {
            if (!options.caseName.empty() && tested.name != options.caseName) continue;
            ++run;
            if (options.list || options.show) std::printf("== %s\n", tested.name.c_str());
            if (!options.list) passed = passes(tested, options) && passed;
        }
        if (run == 0) throw std::runtime_error("no such case: " + options.caseName);
        return passed ? 0 : 1;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "client_transcript: %s\n", error.what());
        return 2;
    }
}
