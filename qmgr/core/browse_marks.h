// Marks on browsed messages, so that a program sees each message once however it browses.
//
// A mark of a handle is that handle's own affair and lives with it. A mark of the handles that browse a queue together
// (MQOO_CO_OP), which may be those of many processes, stands in the store; it is over when the queue manager's
// MARKINT has passed since, when the message is got, or when the last of these handles is closed. A mark of either
// kind ends for good with a get of its message, also if the get is backed out.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>

#include "cmqc.h"
#include "qmgr/store/message.h"
#include "qmgr/store/transaction.h"

namespace mqrig::qmgr::core {

// The marks of one handle.
class HandleMarks {
public:
    bool has(const store::MessageKey &key, const store::MessageHeader &header) const
    {
        const auto mark = marks_.find(key);
        return mark != marks_.end() && mark->second == header.md.BackoutCount;
    }
    void add(const store::MessageKey &key, const store::MessageHeader &header) { marks_[key] = header.md.BackoutCount; }
    void remove(const store::MessageKey &key) { marks_.erase(key); }

    // Whether so many have come that it is time to forget those of messages that are gone.
    bool wantPruning() const { return marks_.size() >= pruneAt_; }
    void prune(store::Transaction &transaction);

private:
    static constexpr std::size_t fewMarks = 1024;
    // With the backout count of that time: a get that was backed out has ended the mark.
    std::map<store::MessageKey, MQLONG> marks_;
    std::size_t pruneAt_ = fewMarks;
};

// Which messages count as marked for a browse with MQGMO_UNMARKED_BROWSE_MSG.
struct MarkFilter {
    const HandleMarks *ofHandle = nullptr;
    bool together = false;     // the handle browses together with others
    std::int64_t interval = 0; // microseconds that a mark of theirs lasts; negative: without end
    std::int64_t now = 0;
    // Out: when the first of the marks that were in the way will be over (microseconds since 1970 UTC).
    std::optional<std::int64_t> *firstOver = nullptr;

    bool isMarked(store::Transaction &transaction, const store::MessageKey &key,
                  const store::MessageHeader &header) const;
};

// Whether a mark of handles that browse together still holds.
inline bool markHolds(std::int64_t since, std::int64_t interval, std::int64_t now)
{
    return interval < 0 || now - since < interval;
}

} // namespace mqrig::qmgr::core
