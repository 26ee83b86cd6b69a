#include "qmgr/core/object_handles.h"

#include <gtest/gtest.h>

#include <set>

namespace mqrig::qmgr::core {
namespace {

TEST(ObjectHandles, NumbersAreNeverTheSpecialOnes)
{
    ObjectHandles handles;
    for (int i = 0; i < 5000; ++i) {
        const MQHOBJ hobj = handles.add(std::make_unique<OpenObject>());
        EXPECT_GT(hobj, 1);
        EXPECT_NE(handles.find(hobj), nullptr);
        handles.remove(hobj);
        EXPECT_EQ(handles.find(hobj), nullptr);
    }
}

TEST(ObjectHandles, FirstNumbersAreSmall)
{
    ObjectHandles handles;
    EXPECT_EQ(handles.add(std::make_unique<OpenObject>()), 2);
    EXPECT_EQ(handles.add(std::make_unique<OpenObject>()), 3);
}

TEST(ObjectHandles, OpenHandlesAreAllDifferent)
{
    ObjectHandles handles;
    std::set<MQHOBJ> numbers;
    for (int i = 0; i < 1000; ++i)
        numbers.insert(handles.add(std::make_unique<OpenObject>()));
    EXPECT_EQ(numbers.size(), 1000U);
    EXPECT_EQ(handles.size(), 1000U);
}

TEST(ObjectHandles, EachNumberFindsItsObject)
{
    ObjectHandles handles;
    auto first = std::make_unique<OpenObject>();
    auto second = std::make_unique<OpenObject>();
    const OpenObject *firstObject = first.get();
    const OpenObject *secondObject = second.get();
    const MQHOBJ one = handles.add(std::move(first));
    const MQHOBJ two = handles.add(std::move(second));
    EXPECT_EQ(handles.find(one), firstObject);
    EXPECT_EQ(handles.find(two), secondObject);
    EXPECT_EQ(handles.remove(one).get(), firstObject);
    EXPECT_EQ(handles.find(two), secondObject);
}

TEST(ObjectHandles, UnknownNumbersFindNothing)
{
    ObjectHandles handles;
    handles.add(std::make_unique<OpenObject>());
    for (const MQHOBJ wrong : {MQHO_NONE, MQHO_UNUSABLE_HOBJ, 1, 3, 2 + (1 << 20), 0x7FFFFFFF}) {
        EXPECT_EQ(handles.find(wrong), nullptr) << wrong;
        EXPECT_EQ(handles.remove(wrong), nullptr) << wrong;
    }
    EXPECT_EQ(handles.size(), 1U);
}

} // namespace
} // namespace mqrig::qmgr::core
