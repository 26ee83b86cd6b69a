// What the disk and the two storage libraries cost by themselves in a given folder: the floor under the embedded
// queue manager's rates. Usage: storage_floor FOLDER
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <unistd.h>
#include <vector>

#include <lmdb.h>
#include <sqlite3.h>

namespace {

using Clock = std::chrono::steady_clock;

void fail(const char *what, const char *why)
{
    std::fprintf(stderr, "%s: %s\n", what, why);
    std::exit(1);
}

double microseconds(Clock::time_point start)
{
    return std::chrono::duration<double, std::micro>(Clock::now() - start).count();
}

void report(const char *what, std::vector<double> &samples)
{
    std::sort(samples.begin(), samples.end());
    std::printf("%-46s p50 %8.2f us  p99 %8.2f us\n", what, samples[samples.size() / 2],
                samples[samples.size() * 99 / 100]);
}

void measureFdatasync(const std::string &folder)
{
    const std::string path = folder + "/fdatasync.bin";
    const int fd = open(path.c_str(), O_CREAT | O_RDWR | O_TRUNC, 0600);
    if (fd < 0) fail("open", std::strerror(errno));
    std::vector<char> block(4096, 'x');
    constexpr int rounds = 500;
    if (posix_fallocate(fd, 0, 4096L * rounds) != 0) fail("posix_fallocate", std::strerror(errno));
    std::vector<double> samples;
    for (int i = 0; i < rounds; ++i) {
        const auto start = Clock::now();
        if (pwrite(fd, block.data(), block.size(), 4096L * i) != 4096 || fdatasync(fd) != 0)
            fail("fdatasync", std::strerror(errno));
        samples.push_back(microseconds(start));
    }
    close(fd);
    report("4 KiB write and fdatasync", samples);
}

void measureSqlite(const std::string &folder)
{
    sqlite3 *db = nullptr;
    if (sqlite3_open((folder + "/floor.db").c_str(), &db) != SQLITE_OK) fail("sqlite3_open", sqlite3_errmsg(db));
    sqlite3_exec(db, "PRAGMA journal_mode=WAL; PRAGMA synchronous=FULL; CREATE TABLE m(n INTEGER PRIMARY KEY, b BLOB)",
                 nullptr, nullptr, nullptr);
    sqlite3_stmt *insert = nullptr;
    if (sqlite3_prepare_v2(db, "INSERT INTO m(b) VALUES(zeroblob(512))", -1, &insert, nullptr) != SQLITE_OK)
        fail("sqlite3_prepare", sqlite3_errmsg(db));
    std::vector<double> samples;
    for (int i = 0; i < 500; ++i) {
        const auto start = Clock::now();
        if (sqlite3_step(insert) != SQLITE_DONE) fail("sqlite3_step", sqlite3_errmsg(db));
        sqlite3_reset(insert);
        samples.push_back(microseconds(start));
    }
    sqlite3_finalize(insert);
    sqlite3_close(db);
    report("SQLite WAL, synchronous FULL, one 512-byte row", samples);
}

void measureLmdb(const std::string &folder)
{
    const std::string path = folder + "/lmdb";
    std::filesystem::create_directory(path);
    MDB_env *env = nullptr;
    mdb_env_create(&env);
    mdb_env_set_mapsize(env, 512UL << 20);
    if (const int rc = mdb_env_open(env, path.c_str(), MDB_WRITEMAP | MDB_NOSYNC | MDB_NOTLS, 0600); rc != 0)
        fail("mdb_env_open", mdb_strerror(rc));
    MDB_dbi dbi = 0;
    MDB_txn *txn = nullptr;
    mdb_txn_begin(env, nullptr, 0, &txn);
    mdb_dbi_open(txn, nullptr, 0, &dbi);
    mdb_txn_commit(txn);
    std::vector<char> value(512, 'x');
    std::vector<double> samples;
    for (std::uint64_t i = 0; i < 200000; ++i) {
        const std::uint64_t key = __builtin_bswap64(i);
        MDB_val k{sizeof key, const_cast<std::uint64_t *>(&key)};
        MDB_val v{value.size(), value.data()};
        const auto start = Clock::now();
        mdb_txn_begin(env, nullptr, 0, &txn);
        if (const int rc = mdb_put(txn, dbi, &k, &v, MDB_APPEND); rc != 0) fail("mdb_put", mdb_strerror(rc));
        mdb_txn_commit(txn);
        samples.push_back(microseconds(start));
    }
    mdb_env_close(env);
    report("LMDB write-mapped, unsynced, one 512-byte put", samples);
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: storage_floor FOLDER\n");
        return 2;
    }
    const std::string folder = std::string(argv[1]) + "/storage_floor." + std::to_string(getpid());
    std::filesystem::create_directories(folder);
    measureFdatasync(folder);
    measureSqlite(folder);
    measureLmdb(folder);
    std::filesystem::remove_all(folder);
    return 0;
}
