// Another process that does its work and then waits to be killed, as a program that a test has to kill does.
#pragma once

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <stdexcept>

namespace mqrig::test {

class WaitingProgram {
public:
    // The work is done in the new process, which connects by itself, and answers whether it has succeeded. It is done
    // when this is back.
    explicit WaitingProgram(const std::function<bool()> &work)
    {
        int ready[2];
        if (pipe(ready) != 0) throw std::runtime_error("pipe");
        pid_ = fork();
        if (pid_ < 0) throw std::runtime_error("fork");
        if (pid_ == 0) run(work, ready);
        ::close(ready[1]);
        char answer = 0;
        EXPECT_EQ(read(ready[0], &answer, 1), 1) << "it has ended";
        EXPECT_EQ(answer, 'y');
        ::close(ready[0]);
    }
    WaitingProgram(const WaitingProgram &) = delete;
    WaitingProgram &operator=(const WaitingProgram &) = delete;
    ~WaitingProgram() { kill(); }

    pid_t pid() const { return pid_; }
    void kill()
    {
        if (pid_ <= 0) return;
        ::kill(pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
        pid_ = 0;
    }

private:
    [[noreturn]] static void run(const std::function<bool()> &work, int (&ready)[2]) noexcept
    {
        ::close(ready[0]);
        char answer = 'n';
        try {
            if (work()) answer = 'y';
        } catch (...) {
            _exit(1);
        }
        // It goes with the test, also where that is killed; asked for last, for a change of the user takes it back.
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (write(ready[1], &answer, 1) != 1) _exit(1);
        for (;;)
            pause();
    }

    pid_t pid_ = 0;
};

} // namespace mqrig::test
