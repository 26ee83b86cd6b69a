// Walks over the records of the live state inside a transaction, for the store's own code.
#pragma once

#include <memory>

#include "qmgr/store/live_records.h"
#include "qmgr/store/transaction.h"

namespace mqrig::qmgr::store {

// Visits the records that begin with `prefix` in key order, from `from` or what comes behind it, while the visitor
// answers true.
template <class Visit>
void Transaction::walk(const LiveKey &prefix, const LiveKey &from, Visit &&visit)
{
    if (outcome_.failed()) return;
    MDB_cursor *cursor = nullptr;
    if (!sticks(mdb_cursor_open(txn_, records_, &cursor))) return;
    const std::unique_ptr<MDB_cursor, void (*)(MDB_cursor *)> closer(cursor, mdb_cursor_close); // a visitor may throw
    MDB_val key = valueOf(from);
    MDB_val value{};
    int code = mdb_cursor_get(cursor, &key, &value, MDB_SET_RANGE);
    while (code == MDB_SUCCESS && prefix.isPrefixOf(key.mv_data, key.mv_size) && visit(key, value)) {
        code = mdb_cursor_get(cursor, &key, &value, MDB_NEXT);
    }
    sticks(code);
}

// Visits all records that begin with `prefix`. The visitor changes nothing in the live state.
template <class Visit>
void Transaction::forEach(const LiveKey &prefix, Visit &&visit)
{
    walk(prefix, prefix, [&](const MDB_val &key, const MDB_val &value) {
        visit(key, value);
        return true;
    });
}

// Visits the first of them, if there is one.
template <class Visit>
void Transaction::forFirst(const LiveKey &prefix, Visit &&visit)
{
    walk(prefix, prefix, [&](const MDB_val &key, const MDB_val &value) {
        visit(key, value);
        return false;
    });
}

[[nodiscard]] inline MessageKey messageOf(const MDB_val &key)
{
    return messageOf(key.mv_data, key.mv_size);
}

} // namespace mqrig::qmgr::store
