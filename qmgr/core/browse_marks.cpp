#include "qmgr/core/browse_marks.h"

#include <algorithm>

namespace mqrig::qmgr::core {

void HandleMarks::prune(store::Transaction &transaction)
{
    std::erase_if(marks_, [&](const auto &mark) { return !transaction.findHeld(mark.first); });
    pruneAt_ = std::max(fewMarks, 2 * marks_.size());
}

bool MarkFilter::isMarked(store::Transaction &transaction, const store::MessageKey &key,
                          const store::MessageHeader &header) const
{
    if (ofHandle->has(key, header)) return true;
    if (!together) return false;
    const auto since = transaction.markOf(key);
    if (!since || !markHolds(*since, interval, now)) return false;
    if (interval >= 0 && firstOver != nullptr)
        *firstOver = std::min(firstOver->value_or(*since + interval), *since + interval);
    return true;
}

} // namespace mqrig::qmgr::core
