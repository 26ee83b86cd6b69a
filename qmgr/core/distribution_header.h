// The MQDH of a message on a transmission queue that is for several destinations: the header, a record with the names
// of each destination, and a record with the fields that each has of its own.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "cmqc.h"
#include "qmgr/core/put_records.h"

namespace mqrig::qmgr::core {

class DistributionHeader {
public:
    // `fields`: what of the descriptor differs beside MsgId (MQPMRF_).
    explicit DistributionHeader(MQLONG fields) : fields_(fields | MQPMRF_MSG_ID) {}

    // Names blank-padded.
    void add(const std::array<char, MQ_Q_NAME_LENGTH> &queue,
             const std::array<char, MQ_Q_MGR_NAME_LENGTH> &queueManager, const MQMD &md);

    std::size_t size() const { return sizeof(MQDH) + names_.size() * sizeof(MQOR) + fieldBytes_.size(); }
    // `following`: describes what stands behind. Answers where the header ends.
    std::byte *write(const MQMD &following, std::byte *at) const;

private:
    MQLONG fields_;
    std::vector<MQOR> names_;
    std::vector<std::byte> fieldBytes_;
};

} // namespace mqrig::qmgr::core
