// The object descriptor with its record arrays, which MQOPEN and MQPUT1 take, and the response records that they and
// MQPUT fill.
#pragma once

#include "library.h"

#include <string>

inline bool readObjectDescriptor(scripted::Call &call, const MQOD *od)
{
    if (!call.structure("MQOD", od)) return false;
    if (od->Version < MQOD_VERSION_2 || od->RecsPresent == 0) return true;
    if (od->RecsPresent < 0) {
        call.refuse(MQRC_RECS_PRESENT_ERROR);
        return false;
    }
    if (od->ObjectRecPtr == nullptr) {
        call.refuse(MQRC_OBJECT_RECORDS_ERROR);
        return false;
    }
    const auto *records = static_cast<const MQOR *>(od->ObjectRecPtr);
    for (MQLONG i = 0; i < od->RecsPresent; ++i) {
        call.structure("MQOR", records + i, "MQOR[" + std::to_string(i) + "]");
    }
    return true;
}

// Every response record is written: with the script's codes, success where it says nothing.
inline void writeResponses(const scripted::Call &call, MQRR *responses, MQLONG count)
{
    if (responses == nullptr) return;
    for (MQLONG i = 0; i < count; ++i) {
        const auto index = static_cast<std::size_t>(i);
        const auto &scriptedResponses = call.answer().responses;
        const bool given = index < scriptedResponses.size();
        responses[i].CompCode = given ? scriptedResponses[index].CompCode : MQCC_OK;
        responses[i].Reason = given ? scriptedResponses[index].Reason : MQRC_NONE;
    }
}
