// Bodies of a hundred megabytes and directories of a hundred thousand files: what they ask for in memory.
#include "calls_test.h"
#include "temporary_folder.h"

#include "receive.h"
#include "send.h"

#include <algorithm>
#include <malloc.h>
#include <unistd.h>

namespace {

constexpr std::size_t Body = 100 * 1000 * 1000;
constexpr std::size_t Spare = 32 << 20;

/// What is allocated now, in large blocks and in small ones.
std::size_t allocated()
{
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

/// The most that is allocated at any MQI call. What the tests themselves keep is dropped first.
class Watch {
public:
    Watch() : before_(allocated())
    {
        for (const char *call : {"MQPUT", "MQGET"})
            fakeMqi.during[call] = [this] { look(); };
    }
    std::size_t most() const { return most_; }

private:
    void look()
    {
        fakeMqi.bodies.clear();
        fakeMqi.bodies.shrink_to_fit();
        fakeMqi.mds.clear();
        fakeMqi.calls.clear();
        intercepted.sleeps.clear();
        const std::size_t now = allocated();
        most_ = std::max(most_, now > before_ ? now - before_ : 0);
    }

    std::size_t before_;
    std::size_t most_ = 0;
};

class LargeTest : public CallsTest {
protected:
    LargeTest() { params.OutputHobj = 42; }

    std::string large_file() const
    {
        std::string name = folder.file("in", "");
        EXPECT_EQ(truncate(name.c_str(), Body), 0);
        return name;
    }

    const TemporaryFolder folder;
};

TEST_F(LargeTest, FileIsHeldOnce)
{
    const std::string name = large_file();
    params.InputFile = name.c_str();
    const Watch watch;
    EXPECT_EQ(written([&] { return PutFromFile(&params, hconn); }).status, 0);
    EXPECT_LT(watch.most(), Body + Spare);
}

TEST_F(LargeTest, FileThatIsSplitIsHeldTwice)
{
    const std::string name = large_file();
    params.InputFile = name.c_str();
    params.SegmentSize = Body / 3;
    params.LogicalMsgDelimiter = "x";
    const Watch watch;
    EXPECT_EQ(written([&] { return PutFromFile(&params, hconn); }).status, 0);
    EXPECT_LT(watch.most(), 2 * Body + Spare);
}

TEST_F(LargeTest, ForwardedBodyIsHeldOnceBesideItsDisplay)
{
    RunParams put = DEFAULT_RUN_PARAMS;
    put.OutputHobj = 42;
    params.InputHobj = 41;
    params.MaxMsgSize = Body;
    params.OutputQName = "OUT";
    fakeMqi.messages.push_back({.body = "a"});
    const Watch watch;
    EXPECT_EQ(written([&] { return Queue2Queue(&params, hconn, &put); }).status, 0);
    EXPECT_LT(watch.most(), 3 * Body + Spare);
}

TEST_F(LargeTest, SavedBodyIsHeldOnce)
{
    const std::string out = folder.path("out");
    params.InputHobj = 41;
    params.MaxMsgSize = Body;
    params.OutputFile = out.c_str();
    fakeMqi.messages.push_back({.body = std::string(Body, 'x')});
    const Watch watch;
    EXPECT_EQ(written([&] { return GetToFile(&params, hconn); }).status, 0);
    EXPECT_LT(watch.most(), Body + Spare);
    EXPECT_EQ(folder.contents("out").size(), Body);
}

TEST_F(LargeTest, DirectoryOfAHundredThousandFilesIsNotLoaded)
{
    constexpr int Files = 100000;
    folder.file("f0", "body");
    // A file system limits the links of one file.
    for (int i = 1; i < Files; ++i) {
        const std::string name = folder.path("f" + std::to_string(i));
        const std::string linked = folder.path("f" + std::to_string(i - i % 10000));
        if (i % 10000 == 0) {
            folder.file("f" + std::to_string(i), "body");
        } else {
            ASSERT_EQ(link(linked.c_str(), name.c_str()), 0);
        }
    }
    params.InputDir = folder.path().c_str();
    int puts = 0;
    const Watch watch;
    fakeMqi.during["MQPUT"] = [&puts, look = fakeMqi.during["MQPUT"]] {
        ++puts;
        look();
    };
    EXPECT_EQ(written([&] { return PutFromDir(&params, hconn); }).status, 0);
    EXPECT_EQ(puts, Files);
    EXPECT_LT(watch.most(), 1U << 20);
}

} // namespace
