#include "receive.h"

#include "common.h"

Status GetToFile2(RunParams *, MQHCONN, MQLONG, MQLONG, char *, MQLONG *)
{
    return not_built_yet("GetToFile2");
}
