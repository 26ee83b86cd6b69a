#include "qmgr/core/distribution_header.h"

#include <algorithm>
#include <cstring>

namespace mqrig::qmgr::core {

void DistributionHeader::add(const std::array<char, MQ_Q_NAME_LENGTH> &queue,
                             const std::array<char, MQ_Q_MGR_NAME_LENGTH> &queueManager, const MQMD &md)
{
    MQOR &names = names_.emplace_back();
    std::copy(queue.begin(), queue.end(), names.ObjectName);
    std::copy(queueManager.begin(), queueManager.end(), names.ObjectQMgrName);
    const std::size_t before = fieldBytes_.size();
    fieldBytes_.resize(before + PutRecords::sizeOf(fields_));
    PutRecords::write(fields_, md, fieldBytes_.data() + before);
}

std::byte *DistributionHeader::write(const MQMD &following, std::byte *at) const
{
    MQDH header = {MQDH_DEFAULT};
    header.StrucLength = static_cast<MQLONG>(size());
    header.Encoding = following.Encoding;
    header.CodedCharSetId = following.CodedCharSetId;
    std::memcpy(header.Format, following.Format, sizeof header.Format);
    header.PutMsgRecFields = fields_;
    header.RecsPresent = static_cast<MQLONG>(names_.size());
    header.ObjectRecOffset = sizeof header;
    header.PutMsgRecOffset = static_cast<MQLONG>(sizeof header + names_.size() * sizeof(MQOR));
    std::memcpy(at, &header, sizeof header);
    at += sizeof header;
    std::memcpy(at, names_.data(), names_.size() * sizeof(MQOR));
    at += names_.size() * sizeof(MQOR);
    return std::copy(fieldBytes_.begin(), fieldBytes_.end(), at);
}

} // namespace mqrig::qmgr::core
