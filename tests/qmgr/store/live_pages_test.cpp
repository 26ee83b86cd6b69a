// What the page verifier says of files that the library wrote, and of the same files with one thing wrong in them that
// would lead the library astray.

#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <lmdb.h>
#include <unistd.h>

#include "qmgr/store/live_pages.h"

namespace mqrig::qmgr::store {
namespace {

constexpr std::size_t word = sizeof(std::size_t);
constexpr std::size_t pageSize = 4096;
constexpr std::size_t pageHead = word + 8;
constexpr std::size_t trees = pageHead + 8 + 2 * word; // in the head of the file: behind magic, version, address, size
constexpr std::size_t treeSize = 8 + 5 * word;
enum PageFlag : std::uint16_t { branch = 1, leaf = 2, overflow = 4 };

// A number in the file, at any place.
template <class Number>
class Stored {
public:
    explicit Stored(char *place) : place_(place) {}
    Stored(const Stored &) = default;
    ~Stored() = default;
    void operator=(const Stored &other) const { *this = static_cast<Number>(other); } // NOLINT
    operator Number() const // NOLINT(google-explicit-constructor): stands for the number
    {
        Number number = 0;
        std::memcpy(&number, place_, sizeof number);
        return number;
    }
    void operator=(Number number) const { std::memcpy(place_, &number, sizeof number); } // NOLINT
    void operator+=(Number more) const { *this = static_cast<Number>(*this + more); }
    void operator|=(Number more) const { *this = static_cast<Number>(*this | more); }

private:
    char *place_;
};

template <class Number>
void exchange(const Stored<Number> &one, const Stored<Number> &other)
{
    const Number kept = one;
    one = static_cast<Number>(other);
    other = kept;
}

class LivePages : public ::testing::Test {
protected:
    void SetUp() override
    {
        folder_ = std::filesystem::temp_directory_path() / ("mqrig-live-pages-" + std::to_string(getpid()));
        std::filesystem::remove_all(folder_);
        std::filesystem::create_directory(folder_);
        writeFile();
        std::ifstream stream(file(), std::ios::binary);
        whole_.assign(std::istreambuf_iterator<char>(stream), {});
        bytes_ = whole_;
        const std::size_t last = at<std::size_t>(fileHead() + trees + 2 * treeSize);
        whole_.resize((last + 1) * pageSize); // what lies behind was never used
        bytes_ = whole_;
    }
    void TearDown() override { std::filesystem::remove_all(folder_); }

    [[nodiscard]] std::filesystem::path file() const { return folder_ / "data.mdb"; }

