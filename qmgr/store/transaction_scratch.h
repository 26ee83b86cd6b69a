// What a write transaction collects before it ends. One for each thread, since a thread has one transaction at a
// time: its vectors keep their space, so that a put or get allocates nothing.
#pragma once

#include <vector>

#include "qmgr/store/live_records.h"

namespace mqrig::qmgr::store {

struct TransactionScratch {
    struct QueueEntry {
        QueueId queue;
        QueueStatus status;
        bool present; // only what is there is written back: a deleted queue does not come to life again
    };
    struct BookingEntry {
        QueueId queue;
        Booking booking;
    };
    std::vector<QueueEntry> queues;
    std::vector<BookingEntry> bookings; // of the transaction's own slot
    std::vector<UnitStep> steps;
    UnitKind unitKind = UnitKind::Note;
    std::vector<QueueId> wake; // queues whose getters are to be woken after the commit

    // The counters of a queue, read from the live state at their first use.
    QueueEntry &entryOf(Transaction &transaction, QueueId queue);
    void clear()
    {
        queues.clear();
        bookings.clear();
        steps.clear();
        wake.clear();
        unitKind = UnitKind::Note;
    }
    static TransactionScratch &ofThisThread();
};

} // namespace mqrig::qmgr::store
