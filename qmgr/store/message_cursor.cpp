#include "qmgr/store/live_records.h"
#include "qmgr/store/transaction.h"

namespace mqrig::qmgr::store {

namespace {

// Moves a cursor of the library. `name` gives the key for MDB_SET_RANGE.
template <class Value>
int move(MDB_cursor *cursor, MDB_cursor_op how, Value &name, Value &value)
{
    MDB_val key{name.size, const_cast<void *>(name.data)}; // NOLINT: the library takes no const
    MDB_val data{};
    const int code = mdb_cursor_get(cursor, &key, &data, how);
    name = {key.mv_data, key.mv_size};
    value = {data.mv_data, data.mv_size};
    return code;
}

} // namespace

MessageCursor::MessageCursor(Transaction &transaction, QueueId queue)
    : transaction_(transaction), prefix_(LiveKey::messagesOf(queue))
{
    start(queue);
}

MessageCursor::MessageCursor(Transaction &transaction, QueueId queue, Index index, MessageId id)
    : transaction_(transaction), prefix_(LiveKey::idOf(queue, index, id.data())), byIndex_(true)
{
    start(queue);
}

MessageCursor::MessageCursor(Transaction &transaction, QueueId queue, const GroupPlace &place)
    : transaction_(transaction), prefix_(LiveKey::groupPlace(queue, place)), byIndex_(true)
{
    start(queue);
}

MessageCursor::~MessageCursor()
{
    if (walk_ != nullptr) mdb_cursor_close(walk_);
    if (holds_ != nullptr) mdb_cursor_close(holds_);
}

void MessageCursor::start(QueueId queue)
{
    queue_ = queue;
    const bool anyHeld = transaction_.queue(queue).held > 0;
    if (transaction_.outcome_.failed()) return;
    if (!transaction_.sticks(mdb_cursor_open(transaction_.txn_, transaction_.records_, &walk_))) walk_ = nullptr;
    if (!anyHeld || walk_ == nullptr) return;
    if (!transaction_.sticks(mdb_cursor_open(transaction_.txn_, transaction_.records_, &holds_))) holds_ = nullptr;
}

bool MessageCursor::first()
{
    nextHoldKnown_ = false;
    if (holds_ != nullptr && !byIndex_) return firstAmongHeld();
    return go(prefix_, true); // the queue's counters stand before its messages
}

bool MessageCursor::firstAmongHeld()
{
    const QueueStatus status = transaction_.queue(queue_);
    const auto known = status.searchFrom(queue_);
    // What this connection has locked by browsing is visible to it alone.
    const auto &shown = transaction_.shown_;
    const bool shownBefore = known && shown && shown->queue == queue_ && *shown < *known;
    const bool found = known && !shownBefore ? go(prefix_.place(*known), false) : go(prefix_, true);
    if (found && !shown) transaction_.noteSearch(key_);
    return found;
}

bool MessageCursor::seek(const MessageKey &behind)
{
    nextHoldKnown_ = false;
    return go(prefix_.place(behind), true);
}

bool MessageCursor::next()
{
    if (walk_ == nullptr || transaction_.outcome_.failed()) return false;
    Transaction::Value name;
    Transaction::Value value;
    const int code = move(walk_, MDB_NEXT, name, value);
    return settle(code, name, value);
}

bool MessageCursor::last()
{
    if (walk_ == nullptr || transaction_.outcome_.failed()) return false;
    const LiveKey end = prefix_.end();
    Transaction::Value name{end.data(), end.size()};
    Transaction::Value value;
    int code = move(walk_, MDB_SET_RANGE, name, value);
    for (code = move(walk_, code == MDB_NOTFOUND ? MDB_LAST : MDB_PREV, name, value); code == MDB_SUCCESS;
         code = move(walk_, MDB_PREV, name, value)) {
        if (!prefix_.isPrefixOf(name.data, name.size)) return false;
        key_ = messageOf(name.data, name.size);
        if (holds_ != nullptr && isHeld()) continue;
        headerRead_ = false;
        value_ = {};
        return true;
    }
    transaction_.sticks(code);
    return false;
}

bool MessageCursor::go(const LiveKey &from, bool behind)
{
    if (walk_ == nullptr || transaction_.outcome_.failed()) return false;
    Transaction::Value name{from.data(), from.size()};
    Transaction::Value value;
    int code = move(walk_, MDB_SET_RANGE, name, value);
    if (behind && code == MDB_SUCCESS && name.size == from.size() && from.isPrefixOf(name.data, name.size)) {
        code = move(walk_, MDB_NEXT, name, value);
    }
    return settle(code, name, value);
}

// Goes on from where the library's cursor stands to the first message of the walk that is visible.
bool MessageCursor::settle(int code, Transaction::Value name, Transaction::Value value)
{
    for (;; code = move(walk_, MDB_NEXT, name, value)) {
        if (code != MDB_SUCCESS) {
            transaction_.sticks(code);
            return false;
        }
        if (!prefix_.isPrefixOf(name.data, name.size)) return false;
        key_ = messageOf(name.data, name.size);
        if (holds_ != nullptr && isHeld() && !transaction_.isShown(key_)) continue;
        headerRead_ = false;
        value_ = byIndex_ ? Transaction::Value{} : value;
        return true;
    }
}

// Whether somebody holds the message at key_. Messages and holds sort alike, so a walk over the queue steps through
// both side by side; a walk over an index, with its few messages, looks each one up.
bool MessageCursor::isHeld()
{
    if (byIndex_) return transaction_.isHeld(key_);
    Transaction::Value name;
    Transaction::Value value;
    int code = MDB_SUCCESS;
    const LiveKey here = LiveKey::hold(key_);
    if (!nextHoldKnown_) {
        name = {here.data(), here.size()};
        code = move(holds_, MDB_SET_RANGE, name, value);
        nextHoldKnown_ = true;
    } else {
        if (!nextHold_ || key_ < *nextHold_) return false;
        if (key_ == *nextHold_) return true;
        code = move(holds_, MDB_NEXT, name, value);
    }
    const LiveKey ofQueue = LiveKey::holdsOf(key_.queue);
    for (;; code = move(holds_, MDB_NEXT, name, value)) {
        transaction_.sticks(code);
        if (code != MDB_SUCCESS || !ofQueue.isPrefixOf(name.data, name.size)) {
            nextHold_.reset();
            return false;
        }
        nextHold_ = messageOf(name.data, name.size);
        if (!(*nextHold_ < key_)) return *nextHold_ == key_;
    }
}

const MessageHeader &MessageCursor::header()
{
    if (headerRead_) return header_;
    if (value_.data == nullptr) value_ = transaction_.get(LiveKey::message(key_));
    header_ = recordIn<MessageHeader>(value_).value_or(MessageHeader{});
    headerRead_ = true;
    return header_;
}

std::span<const std::byte> MessageCursor::body()
{
    if (header().bodyLength > inlineBody || value_.size < sizeof(MessageHeader)) return transaction_.body(key_);
    return {static_cast<const std::byte *>(value_.data) + sizeof(MessageHeader), value_.size - sizeof(MessageHeader)};
}

} // namespace mqrig::qmgr::store
