#include "mqicalls.h"

void Judge_syncpoint_put(const char *, RunParams *params)
{
    if ((params->Pmo.Options & MQPMO_SYNCPOINT) != 0) params->SyncpointFlag = 1;
}
