#include "qmgr/core/process_identity.h"

#include <gtest/gtest.h>

#include <pwd.h>
#include <unistd.h>

#include <string>

namespace mqrig::qmgr::core {
namespace {

TEST(ProcessIdentity, UserIsTheEffectiveOneCutToItsField)
{
    const passwd *entry = getpwuid(geteuid());
    std::string name = entry != nullptr ? entry->pw_name : std::to_string(geteuid());
    name.resize(12, ' ');
    EXPECT_EQ(std::string(processIdentity().userIdentifier, 12), name);
}

TEST(ProcessIdentity, ProgramNameIsTheFilesName)
{
    std::string name = "qmgr_core_tests";
    name.resize(28, ' ');
    EXPECT_EQ(std::string(processIdentity().putApplName, 28), name);
}

TEST(ProcessIdentity, AccountingTokenIsLengthDigitsZerosAndType)
{
    const ProcessIdentity identity = processIdentity();
    const std::string digits = std::to_string(geteuid());
    std::string expected = static_cast<char>(digits.size()) + digits;
    expected.resize(31, '\0');
    expected += static_cast<char>(MQACTT_UNIX_NUMERIC_ID);
    EXPECT_EQ(std::string(reinterpret_cast<const char *>(identity.accountingToken), 32), expected);
}

} // namespace
} // namespace mqrig::qmgr::core
