#include <optional>
#include <string>

#include "qmgr/api/api.h"
#include "qmgr/api/async_put.h"
#include "qmgr/api/distribution_records.h"
#include "qmgr/api/object_descriptor.h"
#include "qmgr/api/publish_call.h"
#include "qmgr/api/put_call.h"
#include "qmgr/api/put_handles.h"
#include "qmgr/api/structures.h"
#include "qmgr/core/connections.h"
#include "qmgr/core/distribution_list.h"
#include "qmgr/core/events.h"
#include "qmgr/core/open.h"
#include "qmgr/core/put.h"
#include "qmgr/core/topic.h"

using namespace mqrig::qmgr;

namespace {

// The open that MQPUT1 stands for has the rights that its options need.
constexpr MQLONG openOptions = MQOO_OUTPUT | MQOO_SET_ALL_CONTEXT;

// Responses go where the object descriptor says; records of the put options are served too.
Outcome put1ToList(MQHCONN Hconn, core::Connection &connection, const MQOD &od, PMQVOID pObjDesc, PMQVOID pMsgDesc,
                   PMQVOID pPutMsgOpts, api::PutCall &call)
{
    if (api::asksForTopic(call.pmo)) return failure(MQRC_OPTIONS_ERROR);
    core::DistributionList list;
    core::PutRecords records;
    api::ResponseRecords responses;
    api::ResponseRecords putResponses;
    if (const MQLONG reason = api::loadList(od, pObjDesc, list)) return failure(reason);
    if (const MQLONG reason = responses.load(od, pObjDesc)) return failure(reason);
    if (const MQLONG reason = api::loadPutRecords(call.pmo, pPutMsgOpts, records)) return failure(reason);
    if (const MQLONG reason = putResponses.load(call.pmo, pPutMsgOpts)) return failure(reason);
    core::resolveList(connection, list);
    std::optional<api::PutHandles> handles;
    if (api::usesHandles(call))
        if (const Outcome applied = handles.emplace().apply(Hconn, connection, core::reachOf(list), call);
            applied.failed())
            return applied;
    const core::AsyncKind kind =
        core::asyncKind(call.pmo.Options, MQPRT_SYNC_RESPONSE, call.message.header.md.Persistence);
    const core::PutRequest request{call.pmo.Options, openOptions, call.pmo.Context, nullptr};
    if (const MQLONG reason = core::checkPutToList(list, request, records, call.message.header.md))
        return failure(reason);
    const Outcome outcome = core::putToList(connection, list, request, records, call.message);
    if (kind.asynchronous) {
        if (handles && !outcome.failed()) handles->rememberPut(call);
        return api::finishAsyncPut(connection, kind, outcome, list, openOptions, call, pMsgDesc);
    }
    responses.store(list, outcome);
    putResponses.store(list, outcome);
    api::storeOd({}, api::countsOf(list), MQOT_Q, pObjDesc);
    api::storePmo({}, api::countsOf(list), pPutMsgOpts);
    if (outcome.failed()) return outcome;
    if (handles) handles->rememberPut(call);
    api::returnDescriptor(call, pMsgDesc);
    return outcome;
}

// To a topic, or an alias queue that stands for one; `asked`: what the program named.
Outcome publish1(MQHCONN Hconn, core::Connection &connection, const core::ObjectName &name,
                 const core::ObjectName &asked, PMQVOID pObjDesc, PMQVOID pMsgDesc, PMQVOID pPutMsgOpts,
                 api::PutCall &call)
{
    core::OpenTopic topic;
    if (const Outcome opened = core::openTopic(connection, name, openOptions, topic); opened.failed()) return opened;
    const Outcome outcome =
        api::publish(Hconn, connection, {topic, asked, false},
                     {call.pmo.Options, openOptions, call.pmo.Context, nullptr}, call, pMsgDesc, pPutMsgOpts);
    if (!outcome.failed()) api::storeTopic(connection, topic, pObjDesc);
    return outcome;
}

Outcome put1(MQHCONN Hconn, PMQVOID pObjDesc, PMQVOID pMsgDesc, PMQVOID pPutMsgOpts, MQLONG bufferLength,
             PMQVOID pBuffer)
{
    const core::ConnectionUse use(Hconn);
    if (use.outcome().failed()) return use.outcome();
    if (const MQLONG reason = api::checkOd(pObjDesc)) return failure(reason);
    api::PutCall call{};
    const MQLONG ccsid = use->queueManager().codedCharSetId;
    if (const MQLONG reason = api::loadPut(pMsgDesc, pPutMsgOpts, bufferLength, pBuffer, ccsid, call))
        return failure(reason);
    if ((call.pmo.Options & MQPMO_LOGICAL_ORDER) != 0) return failure(MQRC_OPTIONS_ERROR);
    const MQOD od = api::loadOd(pObjDesc);
    if (const MQLONG reason = api::checkObject(od, api::Selects::No)) return failure(reason);

    core::ObjectName name = api::objectName(od);
    if (name.type == MQOT_TOPIC) {
        std::string objectString;
        if (const MQLONG reason = api::loadObjectString(*use, od, pObjDesc, objectString)) return failure(reason);
        name.objectString = objectString;
        return publish1(Hconn, *use, name, name, pObjDesc, pMsgDesc, pPutMsgOpts, call);
    }
    if (od.RecsPresent > 0) return put1ToList(Hconn, *use, od, pObjDesc, pMsgDesc, pPutMsgOpts, call);
    if (call.pmo.RecsPresent != 0) return failure(MQRC_RECS_PRESENT_ERROR);
    const objects::FoundQueue found = core::resolveForPut(*use, name);
    if (found.outcome.Reason == MQRC_ALIAS_BASE_Q_TYPE_ERROR) [[unlikely]] {
        if (const std::string topic = core::topicOfAlias(*use, name); !topic.empty())
            return publish1(Hconn, *use, {MQOT_TOPIC, topic, {}}, name, pObjDesc, pMsgDesc, pPutMsgOpts, call);
    }
    if (api::asksForTopic(call.pmo)) return failure(MQRC_OPTIONS_ERROR);
    if (found.outcome.failed()) {
        core::callEvent(*use, found.outcome, name);
        return found.outcome;
    }
    const objects::QueueDefinition &queue = *found.hold.queue;
    std::optional<api::PutHandles> handles;
    if (api::usesHandles(call)) [[unlikely]] {
        if (const Outcome applied = handles.emplace().apply(Hconn, *use, core::reachOf(queue), call); applied.failed())
            return applied;
    }
    // The queue's own response type is one of handles: without MQOPEN there is no time at which it would be looked up.
    const MQLONG persistence = call.message.header.md.Persistence == MQPER_PERSISTENCE_AS_Q_DEF
                                   ? queue.defPersistence
                                   : call.message.header.md.Persistence;
    const core::AsyncKind kind = core::asyncKind(call.pmo.Options, MQPRT_SYNC_RESPONSE, persistence);
    const Outcome outcome =
        core::putMessage(*use, queue, {call.pmo.Options, openOptions, call.pmo.Context, nullptr}, call.message);
    if (outcome.failed()) core::callEvent(*use, outcome, api::objectName(od));
    if (handles && !outcome.failed()) handles->rememberPut(call);
    if (kind.asynchronous) [[unlikely]]
        return api::finishAsyncPut(*use, kind, outcome, api::objectName(od), openOptions,
                                   api::resolvedNames(*use, queue, api::Told::Destination), call, pMsgDesc);
    if (outcome.failed()) return outcome;
    const api::ResolvedNames names = api::resolvedNames(*use, queue, api::toldBy(call.pmo));
    api::storeOd(names, api::countsOf(queue), MQOT_Q, pObjDesc);
    api::returnDescriptor(call, pMsgDesc);
    api::storePmo(names, api::countsOf(queue), pPutMsgOpts);
    return outcome;
}

} // namespace

MQI_EXPORT void MQENTRY MQPUT1(MQHCONN Hconn, PMQVOID pObjDesc, PMQVOID pMsgDesc, PMQVOID pPutMsgOpts,
                               MQLONG BufferLength, PMQVOID pBuffer, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    api::answerFollowing(Hconn, pCompCode, pReason,
                         [=] { return put1(Hconn, pObjDesc, pMsgDesc, pPutMsgOpts, BufferLength, pBuffer); });
}
