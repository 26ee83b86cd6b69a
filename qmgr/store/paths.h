// Where queue managers live: the store folder and the folder of each queue manager in it.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace mqrig::qmgr::store {

// $MQRIG_STORE, else $XDG_DATA_HOME/mqrig, else $HOME/.local/share/mqrig (the password file's home without $HOME).
// Relative and empty values of XDG_DATA_HOME are passed over, as its convention asks. Nothing is created.
[[nodiscard]] std::filesystem::path defaultStoreFolder();

// MQ's rule for the name of a queue manager: 1 to 48 of A-Z a-z 0-9 . / _ %
[[nodiscard]] bool isQueueManagerName(std::string_view name);

// The folder name of a valid queue manager name and back. '%' stands before the two hexadecimal digits of '/', of
// '%' itself and of a leading '.', so that every name has exactly one folder, none leaves the store folder, and no
// queue manager is ever called like one of the store's own files, which all begin with '.'.
[[nodiscard]] std::string folderOfName(std::string_view name);
[[nodiscard]] std::optional<std::string> nameOfFolder(std::string_view folder);

} // namespace mqrig::qmgr::store
