/// What the get options say about the unit of work; the judges of the get side share it.
#pragma once

#include "RunParams.h"

/// MQGMO_SYNCPOINT_IF_PERSISTENT counts when the record asks for persistent messages: the judgement is made before any
/// message is seen.
constexpr bool gets_under_syncpoint(const RunParams *params)
{
    if ((params->Gmo.Options & MQGMO_SYNCPOINT) != 0) return true;
    return (params->Gmo.Options & MQGMO_SYNCPOINT_IF_PERSISTENT) != 0 && params->Md.Persistence == MQPER_PERSISTENT;
}
