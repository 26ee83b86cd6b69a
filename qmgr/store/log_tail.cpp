// The write-ahead file of a log, read as SQLite reads it at recovery.
//
// SQLite takes frames as long as each one carries the salts of the file's head and the right running checksum, and
// believes them up to the last one that ends a commit. What is damaged in the middle thereby ends the log in silence:
// commits behind it are lost. Frames of an earlier run of the file carry other salts, so a frame that has the salts of
// this run, ends a commit and stands behind the end says that something is missing. A commit that was being written
// when the power failed can look the same; it was never acknowledged.

#include <array>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <unistd.h>

#include "qmgr/store/log_check.h"
#include "qmgr/store/log_format.h"

namespace mqrig::qmgr::store {

namespace {

constexpr std::size_t frameHead = 24;
constexpr std::size_t frameSize = frameHead + logFormat::pageSize;
constexpr std::size_t fileHead = 32;

std::uint32_t wordAt(const std::uint8_t *bytes)
{
    std::uint32_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return __builtin_bswap32(word);
}

struct Sum {
    std::uint32_t first = 0;
    std::uint32_t second = 0;
    bool operator==(const Sum &) const = default;

    void add(const std::uint8_t *bytes, std::size_t size, bool bigEndian)
    {
        for (std::size_t at = 0; at < size; at += 8) {
            std::uint32_t words[2] = {wordAt(bytes + at), wordAt(bytes + at + 4)};
            if (!bigEndian) words[0] = __builtin_bswap32(words[0]), words[1] = __builtin_bswap32(words[1]);
            first += words[0] + second;
            second += words[1] + first;
        }
    }
};

// Where the believable frames end although commits follow; 0 for a damaged head.
std::optional<std::uint64_t> brokenAt(int fd)
{
    std::array<std::uint8_t, fileHead> head{};
    if (pread(fd, head.data(), head.size(), 0) != static_cast<ssize_t>(head.size())) return std::nullopt;
    if (head == std::array<std::uint8_t, fileHead>{}) return std::nullopt; // space that is kept, never written
    const std::uint32_t magic = wordAt(head.data());
    const bool bigEndian = (magic & 1) != 0;
    Sum sum;
    sum.add(head.data(), 24, bigEndian);
    if ((magic & ~1U) != 0x377f0682 || wordAt(&head[8]) != logFormat::pageSize ||
        sum != Sum{wordAt(&head[24]), wordAt(&head[28])}) {
        return 0;
    }
    std::array<std::uint8_t, frameSize> frame; // NOLINT(cppcoreguidelines-pro-type-member-init): filled by pread
    std::optional<std::uint64_t> end;
    for (std::uint64_t number = 0;; ++number) {
        const auto at = static_cast<off_t>(fileHead + number * frameSize);
        if (pread(fd, frame.data(), frame.size(), at) != static_cast<ssize_t>(frame.size())) return std::nullopt;
        const bool ofThisRun = std::memcmp(&frame[8], &head[16], 8) == 0;
        if (!end) {
            sum.add(frame.data(), 8, bigEndian);
            sum.add(&frame[frameHead], logFormat::pageSize, bigEndian);
            if (!ofThisRun || sum != Sum{wordAt(&frame[16]), wordAt(&frame[20])}) end = number + 1;
        }
        if (end && ofThisRun && wordAt(&frame[4]) != 0) return end;
    }
}

} // namespace

void checkLogTail(const std::filesystem::path &log, bool moving, Findings &findings)
{
    const std::filesystem::path tail = log.string() + "-wal";
    const int fd = ::open(tail.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) return;
    auto broken = brokenAt(fd);
    // A commit that is being written looks like that for a moment; damage stays where it is.
    for (int again = 0; broken && moving && again < 3; ++again) {
        usleep(50'000);
        if (const auto now = brokenAt(fd); now != broken) broken.reset();
    }
    close(fd);
    if (!broken) return;
    findings.add(*broken == 0
                     ? std::string("log.db-wal: its head is damaged: commits may be missing")
                     : "log.db-wal: frame " + std::to_string(*broken) +
                           " is damaged, or was being written when the power failed: commits behind it are missing");
}

} // namespace mqrig::qmgr::store
