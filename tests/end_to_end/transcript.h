// Transcripts: commands as a user types them, and what must come out.
//
//   # a comment
//   $ rigqm mqsc QM1            the command, run by sh
//   < PING QMGR                 a line of its standard input
//   any other line              a line of its standard output
//   ! a line of its standard error
//   ? 1                         its exit code; 0 without this line
//
// In expected lines {date} stands for 2026-11-21, {time} for 09.30.05, {stamp} for the time stamp of a report line,
// {number} for digits, {store} for the store's folder and {any} for anything. Empty lines at the end of what a command
// writes part the steps for the eye.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

struct CommandResult {
    std::string output;
    std::string error;
    int exitCode = -1; // 128 + signal where one killed it
};

// Runs a shell command in a new working folder, with mqrig and rigqm on the path, on the embedded queue manager with
// this store. $OTHER_MQI_LIBRARY is the folder of another libmqm_r.so, $EXAMPLES that of the example files.
CommandResult runShell(const std::string &command, const std::string &input, const std::filesystem::path &store);

struct TranscriptStep {
    std::size_t line = 0;
    std::string command;
    std::string input;
    std::vector<std::string> output;
    std::vector<std::string> error;
    int exitCode = 0;
};
std::vector<TranscriptStep> readTranscript(const std::filesystem::path &file);

// Whether a text is these lines, patterns aside.
bool matches(const std::vector<std::string> &expected, const std::string &actual, const std::filesystem::path &store);

// A folder that goes with everything in it.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder &) = delete;
    TemporaryFolder &operator=(const TemporaryFolder &) = delete;

    const std::filesystem::path &path() const { return path_; }

private:
    std::filesystem::path path_;
};
