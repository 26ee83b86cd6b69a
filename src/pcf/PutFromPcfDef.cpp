#include "pcf.h"

#include "common.h"

Status PutFromPcfDef(RunParams *, MQHCONN)
{
    return not_built_yet("PutFromPcfDef");
}
