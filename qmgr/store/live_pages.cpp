#include "qmgr/store/live_pages.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <string_view>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace mqrig::qmgr::store {

namespace {

// The library's format, version 1, for this machine's word size.
using Page = std::size_t;
constexpr std::size_t pageSize = 4096;
constexpr Page noPage = ~Page{0};
constexpr int deepest = 32;

struct PageHead {
    Page number;
    std::uint16_t spare;
    std::uint16_t flags;
    std::uint16_t lower; // of an overflow page: the low half of how many pages
    std::uint16_t upper;
};
enum PageFlag : std::uint16_t { branch = 1, leaf = 2, overflow = 4, meta = 8, kinds = 15 };

struct NodeHead {
    std::uint16_t low;
    std::uint16_t high;
    std::uint16_t flags;
    std::uint16_t keySize;
};
constexpr std::uint16_t bigData = 1;
constexpr std::uint16_t integerKeys = 8; // of the tree of free pages; that of the records has no flags

struct Tree {
    std::uint32_t pageSize;
    std::uint16_t flags;
    std::uint16_t depth;
    Page branches;
    Page leaves;
    Page overflows;
    std::size_t entries;
    Page root;
};

struct Meta {
    PageHead head;
    std::uint32_t magic;
    std::uint32_t version;
    void *address;
    std::size_t mapSize;
    Tree trees[2]; // the free pages, by the number of the transaction that freed them; the records
    Page lastPage;
    std::size_t transaction;
};
static_assert(sizeof(PageHead) == sizeof(Page) + 8 && sizeof(NodeHead) == 8 && sizeof(Tree) == 8 + 5 * sizeof(Page));

template <class Record>
Record recordAt(const std::uint8_t *bytes)
{
    Record record;
    std::memcpy(&record, bytes, sizeof record);
    return record;
}

// The file in memory, for reading.
class Mapping {
public:
    Mapping(int fd, std::size_t size) : start_(mmap(nullptr, size, PROT_READ, MAP_SHARED, fd, 0)), size_(size) {}
    ~Mapping()
    {
        if (start_ != MAP_FAILED) munmap(start_, size_);
    }
    Mapping(const Mapping &) = delete;
    Mapping &operator=(const Mapping &) = delete;
    [[nodiscard]] const std::uint8_t *start() const
    {
        return start_ == MAP_FAILED ? nullptr : static_cast<const std::uint8_t *>(start_);
    }

private:
    void *start_;
    std::size_t size_;
};

// Whether the process lacks something, and the file may be as good as ever.
bool isOfThisProcess(int error)
{
    return error == EMFILE || error == ENFILE || error == ENOMEM || error == EAGAIN;
}

class Walk {
    using Extent = std::pair<std::size_t, std::size_t>;

public:
    Walk(const std::uint8_t *pages, std::size_t count) : pages_(pages), count_(count), used_(count, false) {}

    // Empty if all is well.
    std::string verify(const PageHeads &heads, std::optional<std::uint64_t> transaction)
    {
        if (count_ < 2) return "the file is too short";
        const Meta metas[2] = {recordAt<Meta>(heads.data()), recordAt<Meta>(heads.data() + pageSize)};
        for (Page number = 0; number < 2; ++number) {
            const Meta &one = metas[number];
            if (one.head.number != number || (one.head.flags & kinds) != meta || one.magic != 0xBEEFC0DE ||
                one.version != 1)
                return "page " + std::to_string(number) + " is not the head of such a file";
        }
        const bool second = transaction ? (*transaction & 1) != 0 : metas[0].transaction < metas[1].transaction;
        const Meta &head = metas[second ? 1 : 0];
        if (transaction && head.transaction != *transaction) return "its heads are not of the latest transaction";
        // Transactions take turns with the two heads, so the other is the one before (or none yet has been made).
        const bool consecutive = head.transaction <= 1 || metas[second ? 0 : 1].transaction + 1 == head.transaction;
        if (!transaction && (!consecutive || (head.transaction & 1) != (second ? 1U : 0U)))
            return "its heads do not belong together";
        if (head.trees[0].pageSize != pageSize || head.lastPage >= count_ || head.lastPage < 1)
            return "its head has impossible numbers";
        count_ = head.lastPage + 1;
        used_[0] = used_[1] = true;
        for (const bool records : {false, true}) {
            records_ = records;
            entries_ = 0;
            const Tree &tree = head.trees[records ? 1 : 0];
            if (tree.flags != (records ? 0 : integerKeys)) return "its head says that its trees are of another kind";
            if (tree.root == noPage ? tree.entries != 0 : !visit(tree.root, tree.depth, {}, {})) return damage_;
            if (entries_ != tree.entries) return "records are missing";
        }
        for (const auto &[free, size] : freed_)
            if (!verifyFree(free, size)) return damage_;
        return {};
    }

private:
    bool fault(Page page, const char *what)
    {
        damage_ = "page " + std::to_string(page) + ' ' + what;
        return false;
    }
    bool use(Page number)
    {
        if (number >= count_ || number < 2) return fault(number, "does not exist, but is referred to");
        if (used_[number]) return fault(number, "is used twice");
        used_[number] = true;
        return true;
    }

