// client_fault_sweep --client PATH --library FOLDER --faults FOLDER [--sample N] FILE [CASE]
//
// Runs each case of a transcript file again and again, while the first, second, third ... call of a class fails
// (tests/faults/nth_call.h), once and for good. Whatever fails, the client ends by itself with an exit code of its own,
// and either does what it does without a fault or says so on standard error. It leaves no descriptor open, and without
// a report no connection, object or message handle either (a run that fails in its set-up leaves those to the end of
// the connection or of the process). Output that is not whole, in a file or on standard output, never comes with the
// exit code 0. After the last fault all is as before the first.
//
// With --sample N about N places of each class are tried, in equal steps, the first ones among them; else all.
#include "../runner/check.h"

#include "nth_call.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

using namespace transcript;

namespace {

constexpr const char *sanitizerExit = "99";
// The address sanitizer cannot go on when there is no memory for the start of a thread.
#ifdef __SANITIZE_ADDRESS__
constexpr bool sanitizersStartThreads = true;
#else
constexpr bool sanitizersStartThreads = false;
#endif

struct Options {
    Programs programs;
    std::string file;
    std::string caseName;
    long sample = 0;
};

Options optionsOf(int argc, char **argv)
{
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        const bool takesValue = argument.starts_with("--");
        if (takesValue && i + 1 == argc) throw std::runtime_error(argument + " takes a value");
        const std::string value = takesValue ? argv[++i] : argument;
        const auto path = [&] { return std::filesystem::absolute(value).string(); };
        if (argument == "--client") options.programs.client = path();
        else if (argument == "--library") options.programs.mqiFolder = path();
        else if (argument == "--faults") options.programs.faults = path();
        else if (argument == "--sample") options.sample = std::stol(value);
        else if (options.file.empty()) options.file = value;
        else options.caseName = value;
    }
    if (options.file.empty()) throw std::runtime_error("usage: client_fault_sweep [options] FILE [CASE]");
    return options;
}

