// Verifies the pages of the live state's file without the library, which believes what it reads.
//
// A page out of order would lead the library astray: into other pages, out of its map, round in circles. So before a
// file whose last user was killed is used on, and when somebody asks (`rigqm check`), every page of its two trees is
// looked at: its number, its kind, where its records begin and end, their order, and that every page is used once.
// What stands in the records is not looked at.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace mqrig::qmgr::store {

// The two heads of the file, from which everything is reached. Each is written over by the transaction after the next.
using PageHeads = std::array<std::uint8_t, std::size_t{2} * 4096>;
// Nothing if the file cannot be read that far.
[[nodiscard]] std::optional<PageHeads> readPageHeads(const std::filesystem::path &data);

struct PagesVerdict {
    enum class Kind : std::uint8_t { Sound, Damaged, Unreadable } kind = Kind::Sound;
    std::string damage; // the first that was found
};
// Of the state that the file opens with. Nobody may be writing to it.
[[nodiscard]] PagesVerdict verifyPages(const std::filesystem::path &data);
// Of what a reader of that transaction sees; it is inside, and the heads were read while it was the latest.
[[nodiscard]] PagesVerdict verifyPages(const std::filesystem::path &data, const PageHeads &heads,
                                       std::optional<std::uint64_t> transaction);

} // namespace mqrig::qmgr::store
