#include "send.h"

#include "common.h"

Status PutFromDir2(RunParams *, MQHCONN, MQLONG, MQLONG)
{
    return not_built_yet("PutFromDir2");
}
