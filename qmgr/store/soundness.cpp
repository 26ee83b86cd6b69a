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
// Opening the file moves its time (the library sets its length anew), so whoever opens it makes a valid note anew
// after, also if the opening fails. The start-up lock keeps openings apart.
//
// Comings, goings and openings race with each other. So changes are counted, and a note says at which count it was
// made: at any other it says nothing. A connection counts once its slot can be seen and before it changes anything that
// a note speaks of: whoever has not seen the slot has not seen that count either. What is done without a slot (an end,
// cleaning up for the dead) counts before and after. Time, checksum and count are one word, so that no two notes can be
// mixed. What is decided wrongly is decided for "not known".

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

// A note is the count in its high bits and a checksum of all that it says in the low ones.
constexpr int countShift = 40;

std::uint64_t noteOf(ControlBlock &block, std::uint64_t count, std::uint64_t changed)
{
    const std::array<std::uint64_t, 3> said{count, changed, checksumOfHead(block)};
    const std::uint64_t sum = checksumOf(std::as_bytes(std::span(said)), block.stamp.generation);
    return count << countShift | sum >> (64 - countShift);
}

bool isMadeAt(std::uint64_t note, std::uint64_t count)
{
    return note != 0 && note >> countShift == count << countShift >> countShift;
}

} // namespace

void Store::noteChange() noexcept
{
    control().changes += 2;
    control().quiet = 0; // or it might be believed again when the count has come round
}

void Store::noteQuiet() noexcept
try {
    ControlBlock &block = control();
    const std::uint64_t count = block.changes;
    const bool isOpening = count % 2 != 0;
    if (block.state == State::Ended || isOpening || anyConnection()) return;
    const std::uint64_t changed = changeTime(folder_ / "live" / "data.mdb");
    if (changed != 0) block.quiet = noteOf(block, count, changed);
} catch (const std::bad_alloc &) { // NOLINT(bugprone-empty-catch): what is noted there is of an earlier count
}

Store::Opening::Opening(Store &store) : store_(store)
{
    ControlBlock &block = store.control();
    const std::uint64_t step = block.changes % 2 == 0 ? 1 : 2; // one that was killed has left it odd
    const std::uint64_t before = block.changes.fetch_add(step);
    wasQuiet_ = isMadeAt(block.quiet, before);
}

Store::Opening::~Opening()
{
    store_.control().changes += 1;
    if (wasQuiet_) store_.noteQuiet();
}

Outcome Store::soundness()
{
    ControlBlock &block = control();
    if (block.slotLimit > maxSlots) return failure(MQRC_UNEXPECTED_ERROR);
    const std::uint64_t count = block.changes;
    if (anyConnection()) return success();
    const std::filesystem::path data = folder_ / "live" / "data.mdb";
    Outcome outcome;
    if (const std::uint64_t note = block.quiet; isMadeAt(note, count)) {
        const std::uint64_t changed = changeTime(data);
        if (changed == 0 && errno != ENOENT && errno != ENOTDIR && errno != ELOOP)
            outcome = failure(MQRC_RESOURCE_PROBLEM);
        else if (note != noteOf(block, count, changed))
            outcome = failure(MQRC_UNEXPECTED_ERROR);
    } else {
        const PagesVerdict::Kind verdict = verifyPages(data).kind;
        // Files that this process cannot look at now may be as good as ever.
        if (verdict == PagesVerdict::Kind::Unreadable) outcome = failure(MQRC_RESOURCE_PROBLEM);
        if (verdict == PagesVerdict::Kind::Damaged) outcome = failure(MQRC_UNEXPECTED_ERROR);
    }
    // A connection that came meanwhile has changed what was looked at, and believed it too.
    return block.changes != count || anyConnection() ? success() : outcome;
}

} // namespace mqrig::qmgr::store
