#include "disk.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace mqrig::crash {

const std::array<const char *, losses> lossNames{"everything unsynced lost", "nothing lost", "some writes lost",
                                                 "torn writes", "only the last write kept"};

Recording::Recording(std::filesystem::path root) : root_(std::move(root))
{
    names_[""] = nodes_++;
}

bool Recording::counts(const std::filesystem::path &path) const
{
    const std::string text = path.string();
    if (!text.starts_with(root_.string())) return false;
    for (const auto &part : path.lexically_relative(root_))
        if (part == "live" || part == "locks" || part.string().ends_with("-shm")) return false;
    return true;
}

Node Recording::find(const std::filesystem::path &path) const
{
    const std::filesystem::path relative = path.lexically_relative(root_);
    const auto found = names_.find(relative == "." ? "" : relative.string());
    return found == names_.end() ? -1 : found->second;
}

DiskEvent &Recording::add(DiskEvent::Kind kind, Node node)
{
    events_.emplace_back();
    events_.back().kind = kind;
    events_.back().node = node;
    return events_.back();
}

void Recording::made(const std::filesystem::path &path, bool folder)
{
    if (!counts(path) || find(path) >= 0) return;
    const Node parent = find(path.parent_path());
    if (parent < 0) return;
    const Node node = nodes_++;
    names_[path.lexically_relative(root_).string()] = node;
    DiskEvent &event = add(DiskEvent::Link, node);
    event.folder = parent;
    event.name = path.filename().string();
    event.isFolder = folder;
}

void Recording::renamed(const std::filesystem::path &from, const std::filesystem::path &to)
{
    const Node node = find(from);
    if (node < 0) return;
    DiskEvent &event = add(DiskEvent::Rename, node);
    event.folder = find(from.parent_path());
    event.toFolder = find(to.parent_path());
    event.name = from.filename().string();
    event.toName = to.filename().string();
    const std::string before = from.lexically_relative(root_).string();
    const std::string after = to.lexically_relative(root_).string();
    std::map<std::string, Node> names;
    for (const auto &[name, each] : names_) {
        const bool inside = name == before || name.starts_with(before + "/");
        if (name == after && !inside) continue;
        names[inside ? after + name.substr(before.size()) : name] = each;
    }
    names_ = std::move(names);
}

void Recording::removed(const std::filesystem::path &path)
{
    const Node node = find(path);
    if (node < 0) return;
    DiskEvent &event = add(DiskEvent::Unlink, node);
    event.folder = find(path.parent_path());
    event.name = path.filename().string();
    names_.erase(path.lexically_relative(root_).string());
}

void Recording::written(const std::filesystem::path &path, const void *data, std::size_t size, std::uint64_t offset)
{
    const Node node = find(path);
    if (node < 0) return;
    DiskEvent &event = add(DiskEvent::Write, node);
    event.offset = offset;
    const auto *bytes = static_cast<const std::byte *>(data);
    event.bytes.assign(bytes, bytes + size);
}

void Recording::truncated(const std::filesystem::path &path, std::uint64_t size)
{
    if (const Node node = find(path); node >= 0) add(DiskEvent::Truncate, node).offset = size;
}

void Recording::synced(const std::filesystem::path &path)
{
    if (const Node node = find(path); node >= 0) add(DiskEvent::Sync, node);
}

void Recording::acknowledged(std::size_t steps)
{
    add(DiskEvent::Acknowledged, -1).offset = steps;
}

Disk::Disk()
{
    folders_[0];
}

void Disk::Content::write(std::uint64_t offset, std::span<const std::byte> bytes)
{
    length = std::max(length, offset + bytes.size());
    while (!bytes.empty()) {
        const std::uint64_t within = offset % sectorSize;
        const std::size_t size = std::min<std::size_t>(bytes.size(), sectorSize - within);
        Sector &sector = sectors[offset / sectorSize];
        std::memcpy(sector.data() + within, bytes.data(), size);
        offset += size;
        bytes = bytes.subspan(size);
    }
}

void Disk::Content::truncate(std::uint64_t size)
{
    if (size < length) {
        sectors.erase(sectors.lower_bound((size + sectorSize - 1) / sectorSize), sectors.end());
        if (const auto last = sectors.find(size / sectorSize); last != sectors.end())
            std::fill(last->second.begin() + static_cast<std::ptrdiff_t>(size % sectorSize), last->second.end(),
                      std::byte{});
    }
    length = size;
}

