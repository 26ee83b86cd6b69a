#include "mqicalls.h"

#include "common.h"

Status allocateForDestinationList(RunParams *)
{
    return not_built_yet("allocateForDestinationList");
}
