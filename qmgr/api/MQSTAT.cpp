#include <algorithm>
#include <cstring>
#include <string_view>

#include "qmgr/api/api.h"
#include "qmgr/api/structures.h"
#include "qmgr/core/connections.h"
#include "qmgr/objects/object_name.h"

using namespace mqrig::qmgr;

namespace {

// What a structure is filled with.
struct Status {
    Outcome outcome;
    MQLONG succeeded = 0;
    MQLONG warned = 0;
    MQLONG failed = 0;
    MQLONG type = MQOT_NONE;
    std::string_view name{};
    std::string_view queueManager{};
    std::string_view resolvedName{};
    std::string_view resolvedQueueManager{};
    std::string_view objectString{};
    MQLONG openOptions = 0;
};

// As much as fits the program's buffer; the length is that of the whole text.
void store(std::string_view text, void *structure, MQCHARV &to)
{
    char *buffer = to.VSPtr != nullptr ? static_cast<char *>(to.VSPtr)
                   : to.VSOffset != 0  ? static_cast<char *>(structure) + to.VSOffset
                                       : nullptr;
    if (buffer != nullptr && to.VSBufSize > 0)
        std::copy_n(text.data(), std::min(text.size(), static_cast<std::size_t>(to.VSBufSize)), buffer);
    to.VSLength = static_cast<MQLONG>(text.size());
}

void store(const Status &status, void *to)
{
    MQSTS &sts = *static_cast<MQSTS *>(to);
    sts.CompCode = status.outcome.CompCode;
    sts.Reason = status.outcome.Reason;
    sts.PutSuccessCount = status.succeeded;
    sts.PutWarningCount = status.warned;
    sts.PutFailureCount = status.failed;
    sts.ObjectType = status.type;
    objects::fillField(sts.ObjectName, sizeof sts.ObjectName, status.name);
    objects::fillField(sts.ObjectQMgrName, sizeof sts.ObjectQMgrName, status.queueManager);
    objects::fillField(sts.ResolvedObjectName, sizeof sts.ResolvedObjectName, status.resolvedName);
    objects::fillField(sts.ResolvedQMgrName, sizeof sts.ResolvedQMgrName, status.resolvedQueueManager);
    if (sts.Version < MQSTS_VERSION_2) return;
    store(status.objectString, to, sts.ObjectString);
    store({}, to, sts.SubName);
    sts.OpenOptions = status.openOptions;
    sts.SubOptions = MQSO_NONE;
}

Outcome tellAsyncPuts(core::Connection &connection, void *sts)
{
    const core::AsyncPuts &puts = connection.asyncPuts;
    store({puts.first, puts.succeeded, puts.warned, puts.failed, puts.first.ok() ? MQOT_NONE : puts.type, puts.name,
           puts.queueManager, puts.resolvedName, puts.resolvedQueueManager, puts.objectString, puts.openOptions},
          sts);
    connection.asyncPuts = {};
    return success();
}

// Of a connection that follows its queue manager; it may have lost it for good.
Outcome tellReconnection(const core::Connection &connection, MQLONG type, void *sts)
{
    if (!connection.follows()) return failure(MQRC_ENVIRONMENT_ERROR);
    const core::ReconnectFailure &failed = connection.reconnectFailure;
    Status status;
    if (connection.givenUp != MQRC_NONE) {
        status.outcome = type == MQSTAT_TYPE_RECONNECTION ? failed.cause : failure(connection.givenUp);
        if (type == MQSTAT_TYPE_RECONNECTION_ERROR) {
            status.type = failed.type;
            status.name = failed.name;
            status.queueManager = failed.queueManager;
            status.openOptions = failed.openOptions;
        }
    }
    store(status, sts);
    return success();
}

Outcome stat(MQHCONN Hconn, MQLONG type, PMQVOID pStatus)
{
    const core::ConnectionUse use(Hconn);
    const bool lost = use.outcome().failed() && use.found() && use->givenUp != MQRC_NONE;
    if (use.outcome().failed() && (!lost || type == MQSTAT_TYPE_ASYNC_ERROR)) return use.outcome();
    if (type != MQSTAT_TYPE_ASYNC_ERROR && type != MQSTAT_TYPE_RECONNECTION && type != MQSTAT_TYPE_RECONNECTION_ERROR)
        return failure(MQRC_STAT_TYPE_ERROR);
    if (const MQLONG reason = api::checkSts(pStatus)) return failure(reason);
    return type == MQSTAT_TYPE_ASYNC_ERROR ? tellAsyncPuts(*use, pStatus) : tellReconnection(*use, type, pStatus);
}

} // namespace

MQI_EXPORT void MQENTRY MQSTAT(MQHCONN Hconn, MQLONG Type, PMQVOID pStatus, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    api::answerFollowing(Hconn, pCompCode, pReason, [=] { return stat(Hconn, Type, pStatus); });
}
