#include "display.h"

#include <cstdio>

// The part in front of the embedded MQMD, which the walk shows next.
void printXmitQueueHedder(const MQXQH *xqh, RunParams *params)
{
    params->DataEncoding = MQENC_NATIVE;
    std::printf("*StrucId[%.4s] Version[%d] RemoteQName[%.48s] RemoteQMgrName[%.48s]\n\n", xqh->StrucId, xqh->Version,
                xqh->RemoteQName, xqh->RemoteQMgrName);
}
