#include "check.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

namespace transcript {

namespace {

bool holds(const std::vector<std::string> &texts, const std::string &expected)
{
    return std::any_of(texts.begin(), texts.end(), [&](const std::string &text) { return matches(expected, text); });
}

std::string shown(const RecordedCall &call)
{
    std::string text = "    " + call.text + "\n";
    for (const std::string &detail : call.details) text += "        " + detail + "\n";
    return text;
}

// What is wrong with one call; empty when it is as expected.
std::string compare(const ExpectedCall &expected, const RecordedCall &call, bool exactly)
{
    if (expected.name != call.name) return "  expected " + expected.text + "\n";
    std::string faults;
    for (const std::string &argument : expected.arguments) {
        if (!holds(call.arguments, argument)) faults += "  - " + argument + "\n";
    }
    for (const std::string &detail : expected.details) {
        if (detail.starts_with("no ")) {
            const std::string head = detail.substr(3) + "=";
            if (std::any_of(call.details.begin(), call.details.end(),
                            [&](const std::string &text) { return text.starts_with(head); })) {
                faults += "  - " + detail + "\n";
            }
        } else if (!holds(call.details, detail)) {
            faults += "  -     " + detail + "\n";
        }
    }
    if (exactly) {
        for (const std::string &detail : call.details) {
            const bool listed = std::any_of(expected.details.begin(), expected.details.end(),
                                            [&](const std::string &text) { return matches(text, detail); });
            if (!listed) faults += "  +     " + detail + "\n";
        }
    }
    return faults;
}

std::string compareCalls(const CallsExpectation &expectation, const std::vector<RecordedCall> &record)
{
    std::vector<RecordedCall> calls;
    for (const RecordedCall &call : record) {
        const auto &names = expectation.names;
        if (names.empty() || std::find(names.begin(), names.end(), call.name) != names.end()) calls.push_back(call);
    }
    std::string report;
    for (std::size_t i = 0; i < std::max(calls.size(), expectation.calls.size()); ++i) {
        if (i >= calls.size()) {
            report += "call missing:\n    " + expectation.calls[i].text + "\n";
        } else if (i >= expectation.calls.size()) {
            report += "call not expected:\n" + shown(calls[i]);
        } else if (const std::string faults = compare(expectation.calls[i], calls[i], expectation.exactly);
                   !faults.empty()) {
            report += "call differs:\n" + shown(calls[i]) + faults;
        }
    }
    return report;
}

std::string compareOrder(const std::vector<std::string> &expected, const std::vector<RecordedCall> &record)
{
    std::vector<std::string> names;
    for (const RecordedCall &call : record) names.push_back(call.name);
    return names == expected ? "" : "order of calls:\n" + difference(expected, names);
}

std::string compareFile(const std::string &name, const Lines &expected, const std::string &folder)
{
    std::ifstream file(folder + "/" + name, std::ios::binary);
    if (!file) return "file " + name + " is not there\n";
    const Lines actual = linesOf(std::string(std::istreambuf_iterator<char>(file), {}));
    return matches(expected, actual) ? "" : "file " + name + ":\n" + difference(expected, actual);
}

std::string compareFolder(const std::string &name, const Lines &expected, const std::string &folder)
{
    std::error_code error;
    std::vector<std::string> names;
    for (const auto &entry : std::filesystem::directory_iterator(folder + "/" + name, error)) {
        names.push_back(entry.path().filename().string());
    }
    if (error) return "folder " + name + " is not there\n";
    std::sort(names.begin(), names.end());
    std::string text;
    for (const std::string &entry : names) text += entry + "\n";
    const Lines actual = linesOf(text);
    return matches(expected, actual) ? "" : "folder " + name + ":\n" + difference(expected, actual);
}

} // namespace

std::vector<RecordedCall> readRecord(const std::string &record, Lines &unusedRules)
{
    std::vector<RecordedCall> calls;
    std::istringstream lines(record);
    std::string line;
    while (std::getline(lines, line)) {
        if (line.starts_with("unused ")) {
            unusedRules.push_back(line);
        } else if (line.starts_with("    ")) {
            if (!calls.empty()) calls.back().details.push_back(line.substr(4));
        } else {
            // "#3 t1 MQPUT Hconn=1 ..."
            auto words = wordsOf(line, Quotes::Keep);
            if (words.size() < 3) continue;
            RecordedCall call;
            call.name = words[2];
            call.arguments.assign(words.begin() + 3, words.end());
            call.arguments.push_back(words[1]);
            call.text = line.substr(line.find(words[2], words[0].size() + words[1].size() + 1));
            calls.push_back(std::move(call));
        }
    }
    return calls;
}

std::string check(const Run &run, const Outcome &outcome, const std::string &folder)
{
    if (outcome.exit == "127" && outcome.record.empty()) return "the client could not be started\n";
    std::string report;
    if (!outcome.trouble.empty()) report += outcome.trouble + "\n";
    if (const Lines out = linesOf(outcome.out); run.out && !matches(*run.out, out)) {
        report += "standard output:\n" + difference(*run.out, out);
    }
    if (const Lines err = linesOf(outcome.err); !matches(run.err, err)) {
        report += "standard error:\n" + difference(run.err, err);
    }
    if (run.exit != "any" && run.exit != outcome.exit) report += "exit: expected " + run.exit + ", got " + outcome.exit + "\n";
    Lines unusedRules;
    const auto record = readRecord(outcome.record, unusedRules);
    if (run.order) report += compareOrder(*run.order, record);
    for (const CallsExpectation &expectation : run.calls) report += compareCalls(expectation, record);
    for (const std::string &rule : unusedRules) report += "the script's " + rule + "\n";
    for (const auto &[name, lines] : run.filesAfter) report += compareFile(name, lines, folder);
    for (const auto &[name, lines] : run.foldersAfter) report += compareFolder(name, lines, folder);
    for (const std::string &name : run.absentAfter) {
        if (std::filesystem::exists(folder + "/" + name)) report += name + " is there\n";
    }
    return report;
}

} // namespace transcript
