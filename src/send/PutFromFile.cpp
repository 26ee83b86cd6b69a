#include "send.h"

#include "common.h"

Status PutFromFile(RunParams *, MQHCONN)
{
    return not_built_yet("PutFromFile");
}