    // Several levels of pages, large values, and pages that have become free.
    void writeFile() const
    {
        MDB_env *environment = nullptr;
        ASSERT_EQ(mdb_env_create(&environment), 0);
        ASSERT_EQ(mdb_env_set_mapsize(environment, std::size_t{16} << 20), 0);
        ASSERT_EQ(mdb_env_open(environment, folder_.c_str(), MDB_NOTLS | MDB_NOSYNC | MDB_WRITEMAP, 0600), 0);
        for (int round = 0; round < 3; ++round) {
            MDB_txn *transaction = nullptr;
            MDB_dbi records = 0;
            ASSERT_EQ(mdb_txn_begin(environment, nullptr, 0, &transaction), 0);
            ASSERT_EQ(mdb_dbi_open(transaction, nullptr, 0, &records), 0);
            for (int n = 0; n < 3000; ++n) {
                std::string name = "record " + std::to_string(n * 7 % 3000);
                std::string text(n % 100 == 0 ? std::size_t{10'000} : std::size_t{101}, 'v');
                MDB_val key{name.size(), name.data()};
                MDB_val value{text.size(), text.data()};
                const bool goes = n % 5 == round;
                const int code = round == 0 ? mdb_put(transaction, records, &key, &value, 0)
                                 : goes     ? mdb_del(transaction, records, &key, nullptr)
                                            : 0;
                ASSERT_EQ(code, 0);
            }
            ASSERT_EQ(mdb_txn_commit(transaction), 0);
        }
        mdb_env_close(environment);
    }

    template <class Number>
    Stored<Number> at(std::size_t place)
    {
        return Stored<Number>(bytes_.data() + place);
    }
    // Of the transaction that counts: the later one.
    std::size_t fileHead()
    {
        const std::size_t number = trees + 2 * treeSize + word;
        return at<std::size_t>(number) < at<std::size_t>(pageSize + number) ? pageSize : 0;
    }
    // The number of the transaction that wrote one of the two heads, and of the last page in use then.
    Stored<std::size_t> transaction(std::size_t head) { return at<std::size_t>(head + trees + 2 * treeSize + word); }
    Stored<std::size_t> lastPage() { return at<std::size_t>(fileHead() + trees + 2 * treeSize); }
    std::size_t tree(bool records) { return fileHead() + trees + (records ? treeSize : 0); }
    std::size_t root(bool records) { return at<std::size_t>(tree(records) + 8 + 4 * word) * pageSize; }
    Stored<std::uint16_t> flags(std::size_t page) { return at<std::uint16_t>(page + word + 2); }
    Stored<std::uint16_t> place(std::size_t page, std::size_t n) { return at<std::uint16_t>(page + pageHead + 2 * n); }
    std::size_t node(std::size_t page, std::size_t n) { return page + place(page, n); }
    // The first page of that kind below the root of the records.
    std::size_t firstPage(PageFlag kind)
    {
        std::size_t page = root(true);
        while ((flags(page) & kind) == 0 && (flags(page) & branch) != 0)
            page =
                (at<std::uint16_t>(node(page, 0)) | std::size_t{at<std::uint16_t>(node(page, 0) + 2)} << 16) * pageSize;
        return page;
    }
    // The place of the value of the first record of a leaf that stands on pages of its own, behind the page's number.
    std::size_t largeRecord()
    {
        for (std::size_t page = 2 * pageSize; page < bytes_.size(); page += pageSize) {
            if (flags(page) != leaf || at<std::size_t>(page) * pageSize != page) continue;
            const std::size_t records = (at<std::uint16_t>(page + word + 4) - pageHead) / 2;
            for (std::size_t n = 0; n < records; ++n)
                if (at<std::uint16_t>(node(page, n) + 4) == 1 && isUsed(page)) return node(page, n);
        }
        ADD_FAILURE() << "there is none";
        return 0;
    }
    // Whether damage to the page is noticed: it belongs to the present state.
    bool isUsed(std::size_t page)
    {
        flags(page) = branch | leaf;
        const bool noticed = !said().empty();
        flags(page) = leaf;
        return noticed;
    }
    // The list of free pages that the first record of their tree holds.
    std::size_t freeList()
    {
        const std::size_t record = node(root(false), 0);
        const std::size_t value = record + 8 + word;
        if (at<std::uint16_t>(record + 4) == 0) return value;
        std::size_t page = 0;
        std::memcpy(&page, bytes_.data() + value, sizeof page);
        return page * pageSize + pageHead;
    }

    // What is said of the bytes as they are now; empty: they are sound.
    std::string said() const
    {
        std::ofstream(file(), std::ios::binary | std::ios::trunc) << bytes_;
        const PagesVerdict verdict = verifyPages(file());
        EXPECT_EQ(verdict.damage.empty(), verdict.kind == PagesVerdict::Kind::Sound);
        return verdict.damage;
    }
    // The same after a change, which is taken back.
    template <class Change>
    std::string saidAfter(Change &&change)
    {
        change();
        std::string answer = said();
        bytes_ = whole_;
        return answer;
    }

    std::filesystem::path folder_;
    std::string whole_;
    std::string bytes_;
};

#define EXPECT_FOUND(change) EXPECT_NE(saidAfter([&] { change; }), "")
#define EXPECT_SAID(change, words) EXPECT_NE(saidAfter([&] { change; }).find(words), std::string::npos)

TEST_F(LivePages, AsTheLibraryWroteThemAreSound)
{
    EXPECT_EQ(said(), "");
    ASSERT_EQ(flags(firstPage(leaf)), leaf);
    ASSERT_EQ(flags(firstPage(branch)), branch);
    ASSERT_GT(at<std::size_t>(freeList()), 2U);
}

TEST_F(LivePages, OfAnotherKindAreFound)
{
    EXPECT_SAID(flags(firstPage(leaf)) |= 0x20, "is not of its kind"); // records of one size, without heads
    EXPECT_SAID(flags(firstPage(leaf)) |= 0x40, "is not of its kind"); // a page within a record
    EXPECT_SAID(flags(firstPage(leaf)) |= 0x10, "is not of its kind"); // would be written over in its place
    EXPECT_SAID(flags(firstPage(branch)) |= 0x20, "is not of its kind");
    EXPECT_SAID(flags(root(true)) = leaf, "is not of its kind");
    EXPECT_SAID(at<std::size_t>(firstPage(leaf)) += 1, "is not of its kind");
}

TEST_F(LivePages, WhoseHeadsDoNotBelongTogetherAreFound)
{
    const std::size_t other = pageSize - fileHead();
    EXPECT_SAID(transaction(other) += ~std::size_t{0}, "its heads do not belong together");
    EXPECT_SAID(transaction(fileHead()) += 2, "its heads do not belong together");
    EXPECT_SAID(exchange(transaction(0), transaction(pageSize)), "its heads do not belong together");
}

TEST_F(LivePages, WhoseHeadHasImpossibleNumbersAreFound)
{
    EXPECT_SAID(at<std::uint32_t>(tree(false)) = 512, "its head has impossible numbers"); // the size of a page
    EXPECT_SAID(lastPage() = 0, "its head has impossible numbers");
    EXPECT_SAID(lastPage() += 1, "its head has impossible numbers");
    EXPECT_SAID(lastPage() = ~std::size_t{0}, "its head has impossible numbers");
}

TEST_F(LivePages, CutOffBehindTheirHeadsAreFound)
{
    const auto heads = readPageHeads(file());
    ASSERT_TRUE(heads.has_value());
    std::filesystem::resize_file(file(), 2 * pageSize - 1);
    const PagesVerdict verdict = verifyPages(file(), *heads, std::nullopt);
    EXPECT_EQ(verdict.kind, PagesVerdict::Kind::Damaged);
    EXPECT_EQ(verdict.damage, "the file is too short");
    std::filesystem::resize_file(file(), 2 * pageSize);
    EXPECT_EQ(verifyPages(file(), *heads, std::nullopt).kind, PagesVerdict::Kind::Damaged);
}

TEST_F(LivePages, WhoseTreesAreOfAnotherKindAreFound)
{
    for (const std::uint16_t kind :
         std::initializer_list<std::uint16_t>{2, 4, 8, 16}) // keys in another order, several values for a key
        EXPECT_SAID(at<std::uint16_t>(tree(true) + 4) = kind, "trees are of another kind");
    EXPECT_SAID(at<std::uint16_t>(tree(false) + 4) = 0, "trees are of another kind");
    EXPECT_SAID(at<std::uint16_t>(tree(true) + 6) += 1, "is not of its kind"); // the depth
    EXPECT_SAID(at<std::uint16_t>(tree(true) + 6) = 0, "impossible depth");
    EXPECT_SAID(at<std::size_t>(tree(true) + 8 + 3 * word) += 1, "records are missing");
}

TEST_F(LivePages, WithRecordsOneOverAnotherAreFound)
{
    const std::size_t page = firstPage(leaf);
    EXPECT_SAID(place(page, 1) = place(page, 0), "one over another");
    EXPECT_FOUND(place(page, 1) = static_cast<std::uint16_t>(place(page, 0) + 2));
    EXPECT_FOUND(at<std::uint16_t>(node(page, 1)) =
                     static_cast<std::uint16_t>(at<std::uint16_t>(node(page, 1)) + 4)); // a value that is too long
    const std::size_t inner = firstPage(branch);
    EXPECT_SAID(place(inner, 1) = place(inner, 2), "one over another");
}

TEST_F(LivePages, WithRecordsOutsideAreFound)
{
    const std::size_t page = firstPage(leaf);
    EXPECT_SAID(place(page, 0) = 4094, "has a record outside");
    EXPECT_SAID(place(page, 0) = 20, "has a record outside");
    EXPECT_SAID(place(page, 0) = static_cast<std::uint16_t>(place(page, 0) + 1), "has a record outside");
    EXPECT_SAID(at<std::uint16_t>(node(page, 0) + 6) = 0xFFFF, "has a record outside"); // the key
    EXPECT_SAID(at<std::uint16_t>(node(page, 1) + 2) = 0xFFFF, "has a record outside"); // the value
    EXPECT_SAID(at<std::uint16_t>(node(page, 1) + 4) = 2, "of an unknown kind");
    EXPECT_SAID(at<std::uint16_t>(page + word + 4) = 0xFFFE, "has impossible bounds");
    EXPECT_SAID(at<std::uint16_t>(page + word + 4) = pageHead, "is empty");
}

TEST_F(LivePages, InAnotherOrderAreFound)
{
    const std::size_t page = firstPage(leaf);
    EXPECT_SAID(exchange(place(page, 0), place(page, 1)), "out of order");
    const std::size_t inner = firstPage(branch);
    EXPECT_FOUND(exchange(place(inner, 1), place(inner, 2)));
    EXPECT_FOUND(bytes_[node(page, 0) + 8] = 'z');
}

TEST_F(LivePages, UsedTwiceOrNotThereAreFound)
{
    const std::size_t inner = firstPage(branch);
    EXPECT_FOUND(at<std::uint16_t>(node(inner, 1)) = at<std::uint16_t>(node(inner, 0)));
    EXPECT_SAID(at<std::uint16_t>(node(inner, 1) + 2) = 0xFFFF, "does not exist");
    EXPECT_SAID(at<std::uint16_t>(node(inner, 1)) = 1, "does not exist");
}

TEST_F(LivePages, OfLargeValuesThatReachTooFarAreFound)
{
    const std::size_t record = largeRecord();
    const std::size_t value = record + 8 + at<std::uint16_t>(record + 6);
    const auto number = [&](std::size_t page) { std::memcpy(bytes_.data() + value, &page, sizeof page); };
    EXPECT_SAID(at<std::uint16_t>(record + 2) = 0xFFFF, "does not exist");
    EXPECT_SAID(at<std::uint32_t>(record) = 0xFFFFFFFF, "does not exist");
    EXPECT_SAID(number(~std::size_t{0}), "does not exist");
    EXPECT_SAID(number(1), "is not of its kind");
    EXPECT_SAID(at<std::uint32_t>(record) = 50'000, "is not of its kind"); // more than its pages
}

TEST_F(LivePages, WhoseFreeOnesAreDisorderedAreFound)
{
    const std::size_t list = freeList();
    const auto entry = [&](std::size_t n) { return at<std::size_t>(list + n * word); };
    EXPECT_SAID(exchange(entry(1), entry(2)), "damaged list of free pages");
    EXPECT_SAID(entry(2) = entry(1), "damaged list of free pages");
    EXPECT_SAID(entry(1) = ~std::size_t{0} - 1, "does not exist");
    EXPECT_SAID(entry(0) = ~std::size_t{0}, "damaged list of free pages");
    EXPECT_FOUND(entry(entry(0)) = root(true) / pageSize);
}

TEST_F(LivePages, OfAnEmptyOrForeignFileAreDamaged)
{
    for (const std::size_t size : {0, 100, 8192, 40'000}) {
        bytes_.assign(size, 'x');
        EXPECT_NE(said(), "") << size;
    }
    std::filesystem::remove(file());
    EXPECT_NE(verifyPages(file()).kind, PagesVerdict::Kind::Sound);
}

} // namespace
} // namespace mqrig::qmgr::store
