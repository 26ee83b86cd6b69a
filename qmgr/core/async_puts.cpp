#include "qmgr/core/async_puts.h"

#include <limits>

#include "qmgr/core/connection.h"

namespace mqrig::qmgr::core {
namespace {

// A program that never asks puts on for ever.
void count(MQLONG &counter)
{
    if (counter < std::numeric_limits<MQLONG>::max()) ++counter;
}

// No later call would put anything either.
bool isOfConnection(MQLONG reason)
{
    switch (reason) {
    case MQRC_CONNECTION_BROKEN:
    case MQRC_Q_MGR_STOPPING:
    case MQRC_Q_MGR_NOT_AVAILABLE:
    case MQRC_HCONN_ERROR:
    case MQRC_BACKED_OUT:
        return true;
    default:
        return false;
    }
}

void keep(AsyncPuts &puts, const Outcome &outcome, const AsyncTarget &target)
{
    puts.first = outcome;
    puts.type = target.type;
    puts.openOptions = target.openOptions;
    puts.name = target.name;
    puts.queueManager = target.queueManager;
    puts.resolvedName = target.resolvedName;
    puts.resolvedQueueManager = target.resolvedQueueManager;
    puts.objectString = target.objectString;
}

} // namespace

AsyncKind asyncKind(MQLONG options, MQLONG defaultResponse, MQLONG persistence)
{
    constexpr MQLONG asked = MQPMO_ASYNC_RESPONSE | MQPMO_SYNC_RESPONSE;
    const bool wanted =
        (options & asked) != 0 ? (options & MQPMO_ASYNC_RESPONSE) != 0 : defaultResponse == MQPRT_ASYNC_RESPONSE;
    const bool underSyncpoint = (options & MQPMO_SYNCPOINT) != 0;
    const bool promised = persistence != MQPER_NOT_PERSISTENT;
    // The place of the next message in a group depends on what became of this one.
    const bool ordered = (options & MQPMO_LOGICAL_ORDER) != 0;
    const bool asynchronous = wanted && !ordered && (underSyncpoint || !promised);
    return {asynchronous, asynchronous && promised};
}

Outcome noteAsyncPut(Connection &connection, const AsyncKind &kind, const Outcome &outcome, const AsyncTarget &target)
{
    if (isOfConnection(outcome.Reason)) return outcome;
    AsyncPuts &puts = connection.asyncPuts;
    if (outcome.ok()) {
        count(puts.succeeded);
        return success();
    }
    const bool failed = outcome.failed();
    count(failed ? puts.failed : puts.warned);
    if (puts.first.ok() || (failed && !puts.first.failed())) keep(puts, outcome, target);
    if (failed && kind.losesUnit) connection.unit.doom();
    return success();
}

} // namespace mqrig::qmgr::core
