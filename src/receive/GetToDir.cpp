#include "receive.h"

#include "common.h"

Status GetToDir(RunParams *, MQHCONN)
{
    return not_built_yet("GetToDir");
}
