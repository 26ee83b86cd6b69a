#include "qmgr/command/mqsc_layout.h"

#include <gtest/gtest.h>

namespace mqrig::qmgr::command {
namespace {

TEST(MqscLayout, TwoAttributesShareALine)
{
    std::vector<std::string> lines;
    Layout layout(lines);
    layout.add("QUEUE(Q1)");
    layout.add("TYPE(QLOCAL)");
    layout.add("CURDEPTH(0)");
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0], "   QUEUE(Q1)                               TYPE(QLOCAL)");
    EXPECT_EQ(lines[1], "   CURDEPTH(0)");
}

TEST(MqscLayout, WideAttributeHasALineOfItsOwn)
{
    std::vector<std::string> lines;
    Layout layout(lines);
    const std::string wide = "DESCR(" + std::string(60, 'x') + ")";
    layout.add("A(1)");
    layout.add(wide);
    layout.add("B(2)");
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[1], "   " + wide);
    EXPECT_EQ(lines[2], "   B(2)");
}

TEST(MqscLayout, NoTwoAttributesRunIntoEachOther)
{
    for (std::size_t width = 1; width < 90; ++width) {
        std::vector<std::string> lines;
        Layout layout(lines);
        layout.add(std::string(width, 'a'));
        layout.add("B(2)");
        ASSERT_EQ(lines.size(), width < 40 ? 1U : 2U) << width;
        const std::size_t second = lines.back().find("B(2)");
        EXPECT_EQ(lines.back()[second - 1], ' ') << width;
    }
}

} // namespace
} // namespace mqrig::qmgr::command
