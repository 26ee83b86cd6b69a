#include "mqicalls.h"

#include <cstring>

namespace {

/// The MQI calls that `-s` accepts. MQSETMP stands twice; MQPUT1 and MQINQMP are not stopped before.
constexpr const char *MQAPI[] = {
    "MQCONNX", "MQCONN", "MQOPEN",  "MQPUT",   "MQGET",   "MQCLOSE", "MQCMIT", "MQBACK", "MQDISC",
    "MQINQ",   "MQSET",  "MQCRTMH", "MQDLTMH", "MQSETMP", "MQSETMP", "MQCB",   nullptr,
};

/// Calls of another platform's transaction manager, accepted as well; no wrapper here stops on them.
constexpr const char *TNSAPI[] = {
    "BEGINTRANSACTION",     "ENDTRANSACTION",        "ABORTTRANSACTION",
    "RESUMETRANSACTION",    "PUT_BEGINTRANSACTION",  "PUT_ENDTRANSACTION",
    "PUT_ABORTTRANSACTION", "PUT_RESUMETRANSACTION", nullptr,
};

bool holds(const char *const *names, const char *name)
{
    for (; *names != nullptr; ++names) {
        if (std::strcmp(*names, name) == 0) return true;
    }
    return false;
}

} // namespace

Status checkAPIname(const char *name)
{
    return holds(MQAPI, name) || holds(TNSAPI, name) ? StatusOk : StatusLocalFailure;
}
