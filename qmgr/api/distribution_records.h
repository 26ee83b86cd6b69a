// The arrays that MQOD and MQPMO have for a distribution list: each stands at an offset from its structure or behind a
// pointer. How long the arrays are is for the program to say; what it says is not bounded here.
#pragma once

#include "cmqc.h"
#include "qmgr/core/destination.h"
#include "qmgr/core/put_records.h"

namespace mqrig::qmgr::api {

// The destinations of a checked MQOD, which stands at `at`. MQRC_RECS_PRESENT_ERROR, MQRC_OBJECT_NAME_ERROR,
// MQRC_OBJECT_Q_MGR_NAME_ERROR, MQRC_OBJECT_RECORDS_ERROR.
MQLONG loadList(const MQOD &od, void *at, core::DistributionList &list);

// The records of a checked MQPMO at `at`. MQRC_PMO_RECORD_FLAGS_ERROR, MQRC_PUT_MSG_RECORDS_ERROR.
MQLONG loadPutRecords(const MQPMO &pmo, void *at, core::PutRecords &records);

// Where the program wants the outcome of each destination; nowhere if it does not.
class ResponseRecords {
public:
    // MQRC_RESPONSE_RECORDS_ERROR.
    MQLONG load(const MQOD &od, void *at);
    MQLONG load(const MQPMO &pmo, void *at);
    // Written only where outcomes differ: MQRC_MULTIPLE_REASONS.
    void store(const core::DistributionList &list, const Outcome &outcome) const;

private:
    MQLONG load(MQLONG count, MQLONG offset, MQPTR pointer, void *at);

    MQRR *records_ = nullptr;
    std::size_t count_ = 0;
};

} // namespace mqrig::qmgr::api
