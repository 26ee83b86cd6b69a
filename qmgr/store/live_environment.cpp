#include "qmgr/store/live_environment.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <linux/magic.h>
#include <new>
#include <optional>
#include <sys/vfs.h>

#include "qmgr/store/seams.h"
#include "qmgr/store/store.h"
#include "qmgr/store/system_error.h"
#include "qmgr/store/thread_sanitizer.h"

namespace mqrig::qmgr::store {

namespace {

constexpr unsigned readerSlots = 8192;
constexpr std::uint64_t pageSize = 4096;
constexpr std::uint64_t largestStep = std::uint64_t{512} << 20;
constexpr long xfsMagic = 0x58465342;

// The file systems on which a reserved block is proof against a full disk also when written through a mapping. Nothing,
// with errno, if it cannot be found out: a guess would set this process apart from the others, and the library does not
// bear some that write through the map beside some that do not.
std::optional<bool> reservationHolds(const std::filesystem::path &folder)
{
    struct statfs system {};
    if (statfs(folder.c_str(), &system) != 0) return std::nullopt;
    return system.f_type == EXT4_SUPER_MAGIC || system.f_type == TMPFS_MAGIC || system.f_type == xfsMagic;
}

} // namespace

Outcome outcomeOfLive(int code)
{
    switch (code) {
    case MDB_SUCCESS:
        return success();
    case MDB_MAP_FULL:
        return failure(MQRC_STORAGE_NOT_AVAILABLE);
    case MDB_READERS_FULL:
    case MDB_TXN_FULL:
        return failure(MQRC_RESOURCE_PROBLEM);
    default:
        // The library's own codes are negative, and the others speak of damage.
        return code < 0 ? failure(MQRC_UNEXPECTED_ERROR) : outcomeOfSystem(code);
    }
}

void Gate::enter()
{
    for (;;) {
        const std::uint32_t before = inside_.fetch_add(1, std::memory_order_acquire);
        if ((before & closed) == 0) return;
        leave();
        for (std::uint32_t now = inside_.load(); (now & closed) != 0; now = inside_.load())
            inside_.wait(now);
    }
}

void Gate::leave()
{
    const std::uint32_t before = inside_.fetch_sub(1, std::memory_order_release);
    if ((before & closed) != 0) inside_.notify_all();
}

void Gate::close()
{
    inside_.fetch_or(closed, std::memory_order_acquire);
    for (std::uint32_t now = inside_.load(); now != closed; now = inside_.load())
        inside_.wait(now);
}

void Gate::open()
{
    inside_.fetch_and(~closed, std::memory_order_release);
    inside_.notify_all();
}

LiveEnvironment::Opened LiveEnvironment::open(const std::filesystem::path &live, ControlBlock &control, LockFile &locks)
{
    std::unique_ptr<LiveEnvironment> made(new LiveEnvironment(control, locks));
    const auto writeMapped = reservationHolds(live);
    if (!writeMapped) return {outcomeOfLive(errno), nullptr};
    made->writeMapped_ = *writeMapped;
    const std::scoped_lock thread(made->mapMutex_);
    const HeldLock process(locks, lockBytes::map);
    if (!process.held()) return {failure(MQRC_RESOURCE_PROBLEM), nullptr};

    int code = mdb_env_create(&made->env_);
    if (code == 0) code = mdb_env_set_maxreaders(made->env_, readerSlots);
    const std::uint64_t size = control.mapSize == 0 ? made->firstSize_ : control.mapSize.load();
    if (code == 0) code = mdb_env_set_mapsize(made->env_, size);
    const unsigned flags = MDB_NOTLS | MDB_NOSYNC | MDB_NORDAHEAD | (made->writeMapped_ ? MDB_WRITEMAP : 0U);
    if (code == 0) code = mdb_env_open(made->env_, live.c_str(), flags, 0600);
    if (code != 0) return {outcomeOfLive(code), nullptr};
    if (control.mapSize == 0) {
        if (const Outcome reserved = made->reserve(size); reserved.failed()) return {reserved, nullptr};
        control.mapSize = size;
    }
    made->mapped_ = size;
    MDB_txn *txn = nullptr;
    code = mdb_txn_begin(made->env_, nullptr, MDB_RDONLY, &txn);
    if (code == 0) code = mdb_dbi_open(txn, nullptr, 0, &made->records_);
    if (code == 0) {
        code = mdb_txn_commit(txn);
    } else if (txn != nullptr) {
        mdb_txn_abort(txn);
    }
    if (code != 0) return {outcomeOfLive(code), nullptr};
    made->clearDeadReaders();
    return {success(), std::move(made)};
}

LiveEnvironment::~LiveEnvironment()
{
    for (MDB_txn *reader : readers_)
        mdb_txn_abort(reader);
    if (env_ != nullptr) mdb_env_close(env_);
}

Outcome LiveEnvironment::reserve(std::uint64_t size)
{
    if (const int error = injectedError(StorageCall::Reserve); error != 0) return outcomeOfLive(error);
    // Through the library's own descriptor: closing another one of the file would drop its locks.
    int fd = -1;
    if (const int code = mdb_env_get_fd(env_, &fd); code != 0) return outcomeOfLive(code);
    for (;;) {
        const int error = posix_fallocate(fd, 0, static_cast<off_t>(size));
        if (error != EINTR) return outcomeOfLive(error);
    }
}

int LiveEnvironment::clearDeadReaders()
{
    int dead = 0;
    mdb_reader_check(env_, &dead);
    return dead;
}

Outcome LiveEnvironment::beginRead(MDB_txn *&txn)
{
    for (;;) {
        if (mapped_.load(std::memory_order_relaxed) != control_.mapSize.load(std::memory_order_acquire)) {
            if (const Outcome followed = followMap(); followed.failed()) return followed;
        }
        gate_.enter();
        txn = nullptr;
        {
            const std::scoped_lock lock(readersMutex_);
            if (!readers_.empty()) {
                txn = readers_.back();
                readers_.pop_back();
            }
        }
        int code = 0;
        if (txn != nullptr) {
            code = mdb_txn_renew(txn);
        } else {
            // Room for it in the pool now: its end must not ask for memory.
            code = roomForOneReader() ? mdb_txn_begin(env_, nullptr, MDB_RDONLY, &txn) : ENOMEM;
        }
        if (code == 0) {
            takeUp(env_);
            return success();
        }
        if (txn != nullptr) mdb_txn_abort(txn);
        forgetReader();
        gate_.leave();
        if (code == MDB_MAP_RESIZED) continue; // grown since we looked: the published size is the new one by now
        if (code == MDB_READERS_FULL && clearDeadReaders() > 0) continue;
        return outcomeOfLive(code);
    }
}

Outcome LiveEnvironment::beginReadOfPages(MDB_txn *&txn, const std::filesystem::path &data, PageHeads &heads)
{
    for (;;) {
        if (const Outcome begun = beginRead(txn); begun.failed()) return begun;
        MDB_txn *writer = nullptr; // inside the reader's gate: nothing is remapped between the two
        int code = mdb_txn_begin(env_, nullptr, 0, &writer);
        if (code == 0) {
            mdb_txn_reset(txn);
            code = mdb_txn_renew(txn);
            const auto read = readPageHeads(data);
            mdb_txn_abort(writer);
            if (code == 0 && read) {
                heads = *read;
                return success();
            }
        }
        endRead(txn);
        txn = nullptr;
        if (code != MDB_MAP_RESIZED) return code == 0 ? failure(MQRC_UNEXPECTED_ERROR) : outcomeOfLive(code);
    }
}

bool LiveEnvironment::roomForOneReader()
{
    const std::scoped_lock lock(readersMutex_);
    ++readersMade_;
    try {
        readers_.reserve(readersMade_);
        return true;
    } catch (const std::bad_alloc &) {
        return false;
    }
}

void LiveEnvironment::forgetReader()
{
    const std::scoped_lock lock(readersMutex_);
    --readersMade_;
}

void LiveEnvironment::endRead(MDB_txn *txn)
{
    handOver(env_);
    mdb_txn_reset(txn);
    {
        const std::scoped_lock lock(readersMutex_);
        readers_.push_back(txn);
    }
    gate_.leave();
}

Outcome LiveEnvironment::beginWrite(MDB_txn *&txn, std::size_t room)
{
    if (const int error = injectedError(StorageCall::LiveBegin); error != 0) return outcomeOfLive(error);
    for (;;) {
        if (mapped_.load(std::memory_order_relaxed) != control_.mapSize.load(std::memory_order_acquire)) {
            if (const Outcome followed = followMap(); followed.failed()) return followed;
        }
        gate_.enter();
        const int code = mdb_txn_begin(env_, nullptr, 0, &txn);
        if (code == MDB_MAP_RESIZED) {
            gate_.leave();
            continue;
        }
        if (code != 0) {
            gate_.leave();
            return outcomeOfLive(code);
        }
        takeUp(env_);
        if (room == 0 || hasRoom(room) || hasFreePages(room)) return success();
        abortWrite(txn);
        txn = nullptr;
        if (const Outcome grown = grow(room); grown.failed()) return grown;
    }
}

int LiveEnvironment::commitWrite(MDB_txn *txn)
{
    int code = injectedError(StorageCall::LiveCommit);
    if (code == 0) {
        handOver(env_);
        code = mdb_txn_commit(txn);
    } else {
        mdb_txn_abort(txn);
    }
    gate_.leave();
    return code;
}

void LiveEnvironment::abortWrite(MDB_txn *txn)
{
    mdb_txn_abort(txn);
    gate_.leave();
}

// Whether the pages never used yet will do: a moment's arithmetic, and nearly always the answer.
bool LiveEnvironment::hasRoom(std::size_t room) const
{
    MDB_envinfo info{};
    mdb_env_info(env_, &info);
    return (info.me_last_pgno + 1) * pageSize + room + margin_ <= mapped_.load(std::memory_order_relaxed);
}

// The last page ever used does not come back when messages go, so a map that was once full always looks full: then
// only the list of free pages knows. It is read only when growing has failed.
bool LiveEnvironment::hasFreePages(std::size_t room) const
{
    if (cannotGrow_.load(std::memory_order_relaxed) != mapped_.load(std::memory_order_relaxed)) return false;
    // The list is tree number 0, which the library shows to readers only.
    MDB_txn *txn = nullptr;
    if (mdb_txn_begin(env_, nullptr, MDB_RDONLY, &txn) != 0) return false;
    MDB_cursor *cursor = nullptr;
    if (mdb_cursor_open(txn, 0, &cursor) != 0) {
        mdb_txn_abort(txn);
        return false;
    }
    std::uint64_t free = 0;
    MDB_val key{};
    MDB_val value{};
    while (mdb_cursor_get(cursor, &key, &value, MDB_NEXT) == 0) {
        std::size_t pages = 0;
        std::memcpy(&pages, value.mv_data, sizeof pages);
        free += pages * pageSize;
    }
    mdb_cursor_close(cursor);
    mdb_txn_abort(txn);
    return free >= 2 * room + margin_;
}

// Takes over the size that another process has published.
Outcome LiveEnvironment::followMap()
{
    return remap([](std::uint64_t published) { return published; });
}

Outcome LiveEnvironment::grow(std::size_t room)
{
    clearDeadReaders();
    const std::uint64_t before = mapped_.load(std::memory_order_relaxed);
    const Outcome grown = remap([before, room, this](std::uint64_t published) {
        if (published != before) return published; // somebody else has just done it
        const std::uint64_t step = std::max(std::min(before, largestStep), std::uint64_t{room} + 2 * margin_);
        return (before + step + firstSize_ - 1) / firstSize_ * firstSize_;
    });
    if (grown.failed()) cannotGrow_ = before;
    return grown;
}

template <class NewSize>
Outcome LiveEnvironment::remap(NewSize &&newSize)
{
    const std::scoped_lock thread(mapMutex_);
    const HeldLock process(locks_, lockBytes::map);
    if (!process.held()) return failure(MQRC_RESOURCE_PROBLEM);
    Outcome outcome;
    const std::uint64_t published = control_.mapSize;
    const std::uint64_t size = newSize(published);
    if (size > published) {
        outcome = reserve(size);
        // The space is there, or it is not used: a killed process leaves a file that is merely longer than its map.
        reached(Step::MapReserved);
        if (!outcome.failed()) control_.mapSize = size;
        reached(Step::MapPublished);
    }
    if (!outcome.failed() && mapped_ != size) {
        gate_.close();
        if (broken_) {
            outcome = failure(MQRC_RESOURCE_PROBLEM);
        } else if (const int code = mdb_env_set_mapsize(env_, size); code != 0) {
            // The library has unmapped the old map and has no new one: nothing may touch it any more.
            broken_ = true;
            mapped_ = 0;
            outcome = outcomeOfLive(code);
        } else {
            mapped_ = size;
        }
        gate_.open();
    }
    return outcome;
}

} // namespace mqrig::qmgr::store
