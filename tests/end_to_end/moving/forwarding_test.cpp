// Queue to queue under syncpoint, killed at random moments and started again until the queue is empty.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <sstream>

#include "transcript.h"

namespace {

// MQRIG_FORWARDING_KILLS asks for more than the few that fit an everyday run.
int kills()
{
    const char *wanted = std::getenv("MQRIG_FORWARDING_KILLS"); // NOLINT(concurrency-mt-unsafe)
    return wanted == nullptr ? 20 : std::atoi(wanted);
}

// The bodies of the messages got from the queue, in order.
std::vector<std::string> drain(const std::string &queue, const std::filesystem::path &store)
{
    const CommandResult got = runShell("mqrig -qm QM1 -q " + queue + " -r", "", store);
    std::vector<std::string> bodies;
    std::istringstream lines(got.output);
    const std::string mark = " get message : ";
    for (std::string line; std::getline(lines, line);)
        if (const std::size_t at = line.find(mark); at != std::string::npos)
            bodies.push_back(line.substr(at + mark.size()));
    return bodies;
}

TEST(Forwarding, KilledAtRandomMomentsLosesAndDoublesNothing)
{
    const TemporaryFolder folder;
    const std::filesystem::path store = folder.path() / "store";
    ASSERT_EQ(
        runShell("rigqm create QM1 && rigqm mqsc QM1 -e 'DEFINE QLOCAL(A)' -e 'DEFINE QLOCAL(B)'", "", store).exitCode,
        0);
    constexpr int messages = 100;
    const std::string number = std::to_string(messages);
    std::mt19937 random(7); // NOLINT: the same moments every time, as far as the machine lets them
    std::uniform_int_distribution<int> milliseconds(3, 40);
    std::string from = "A";
    std::string to = "B";
    ASSERT_EQ(runShell("mqrig -qm QM1 -q A -m body -ac -n " + number + " MQPER_PERSISTENT", "", store).exitCode, 0);
    int killed = 0;
    for (int run = 0; killed < kills(); ++run) {
        ASSERT_LT(run, 100 * kills() + 100);
        const std::string forward =
            "mqrig -qm QM1 -q " + from + " -oq " + to + " -r MQGMO_SYNCPOINT -ss MQPMO_SYNCPOINT MQPER_PERSISTENT";
        // The shell waits until the killed process is gone and answers how it ended.
        const CommandResult result =
            runShell(forward + " & sleep 0." + std::to_string(1000 + milliseconds(random)).substr(1) +
                         "; kill -KILL $! 2>/dev/null; wait $!",
                     "", store);
        if (result.exitCode == 137) {
            ++killed;
            continue;
        }
        ASSERT_EQ(result.exitCode, 2) << result.error; // the queue is empty
        std::swap(from, to);
    }
    EXPECT_EQ(
        runShell("mqrig -qm QM1 -q " + from + " -oq " + to + " -r MQGMO_SYNCPOINT -ss MQPMO_SYNCPOINT MQPER_PERSISTENT",
                 "", store)
            .exitCode,
        2);
    EXPECT_TRUE(drain(from, store).empty());
    const std::vector<std::string> bodies = drain(to, store);
    ASSERT_EQ(bodies.size(), static_cast<std::size_t>(messages));
    for (int n = 1; n <= messages; ++n) {
        std::ostringstream expected;
        expected.width(8);
        expected.fill('0');
        expected << n << ": body";
        std::string text = expected.str();
        ASSERT_EQ(std::count(bodies.begin(), bodies.end(), text), 1) << text;
    }
}

} // namespace
