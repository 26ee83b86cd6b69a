#include "qmgr/store/paths.h"

#include <array>
#include <cstdlib>
#include <pwd.h>
#include <unistd.h>

namespace mqrig::qmgr::store {

namespace {

constexpr std::size_t longestName = 48;

std::string environment(const char *name)
{
    const char *value = std::getenv(name); // NOLINT(concurrency-mt-unsafe)
    return value == nullptr ? std::string() : std::string(value);
}

std::filesystem::path home()
{
    if (const std::string home = environment("HOME"); !home.empty()) return home;
    std::array<char, 4096> buffer{};
    passwd entry{};
    passwd *found = nullptr;
    if (getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found != nullptr) {
        return found->pw_dir;
    }
    return "/";
}

bool isNameCharacter(char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '.' || c == '/' ||
           c == '_' || c == '%';
}

} // namespace

std::filesystem::path defaultStoreFolder()
{
    if (const std::string given = environment("MQRIG_STORE"); !given.empty()) return given;
    const std::filesystem::path data = environment("XDG_DATA_HOME");
    if (data.is_absolute()) return data / "mqrig";
    return home() / ".local" / "share" / "mqrig";
}

bool isQueueManagerName(std::string_view name)
{
    if (name.empty() || name.size() > longestName) return false;
    for (const char c : name) {
        if (!isNameCharacter(c)) return false;
    }
    return true;
}

std::string folderOfName(std::string_view name)
{
    std::string folder;
    for (const char c : name) {
        if (c == '/') {
            folder += "%2F";
        } else if (c == '%') {
            folder += "%25";
        } else if (c == '.' && folder.empty()) {
            folder += "%2E";
        } else {
            folder += c;
        }
    }
    return folder;
}

std::optional<std::string> nameOfFolder(std::string_view folder)
{
    std::string name;
    for (std::size_t at = 0; at < folder.size(); ++at) {
        if (folder[at] != '%') {
            name += folder[at];
            continue;
        }
        const std::string_view digits = folder.substr(at + 1, 2);
        if (digits == "2F") {
            name += '/';
        } else if (digits == "25") {
            name += '%';
        } else if (digits == "2E") {
            name += '.';
        } else {
            return std::nullopt;
        }
        at += 2;
    }
    // One folder for each name: a spelling that we would not have chosen is no queue manager.
    if (!isQueueManagerName(name) || folderOfName(name) != folder) return std::nullopt;
    return name;
}

} // namespace mqrig::qmgr::store
