#include "qmgr/core/unit_of_work.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace mqrig::qmgr::core {
namespace {

std::span<const std::byte> bytes(std::string_view text)
{
    return std::as_bytes(std::span(text));
}

std::string_view text(std::span<const std::byte> body)
{
    return {reinterpret_cast<const char *>(body.data()), body.size()};
}

store::NewMessage message(std::string_view body)
{
    store::NewMessage made{};
    made.body = bytes(body);
    return made;
}

TEST(BodyMemory, CopiesStayWhereTheyAre)
{
    BodyMemory memory;
    std::vector<std::span<const std::byte>> copies;
    std::vector<std::string> originals;
    for (std::size_t i = 0; i < 400; ++i)
        originals.push_back(std::string(i * 11, static_cast<char>('a' + i % 26)));
    originals.push_back(std::string(3000000, '#'));
    originals.push_back("small again");
    for (const std::string &original : originals)
        copies.push_back(memory.copy(bytes(original)));
    for (std::size_t i = 0; i < originals.size(); ++i)
        EXPECT_TRUE(text(copies[i]) == originals[i]) << i;
}

TEST(BodyMemory, ServesAfterItWasCleared)
{
    BodyMemory memory;
    memory.copy(bytes(std::string(1000000, 'x')));
    memory.clear();
    EXPECT_EQ(text(memory.copy(bytes("again"))), "again");
    memory.clear();
    memory.clear();
    EXPECT_EQ(text(memory.copy(bytes("and again"))), "and again");
}

TEST(BodyMemory, NothingNeedsNoMemory)
{
    BodyMemory memory;
    EXPECT_TRUE(memory.copy({}).empty());
}

TEST(UnitOfWork, KeepsPutsInOrderWithBodiesOfItsOwn)
{
    UnitOfWork unit;
    {
        const std::string gone = "first";
        unit.keepPut(message(gone));
    }
    unit.keepPut(message("second"));
    ASSERT_EQ(unit.content().puts.size(), 2U);
    EXPECT_EQ(text(unit.content().puts[0].body), "first");
    EXPECT_EQ(text(unit.content().puts[1].body), "second");
}

TEST(UnitOfWork, ADroppedPutIsNotInIt)
{
    UnitOfWork unit;
    unit.keepPut(message("first"));
    unit.keepPut(message("second"));
    unit.dropLastPut();
    unit.keepPut(message("third"));
    ASSERT_EQ(unit.size(), 2U);
    EXPECT_EQ(text(unit.content().puts[1].body), "third");
}

TEST(UnitOfWork, PutsDroppedAgainAndAgainTakeTheSameMemory)
{
    const std::string large(300000, 'x');
    UnitOfWork unit;
    unit.keepPut(message("first"));
    unit.keepPut(message(large));
    const std::byte *const place = unit.content().puts[1].body.data();
    for (int i = 0; i < 10; ++i) {
        unit.dropLastPut();
        unit.keepPut(message(large));
        EXPECT_EQ(unit.content().puts[1].body.data(), place);
    }
    EXPECT_EQ(text(unit.content().puts[0].body), "first");
}

TEST(UnitOfWork, CountsPutsAndGets)
{
    UnitOfWork unit;
    EXPECT_TRUE(unit.empty());
    unit.keepPut(message("first"));
    unit.roomForGet();
    unit.addGet({});
    EXPECT_EQ(unit.size(), 2U);
    EXPECT_EQ(unit.content().gets.size(), 1U);
    unit.clear();
    EXPECT_TRUE(unit.empty());
}

} // namespace
} // namespace mqrig::qmgr::core