    // A page and all below it. Keys are at or behind `from`, and before `to` if there is one.
    bool visit(Page number, int depth, std::string_view from, std::optional<std::string_view> to)
    {
        if (depth < 1 || depth > deepest) return fault(number, "is at an impossible depth");
        if (!use(number)) return false;
        const std::uint8_t *page = pages_ + number * pageSize;
        const auto head = recordAt<PageHead>(page);
        const bool isLeaf = depth == 1;
        // Other flags are of kinds of pages that there are none of here, or of pages still being written.
        if (head.number != number || head.flags != (isLeaf ? leaf : branch)) return fault(number, "is not of its kind");
        if (head.lower < sizeof head || head.lower > head.upper || head.upper > pageSize || head.lower % 2 != 0)
            return fault(number, "has impossible bounds");
        const std::size_t nodes = (head.lower - sizeof head) / 2;
        if (nodes < (isLeaf ? 1U : 2U)) return fault(number, "is empty");
        if (!standApart(page, head, nodes, isLeaf)) return false;
        std::string_view before = from;
        for (std::size_t i = 0; i < nodes; ++i) {
            const std::size_t at = placeOf(page, i);
            const auto node = recordAt<NodeHead>(page + at);
            const std::uint8_t *bytes = page + at + sizeof node;
            const std::string_view key(reinterpret_cast<const char *>(bytes), node.keySize);
            const bool bounded = isLeaf || i > 0; // the first key of a branch is not looked at by anybody
            if (bounded && !(i == 0 || (!isLeaf && i == 1) ? !less(key, before) : less(before, key)))
                return fault(number, "has its records out of order");
            if (bounded && to && !less(key, *to)) return fault(number, "has a record of another page");
            if (isLeaf ? !visitRecord(number, node, bytes) : !visitChild(page, node, i, nodes, key, depth, from, to))
                return false;
            if (bounded) before = key;
        }
        return true;
    }

    static std::size_t sizeOfValue(const NodeHead &node) { return node.low | std::size_t{node.high} << 16; }
    static std::size_t placeOf(const std::uint8_t *page, std::size_t i)
    {
        return recordAt<std::uint16_t>(page + sizeof(PageHead) + 2 * i);
    }

    // Every record of a page within it, and none over another: the library moves them by what they measure.
    bool standApart(const std::uint8_t *page, const PageHead &head, std::size_t nodes, bool isLeaf)
    {
        extents_.clear();
        for (std::size_t i = 0; i < nodes; ++i) {
            const std::size_t at = placeOf(page, i);
            if (at < head.upper || at % 2 != 0 || at + sizeof(NodeHead) > pageSize)
                return fault(head.number, "has a record outside");
            const auto node = recordAt<NodeHead>(page + at);
            const std::size_t value = !isLeaf ? 0 : (node.flags & bigData) != 0 ? sizeof(Page) : sizeOfValue(node);
            const std::size_t size = (sizeof node + node.keySize + std::min(value, pageSize) + 1) / 2 * 2;
            if (size > pageSize - at) return fault(head.number, "has a record outside");
            extents_.emplace_back(at, at + size);
        }
        std::sort(extents_.begin(), extents_.end());
        const auto overlaps = [](const Extent &one, const Extent &next) { return one.second > next.first; };
        if (std::adjacent_find(extents_.begin(), extents_.end(), overlaps) != extents_.end())
            return fault(head.number, "has records one over another");
        return true;
    }

    bool visitChild(const std::uint8_t *page, const NodeHead &node, std::size_t i, std::size_t nodes,
                    std::string_view key, int depth, std::string_view from, std::optional<std::string_view> to)
    {
        Page child = node.low | Page{node.high} << 16;
        if constexpr (sizeof(Page) > 4) child |= Page{node.flags} << 32;
        std::optional<std::string_view> end = to;
        if (i + 1 < nodes) {
            const std::size_t at = placeOf(page, i + 1);
            const auto next = recordAt<NodeHead>(page + at);
            end = std::string_view(reinterpret_cast<const char *>(page + at + sizeof next), next.keySize);
        }
        return visit(child, depth - 1, i == 0 ? from : key, end);
    }

