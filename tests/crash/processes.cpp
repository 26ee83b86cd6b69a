#include "processes.h"

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>

#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace mqrig::crash {

std::chrono::steady_clock::duration patience = std::chrono::seconds(15);

pid_t startProcess(const std::function<int()> &body)
{
    fflush(nullptr);
    const pid_t parent = getpid();
    const pid_t child = fork();
    if (child < 0) abort();
    if (child != 0) return child;
    // Nobody outlives the controller.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) _exit(1);
    int code = 1;
    try {
        code = body();
    } catch (const std::exception &error) {
        fprintf(stderr, "%s\n", error.what());
    }
    _exit(code);
}

int endOfProcess(pid_t process)
{
    const auto until = std::chrono::steady_clock::now() + 2 * patience;
    int status = 0;
    for (;;) {
        if (waitpid(process, &status, WNOHANG) == process) break;
        if (std::chrono::steady_clock::now() > until) {
            kill(process, SIGKILL);
            waitpid(process, &status, 0);
            return didNotEnd;
        }
        usleep(50);
    }
    return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

int runProcess(const std::function<int(int)> &body, std::string &answer)
{
    const int fd = memfd_create("answer", MFD_CLOEXEC);
    if (fd < 0) abort();
    const int end = endOfProcess(startProcess([&] { return body(fd); }));
    lseek(fd, 0, SEEK_SET);
    std::array<char, 65536> bytes{};
    for (ssize_t n = 0; (n = read(fd, bytes.data(), bytes.size())) > 0;)
        answer.append(bytes.data(), static_cast<std::size_t>(n));
    close(fd);
    return end;
}

int runProcess(const std::function<int()> &body)
{
    return endOfProcess(startProcess(body));
}

} // namespace mqrig::crash
