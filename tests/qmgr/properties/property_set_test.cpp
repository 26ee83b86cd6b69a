#include "qmgr/properties/property_set.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace mqrig::qmgr::properties {
namespace {

using Place = PropertySet::Place;
using Move = PropertySet::Move;

Property text(std::string name, std::string value = "")
{
    Property property;
    property.name = std::move(name);
    property.type = MQTYPE_STRING;
    property.value = std::move(value);
    return property;
}

NamePattern pattern(std::string_view name)
{
    NamePattern result;
    EXPECT_EQ(NamePattern::parse(name, result), MQRC_NONE);
    return result;
}

// "a=1 b=2" of all properties in their order.
std::string shown(const PropertySet &set)
{
    std::string all;
    for (const Property &property : set)
        all += (all.empty() ? "" : " ") + property.name + "=" + property.value;
    return all;
}

std::string walked(PropertySet &set, std::string_view name)
{
    std::string all;
    Move move = Move::First;
    while (const Property *property = set.inquire(pattern(name), move)) {
        all += (all.empty() ? "" : " ") + property->name + "=" + property->value;
        move = Move::Next;
    }
    return all;
}

PropertySet setOf(std::initializer_list<std::pair<const char *, const char *>> properties)
{
    PropertySet set;
    for (const auto &[name, value] : properties)
        EXPECT_EQ(set.set(text(name, value), Place::Append), MQRC_NONE);
    return set;
}

TEST(PropertySet, SettingTwiceReplaces)
{
    PropertySet set = setOf({{"a", "1"}, {"b", "2"}});
    EXPECT_EQ(set.set(text("a", "three"), Place::First), MQRC_NONE);
    EXPECT_EQ(shown(set), "a=three b=2");
    EXPECT_EQ(set.bytes(), 8u);
}

TEST(PropertySet, NewOnesStandBehindThoseOfTheirFolder)
{
    EXPECT_EQ(shown(setOf({{"a", "1"}, {"f.x", "2"}, {"b", "3"}, {"f.y", "4"}})), "a=1 b=3 f.x=2 f.y=4");
}

TEST(PropertySet, AppendedOnesStandBehindThoseOfTheirName)
{
    EXPECT_EQ(shown(setOf({{"a", "1"}, {"b", "2"}, {"a", "3"}, {"a", "4"}})), "a=1 a=3 a=4 b=2");
}

TEST(PropertySet, CursorTellsWhereToSet)
{
    PropertySet set = setOf({{"a", "1"}, {"b", "2"}, {"c", "3"}});
    set.inquire(pattern("b"), Move::First);
    EXPECT_EQ(set.set(text("x", "9"), Place::AfterCursor), MQRC_NONE);
    EXPECT_EQ(set.set(text("y", "8"), Place::BeforeCursor), MQRC_NONE);
    EXPECT_EQ(set.set(text("", "7"), Place::UnderCursor), MQRC_NONE);
    EXPECT_EQ(shown(set), "a=1 y=8 b=7 x=9 c=3");
    EXPECT_EQ(set.find("b")->value, "7");
}

TEST(PropertySet, SameNamesAroundTheCursorAreFoundInTheirOrder)
{
    PropertySet set = setOf({{"a", "1"}, {"b", "2"}, {"a", "3"}});
    set.inquire(pattern("b"), Move::First);
    set.set(text("a", "4"), Place::AfterCursor);
    EXPECT_EQ(walked(set, "a"), "a=1 a=3 a=4");
    set.inquire(pattern("a"), Move::First);
    set.set(text("a", "0"), Place::BeforeCursor);
    EXPECT_EQ(set.find("a")->value, "0");
    EXPECT_EQ(walked(set, "a"), "a=0 a=1 a=3 a=4");
    EXPECT_TRUE(set.remove("a"));
    EXPECT_EQ(set.find("a")->value, "1");
    set.add(text("a", "5"));
    EXPECT_EQ(walked(set, "a"), "a=1 a=3 a=4 a=5");
    for (int i = 0; i < 4; ++i)
        EXPECT_TRUE(set.remove("a"));
    EXPECT_FALSE(set.remove("a"));
    EXPECT_EQ(shown(set), "b=2");
}

TEST(PropertySet, WhenTheLastOfANameGoesNewOnesStandBehindTheOneBeforeIt)
{
    PropertySet set = setOf({{"a", "1"}, {"a", "2"}, {"b", "3"}, {"c", "4"}});
    set.inquire(pattern("b"), Move::First);
    set.set(text("a", "5"), Place::AfterCursor);
    EXPECT_EQ(shown(set), "a=1 a=2 b=3 a=5 c=4");
    set.inquire(pattern("a"), Move::First);
    set.inquire(pattern("a"), Move::Next);
    EXPECT_EQ(set.inquire(pattern("a"), Move::Next)->value, "5");
    EXPECT_TRUE(set.removeUnderCursor());
    set.add(text("a", "6"));
    EXPECT_EQ(shown(set), "a=1 a=2 a=6 b=3 c=4");
    EXPECT_EQ(walked(set, "a"), "a=1 a=2 a=6");
}

TEST(PropertySet, WithoutCursorThereIsNoPlaceAtIt)
{
    PropertySet set = setOf({{"a", "1"}});
    for (const Place place : {Place::UnderCursor, Place::AfterCursor, Place::BeforeCursor})
        EXPECT_EQ(set.set(text("x"), place), MQRC_PROPERTY_NOT_AVAILABLE);
    EXPECT_EQ(set.inquire(pattern("a"), Move::Stay), nullptr);
}

TEST(PropertySet, WalksFollowTheirPattern)
{
    PropertySet set = setOf({{"a", "1"}, {"f.x", "2"}, {"b", "3"}});
    EXPECT_EQ(walked(set, "%"), "a=1 b=3 f.x=2");
    EXPECT_EQ(walked(set, "usr.%"), "a=1 b=3");
    EXPECT_EQ(walked(set, "f.%"), "f.x=2");
    EXPECT_EQ(walked(set, "z"), "");
}

TEST(PropertySet, NextWithoutCursorIsTheFirst)
{
    PropertySet set = setOf({{"a", "1"}, {"b", "2"}});
    EXPECT_EQ(set.inquire(pattern("%"), Move::Next)->name, "a");
    EXPECT_EQ(set.inquire(pattern("%"), Move::Next)->name, "b");
    EXPECT_EQ(set.inquire(pattern("%"), Move::Next), nullptr);
    EXPECT_EQ(set.inquire(pattern("%"), Move::Stay)->name, "b") << "the end moves no cursor";
}

TEST(PropertySet, NextByAnotherPatternBeginsAtTheFirst)
{
    PropertySet set = setOf({{"a", "1"}, {"b", "2"}, {"c", "3"}});
    set.inquire(pattern("b"), Move::First);
    EXPECT_EQ(set.inquire(pattern("%"), Move::Next)->name, "a");
    EXPECT_EQ(set.inquire(pattern("%"), Move::Next)->name, "b");
    EXPECT_EQ(set.inquire(pattern("z%"), Move::Next), nullptr);
    EXPECT_EQ(set.inquire(pattern("%"), Move::Next)->name, "c") << "what was not found has moved nothing";
    EXPECT_EQ(set.inquire(pattern("b%"), Move::Stay)->name, "c");
    EXPECT_EQ(set.inquire(pattern("%"), Move::Next), nullptr);
}

TEST(PropertySet, RemovedUnderCursorLetsTheWalkGoOn)
{
    PropertySet set = setOf({{"a", "1"}, {"b", "2"}, {"c", "3"}});
    set.inquire(pattern("%"), Move::First);
    set.inquire(pattern("%"), Move::Next);
    EXPECT_TRUE(set.removeUnderCursor());
    EXPECT_FALSE(set.removeUnderCursor());
    EXPECT_EQ(set.inquire(pattern("%"), Move::Stay), nullptr);
    EXPECT_TRUE(set.remove("c")) << "the one that the cursor would have gone to";
    EXPECT_EQ(set.inquire(pattern("%"), Move::Next), nullptr);
    EXPECT_EQ(shown(set), "a=1");
}

TEST(PropertySet, ValueAndElementsBelowExcludeEachOther)
{
    PropertySet set = setOf({{"f.a", "1"}, {"g.a.b", "2"}, {"x", "3"}});
    EXPECT_EQ(set.set(text("f.a.b"), Place::First), MQRC_MIXED_CONTENT_NOT_ALLOWED);
    EXPECT_EQ(set.set(text("f.a.b.c"), Place::First), MQRC_MIXED_CONTENT_NOT_ALLOWED);
    EXPECT_EQ(set.set(text("g.a"), Place::First), MQRC_MIXED_CONTENT_NOT_ALLOWED);
    EXPECT_EQ(set.set(text("usr.x.y"), Place::First), MQRC_MIXED_CONTENT_NOT_ALLOWED);
    EXPECT_EQ(set.set(text("x.y"), Place::First), MQRC_NONE) << "another folder";
    EXPECT_EQ(set.set(text("f.ab"), Place::First), MQRC_NONE);
    EXPECT_EQ(set.set(text("g.a.c"), Place::First), MQRC_NONE);
}

TEST(PropertySet, RemovesAllOfAPattern)
{
    PropertySet set = setOf({{"a", "1"}, {"f.x", "2"}, {"b", "3"}, {"f.y", "4"}});
    set.removeAll(pattern("usr.%"));
    EXPECT_EQ(shown(set), "f.x=2 f.y=4");
    set.add(text("c", "5"));
    set.add(text("f.z", "6"));
    EXPECT_EQ(shown(set), "f.x=2 f.y=4 f.z=6 c=5");
    set.clear();
    EXPECT_TRUE(set.empty());
    EXPECT_EQ(set.bytes(), 0u);
}

// A message handle takes over what a get has made.
TEST(PropertySet, IsMovedWithAllThatItKnows)
{
    PropertySet from = setOf({{"a", "1"}, {"f.x", "2"}, {"b", "3"}});
    PropertySet set = setOf({{"old", "0"}});
    static_assert(std::is_nothrow_move_assignable_v<PropertySet>);
    set = std::move(from);
    EXPECT_EQ(shown(set), "a=1 b=3 f.x=2");
    EXPECT_EQ(set.bytes(), 8u);
    EXPECT_EQ(set.find("old"), nullptr);
    ASSERT_NE(set.find("f.x"), nullptr);
    set.add(text("c", "4"));
    EXPECT_TRUE(set.remove("a"));
    EXPECT_EQ(shown(set), "b=3 c=4 f.x=2");
}

TEST(PropertySet, HoldsTensOfThousands)
{
    constexpr int many = 50000;
    PropertySet set;
    for (int i = 0; i < many; ++i)
        ASSERT_EQ(set.set(text("p" + std::to_string(i)), Place::First), MQRC_NONE);
    for (int i = 0; i < many; ++i)
        ASSERT_NE(set.find("p" + std::to_string(i)), nullptr);
    int walkedOver = 0;
    while (set.inquire(pattern("%"), Move::Next) != nullptr)
        ++walkedOver;
    EXPECT_EQ(walkedOver, many);
    for (int i = 0; i < many; ++i)
        ASSERT_TRUE(set.remove("p" + std::to_string(i)));
    EXPECT_TRUE(set.empty());
}

} // namespace
} // namespace mqrig::qmgr::properties
