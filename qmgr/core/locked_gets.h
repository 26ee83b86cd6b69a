// Messages that a transaction has locked for a get: free again unless a unit of work takes them over.
#pragma once

#include <span>

#include "qmgr/store/attachment.h"
#include "qmgr/store/message.h"
#include "qmgr/store/with_memory.h"

namespace mqrig::qmgr::core {

class LockedGets {
public:
    // The messages are the caller's memory.
    LockedGets(store::Attachment &store, std::span<const store::TakenMessage> messages)
        : store_(store), messages_(messages)
    {
    }
    ~LockedGets()
    {
        if (messages_.empty()) return;
        store::giveBack([&] {
            return store_.update(0, [&](store::WriteTransaction &transaction) {
                for (const store::TakenMessage &message : messages_)
                    transaction.unlock(message.key);
                return success();
            });
        });
    }
    LockedGets(const LockedGets &) = delete;
    LockedGets &operator=(const LockedGets &) = delete;
    void belongToUnit() { messages_ = {}; }

private:
    store::Attachment &store_;
    std::span<const store::TakenMessage> messages_;
};

} // namespace mqrig::qmgr::core
