#include "common.h"

void dsp_tid(RunParams *params)
{
    if (params->threadsInUse()) std::printf("tid=%d ", params->ThreadId);
}
