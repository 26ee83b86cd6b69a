// The floor under request and reply: two processes that wake each other in turn through one shared word, and do
// nothing else. Prints the rounds per second. Usage: futex_ping_pong ROUNDS
#include <linux/futex.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <new>

namespace {

using Word = std::atomic<std::uint32_t>;

// Waits for its turn, then gives it to the other side.
void play(Word &turn, std::uint32_t own, long rounds)
{
    for (long round = 0; round < rounds; ++round) {
        for (std::uint32_t now = turn.load(); now != own; now = turn.load())
            syscall(SYS_futex, &turn, FUTEX_WAIT, now, nullptr, nullptr, 0);
        turn.store(1 - own);
        syscall(SYS_futex, &turn, FUTEX_WAKE, 1, nullptr, nullptr, 0);
    }
}

} // namespace

int main(int argc, char **argv)
{
    const long rounds = argc > 1 ? std::strtol(argv[1], nullptr, 10) : 100000;
    void *shared = mmap(nullptr, sizeof(Word), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (shared == MAP_FAILED) return 1;
    Word &turn = *new (shared) Word(0);
    const pid_t other = fork();
    if (other < 0) return 1;
    if (other == 0) {
        play(turn, 1, rounds);
        _exit(0);
    }
    const auto start = std::chrono::steady_clock::now();
    play(turn, 0, rounds);
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    waitpid(other, nullptr, 0);
    std::printf("%.0f rounds a second, %.1f us each\n", static_cast<double>(rounds) / taken.count(),
                taken.count() / static_cast<double>(rounds) * 1e6);
}
