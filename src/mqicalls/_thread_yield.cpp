#include "mqicalls.h"

#include "common.h"

#include <cerrno>
#include <sched.h>

Status _thread_yield(RunParams *params)
{
    if (params->YieldAfterCall == 0 || !params->threadsInUse()) return StatusOk;
    if (sched_yield() == 0) return StatusOk;
    report_failure(params, {"_thread_yield"}, "sched_yield()", errno, "sched_yield() failed.\n");
    return StatusLocalFailure;
}
