#include "send.h"

#include "common.h"

Status PutFromDir(RunParams *, MQHCONN)
{
    return not_built_yet("PutFromDir");
}
