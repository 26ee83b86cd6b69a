// Whether the live files are still as the last connection left them.
//
// While programs are connected the files are theirs, and damage done to them from outside is outside the promise. While
// nobody is connected, whatever else writes to them is damage, and is to be noticed before anything is believed:
//
// - The last connection that leaves in good order notes when the live state's file was changed last, and a checksum of
//   the control block's head. Who comes next compares. Any difference, and the life is thrown away. (Stores through the
//   map mark the time when they first touch a page after it was written back, so the time does not move any more once
//   the last connection has made its last change.)
// - A connection that was killed leaves no note. Then every page of the live state is verified (live_pages.h): what is
//   out of order ends the life; the contents of a record that was changed within its bounds is not noticed.
//
// Comings and goings race with the note, so it is written between two looks for connections, and a connection that
// comes takes its slot first and strikes the note out after. What is decided wrongly is decided for "not known".
//
// Opening the file moves its time (the library sets its length anew), so whoever opens it renews the note; the start-up
// lock keeps openings apart.

#include <algorithm>
#include <array>
#include <atomic>
#include <span>
#include <sys/stat.h>

#include "qmgr/store/checksum.h"
#include "qmgr/store/live_pages.h"
#include "qmgr/store/store.h"

namespace mqrig::qmgr::store {

namespace {

std::uint64_t changeTime(const std::filesystem::path &file)
{
    struct stat status {};
    if (stat(file.c_str(), &status) != 0) return 0;
    return static_cast<std::uint64_t>(status.st_mtim.tv_sec) * 1'000'000'000 +
           static_cast<std::uint64_t>(status.st_mtim.tv_nsec);
}

// The words between `state` and `cells` are hints and counts that do not move while nobody is connected.
std::uint64_t checksumOfHead(ControlBlock &block)
{
    constexpr std::size_t most = 256;
    std::array<std::uint32_t, most> words{};
    auto *from = reinterpret_cast<std::uint32_t *>(&block.state);
    const auto count = static_cast<std::size_t>(reinterpret_cast<std::uint32_t *>(&block.cells) - from);
    // Somebody may come while they are read: then what comes out does not matter.
    for (std::size_t i = 0; i < std::min(count, most); ++i)
        words.at(i) = std::atomic_ref(from[i]).load(std::memory_order_relaxed);
    return checksumOf(std::as_bytes(std::span(words)), block.stamp.generation);
}

} // namespace

void Store::noteQuiet()
{
    if (control().state == State::Ended || anyConnection()) return;
    const std::filesystem::path data = folder_ / "live" / "data.mdb";
    QuietMark &quiet = control().quiet;
    const std::uint64_t changed = changeTime(data);
    quiet.checksumOfHead = checksumOfHead(control());
    quiet.dataChanged = changed;
    if (anyConnection() || changeTime(data) != changed) noteBusy();
}

void Store::renewQuiet()
{
    QuietMark &quiet = control().quiet;
    std::uint64_t noted = quiet.dataChanged;
    if (noted == 0) return;
    quiet.dataChanged.compare_exchange_strong(noted, changeTime(folder_ / "live" / "data.mdb"));
}

bool Store::isSound()
{
    ControlBlock &block = control();
    if (block.slotLimit > maxSlots) return false;
    const std::uint64_t connectionsBefore = block.connections;
    if (anyConnection()) return true;
    const std::filesystem::path data = folder_ / "live" / "data.mdb";
    const bool sound = block.quiet.dataChanged != 0 ? block.quiet.dataChanged == changeTime(data) &&
                                                          block.quiet.checksumOfHead == checksumOfHead(block)
                                                    : verifyPages(data).kind == PagesVerdict::Kind::Sound;
    // A connection that came meanwhile has changed what was looked at, and believed it too.
    return sound || block.connections != connectionsBefore || anyConnection();
}

} // namespace mqrig::qmgr::store