void Disk::apply(Content &content, const DiskEvent &event)
{
    if (event.kind == DiskEvent::Write) {
        content.write(event.offset, event.bytes);
    } else {
        content.truncate(event.offset);
    }
}

void Disk::apply(std::map<Node, std::map<std::string, Node>> &entries, const DiskEvent &event)
{
    if (event.kind == DiskEvent::Link) {
        entries[event.folder][event.name] = event.node;
        return;
    }
    entries[event.folder].erase(event.name);
    if (event.kind == DiskEvent::Rename) entries[event.toFolder][event.toName] = event.node;
}

void Disk::take(const DiskEvent &event)
{
    switch (event.kind) {
    case DiskEvent::Write:
    case DiskEvent::Truncate:
        files_[event.node].pending.push_back(event);
        break;
    case DiskEvent::Link:
        if (event.isFolder) {
            folders_[event.node];
        } else {
            files_[event.node];
        }
        folders_[event.folder].pending.push_back(event);
        break;
    case DiskEvent::Rename: // within one folder: one change of it
    case DiskEvent::Unlink:
        folders_[event.folder].pending.push_back(event);
        break;
    case DiskEvent::Sync:
        if (const auto folder = folders_.find(event.node); folder != folders_.end()) {
            std::map<Node, std::map<std::string, Node>> entries;
            entries[event.node] = std::move(folder->second.kept);
            for (const DiskEvent &change : folder->second.pending)
                apply(entries, change);
            folder->second.kept = std::move(entries[event.node]);
            folder->second.pending.clear();
        } else if (const auto file = files_.find(event.node); file != files_.end()) {
            for (const DiskEvent &change : file->second.pending)
                apply(file->second.kept, change);
            file->second.pending.clear();
        }
        break;
    case DiskEvent::Acknowledged:
        break;
    }
}

Disk::Content Disk::contentAfter(const File &file, Loss loss, std::mt19937 &random) const
{
    Content content = file.kept;
    if (loss == Loss::Everything) return content;
    if (loss == Loss::AllButLast) {
        if (!file.pending.empty()) apply(content, file.pending.back());
        return content;
    }
    for (const DiskEvent &change : file.pending) {
        if (loss == Loss::Torn && change.kind == DiskEvent::Write) {
            std::span<const std::byte> left = change.bytes;
            for (std::uint64_t offset = change.offset; !left.empty();) {
                const std::size_t size = std::min<std::size_t>(left.size(), sectorSize - offset % sectorSize);
                if (random() % 2 == 0) content.write(offset, left.first(size));
                offset += size;
                left = left.subspan(size);
            }
        } else if (loss == Loss::Nothing || random() % 2 == 0) {
            apply(content, change);
        }
    }
    return content;
}

void Disk::leave(Loss loss, std::mt19937 &random, const std::filesystem::path &folder) const
{
    // Changes of folders reach the disk in their order, those of each folder up to some point.
    std::map<Node, std::map<std::string, Node>> entries;
    for (const auto &[node, each] : folders_) {
        entries[node] = each.kept;
        std::size_t changes = loss == Loss::Nothing ? each.pending.size() : 0;
        if (loss == Loss::Some || loss == Loss::Torn) changes = random() % (each.pending.size() + 1);
        for (std::size_t n = 0; n < changes; ++n)
            apply(entries, each.pending[n]);
    }
    const std::function<void(Node, const std::filesystem::path &)> write = [&](Node node,
                                                                               const std::filesystem::path &path) {
        if (folders_.contains(node)) {
            std::filesystem::create_directory(path);
            for (const auto &[name, entry] : entries[node])
                write(entry, path / name);
            return;
        }
        const Content content = contentAfter(files_.at(node), loss, random);
        const int fd = open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        if (fd < 0 || ftruncate(fd, static_cast<off_t>(content.length)) != 0) abort();
        for (const auto &[sector, bytes] : content.sectors) {
            const std::uint64_t offset = sector * sectorSize;
            if (offset >= content.length) continue;
            const std::size_t size = std::min<std::uint64_t>(sectorSize, content.length - offset);
            if (pwrite(fd, bytes.data(), size, static_cast<off_t>(offset)) != static_cast<ssize_t>(size)) abort();
        }
        close(fd);
    };
    write(0, folder);
}

} // namespace mqrig::crash
