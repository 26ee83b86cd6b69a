#include "qmgr/core/search.h"

#include "qmgr/core/group_walk.h"

namespace mqrig::qmgr::core {
namespace {

bool isWanted(store::Transaction &transaction, const Search &search, const store::MessageKey &key,
              const store::MessageHeader &header)
{
    if (!search.selection->matches(header)) return false;
    if (search.selector != nullptr && !search.selector->matches(header, transaction.body(key))) [[unlikely]]
        return false;
    return (search.marks == nullptr || !search.marks->isMarked(transaction, key, header));
}

// The one message that a token names.
void searchToken(store::Transaction &transaction, const Search &search, SearchResult &result, ExpiredMessages &expired)
{
    const auto key = search.selection->tokenKey();
    if (!key || key->queue != search.queue || (search.behind && *key <= *search.behind)) return;
    const auto header = transaction.find(*key);
    if (!header || !isWanted(transaction, search, *key, *header)) return;
    if (!Availability(transaction, search.needs, search.now).holds(*key, *header)) return;
    if (isExpired(*header, search.now)) {
        expired.add(*key, header->md);
        return;
    }
    result.end = SearchEnd::Found;
    result.key = *key;
    result.header = *header;
}

void walk(store::Transaction &transaction, store::MessageCursor &cursor, const Search &search, SearchResult &result,
          ExpiredMessages &expired)
{
    Availability availability(transaction, search.needs, search.now);
    std::size_t looked = 0;
    std::optional<store::MessageKey> passed;
    for (bool there = search.behind ? cursor.seek(*search.behind) : cursor.first(); there; there = cursor.next()) {
        const store::MessageHeader &header = cursor.header();
        if (isExpired(header, search.now)) {
            expired.add(cursor.key(), header.md);
        } else if (isWanted(transaction, search, cursor.key(), header) && availability.holds(cursor.key(), header)) {
            result.end = SearchEnd::Found;
            result.key = cursor.key();
            result.header = header;
            result.reached = passed;
            return;
        }
        passed = cursor.key();
        if (++looked == search.most || expired.full()) {
            result.end = SearchEnd::Stopped;
            result.reached = passed;
            return;
        }
    }
}

} // namespace

void search(store::Transaction &transaction, const Search &search, SearchResult &result, ExpiredMessages &expired)
{
    result.end = SearchEnd::NotFound;
    result.reached.reset();
    expired.clear();
    if (search.selection->byToken()) return searchToken(transaction, search, result, expired);
    if (const auto place = search.selection->place()) {
        store::MessageCursor cursor(transaction, search.queue, *place);
        return walk(transaction, cursor, search, result, expired);
    }
    if (const auto indexed = search.selection->indexed()) {
        store::MessageCursor cursor(transaction, search.queue, indexed->index, store::MessageId(*indexed->id));
        return walk(transaction, cursor, search, result, expired);
    }
    store::MessageCursor cursor(transaction, search.queue);
    walk(transaction, cursor, search, result, expired);
}

} // namespace mqrig::qmgr::core