std::string contentsOf(const std::filesystem::path &path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// What a run wrote and did, in a form in which two runs can be compared.
struct Deed {
    std::string exit;
    std::string out;
    std::string err;
    std::string calls;
    std::map<std::string, std::string> files;

    bool operator==(const Deed &) const = default;
};

struct Faulted {
    Deed deed;
    std::string trouble;
    std::map<std::string, long> counts; // by class, and "failed"
    std::string descriptors;            // those left open
    std::string unbalanced;             // what was opened and not closed
};

// Threads take turns as they like: their lines are put in order, their numbers left out.
std::string comparable(const std::string &text, bool threads)
{
    if (!threads) return text;
    static const std::regex numbers("tid=-?[0-9]+|^#[0-9]+ t[0-9]+|H(conn|obj)=-?[0-9]+|MsgId=[^ ]*");
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(std::regex_replace(line, numbers, "#"));
    std::sort(lines.begin(), lines.end());
    std::string sorted;
    for (const std::string &line : lines) sorted += line + "\n";
    return sorted;
}

bool hasThreads(const Run &run)
{
    const auto &arguments = run.arguments;
    return std::any_of(arguments.begin(), arguments.end(),
                       [](const std::string &argument) { return argument == "-nt" || argument == "-ni"; });
}

// Opened less closed, by kind, where it is not zero.
std::string balanceOf(const std::string &record)
{
    static const std::map<std::string, std::pair<std::string, int>> kinds = {
        {"MQCONN", {"connection", 1}}, {"MQCONNX", {"connection", 1}}, {"MQDISC", {"connection", -1}},
        {"MQOPEN", {"object", 1}},     {"MQCLOSE", {"object", -1}},    {"MQCRTMH", {"message handle", 1}},
        {"MQDLTMH", {"message handle", -1}}};
    std::map<std::string, int> balance;
    Lines unused;
    for (const RecordedCall &call : readRecord(record, unused)) {
        const auto kind = kinds.find(call.name);
        if (kind == kinds.end() || call.text.find("CompCode=2") != std::string::npos) continue;
        balance[kind->second.first] += kind->second.second;
    }
    std::string text;
    for (const auto &[kind, open] : balance) {
        if (open != 0) text += std::to_string(open) + " " + kind + " left open; ";
    }
    return text;
}

Faulted runWith(const Run &run, const std::string &fault, const Options &options)
{
    std::string folder = (std::filesystem::temp_directory_path() / "mqrig-sweep-XXXXXX").string();
    if (::mkdtemp(folder.data()) == nullptr) throw std::runtime_error("cannot make " + folder);
    Run faulted = run;
    faulted.setup.faults.emplace_back("MQRIG_TEST_NTH", fault);
    faulted.setup.faults.emplace_back("MQRIG_TEST_NTH_REPORT", folder + "/report");
    const Outcome outcome = runClient(faulted, false, options.programs, folder);
    Faulted result;
    result.trouble = outcome.trouble;
    const bool threads = hasThreads(run);
    result.deed = {outcome.exit, comparable(outcome.out, threads), comparable(outcome.err, threads),
                   comparable(outcome.record, threads), {}};
    result.unbalanced = balanceOf(outcome.record);
    std::istringstream report(contentsOf(folder + "/report"));
    for (std::string line; std::getline(report, line);) {
        const std::size_t blank = line.find(' ');
        if (line.starts_with("descriptor ")) result.descriptors += line + "\n";
        else result.counts[line.substr(0, blank)] = std::stol(line.substr(blank));
    }
    for (const auto &entry : std::filesystem::recursive_directory_iterator(folder)) {
        const std::string name = std::filesystem::relative(entry.path(), folder).string();
        if (entry.is_regular_file() && name != "script" && name != "record" && name != "report") {
            result.deed.files[name] = contentsOf(entry.path());
        }
    }
    std::filesystem::remove_all(folder);
    return result;
}

// Where nothing can be written there is no report. A file whose status cannot be had ends its directory without one.
bool mayBeSilent(CallClass which) { return which == CallWrite || which == CallStat; }

// What is wrong with a run; empty if nothing is.
std::string faultOf(const Faulted &run, const Deed &clean, CallClass which)
{
    const Deed &deed = run.deed;
    if (!run.trouble.empty()) return run.trouble;
    if (deed.exit == sanitizerExit) return "a sanitizer's finding";
    if (deed.exit.size() != 1 || deed.exit > "3") return "exit " + deed.exit;
    if (!run.descriptors.empty()) return "left open: " + run.descriptors;
    if (!run.unbalanced.empty() && deed.err == clean.err) return run.unbalanced;
    if (deed == clean) return {};
    if (run.counts.contains("failed") && run.counts.at("failed") == 0) return "differs, and nothing has failed";
    if (deed.err == clean.err && !mayBeSilent(which)) return "differs without a word on standard error";
    if (deed.exit == "0" && deed.files != clean.files) return "a file differs behind a good exit code";
    if (deed.exit == "0" && deed.out != clean.out && which == CallWrite) return "output lost behind a good exit code";
    return {};
}

class Sweep {
public:
    explicit Sweep(const Options &options) : options_(options) {}

    bool passes(const Case &tested)
    {
        const Run &run = tested.runs.front();
        const Faulted clean = runWith(run, "count", options_);
        const std::string unclean = faultOf(clean, clean.deed, CallMemory);
        if (!unclean.empty()) return complain(tested, "without a fault", unclean, clean);
        bool passed = true;
        std::string summary;
        for (int number = 0; number < CallClasses; ++number) {
            const auto which = static_cast<CallClass>(number);
            const std::string name = nthCallName(which);
            const auto counted = clean.counts.find(name);
            if (counted == clean.counts.end()) return complain(tested, "without a fault", "no report", clean);
            if (counted->second > 0) summary += " " + name + " " + std::to_string(counted->second);
            if (which == CallMemory && hasThreads(run) && sanitizersStartThreads) continue;
            for (const long nth : places(counted->second)) {
                for (const char *how : {" once", " good"}) {
                    const std::string fault = name + " " + std::to_string(nth) + how;
                    const Faulted faulted = runWith(run, fault, options_);
                    ++runs_;
                    const std::string wrong = faultOf(faulted, clean.deed, which);
                    if (!wrong.empty()) passed = complain(tested, fault, wrong, faulted);
                }
            }
        }
        if (runWith(run, "count", options_).deed != clean.deed) {
            passed = complain(tested, "behind all faults", "is not what it was", clean);
        }
        std::printf("%s:%s; %ld runs with a fault\n", tested.name.c_str(), summary.c_str(), runs_);
        return passed;
    }

private:
    std::vector<long> places(long count) const
    {
        std::vector<long> places;
        const long step = options_.sample == 0 ? 1 : std::max(1L, (count + options_.sample - 1) / options_.sample);
        for (long nth = 1; nth <= count; nth += step) places.push_back(nth);
        return places;
    }

    static bool complain(const Case &tested, const std::string &fault, const std::string &wrong, const Faulted &run)
    {
        std::printf("%s, %s: %s\n", tested.name.c_str(), fault.c_str(), wrong.c_str());
        std::printf("  exit %s\n  out: %s\n  err: %s\n", run.deed.exit.c_str(), run.deed.out.substr(0, 600).c_str(),
                    run.deed.err.substr(0, 4000).c_str());
        return false;
    }

    const Options &options_;
    long runs_ = 0;
};

} // namespace

int main(int argc, char **argv)
{
    try {
        const Options options = optionsOf(argc, argv);
        // The sanitizers' findings get an exit code that the client does not have.
        ::setenv("ASAN_OPTIONS", (std::string("alloc_dealloc_mismatch=0:exitcode=") + sanitizerExit).c_str(), 1);
        ::setenv("UBSAN_OPTIONS", (std::string("exitcode=") + sanitizerExit).c_str(), 1);
        bool passed = true;
        int cases = 0;
        for (const Case &tested : readTranscript(options.file)) {
            if (!options.caseName.empty() && tested.name != options.caseName) continue;
            ++cases;
            passed = Sweep(options).passes(tested) && passed;
        }
        if (cases == 0) throw std::runtime_error("no such case: " + options.caseName);
        return passed ? 0 : 1;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "client_fault_sweep: %s\n", error.what());
        return 2;
    }
}
