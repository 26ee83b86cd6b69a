// Every call that is made on a connection, for what all of them have in common.
#pragma once

#include <array>

#include "fixture.h"

namespace mqrig::qmgr::testing {

// What a call answers: its arguments without the places for the codes.
template <class... Parameters, class... Given>
Codes answerOf(void (*call)(Parameters...) noexcept, Given... given)
{
    Codes codes;
    call(given..., &codes.CompCode, &codes.Reason);
    return codes;
}

struct CallOnConnection {
    const char *name;
    Codes (*make)(MQHCONN); // with nothing else that is right
};

inline constexpr std::array callsOnConnections = {
    CallOnConnection{"MQOPEN",
                     [](MQHCONN hconn) { return answerOf(MQOPEN, hconn, nullptr, MQOO_INPUT_SHARED, nullptr); }},
    CallOnConnection{"MQCLOSE", [](MQHCONN hconn) { return answerOf(MQCLOSE, hconn, nullptr, MQCO_NONE); }},
    CallOnConnection{"MQPUT",
                     [](MQHCONN hconn) { return answerOf(MQPUT, hconn, MQHO_NONE, nullptr, nullptr, 0, nullptr); }},
    CallOnConnection{"MQPUT1",
                     [](MQHCONN hconn) { return answerOf(MQPUT1, hconn, nullptr, nullptr, nullptr, 0, nullptr); }},
    CallOnConnection{
        "MQGET",
        [](MQHCONN hconn) { return answerOf(MQGET, hconn, MQHO_NONE, nullptr, nullptr, 0, nullptr, nullptr); }},
    CallOnConnection{
        "MQINQ", [](MQHCONN hconn) { return answerOf(MQINQ, hconn, MQHO_NONE, 0, nullptr, 0, nullptr, 0, nullptr); }},
    CallOnConnection{
        "MQSET", [](MQHCONN hconn) { return answerOf(MQSET, hconn, MQHO_NONE, 0, nullptr, 0, nullptr, 0, nullptr); }},
    CallOnConnection{"MQBEGIN", [](MQHCONN hconn) { return answerOf(MQBEGIN, hconn, nullptr); }},
    CallOnConnection{"MQCMIT", [](MQHCONN hconn) { return answerOf(MQCMIT, hconn); }},
    CallOnConnection{"MQBACK", [](MQHCONN hconn) { return answerOf(MQBACK, hconn); }},
    CallOnConnection{"MQCRTMH", [](MQHCONN hconn) { return answerOf(MQCRTMH, hconn, nullptr, nullptr); }},
    CallOnConnection{"MQDLTMH", [](MQHCONN hconn) { return answerOf(MQDLTMH, hconn, nullptr, nullptr); }},
    CallOnConnection{
        "MQSETMP",
        [](MQHCONN hconn) { return answerOf(MQSETMP, hconn, MQHM_NONE, nullptr, nullptr, nullptr, 0, 0, nullptr); }},
    CallOnConnection{"MQINQMP",
                     [](MQHCONN hconn) {
                         return answerOf(MQINQMP, hconn, MQHM_NONE, nullptr, nullptr, nullptr, nullptr, 0, nullptr,
                                         nullptr);
                     }},
    CallOnConnection{"MQDLTMP", [](MQHCONN hconn) { return answerOf(MQDLTMP, hconn, MQHM_NONE, nullptr, nullptr); }},
    CallOnConnection{
        "MQBUFMH",
        [](MQHCONN hconn) { return answerOf(MQBUFMH, hconn, MQHM_NONE, nullptr, nullptr, 0, nullptr, nullptr); }},
    CallOnConnection{"MQMHBUF",
                     [](MQHCONN hconn) {
                         return answerOf(MQMHBUF, hconn, MQHM_NONE, nullptr, nullptr, nullptr, 0, nullptr, nullptr);
                     }},
    CallOnConnection{"MQCB",
                     [](MQHCONN hconn) { return answerOf(MQCB, hconn, 0, nullptr, MQHO_NONE, nullptr, nullptr); }},
    CallOnConnection{"MQCTL", [](MQHCONN hconn) { return answerOf(MQCTL, hconn, 0, nullptr); }},
    CallOnConnection{"MQSUB", [](MQHCONN hconn) { return answerOf(MQSUB, hconn, nullptr, nullptr, nullptr); }},
    CallOnConnection{"MQSUBRQ", [](MQHCONN hconn) { return answerOf(MQSUBRQ, hconn, MQHO_NONE, 0, nullptr); }},
    CallOnConnection{"MQSTAT", [](MQHCONN hconn) { return answerOf(MQSTAT, hconn, MQSTAT_TYPE_ASYNC_ERROR, nullptr); }},
    CallOnConnection{"MQDISC", [](MQHCONN hconn) { return answerOf(MQDISC, &hconn); }},
};

} // namespace mqrig::qmgr::testing
