#include "qmgr/core/process_identity.h"

#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "qmgr/objects/object_name.h"

namespace mqrig::qmgr::core {
namespace {

std::string userName(uid_t uid)
{
    std::vector<char> text(1024);
    passwd entry{};
    passwd *found = nullptr;
    while (getpwuid_r(uid, &entry, text.data(), text.size(), &found) == ERANGE && text.size() < (1U << 20))
        text.resize(text.size() * 2);
    return found != nullptr ? std::string(found->pw_name) : std::to_string(uid);
}

// /proc may be missing (a bare chroot): then the name the C library remembers serves.
std::string programName()
{
    std::array<char, 4096> path{};
    const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
    if (length <= 0) return program_invocation_short_name;
    std::string_view name(path.data(), static_cast<std::size_t>(length));
    name.remove_prefix(name.rfind('/') + 1);
    constexpr std::string_view deleted = " (deleted)";
    if (name.ends_with(deleted)) name.remove_suffix(deleted.size());
    return std::string(name);
}

void fillAccountingToken(MQBYTE32 &token, uid_t uid)
{
    const std::string digits = std::to_string(uid);
    std::memset(token, 0, sizeof token);
    token[0] = static_cast<MQBYTE>(digits.size());
    std::memcpy(token + 1, digits.data(), digits.size());
    token[sizeof token - 1] = MQACTT_UNIX_NUMERIC_ID;
}

} // namespace

ProcessIdentity processIdentity()
{
    const uid_t uid = geteuid();
    ProcessIdentity identity{};
    objects::fillField(identity.userIdentifier, sizeof identity.userIdentifier, userName(uid));
    fillAccountingToken(identity.accountingToken, uid);
    objects::fillField(identity.putApplName, sizeof identity.putApplName, programName());
    return identity;
}

} // namespace mqrig::qmgr::core
