// Putting a file: streams that callers hold open, files that change or cannot be read.
#include "calls_test.h"
#include "temporary_folder.h"

#include "send.h"

#include <cerrno>
#include <memory>

namespace {

using Bodies = std::vector<std::string>;
using Calls = std::vector<std::string>;
using Stream = std::unique_ptr<std::FILE, int (*)(std::FILE *)>;

/// A stream whose size, seeks and reads answer as told.
struct Source {
    off64_t size = 0;
    std::string contents = {};
    int readError = 0;
    int seekError = 0;
    off64_t position = 0;

    Stream open()
    {
        cookie_io_functions_t functions = {};
        functions.read = [](void *cookie, char *buffer, size_t length) -> ssize_t {
            auto &source = *static_cast<Source *>(cookie);
            if (source.readError != 0) {
                errno = source.readError;
                return -1;
            }
            const auto at = static_cast<std::size_t>(source.position);
            const std::string part = at < source.contents.size() ? source.contents.substr(at, length) : "";
            part.copy(buffer, part.size());
            source.position += static_cast<off64_t>(part.size());
            return static_cast<ssize_t>(part.size());
        };
        functions.seek = [](void *cookie, off64_t *offset, int whence) -> int {
            auto &source = *static_cast<Source *>(cookie);
            if (source.seekError != 0) {
                errno = source.seekError;
                return -1;
            }
            if (whence == SEEK_END) *offset += source.size;
            if (whence == SEEK_CUR) *offset += source.position;
            source.position = *offset;
            return 0;
        };
        return {fopencookie(this, "r", functions), std::fclose};
    }
};

class PutFromFileTest : public CallsTest {
protected:
    PutFromFileTest()
    {
        params.OutputHobj = 42;
        params.InputFile = "named";
    }
    Written put(std::FILE *file, MQLONG messageNumber = 0)
    {
        return written([&, messageNumber] { return PutFromFile2(&params, hconn, 1, file, messageNumber); });
    }
};

TEST_F(PutFromFileTest, OpenStreamIsPutFromItsStartEveryTime)
{
    const TemporaryFolder folder;
    const Stream file(std::fopen(folder.file("in", "contents").c_str(), "rb"), std::fclose);
    std::fgetc(file.get());
    EXPECT_EQ(put(file.get(), 3).out, "[now] 3: put from: named\n");
    put(file.get(), 4);
    EXPECT_EQ(fakeMqi.bodies, (Bodies{"contents", "contents"}));
}

TEST_F(PutFromFileTest, OpenStreamThatHasGrownIsPutWhole)
{
    const TemporaryFolder folder;
    const Stream file(std::fopen(folder.file("in", "short").c_str(), "rb"), std::fclose);
    put(file.get());
    folder.file("in", "longer than before");
    put(file.get());
    EXPECT_EQ(fakeMqi.bodies, (Bodies{"short", "longer than before"}));
}

TEST_F(PutFromFileTest, NumberOfTheCallerIsShownOnEveryLine)
{
    Source source{.size = 1, .contents = "a"};
    params.MsgCount = 2;
    EXPECT_EQ(put(source.open().get(), 7).out, "[now] 7: put from: named\n[now] 7: put from: named\n");
}

TEST_F(PutFromFileTest, FileThatHasBecomeShorterIsPadded)
{
    Source source{.size = 6, .contents = "abc"};
    EXPECT_EQ(put(source.open().get()).status, 0);
    EXPECT_EQ(fakeMqi.bodies, Bodies{std::string("abc\0\0\0", 6)});
}

TEST_F(PutFromFileTest, FileThatCannotBeReadIsNotPut)
{
    Source source{.size = 6, .contents = "abc", .readError = EIO};
    const Written written = put(source.open().get());
    EXPECT_EQ(written.status, 1);
    EXPECT_EQ(written.err, "fread(): Input/output error\nPutFromFile,#,5: fread() failed. file name=named\n");
    EXPECT_EQ(fakeMqi.calls, Calls{});
}

TEST_F(PutFromFileTest, FileThatCannotBeSoughtInIsReported)
{
    Source source{.seekError = ESPIPE};
    const Written written = put(source.open().get());
    EXPECT_EQ(written.status, 1);
    EXPECT_EQ(written.err, "fseek(): Illegal seek\nPutFromFile,#,29: fseek() failed.\n");
}

TEST_F(PutFromFileTest, FileBeyondTheMqisLimitCannotBeHad)
{
    Source source{.size = off64_t{3} << 30};
    const Written written = put(source.open().get());
    EXPECT_EQ(written.status, 1);
    EXPECT_EQ(written.err, "malloc(): Cannot allocate memory\nPutFromFile,#,12: malloc() failed. size=3221225473\n");
}

TEST_F(PutFromFileTest, LengthTakesTheStartOfAFileBeyondTheMqisLimit)
{
    Source source{.size = off64_t{3} << 30, .contents = "abcdef"};
    params.MsgLength = 4;
    EXPECT_EQ(put(source.open().get()).status, 0);
    EXPECT_EQ(fakeMqi.bodies, Bodies{"abcd"});
}

TEST_F(PutFromFileTest, LargestSizeThereIsDoesNotOverflow)
{
    Source source{.size = INT64_MAX};
    params.UseRfh2 = 1;
    EXPECT_EQ(put(source.open().get()).status, 1);
    EXPECT_EQ(fakeMqi.calls, Calls{});
}

TEST_F(PutFromFileTest, UnitOfWorkOfTheCallerIsLeftToIt)
{
    Source source{.size = 1, .contents = "a"};
    params.SyncpointFlag = 1;
    const Stream file = source.open();
    written([&] { return PutFromFile2(&params, hconn, 0, file.get(), 1); });
    EXPECT_EQ(fakeMqi.calls, Calls{"MQPUT"});
}

TEST_F(PutFromFileTest, LockThatCannotBeHadEndsTheLoop)
{
    Source source{.size = 1, .contents = "a"};
    const UnavailableLock lock(params);
    EXPECT_EQ(put(source.open().get()).status, 1);
    EXPECT_EQ(fakeMqi.count("MQPUT"), 0);
}

} // namespace
