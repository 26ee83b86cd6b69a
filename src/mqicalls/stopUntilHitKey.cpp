#include "mqicalls.h"

#include "common.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <termios.h>
#include <unistd.h>

namespace {

/// Applies the attributes at once and reports a failure; the lock is held.
void set_terminal(const termios &attributes)
{
    const int code = tcsetattr(STDIN_FILENO, TCSANOW, &attributes);
    if (code == 0) return;
    const int error = errno;
    report_failure(nullptr, {"stopUntilHitKey"}, "tcsetattr()", error, "tcsetattr() failed. return code=%d\n", code);
}

/// The terminal as it was before the prompt, for the signal handler below. One prompt at a time: the lock is held.
termios saved_terminal{};

/// Gives the terminal back and lets the signal do what it does by default. Only calls that a signal handler may make;
/// the default action is in force again (SA_RESETHAND), and the signal comes when the handler returns.
extern "C" void restore_terminal_and_end(int number)
{
    tcsetattr(STDIN_FILENO, TCSANOW, &saved_terminal);
    std::raise(number);
}

/// As long as it lives, a signal that ends the program leaves the terminal as it was. Signals that the program ignores
/// or handles are left alone.
class TerminalSavedFromSignals {
public:
    TerminalSavedFromSignals()
    {
        struct sigaction restores {};
        restores.sa_handler = restore_terminal_and_end;
        restores.sa_flags = static_cast<int>(SA_RESETHAND);
        sigemptyset(&restores.sa_mask);
        // A program in the background would be stopped by setting the terminal.
        sigaddset(&restores.sa_mask, SIGTTOU);
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            sigaction(numbers[i], nullptr, &before_[i]);
            if (endsProgram(before_[i])) sigaction(numbers[i], &restores, nullptr);
        }
    }
    ~TerminalSavedFromSignals()
    {
        for (std::size_t i = 0; i < numbers.size(); ++i)
            if (endsProgram(before_[i])) sigaction(numbers[i], &before_[i], nullptr);
    }
    TerminalSavedFromSignals(const TerminalSavedFromSignals &) = delete;
    TerminalSavedFromSignals &operator=(const TerminalSavedFromSignals &) = delete;

private:
    static constexpr std::array numbers{SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGALRM, SIGUSR1, SIGUSR2, SIGPIPE};

    static bool endsProgram(const struct sigaction &action)
    {
        return (action.sa_flags & SA_SIGINFO) == 0 && action.sa_handler == SIG_DFL;
    }

    std::array<struct sigaction, numbers.size()> before_{};
};

/// Reads one key from the terminal, unbuffered and not echoed. ISIG stays: an interrupt key still ends the program.
void wait_for_key()
{
    const int code = tcgetattr(STDIN_FILENO, &saved_terminal);
    if (code != 0) {
        const int error = errno;
        report_failure(nullptr, {"stopUntilHitKey"}, "tcgetattr()", error, "tcgetattr() failed. return code=%d\n",
                       code);
        return;
    }
    const TerminalSavedFromSignals protection;
    termios unbuffered = saved_terminal;
    unbuffered.c_iflag &= ~static_cast<tcflag_t>(BRKINT | ISTRIP | IXON);
    unbuffered.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO | ECHOE | ECHOK | ECHONL | IEXTEN);
    unbuffered.c_cc[VMIN] = 1;
    unbuffered.c_cc[VTIME] = 0;
    set_terminal(unbuffered);
    std::getchar();
    set_terminal(saved_terminal);
}

} // namespace

// The lock is held while the program waits, so that other threads stop at their next line until the key is hit.
void stopUntilHitKey(RunParams *params, const char *name)
{
    if (params->StopApiName == nullptr) return;
    const LockedSection locked(params);
    if (locked.status() != StatusOk) {
        std::puts("lock error!");
        return;
    }
    if (std::strcmp(params->StopApiName, name) != 0) return;

    std::printf("stop before calling %s().\n", name);
    std::puts("Hit Any Key!!!");
    flush_output();
    wait_for_key();
}
