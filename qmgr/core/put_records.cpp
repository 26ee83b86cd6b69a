#include "qmgr/core/put_records.h"

#include <cstring>

namespace mqrig::qmgr::core {
namespace {

// In the order in which a record has them.
constexpr struct {
    MQLONG flag;
    std::size_t offset;
    std::size_t length;
    bool comesBack;
} recordFields[] = {
    {MQPMRF_MSG_ID, offsetof(MQMD, MsgId), sizeof(MQBYTE24), true},
    {MQPMRF_CORREL_ID, offsetof(MQMD, CorrelId), sizeof(MQBYTE24), true},
    {MQPMRF_GROUP_ID, offsetof(MQMD, GroupId), sizeof(MQBYTE24), true},
    {MQPMRF_FEEDBACK, offsetof(MQMD, Feedback), sizeof(MQLONG), false},
    {MQPMRF_ACCOUNTING_TOKEN, offsetof(MQMD, AccountingToken), sizeof(MQBYTE32), false},
};

} // namespace

std::size_t PutRecords::sizeOf(MQLONG fields)
{
    std::size_t size = 0;
    for (const auto &field : recordFields)
        if ((fields & field.flag) != 0) size += field.length;
    return size;
}

void PutRecords::load(std::size_t index, MQMD &md) const
{
    if (index >= count_) return;
    const std::byte *at = first_ + index * sizeOf(fields_);
    for (const auto &field : recordFields) {
        if (!has(field.flag)) continue;
        std::memcpy(reinterpret_cast<std::byte *>(&md) + field.offset, at, field.length);
        at += field.length;
    }
}

void PutRecords::store(std::size_t index, const MQMD &md) const
{
    if (index >= count_) return;
    std::byte *at = first_ + index * sizeOf(fields_);
    for (const auto &field : recordFields) {
        if (!has(field.flag)) continue;
        if (field.comesBack) std::memcpy(at, reinterpret_cast<const std::byte *>(&md) + field.offset, field.length);
        at += field.length;
    }
}

std::byte *PutRecords::write(MQLONG fields, const MQMD &md, std::byte *at)
{
    for (const auto &field : recordFields) {
        if ((fields & field.flag) == 0) continue;
        std::memcpy(at, reinterpret_cast<const std::byte *>(&md) + field.offset, field.length);
        at += field.length;
    }
    return at;
}

} // namespace mqrig::qmgr::core
