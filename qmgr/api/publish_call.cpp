#include "qmgr/api/publish_call.h"

#include <optional>

#include "qmgr/api/async_put.h"
#include "qmgr/api/put_handles.h"
#include "qmgr/api/structures.h"
#include "qmgr/core/publish.h"
#include "qmgr/core/topic.h"

namespace mqrig::qmgr::api {
namespace {

constexpr MQLONG highestLevel = 9;

// The highest one where the program's MQPMO has none.
std::optional<MQLONG> levelOf(const MQPMO &pmo)
{
    if (pmo.PubLevel < 0 || pmo.PubLevel > highestLevel) return std::nullopt;
    return pmo.PubLevel;
}

} // namespace

Outcome publish(MQHCONN hconn, core::Connection &connection, const PublishTarget &target,
                const core::PutRequest &request, PutCall &call, void *msgDesc, void *putMsgOpts)
{
    if (call.pmo.RecsPresent != 0) return failure(MQRC_RECS_PRESENT_ERROR);
    const std::optional<MQLONG> level = levelOf(call.pmo);
    if (!level) return failure(MQRC_PMO_ERROR);
    core::OpenTopic &topic = target.topic;
    core::bringUpToDate(connection, topic);
    std::optional<PutHandles> handles;
    if (usesHandles(call))
        if (const Outcome applied = handles.emplace().apply(hconn, connection, core::reachOf(topic.defaults), call);
            applied.failed())
            return applied;
    const MQMD &md = call.message.header.md;
    const MQLONG persistence =
        md.Persistence == MQPER_PERSISTENCE_AS_TOPIC_DEF ? topic.defaults.defPersistence : md.Persistence;
    const MQLONG response = target.open ? topic.attributes.defPutResponse : MQPRT_SYNC_RESPONSE;
    const core::AsyncKind kind = core::asyncKind(call.pmo.Options, response, persistence);
    const Outcome outcome = core::publish(connection, topic, request, *level, call.message);
    if (handles && !outcome.failed()) handles->rememberPut(call);
    if (kind.asynchronous)
        return finishAsyncPut(connection, kind, outcome, target.name, request.openOptions, {}, call, msgDesc);
    if (outcome.failed()) return outcome;
    returnDescriptor(call, msgDesc);
    storePmo({}, {}, putMsgOpts);
    return outcome;
}

} // namespace mqrig::qmgr::api
