// The one rule about units of work, in three entries: where a mode begins one, where it ends its own, and where the
// driver ends the one that a group of threads shared.
#include "mqicalls.h"

namespace {

/// `GlobalUowMode`: the transaction spans all operations and the driver ends it, or each put and get has its own.
/// Options of another platform set these; here the word stays 0.
constexpr MQLONG UowGlobal = 1;
constexpr MQLONG UowPerOperation = 2;

/// Commits after a success unless `-b` was given, else backs out.
Status commit_or_back_out(RunParams *params, MQHCONN hconn, Status result)
{
    const bool commit = isSuccess(result) && params->ForceBackout == 0;
    if (params->GlobalUowMode == UowPerOperation) return commit ? TNSEndTransaction() : TNSAbortTransaction();
    return commit ? MQSeriesCommit(hconn, params) : MQSeriesBack(hconn, params);
}

} // namespace

Status begin_unit_of_work(const RunParams *params)
{
    if (params->SyncpointFlag == 0 || params->GlobalUowMode != UowPerOperation) return StatusOk;
    return TNSBeginTransaction();
}

Status end_unit_of_work(RunParams *params, MQHCONN hconn, Status result)
{
    if (params->SyncpointFlag == 0 || params->GlobalUowMode == UowGlobal) return result;
    if (params->ThreadCount != 0 && params->GlobalUowMode != UowPerOperation) return result;
    return commit_or_back_out(params, hconn, result) == StatusOk ? result : StatusLocalFailure;
}

Status settle_unit_of_work(RunParams *params, MQHCONN hconn, Status result)
{
    if (params->SyncpointFlag == 0) return StatusOk;
    return commit_or_back_out(params, hconn, result);
}
