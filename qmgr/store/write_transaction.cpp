#include <algorithm>

#include "qmgr/store/control_block.h"
#include "qmgr/store/live_environment.h"
#include "qmgr/store/live_records.h"
#include "qmgr/store/per_thread.h"
#include "qmgr/store/seams.h"
#include "qmgr/store/transaction.h"
#include "qmgr/store/transaction_scratch.h"

namespace mqrig::qmgr::store {

namespace {

void add(OpenCounts &counts, const OpenCounts &change)
{
    counts.input += change.input;
    counts.exclusive += change.exclusive;
    counts.output += change.output;
    counts.browse += change.browse;
    counts.together += change.together;
}

// The stored bytes of a record with its header changed. Read out before anything is written: the page moves.
struct SmallRecord {
    std::array<std::byte, sizeof(MessageHeader) + inlineBody> bytes;
    std::size_t size;
};

} // namespace

TransactionScratch &TransactionScratch::ofThisThread()
{
    return PerThread<TransactionScratch>::get();
}

WriteTransaction::~WriteTransaction()
{
    if (txn_ != nullptr) environment_->abortWrite(txn_);
}

Ticket WriteTransaction::ticket() const
{
    // LMDB numbers write transactions in the order in which they hold the writer lock: the order of the log, too.
    return mdb_txn_id(txn_);
}

void WriteTransaction::store(const LiveKey &key, const void *data, std::size_t size)
{
    if (outcome_.failed()) return;
    if (const int error = injectedError(StorageCall::LivePut); error != 0) {
        sticks(error);
        return;
    }
    MDB_val name = valueOf(key);
    MDB_val value{size, const_cast<void *>(data)}; // NOLINT: the library takes no const
    sticks(mdb_put(txn_, records_, &name, &value, 0));
}

void WriteTransaction::erase(const LiveKey &key)
{
    if (outcome_.failed()) return;
    MDB_val name = valueOf(key);
    sticks(mdb_del(txn_, records_, &name, nullptr));
}

QueueStatus &WriteTransaction::counters(QueueId queue)
{
    return scratch_->entryOf(*this, queue).status;
}

void WriteTransaction::createCounters(QueueId queue)
{
    auto &entry = scratch_->entryOf(*this, queue);
    if (entry.present) return;
    entry.present = true;
    entry.status.resetStatistics(currentTime());
}

void WriteTransaction::eraseCounters(QueueId queue)
{
    scratch_->entryOf(*this, queue).present = false;
    erase(LiveKey::queue(queue));
}

bool WriteTransaction::exists(QueueId queue)
{
    const auto &entry = scratch_->entryOf(*this, queue);
    return entry.present && entry.status.deleted == 0;
}

bool WriteTransaction::mustExist(QueueId queue)
{
    if (outcome_.failed()) return false;
    if (exists(queue)) return true;
    if (!outcome_.failed()) outcome_ = failure(MQRC_Q_DELETED);
    return false;
}

bool WriteTransaction::eraseSome(const LiveKey &prefix, int atMost)
{
    if (outcome_.failed()) return false;
    MDB_cursor *cursor = nullptr;
    if (!sticks(mdb_cursor_open(txn_, records_, &cursor))) return false;
    MDB_val key{};
    MDB_val value{};
    const auto first = [&] {
        key = valueOf(prefix);
        const int found = mdb_cursor_get(cursor, &key, &value, MDB_SET_RANGE);
        const bool itself = found == MDB_SUCCESS && key.mv_size == prefix.size();
        return itself && prefix.isPrefixOf(key.mv_data, key.mv_size) ? mdb_cursor_get(cursor, &key, &value, MDB_NEXT)
                                                                     : found;
    };
    int code = first();
    int erased = 0;
    for (; code == MDB_SUCCESS && prefix.isPrefixOf(key.mv_data, key.mv_size) && erased < atMost; ++erased) {
        code = mdb_cursor_del(cursor, 0);
        if (code != MDB_SUCCESS) break;
        // The cursor stands on the record behind the erased one, if the page has one more.
        code = mdb_cursor_get(cursor, &key, &value, MDB_GET_CURRENT);
        if (code != MDB_SUCCESS) code = first();
    }
    sticks(code);
    mdb_cursor_close(cursor);
    return erased == atMost && !outcome_.failed();
}

Booking &WriteTransaction::booking(QueueId queue)
{
    for (auto &entry : scratch_->bookings) {
        if (entry.queue == queue) return entry.booking;
    }
    const auto booking = recordIn<Booking>(get(LiveKey::booking(slot_, queue)));
    scratch_->bookings.push_back({queue, booking.value_or(Booking{})});
    return scratch_->bookings.back().booking;
}

void WriteTransaction::flush()
{
    for (const auto &entry : scratch_->queues) {
        if (!entry.present) continue;
        const auto stored = get(LiveKey::queue(entry.queue));
        if (stored.size == sizeof entry.status && std::memcmp(stored.data, &entry.status, stored.size) == 0) continue;
        store(LiveKey::queue(entry.queue), &entry.status, sizeof entry.status);
    }
    for (const auto &entry : scratch_->bookings) {
        const LiveKey key = LiveKey::booking(slot_, entry.queue);
        constexpr Booking nothing{};
        if (std::memcmp(&entry.booking, &nothing, sizeof nothing) == 0) {
            erase(key);
        } else {
            store(key, &entry.booking, sizeof entry.booking);
        }
    }
    if (scratch_->steps.empty() || outcome_.failed()) return;
    const UnitRecord unit{.kind = scratch_->unitKind,
                          .slot = slot_,
                          .connection = connection_->connection.load(),
                          .steps = scratch_->steps.size()};
    const std::size_t stepBytes = scratch_->steps.size() * sizeof(UnitStep);
    const LiveKey key = LiveKey::unit(ticket());
    MDB_val name = valueOf(key);
    MDB_val value{sizeof unit + stepBytes, nullptr};
    if (!sticks(mdb_put(txn_, records_, &name, &value, MDB_RESERVE))) return;
    std::memcpy(value.mv_data, &unit, sizeof unit);
    std::memcpy(static_cast<std::byte *>(value.mv_data) + sizeof unit, scratch_->steps.data(), stepBytes);
}

void WriteTransaction::insertMessage(const NewMessage &message)
{
    if (outcome_.failed()) return;
    if (const int error = injectedError(StorageCall::LivePut); error != 0) {
        sticks(error);
        return;
    }
    MessageHeader header = message.header;
    header.bodyLength = static_cast<std::uint32_t>(message.body.size());
    const bool isInline = message.body.size() <= inlineBody;
    const LiveKey key = LiveKey::message(message.key);
    MDB_val name = valueOf(key);
    MDB_val value{sizeof header + (isInline ? message.body.size() : 0), nullptr};
    if (!sticks(mdb_put(txn_, records_, &name, &value, MDB_RESERVE))) return;
    std::memcpy(value.mv_data, &header, sizeof header);
    if (isInline) {
        if (!message.body.empty()) {
            std::memcpy(static_cast<std::byte *>(value.mv_data) + sizeof header, message.body.data(),
                        message.body.size());
        }
    } else {
        const LiveKey bodyKey = LiveKey::body(message.key);
        MDB_val bodyName = valueOf(bodyKey);
        MDB_val body{message.body.size(), nullptr};
        if (!sticks(mdb_put(txn_, records_, &bodyName, &body, MDB_RESERVE))) return;
        std::memcpy(body.mv_data, message.body.data(), message.body.size());
    }
    forEachIndex(message.key, header.md, [this](const LiveKey &index) { store(index, nullptr, 0); });
    counters(message.key.queue).mayShow(message.key);
}

void WriteTransaction::eraseMessage(const MessageKey &key)
{
    const auto header = findHeld(key);
    if (!header) return;
    erase(LiveKey::message(key));
    if (header->bodyLength > inlineBody) erase(LiveKey::body(key));
    forEachIndex(key, header->md, [this](const LiveKey &index) { erase(index); });
}

void WriteTransaction::setHold(const MessageKey &key, const Hold &hold)
{
    store(LiveKey::hold(key), &hold, sizeof hold);
    counters(key.queue).held += 1;
}

void WriteTransaction::changeHold(const MessageKey &key, const Hold &hold)
{
    store(LiveKey::hold(key), &hold, sizeof hold);
}

void WriteTransaction::clearHold(const MessageKey &key)
{
    erase(LiveKey::hold(key));
    QueueStatus &status = counters(key.queue);
    status.held -= 1;
    status.mayShow(key);
}

void WriteTransaction::addStep(UnitKind unit, StepKind step, const MessageKey &key, bool persistent,
                               std::uint64_t backoutCount)
{
    if (unit != UnitKind::Note) scratch_->unitKind = unit;
    scratch_->steps.push_back({.kind = step,
                               .persistent = persistent ? 1U : 0U,
                               .queue = key.queue,
                               .order = key.order,
                               .sequence = key.sequence,
                               .backoutCount = backoutCount});
}

void WriteTransaction::wakeGetters(QueueId queue)
{
    auto &wake = scratch_->wake;
    if (std::find(wake.begin(), wake.end(), queue) == wake.end()) wake.push_back(queue);
}

Ticket WriteTransaction::put(const NewMessage &message)
{
    if (!mustExist(message.key.queue)) return 0;
    insertMessage(message);
    counters(message.key.queue).countPut();
    wakeGetters(message.key.queue);
    if (!isPersistent(message.header)) return 0;
    setHold(message.key, {.kind = HoldKind::Hidden, .slot = slot_, .ticket = ticket()});
    addStep(UnitKind::Single, StepKind::Put, message.key, true, 0);
    return ticket();
}

Ticket WriteTransaction::take(const MessageKey &key)
{
    const auto header = find(key);
    if (!header) return 0;
    endBrowsing(key);
    counters(key.queue).countGet();
    if (!isPersistent(*header)) {
        eraseMessage(key);
        return 0;
    }
    setHold(key, {.kind = HoldKind::Prepared, .slot = slot_, .ticket = ticket()});
    addStep(UnitKind::Single, StepKind::Get, key, true, 0);
    return ticket();
}

void WriteTransaction::discard(const MessageKey &key)
{
    const auto header = find(key);
    if (!header) return;
    endBrowsing(key);
    counters(key.queue).depth -= 1;
    eraseMessage(key);
    if (isPersistent(*header)) addStep(UnitKind::Note, StepKind::Forget, key, true, 0);
}

void WriteTransaction::bookPut(QueueId queue)
{
    if (!mustExist(queue)) return;
    QueueStatus &status = counters(queue);
    status.countPut();
    status.uncommitted += 1;
    booking(queue).puts += 1;
}

void WriteTransaction::unbookPut(QueueId queue)
{
    Booking &booked = booking(queue);
    if (booked.puts == 0) return;
    booked.puts -= 1;
    QueueStatus &status = counters(queue);
    status.depth -= 1;
    status.uncommitted -= 1;
}

void WriteTransaction::lock(const MessageKey &key)
{
    if (!find(key)) return;
    endBrowsing(key);
    connection_->holds.fetch_add(1);
    setHold(key, {.kind = HoldKind::Got, .slot = slot_, .ticket = 0});
    counters(key.queue).countGet();
}

void WriteTransaction::unlock(const MessageKey &key)
{
    const auto hold = holdOf(key);
    if (!hold || hold->kind != HoldKind::Got || hold->slot != slot_) return;
    clearHold(key);
    QueueStatus &status = counters(key.queue);
    status.addToDepth();
    status.dequeued -= status.dequeued > 0 ? 1 : 0;
    wakeGetters(key.queue);
}

QueueStatus WriteTransaction::resetStatistics(QueueId queue)
{
    QueueStatus &status = counters(queue);
    const QueueStatus before = status;
    status.resetStatistics(currentTime());
    return before;
}

QueueStatus WriteTransaction::resetStatisticsFor(QueueId queue, std::int64_t requestTime, bool repeated)
{
    QueueStatus &status = counters(queue);
    QueueStatus told = status;
    if (repeated && status.toldRequest == requestTime) {
        told.resetTime = status.toldResetTime;
        told.enqueued += status.toldEnqueued;
        told.dequeued += status.toldDequeued;
        told.highDepth = std::max(told.highDepth, status.toldHighDepth);
    }
    status.toldRequest = requestTime;
    status.toldResetTime = told.resetTime;
    status.toldEnqueued = told.enqueued;
    status.toldDequeued = told.dequeued;
    status.toldHighDepth = told.highDepth;
    status.resetStatistics(currentTime());
    return told;
}

void WriteTransaction::noteTrigger(QueueId queue)
{
    counters(queue).triggerTime = currentTime();
}

void WriteTransaction::bookDepthTrigger(QueueId queue)
{
    counters(queue).depthTriggers += 1;
    booking(queue).depthTriggers += 1;
}

void WriteTransaction::unbookDepthTrigger(QueueId queue)
{
    Booking &booked = booking(queue);
    if (booked.depthTriggers == 0) return;
    booked.depthTriggers -= 1;
    counters(queue).depthTriggers -= 1;
}

void WriteTransaction::lockBrowsed(const MessageKey &key)
{
    if (!find(key)) return;
    connection_->holds.fetch_add(1);
    setHold(key, {.kind = HoldKind::Browsed, .slot = slot_, .ticket = 0});
}

void WriteTransaction::unlockBrowsed(const MessageKey &key)
{
    const auto hold = holdOf(key);
    if (hold && hold->kind == HoldKind::Browsed && hold->slot == slot_) releaseBrowsed(key);
}

void WriteTransaction::releaseBrowsed(const MessageKey &key)
{
    clearHold(key);
    wakeGetters(key.queue);
    if (isShown(key)) shown_.reset();
}

void WriteTransaction::setMark(const MessageKey &key, std::int64_t since)
{
    if (!markOf(key)) counters(key.queue).marked += 1;
    const BrowseMark mark{since};
    store(LiveKey::mark(key), &mark, sizeof mark);
}

void WriteTransaction::clearMark(const MessageKey &key)
{
    if (!markOf(key)) return;
    erase(LiveKey::mark(key));
    counters(key.queue).marked -= 1;
    wakeGetters(key.queue);
}

void WriteTransaction::clearMarks(QueueId queue)
{
    while (eraseSome(LiveKey::marksOf(queue), 2000))
        continue;
    counters(queue).marked = 0;
}

void WriteTransaction::endBrowsing(const MessageKey &key)
{
    if (isShown(key)) {
        clearHold(key);
        shown_.reset();
    }
    if (counters(key.queue).marked != 0) clearMark(key);
}

void WriteTransaction::addOpens(QueueId queue, const OpenCounts &change)
{
    const bool opening = change.input > 0 || change.output > 0 || change.browse > 0;
    if (opening && !mustExist(queue)) return;
    if (!exists(queue)) { // nothing is counted any more
        booking(queue) = {};
        return;
    }
    addToOpens(queue, change);
    add(booking(queue).opens, change);
}

void WriteTransaction::addToOpens(QueueId queue, const OpenCounts &change)
{
    QueueStatus &status = counters(queue);
    add(status.opens, change);
    if (change.together < 0 && status.opens.together == 0 && status.marked != 0) clearMarks(queue);
}

void WriteTransaction::changeHeader(const MessageKey &key, const MessageHeader &header)
{
    const Value stored = get(LiveKey::message(key));
    const auto before = recordIn<MessageHeader>(stored);
    SmallRecord record; // NOLINT(cppcoreguidelines-pro-type-member-init): filled below as far as it is used
    if (!before || stored.size > record.bytes.size()) return;
    record.size = stored.size;
    std::memcpy(record.bytes.data(), stored.data, stored.size);
    MessageHeader after = header;
    after.bodyLength = before->bodyLength;
    std::memcpy(record.bytes.data(), &after, sizeof after);
    store(LiveKey::message(key), record.bytes.data(), record.size);
}

// A message got by a unit of work that is backed out: visible again, its backout count raised. What is persistent
// keeps the count over a restart, so a note goes to the log.
void WriteTransaction::returnToQueue(const MessageKey &key)
{
    clearHold(key);
    auto header = findHeld(key);
    if (!header) return;
    counters(key.queue).addToDepth();
    wakeGetters(key.queue);
    header->md.BackoutCount += 1;
    changeHeader(key, *header);
    if (isPersistent(*header)) {
        addStep(UnitKind::Note, StepKind::Backout, key, true, static_cast<std::uint64_t>(header->md.BackoutCount));
    }
}

} // namespace mqrig::qmgr::store
