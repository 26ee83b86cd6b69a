// A requester and a replier in two processes.
#include <gtest/gtest.h>

#include <set>
#include <sstream>

#include "transcript.h"

namespace {

// What stands behind the mark, line by line.
std::vector<std::string> behind(const std::string &mark, const std::string &text)
{
    std::vector<std::string> found;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        if (const std::size_t at = line.find(mark); at != std::string::npos)
            found.push_back(line.substr(at + mark.size()));
    return found;
}

TEST(RequestReply, TenThousandRoundsAreAnsweredEachWithItsOwnReply)
{
    const TemporaryFolder folder;
    ASSERT_EQ(runShell("rigqm create QM1 && rigqm mqsc QM1 -e 'DEFINE QLOCAL(REQ)' -e 'DEFINE QLOCAL(REP)'", "",
                       folder.path())
                  .exitCode,
              0);
    // -ac numbers the requests, so that a reply shows which one it answers; -mc takes no other reply than that to the
    // request just sent.
    const CommandResult result =
        runShell("mqrig -qm QM1 -q REQ -oq '*' -r MQGMO_WAIT -wi 3000 -ss MQMT_REPLY >replier & "
                 "mqrig -qm QM1 -q REQ -iq REP -m ping -ac -n 10000 -ss -mc MQGMO_WAIT -wi 30000; code=$?; "
                 "wait; tail -n 1 replier >&2; exit $code",
                 "", folder.path());
    ASSERT_EQ(result.exitCode, 0) << result.error;
    const std::vector<std::string> requests = behind(" put message: ", result.output);
    ASSERT_EQ(requests.size(), 10000U);
    EXPECT_EQ(std::set<std::string>(requests.begin(), requests.end()).size(), requests.size());
    EXPECT_EQ(behind(" get message : ", result.output), requests);
    EXPECT_EQ(runShell("mqrig -qm QM1 -q REP -br", "", folder.path()).exitCode, 2) << "a reply is left over";
}

} // namespace
