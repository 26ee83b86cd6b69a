#include "receive.h"

#include "common.h"

Status GetToDir2(RunParams *, MQHCONN, MQLONG, MQLONG, char *, MQLONG *)
{
    return not_built_yet("GetToDir2");
}
