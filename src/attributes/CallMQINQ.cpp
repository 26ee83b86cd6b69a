#include "attributes.h"

#include "common.h"

Status CallMQINQ(RunParams *, MQHCONN)
{
    return not_built_yet("CallMQINQ");
}
