#include <gtest/gtest.h>
#include <sqlite3.h>

#include "transcript.h"

namespace {

void setFormat(const std::filesystem::path &log, int format)
{
    sqlite3 *database = nullptr;
    ASSERT_EQ(sqlite3_open(log.c_str(), &database), SQLITE_OK);
    const std::string statement = "PRAGMA user_version = " + std::to_string(format);
    EXPECT_EQ(sqlite3_exec(database, statement.c_str(), nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(database);
}

int formatOf(const std::filesystem::path &log)
{
    sqlite3 *database = nullptr;
    int format = -1;
    EXPECT_EQ(sqlite3_open(log.c_str(), &database), SQLITE_OK);
    const auto read = [](void *into, int, char **values, char **) {
        *static_cast<int *>(into) = std::atoi(values[0]);
        return 0;
    };
    EXPECT_EQ(sqlite3_exec(database, "PRAGMA user_version", read, &format, nullptr), SQLITE_OK);
    sqlite3_close(database);
    return format;
}

TEST(RigqmLogFormat, NewerFormatIsRefusedWithOneLineAndLeftAsItIs)
{
    const TemporaryFolder folder;
    const std::filesystem::path log = folder.path() / "QM1" / "log.db";
    ASSERT_EQ(runShell("rigqm create QM1 && rigqm end QM1", "", folder.path()).exitCode, 0);
    const int format = formatOf(log);
    ASSERT_GT(format, 0);
    setFormat(log, 1000000);
    const CommandResult result = runShell("rigqm start QM1", "", folder.path());
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.output, "");
    EXPECT_TRUE(result.error.starts_with("rigqm: QM1: its files are of a newer format")) << result.error;
    EXPECT_EQ(result.error.find('\n'), result.error.size() - 1) << result.error;
    EXPECT_EQ(formatOf(log), 1000000);
    setFormat(log, format);
    EXPECT_EQ(runShell("rigqm start QM1 && rigqm mqsc QM1 -e 'PING QMGR'", "", folder.path()).exitCode, 0);
}

} // namespace
