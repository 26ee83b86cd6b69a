// Getting to files: buffers and lengths of callers, the prompt, locks, the choice of free names.
#include "calls_test.h"
#include "temporary_folder.h"

#include "receive.h"
#include "receive/overwrite_prompt.h"

#include <cstring>
#include <filesystem>
#include <unistd.h>

namespace {

using Calls = std::vector<std::string>;
using Names = std::vector<std::string>;

/// What standard input says for the length of a scope.
class Input {
public:
    explicit Input(const std::string &text) : saved_(dup(STDIN_FILENO))
    {
        int ends[2] = {-1, -1};
        EXPECT_EQ(pipe(ends), 0);
        EXPECT_EQ(write(ends[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
        close(ends[1]);
        dup2(ends[0], STDIN_FILENO);
        close(ends[0]);
        std::clearerr(stdin);
    }
    ~Input()
    {
        while (std::getchar() != EOF) {
        }
        dup2(saved_, STDIN_FILENO);
        close(saved_);
        std::clearerr(stdin);
    }
    Input(const Input &) = delete;
    Input &operator=(const Input &) = delete;

private:
    int saved_;
};

class GetToFileTest : public CallsTest {
protected:
    GetToFileTest() : file(folder.path("out"))
    {
        params.InputHobj = 42;
        params.OutputFile = file.c_str();
        params.MaxMsgSize = 100;
    }
    static void queue(const std::string &body)
    {
        FakeMessage message{.body = body};
        std::memcpy(message.md.PutDate, "20220422", 8);
        std::memcpy(message.md.PutTime, "01020304", 8);
        fakeMqi.messages.push_back(message);
    }

    const TemporaryFolder folder;
    const std::string file;
};

TEST_F(GetToFileTest, CallersBufferAndLengthAreFilled)
{
    queue("hello");
    char buffer[101] = {};
    MQLONG length = -99;
    const Written written = this->written([&] { return GetToFile2(&params, hconn, 0, 7, buffer, &length); });
    EXPECT_EQ(written.status, 0);
    EXPECT_EQ(written.out, "[now] 7: message length: 5 output filename : " + file + "\n");
    EXPECT_STREQ(buffer, "hello");
    EXPECT_EQ(length, 5);
    EXPECT_EQ(folder.contents("out"), "hello");
}

TEST_F(GetToFileTest, NothingGotIsToldApartFromAnEmptyMessage)
{
    folder.file("out", "old");
    const Input input("n\n");
    MQLONG length = 0;
    EXPECT_EQ(written([&] { return GetToFile2(&params, hconn, 0, 1, nullptr, &length); }).status, 0);
    EXPECT_EQ(length, NothingGot);
    EXPECT_EQ(folder.contents("out"), "old");
}

TEST_F(GetToFileTest, UnitOfWorkOfTheCallerIsLeftToIt)
{
    queue("hello");
    params.SyncpointFlag = 1;
    written([&] { return GetToFile2(&params, hconn, 0, 1, nullptr, nullptr); });
    EXPECT_EQ(fakeMqi.calls, Calls{"MQGET"});
}

TEST_F(GetToFileTest, LockThatCannotBeHadKeepsTheFileUntouched)
{
    folder.file("out", "old");
    const UnavailableLock lock(params);
    EXPECT_EQ(written([&] { return GetToFile2(&params, hconn, 1, 0, nullptr, nullptr); }).status, 1);
    EXPECT_EQ(fakeMqi.count("MQGET"), 0);
    EXPECT_EQ(folder.contents("out"), "old");
}

TEST_F(GetToFileTest, QuestionIsSeenBeforeTheAnswerIsRead)
{
    const Input input("y\n");
    const OutputFile output;
    EXPECT_EQ(ask_overwrite(&params, "sure? "), Overwrite::Yes);
    EXPECT_EQ(output.handed_on(), "sure? ");
}

TEST_F(GetToFileTest, OnlyTheFirstCharacterAnswers)
{
    const std::pair<const char *, Overwrite> answers[] = {
        {"y\n", Overwrite::Yes}, {"Y\n", Overwrite::Yes}, {"yes\n", Overwrite::Yes}, {" y\n", Overwrite::No},
        {"n\n", Overwrite::No},  {"\n", Overwrite::No},   {"", Overwrite::No},       {"y", Overwrite::Yes},
    };
    for (const auto &[typed, expected] : answers) {
        const Input input(typed);
        Overwrite answer = Overwrite::LockFailed;
        const Written written = written_by([&] { answer = ask_overwrite(&params, "? "); });
        EXPECT_EQ(answer, expected) << typed;
        EXPECT_EQ(written.out, expected == Overwrite::Yes ? "? " : "? end program.\n") << typed;
    }
}

class GetToDirTest : public GetToFileTest {
protected:
    GetToDirTest()
    {
        params.OutputFile = nullptr;
        params.OutputDir = folder.path().c_str();
    }
    Written get(MQLONG ownUnitOfWork, MQLONG messageNumber)
    {
        return written([&, ownUnitOfWork, messageNumber] {
            return GetToDir2(&params, hconn, ownUnitOfWork, messageNumber, nullptr, nullptr);
        });
    }
};

TEST_F(GetToDirTest, CallerOfASeriesGetsOneMessageForEachCall)
{
    for (const char *body : {"a", "b", "c"})
        queue(body);
    params.MsgCount = 5;
    params.GetRepeatedly = 1;
    EXPECT_EQ(get(0, 1).out, "[now] 1: write file : " + folder.path("20220422_100203_04\n"));
    EXPECT_EQ(get(0, 2).out, "[now] 2: write file : " + folder.path("20220422_100203_04_1\n"));
    EXPECT_EQ(fakeMqi.calls, (Calls{"MQGET", "MQGET"}));
}

TEST_F(GetToDirTest, LaterCallsOfASeriesDoNotMakeTheDirectory)
{
    const std::string missing = folder.path("missing");
    params.OutputDir = missing.c_str();
    queue("a");
    const Written written = get(0, 2);
    EXPECT_EQ(written.status, 1);
    EXPECT_FALSE(std::filesystem::exists(missing));
}

TEST_F(GetToDirTest, NameThatBecameFreeIsUsedAgain)
{
    for (const char *body : {"a", "b", "c"})
        queue(body);
    get(0, 1);
    get(0, 2);
    std::filesystem::remove(folder.path("20220422_100203_04"));
    get(0, 3);
    EXPECT_EQ(folder.names(), (Names{"20220422_100203_04", "20220422_100203_04_1"}));
    EXPECT_EQ(folder.contents("20220422_100203_04"), "c");
}

TEST_F(GetToDirTest, EveryOneOfManyMessagesOfOneInstantIsKept)
{
    constexpr int Messages = 3000;
    for (int i = 0; i < Messages; ++i)
        queue("body " + std::to_string(i));
    const Input input("y\n");
    params.MsgCount = Messages;
    EXPECT_EQ(get(1, 0).status, 0);
    EXPECT_EQ(folder.names().size(), static_cast<std::size_t>(Messages));
    EXPECT_EQ(folder.contents("20220422_100203_04_2999"), "body 2999");
}

TEST_F(GetToDirTest, DirectoryThatVanishedIsReportedAndTheMessageBackedOut)
{
    params.SyncpointFlag = 1;
    queue("a");
    const std::string gone = folder.path("gone");
    std::filesystem::create_directory(gone);
    params.OutputDir = gone.c_str();
    fakeMqi.during["MQGET"] = [&] { std::filesystem::remove(gone); };
    const Input input("y\n");
    const Written written = get(1, 0);
    EXPECT_EQ(written.status, 1);
    EXPECT_EQ(written.err, "fopen(_s)(): No such file or directory\nGetToDir,#,2: fopen(_s)() failed. file name=" +
                               gone + "/20220422_100203_04\n");
    EXPECT_EQ(fakeMqi.calls, (Calls{"MQGET", "MQBACK"}));
}

TEST_F(GetToDirTest, LockThatCannotBeHadIsALocalFailure)
{
    queue("a");
    const UnavailableLock lock(params);
    EXPECT_EQ(get(0, 1).status, 1);
    EXPECT_EQ(folder.names(), Names{});
}

} // namespace
