#include <memory>

#include "qmgr/core/distribution_list.h"
#include "qmgr/core/dynamic_queue.h"
#include "qmgr/core/open.h"
#include "qmgr/core/subscribe.h"
#include "qmgr/core/trigger.h"
#include "qmgr/objects/object_name.h"

namespace mqrig::qmgr::core {

Outcome closeObject(Connection &connection, MQHOBJ hobj, MQLONG options)
{
    const OpenObject *closing = connection.handles.find(hobj);
    if (closing == nullptr) return failure(MQRC_HOBJ_ERROR);
    if (closing->subscription != nullptr) return closeSubscription(connection, hobj, options);
    if ((options & (MQCO_KEEP_SUB | MQCO_REMOVE_SUB)) != 0) return failure(MQRC_OPTION_NOT_VALID_FOR_TYPE);
    if ((options & (MQCO_DELETE | MQCO_DELETE_PURGE)) != 0) {
        if (const Outcome deleted = deleteByClose(connection, *closing, options); deleted.failed()) return deleted;
    }
    const std::unique_ptr<OpenObject> object = connection.handles.remove(hobj);
    if (object->type != MQOT_Q) return success();
    if (object->list != nullptr) return closeList(connection, *object->list);
    const Outcome unfinished = object->logicalOrder != nullptr ? judgeClose(*object->logicalOrder) : success();
    if (object->ownsQueue()) {
        const Outcome removed = removeDynamicQueue(connection, *object->hold.queue);
        return removed.failed() ? removed : unfinished;
    }
    const store::OpenCounts &opens = object->opens;
    if (opens.input == 0 && opens.output == 0 && opens.browse == 0) return unfinished;
    const objects::QueueDefinition &queue = *object->hold.queue;
    const Outcome counted = connection.store->update(0, [&](store::WriteTransaction &transaction) {
        if (object->locked) transaction.unlockBrowsed(*object->locked);
        transaction.addOpens(queue.id, -opens);
        if (queue.objectId != queue.id) transaction.addOpens(queue.objectId, -opens);
        return success();
    });
    if (counted.failed()) return counted;
    if (opens.input != 0) triggerAfterClose(connection, objects::fieldText(queue.name));
    return unfinished;
}

} // namespace mqrig::qmgr::core
