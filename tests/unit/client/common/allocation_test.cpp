// Buffers that can fail and be seen.

#include "common.h"

#include "captured.h"
#include "wrapped_calls.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

namespace {

class Allocation : public testing::Test {
protected:
    ~Allocation() override { wrapped = {}; }
    RunParams params = DEFAULT_RUN_PARAMS;
};

} // namespace

TEST_F(Allocation, GivesMemory)
{
    const Buffer<> buffer = checked_malloc(&params, 100, {"routine"});
    ASSERT_TRUE(buffer);
    std::memset(buffer.get(), 1, 100);
}

TEST_F(Allocation, NoBytesAreABufferToo)
{
    EXPECT_TRUE(checked_malloc(&params, 0, {"routine"}));
    EXPECT_TRUE(checked_calloc(&params, 0, {"routine"}));
}

TEST_F(Allocation, AFailureIsReportedWithTheSizeAndTheCaller)
{
    wrapped.failingSize = 12347;
    const Captured written = captured([&] { EXPECT_FALSE(checked_malloc(&params, 12347, {"PutFromCmdLine", 57})); });
    EXPECT_EQ(written.err, "malloc(): Cannot allocate memory\nPutFromCmdLine,57,12: malloc() failed. size=12347\n");
}

TEST_F(Allocation, AFailureNamesTheCallAsTheCallerSays)
{
    wrapped.failingSize = 12347;
    const Captured written = captured([&] {
        EXPECT_FALSE(checked_malloc(nullptr, 12347, {"GetArgParam", 7}, "malloc() (-re)"));
    });
    EXPECT_EQ(written.err,
              "malloc() (-re): Cannot allocate memory\nGetArgParam,7,12: malloc() (-re) failed. size=12347\n");
}

TEST_F(Allocation, CallocIsZeroFilled)
{
    const Buffer<> buffer = checked_calloc(&params, 1000, {"routine"});
    ASSERT_TRUE(buffer);
    EXPECT_TRUE(std::all_of(buffer.get(), buffer.get() + 1000, [](char byte) { return byte == 0; }));
}

TEST_F(Allocation, AFailedCallocIsReportedAsCalloc)
{
    wrapped.failingSize = 12347;
    const Captured written = captured([&] { EXPECT_FALSE(checked_calloc(&params, 12347, {"thread_main", 3})); });
    EXPECT_EQ(written.err, "calloc(): Cannot allocate memory\nthread_main,3,12: calloc() failed. size=12347\n");
}

TEST_F(Allocation, ReallocKeepsTheContents)
{
    Buffer<> buffer = checked_malloc(&params, 4, {"routine"});
    std::memcpy(buffer.get(), "abc", 4);
    EXPECT_TRUE(checked_realloc(&params, buffer, 100000, {"routine"}));
    EXPECT_STREQ(buffer.get(), "abc");
}

TEST_F(Allocation, AFailedReallocKeepsTheBuffer)
{
    Buffer<> buffer = checked_malloc(&params, 4, {"routine"});
    std::memcpy(buffer.get(), "abc", 4);
    wrapped.failingSize = 12347;
    const Captured written = captured([&] { EXPECT_FALSE(checked_realloc(&params, buffer, 12347, {"make_rfh2", 8})); });
    EXPECT_EQ(written.err, "realloc(): Cannot allocate memory\nmake_rfh2,8,12: realloc() failed. size=12347\n");
    EXPECT_STREQ(buffer.get(), "abc");
}

TEST_F(Allocation, ReallocOfNothingAllocates)
{
    Buffer<> buffer;
    EXPECT_TRUE(checked_realloc(&params, buffer, 10, {"routine"}));
    EXPECT_TRUE(buffer);
}

TEST_F(Allocation, ACopyHasItsTerminator)
{
    const Buffer<> copy = checked_copy(&params, "a,b", {"routine"});
    EXPECT_STREQ(copy.get(), "a,b");
}

TEST_F(Allocation, AFailedCopyIsReportedWithTheTerminatorCounted)
{
    wrapped.failingSize = 12347;
    const std::string text(12346, 'x');
    const Captured written = captured([&] { EXPECT_FALSE(checked_copy(&params, text.c_str(), {"make_mp", 1})); });
    EXPECT_EQ(written.err, "malloc(): Cannot allocate memory\nmake_mp,1,12: malloc() failed. size=12347\n");
}
