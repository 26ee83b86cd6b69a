#include <gtest/gtest.h>

#include <random>

#include "transcript.h"

namespace {

TEST(RigqmHostileInput, RandomBytesOnStandardInputAreAnsweredAndCounted)
{
    const TemporaryFolder folder;
    ASSERT_EQ(runShell("rigqm create QM1", "", folder.path()).exitCode, 0);
    std::mt19937 random(3);
    for (int run = 0; run < 20; ++run) {
        std::string input;
        for (int i = 0; i < 5000; ++i)
            input += static_cast<char>(random() % 256);
        const CommandResult result = runShell("rigqm mqsc QM1", input, folder.path());
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_NE(result.output.find("commands read.\n"), std::string::npos);
        EXPECT_EQ(result.error, "");
    }
}

TEST(RigqmHostileInput, EndlessLineIsOneCommandThatIsTooLong)
{
    const TemporaryFolder folder;
    ASSERT_EQ(runShell("rigqm create QM1", "", folder.path()).exitCode, 0);
    const CommandResult result = runShell(
        "{ head -c 20000000 /dev/zero | tr '\\0' x; echo; echo PING QMGR; } | rigqm mqsc QM1", "", folder.path());
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_NE(result.output.find("a command has at most 32768 characters"), std::string::npos);
    EXPECT_NE(result.output.find("AMQ8415I: Queue manager QM1 responds."), std::string::npos);
    EXPECT_NE(result.output.find("2 commands read.\n1 syntax error.\n"), std::string::npos);
}

TEST(RigqmHostileInput, LongAndStrangeArgumentsGetOneLine)
{
    const TemporaryFolder folder;
    for (const std::string &argument : {std::string(100000, 'A'), std::string("a b"), std::string("\xff\xfe"),
                                        std::string("QM\n1"), std::string("")}) {
        for (const char *command : {"create", "start", "end", "delete", "mqsc"}) {
            const CommandResult result =
                runShell(std::string("rigqm ") + command + " -- '" + argument + "'", "", folder.path() / "store");
            if (argument.empty() && std::string(command) == "mqsc") continue;
            EXPECT_EQ(result.exitCode, 1) << command;
            EXPECT_EQ(result.output, "") << command;
            EXPECT_TRUE(result.error.starts_with("rigqm: ")) << result.error;
            EXPECT_LT(result.error.size(), 400U) << command;
        }
    }
}

} // namespace
