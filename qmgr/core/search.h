// Finding the next message of a queue that a selection wants, inside a transaction of the caller's.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "qmgr/core/browse_marks.h"
#include "qmgr/core/message_selector.h"
#include "qmgr/core/reports.h"
#include "qmgr/core/selection.h"
#include "qmgr/store/message.h"
#include "qmgr/store/transaction.h"

namespace mqrig::qmgr::core {

// Messages that a search met after their time. They are never returned; whoever searched removes them (expiry.h).
class ExpiredMessages {
public:
    static constexpr std::size_t most = 32;

    bool empty() const { return count_ == 0; }
    bool full() const { return count_ == most; }
    // Whether the sender of any of them wants a report.
    bool anyReports() const { return anyReports_; }
    void add(const store::MessageKey &key, const MQMD &md)
    {
        keys_[count_++] = key;
        anyReports_ = anyReports_ || wantsExpirationReport(md);
    }
    void clear()
    {
        count_ = 0;
        anyReports_ = false;
    }
    const store::MessageKey *begin() const { return keys_.data(); }
    const store::MessageKey *end() const { return keys_.data() + count_; }

private:
    std::array<store::MessageKey, most> keys_;
    std::size_t count_ = 0;
    bool anyReports_ = false;
};

struct Search {
    store::QueueId queue = 0;
    const Selection *selection = nullptr;
    std::optional<store::MessageKey> behind;   // begin behind this place; empty: with the first message
    std::int64_t now = 0;                      // microseconds since 1970 UTC
    std::size_t most = 0;                      // messages to look at
    MQLONG needs = MQGMO_NONE;                 // MQGMO_ALL_MSGS_AVAILABLE or MQGMO_ALL_SEGMENTS_AVAILABLE
    const MessageSelector *selector = nullptr; // of the handle, if it has one
    const MarkFilter *marks = nullptr;         // whose marked messages are passed over, if any are
};

enum class SearchEnd {
    Found,
    NotFound,
    Stopped, // `most` messages looked at, or too many expired ones met
};

struct SearchResult {
    SearchEnd end = SearchEnd::NotFound;
    store::MessageKey key;
    store::MessageHeader header;
    std::optional<store::MessageKey> reached; // the last one looked at that is not the one found, if any
};

// `result` and `expired` are made anew.
void search(store::Transaction &transaction, const Search &search, SearchResult &result, ExpiredMessages &expired);

// Whether the message's time is over.
inline bool isExpired(const store::MessageHeader &header, std::int64_t now)
{
    return header.expiryDeadline != 0 && header.expiryDeadline <= now;
}

} // namespace mqrig::qmgr::core
