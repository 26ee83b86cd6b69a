// Processes that move messages between two queues are killed at random moments. Whatever happens, every message is on
// exactly one of the queues in the end.

#include <algorithm>
#include <cstdlib>
#include <random>
#include <set>

#include "qmgr/store/seams.h"
#include "store_test.h"

#include <csignal>
#include <unistd.h>

namespace mqrig::qmgr::store::test {
namespace {

using Kills = StoreTest;

constexpr int messages = 24;

// Three kills each. MQRIG_KILL_ROUNDS asks for more than the few that fit an everyday run.
int rounds()
{
    const char *wanted = getenv("MQRIG_KILL_ROUNDS"); // NOLINT(concurrency-mt-unsafe)
    return wanted == nullptr ? 40 : atoi(wanted);
}

void moveForEver(const std::filesystem::path &folder, QueueId from, QueueId to, int kind)
{
    const auto attached = attach(folder, "QM1");
    if (attached.outcome.failed()) _exit(1);
    for (int n = 0;; ++n) {
        UnitOfWork unit(*attached.attachment);
        const int count = 1 + n % 3;
        for (int each = 0; each < count; ++each) {
            const std::string text = unit.get(from);
            if (text.empty()) break;
            const bool persistent = text.front() == 'p';
            if (unit.put(to, text, {.persistence = persistent ? MQPER_PERSISTENT : MQPER_NOT_PERSISTENT}).failed())
                _exit(2);
        }
        const Outcome outcome = (n + kind) % 5 == 0 ? unit.backOut() : unit.commit();
        if (outcome != success()) _exit(3);
        std::swap(from, to);
    }
}

TEST_F(Kills, AtRandomMomentsLoseAndDoubleNothing)
{
    std::mt19937 random(20240607); // NOLINT: the same moments every time, as far as the machine lets them
    std::set<std::string> all;
    for (int n = 0; n < messages; ++n) {
        const bool persistent = n % 3 != 0;
        const std::string text = (persistent ? "p" : "n") + std::to_string(n);
        all.insert(text);
        ASSERT_EQ(put(*connect(), n % 2 == 0 ? q1_ : q2_, text,
                      {.persistence = persistent ? MQPER_PERSISTENT : MQPER_NOT_PERSISTENT}),
                  success());
    }
    const auto check = [&](const std::set<std::string> &expected) {
        const auto a = connect();
        static_cast<void>(a->releaseDead());
        std::vector<std::string> found = browse(*a, q1_);
        const auto second = browse(*a, q2_);
        EXPECT_EQ(statusOf(*a, q1_).depth, found.size());
        EXPECT_EQ(statusOf(*a, q2_).depth, second.size());
        EXPECT_EQ(statusOf(*a, q1_).held + statusOf(*a, q2_).held, 0U);
        EXPECT_EQ(statusOf(*a, q1_).uncommitted + statusOf(*a, q2_).uncommitted, 0U);
        found.insert(found.end(), second.begin(), second.end());
        EXPECT_EQ(found.size(), expected.size());
        EXPECT_EQ(std::set<std::string>(found.begin(), found.end()), expected);
    };
    for (int round = 0; round < rounds() && !HasFailure(); ++round) {
        std::vector<pid_t> children;
        for (int child = 0; child < 3; ++child) {
            children.push_back(startProcess([&] {
                moveForEver(folder_, q1_, q2_, child);
                return 0;
            }));
        }
        for (const pid_t child : children) {
            usleep(static_cast<useconds_t>(random() % 30'000));
            kill(child, SIGKILL);
        }
        for (const pid_t child : children)
            EXPECT_EQ(endOfProcess(child), -SIGKILL);
        check(all);
    }
    ASSERT_EQ(endQueueManager(folder_, "QM1", End::Immediate), success());
    ASSERT_EQ(startQueueManager(folder_, "QM1"), success());
    std::erase_if(all, [](const std::string &text) { return text.front() == 'n'; });
    check(all);
}

} // namespace
} // namespace mqrig::qmgr::store::test
