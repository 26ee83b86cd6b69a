#include "mqicalls.h"

#include "common.h"

#include <cerrno>
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

/// Reads one key from the terminal, unbuffered and not echoed. ISIG stays: an interrupt key still ends the program.
void wait_for_key()
{
    termios saved{};
    const int code = tcgetattr(STDIN_FILENO, &saved);
    if (code != 0) {
        const int error = errno;
        report_failure(nullptr, {"stopUntilHitKey"}, "tcgetattr()", error, "tcgetattr() failed. return code=%d\n",
                       code);
        return;
    }
    termios unbuffered = saved;
    unbuffered.c_iflag &= ~static_cast<tcflag_t>(BRKINT | ISTRIP | IXON);
    unbuffered.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO | ECHOE | ECHOK | ECHONL | IEXTEN);
    unbuffered.c_cc[VMIN] = 1;
    unbuffered.c_cc[VTIME] = 0;
    set_terminal(unbuffered);
    std::getchar();
    set_terminal(saved);
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
