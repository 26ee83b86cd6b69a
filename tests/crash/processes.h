// Child processes of a crash run.
#pragma once

#include <chrono>
#include <functional>
#include <string>

#include <sys/types.h>

namespace mqrig::crash {

// How long what must come may take on a busy machine; after that it counts as not coming.
extern std::chrono::steady_clock::duration patience;

// Forks; the child ends with the answer of the body as exit code, or with `crashed` on an exception.
pid_t startProcess(const std::function<int()> &body);
// The exit code, minus the signal, or minus 1000 if it had to be killed because it did not end.
constexpr int didNotEnd = -1000;
int endOfProcess(pid_t process);
// Runs the body, which writes its answer to the descriptor.
int runProcess(const std::function<int(int)> &body, std::string &answer);
int runProcess(const std::function<int()> &body);

} // namespace mqrig::crash
