#include "send.h"

#include "common.h"

Status Applsegmentation(RunParams *, MQHCONN, MQHOBJ, const char *, MQLONG, MQLONG, MQLONG)
{
    return not_built_yet("Applsegmentation");
}
