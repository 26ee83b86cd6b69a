#include "qmgr/api/distribution_records.h"

#include <cstring>
#include <string>

#include "qmgr/objects/object_name.h"

namespace mqrig::qmgr::api {
namespace {

// The first record, or null: neither place is given, or both are.
struct Place {
    std::byte *first = nullptr;
    bool twice = false;
};
Place placeOf(MQLONG offset, MQPTR pointer, void *structure)
{
    if (offset != 0 && pointer != nullptr) return {nullptr, true};
    if (offset != 0) return {static_cast<std::byte *>(structure) + offset, false};
    return {static_cast<std::byte *>(pointer), false};
}

} // namespace

MQLONG loadList(const MQOD &od, void *at, core::DistributionList &list)
{
    if (od.RecsPresent < 0 || od.ObjectType != MQOT_Q) return MQRC_RECS_PRESENT_ERROR;
    if (!objects::fieldText(od.ObjectName).empty()) return MQRC_OBJECT_NAME_ERROR;
    if (!objects::fieldText(od.ObjectQMgrName).empty()) return MQRC_OBJECT_Q_MGR_NAME_ERROR;
    const Place place = placeOf(od.ObjectRecOffset, od.ObjectRecPtr, at);
    if (place.first == nullptr) return MQRC_OBJECT_RECORDS_ERROR;
    for (MQLONG i = 0; i < od.RecsPresent; ++i) {
        MQOR names; // the program's array need not be aligned
        std::memcpy(&names, place.first + static_cast<std::size_t>(i) * sizeof names, sizeof names);
        core::Destination &destination = list.destinations.emplace_back();
        destination.name = objects::fieldText(names.ObjectName);
        destination.queueManager = objects::fieldText(names.ObjectQMgrName);
    }
    return MQRC_NONE;
}

MQLONG loadPutRecords(const MQPMO &pmo, void *at, core::PutRecords &records)
{
    constexpr MQLONG allFields =
        MQPMRF_MSG_ID | MQPMRF_CORREL_ID | MQPMRF_GROUP_ID | MQPMRF_FEEDBACK | MQPMRF_ACCOUNTING_TOKEN;
    const Place place = placeOf(pmo.PutMsgRecOffset, pmo.PutMsgRecPtr, at);
    if (place.twice) return MQRC_PUT_MSG_RECORDS_ERROR;
    if (pmo.RecsPresent == 0 || place.first == nullptr) return MQRC_NONE;
    const MQLONG fields = pmo.PutMsgRecFields;
    const bool setsIdentity = (pmo.Options & (MQPMO_SET_IDENTITY_CONTEXT | MQPMO_SET_ALL_CONTEXT)) != 0;
    if (fields == MQPMRF_NONE || (fields & ~allFields) != 0 ||
        ((fields & MQPMRF_ACCOUNTING_TOKEN) != 0 && !setsIdentity))
        return MQRC_PMO_RECORD_FLAGS_ERROR;
    records = core::PutRecords(place.first, static_cast<std::size_t>(pmo.RecsPresent), fields);
    return MQRC_NONE;
}

MQLONG ResponseRecords::load(const MQOD &od, void *at)
{
    return load(od.RecsPresent, od.ResponseRecOffset, od.ResponseRecPtr, at);
}

MQLONG ResponseRecords::load(const MQPMO &pmo, void *at)
{
    return load(pmo.RecsPresent, pmo.ResponseRecOffset, pmo.ResponseRecPtr, at);
}

MQLONG ResponseRecords::load(MQLONG count, MQLONG offset, MQPTR pointer, void *at)
{
    const Place place = placeOf(offset, pointer, at);
    if (place.twice) return MQRC_RESPONSE_RECORDS_ERROR;
    if (place.first == nullptr) return MQRC_NONE;
    records_ = reinterpret_cast<MQRR *>(place.first);
    count_ = static_cast<std::size_t>(count);
    return MQRC_NONE;
}

void ResponseRecords::store(const core::DistributionList &list, const Outcome &outcome) const
{
    if (outcome.Reason != MQRC_MULTIPLE_REASONS) return;
    for (std::size_t i = 0; i < count_ && i < list.destinations.size(); ++i) {
        const Outcome &one = list.destinations[i].outcome;
        const MQRR response{one.CompCode, one.Reason};
        std::memcpy(static_cast<void *>(records_ + i), &response, sizeof response);
    }
}

} // namespace mqrig::qmgr::api
