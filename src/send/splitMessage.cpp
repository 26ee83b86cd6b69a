#include "send.h"

#include "common.h"

Status splitMessage(RunParams *, MQHCONN, MQHOBJ, const char *, MQLONG, MQLONG)
{
    return not_built_yet("splitMessage");
}
