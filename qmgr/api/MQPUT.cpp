#include <optional>

#include "qmgr/api/api.h"
#include "qmgr/api/async_put.h"
#include "qmgr/api/distribution_records.h"
#include "qmgr/api/follow_options.h"
#include "qmgr/api/object_descriptor.h"
#include "qmgr/api/publish_call.h"
#include "qmgr/api/put_call.h"
#include "qmgr/api/put_handles.h"
#include "qmgr/api/structures.h"
#include "qmgr/core/connections.h"
#include "qmgr/core/distribution_list.h"
#include "qmgr/core/events.h"
#include "qmgr/core/put.h"

using namespace mqrig::qmgr;

namespace {

core::ObjectName askedName(const core::OpenObject &object)
{
    return {object.type, object.asked.name, object.asked.queueManager, {}, object.asked.objectString};
}

Outcome putToList(MQHCONN Hconn, core::Connection &connection, core::OpenObject &object, PMQVOID pMsgDesc,
                  PMQVOID pPutMsgOpts, api::PutCall &call)
{
    core::PutRecords records;
    api::ResponseRecords responses;
    if (const MQLONG reason = api::loadPutRecords(call.pmo, pPutMsgOpts, records)) return failure(reason);
    if (const MQLONG reason = responses.load(call.pmo, pPutMsgOpts)) return failure(reason);
    std::optional<api::PutHandles> handles;
    if (api::usesHandles(call))
        if (const Outcome applied = handles.emplace().apply(Hconn, connection, core::reachOf(*object.list), call);
            applied.failed())
            return applied;
    const core::AsyncKind kind =
        core::asyncKind(call.pmo.Options, MQPRT_SYNC_RESPONSE, call.message.header.md.Persistence);
    const core::PutRequest request{call.pmo.Options, object.options, call.pmo.Context, &object.logicalOrder};
    if (const MQLONG reason = core::checkPutToList(*object.list, request, records, call.message.header.md))
        return failure(reason);
    const Outcome outcome = core::putToList(connection, *object.list, request, records, call.message);
    if (kind.asynchronous) {
        if (handles && !outcome.failed()) handles->rememberPut(call);
        return api::finishAsyncPut(connection, kind, outcome, *object.list, object.options, call, pMsgDesc);
    }
    responses.store(*object.list, outcome);
    api::storePmo({}, api::countsOf(*object.list), pPutMsgOpts);
    if (outcome.failed()) return outcome;
    if (handles) handles->rememberPut(call);
    api::returnDescriptor(call, pMsgDesc);
    return outcome;
}

Outcome put(MQHCONN Hconn, MQHOBJ Hobj, PMQVOID pMsgDesc, PMQVOID pPutMsgOpts, MQLONG bufferLength, PMQVOID pBuffer)
{
    const core::ConnectionUse use(Hconn);
    if (use.outcome().failed()) return use.outcome();
    core::OpenObject *object = use->handles.find(Hobj);
    if (object == nullptr) return failure(MQRC_HOBJ_ERROR);
    api::PutCall call{};
    const MQLONG ccsid = use->queueManager().codedCharSetId;
    if (const MQLONG reason = api::loadPut(pMsgDesc, pPutMsgOpts, bufferLength, pBuffer, ccsid, call))
        return failure(reason);
    if ((call.pmo.Options & MQPMO_ALTERNATE_USER_AUTHORITY) != 0) return failure(MQRC_OPTIONS_ERROR);
    if ((call.pmo.Options & MQPMO_LOGICAL_ORDER) != 0 && call.ownDescriptor &&
        static_cast<const MQMD *>(pMsgDesc)->Version < MQMD_VERSION_2)
        return failure(MQRC_WRONG_MD_VERSION);
    if (const MQLONG reason = api::checkToFollow(*use, call.pmo)) return failure(reason);
    if (!object->allows(MQOO_OUTPUT)) return failure(MQRC_NOT_OPEN_FOR_OUTPUT);
    if (object->topic != nullptr) [[unlikely]]
        return api::publish(Hconn, *use, {*object->topic, askedName(*object)},
                            {call.pmo.Options, object->options, call.pmo.Context, &object->logicalOrder}, call,
                            pMsgDesc, pPutMsgOpts);
    if (api::asksForTopic(call.pmo)) return failure(MQRC_OPTIONS_ERROR);
    if (object->list != nullptr) [[unlikely]]
        return putToList(Hconn, *use, *object, pMsgDesc, pPutMsgOpts, call);
    if (call.pmo.RecsPresent != 0) return failure(MQRC_RECS_PRESENT_ERROR);
    if (const Outcome there = use->catalog.refresh(object->hold); there.failed()) return there;

    const objects::QueueDefinition &queue = *object->hold.queue;
    std::optional<api::PutHandles> handles;
    if (api::usesHandles(call)) [[unlikely]] {
        if (const Outcome applied = handles.emplace().apply(Hconn, *use, core::reachOf(queue), call); applied.failed())
            return applied;
    }
    const core::AsyncKind kind = core::asyncKind(call.pmo.Options, queue, call.message.header.md);
    const Outcome outcome = core::putMessage(
        *use, queue, {call.pmo.Options, object->options, call.pmo.Context, &object->logicalOrder}, call.message);
    if (outcome.failed()) core::callEvent(*use, outcome, *object);
    if (handles && !outcome.failed()) handles->rememberPut(call);
    if (kind.asynchronous) [[unlikely]]
        return api::finishAsyncPut(*use, kind, outcome, askedName(*object), object->options,
                                   api::resolvedNames(*use, queue, api::Told::Destination), call, pMsgDesc);
    if (outcome.failed()) return outcome;
    api::returnDescriptor(call, pMsgDesc);
    api::storePmo(api::resolvedNames(*use, queue, api::toldBy(call.pmo)), api::countsOf(queue), pPutMsgOpts);
    return outcome;
}

} // namespace

MQI_EXPORT void MQENTRY MQPUT(MQHCONN Hconn, MQHOBJ Hobj, PMQVOID pMsgDesc, PMQVOID pPutMsgOpts, MQLONG BufferLength,
                              PMQVOID pBuffer, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    api::answerFollowing(Hconn, pCompCode, pReason,
                         [=] { return put(Hconn, Hobj, pMsgDesc, pPutMsgOpts, BufferLength, pBuffer); });
}
