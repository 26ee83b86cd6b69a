#include "attributes.h"

#include "common.h"

Status CallMQSET(RunParams *, MQHCONN)
{
    return not_built_yet("CallMQSET");
}
