// The entry points of the MQI, one file for each call.
//
// How to add an MQI call
//   1. Make MQNAME.cpp after the shortest one that is like it: MQCMIT.cpp (connection only), MQCLOSE.cpp (object),
//      MQBEGIN.cpp (with a structure). The body of the call goes into `answer`, which sets CompCode and Reason and
//      lets nothing escape.
//   2. Check in the order of the MQI: the connection (core::ConnectionUse), pointers and structures (structures.h),
//      option bits (option_table.h) and what they exclude, the object handle. Then call the core.
//   3. Structures are read and written up to their Version only: add a load and a store to structures.h.
//   4. Write out parameters when the call has not failed; handles also when it has.
//   5. Change the treatment of the options that are now done in option_table.cpp.
//   6. Name it in CMakeLists.txt; libmqm_r.map exports every name of the MQI already.
//   7. Provoke every reason in tests/qmgr/api/, say in tests/qmgr/conformance/fields.cpp what is done with the fields of
//      its structures, and run scripts/conformance.sh.
#pragma once

#include <new>
#include <utility>

#include "cmqc.h"
#include "qmgr/core/connections.h"
#include "qmgr/store/outcome.h"

// On the definition of every entry point: all else in the library is hidden.
#define MQI_EXPORT extern "C" __attribute__((visibility("default")))

namespace mqrig::qmgr::api {

// Runs the call and reports what it answers. A program that passes no place for the codes does without.
template <class Call>
void answer(PMQLONG pCompCode, PMQLONG pReason, Call &&call) noexcept
{
    Outcome outcome;
    try {
        outcome = std::forward<Call>(call)();
    } catch (const std::bad_alloc &) {
        outcome = failure(MQRC_STORAGE_NOT_AVAILABLE);
    } catch (...) {
        outcome = failure(MQRC_UNEXPECTED_ERROR);
    }
    if (pCompCode != nullptr) *pCompCode = outcome.CompCode;
    if (pReason != nullptr) *pReason = outcome.Reason;
}

// The same for a call that works on messages or objects: made again where the queue manager has ended under it and the
// connection follows it.
template <class Call>
void answerFollowing(MQHCONN hconn, PMQLONG pCompCode, PMQLONG pReason, Call &&call) noexcept
{
    answer(pCompCode, pReason, [&] {
        for (;;) {
            const Outcome outcome = call();
            if (outcome.Reason != MQRC_CONNECTION_BROKEN) [[likely]]
                return outcome;
            if (!core::wasInterrupted(hconn, outcome)) return outcome;
        }
    });
}

} // namespace mqrig::qmgr::api
