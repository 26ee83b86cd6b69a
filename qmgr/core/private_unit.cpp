#include "qmgr/core/private_unit.h"

namespace mqrig::qmgr::core {

Outcome PrivateUnit::commit()
{
    if (unit_.empty()) return success();
    const Outcome committed = store_.commit(unit_.content());
    unit_.clear();
    return committed.Reason == MQRC_BACKED_OUT ? failure(MQRC_STORAGE_NOT_AVAILABLE) : committed;
}

void PrivateUnit::backOut()
{
    if (unit_.empty()) return;
    (void)store_.backOut(unit_.content());
    unit_.clear();
}

} // namespace mqrig::qmgr::core
