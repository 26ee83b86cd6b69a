// Putting a directory file by file, through a cursor.
#include "calls_test.h"
#include "temporary_folder.h"

#include "send.h"

#include <dirent.h>
#include <memory>
#include <set>

namespace {

class PutFromDirTest : public CallsTest {
protected:
    PutFromDirTest() { params.OutputHobj = 42; }

    Status put_next(MQLONG ownUnitOfWork = 0)
    {
        params.DirCursor = &cursor;
        return PutFromDir2(&params, hconn, ownUnitOfWork, 1);
    }
    void open_cursor()
    {
        params.InputDir = folder.path().c_str();
        params.MsgCount = 1;
        stream.reset(opendir(params.InputDir));
        cursor.stream = stream.get();
    }

    const TemporaryFolder folder;
    DirectoryCursor cursor;
    std::unique_ptr<DIR, int (*)(DIR *)> stream{nullptr, closedir};
};

TEST_F(PutFromDirTest, EachCallPutsTheNextFile)
{
    folder.file("a", "first");
    folder.file("b", "second");
    open_cursor();
    written([&] { return put_next(); });
    EXPECT_EQ(cursor.filesPut, 1);
    EXPECT_EQ(fakeMqi.bodies.size(), 1U);
    written([&] { return put_next(); });
    EXPECT_EQ(cursor.filesPut, 1);
    EXPECT_EQ((std::set<std::string>(fakeMqi.bodies.begin(), fakeMqi.bodies.end())),
              (std::set<std::string>{"first", "second"}));
}

TEST_F(PutFromDirTest, CallAfterTheLastFilePutsNothing)
{
    folder.file("a", "first");
    open_cursor();
    written([&] { return put_next(); });
    EXPECT_EQ(written([&] { return put_next(); }).status, 0);
    EXPECT_EQ(cursor.filesPut, 0);
    EXPECT_EQ(cursor.lastStatus, 0);
    EXPECT_EQ(fakeMqi.count("MQPUT"), 1);
}

TEST_F(PutFromDirTest, FailedFileIsKnownToTheCursorOnly)
{
    folder.file("a", "first");
    open_cursor();
    fakeMqi.answers["MQPUT"].push_back({MQCC_FAILED, MQRC_Q_FULL});
    EXPECT_EQ(written([&] { return put_next(); }).status, 0);
    EXPECT_EQ(cursor.filesPut, 0);
    EXPECT_EQ(cursor.lastStatus, 3);
}

TEST_F(PutFromDirTest, EachCallEndsItsOwnUnitOfWork)
{
    folder.file("a", "first");
    open_cursor();
    params.SyncpointFlag = 1;
    written([&] { return put_next(1); });
    written([&] { return put_next(1); }); // nothing left: nothing to end
    EXPECT_EQ(fakeMqi.calls, (std::vector<std::string>{"MQPUT", "MQCMIT"}));
}

TEST_F(PutFromDirTest, CallerGetsItsFileNameBack)
{
    folder.file("a", "first");
    params.InputDir = folder.path().c_str();
    params.InputFile = "of the caller";
    written([&] { return PutFromDir2(&params, hconn, 1, 0); });
    EXPECT_STREQ(params.InputFile, "of the caller");
}

TEST_F(PutFromDirTest, IdentifierOfTheLastMessageStays)
{
    folder.file("a", "first");
    open_cursor();
    written([&] { return put_next(); });
    EXPECT_EQ(params.Md.MsgId[0], 0xAA);
}

TEST_F(PutFromDirTest, QueueThatCannotBeOpenedIsALocalFailure)
{
    folder.file("a", "first");
    params.InputDir = folder.path().c_str();
    params.OutputHobj = 0;
    fakeMqi.answers["MQOPEN"].push_back({MQCC_FAILED, MQRC_UNKNOWN_OBJECT_NAME});
    EXPECT_EQ(written([&] { return PutFromDir(&params, hconn); }).status, 1);
    EXPECT_EQ(fakeMqi.count("MQPUT"), 0);
}

TEST_F(PutFromDirTest, QueueThatWasOpenedHereIsClosedAndForgotten)
{
    folder.file("a", "first");
    params.InputDir = folder.path().c_str();
    params.OutputHobj = 0;
    EXPECT_EQ(written([&] { return PutFromDir(&params, hconn); }).status, 0);
    EXPECT_EQ(fakeMqi.calls, (std::vector<std::string>{"MQOPEN", "MQPUT", "MQCLOSE"}));
    EXPECT_EQ(params.OutputHobj, 0);
}

TEST_F(PutFromDirTest, FailedCloseIsALocalFailure)
{
    params.InputDir = folder.path().c_str();
    params.OutputHobj = 0;
    fakeMqi.answers["MQCLOSE"].push_back({MQCC_FAILED, MQRC_HOBJ_ERROR});
    EXPECT_EQ(written([&] { return PutFromDir(&params, hconn); }).status, 1);
}

TEST_F(PutFromDirTest, LockThatCannotBeHadEndsTheDirectory)
{
    folder.file("a", "first");
    open_cursor();
    const UnavailableLock lock(params);
    EXPECT_EQ(written([&] { return put_next(); }).status, 0);
    EXPECT_EQ(cursor.filesPut, 0);
}

} // namespace
