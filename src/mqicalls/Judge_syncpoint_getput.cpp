#include "mqicalls.h"

#include "mqicalls/gets_under_syncpoint.h"

void Judge_syncpoint_getput(const char *, RunParams *getParams, RunParams *putParams)
{
    if (!gets_under_syncpoint(getParams) && (putParams->Pmo.Options & MQPMO_SYNCPOINT) == 0) return;
    getParams->SyncpointFlag = 1;
    putParams->SyncpointFlag = 1;
}
