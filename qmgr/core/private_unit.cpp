#include "qmgr/core/private_unit.h"

#include "qmgr/core/trigger.h"
#include "qmgr/store/with_memory.h"

namespace mqrig::qmgr::core {

Outcome PrivateUnit::commit()
{
    if (unit_.empty()) return success();
    const Outcome committed = connection_.store->commit(unit_.content());
    if (!committed.failed() && committed.Reason != MQRC_BACKED_OUT) triggersCommitted(connection_, unit_);
    unit_.clear();
    return committed.Reason == MQRC_BACKED_OUT ? failure(MQRC_STORAGE_NOT_AVAILABLE) : committed;
}

void PrivateUnit::backOut() noexcept
{
    if (unit_.empty()) return;
    store::giveBack([&] { return connection_.store->backOut(unit_.content()); });
    unit_.clear();
}

} // namespace mqrig::qmgr::core
