#include "transcript.h"

#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace {

std::string contentOf(const std::filesystem::path &file)
{
    std::ifstream stream(file, std::ios::binary);
    std::stringstream content;
    content << stream.rdbuf();
    return content.str();
}

std::string escaped(const std::string &text)
{
    std::string pattern;
    for (const char c : text) {
        if (std::string_view("^$\\.*+?()[]{}|/").find(c) != std::string_view::npos) pattern += '\\';
        pattern += c;
    }
    return pattern;
}

std::string patternOf(const std::string &line, const std::filesystem::path &store)
{
    const std::pair<std::string, std::string> placeholders[] = {
        {"{date}", "\\d{4}-\\d{2}-\\d{2}"},
        {"{time}", "\\d{2}\\.\\d{2}\\.\\d{2}"},
        {"{stamp}", "\\[\\d\\d/\\d\\d/\\d\\d \\d\\d:\\d\\d:\\d\\d\\.\\d{9}\\]"},
        {"{number}", "\\d+"},
        {"{store}", escaped(store.string())},
        {"{any}", ".*"},
    };
    std::string pattern;
    for (std::size_t i = 0; i < line.size();) {
        bool replaced = false;
        for (const auto &[name, expression] : placeholders) {
            if (line.compare(i, name.size(), name) != 0) continue;
            pattern += expression;
            i += name.size();
            replaced = true;
            break;
        }
        if (!replaced) pattern += escaped(std::string(1, line[i++]));
    }
    return pattern;
}

} // namespace

TemporaryFolder::TemporaryFolder()
{
    char pattern[] = "/tmp/mqrig-end-to-end-XXXXXX";
    const char *made = mkdtemp(pattern);
    if (made == nullptr) throw std::runtime_error("mkdtemp failed");
    path_ = made;
}

TemporaryFolder::~TemporaryFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

CommandResult runShell(const std::string &command, const std::string &input, const std::filesystem::path &store)
{
    const TemporaryFolder files;
    std::ofstream(files.path() / "in", std::ios::binary) << input;
    const std::string line = "cd '" + files.path().string() + "' && export MQRIG_STORE='" + store.string() +
                             "' PATH='" BIN_FOLDER ":'\"$PATH\" LD_LIBRARY_PATH='" MQI_LIBRARY_FOLDER
                             "' OTHER_MQI_LIBRARY='" OTHER_MQI_LIBRARY_FOLDER "' EXAMPLES='" EXAMPLE_FOLDER
                             "' LC_ALL=C TZ=UTC && { " + command +
                             "\n} <in >out 2>err";
    const int status = std::system(line.c_str());
    CommandResult result;
    result.output = contentOf(files.path() / "out");
    result.error = contentOf(files.path() / "err");
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return result;
}

std::vector<TranscriptStep> readTranscript(const std::filesystem::path &file)
{
    std::vector<TranscriptStep> steps;
    std::ifstream stream(file);
    std::string line;
    for (std::size_t number = 1; std::getline(stream, line); ++number) {
        if (line.starts_with("$ ")) {
            steps.push_back({number, line.substr(2), {}, {}, {}, 0});
        } else if (line.starts_with("#")) {
            continue;
        } else if (steps.empty()) {
            if (!line.empty()) throw std::runtime_error("a transcript begins with a command");
        } else if (line.starts_with("< ") || line == "<") {
            steps.back().input += (line.size() > 2 ? line.substr(2) : std::string()) + '\n';
        } else if (line.starts_with("! ")) {
            steps.back().error.push_back(line.substr(2));
        } else if (line.starts_with("? ")) {
            steps.back().exitCode = std::stoi(line.substr(2));
        } else {
            steps.back().output.push_back(line);
        }
    }
    // Empty lines before the next command part the steps for the eye.
    for (TranscriptStep &step : steps)
        while (!step.output.empty() && step.output.back().empty())
            step.output.pop_back();
    return steps;
}

bool matches(const std::vector<std::string> &expected, const std::string &actual, const std::filesystem::path &store)
{
    std::vector<std::string> lines;
    std::istringstream stream(actual);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    if (lines.size() != expected.size()) return false;
    for (std::size_t i = 0; i < lines.size(); ++i)
        if (lines[i] != expected[i] && !std::regex_match(lines[i], std::regex(patternOf(expected[i], store))))
            return false;
    return true;
}
