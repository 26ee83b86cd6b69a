#include "send.h"

#include "common.h"

Status make_mp(RunParams *, MQHCONN)
{
    return not_built_yet("make_mp");
}
