// What a worker was told, written down outside the queue manager: records in a file in memory, which stay when the
// worker is killed. A record is written before each call that changes something, and one after it, with its answer.
#pragma once

#include <cstdint>
#include <vector>

#include "world.h"

namespace mqrig::crash {

enum class Event : std::uint8_t {
    PutBegun,    // message, queue, unit
    PutTold,     //
    GetBegun,    // queue, unit
    GetTold,     // message with MQCC_OK
    CommitBegun, // unit
    CommitTold,
    BackOutBegun,
    BackOutTold,
    Seen,        // a browse showed the message
    Replied,     // the reply to the request `message` was got
    DefineBegun, // `message` names the queue
    DefineTold,
    RemoveBegun,
    RemoveTold,
    Fault, // the worker saw something that must not be; `text` says what
};

struct Record {
    Event event{};
    Queue queue{};
    std::uint8_t persistent = 0;
    std::uint8_t priority = 0;
    std::uint32_t unit = 0; // 0: outside a unit of work
    MessageName message = {};
    std::int32_t CompCode = 0;
    std::int32_t Reason = 0;
    std::array<char, 40> text{};
};
// Divides a page, so that the kernel never splits one when the writer is killed.
static_assert(sizeof(Record) == 64);

class Journal {
public:
    Journal();
    ~Journal();
    Journal(Journal &&other) noexcept;
    Journal &operator=(Journal &&other) noexcept;
    void write(const Record &record) const;
    // What has been written since the last time.
    std::vector<Record> news();

private:
    int fd_ = -1;
    std::uint64_t read_ = 0;
};

} // namespace mqrig::crash
