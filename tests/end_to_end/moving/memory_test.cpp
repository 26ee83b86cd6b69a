// The memory that large bodies and large directories want.
#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "transcript.h"

namespace {

constexpr const char *oneLargeQueue = "rigqm create QM1 && rigqm mqsc QM1 -e 'ALTER QMGR MAXMSGL(104857600)' "
                                      "-e 'DEFINE QLOCAL(A) MAXMSGL(104857600) MAXDEPTH(200000)' "
                                      "-e 'DEFINE QLOCAL(B) MAXMSGL(104857600)'";
constexpr long mebibyte = 1048576;

// Runs the command and watches how much memory of its own the process has in use; the highest value seen, in KiB.
std::string watched(const std::string &command)
{
    return command + " >/dev/null & pid=$!; peak=0; while kill -0 $pid 2>/dev/null; do "
                     "now=$(awk '/^RssAnon/ {print $2}' /proc/$pid/status 2>/dev/null); "
                     "[ \"${now:-0}\" -gt $peak ] && peak=$now; done; wait $pid; code=$?; echo $peak; exit $code";
}

long peakOf(const std::string &command, int exitCode, const std::filesystem::path &store)
{
    const CommandResult result = runShell(watched(command), "", store);
    EXPECT_EQ(result.exitCode, exitCode) << command << "\n" << result.error;
    return std::atol(result.output.c_str()) * 1024;
}

TEST(Memory, LargestBodyTakesAtMostThreeTimesItsLength)
{
    const TemporaryFolder folder;
    const std::filesystem::path store = folder.path() / "store";
    ASSERT_EQ(runShell(oneLargeQueue, "", store).exitCode, 0);
    const std::string file = (folder.path() / "body").string();
    std::ofstream(file, std::ios::binary) << std::string(100 * mebibyte, 'x');
    constexpr long limit = (3 * 100 + 32) * mebibyte;

    const long put = peakOf("mqrig -qm QM1 -q A -f '" + file + "'", 0, store);
    EXPECT_GE(put, 100 * mebibyte); // it was seen at work
    EXPECT_LE(put, limit);
    EXPECT_LE(peakOf("mqrig -qm QM1 -q A -oq B -sz 104857600 -ss", 0, store), limit);
    EXPECT_LE(peakOf("mqrig -qm QM1 -q B -o saved -sz 104857600", 0, store), limit);
}

TEST(Memory, DirectoryOfManyFilesIsNotLoaded)
{
    const TemporaryFolder folder;
    const std::filesystem::path store = folder.path() / "store";
    ASSERT_EQ(runShell(oneLargeQueue, "", store).exitCode, 0);
    const std::string directory = (folder.path() / "many").string();
    ASSERT_EQ(
        runShell("mkdir '" + directory + "' && cd '" + directory + "' && seq 100000 | xargs touch", "", store).exitCode,
        0);
    EXPECT_LE(peakOf("mqrig -qm QM1 -q A -d '" + directory + "'", 0, store), 8 * mebibyte);
    EXPECT_EQ(runShell("rigqm mqsc QM1 -e 'DISPLAY QLOCAL(A) CURDEPTH' | grep -o 'CURDEPTH([0-9]*)'", "", store).output,
              "CURDEPTH(100000)\n");
}

} // namespace