    bool visitRecord(Page number, const NodeHead &node, const std::uint8_t *bytes)
    {
        ++entries_;
        const std::size_t size = sizeOfValue(node);
        const std::uint8_t *value = bytes + node.keySize;
        if ((node.flags & ~bigData) != 0) return fault(number, "has a record of an unknown kind");
        if ((node.flags & bigData) != 0) {
            const auto first = recordAt<Page>(value);
            if (first >= count_ || size > (count_ - first) * pageSize - sizeof(PageHead))
                return fault(first, "does not exist, but is referred to");
            const std::size_t pages = (sizeof(PageHead) - 1 + size) / pageSize + 1;
            value = pages_ + first * pageSize;
            const auto head = recordAt<PageHead>(value);
            const std::size_t all = head.lower | std::size_t{head.upper} << 16;
            if (head.number != first || head.flags != overflow || all < pages)
                return fault(first, "is not of its kind");
            for (std::size_t i = 0; i < all; ++i)
                if (!use(first + i)) return false;
            value += sizeof(PageHead);
        }
        if (!records_) freed_.emplace_back(value, size);
        return true;
    }

    // A list of free pages: none of them is in use, none is there twice, the highest comes first. (The library looks
    // for pages in a row by the first and the last of them.)
    bool verifyFree(const std::uint8_t *list, std::size_t size)
    {
        const std::size_t most = size / sizeof(Page);
        const auto count = most == 0 ? 0 : recordAt<Page>(list);
        if (most == 0 || count > most - 1) return fault(0, "leads to a damaged list of free pages");
        for (Page i = 1, before = noPage; i <= count; ++i) {
            const auto page = recordAt<Page>(list + i * sizeof(Page));
            if (page >= before) return fault(page, "stands in a damaged list of free pages");
            if (!use(page)) return false;
            before = page;
        }
        return true;
    }

    // Keys of the free list are numbers, those of the records are bytes.
    [[nodiscard]] bool less(std::string_view a, std::string_view b) const
    {
        if (records_ || a.size() != sizeof(std::size_t) || b.size() != sizeof(std::size_t)) return a < b;
        return recordAt<std::size_t>(reinterpret_cast<const std::uint8_t *>(a.data())) <
               recordAt<std::size_t>(reinterpret_cast<const std::uint8_t *>(b.data()));
    }

    const std::uint8_t *pages_;
    std::size_t count_;
    std::vector<bool> used_;
    std::vector<std::pair<const std::uint8_t *, std::size_t>> freed_;
    std::vector<Extent> extents_; // of the records of one page
    std::size_t entries_ = 0;
    bool records_ = false;
    std::string damage_;
};

} // namespace

std::optional<PageHeads> readPageHeads(const std::filesystem::path &data)
{
    // A descriptor of its own: the library's locks are on its other file.
    const int fd = ::open(data.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) return std::nullopt;
    PageHeads heads{};
    const bool read = pread(fd, heads.data(), heads.size(), 0) == static_cast<ssize_t>(heads.size());
    close(fd);
    return read ? std::optional(heads) : std::nullopt;
}

PagesVerdict verifyPages(const std::filesystem::path &data)
{
    errno = 0;
    const auto heads = readPageHeads(data);
    if (!heads) {
        const auto kind = isOfThisProcess(errno) ? PagesVerdict::Kind::Unreadable : PagesVerdict::Kind::Damaged;
        return {kind, "data.mdb cannot be read"};
    }
    return verifyPages(data, *heads, std::nullopt);
}

PagesVerdict verifyPages(const std::filesystem::path &data, const PageHeads &heads,
                         std::optional<std::uint64_t> transaction)
{
    using Kind = PagesVerdict::Kind;
    const int fd = ::open(data.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    struct stat status {};
    if (fd < 0) return {Kind::Unreadable, "data.mdb cannot be opened"};
    const bool regular = fstat(fd, &status) == 0 && S_ISREG(status.st_mode);
    const auto size = regular ? static_cast<std::size_t>(status.st_size) : 0;
    if (size < 2 * pageSize) {
        close(fd);
        return {Kind::Damaged, "the file is too short"};
    }
    const Mapping map(fd, size);
    close(fd);
    if (map.start() == nullptr) return {Kind::Unreadable, "data.mdb cannot be mapped"};
    std::string damage = Walk(map.start(), size / pageSize).verify(heads, transaction);
    return damage.empty() ? PagesVerdict{} : PagesVerdict{Kind::Damaged, std::move(damage)};
}

} // namespace mqrig::qmgr::store
