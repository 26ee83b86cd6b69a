// A disk that can forget. It is told what a program does to the files of a folder, and makes copies of the folder as a
// power failure at any moment may leave it: what was synced is there, of the rest any part is, in any order, torn at
// the sectors' borders. Entries of a folder (files made, renamed) count as kept once the folder itself was synced.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <random>
#include <span>
#include <string>
#include <vector>

namespace mqrig::crash {

using Node = int; // a file or folder, whatever it is called

struct DiskEvent {
    enum Kind : std::uint8_t { Write, Truncate, Sync, Link, Rename, Unlink, Acknowledged };
    Kind kind{};
    Node node = 0;            // of Link: what gets the name
    Node folder = 0;          // Link, Rename, Unlink
    Node toFolder = 0;        // Rename
    std::string name;         // Link, Rename, Unlink
    std::string toName;       // Rename
    std::uint64_t offset = 0; // Write; Truncate: the new length; Acknowledged: how many steps are done
    std::vector<std::byte> bytes;
    bool isFolder = false; // Link
};

// What a program did, in order. Files under `root` only, the live state and lock files not: they count for one boot.
class Recording {
public:
    explicit Recording(std::filesystem::path root);

    void made(const std::filesystem::path &path, bool folder);
    void renamed(const std::filesystem::path &from, const std::filesystem::path &to);
    void removed(const std::filesystem::path &path);
    void written(const std::filesystem::path &path, const void *data, std::size_t size, std::uint64_t offset);
    void truncated(const std::filesystem::path &path, std::uint64_t size);
    void synced(const std::filesystem::path &path);
    void acknowledged(std::size_t steps);

    [[nodiscard]] const std::vector<DiskEvent> &events() const { return events_; }

private:
    [[nodiscard]] bool counts(const std::filesystem::path &path) const;
    Node find(const std::filesystem::path &path) const;
    DiskEvent &add(DiskEvent::Kind kind, Node node);

    std::filesystem::path root_;
    std::map<std::string, Node> names_; // by path below the root
    Node nodes_ = 0;
    std::vector<DiskEvent> events_;
};

enum class Loss : std::uint8_t {
    Everything, // nothing that was not synced is there
    Nothing,    // all of it is
    Some,       // some of the writes, whichever their order
    Torn,       // some of the sectors
    AllButLast, // only the last write
    losses
};
constexpr std::size_t losses = static_cast<std::size_t>(Loss::losses);
extern const std::array<const char *, losses> lossNames;

// The disk after the events told so far.
class Disk {
public:
    Disk();
    void take(const DiskEvent &event);
    // Writes what is left after a power failure now into an empty folder.
    void leave(Loss loss, std::mt19937 &random, const std::filesystem::path &folder) const;

private:
    static constexpr std::size_t sectorSize = 512;
    using Sector = std::array<std::byte, sectorSize>;
    struct Content {
        std::map<std::uint64_t, Sector> sectors;
        std::uint64_t length = 0;
        void write(std::uint64_t offset, std::span<const std::byte> bytes);
        void truncate(std::uint64_t size);
    };
    struct File {
        Content kept;
        std::vector<DiskEvent> pending;
    };
    struct Folder {
        std::map<std::string, Node> kept;
        std::vector<DiskEvent> pending;
    };
    static void apply(Content &content, const DiskEvent &event);
    static void apply(std::map<Node, std::map<std::string, Node>> &entries, const DiskEvent &event);
    [[nodiscard]] Content contentAfter(const File &file, Loss loss, std::mt19937 &random) const;

    std::map<Node, File> files_;
    std::map<Node, Folder> folders_;
};

} // namespace mqrig::crash
