// Work on the store in places where no exception may come out.
#pragma once

#include <new>

#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::store {

// What lacks memory answers MQRC_RESOURCE_PROBLEM.
template <class Work>
Outcome withMemory(Work &&work)
{
    try {
        return work();
    } catch (const std::bad_alloc &) {
        return failure(MQRC_RESOURCE_PROBLEM);
    }
}

// For destructors: what is given back. Tried again, for what is lacking may be there a moment later; what cannot be
// given back even so goes with the connection.
template <class Work>
void giveBack(Work &&work) noexcept
{
    for (int tries = 0; tries < 3 && withMemory(work).failed(); ++tries) {
    }
}

} // namespace mqrig::qmgr::store
