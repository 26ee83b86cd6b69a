// The put message records (MQPMR) of a put to a distribution list: the fields that differ from one destination to the
// other, in the program's memory, one behind the other without gaps.
#pragma once

#include <cstddef>

#include "cmqc.h"

namespace mqrig::qmgr::core {

class PutRecords {
public:
    PutRecords() = default;
    // `first`: the first of `count` records that have these fields (MQPMRF_); null: there are none.
    PutRecords(std::byte *first, std::size_t count, MQLONG fields)
        : first_(first), count_(first == nullptr ? 0 : count), fields_(first == nullptr ? MQPMRF_NONE : fields)
    {
    }

    bool has(MQLONG field) const { return (fields_ & field) != 0; }
    MQLONG fields() const { return fields_; }
    std::size_t count() const { return count_; }

    // Into the descriptor of destination number `index`. Nothing where there is no record for it.
    void load(std::size_t index, MQMD &md) const;
    // The identifiers back: what the put has made.
    void store(std::size_t index, const MQMD &md) const;

    // The bytes of one record.
    static std::size_t sizeOf(MQLONG fields);
    // Writes the fields of a descriptor as a record; answers where it ends.
    static std::byte *write(MQLONG fields, const MQMD &md, std::byte *at);

private:
    std::byte *first_ = nullptr;
    std::size_t count_ = 0;
    MQLONG fields_ = MQPMRF_NONE;
};

} // namespace mqrig::qmgr::core
