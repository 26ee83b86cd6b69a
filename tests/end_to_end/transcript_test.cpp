#include <gtest/gtest.h>

#include <algorithm>

#include "transcript.h"

namespace {

std::vector<std::string> transcripts()
{
    std::vector<std::string> names;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(TRANSCRIPT_FOLDER)) {
        if (entry.path().extension() != ".transcript") continue;
        names.push_back(std::filesystem::relative(entry.path(), TRANSCRIPT_FOLDER).replace_extension().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string joined(const std::vector<std::string> &lines)
{
    std::string text;
    for (const std::string &line : lines)
        text += line + '\n';
    return text;
}

class Transcript : public testing::TestWithParam<std::string> {};

TEST_P(Transcript, HoldsToTheEnd)
{
    const TemporaryFolder folder;
    const std::filesystem::path store = folder.path() / "store";
    const auto steps = readTranscript(std::filesystem::path(TRANSCRIPT_FOLDER) / (GetParam() + ".transcript"));
    ASSERT_FALSE(steps.empty());
    for (const TranscriptStep &step : steps) {
        const CommandResult result = runShell(step.command, step.input, store);
        EXPECT_TRUE(matches(step.output, result.output, store))
            << "line " << step.line << ": " << step.command << "\nexpected:\n"
            << joined(step.output) << "got:\n"
            << result.output;
        EXPECT_TRUE(matches(step.error, result.error, store))
            << "line " << step.line << ": " << step.command << "\nexpected on standard error:\n"
            << joined(step.error) << "got:\n"
            << result.error;
        EXPECT_EQ(result.exitCode, step.exitCode) << "line " << step.line << ": " << step.command;
    }
}

// "mqrig/put_and_get" becomes mqrig_put_and_get.
std::string testName(const testing::TestParamInfo<std::string> &info)
{
    std::string name = info.param;
    std::replace(name.begin(), name.end(), '/', '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(EndToEnd, Transcript, testing::ValuesIn(transcripts()), testName);

} // namespace
