#include "qmgr/store/transaction.h"

#include "qmgr/store/live_environment.h"
#include "qmgr/store/live_records.h"
#include "qmgr/store/seams.h"
#include "qmgr/store/transaction_scratch.h"

namespace mqrig::qmgr::store {

namespace {

bool isDamage(int code)
{
    return code == MDB_CORRUPTED || code == MDB_PAGE_NOTFOUND || code == MDB_PANIC || code == MDB_CURSOR_FULL;
}

} // namespace

ReadTransaction::~ReadTransaction()
{
    if (txn_ != nullptr) environment_->endRead(txn_);
}

bool Transaction::sticks(int code)
{
    if (code == MDB_SUCCESS || code == MDB_NOTFOUND) return true;
    if (!outcome_.failed()) {
        outcome_ = outcomeOfLive(code);
        outgrown_ = code == MDB_MAP_FULL;
        if (isDamage(code)) environment_->noteDamage();
    }
    return false;
}

Transaction::Value Transaction::get(const LiveKey &key)
{
    if (outcome_.failed()) return {};
    MDB_val name = valueOf(key);
    MDB_val value{};
    const int code = mdb_get(txn_, records_, &name, &value);
    if (code == MDB_SUCCESS) return {value.mv_data, value.mv_size};
    sticks(code);
    return {};
}

QueueStatus Transaction::queue(QueueId queue)
{
    if (scratch_ != nullptr) return scratch_->entryOf(*this, queue).status;
    return recordIn<QueueStatus>(get(LiveKey::queue(queue))).value_or(QueueStatus{});
}

std::string_view Transaction::definition(MQLONG type, std::string_view name)
{
    const Value value = get(LiveKey::definition(type, name));
    if (value.size <= sizeof(QueueId)) return {};
    return {static_cast<const char *>(value.data) + sizeof(QueueId), value.size - sizeof(QueueId)};
}

void Transaction::noteSearch(const MessageKey &found)
{
    if (scratch_ != nullptr) scratch_->entryOf(*this, found.queue).status.setSearch(found);
}

std::optional<Hold> Transaction::holdOf(const MessageKey &key)
{
    if (queue(key.queue).held == 0) return std::nullopt;
    return recordIn<Hold>(get(LiveKey::hold(key)));
}

bool Transaction::isHeld(const MessageKey &key)
{
    return holdOf(key).has_value();
}

TransactionScratch::QueueEntry &TransactionScratch::entryOf(Transaction &transaction, QueueId queue)
{
    for (auto &entry : queues) {
        if (entry.queue == queue) return entry;
    }
    const auto status = recordIn<QueueStatus>(transaction.get(LiveKey::queue(queue)));
    queues.push_back({queue, status.value_or(QueueStatus{}), status.has_value()});
    return queues.back();
}

std::optional<MessageHeader> Transaction::find(const MessageKey &key)
{
    auto header = findHeld(key);
    if (header && isHeld(key) && !isShown(key)) return std::nullopt;
    return header;
}

void Transaction::showLocked(const MessageKey &key, std::uint32_t slot)
{
    const auto hold = holdOf(key);
    if (hold && hold->kind == HoldKind::Browsed && hold->slot == slot) shown_ = key;
}

std::optional<std::int64_t> Transaction::markOf(const MessageKey &key)
{
    if (queue(key.queue).marked == 0) return std::nullopt;
    const auto mark = recordIn<BrowseMark>(get(LiveKey::mark(key)));
    if (!mark) return std::nullopt;
    return mark->since;
}

std::optional<MessageHeader> Transaction::findHeld(const MessageKey &key)
{
    return recordIn<MessageHeader>(get(LiveKey::message(key)));
}

std::span<const std::byte> Transaction::body(const MessageKey &key)
{
    const Value value = get(LiveKey::message(key));
    const auto header = recordIn<MessageHeader>(value);
    if (!header) return {};
    const auto *bytes = static_cast<const std::byte *>(value.data);
    if (header->bodyLength <= inlineBody) return {bytes + sizeof(MessageHeader), value.size - sizeof(MessageHeader)};
    const Value large = get(LiveKey::body(key));
    return {static_cast<const std::byte *>(large.data), large.size};
}

} // namespace mqrig::qmgr::store
