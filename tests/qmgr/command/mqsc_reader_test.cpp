#include "qmgr/command/mqsc_reader.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace mqrig::qmgr::command {
namespace {

struct Read {
    std::vector<CommandText> commands;
    std::vector<std::string> echoed; // "1:" before lines that begin a command, "-:" before others
};

Read readAll(const std::vector<std::string> &lines)
{
    Read read;
    std::size_t next = 0;
    MqscReader reader(
        [&]() -> std::optional<std::string> {
            if (next == lines.size()) return std::nullopt;
            return lines[next++];
        },
        [&](std::string_view line, bool begins) { read.echoed.push_back((begins ? "1:" : "-:") + std::string(line)); });
    while (auto command = reader.next())
        read.commands.push_back(std::move(*command));
    return read;
}

TEST(MqscReader, EachLineIsACommand)
{
    const Read read = readAll({"PING QMGR", "  DIS QMGR  "});
    ASSERT_EQ(read.commands.size(), 2U);
    EXPECT_EQ(read.commands[0].text(), "PING QMGR");
    EXPECT_EQ(read.commands[1].text(), "DIS QMGR  ");
}

TEST(MqscReader, CommentsAndEmptyLinesAreNothing)
{
    const Read read = readAll({"* a comment +", "", "   ", "PING QMGR"});
    ASSERT_EQ(read.commands.size(), 1U);
    EXPECT_EQ(read.commands[0].text(), "PING QMGR");
    EXPECT_EQ(read.echoed, (std::vector<std::string>{"-:* a comment +", "-:", "-:   ", "1:PING QMGR"}));
}

TEST(MqscReader, PlusSkipsLeadingBlanksOfTheNextLine)
{
    const Read read = readAll({"DEF QL(A.+", "   B) MAXDEPTH(5)"});
    ASSERT_EQ(read.commands.size(), 1U);
    EXPECT_EQ(read.commands[0].text(), "DEF QL(A.B) MAXDEPTH(5)");
}

TEST(MqscReader, MinusKeepsLeadingBlanksOfTheNextLine)
{
    const Read read = readAll({"DEF QL(A) DESCR('x -  ", "  y')"});
    ASSERT_EQ(read.commands.size(), 1U);
    EXPECT_EQ(read.commands[0].text(), "DEF QL(A) DESCR('x   y')");
}

TEST(MqscReader, CommentsMayStandInsideACommand)
{
    const Read read = readAll({"DEF QL(A) +", "* why", "", "SHARE"});
    ASSERT_EQ(read.commands.size(), 1U);
    EXPECT_EQ(read.commands[0].text(), "DEF QL(A) SHARE");
    EXPECT_EQ(read.echoed[1], "-:* why");
    EXPECT_EQ(read.echoed[3], "-:SHARE");
}

TEST(MqscReader, InputThatEndsInsideACommandIsSaid)
{
    const Read read = readAll({"DEF QL(A) +"});
    ASSERT_EQ(read.commands.size(), 1U);
    EXPECT_TRUE(read.commands[0].unfinished());
    EXPECT_FALSE(readAll({"DEF QL(A)"}).commands[0].unfinished());
}

TEST(MqscReader, SignAloneOnALineContinues)
{
    const Read read = readAll({"PING +", "+", "-", "QMGR"});
    ASSERT_EQ(read.commands.size(), 1U);
    EXPECT_EQ(read.commands[0].text(), "PING QMGR");
}

TEST(MqscReader, PositionsAreThoseOfTheInput)
{
    const Read read = readAll({"* comment", "DEF QL(A) +", "   SHARE"});
    const CommandText &command = read.commands[0];
    EXPECT_EQ(command.at(0).line, 2U);
    EXPECT_EQ(command.at(0).column, 1U);
    const std::size_t share = command.text().find("SHARE");
    EXPECT_EQ(command.at(share).line, 3U);
    EXPECT_EQ(command.at(share).column, 4U);
}

TEST(MqscReader, CommandHasAtMost32768Characters)
{
    EXPECT_FALSE(readAll({std::string(32768, 'x')}).commands[0].tooLong());
    const Read read = readAll({std::string(32769, 'x'), "PING QMGR"});
    ASSERT_EQ(read.commands.size(), 2U);
    EXPECT_TRUE(read.commands[0].tooLong());
    EXPECT_EQ(read.commands[1].text(), "PING QMGR");
}

TEST(MqscReader, CommandThatIsTooLongIsReadToItsEnd)
{
    std::vector<std::string> lines(100, std::string(1000, 'x') + "+");
    lines.push_back("the end");
    lines.push_back("PING QMGR");
    const Read read = readAll(lines);
    ASSERT_EQ(read.commands.size(), 2U);
    EXPECT_TRUE(read.commands[0].tooLong());
    EXPECT_LE(read.commands[0].text().size(), maxCommandLength);
}

} // namespace
} // namespace mqrig::qmgr::command
