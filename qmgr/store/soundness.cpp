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
// Opening the file moves its time (the library sets its length anew), so whoever opens it strikes the note out before
// and writes it anew after, also if the opening fails; killed in between, it leaves none. The start-up lock keeps
// openings apart.

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <new>
#include <span>
#include <sys/stat.h>

#include "qmgr/store/checksum.h"
#include "qmgr/store/live_pages.h"
#include "qmgr/store/store.h"

namespace mqrig::qmgr::store {

namespace {

// 0, with errno, if it cannot be found out.
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
    constexpr std::size_t count = (offsetof(ControlBlock, cells) - offsetof(ControlBlock, state)) / sizeof *from;
    // Somebody may come while they are read: then what comes out does not matter.
    for (std::size_t i = 0; i < std::min(count, most); ++i)
        words.at(i) = std::atomic_ref(from[i]).load(std::memory_order_relaxed);
    return checksumOf(std::as_bytes(std::span(words)), block.stamp.generation);
}

} // namespace

void Store::noteQuiet() noexcept
try {
    if (control().state == State::Ended || anyConnection()) return;
    const std::filesystem::path data = folder_ / "live" / "data.mdb";
    QuietMark &quiet = control().quiet;
    const std::uint64_t changed = changeTime(data);
    quiet.checksumOfHead = checksumOfHead(control());
    quiet.dataChanged = changed;
    if (anyConnection() || changeTime(data) != changed) noteBusy();
} catch (const std::bad_alloc &) {
    noteBusy();
}

Store::Opening::Opening(Store &store) : store_(store), wasQuiet_(store.control().quiet.dataChanged.exchange(0) != 0) {}

Store::Opening::~Opening()
{
    if (wasQuiet_) store_.noteQuiet();
}

Outcome Store::soundness()
{
    ControlBlock &block = control();
    if (block.slotLimit > maxSlots) return failure(MQRC_UNEXPECTED_ERROR);
    const std::uint64_t connectionsBefore = block.connections;
    if (anyConnection()) return success();
    const std::filesystem::path data = folder_ / "live" / "data.mdb";
    Outcome outcome;
    if (block.quiet.dataChanged != 0) {
        const std::uint64_t changed = changeTime(data);
        if (changed == 0 && errno != ENOENT && errno != ENOTDIR && errno != ELOOP)
            outcome = failure(MQRC_RESOURCE_PROBLEM);
        else if (block.quiet.dataChanged != changed || block.quiet.checksumOfHead != checksumOfHead(block))
            outcome = failure(MQRC_UNEXPECTED_ERROR);
    } else {
        const PagesVerdict::Kind verdict = verifyPages(data).kind;
        // Files that this process cannot look at now may be as good as ever.
        if (verdict == PagesVerdict::Kind::Unreadable) outcome = failure(MQRC_RESOURCE_PROBLEM);
        if (verdict == PagesVerdict::Kind::Damaged) outcome = failure(MQRC_UNEXPECTED_ERROR);
    }
    // A connection that came meanwhile has changed what was looked at, and believed it too.
    return block.connections != connectionsBefore || anyConnection() ? success() : outcome;
}

} // namespace mqrig::qmgr::store
