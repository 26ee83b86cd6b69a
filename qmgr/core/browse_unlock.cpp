#include "qmgr/core/get.h"

namespace mqrig::qmgr::core {

Outcome unlockMessage(Connection &connection, OpenObject &object)
{
    if (!object.locked) return warning(MQRC_NO_MSG_LOCKED);
    const Outcome unlocked = connection.store->update(0, [&](store::WriteTransaction &transaction) {
        transaction.unlockBrowsed(*object.locked);
        return success();
    });
    if (!unlocked.failed()) object.locked.reset();
    return unlocked;
}

} // namespace mqrig::qmgr::core
