#include "receive.h"

#include "common.h"

Status GetToFile(RunParams *, MQHCONN)
{
    return not_built_yet("GetToFile");
}
