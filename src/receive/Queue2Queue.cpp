#include "receive.h"

#include "common.h"

Status Queue2Queue(RunParams *, MQHCONN, RunParams *)
{
    return not_built_yet("Queue2Queue");
}
