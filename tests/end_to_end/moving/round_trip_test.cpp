// Bodies of every size go from a directory to a queue, to another queue, and to a directory again.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "transcript.h"

namespace {

constexpr const char *twoLargeQueues = "rigqm create QM1 && rigqm mqsc QM1 -e 'ALTER QMGR MAXMSGL(104857600)' "
                                       "-e 'DEFINE QLOCAL(A) MAXMSGL(104857600)' "
                                       "-e 'DEFINE QLOCAL(B) MAXMSGL(104857600)'";

std::string contentOf(const std::filesystem::path &file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

// Contents in an order of their own: names and order of the files do not count.
std::vector<std::string> contentsOf(const std::filesystem::path &folder)
{
    std::vector<std::string> contents;
    for (const auto &entry : std::filesystem::directory_iterator(folder))
        contents.push_back(contentOf(entry.path()));
    std::sort(contents.begin(), contents.end());
    return contents;
}

void writeRandom(const std::filesystem::path &file, std::size_t size, std::mt19937_64 &random)
{
    std::string bytes(size, '\0');
    for (char &byte : bytes)
        byte = static_cast<char>(random());
    std::ofstream(file, std::ios::binary) << bytes;
}

TEST(RoundTrip, ThousandFilesComeBackByteForByte)
{
    const TemporaryFolder folder;
    const std::filesystem::path in = folder.path() / "in";
    const std::filesystem::path out = folder.path() / "out";
    std::filesystem::create_directory(in);
    std::mt19937_64 random(20240501); // NOLINT: the same files every time
    std::uniform_real_distribution<double> magnitude(0, 20);
    writeRandom(in / "empty", 0, random);
    writeRandom(in / "one mebibyte", 1048576, random);
    for (int n = 2; n < 999; ++n)
        writeRandom(in / std::to_string(n), static_cast<std::size_t>(std::exp2(magnitude(random))), random);
    writeRandom(in / "largest", 104857600, random);

    const std::filesystem::path store = folder.path() / "store";
    ASSERT_EQ(runShell(twoLargeQueues, "", store).exitCode, 0);
    const CommandResult put = runShell("mqrig -qm QM1 -q A -d '" + in.string() + "'", "", store);
    ASSERT_EQ(put.exitCode, 0) << put.error;
    const CommandResult moved =
        runShell("mqrig -qm QM1 -q A -oq B -r -sz 104857600 -ds 0 -ss -ds 0 >/dev/null", "", store);
    ASSERT_EQ(moved.exitCode, 2) << moved.error;
    const CommandResult saved = runShell("mqrig -qm QM1 -q B -g '" + out.string() + "' -r -sz 104857600", "", store);
    ASSERT_EQ(saved.exitCode, 2) << saved.error;

    const std::vector<std::string> expected = contentsOf(in);
    const std::vector<std::string> actual = contentsOf(out);
    ASSERT_EQ(expected.size(), 1000U);
    ASSERT_EQ(actual.size(), expected.size());
    EXPECT_TRUE(actual == expected);
}

} // namespace
