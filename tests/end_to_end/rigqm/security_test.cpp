// What becomes of credentials that were given on the command line.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "transcript.h"

namespace {

constexpr const char *password = "hunter2-and-more";

std::string contentsOf(const std::filesystem::path &file)
{
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

TEST(Security, PasswordIsNeitherPrintedNorStored)
{
    const TemporaryFolder folder;
    const std::filesystem::path store = folder.path() / "store";
    ASSERT_EQ(runShell("rigqm create QM1 && rigqm mqsc QM1 -e 'DEFINE QLOCAL(Q1)'", "", store).exitCode, 0);
    const std::string credentials =
        std::string(" -cu alice -cp ") + password + " MQCSP_AUTH_USER_ID_AND_PWD MQCNO_VERSION_5";
    for (const char *work : {" -m hello -tr MQPER_PERSISTENT", " -tr -dpv", " -inq MQIA_CURRENT_Q_DEPTH -tr"}) {
        const CommandResult result = runShell("mqrig -qm QM1 -q Q1" + credentials + work, "", store);
        EXPECT_EQ(result.exitCode, 0) << work << result.error;
        EXPECT_NE(result.output.find("MQCONNX"), std::string::npos) << result.output;
        EXPECT_EQ((result.output + result.error).find(password), std::string::npos) << work;
    }
    int files = 0;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(store)) {
        if (!entry.is_regular_file()) continue;
        ++files;
        EXPECT_EQ(contentsOf(entry.path()).find(password), std::string::npos) << entry.path();
    }
    EXPECT_GE(files, 5);
}

TEST(Security, PasswordStandsInTheListOfProcesses)
{
    const TemporaryFolder folder;
    const std::filesystem::path store = folder.path() / "store";
    ASSERT_EQ(runShell("rigqm create QM1 && rigqm mqsc QM1 -e 'DEFINE QLOCAL(Q1)'", "", store).exitCode, 0);
    // Until the shell that starts it has become mqrig, the arguments are the shell's.
    const std::string waiting = std::string("mqrig -qm QM1 -q Q1 MQGMO_WAIT -wi 30000 -cu alice -cp ") + password +
                                " MQCSP_AUTH_USER_ID_AND_PWD MQCNO_VERSION_5 >/dev/null 2>&1 & pid=$!; "
                                "until grep -qsx mqrig /proc/$pid/comm; do sleep 0.02; done; "
                                "tr '\\0' ' ' </proc/$pid/cmdline; kill $pid; wait $pid 2>/dev/null; true";
    const CommandResult result = runShell(waiting, "", store);
    EXPECT_TRUE(result.output.starts_with("mqrig ")) << result.output;
    EXPECT_NE(result.output.find(password), std::string::npos) << result.output;
}

} // namespace
