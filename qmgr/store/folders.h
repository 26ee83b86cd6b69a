// Making folders and files that are there as a whole or not at all.
#pragma once

#include <dirent.h>

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::store {

// Names of what is being made begin with this; what a killed process has left is swept out by the next create.
inline constexpr const char *unfinishedPrefix = ".new-";
[[nodiscard]] std::string randomName(const char *prefix);

// Makes a folder that may be there already, and its parents, for nobody else's eyes.
[[nodiscard]] Outcome makeFolders(const std::filesystem::path &folder);
// Looks at the path of each entry of a folder; what cannot be read is passed over, and a step that fails ends the walk.
template <class Look>
void forEachEntry(const std::filesystem::path &folder, Look &&look)
{
    // Not the standard library's iterator, which ends the program where memory fails.
    struct Closer {
        void operator()(DIR *opened) const { closedir(opened); }
    };
    const std::unique_ptr<DIR, Closer> opened(opendir(folder.c_str()));
    if (opened == nullptr) return;
    while (const dirent *entry = readdir(opened.get())) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") look(folder / name);
    }
}
// What was made or renamed in the folder is there after a power failure, too, unless the answer is an errno. (A file
// system that has no such step answers 0.)
[[nodiscard]] int syncFolder(const std::filesystem::path &folder);
// A small file that is on disk, as a whole, when it is back.
[[nodiscard]] Outcome writeFile(const std::filesystem::path &file, std::string_view text);

// What a failed file operation means to a caller of the MQI.
[[nodiscard]] Outcome outcomeOfErrno();

} // namespace mqrig::qmgr::store
