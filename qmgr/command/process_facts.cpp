#include "qmgr/command/process_facts.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <string_view>

#include "cmqc.h"

namespace mqrig::qmgr::command {
namespace {

std::string folderOf(std::int32_t pid)
{
    return "/proc/" + std::to_string(pid);
}

} // namespace

std::string programOf(std::int32_t pid)
{
    std::array<char, 4096> path{};
    const ssize_t length = readlink((folderOf(pid) + "/exe").c_str(), path.data(), path.size());
    if (length <= 0) return {};
    std::string_view name(path.data(), static_cast<std::size_t>(length));
    name.remove_prefix(name.rfind('/') + 1);
    return std::string(name.substr(0, MQ_APPL_TAG_LENGTH));
}

std::string userOf(std::int32_t pid)
{
    struct stat process {};
    if (stat(folderOf(pid).c_str(), &process) != 0) return {};
    std::array<char, 4096> text{};
    passwd entry{};
    passwd *found = nullptr;
    if (getpwuid_r(process.st_uid, &entry, text.data(), text.size(), &found) != 0 || found == nullptr)
        return std::to_string(process.st_uid);
    return std::string(std::string_view(found->pw_name).substr(0, MQ_USER_ID_LENGTH));
}

} // namespace mqrig::qmgr::command
