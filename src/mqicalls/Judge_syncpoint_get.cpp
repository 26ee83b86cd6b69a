#include "mqicalls.h"

#include "mqicalls/gets_under_syncpoint.h"

void Judge_syncpoint_get(const char *, RunParams *params)
{
    if (gets_under_syncpoint(params)) params->SyncpointFlag = 1;
}
