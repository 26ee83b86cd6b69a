#include "receive.h"

#include "common.h"

Status SendReceive(RunParams *, MQHCONN, RunParams *)
{
    return not_built_yet("SendReceive");
}
